#include "camera/Camera.h"

#include "camera/CameraLink.h"
#include "camera/CameraRegistry.h"
#include "camera/CtiPort.h"
#include "camera/EventListener.h"
#include "camera/Grab.h"
#include "gentl/CameraInfo.h"
#include "gentl/Cti.h"
#include "platform/Clock.h"

#include <GenApi/GenApi.h>

#include <array>
#include <cstdio>
#include <thread>

namespace TALVIR {
namespace {

// The watchdog asks the device at most this often, and retries a failed probe only after this long a silence.
constexpr int64_t kProbeIntervalMs = 3000;
constexpr int64_t kRetryAfterMs = 10000;
constexpr uint64_t kOfflineAfterFailures = 3;
constexpr uint64_t kMaxProbeFailures = 4;
constexpr std::chrono::milliseconds kProbeRetryPause{50};

constexpr size_t kStreamIDSize = 256;

}  // namespace

CCamera::CCamera(CCameraInfo* info, CCameraRegistry* registry)
    : m_pInfo(info), m_pRegistry(registry), m_link(std::make_shared<CCameraLink>(this)) {
  m_buffers.reserve(8);
  if (m_pInfo != nullptr) {
    m_pInfo->AddRef();
  }
  if (m_pRegistry != nullptr) {
    m_pRegistry->AddCamera(this);
  }
  m_lastCheckMs = NowMs();
}

CCamera::~CCamera() {
  StopGrabbing();
  StopListeners();
  // Images still held by the application lose their way back before the ports go.
  m_link->Detach();
  {
    std::lock_guard<std::mutex> lock(m_lock);
    CloseDevice();
  }
  if (m_pRegistry != nullptr) {
    m_pRegistry->RemoveCamera(this);
  }
  if (m_pInfo != nullptr) {
    m_pInfo->ReleaseRef();
  }
}

void CCamera::Release() {
  // Out of the registry before destruction starts, so that a device-lost report on another thread never finds a
  // camera that is half destroyed.
  if (m_pRegistry != nullptr) {
    m_pRegistry->RemoveCamera(this);
  }
  // Stopped and closed while the object is still whole: the grab thread and the listeners call the transport
  // camera's own operations, which are gone once its destructor has run.
  Close();
  delete this;
}

int32_t CCamera::AccessFlagsOf(uint32_t accessMode) {
  switch (accessMode) {
  case AccessMode::Control: return GenTL::DEVICE_ACCESS_CONTROL;
  case AccessMode::ReadOnly: return GenTL::DEVICE_ACCESS_READONLY;
  case AccessMode::Exclusive:
  default: return GenTL::DEVICE_ACCESS_EXCLUSIVE;
  }
}

int64_t CCamera::NowMs() const { return m_clock ? m_clock() : static_cast<int64_t>(Platform::MonotonicMilliseconds()); }

void CCamera::SetClockForTesting(std::function<int64_t()> clock) {
  m_clock = std::move(clock);
  m_lastCheckMs = NowMs();
}

CCti* CCamera::Producer() const { return m_pInfo != nullptr ? m_pInfo->Producer() : nullptr; }

uint32_t CCamera::TLType() const { return m_pInfo != nullptr ? m_pInfo->GetTLType() : 0; }

// ---- Open and close ----

int32_t CCamera::Open(uint32_t accessMode) {
  if (IsOpen()) {
    Close();
  }
  int32_t result = 0;
  {
    std::lock_guard<std::mutex> lock(m_lock);
    result = OpenDevice(accessMode);
    if (result != 0) {
      CloseDevice();
    }
  }
  SetOnline(result == 0);
  if (result == 0) {
    m_connected = true;
  }
  return result;
}

void CCamera::Close() {
  StopGrabbing();
  StopListeners();
  std::lock_guard<std::mutex> lock(m_lock);
  CloseDevice();
}

bool CCamera::IsOpen() {
  std::lock_guard<std::mutex> lock(m_lock);
  return m_pDevicePort != nullptr;
}

int32_t CCamera::OpenDevice(uint32_t accessMode) {
  const int32_t opened = OpenGenTLDevice(accessMode);
  if (opened != Status::Ok) {
    return opened;
  }
  CCti* const producer = Producer();
  void* remote = nullptr;
  if (producer == nullptr || producer->Api().DevGetPort == nullptr ||
      producer->Api().DevGetPort(m_pDevicePort->Handle(), &remote) != GenTL::GC_ERR_SUCCESS) {
    return Status::NoRemotePort;
  }
  m_pRemotePort = std::make_unique<CCtiPort>(producer, remote);
  const int32_t streamOpened = OpenFirstStream();
  if (streamOpened != Status::Ok) {
    return streamOpened;
  }
  SetOnline(true);
  return Status::Ok;
}

int32_t CCamera::OpenGenTLDevice(uint32_t accessMode) {
  CCti* const producer = Producer();
  if (producer == nullptr) {
    return Status::NoProducer;
  }
  if (m_pDevicePort != nullptr) {
    CloseDevice();
  }
  const CGenTLFunctionTable& api = producer->Api();
  IGenTLModule* const interfaceModule = m_pInfo->Interface();
  if (interfaceModule == nullptr || interfaceModule->Handle() == nullptr || api.IFOpenDevice == nullptr) {
    return Status::OpenDeviceFailed;
  }
  const auto openAs = [&](const char* deviceID) {
    void* handle = nullptr;
    const bool opened = api.IFOpenDevice(interfaceModule->Handle(), deviceID, AccessFlagsOf(accessMode), &handle) ==
                        GenTL::GC_ERR_SUCCESS;
    return opened ? handle : nullptr;
  };
  void* device = openAs(m_pInfo->GetDeviceID());
  // A producer that does not know the library's own form of the ID (GigE records) knows its own.
  if (device == nullptr && !m_pInfo->m_producerDeviceID.empty() && m_pInfo->m_producerDeviceID != m_pInfo->m_deviceID) {
    device = openAs(m_pInfo->m_producerDeviceID.c_str());
  }
  if (device == nullptr) {
    return Status::OpenDeviceFailed;
  }
  m_pDevicePort = std::make_unique<CCtiPort>(producer, device);
  return Status::Ok;
}

int32_t CCamera::OpenFirstStream() {
  CCti* const producer = Producer();
  void* const device = m_pDevicePort != nullptr ? m_pDevicePort->Handle() : nullptr;
  if (producer == nullptr || device == nullptr) {
    return Status::StreamCountFailed;
  }
  const CGenTLFunctionTable& api = producer->Api();
  uint32_t streams = 0;
  if (api.DevGetNumDataStreams == nullptr || api.DevGetNumDataStreams(device, &streams) != GenTL::GC_ERR_SUCCESS) {
    return Status::StreamCountFailed;
  }
  if (streams == 0) {
    return Status::NoStream;
  }
  std::array<char, kStreamIDSize> streamID{};
  size_t size = streamID.size();
  if (api.DevGetDataStreamID == nullptr ||
      api.DevGetDataStreamID(device, 0, streamID.data(), &size) != GenTL::GC_ERR_SUCCESS) {
    return Status::StreamIDFailed;
  }
  streamID.back() = '\0';
  void* stream = nullptr;
  if (api.DevOpenDataStream == nullptr ||
      api.DevOpenDataStream(device, streamID.data(), &stream) != GenTL::GC_ERR_SUCCESS || stream == nullptr) {
    return Status::OpenStreamFailed;
  }
  m_pStreamPort = std::make_unique<CCtiPort>(producer, stream);
  return Status::Ok;
}

void CCamera::CloseDevice() {
  CCti* const producer = Producer();
  if (producer == nullptr) {
    return;
  }
  for (auto& entry : m_eventListeners) {
    DestroyEventListener(std::move(entry.second));
  }
  m_eventListeners.clear();
  const CGenTLFunctionTable& api = producer->Api();
  if (m_pStreamPort != nullptr) {
    if (m_pStreamPort->Handle() != nullptr && api.DSClose != nullptr) {
      api.DSClose(m_pStreamPort->Handle());
    }
    m_pStreamPort.reset();
  }
  // The producer has let go of every buffer with the stream: memory it would not give back can go now.
  m_unrevoked.clear();
  // The remote port belongs to the device and closes with it.
  m_pRemotePort.reset();
  if (m_pDevicePort != nullptr) {
    if (m_pDevicePort->Handle() != nullptr && api.DevClose != nullptr) {
      api.DevClose(m_pDevicePort->Handle());
    }
    m_pDevicePort.reset();
  }
  SetOnline(false);
}

// ---- Simple slots ----

void CCamera::SetBufferCount(uint64_t count) { m_bufferCount = count; }

uint64_t CCamera::GetBufferCount() { return m_bufferCount; }

ICameraInfo* CCamera::GetCameraInfo() { return m_pInfo; }

IXml* CCamera::GetSystemXml() {
  CCti* const producer = Producer();
  IGenTLModule* const system = producer != nullptr ? producer->SystemModule() : nullptr;
  return system != nullptr ? system->Xml() : nullptr;
}

IXml* CCamera::GetInterfaceXml() {
  IGenTLModule* const interfaceModule = m_pInfo != nullptr ? m_pInfo->Interface() : nullptr;
  return interfaceModule != nullptr ? interfaceModule->Xml() : nullptr;
}

IXml* CCamera::GetDeviceXml() {
  std::lock_guard<std::mutex> lock(m_lock);
  return m_pDevicePort.get();
}

IXml* CCamera::GetRemoteXml() {
  std::lock_guard<std::mutex> lock(m_lock);
  return m_pRemotePort.get();
}

IXml* CCamera::GetStreamXml() {
  std::lock_guard<std::mutex> lock(m_lock);
  return m_pStreamPort.get();
}

CCtiPort* CCamera::DevicePort() {
  std::lock_guard<std::mutex> lock(m_lock);
  return m_pDevicePort.get();
}

CCtiPort* CCamera::RemotePort() {
  std::lock_guard<std::mutex> lock(m_lock);
  return m_pRemotePort.get();
}

CCtiPort* CCamera::StreamPort() {
  std::lock_guard<std::mutex> lock(m_lock);
  return m_pStreamPort.get();
}

STransportInfo CCamera::GetTransportInfo() { return STransportInfo{}; }

bool CCamera::IsSerialOnline() { return false; }

int32_t CCamera::OpenSerial(const char* /*portName*/, const char* /*protocol*/) { return Status::NotSupported; }

void CCamera::SetHandler(ICameraHandler* handler) { m_pHandler = handler; }

bool CCamera::GetImageFillFlag() { return true; }

void CCamera::Notify(uint32_t code, uint64_t arg1, uint64_t arg2) {
  ICameraHandler* const handler = m_pHandler.load();
  if (handler != nullptr) {
    handler->OnNotify(code, arg1, arg2);
  }
}

const uint8_t* CCamera::ConvertPixels(const uint8_t* source, uint64_t width, uint64_t height, uint64_t pixelFormat) {
  if (width > UINT32_MAX || height > UINT32_MAX || pixelFormat > UINT32_MAX) {
    return nullptr;
  }
  std::lock_guard<std::mutex> lock(m_convertLock);
  return m_imgTool.Convert(source, static_cast<uint32_t>(width), static_cast<uint32_t>(height),
                           static_cast<uint32_t>(pixelFormat));
}

// ---- Device events ----

int32_t CCamera::SetEventCallback(uint32_t module, uint32_t eventType, IEventCallback* callback) {
  if (module == EventModule::DataStream && eventType == GenTL::EVENT_NEW_BUFFER) {
    return Status::Refused;
  }
  const uint64_t key = (static_cast<uint64_t>(module) << 32) | eventType;
  std::unique_ptr<CEventListener> removed;
  int32_t result = -1;
  {
    std::lock_guard<std::mutex> lock(m_lock);
    const auto found = m_eventListeners.find(key);
    if (found != m_eventListeners.end() && callback == nullptr) {
      removed = std::move(found->second);
      m_eventListeners.erase(found);
    } else if (found == m_eventListeners.end() && callback != nullptr) {
      std::unique_ptr<CEventListener> listener;
      result = CreateEventListener(module, eventType, callback, listener);
      if (result == 0) {
        m_eventListeners.emplace(key, std::move(listener));
      }
    }
  }
  // Stopped outside the lock: its callback may be using the camera at this moment.
  if (removed != nullptr) {
    DestroyEventListener(std::move(removed));
  }
  return result;
}

int32_t CCamera::CreateEventListener(uint32_t module, uint32_t eventType, IEventCallback* callback,
                                     std::unique_ptr<CEventListener>& listener) {
  CCtiPort* port = nullptr;
  switch (module) {
  case EventModule::Device: port = m_pDevicePort.get(); break;
  case EventModule::RemoteDevice: port = m_pRemotePort.get(); break;
  case EventModule::DataStream: port = m_pStreamPort.get(); break;
  default: return -1;
  }
  if (port == nullptr) {
    return -2;
  }
  // Byte 0 of the camera's register 0 tells the layout of its event data.
  uint32_t layoutVersion = 1;
  if (m_pRemotePort != nullptr) {
    try {
      std::array<uint8_t, 4> bytes{};
      m_pRemotePort->Read(bytes.data(), 0, static_cast<int64_t>(bytes.size()));
      layoutVersion = bytes[0];
    } catch (const GenICam::GenericException&) {
      // A camera whose register 0 cannot be read is taken to use the original layout.
    }
  }
  listener = std::make_unique<CEventListener>(port->Producer(), port->Handle(), eventType, callback, layoutVersion);
  const int32_t result = listener->Start();
  if (result != 0) {
    listener.reset();
  }
  return result;
}

void CCamera::DestroyEventListener(std::unique_ptr<CEventListener> listener) {
  if (listener != nullptr) {
    listener->Stop();
  }
}

void CCamera::StopListeners() {
  ListenerMap listeners;
  {
    std::lock_guard<std::mutex> lock(m_lock);
    listeners.swap(m_eventListeners);
  }
  for (auto& entry : listeners) {
    DestroyEventListener(std::move(entry.second));
  }
}

// ---- Online watchdog ----

bool CCamera::IsOnline() {
  CCtiPort* const port = RemotePort();
  return CheckOnline(port);
}

bool CCamera::CheckOnline(GenApi::IPort* port) {
  if (!m_online.load()) {
    return false;
  }
  const int64_t elapsed = NowMs() - m_lastCheckMs.load();
  if (elapsed < kProbeIntervalMs) {
    return m_online.load();
  }
  if (ProbeDevice(port)) {
    m_probeFailures = 0;
  } else {
    ++m_probeFailures;
    // After a long silence one failure may be a passing fault: try again a few times before giving up.
    if (elapsed >= kRetryAfterMs) {
      while (m_probeFailures.load() < kMaxProbeFailures) {
        std::this_thread::sleep_for(kProbeRetryPause);
        if (ProbeDevice(port)) {
          m_probeFailures = 0;
          break;
        }
        ++m_probeFailures;
      }
    }
    if (m_probeFailures.load() >= kOfflineAfterFailures) {
      SetOnline(false);
    }
  }
  m_lastCheckMs = NowMs();
  return m_online.load();
}

uint64_t CCamera::GetProbeAddress() { return 0; }

bool CCamera::ProbeDevice(GenApi::IPort* port) {
  std::lock_guard<std::mutex> lock(m_lock);
  // A port that is no longer one of the camera's (closed meanwhile) has nothing to probe.
  const auto own = [port](const std::unique_ptr<CCtiPort>& held) {
    return held != nullptr && port == static_cast<GenApi::IPort*>(held.get());
  };
  if (port == nullptr || !(own(m_pRemotePort) || own(m_pDevicePort) || own(m_pStreamPort))) {
    return false;
  }
  return ReadProbeValue(*port);
}

bool CCamera::ReadProbeValue(GenApi::IPort& port) {
  try {
    uint32_t value = 0;
    port.Read(&value, static_cast<int64_t>(GetProbeAddress()), sizeof value);
    if (!m_probeSeen) {
      m_probeSeen = true;
      m_probeValue = value;
    }
    return value == m_probeValue;
  } catch (const GenICam::GenericException& error) {
    std::fprintf(stderr, "Talvir: device probe failed: %s\n", error.GetDescription());
    return false;
  }
}

void CCamera::SetOnline(bool online) {
  m_online = online;
  m_probeFailures = 0;
  m_lastCheckMs = NowMs();
}

}  // namespace TALVIR
