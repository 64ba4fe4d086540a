#pragma once
// A Camera Link camera: the frame grabber's GenTL device and first data stream deliver the images and hold the
// image geometry; the camera's own registers are reached only over its serial link (CCLRemote), which the
// application opens on its own with OpenSerial. A camera made without a grabber (no producer) serves the serial link
// alone.
#include "camera/Camera.h"

#include <cstdint>
#include <memory>
#include <mutex>

namespace TALVIR {

class CCLRemote;

class CCLCamera final : public CCamera {
public:
  CCLCamera(CCameraInfo* info, CCameraRegistry* registry);

  // The grabber is reached through the producer only: the camera counts as online while the grabber is open.
  bool IsOnline() override { return IsOpen(); }
  // The camera's own features, over the serial link; null without one.
  IXml* GetRemoteXml() override;
  // The watchdog on the serial link; false without one.
  bool IsSerialOnline() override;
  // Opens the serial link on `portName` (a port ID of GetCLSerials, or custom item 29 of a record) with the protocol
  // driver's device ID `protocol` (one of GetCLProtocols, or custom item 28): 0, or -1 already open, -2 the link
  // or the description download failed, -3 the description is empty, -4 it does not load. A null argument closes
  // the link: 0, or -1 when there was none.
  int32_t OpenSerial(const char* portName, const char* protocol) override;

  // Opens the grabber's device and first data stream; the grabber's remote device is not opened, since the camera's
  // registers belong to the serial link. -1 no producer, -2 the device does not open, -4 to -7 the stream.
  int32_t OpenDevice(uint32_t accessMode) override;
  // Closes the grabber and the serial link.
  void CloseDevice() override;
  // Sizes the buffers from the grabber's Width, Height and PixelFormat (Mono8 without a PixelFormat), announces
  // GetAnnounceCount() buffers of that size plus a 1 MiB margin and starts the stream; then locks the transport
  // layer parameters of both halves. -2 not open, -3 / -4 the stream has no producer / handle, -5 the grabber has no
  // features, -6 no geometry or an announce failed, -7 the new-buffer event, -8 the stream does not start.
  int32_t StartAcquisition(uint64_t count) override;
  // Stops the stream, then unlocks the transport layer parameters of both halves.
  void StopAcquisition() override;
  // The buffer count set by the application, else AnnounceCountFor(the payload size of this start).
  uint64_t GetAnnounceCount() override;
  // 512 MiB of buffers: 0x20000000 / payload, at least 4 and at most 8000. `payloadSize` must not be 0.
  static uint64_t AnnounceCountFor(uint64_t payloadSize);
  // What each buffer gets beyond the computed payload size, for grabbers that deliver a little more.
  static constexpr uint64_t kBufferMargin = 0x100000;

  // The watchdog's probe on the serial link (the port must be the current link).
  bool ProbeDevice(GenApi::IPort* port) override;

protected:
  ~CCLCamera() override;

private:
  // Writes TLParamsLocked in the grabber's features and, with a serial link, in the camera's; failures are ignored.
  void LockTransportParameters(int64_t value);

  // Guards the serial link against OpenSerial, CloseDevice and the watchdog running at once. Taken after the
  // camera's own lock, never before it.
  std::mutex m_serialLock;
  std::unique_ptr<CCLRemote> m_pCLRemote;
};

// The registry's factory for Camera Link cameras (installed by the library front).
CCamera* MakeCLCamera(CCameraInfo* info, CCameraRegistry* registry);

}  // namespace TALVIR
