// CCamera: acquisition (start, stop, buffers), image fetch, and payload size.
#include "camera/Camera.h"

#include "camera/CameraLink.h"
#include "camera/CtiPort.h"
#include "camera/GenImage.h"
#include "camera/Grab.h"
#include "gentl/CameraInfo.h"
#include "gentl/Cti.h"
#include "image/PixelLayout.h"

#include <talvir/TLType.h>

#include <GenApi/GenApi.h>

#include <algorithm>

namespace TALVIR {
namespace {

// Fewest buffers announced when the producer decides the count.
constexpr uint64_t kMinimumAnnounceCount = 8;
// What producers take as "acquire until stopped"; applications may say so with 0, which no producer accepts.
constexpr uint64_t kUnlimitedImages = UINT64_MAX;
// Fill results at or above this are not failures of the fill.
constexpr int32_t kFillContinue = 20;
constexpr int32_t kFillCodeOffset = 20;
// While fetches are still waiting when acquisition stops, each is woken in turn this often.
constexpr std::chrono::milliseconds kDrainPoll{20};

int32_t StatusOfFetchError(GenTL::GC_ERROR error) {
  switch (error) {
  case GenTL::GC_ERR_TIMEOUT: return Status::Timeout;
  case GenTL::GC_ERR_ABORT: return Status::Aborted;
  case GenTL::GC_ERR_BUFFER_TOO_SMALL: return Status::BufferTooSmall;
  case GenTL::GC_ERR_PARSING_CHUNK_DATA: return Status::ChunkParseFailed;
  case GenTL::GC_ERR_RESOURCE_EXHAUSTED: return Status::ResourceExhausted;
  default: return Status::FetchFailed;
  }
}

// Runs one feature step; a GenICam exception ends that step only.
template <typename TStep>
void Guarded(TStep&& step) {
  try {
    step();
  } catch (const GenICam::GenericException&) {
    // The camera refused or lost the feature: acquisition handling goes on without it.
  }
}

// Neither not implemented nor not available.
bool IsPresent(GenApi::INode* node) { return node != nullptr && GenApi::IsAvailable(node->GetAccessMode()); }

}  // namespace

// ---- Grabbing ----

int32_t CCamera::StartGrabbing(uint32_t grabMode, uint64_t count) {
  std::shared_ptr<CGrab> previous;
  {
    std::lock_guard<std::mutex> lock(m_lock);
    if (m_grabCount != 0) {
      return Status::AlreadyGrabbing;
    }
    const int32_t result = StartAcquisition(count);
    if (result != Status::Ok) {
      // Buffers that were queued cannot be revoked while queued: take them out of the queues first, so that
      // none stays announced to the producer.
      FlushBuffers();
      return result;
    }
    m_grabCount = 1;
    previous = std::move(m_pGrab);
    m_pGrab = std::make_shared<CGrab>(this, grabMode);
  }
  previous.reset();
  return Status::Ok;
}

void CCamera::StopGrabbing() {
  std::shared_ptr<CGrab> grab;
  {
    std::lock_guard<std::mutex> lock(m_lock);
    grab = std::move(m_pGrab);
  }
  // Outside the lock: the grab thread's last fetch and the release of its newest image need the lock.
  if (grab != nullptr) {
    grab->Stop();
    grab.reset();
  }
  std::unique_lock<std::mutex> lock(m_lock);
  if (m_grabCount <= 0) {
    return;
  }
  StopAcquisition();
  --m_grabCount;
  // Every fetch still in flight must have returned before the buffers go. Each wake-up of the new-buffer event
  // ends one wait, so the event is woken again until the last fetch has returned.
  while (m_grabCount > 0) {
    if (m_grabDrained.wait_for(lock, kDrainPoll, [this] { return m_grabCount <= 0; })) {
      break;
    }
    KillNewBufferEvent();
  }
  ++m_acquisition;
  FlushBuffers();
}

bool CCamera::IsGrabbing() {
  std::lock_guard<std::mutex> lock(m_lock);
  return m_grabCount > 0;
}

int32_t CCamera::GetImage(IImage** out, uint32_t timeoutMs) {
  if (out != nullptr) {
    *out = nullptr;
  }
  std::shared_ptr<CGrab> grab;
  {
    std::lock_guard<std::mutex> lock(m_lock);
    if (m_pGrab == nullptr || out == nullptr) {
      return Status::NotGrabbing;
    }
    if (m_pGrab->IsDirect()) {
      if (m_grabCount < 1) {
        return Status::AcquisitionEnded;
      }
      ++m_grabCount;
    } else {
      grab = m_pGrab;
    }
  }
  if (grab == nullptr) {
    const int32_t result = WaitImage(out, timeoutMs);
    FinishFetch();
    return result;
  }
  return grab->Mode() == GrabMode::Newest ? grab->GetLatestImage(out, timeoutMs) : grab->GetFreshImage(out, timeoutMs);
}

int32_t CCamera::FetchCounted(IImage** out, uint64_t timeoutMs) {
  {
    std::lock_guard<std::mutex> lock(m_lock);
    if (m_grabCount < 1) {
      return Status::AcquisitionEnded;
    }
    ++m_grabCount;
  }
  const int32_t result = WaitImage(out, timeoutMs);
  FinishFetch();
  return result;
}

void CCamera::FinishFetch() {
  bool drained = false;
  {
    std::lock_guard<std::mutex> lock(m_lock);
    drained = --m_grabCount == 0;
  }
  if (drained) {
    m_grabDrained.notify_all();
  }
}

void CCamera::DiscardOutputQueue() {
  // Filled buffers are taken from the stream and queued again at once: flushing the output queue would leave them
  // delivered to nobody, and so lost to the acquisition.
  void* event = nullptr;
  void* stream = nullptr;
  CCti* const producer = Producer();
  size_t announced = 0;
  {
    std::lock_guard<std::mutex> lock(m_lock);
    if (m_grabCount < 1 || m_pStreamPort == nullptr || producer == nullptr) {
      return;
    }
    ++m_grabCount;
    event = m_hNewBufferEvent;
    stream = m_pStreamPort->Handle();
    announced = m_buffers.size();
  }
  const CGenTLFunctionTable& api = producer->Api();
  if (event != nullptr && stream != nullptr && api.EventGetData != nullptr && api.DSQueueBuffer != nullptr) {
    for (size_t i = 0; i < announced; ++i) {
      GenTL::EVENT_NEW_BUFFER_DATA data{};
      size_t size = sizeof data;
      if (api.EventGetData(event, &data, &size, 0) != GenTL::GC_ERR_SUCCESS) {
        break;
      }
      api.DSQueueBuffer(stream, data.BufferHandle);
    }
  }
  FinishFetch();
}

void CCamera::KillNewBufferEvent() {
  CCti* const producer = Producer();
  void* const event = m_hNewBufferEvent.load();
  if (producer != nullptr && event != nullptr && producer->Api().EventKill != nullptr) {
    producer->Api().EventKill(event);
  }
}

void CCamera::RequeueBuffer(void* bufferHandle, uint64_t acquisition) {
  std::lock_guard<std::mutex> lock(m_lock);
  if (m_grabCount < 1 || acquisition != m_acquisition || m_pStreamPort == nullptr) {
    return;
  }
  CCti* const producer = m_pStreamPort->Producer();
  if (producer == nullptr || producer->Api().DSQueueBuffer == nullptr ||
      m_buffers.find(bufferHandle) == m_buffers.end()) {
    return;
  }
  producer->Api().DSQueueBuffer(m_pStreamPort->Handle(), bufferHandle);
}

// ---- Acquisition ----

int32_t CCamera::StartAcquisition(uint64_t count) {
  if (m_pDevicePort == nullptr || m_pRemotePort == nullptr || m_pStreamPort == nullptr) {
    return Status::NotOpen;
  }
  CCti* const producer = m_pStreamPort->Producer();
  if (producer == nullptr) {
    return Status::StreamHasNoProducer;
  }
  void* const stream = m_pStreamPort->Handle();
  if (stream == nullptr) {
    return Status::StreamHasNoHandle;
  }
  if (m_pRemotePort->GetNodeMap() == nullptr) {
    return Status::NoRemoteFeatures;
  }
  const uint64_t payloadSize = ComputePayloadSize();
  m_payloadSize = payloadSize;
  if (payloadSize == 0 || payloadSize > SIZE_MAX) {
    return Status::NoPayloadSize;
  }
  ReadGeometry();
  m_unknownCustomInfo = 0;

  const CGenTLFunctionTable& api = producer->Api();
  const uint64_t announceCount = GetAnnounceCount();
  for (uint64_t i = 0; i < announceCount; ++i) {
    std::shared_ptr<CBufferMemory> memory = CBufferMemory::Allocate(static_cast<size_t>(payloadSize));
    if (memory == nullptr) {
      return Status::OutOfMemory;
    }
    void* handle = nullptr;
    if (api.DSAnnounceBuffer == nullptr || api.DSQueueBuffer == nullptr ||
        api.DSAnnounceBuffer(stream, memory->Data(), memory->Size(), reinterpret_cast<void*>(i), &handle) !=
            GenTL::GC_ERR_SUCCESS) {
      if (i == 0) {
        return Status::AnnounceFailed;
      }
      break;  // the buffers announced so far serve
    }
    RecordBuffer(handle, std::move(memory));
    api.DSQueueBuffer(stream, handle);
  }

  void* event = nullptr;
  if (api.GCRegisterEvent == nullptr ||
      api.GCRegisterEvent(stream, GenTL::EVENT_NEW_BUFFER, &event) != GenTL::GC_ERR_SUCCESS || event == nullptr) {
    return Status::RegisterEventFailed;
  }
  m_hNewBufferEvent = event;
  if (api.DSStartAcquisition == nullptr ||
      api.DSStartAcquisition(stream, GenTL::ACQ_START_FLAGS_DEFAULT, count == 0 ? kUnlimitedImages : count) !=
          GenTL::GC_ERR_SUCCESS) {
    if (api.EventKill != nullptr) {
      api.EventKill(event);
    }
    if (api.GCUnregisterEvent != nullptr) {
      api.GCUnregisterEvent(stream, GenTL::EVENT_NEW_BUFFER);
    }
    m_hNewBufferEvent = nullptr;
    return Status::StartStreamFailed;
  }

  GenApi::INodeMap* const features = m_pRemotePort->GetNodeMap();
  Guarded([&] {
    GenApi::CIntegerPtr locked(features->GetNode("TLParamsLocked"));
    if (GenApi::IsWritable(locked)) {
      locked->SetValue(1, true);
    }
    GenApi::CCommandPtr start(features->GetNode("AcquisitionStart"));
    if (GenApi::IsWritable(start)) {
      start->Execute(true);
    }
  });
  return Status::Ok;
}

void CCamera::StopAcquisition() {
  if (m_pDevicePort == nullptr || m_pRemotePort == nullptr || m_pStreamPort == nullptr) {
    return;
  }
  KillNewBufferEvent();
  // Each step on its own: a camera that refuses one (or is gone) must not keep the stream from stopping.
  GenApi::INodeMap* const features = m_pRemotePort->GetNodeMap();
  if (features != nullptr) {
    const auto stopCommand = [features] {
      GenApi::CCommandPtr stop(features->GetNode("AcquisitionStop"));
      if (stop.IsValid() && IsPresent(stop->GetNode())) {
        stop->Execute(true);
      }
    };
    Guarded(stopCommand);
    Guarded([features] {
      GenApi::CIntegerPtr locked(features->GetNode("TLParamsLocked"));
      if (locked.IsValid() && IsPresent(locked->GetNode())) {
        locked->SetValue(0, true);
      }
    });
    // Stopped a second time: some cameras ignore a stop while the transport layer parameters are locked.
    Guarded(stopCommand);
  }
  StopStream();
}

void CCamera::StopStream() {
  if (m_pStreamPort == nullptr) {
    return;
  }
  CCti* const producer = m_pStreamPort->Producer();
  if (producer != nullptr && producer->Api().DSStopAcquisition != nullptr && m_pStreamPort->Handle() != nullptr) {
    producer->Api().DSStopAcquisition(m_pStreamPort->Handle(), GenTL::ACQ_STOP_FLAGS_DEFAULT);
  }
}

void CCamera::FlushBuffers() {
  if (m_pStreamPort == nullptr || m_pStreamPort->Producer() == nullptr) {
    m_hNewBufferEvent = nullptr;
    RevokeBuffers();
    return;
  }
  const CGenTLFunctionTable& api = m_pStreamPort->Producer()->Api();
  void* const stream = m_pStreamPort->Handle();
  if (m_hNewBufferEvent != nullptr && api.GCUnregisterEvent != nullptr) {
    api.GCUnregisterEvent(stream, GenTL::EVENT_NEW_BUFFER);
  }
  m_hNewBufferEvent = nullptr;
  if (api.DSFlushQueue != nullptr) {
    api.DSFlushQueue(stream, GenTL::ACQ_QUEUE_INPUT_TO_OUTPUT);
    api.DSFlushQueue(stream, GenTL::ACQ_QUEUE_OUTPUT_DISCARD);
  }
  RevokeBuffers();
}

uint64_t CCamera::GetAnnounceCount() {
  const uint64_t count = GetBufferCount();
  if (count != 0) {
    return count;
  }
  CCti* const producer = m_pStreamPort != nullptr ? m_pStreamPort->Producer() : nullptr;
  if (producer == nullptr || producer->Api().DSGetInfo == nullptr) {
    return kMinimumAnnounceCount;
  }
  uint64_t minimum = 0;
  size_t size = sizeof minimum;
  GenTL::INFO_DATATYPE type = GenTL::INFO_DATATYPE_UNKNOWN;
  if (producer->Api().DSGetInfo(m_pStreamPort->Handle(), GenTL::STREAM_INFO_BUF_ANNOUNCE_MIN, &type, &minimum, &size) !=
      GenTL::GC_ERR_SUCCESS) {
    return kMinimumAnnounceCount;
  }
  return std::max(minimum, kMinimumAnnounceCount);
}

void CCamera::RecordBuffer(void* handle, std::shared_ptr<CBufferMemory> memory) {
  m_buffers.emplace(handle, SBuffer{handle, std::move(memory)});
}

void CCamera::RevokeBuffers() {
  CCti* const producer = m_pStreamPort != nullptr ? m_pStreamPort->Producer() : nullptr;
  for (auto& entry : m_buffers) {
    const bool revoked = producer != nullptr && producer->Api().DSRevokeBuffer != nullptr &&
                         producer->Api().DSRevokeBuffer(m_pStreamPort->Handle(), entry.first, nullptr, nullptr) ==
                             GenTL::GC_ERR_SUCCESS;
    if (!revoked) {
      // The producer still knows this buffer and may write into it: its memory stays until the stream closes.
      m_unrevoked.push_back(std::move(entry.second.memory));
    }
  }
  m_buffers.clear();
  m_buffers.rehash(8);
}

std::shared_ptr<CBufferMemory> CCamera::MemoryOf(void* bufferHandle, uint64_t& acquisition) {
  std::lock_guard<std::mutex> lock(m_lock);
  acquisition = m_acquisition;
  const auto found = m_buffers.find(bufferHandle);
  return found != m_buffers.end() ? found->second.memory : nullptr;
}

int32_t CCamera::WaitImage(IImage** out, uint64_t timeoutMs) {
  void* stream = nullptr;
  void* event = nullptr;
  CCti* producer = nullptr;
  {
    std::lock_guard<std::mutex> lock(m_lock);
    if (m_pStreamPort == nullptr) {
      return -3;
    }
    stream = m_pStreamPort->Handle();
    producer = m_pStreamPort->Producer();
    event = m_hNewBufferEvent;
  }
  if (stream == nullptr) {
    return -4;
  }
  if (event == nullptr) {
    return -5;
  }
  if (producer == nullptr || producer->Api().EventGetData == nullptr) {
    return Status::FetchFailed;
  }
  GenTL::EVENT_NEW_BUFFER_DATA data{};
  size_t size = sizeof data;
  const GenTL::GC_ERROR error = producer->Api().EventGetData(event, &data, &size, timeoutMs);
  if (error != GenTL::GC_ERR_SUCCESS) {
    return StatusOfFetchError(error);
  }
  const auto deliveredAt = std::chrono::steady_clock::now();
  uint64_t acquisition = 0;
  std::shared_ptr<CBufferMemory> memory = MemoryOf(data.BufferHandle, acquisition);
  auto* const image = new CGenImage(this, m_link, std::move(memory), acquisition);
  image->SetDeliveredAt(deliveredAt);
  *out = image;
  const int32_t fill = image->Fill(producer, stream, data.BufferHandle, GetImageFillFlag());
  if (fill != FillResult::Ok && fill != kFillContinue) {
    return fill - kFillCodeOffset;
  }
  const uint32_t checkMode = m_sizeCheckMode.load();
  if (checkMode == 1 || checkMode == 2) {
    const uint64_t payloadSize = m_payloadSize.load();
    const uint64_t imageSize = ImageSizeBytes(static_cast<uint32_t>(image->GetPixelFormat()), image->GetWidth(),
                                              image->GetHeight());
    if (checkMode == 1 && imageSize != payloadSize) {
      image->Release();
      *out = nullptr;
      return Status::Timeout;
    }
    if (checkMode == 2 && imageSize < payloadSize) {
      image->ZeroFillTo(payloadSize);
    }
  }
  return Status::Ok;
}

// ---- Payload size and geometry ----

uint64_t CCamera::ComputePayloadSize() {
  // Frame grabbers know the payload in their data stream; cameras in their own features.
  IXml* const source = (TLType() & TLType::CXP) != 0 ? static_cast<IXml*>(m_pStreamPort.get())
                                                     : static_cast<IXml*>(m_pRemotePort.get());
  GenApi::INodeMap* const features = source != nullptr ? source->GetNodeMap() : nullptr;
  uint64_t size = 0;
  if (features != nullptr) {
    Guarded([&] {
      GenApi::CIntegerPtr payload(features->GetNode("PayloadSize"));
      if (GenApi::IsReadable(payload)) {
        const int64_t value = payload->GetValue(true, true);
        size = value > 0 ? static_cast<uint64_t>(value) : 0;
      }
    });
  }
  if (size != 0) {
    return size;
  }
  // Without a usable PayloadSize: the image size of the current format.
  GenApi::INodeMap* const remote = m_pRemotePort != nullptr ? m_pRemotePort->GetNodeMap() : nullptr;
  if (remote == nullptr) {
    return 0;
  }
  Guarded([&] {
    GenApi::CIntegerPtr width(remote->GetNode("Width"));
    GenApi::CIntegerPtr height(remote->GetNode("Height"));
    GenApi::CEnumerationPtr format(remote->GetNode("PixelFormat"));
    if (GenApi::IsReadable(width) && GenApi::IsReadable(height) && GenApi::IsReadable(format)) {
      const int64_t w = width->GetValue();
      const int64_t h = height->GetValue();
      const int64_t pf = format->GetIntValue();
      if (w > 0 && h > 0 && pf > 0 && pf <= static_cast<int64_t>(UINT32_MAX)) {
        size = ImageSizeBytes(static_cast<uint32_t>(pf), static_cast<uint64_t>(w), static_cast<uint64_t>(h));
      }
    }
  });
  return size;
}

void CCamera::ReadGeometry() {
  // Kept for buffers whose producer reports no geometry of its own (old chunk-mode producers).
  GenApi::INodeMap* const remote = m_pRemotePort != nullptr ? m_pRemotePort->GetNodeMap() : nullptr;
  if (remote == nullptr) {
    return;
  }
  Guarded([&] {
    GenApi::CIntegerPtr width(remote->GetNode("Width"));
    GenApi::CIntegerPtr height(remote->GetNode("Height"));
    GenApi::CEnumerationPtr format(remote->GetNode("PixelFormat"));
    const int64_t w = GenApi::IsReadable(width) ? width->GetValue() : 0;
    const int64_t h = GenApi::IsReadable(height) ? height->GetValue() : 0;
    const int64_t pf = GenApi::IsReadable(format) ? format->GetIntValue() : 0;
    StoreGeometry(w > 0 ? static_cast<uint64_t>(w) : 0, h > 0 ? static_cast<uint64_t>(h) : 0,
                  pf > 0 && pf <= static_cast<int64_t>(UINT32_MAX) ? static_cast<uint32_t>(pf) : m_pixelFormat.load());
  });
}

void CCamera::StoreGeometry(uint64_t width, uint64_t height, uint32_t pixelFormat) {
  m_width = width;
  m_height = height;
  m_pixelFormat = pixelFormat;
}

}  // namespace TALVIR
