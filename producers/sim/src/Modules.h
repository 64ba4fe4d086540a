#pragma once
// The GenTL modules: system, interface, device (with its remote port) and data stream.
#include "Camera.h"
#include "Objects.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <vector>

namespace TalvirSim {

class CInterface;
class CDevice;
class CDataStream;

class CSystem : public CBankPort, public CEventSource {
public:
  CSystem();
  void GetInfo(GenTL::TL_INFO_CMD command, const SInfoOut& out);
  uint32_t NumInterfaces();
  std::string InterfaceId(uint32_t index);
  void InterfaceInfo(const std::string& id, GenTL::INTERFACE_INFO_CMD command, const SInfoOut& out);
  std::shared_ptr<CInterface> OpenInterface(const std::string& id);
  bool UpdateInterfaceList();
  void InterfaceClosed(const std::string& id);
  void CloseAll();

  std::string PortId() override;
  std::string PortModuleName() override { return "TLSystem"; }

private:
  size_t IndexOf(const std::string& id);
  std::mutex m_mutex;
  std::map<std::string, std::weak_ptr<CInterface>> m_open;
};

class CInterface : public CBankPort, public CEventSource {
public:
  CInterface(std::shared_ptr<CSystem> system, size_t index);
  const std::string& Id() const { return m_id; }
  CSystem* Parent() const { return m_system.get(); }
  void GetInfo(GenTL::INTERFACE_INFO_CMD command, const SInfoOut& out);
  bool UpdateDeviceList(uint64_t timeoutMs);
  uint32_t NumDevices();
  std::string DeviceId(uint32_t index);
  void DeviceInfo(const std::string& id, GenTL::DEVICE_INFO_CMD command, const SInfoOut& out);
  std::shared_ptr<CDevice> OpenDevice(const std::string& id, GenTL::DEVICE_ACCESS_FLAGS flags);
  void DeviceClosed(const std::string& id);
  void Close();

  std::string PortId() override { return m_id; }
  std::string PortModuleName() override { return "TLInterface"; }

private:
  std::shared_ptr<CSimCamera> FindCamera(const std::string& id);
  std::vector<std::shared_ptr<CSimCamera>> Visible();
  std::shared_ptr<CSystem> m_system;
  size_t m_index;
  std::string m_id;
  std::mutex m_mutex;
  std::vector<std::shared_ptr<CSimCamera>> m_visible;
  std::map<std::string, std::weak_ptr<CDevice>> m_open;
};

// Standard device info of a camera, shared by IFGetDeviceInfo and DevGetInfo.
void CameraInfo(CSimCamera& camera, GenTL::DEVICE_INFO_CMD command, const SInfoOut& out);

// The remote device's port, handed out by DevGetPort. Events registered on it are the camera's.
class CRemotePort : public CPortModule {
public:
  CRemotePort(std::shared_ptr<CSimCamera> camera, bool writable) : m_camera(std::move(camera)), m_writable(writable) {}
  void ReadPort(uint64_t address, void* buffer, size_t length) override { m_camera->Read(address, buffer, length); }
  void WritePort(uint64_t address, const void* buffer, size_t length) override {
    m_camera->Write(address, buffer, length, m_writable);
  }
  const SDescription& Description() override { return m_camera->Description(); }
  std::string PortId() override { return m_camera->Config().id + "-Port"; }
  std::string PortModuleName() override { return "Device"; }
  std::string PortVendor() override { return m_camera->Config().vendor; }
  std::string PortModel() override { return m_camera->Config().model; }
  std::string PortVersion() override { return m_camera->Config().version; }
  bool PortLittleEndian() override { return false; }
  bool PortWritable() override { return m_writable; }
  CSimCamera& Camera() { return *m_camera; }

private:
  std::shared_ptr<CSimCamera> m_camera;
  bool m_writable;
};

// The GenTL device module. Events registered on it are the camera's (remote-device events, errors such as a loss).
class CDevice : public CBankPort {
public:
  CDevice(std::shared_ptr<CInterface> parent, std::shared_ptr<CSimCamera> camera, GenTL::DEVICE_ACCESS_FLAGS flags);
  void Init();  // registers the remote port's handle; needs shared_from_this
  CInterface* Parent() const { return m_interface.get(); }
  CSimCamera& Camera() { return *m_camera; }
  std::shared_ptr<CSimCamera> CameraPtr() { return m_camera; }
  void GetInfo(GenTL::DEVICE_INFO_CMD command, const SInfoOut& out);
  std::shared_ptr<CRemotePort> RemotePort() { return m_remote; }
  uint32_t NumStreams() const { return 1; }
  std::string StreamId(uint32_t index);
  std::shared_ptr<CDataStream> OpenStream(const std::string& id);
  void StreamClosed();
  void Close();

  void ReadPort(uint64_t address, void* buffer, size_t length) override;
  void WritePort(uint64_t address, const void* buffer, size_t length) override;
  std::string PortId() override { return m_camera->Config().id; }
  std::string PortModuleName() override { return "TLDevice"; }

private:
  std::shared_ptr<CInterface> m_interface;
  std::shared_ptr<CSimCamera> m_camera;
  std::shared_ptr<CRemotePort> m_remote;
  bool m_writable;
  std::mutex m_mutex;
  std::weak_ptr<CDataStream> m_stream;
  bool m_closed = false;
};

// ---- Data stream ----

struct CBuffer {
  enum class EState { Unqueued, Input, Filling, Output };

  void* base = nullptr;
  size_t size = 0;
  void* userPointer = nullptr;
  std::unique_ptr<uint8_t[]> owned;  // producer-allocated memory
  size_t index = 0;                   // announce order
  EState state = EState::Unqueued;
  // What the last fill left.
  bool newData = false;
  bool incomplete = false;
  bool dataLarger = false;
  SFrameJob job;
  size_t sizeFilled = 0;
  uint64_t packets[3] = {0, 0, 0};   // GigE: packets received, resent, missing
  std::vector<GenTL::SINGLE_CHUNK_DATA> chunks;
};

class CDataStream : public CBankPort, public CEventSource {
public:
  CDataStream(std::shared_ptr<CDevice> device, std::string id);
  ~CDataStream() override;
  void Init();  // connects the camera's wake-up; needs shared_from_this
  CDevice* Parent() const { return m_device.get(); }

  GenTL::BUFFER_HANDLE Announce(void* memory, size_t size, void* user);
  GenTL::BUFFER_HANDLE AllocAndAnnounce(size_t size, void* user);
  void Revoke(GenTL::BUFFER_HANDLE handle, void** memory, void** user);
  void Queue(GenTL::BUFFER_HANDLE handle);
  void Flush(GenTL::ACQ_QUEUE_TYPE operation);
  void Start(GenTL::ACQ_START_FLAGS flags, uint64_t count);
  void Stop(GenTL::ACQ_STOP_FLAGS flags);
  void GetInfo(GenTL::STREAM_INFO_CMD command, const SInfoOut& out);
  GenTL::BUFFER_HANDLE BufferId(uint32_t index);
  void BufferInfo(GenTL::BUFFER_HANDLE handle, GenTL::BUFFER_INFO_CMD command, const SInfoOut& out);
  void ChunkData(GenTL::BUFFER_HANDLE handle, GenTL::SINGLE_CHUNK_DATA* chunks, size_t* count);
  uint32_t NumParts(GenTL::BUFFER_HANDLE handle);
  void Close();

  // The new-buffer event's side.
  void WaitNewBuffer(void* buffer, size_t* size, uint64_t timeoutMs);
  void KillWait();
  void ShutdownWaits();
  void FlushOutput();
  size_t OutputCount();
  uint64_t Delivered();

  std::string PortId() override { return m_id; }
  std::string PortModuleName() override { return "TLDataStream"; }

protected:
  std::shared_ptr<CEvent> MakeEvent(GenTL::EVENT_TYPE type) override;

private:
  CBuffer* FindLocked(GenTL::BUFFER_HANDLE handle);
  void Wake();
  void Generate();
  bool InputSufficientLocked() const;
  void FillBuffer(CBuffer& buffer, const SFrameJob& job);
  void StopLocked(std::unique_lock<std::mutex>& lock, bool kill);

  std::shared_ptr<CDevice> m_device;
  std::shared_ptr<CSimCamera> m_camera;
  std::string m_id;

  std::mutex m_mutex;
  std::condition_variable m_generatorCv;
  std::condition_variable m_consumerCv;
  std::vector<std::unique_ptr<CBuffer>> m_buffers;
  std::unordered_map<void*, CBuffer*> m_byHandle;
  std::deque<CBuffer*> m_input;
  std::deque<CBuffer*> m_output;
  bool m_running = false;        // between DSStartAcquisition and DSStopAcquisition
  bool m_generatorDone = false;  // the generator ended by itself (count reached, device lost)
  bool m_stopRequested = false;
  bool m_killRequested = false;
  bool m_wakeFlag = false;
  bool m_generatorWaiting = false;
  int m_consumersWaiting = 0;
  size_t m_pendingKills = 0;
  bool m_waitShutdown = false;
  uint64_t m_toAcquire = 0;
  uint64_t m_acquiredThisRun = 0;
  uint64_t m_delivered = 0;
  uint64_t m_underruns = 0;
  uint64_t m_started = 0;
  std::thread m_generator;
  bool m_closed = false;
};

// EVENT_NEW_BUFFER of a data stream: waits on the stream's output queue.
class CNewBufferEvent : public CEvent {
public:
  explicit CNewBufferEvent(std::weak_ptr<CDataStream> stream) : CEvent(GenTL::EVENT_NEW_BUFFER), m_stream(std::move(stream)) {}
  void GetData(void* buffer, size_t* size, uint64_t timeoutMs) override;
  void GetInfo(GenTL::EVENT_INFO_CMD command, const SInfoOut& out) override;
  void Flush() override;
  void Kill() override;
  void Shutdown() override;

private:
  std::shared_ptr<CDataStream> Stream();
  std::weak_ptr<CDataStream> m_stream;
};

} // namespace TalvirSim
