#pragma once
// CCamera: one camera over a GenTL producer, for every transport; the base of the transport-specific cameras.
// It owns the ports over the device, the camera itself (remote device) and the first data stream, the buffers it
// announces, the grab object of a running acquisition, the device-event listeners and an online watchdog.
#include "camera/BufferMemory.h"
#include "image/ImgTool.h"

#include <talvir/ICamera.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace GenApi {
struct IPort;
}  // namespace GenApi

namespace TALVIR {

class CCameraInfo;
class CCameraLink;
class CCameraRegistry;
class CCti;
class CCtiPort;
class CEventListener;
class CGrab;

class CCamera : public ICamera {
public:
  // Takes a reference on `info` and enters the camera into `registry` (either may be null in tests).
  CCamera(CCameraInfo* info, CCameraRegistry* registry);
  CCamera(const CCamera&) = delete;
  CCamera& operator=(const CCamera&) = delete;

  // ICamera.
  int32_t Open(uint32_t accessMode) override;
  void Close() override;
  bool IsOpen() override;
  bool IsOnline() override;
  void SetBufferCount(uint64_t count) override;
  uint64_t GetBufferCount() override;
  int32_t StartGrabbing(uint32_t grabMode, uint64_t count) override;
  void StopGrabbing() override;
  bool IsGrabbing() override;
  int32_t GetImage(IImage** out, uint32_t timeoutMs) override;
  void DiscardOutputQueue() override;
  ICameraInfo* GetCameraInfo() override;
  IXml* GetSystemXml() override;
  IXml* GetInterfaceXml() override;
  IXml* GetDeviceXml() override;
  IXml* GetRemoteXml() override;
  IXml* GetStreamXml() override;
  STransportInfo GetTransportInfo() override;
  bool IsSerialOnline() override;
  int32_t OpenSerial(const char* portName, const char* protocol) override;
  int32_t SetEventCallback(uint32_t module, uint32_t eventType, IEventCallback* callback) override;
  void SetHandler(ICameraHandler* handler) override;
  void Release() override;

protected:
  ~CCamera() override;

public:
  // Operations the transport cameras override, in this order.
  virtual int32_t OpenDevice(uint32_t accessMode);
  virtual void CloseDevice();
  virtual int32_t StartAcquisition(uint64_t count);
  virtual void StopAcquisition();
  virtual void FlushBuffers();
  virtual uint64_t GetAnnounceCount();
  virtual int32_t WaitImage(IImage** out, uint64_t timeoutMs);
  virtual void RevokeBuffers();
  virtual int32_t CreateEventListener(uint32_t module, uint32_t eventType, IEventCallback* callback,
                                      std::unique_ptr<CEventListener>& listener);
  virtual void DestroyEventListener(std::unique_ptr<CEventListener> listener);
  virtual uint64_t ComputePayloadSize();
  virtual bool GetImageFillFlag();
  virtual void Notify(uint32_t code, uint64_t arg1, uint64_t arg2);
  // The watchdog works on any GenApi port: the camera's own ports over GenTL, or a serial link (Camera Link).
  virtual bool CheckOnline(GenApi::IPort* port);
  virtual uint64_t GetProbeAddress();
  virtual bool ProbeDevice(GenApi::IPort* port);
  virtual void SetOnline(bool online);

  // One fetch through WaitImage that takes part in the in-flight count, so that StopGrabbing waits for it:
  // direct-mode GetImage and the grab thread. -2 when no acquisition runs.
  int32_t FetchCounted(IImage** out, uint64_t timeoutMs);
  // Ends one wait for a new buffer (StopGrabbing, the grab object when it stops).
  void KillNewBufferEvent();
  // An image gives its buffer back: queued to the stream again while the acquisition it came from runs, else
  // nothing.
  void RequeueBuffer(void* bufferHandle, uint64_t acquisition);
  // Converts an image's pixels with the camera's conversion tool (one conversion at a time per camera).
  const uint8_t* ConvertPixels(const uint8_t* source, uint64_t width, uint64_t height, uint64_t pixelFormat);

  // What images need to describe themselves.
  CCti* Producer() const;
  uint32_t TLType() const;
  uint64_t StoredWidth() const { return m_width.load(); }
  uint64_t StoredHeight() const { return m_height.load(); }
  uint32_t StoredPixelFormat() const { return m_pixelFormat.load(); }
  uint64_t PayloadSize() const { return m_payloadSize.load(); }

  // Producer-specific buffer information (custom info 1..3, one bit each) that the producer answered as unknown
  // during the current acquisition; images of the acquisition do not ask for it again. Cleared at every start.
  uint32_t UnknownCustomInfo() const { return m_unknownCustomInfo.load(std::memory_order_relaxed); }
  void MarkCustomInfoUnknown(uint32_t bits) { m_unknownCustomInfo.fetch_or(bits, std::memory_order_relaxed); }

  // Image checks of WaitImage: 0 none, 1 reject an image whose size differs from the payload size, 2 zero-fill a
  // short image up to the payload size.
  void SetSizeCheckMode(uint32_t mode) { m_sizeCheckMode.store(mode); }
  uint32_t SizeCheckMode() const { return m_sizeCheckMode.load(); }

  // The connection state that the transport's device-lost reports clear (true from a successful open).
  bool ExchangeConnected(bool connected) { return m_connected.exchange(connected); }
  bool IsConnected() const { return m_connected.load(); }

  // The GenTL device access flags an access mode opens with: Control (0) control access, ReadOnly (2) read-only,
  // Exclusive (1) and every other value exclusive access.
  static int32_t AccessFlagsOf(uint32_t accessMode);

  // Tests replace the watchdog's millisecond clock.
  void SetClockForTesting(std::function<int64_t()> clock);

  // Ports for tests and the transport cameras; null when closed.
  CCtiPort* DevicePort();
  CCtiPort* RemotePort();
  CCtiPort* StreamPort();

protected:
  // The ports, for the operations that run under the camera's lock (open, start of acquisition).
  CCtiPort* DevicePortLocked() const { return m_pDevicePort.get(); }
  CCtiPort* RemotePortLocked() const { return m_pRemotePort.get(); }
  // The cached image geometry that the transport cameras fill at acquisition start.
  void StoreGeometry(uint64_t width, uint64_t height, uint32_t pixelFormat);
  void StorePartialImageMode(uint32_t mode) { m_partialImageMode.store(mode); }
  uint32_t PartialImageMode() const { return m_partialImageMode.load(); }
  CCameraInfo* Info() const { return m_pInfo; }
  int64_t NowMs() const;

  // Steps of opening and acquisition shared with the transport cameras, which run them under the camera's lock.
  // Opens the GenTL device of the info record as the device port: -1 no producer, -2 the producer refused.
  int32_t OpenGenTLDevice(uint32_t accessMode);
  // Opens the device's first data stream as the stream port: -4 no stream count, -5 no stream, -6 no stream ID,
  // -7 the stream does not open.
  int32_t OpenFirstStream();
  CCtiPort* StreamPortLocked() const { return m_pStreamPort.get(); }
  // Keeps an announced buffer with its memory in the buffer table.
  void RecordBuffer(void* handle, std::shared_ptr<CBufferMemory> memory);
  // The new-buffer event registered on the stream for this acquisition (null: none).
  void SetNewBufferEvent(void* event) { m_hNewBufferEvent = event; }
  void SetPayloadSize(uint64_t size) { m_payloadSize = size; }
  // Stops the data stream (the last step of stopping acquisition, after KillNewBufferEvent).
  void StopStream();
  // The read of the watchdog's probe through `port`: true while the value at the probe address stays the first
  // one seen. The caller serialises probes and makes sure the port stays alive.
  bool ReadProbeValue(GenApi::IPort& port);

private:
  struct SBuffer {
    void* handle;
    std::shared_ptr<CBufferMemory> memory;
  };
  using ListenerMap = std::unordered_map<uint64_t, std::unique_ptr<CEventListener>>;

  // Takes the listeners out under the lock and stops them outside it, so that a callback that uses the camera
  // cannot deadlock with the thread that stops it.
  void StopListeners();
  void ReadGeometry();
  // The memory of an announced buffer, and the number of the acquisition it belongs to.
  std::shared_ptr<CBufferMemory> MemoryOf(void* bufferHandle, uint64_t& acquisition);
  void FinishFetch();

  std::unique_ptr<CCtiPort> m_pDevicePort;
  std::unique_ptr<CCtiPort> m_pRemotePort;
  std::unique_ptr<CCtiPort> m_pStreamPort;
  std::unordered_map<void*, SBuffer> m_buffers;
  // Buffers the producer refused to revoke: their memory may still be written, so it stays until the stream closes.
  std::vector<std::shared_ptr<CBufferMemory>> m_unrevoked;
  // Written under m_lock; read without it by KillNewBufferEvent.
  std::atomic<void*> m_hNewBufferEvent{nullptr};
  CCameraInfo* m_pInfo;
  CCameraRegistry* m_pRegistry;
  std::mutex m_lock;
  std::condition_variable m_grabDrained;
  int32_t m_grabCount = 0;
  // Counts stopped acquisitions, so that an image of an earlier one never queues a buffer of a later one.
  uint64_t m_acquisition = 0;
  std::shared_ptr<CGrab> m_pGrab;
  CImgTool m_imgTool;
  std::mutex m_convertLock;
  std::atomic<uint64_t> m_bufferCount{8};
  ListenerMap m_eventListeners;
  std::atomic<ICameraHandler*> m_pHandler{nullptr};
  std::atomic<uint64_t> m_payloadSize{0};
  std::atomic<uint64_t> m_width{0};
  std::atomic<uint64_t> m_height{0};
  std::atomic<uint32_t> m_pixelFormat{0x01080001};
  std::atomic<uint32_t> m_partialImageMode{0};
  std::atomic<uint32_t> m_sizeCheckMode{0};
  std::atomic<uint32_t> m_unknownCustomInfo{0};
  std::atomic<bool> m_online{false};
  std::atomic<bool> m_connected{false};
  std::atomic<int64_t> m_lastCheckMs{0};
  std::atomic<uint64_t> m_probeFailures{0};
  bool m_probeSeen = false;
  uint32_t m_probeValue = 0;
  std::function<int64_t()> m_clock;
  std::shared_ptr<CCameraLink> m_link;
};

}  // namespace TALVIR
