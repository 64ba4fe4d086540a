#include "DataStream.h"

#include "Bytes.h"
#include "Device.h"
#include "Library.h"
#include "NewBufferEvent.h"
#include "talvirsim/SimRegisters.h"

#include <algorithm>
#include <chrono>
#include <cstring>

namespace TalvirSim {
namespace {

using Clock = std::chrono::steady_clock;

const char* StateName(CBuffer::EState state) {
  switch (state) {
  case CBuffer::EState::Input: return "queued";
  case CBuffer::EState::Filling: return "being filled";
  case CBuffer::EState::Output: return "awaiting delivery";
  case CBuffer::EState::Unqueued: break;
  }
  return "not queued";
}

}  // namespace

CDataStream::CDataStream(std::shared_ptr<CDevice> device, std::string id)
    : m_device(std::move(device)), m_camera(m_device->CameraPtr()), m_id(std::move(id)) {
  const EFlavour flavour = Lib().Config().flavour;
  std::string xml = EmbeddedXml("stream.xml");
  std::string features;
  std::string nodes;
  if (flavour == EFlavour::CXP) {
    features = "<pFeature>StreamPayload</pFeature>";
    nodes = EmbeddedXml("stream_cxp.xml");
  }
  xml = ReplaceMarker(xml, "<!--@EXTRA_FEATURES@-->", features);
  xml = ReplaceMarker(xml, "<!--@EXTRA_NODES@-->", nodes);
  m_description = ModuleDescription("TalvirSimDataStream", xml);
  m_bank.AddString(0x1000, 256, [this](size_t) { return m_id; });
  m_bank.AddInt(0x0000, 8, [this](size_t) {
    std::lock_guard<std::mutex> lock(m_mutex);
    return static_cast<uint64_t>(m_buffers.size());
  });
  m_bank.AddStored(0x0008, 8, 0);
  m_bank.AddInt(0x0010, 8, [this](size_t) { return static_cast<uint64_t>(m_camera->Config().bufferAnnounceMin); });
  m_bank.AddInt(0x0018, 8, [](size_t) {
    const std::string& type = Lib().Config().tlType;
    return uint64_t{type == "GEV" ? 1u : type == "U3V" ? 2u : type == "CL" ? 3u : type == "CXP" ? 4u : 0u};
  });
  m_bank.AddInt(0x0020, 8, [this](size_t) {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_delivered;
  });
  m_bank.AddInt(0x0028, 8, [this](size_t) {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_underruns;
  });
  m_bank.AddInt(0x0030, 8, [this](size_t) {
    std::lock_guard<std::mutex> lock(m_mutex);
    return uint64_t{m_running && !m_generatorDone};
  });
  if (flavour == EFlavour::CXP) {
    m_bank.AddInt(0x0100, 8, [this](size_t) { return static_cast<uint64_t>(m_camera->PayloadSize()); });
    m_bank.AddInt(0x0108, 8, [this](size_t) { return static_cast<uint64_t>(m_camera->Height()); });
  }
}

CDataStream::~CDataStream() {
  if (m_generator.joinable()) {
    {
      std::lock_guard<std::mutex> lock(m_mutex);
      m_stopRequested = true;
    }
    m_generatorCv.notify_all();
    m_generator.join();
  }
}

void CDataStream::Init() {
  std::weak_ptr<CDataStream> weak = std::dynamic_pointer_cast<CDataStream>(shared_from_this());
  m_camera->SetWake([weak] {
    if (auto stream = weak.lock()) {
      stream->Wake();
    }
  });
  Lib().AddHandle(shared_from_this());
}

std::shared_ptr<CEvent> CDataStream::MakeEvent(GenTL::EVENT_TYPE type) {
  if (type == GenTL::EVENT_NEW_BUFFER) {
    {
      std::lock_guard<std::mutex> lock(m_mutex);
      m_pendingKills = 0;
      m_waitShutdown = false;
    }
    return std::make_shared<CNewBufferEvent>(std::dynamic_pointer_cast<CDataStream>(shared_from_this()));
  }
  return CEventSource::MakeEvent(type);
}

void CDataStream::Wake() {
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_wakeFlag = true;
  }
  m_generatorCv.notify_all();
  m_consumerCv.notify_all();
}

CBuffer* CDataStream::FindLocked(GenTL::BUFFER_HANDLE handle) {
  if (handle == nullptr) {
    Fail(GenTL::GC_ERR_INVALID_HANDLE, "null buffer handle");
  }
  auto it = m_byHandle.find(handle);
  if (it == m_byHandle.end()) {
    Fail(GenTL::GC_ERR_INVALID_HANDLE, "not a buffer of the data stream " + m_id);
  }
  return it->second;
}

GenTL::BUFFER_HANDLE CDataStream::Announce(void* memory, size_t size, void* user) {
  if (memory == nullptr) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, "null buffer memory");
  }
  if (size == 0) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, "a buffer of 0 bytes");
  }
  auto buffer = std::make_unique<CBuffer>();
  buffer->base = memory;
  buffer->size = size;
  buffer->userPointer = user;
  std::lock_guard<std::mutex> lock(m_mutex);
  for (const auto& existing : m_buffers) {
    if (existing->base == memory) {
      Fail(GenTL::GC_ERR_RESOURCE_IN_USE, "this memory is already announced");
    }
  }
  buffer->index = m_buffers.size();
  CBuffer* raw = buffer.get();
  m_byHandle[raw] = raw;
  m_buffers.push_back(std::move(buffer));
  return raw;
}

GenTL::BUFFER_HANDLE CDataStream::AllocAndAnnounce(size_t size, void* user) {
  if (size == 0) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, "a buffer of 0 bytes");
  }
  std::unique_ptr<uint8_t[]> memory(new (std::nothrow) uint8_t[size]);
  if (!memory) {
    Fail(GenTL::GC_ERR_OUT_OF_MEMORY, "cannot allocate " + std::to_string(size) + " bytes");
  }
  void* base = memory.get();
  GenTL::BUFFER_HANDLE handle = Announce(base, size, user);
  std::lock_guard<std::mutex> lock(m_mutex);
  static_cast<CBuffer*>(handle)->owned = std::move(memory);
  return handle;
}

void CDataStream::Revoke(GenTL::BUFFER_HANDLE handle, void** memory, void** user) {
  std::lock_guard<std::mutex> lock(m_mutex);
  CBuffer* buffer = FindLocked(handle);
  if (buffer->state != CBuffer::EState::Unqueued) {
    Fail(GenTL::GC_ERR_BUSY, std::string("the buffer is ") + StateName(buffer->state) + "; flush it first");
  }
  if (memory != nullptr) {
    *memory = buffer->owned ? nullptr : buffer->base;  // producer memory is freed here, not handed back
  }
  if (user != nullptr) {
    *user = buffer->userPointer;
  }
  m_byHandle.erase(handle);
  m_buffers.erase(std::remove_if(m_buffers.begin(), m_buffers.end(),
                                 [buffer](const std::unique_ptr<CBuffer>& b) { return b.get() == buffer; }),
                  m_buffers.end());
  for (size_t i = 0; i < m_buffers.size(); ++i) {
    m_buffers[i]->index = i;
  }
}

void CDataStream::Queue(GenTL::BUFFER_HANDLE handle) {
  bool wake = false;
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    CBuffer* buffer = FindLocked(handle);
    if (buffer->state != CBuffer::EState::Unqueued) {
      Fail(GenTL::GC_ERR_RESOURCE_IN_USE, std::string("the buffer is already ") + StateName(buffer->state));
    }
    buffer->state = CBuffer::EState::Input;
    buffer->newData = false;
    m_input.push_back(buffer);
    wake = m_generatorWaiting && InputSufficientLocked();
  }
  if (wake) {
    m_generatorCv.notify_one();
  }
}

void CDataStream::Flush(GenTL::ACQ_QUEUE_TYPE operation) {
  std::lock_guard<std::mutex> lock(m_mutex);
  auto toUnqueued = [](std::deque<CBuffer*>& queue) {
    for (CBuffer* buffer : queue) {
      buffer->state = CBuffer::EState::Unqueued;
    }
    queue.clear();
  };
  switch (operation) {
  case GenTL::ACQ_QUEUE_INPUT_TO_OUTPUT:
    for (CBuffer* buffer : m_input) {
      buffer->state = CBuffer::EState::Output;
      buffer->newData = false;
      buffer->sizeFilled = 0;
      m_output.push_back(buffer);
    }
    m_input.clear();
    break;
  case GenTL::ACQ_QUEUE_OUTPUT_DISCARD: toUnqueued(m_output); break;
  case GenTL::ACQ_QUEUE_ALL_TO_INPUT:
    for (CBuffer* buffer : m_output) {
      buffer->state = CBuffer::EState::Input;
      m_input.push_back(buffer);
    }
    m_output.clear();
    [[fallthrough]];
  case GenTL::ACQ_QUEUE_UNQUEUED_TO_INPUT:
    for (const auto& buffer : m_buffers) {
      if (buffer->state == CBuffer::EState::Unqueued) {
        buffer->state = CBuffer::EState::Input;
        m_input.push_back(buffer.get());
      }
    }
    break;
  case GenTL::ACQ_QUEUE_ALL_DISCARD:
    toUnqueued(m_input);
    toUnqueued(m_output);
    break;
  default: Fail(GenTL::GC_ERR_INVALID_PARAMETER, "unknown flush operation " + std::to_string(operation));
  }
  if (!m_input.empty()) {
    m_generatorCv.notify_all();
  }
  if (!m_output.empty()) {
    m_consumerCv.notify_all();
  }
}

void CDataStream::Start(GenTL::ACQ_START_FLAGS flags, uint64_t count) {
  if (flags != GenTL::ACQ_START_FLAGS_DEFAULT) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, "unknown start flags " + std::to_string(flags));
  }
  if (count == 0) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, "zero frames to acquire");
  }
  if (m_camera->IsLost()) {
    Fail(GenTL::GC_ERR_IO, "the device " + m_camera->Config().id + " is lost");
  }
  std::unique_lock<std::mutex> lock(m_mutex);
  if (m_running) {
    Fail(GenTL::GC_ERR_RESOURCE_IN_USE, "acquisition is already running");
  }
  const size_t minimum = m_camera->Config().bufferAnnounceMin;
  if (m_buffers.size() < std::max<size_t>(1, minimum)) {
    Fail(GenTL::GC_ERR_RESOURCE_EXHAUSTED, std::to_string(m_buffers.size()) + " buffers announced, at least " +
                                               std::to_string(std::max<size_t>(1, minimum)) + " needed");
  }
  if (m_generator.joinable()) {
    lock.unlock();
    m_generator.join();
    lock.lock();
  }
  m_running = true;
  m_generatorDone = false;
  m_stopRequested = false;
  m_killRequested = false;
  m_toAcquire = count;
  m_acquiredThisRun = 0;
  lock.unlock();
  m_camera->StreamStarted();
  m_generator = std::thread([this] { Generate(); });
}

void CDataStream::Stop(GenTL::ACQ_STOP_FLAGS flags) {
  if (flags != GenTL::ACQ_STOP_FLAGS_DEFAULT && flags != GenTL::ACQ_STOP_FLAGS_KILL) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, "unknown stop flags " + std::to_string(flags));
  }
  std::unique_lock<std::mutex> lock(m_mutex);
  StopLocked(lock, flags == GenTL::ACQ_STOP_FLAGS_KILL);
}

void CDataStream::StopLocked(std::unique_lock<std::mutex>& lock, bool kill) {
  if (!m_running) {
    return;  // stopping a stopped stream is harmless
  }
  m_stopRequested = true;
  m_killRequested = kill;
  lock.unlock();
  m_generatorCv.notify_all();
  if (m_generator.joinable()) {
    m_generator.join();
  }
  m_camera->StreamStopped();
  lock.lock();
  m_running = false;
}

// The generator holds the stream's lock only to move buffers between queues; the camera is asked without it. In free
// run each frame costs two passes under the lock: one that reserves the next buffer, one that delivers the frame.
void CDataStream::Generate() {
  std::unique_lock<std::mutex> lock(m_mutex);
  Clock::time_point due{};
  CBuffer* reserved = nullptr;  // taken from the input queue for the next frame
  SFrameJob delivered;          // the last delivered frame, reported to the camera outside the lock
  bool reportDelivered = false;
  auto giveBack = [&] {
    if (reserved != nullptr) {
      reserved->state = CBuffer::EState::Input;
      m_input.push_front(reserved);
      reserved = nullptr;
    }
  };
  while (!m_stopRequested) {
    if (reserved == nullptr && !m_input.empty()) {
      reserved = m_input.front();
      m_input.pop_front();
      reserved->state = CBuffer::EState::Filling;  // counted as queued until delivered
    }
    const bool haveBuffer = reserved != nullptr;
    lock.unlock();
    if (reportDelivered) {
      m_camera->FrameDelivered(delivered);
      reportDelivered = false;
    }
    SFrameJob job;
    SFrameGate gate;
    bool started = m_camera->Poll(haveBuffer, job, gate);
    lock.lock();
    if (m_stopRequested || gate.lost) {
      if (started) {
        ++m_underruns;  // started but never delivered
      }
      break;
    }
    if (!started) {
      if (!gate.open) {
        giveBack();
        due = Clock::time_point{};
        m_generatorCv.wait_for(lock, std::chrono::milliseconds(20), [this] { return m_stopRequested || m_wakeFlag; });
        m_wakeFlag = false;
        continue;
      }
      if (!gate.timed) {
        // Free run without a buffer: wait until enough come back, or until the consumer runs dry.
        giveBack();
        m_generatorWaiting = true;
        m_generatorCv.wait(lock, [this] { return m_stopRequested || m_wakeFlag || InputSufficientLocked(); });
        m_generatorWaiting = false;
        m_wakeFlag = false;
        continue;
      }
      const Clock::time_point now = Clock::now();
      if (due == Clock::time_point{}) {
        due = now;
      }
      if (now < due) {
        giveBack();
        m_generatorCv.wait_until(lock, due, [this] { return m_stopRequested || m_wakeFlag; });
        m_wakeFlag = false;
        continue;  // look at the gate again: a change of frame rate or a stop may have come
      }
      due += gate.period;
      if (due + gate.period < now) {
        due = now + gate.period;  // after a long stall, do not burst to catch up
      }
      lock.unlock();
      started = m_camera->StartFrame(job);
      lock.lock();
      if (!started) {
        continue;
      }
      if (reserved == nullptr && !m_input.empty()) {
        reserved = m_input.front();  // queued while the frame was being started
        m_input.pop_front();
        reserved->state = CBuffer::EState::Filling;
      }
      if (reserved == nullptr) {
        ++m_underruns;  // the frame happens whether or not a buffer waits: without one it is lost
        continue;
      }
    }
    CBuffer* buffer = reserved;
    reserved = nullptr;
    ++m_started;
    lock.unlock();
    FillBuffer(*buffer, job);
    lock.lock();
    if (job.lateByMs > 0) {
      m_generatorCv.wait_for(lock, std::chrono::milliseconds(job.lateByMs), [this] { return m_stopRequested; });
    }
    const bool discard = job.incomplete && job.partialMode == 1 && Lib().Config().flavour == EFlavour::GEV;
    if ((m_stopRequested && m_killRequested) || discard) {
      buffer->state = CBuffer::EState::Input;  // not delivered: back to the front of the input queue
      buffer->newData = false;
      m_input.push_front(buffer);
      if (discard) {
        ++m_underruns;
      }
      continue;
    }
    buffer->state = CBuffer::EState::Output;
    m_output.push_back(buffer);
    ++m_delivered;
    delivered = job;
    reportDelivered = true;
    if (m_consumersWaiting > 0) {
      m_consumerCv.notify_one();
    }
    if (++m_acquiredThisRun >= m_toAcquire) {
      break;
    }
  }
  giveBack();
  m_generatorDone = true;
  lock.unlock();
  if (reportDelivered) {
    m_camera->FrameDelivered(delivered);
  }
  m_consumerCv.notify_all();
}

}  // namespace TalvirSim
