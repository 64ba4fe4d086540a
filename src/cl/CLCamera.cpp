#include "cl/CLCamera.h"

#include "camera/CtiPort.h"
#include "cl/CLGrabberGeometry.h"
#include "cl/CLRemote.h"
#include "gentl/CameraInfo.h"
#include "gentl/Cti.h"

#include <GenApi/GenApi.h>

#include <algorithm>
#include <new>

namespace TALVIR {
namespace {

// Buffers take at most this much memory together when the application did not set a count.
constexpr uint64_t kAnnounceBudget = 0x20000000;
constexpr uint64_t kFewestBuffers = 4;
constexpr uint64_t kMostBuffers = 8000;
// What producers take as "acquire until stopped"; applications say so with 0.
constexpr uint64_t kUnlimitedImages = UINT64_MAX;

// Result codes of StartAcquisition.
constexpr int32_t kNotOpen = -2;
constexpr int32_t kStreamHasNoProducer = -3;
constexpr int32_t kStreamHasNoHandle = -4;
constexpr int32_t kNoGrabberFeatures = -5;
constexpr int32_t kNoGeometry = -6;
constexpr int32_t kAnnounceFailed = -6;
constexpr int32_t kRegisterEventFailed = -7;
constexpr int32_t kStartFailed = -8;

// Sets TLParamsLocked in one node map; a missing node, a node of another type or a refusal changes nothing.
void WriteTLParamsLocked(GenApi::INodeMap* features, int64_t value) {
  if (features == nullptr) {
    return;
  }
  try {
    GenApi::CIntegerPtr locked(features->GetNode("TLParamsLocked"));
    if (locked.IsValid()) {
      locked->SetValue(value, true);
    }
  } catch (const GenICam::GenericException&) {
    // The lock only guards the geometry against changes while streaming: acquisition goes on without it.
  }
}

}  // namespace

CCLCamera::CCLCamera(CCameraInfo* info, CCameraRegistry* registry) : CCamera(info, registry) {}

CCLCamera::~CCLCamera() {
  // Stopped and closed here, while this class's steps still run (the base part's destructor runs only its own):
  // the stream is stopped, both halves are unlocked, and the serial link goes with the grabber.
  Close();
  const std::lock_guard<std::mutex> lock(m_serialLock);
  m_pCLRemote.reset();
}

IXml* CCLCamera::GetRemoteXml() {
  const std::lock_guard<std::mutex> lock(m_serialLock);
  return m_pCLRemote.get();
}

// ---- Serial link ----

int32_t CCLCamera::OpenSerial(const char* portName, const char* protocol) {
  if (portName == nullptr || protocol == nullptr) {
    std::unique_ptr<CCLRemote> closing;
    {
      const std::lock_guard<std::mutex> lock(m_serialLock);
      if (m_pCLRemote == nullptr) {
        return -1;
      }
      closing = std::move(m_pCLRemote);
    }
    closing.reset();
    SetOnline(false);
    return 0;
  }
  const std::lock_guard<std::mutex> lock(m_serialLock);
  if (m_pCLRemote != nullptr) {
    return -1;
  }
  auto remote = std::make_unique<CCLRemote>();
  const int result = remote->Open(portName, protocol);
  SetOnline(result == 0);
  if (result != 0) {
    // A node map once loaded cannot be loaded again: a failed link is not kept for another try.
    return result;
  }
  m_pCLRemote = std::move(remote);
  return 0;
}

bool CCLCamera::IsSerialOnline() {
  GenApi::IPort* link = nullptr;
  {
    const std::lock_guard<std::mutex> lock(m_serialLock);
    link = m_pCLRemote.get();
  }
  // Without a link there is nothing online, whatever the grabber's state.
  return link != nullptr && CheckOnline(link);
}

bool CCLCamera::ProbeDevice(GenApi::IPort* port) {
  const std::lock_guard<std::mutex> lock(m_serialLock);
  // A link closed (or replaced) since the watchdog took it has nothing to probe.
  if (port == nullptr || m_pCLRemote == nullptr || port != static_cast<GenApi::IPort*>(m_pCLRemote.get())) {
    return false;
  }
  return ReadProbeValue(*port);
}

// ---- Grabber ----

int32_t CCLCamera::OpenDevice(uint32_t accessMode) {
  if (Producer() == nullptr) {
    return -1;
  }
  if (DevicePortLocked() != nullptr) {
    CloseDevice();
  }
  const int32_t opened = OpenGenTLDevice(accessMode);
  if (opened != 0) {
    return opened;
  }
  return OpenFirstStream();
}

void CCLCamera::CloseDevice() {
  CCamera::CloseDevice();
  std::unique_ptr<CCLRemote> closing;
  {
    const std::lock_guard<std::mutex> lock(m_serialLock);
    closing = std::move(m_pCLRemote);
  }
}

int32_t CCLCamera::StartAcquisition(uint64_t count) {
  CCtiPort* const device = DevicePortLocked();
  CCtiPort* const streamPort = StreamPortLocked();
  if (device == nullptr || streamPort == nullptr) {
    return kNotOpen;
  }
  CCti* const producer = streamPort->Producer();
  if (producer == nullptr) {
    return kStreamHasNoProducer;
  }
  void* const stream = streamPort->Handle();
  if (stream == nullptr) {
    return kStreamHasNoHandle;
  }
  GenApi::INodeMap* const grabber = device->GetNodeMap();
  if (grabber == nullptr) {
    return kNoGrabberFeatures;
  }
  SGrabberGeometry geometry;
  if (!ReadGrabberGeometry(*grabber, geometry)) {
    return kNoGeometry;
  }
  const uint64_t payloadSize = geometry.PayloadSize();
  if (payloadSize == 0 || payloadSize > SIZE_MAX - kBufferMargin) {
    return kNoGeometry;
  }
  SetPayloadSize(payloadSize);
  StoreGeometry(geometry.width, geometry.height, geometry.pixelFormat);

  const CGenTLFunctionTable& api = producer->Api();
  const uint64_t announceCount = GetAnnounceCount();
  for (uint64_t i = 0; i < announceCount; ++i) {
    // The margin covers grabbers that deliver a little more than the geometry says (trailers, padding).
    std::shared_ptr<CBufferMemory> memory = CBufferMemory::Allocate(static_cast<size_t>(payloadSize + kBufferMargin));
    void* handle = nullptr;
    if (memory == nullptr || api.DSAnnounceBuffer == nullptr ||
        api.DSAnnounceBuffer(stream, memory->Data(), memory->Size(), reinterpret_cast<void*>(i), &handle) !=
            GenTL::GC_ERR_SUCCESS) {
      return kAnnounceFailed;
    }
    RecordBuffer(handle, std::move(memory));
    if (api.DSQueueBuffer != nullptr) {
      api.DSQueueBuffer(stream, handle);
    }
  }

  void* event = nullptr;
  if (api.GCRegisterEvent == nullptr ||
      api.GCRegisterEvent(stream, GenTL::EVENT_NEW_BUFFER, &event) != GenTL::GC_ERR_SUCCESS || event == nullptr) {
    return kRegisterEventFailed;
  }
  SetNewBufferEvent(event);
  if (api.DSStartAcquisition == nullptr ||
      api.DSStartAcquisition(stream, GenTL::ACQ_START_FLAGS_DEFAULT, count == 0 ? kUnlimitedImages : count) !=
          GenTL::GC_ERR_SUCCESS) {
    // The failed start's clean-up (StartGrabbing's flush) unregisters the event and revokes the buffers.
    return kStartFailed;
  }
  LockTransportParameters(1);
  return 0;
}

void CCLCamera::StopAcquisition() {
  if (DevicePortLocked() == nullptr || StreamPortLocked() == nullptr) {
    return;
  }
  KillNewBufferEvent();
  StopStream();
  LockTransportParameters(0);
}

void CCLCamera::LockTransportParameters(int64_t value) {
  CCtiPort* const device = DevicePortLocked();
  WriteTLParamsLocked(device != nullptr ? device->GetNodeMap() : nullptr, value);
  const std::lock_guard<std::mutex> lock(m_serialLock);
  if (m_pCLRemote != nullptr) {
    WriteTLParamsLocked(m_pCLRemote->GetNodeMap(), value);
  }
}

uint64_t CCLCamera::GetAnnounceCount() {
  const uint64_t count = GetBufferCount();
  return count != 0 ? count : AnnounceCountFor(PayloadSize());
}

uint64_t CCLCamera::AnnounceCountFor(uint64_t payloadSize) {
  if (payloadSize == 0) {
    return kFewestBuffers;
  }
  return std::min(std::max(kAnnounceBudget / payloadSize, kFewestBuffers), kMostBuffers);
}

CCamera* MakeCLCamera(CCameraInfo* info, CCameraRegistry* registry) {
  return new (std::nothrow) CCLCamera(info, registry);
}

}  // namespace TALVIR
