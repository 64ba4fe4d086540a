#include "Library.h"
#include "Modules.h"
#include "talvirsim/SimRegisters.h"

#include <algorithm>
#include <chrono>
#include <cstring>

namespace TalvirSim {
namespace {

using Clock = std::chrono::steady_clock;

void PutBE32(uint8_t* p, uint32_t v) {
  p[0] = static_cast<uint8_t>(v >> 24);
  p[1] = static_cast<uint8_t>(v >> 16);
  p[2] = static_cast<uint8_t>(v >> 8);
  p[3] = static_cast<uint8_t>(v);
}

void PutBE64(uint8_t* p, uint64_t v) {
  PutBE32(p, static_cast<uint32_t>(v >> 32));
  PutBE32(p + 4, static_cast<uint32_t>(v));
}

const char* StateName(CBuffer::EState state) {
  switch (state) {
  case CBuffer::EState::Input:
    return "queued";
  case CBuffer::EState::Filling:
    return "being filled";
  case CBuffer::EState::Output:
    return "awaiting delivery";
  case CBuffer::EState::Unqueued:
    break;
  }
  return "not queued";
}

} // namespace

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
  m_description = MakeDescription("TalvirSimDataStream", xml, 0x10000000, false, "local:");
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
  case GenTL::ACQ_QUEUE_OUTPUT_DISCARD:
    toUnqueued(m_output);
    break;
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
  default:
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, "unknown flush operation " + std::to_string(operation));
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

bool CDataStream::InputSufficientLocked() const {
  // Waking the generator for every returned buffer costs a thread switch per frame; a few at a time is cheaper, but
  // never while the consumer has nothing left to take.
  const size_t batch = std::max<size_t>(1, m_buffers.size() / 4);
  return m_input.size() >= batch || (!m_input.empty() && m_output.empty());
}

void CDataStream::FillBuffer(CBuffer& buffer, const SFrameJob& job) {
  auto* base = static_cast<uint8_t*>(buffer.base);
  buffer.job = job;
  buffer.chunks.clear();
  buffer.dataLarger = job.payloadSize > buffer.size;
  const size_t imageBytes = std::min(job.imageSize, buffer.size);
  if (job.format != nullptr) {
    FillImage(*job.format, job.width, job.height, job.frameId, base, imageBytes);
  }
  size_t filled = imageBytes;
  if (job.incomplete) {
    // Packets lost in transit: the second half of the image never arrives and stays zero.
    const size_t arrived = job.imageSize / 2;
    if (arrived < imageBytes) {
      std::memset(base + arrived, 0, imageBytes - arrived);
    }
    filled = std::min(arrived, imageBytes);
  }
  if (job.chunkMode) {
    // GigE-style chunk layout: each chunk's data followed by its ID and length, big-endian.
    size_t at = job.imageSize;
    auto trailer = [&](uint32_t id, size_t length) {
      if (at + 8 <= buffer.size) {
        PutBE32(base + at, id);
        PutBE32(base + at + 4, static_cast<uint32_t>(length));
      }
      at += 8;
    };
    trailer(Remote::kChunkIdImage, job.imageSize);
    const uint32_t ids[3] = {Remote::kChunkIdTimestamp, Remote::kChunkIdFrameID, Remote::kChunkIdExposureTime};
    for (int i = 0; i < 3; ++i) {
      if (!job.chunkEnabled[i]) {
        continue;
      }
      if (at + 16 <= buffer.size) {
        uint64_t value = job.timestamp;
        if (i == 1) {
          value = job.frameId;
        } else if (i == 2) {
          std::memcpy(&value, &job.exposureTime, 8);
        }
        PutBE64(base + at, value);
        buffer.chunks.push_back({ids[i], static_cast<ptrdiff_t>(at), 8});
      }
      at += 8;
      trailer(ids[i], 8);
    }
    if (!job.incomplete) {
      filled = std::min(at, buffer.size);
    }
  }
  buffer.incomplete = job.incomplete || buffer.dataLarger;
  buffer.sizeFilled = filled;
  buffer.newData = true;
  if (Lib().Config().flavour == EFlavour::GEV) {
    const uint64_t perPacket = job.packetSize > 36 ? job.packetSize - 36 : 1;
    const uint64_t packets = (job.payloadSize + perPacket - 1) / perPacket;
    buffer.packets[0] = job.incomplete ? packets - packets / 2 : packets;
    buffer.packets[1] = job.incomplete ? 1 : 0;
    buffer.packets[2] = job.incomplete ? packets / 2 : 0;
  }
}

void CDataStream::WaitNewBuffer(void* out, size_t* size, uint64_t timeoutMs) {
  if (size == nullptr) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, "the size pointer is null");
  }
  if (out != nullptr && *size < sizeof(GenTL::EVENT_NEW_BUFFER_DATA)) {
    const size_t given = *size;
    *size = sizeof(GenTL::EVENT_NEW_BUFFER_DATA);
    Fail(GenTL::GC_ERR_BUFFER_TOO_SMALL, "new-buffer data is 16 bytes, buffer of " + std::to_string(given));
  }
  std::unique_lock<std::mutex> lock(m_mutex);
  const bool forever = timeoutMs >= 0xFFFFFFFFull;
  const Clock::time_point deadline = forever ? Clock::time_point::max() : Clock::now() + std::chrono::milliseconds(timeoutMs);
  for (;;) {
    if (m_waitShutdown) {
      Fail(GenTL::GC_ERR_ABORT, "the new-buffer event was unregistered");
    }
    if (m_pendingKills > 0) {
      --m_pendingKills;
      Fail(GenTL::GC_ERR_ABORT, "the wait was ended by EventKill");
    }
    if (!m_output.empty()) {
      break;
    }
    if (m_camera->IsLost()) {
      Fail(GenTL::GC_ERR_IO, "the device " + m_camera->Config().id + " is lost");
    }
    if (!forever && Clock::now() >= deadline) {
      Fail(GenTL::GC_ERR_TIMEOUT, "no buffer within " + std::to_string(timeoutMs) + " ms");
    }
    if (m_generatorWaiting && !m_input.empty()) {
      m_generatorCv.notify_one();  // the consumer runs dry: the generator must not wait for a fuller input queue
    }
    ++m_consumersWaiting;
    if (forever) {
      m_consumerCv.wait(lock);
    } else {
      m_consumerCv.wait_until(lock, deadline);
    }
    --m_consumersWaiting;
  }
  CBuffer* buffer = m_output.front();
  m_output.pop_front();
  buffer->state = CBuffer::EState::Unqueued;  // delivered: the consumer holds it until it queues it again
  if (out != nullptr) {
    GenTL::EVENT_NEW_BUFFER_DATA data{buffer, buffer->userPointer};
    std::memcpy(out, &data, sizeof data);
    *size = sizeof data;
  }
}

void CDataStream::KillWait() {
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_pendingKills;
  }
  m_consumerCv.notify_all();
}

void CDataStream::ShutdownWaits() {
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_waitShutdown = true;
  }
  m_consumerCv.notify_all();
}

void CDataStream::FlushOutput() {
  std::lock_guard<std::mutex> lock(m_mutex);
  for (CBuffer* buffer : m_output) {
    buffer->state = CBuffer::EState::Unqueued;
  }
  m_output.clear();
}

size_t CDataStream::OutputCount() {
  std::lock_guard<std::mutex> lock(m_mutex);
  return m_output.size();
}

uint64_t CDataStream::Delivered() {
  std::lock_guard<std::mutex> lock(m_mutex);
  return m_delivered;
}

void CDataStream::GetInfo(GenTL::STREAM_INFO_CMD command, const SInfoOut& out) {
  std::unique_lock<std::mutex> lock(m_mutex);
  switch (command) {
  case GenTL::STREAM_INFO_ID:
    return PutString(out, m_id);
  case GenTL::STREAM_INFO_NUM_DELIVERED:
    return PutU64(out, m_delivered);
  case GenTL::STREAM_INFO_NUM_UNDERRUN:
    return PutU64(out, m_underruns);
  case GenTL::STREAM_INFO_NUM_ANNOUNCED:
    return PutSize(out, m_buffers.size());
  case GenTL::STREAM_INFO_NUM_QUEUED: {
    size_t queued = m_input.size();
    for (const auto& buffer : m_buffers) {
      queued += buffer->state == CBuffer::EState::Filling ? 1 : 0;
    }
    return PutSize(out, queued);
  }
  case GenTL::STREAM_INFO_NUM_AWAIT_DELIVERY:
    return PutSize(out, m_output.size());
  case GenTL::STREAM_INFO_NUM_STARTED:
    return PutU64(out, m_started);
  case GenTL::STREAM_INFO_PAYLOAD_SIZE:
    lock.unlock();
    return PutSize(out, m_camera->PayloadSize());
  case GenTL::STREAM_INFO_IS_GRABBING:
    return PutBool(out, m_running && !m_generatorDone);
  case GenTL::STREAM_INFO_DEFINES_PAYLOADSIZE:
    return PutBool(out, Lib().Config().flavour == EFlavour::CXP || Lib().Config().flavour == EFlavour::CL);
  case GenTL::STREAM_INFO_TLTYPE:
    return PutString(out, Lib().Config().tlType);
  case GenTL::STREAM_INFO_NUM_CHUNKS_MAX:
    return PutSize(out, 3);
  case GenTL::STREAM_INFO_BUF_ANNOUNCE_MIN:
    return PutSize(out, m_camera->Config().bufferAnnounceMin);
  case GenTL::STREAM_INFO_BUF_ALIGNMENT:
    return PutSize(out, 1);
  case GenTL::STREAM_INFO_FLOW_TABLE:
  case GenTL::STREAM_INFO_GENDC_PREFETCH_DESCRIPTOR:
    Fail(GenTL::GC_ERR_NOT_AVAILABLE, "the stream has no flows and no GenDC descriptor");
  default:
    Fail(GenTL::GC_ERR_INVALID_ID, "unknown stream info command " + std::to_string(command));
  }
}

GenTL::BUFFER_HANDLE CDataStream::BufferId(uint32_t index) {
  std::lock_guard<std::mutex> lock(m_mutex);
  if (index >= m_buffers.size()) {
    Fail(GenTL::GC_ERR_INVALID_INDEX, "buffer index " + std::to_string(index) + " of " +
                                          std::to_string(m_buffers.size()));
  }
  return m_buffers[index].get();
}

void CDataStream::BufferInfo(GenTL::BUFFER_HANDLE handle, GenTL::BUFFER_INFO_CMD command, const SInfoOut& out) {
  std::lock_guard<std::mutex> lock(m_mutex);
  const CBuffer& buffer = *FindLocked(handle);
  const SFrameJob& job = buffer.job;
  const bool filled = buffer.newData;
  switch (command) {
  case GenTL::BUFFER_INFO_BASE:
    return PutPtr(out, buffer.base);
  case GenTL::BUFFER_INFO_SIZE:
    return PutSize(out, buffer.size);
  case GenTL::BUFFER_INFO_USER_PTR:
    return PutPtr(out, buffer.userPointer);
  case GenTL::BUFFER_INFO_TIMESTAMP:
    return PutU64(out, filled ? job.timestamp : 0);
  case GenTL::BUFFER_INFO_NEW_DATA:
    return PutBool(out, filled);
  case GenTL::BUFFER_INFO_IS_QUEUED:
    return PutBool(out, buffer.state == CBuffer::EState::Input || buffer.state == CBuffer::EState::Filling);
  case GenTL::BUFFER_INFO_IS_ACQUIRING:
    return PutBool(out, buffer.state == CBuffer::EState::Filling);
  case GenTL::BUFFER_INFO_IS_INCOMPLETE:
    return PutBool(out, filled && buffer.incomplete);
  case GenTL::BUFFER_INFO_TLTYPE:
    return PutString(out, Lib().Config().tlType);
  case GenTL::BUFFER_INFO_SIZE_FILLED:
  case GenTL::BUFFER_INFO_DATA_SIZE:
    return PutSize(out, filled ? buffer.sizeFilled : 0);
  case GenTL::BUFFER_INFO_WIDTH:
    if (m_camera->Config().legacyChunkPayload) {
      return PutSize(out, 0xFFFFFFFF);  // no geometry: the consumer knows the width itself
    }
    return PutSize(out, filled ? job.width : 0);
  case GenTL::BUFFER_INFO_HEIGHT:
    if (m_camera->Config().legacyChunkPayload) {
      return PutSize(out, filled ? buffer.sizeFilled : 0);  // the byte count, reported as height
    }
    return PutSize(out, filled && !m_camera->Config().zeroBufferHeight ? job.height : 0);
  case GenTL::BUFFER_INFO_XOFFSET:
    return PutSize(out, filled ? job.offsetX : 0);
  case GenTL::BUFFER_INFO_YOFFSET:
    return PutSize(out, filled ? job.offsetY : 0);
  case GenTL::BUFFER_INFO_XPADDING:
  case GenTL::BUFFER_INFO_YPADDING:
    return PutSize(out, 0);
  case GenTL::BUFFER_INFO_FRAMEID:
    return PutU64(out, filled ? job.frameId : 0);
  case GenTL::BUFFER_INFO_IMAGEPRESENT:
    return PutBool(out, filled);
  case GenTL::BUFFER_INFO_IMAGEOFFSET:
    return PutSize(out, 0);
  case GenTL::BUFFER_INFO_PAYLOADTYPE:
    return PutSize(out, m_camera->Config().legacyChunkPayload ? GenTL::PAYLOAD_TYPE_CHUNK_DATA
                                                              : GenTL::PAYLOAD_TYPE_IMAGE);
  case GenTL::BUFFER_INFO_PIXELFORMAT:
    return PutU64(out, filled && job.format ? job.format->code : 0);
  case GenTL::BUFFER_INFO_PIXELFORMAT_NAMESPACE:
    return PutU64(out, GenTL::PIXELFORMAT_NAMESPACE_PFNC_32BIT);
  case GenTL::BUFFER_INFO_DELIVERED_IMAGEHEIGHT:
    return PutSize(out, !filled ? 0 : buffer.incomplete && job.width > 0 ? job.height / 2 : job.height);
  case GenTL::BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE:
    return PutSize(out, filled && job.chunkMode ? job.payloadSize - job.imageSize : 0);
  case GenTL::BUFFER_INFO_CHUNKLAYOUTID:
    return PutU64(out, uint64_t{job.chunkEnabled[0]} | uint64_t{job.chunkEnabled[1]} << 1 |
                           uint64_t{job.chunkEnabled[2]} << 2);
  case GenTL::BUFFER_INFO_FILENAME:
    Fail(GenTL::GC_ERR_NOT_AVAILABLE, "image buffers carry no file name");
  case GenTL::BUFFER_INFO_PIXEL_ENDIANNESS:
    return PutI32(out, GenTL::PIXELENDIANNESS_LITTLE);
  case GenTL::BUFFER_INFO_TIMESTAMP_NS:
    return PutU64(out, filled ? job.timestampNs : 0);
  case GenTL::BUFFER_INFO_DATA_LARGER_THAN_BUFFER:
    return PutBool(out, filled && buffer.dataLarger);
  case GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA:
    return PutBool(out, filled && job.chunkMode);
  case GenTL::BUFFER_INFO_IS_COMPOSITE:
    return PutBool(out, false);
  default:
    break;
  }
  if (command >= 1001 && command <= 1003 && Lib().Config().flavour == EFlavour::GEV) {
    return PutU64(out, filled ? buffer.packets[command - 1001] : 0);
  }
  Fail(GenTL::GC_ERR_INVALID_ID, "unknown buffer info command " + std::to_string(command));
}

void CDataStream::ChunkData(GenTL::BUFFER_HANDLE handle, GenTL::SINGLE_CHUNK_DATA* chunks, size_t* count) {
  if (count == nullptr) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, "the count pointer is null");
  }
  std::lock_guard<std::mutex> lock(m_mutex);
  const CBuffer& buffer = *FindLocked(handle);
  if (!buffer.newData || !buffer.job.chunkMode) {
    Fail(GenTL::GC_ERR_NO_DATA, "the buffer holds no chunk data");
  }
  if (chunks == nullptr) {
    *count = buffer.chunks.size();
    return;
  }
  if (*count < buffer.chunks.size()) {
    const size_t given = *count;
    *count = buffer.chunks.size();
    Fail(GenTL::GC_ERR_BUFFER_TOO_SMALL, std::to_string(buffer.chunks.size()) + " chunks, room for " +
                                             std::to_string(given));
  }
  std::copy(buffer.chunks.begin(), buffer.chunks.end(), chunks);
  *count = buffer.chunks.size();
}

uint32_t CDataStream::NumParts(GenTL::BUFFER_HANDLE handle) {
  std::lock_guard<std::mutex> lock(m_mutex);
  FindLocked(handle);
  return 0;  // single-part image buffers
}

void CDataStream::Close() {
  {
    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_closed) {
      return;
    }
    m_closed = true;
    StopLocked(lock, true);
  }
  m_camera->SetWake({});
  UnregisterAll();
  Lib().RemoveHandle(Handle());
  m_device->StreamClosed();
}

// ---- CNewBufferEvent ----

std::shared_ptr<CDataStream> CNewBufferEvent::Stream() {
  auto stream = m_stream.lock();
  if (!stream) {
    Fail(GenTL::GC_ERR_ABORT, "the data stream was closed");
  }
  return stream;
}

void CNewBufferEvent::GetData(void* buffer, size_t* size, uint64_t timeoutMs) {
  size_t ignored = sizeof(GenTL::EVENT_NEW_BUFFER_DATA);
  Stream()->WaitNewBuffer(buffer, size != nullptr ? size : (buffer == nullptr ? &ignored : nullptr), timeoutMs);
}

void CNewBufferEvent::GetInfo(GenTL::EVENT_INFO_CMD command, const SInfoOut& out) {
  auto stream = Stream();
  switch (command) {
  case GenTL::EVENT_EVENT_TYPE:
    return PutI32(out, Type());
  case GenTL::EVENT_NUM_IN_QUEUE:
    return PutSize(out, stream->OutputCount());
  case GenTL::EVENT_NUM_FIRED:
    return PutU64(out, stream->Delivered());
  case GenTL::EVENT_SIZE_MAX:
  case GenTL::EVENT_INFO_DATA_SIZE_MAX:
    return PutSize(out, sizeof(GenTL::EVENT_NEW_BUFFER_DATA));
  default:
    Fail(GenTL::GC_ERR_INVALID_ID, "unknown event info command " + std::to_string(command));
  }
}

void CNewBufferEvent::Flush() { Stream()->FlushOutput(); }

void CNewBufferEvent::Kill() { Stream()->KillWait(); }

void CNewBufferEvent::Shutdown() {
  if (auto stream = m_stream.lock()) {
    stream->ShutdownWaits();
  }
}

} // namespace TalvirSim
