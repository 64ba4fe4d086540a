#pragma once
// One camera: open it, configure it through its features, stream images from it.
//
//   TALVIR::ICamera* camera = TALVIR::CreateCameraBySN("SIM00001");
//   if (camera != nullptr && camera->Open(TALVIR::AccessMode::Control) == TALVIR::Status::Ok) {
//     GenApi::INodeMap* features = camera->GetRemoteXml()->GetNodeMap();
//     camera->StartGrabbing(TALVIR::GrabMode::Direct, 0);
//     TALVIR::IImage* image = nullptr;
//     if (camera->GetImage(&image, 1000) == TALVIR::Status::Ok) { ... }
//     if (image != nullptr) image->Release();
//     camera->StopGrabbing();
//   }
//   if (camera != nullptr) camera->Release();
#include <talvir/CameraTypes.h>
#include <talvir/Export.h>
#include <talvir/ICameraInfo.h>
#include <talvir/IImage.h>
#include <talvir/IXml.h>

#include <cstdint>

namespace TALVIR {

// Made by CreateCamera / CreateCameraBySN; one object per device, handed out again for the same device. Given back
// with Release() (which closes it), never deleted by the application; UnInit releases every camera still alive.
// Operations may be called from several threads; GetImage from several threads at once is allowed.
// The order of the operations is part of the binary interface.
class TALVIR_API ICamera {
public:
  // Opens the device (AccessMode), its camera port and its first data stream; closes first if already open.
  // Status::Ok or an Open code of talvir/CameraTypes.h.
  virtual int32_t Open(uint32_t accessMode) = 0;
  // Stops grabbing and closes the device. Images still held must not be used afterwards.
  virtual void Close() = 0;
  virtual bool IsOpen() = 0;
  // Whether the device still answers. Asks the device at most every 3 seconds; a device that fails three probes
  // in a row is offline until the camera is opened again.
  virtual bool IsOnline() = 0;
  // Number of buffers to announce at the next StartGrabbing (default 8); 0: the producer's minimum, at least 8.
  virtual void SetBufferCount(uint64_t count) = 0;
  virtual uint64_t GetBufferCount() = 0;
  // Starts acquisition (GrabMode) of `count` images (0: until stopped). Fixes the payload size and announces the
  // buffers. Status::AlreadyGrabbing while grabbing, else Status::Ok or a StartGrabbing code.
  virtual int32_t StartGrabbing(uint32_t grabMode, uint64_t count) = 0;
  // Stops acquisition and takes every buffer back from the producer; waits for GetImage calls in flight to return.
  // Images still held stay readable until released; releasing them gives nothing back.
  virtual void StopGrabbing() = 0;
  virtual bool IsGrabbing() = 0;
  // The next image (GrabMode), waiting at most `timeoutMs` (0: only an image already there). Sets *out to null
  // first. Status::Ok with *out set; a GetImage code; or an image fill code with *out set all the same.
  virtual int32_t GetImage(IImage** out, uint32_t timeoutMs) = 0;
  // Gives every filled buffer not yet fetched back to the producer (dropping its image).
  virtual void DiscardOutputQueue() = 0;
  // The device record the camera was made from; owned by the camera (do not Destroy it).
  virtual ICameraInfo* GetCameraInfo() = 0;
  // Features of the producer's system, interface, device and data stream modules, and of the camera itself
  // (GetRemoteXml). Owned by the camera; null when the module is not open or has no description.
  virtual IXml* GetSystemXml() = 0;
  virtual IXml* GetInterfaceXml() = 0;
  virtual IXml* GetDeviceXml() = 0;
  virtual IXml* GetRemoteXml() = 0;
  virtual IXml* GetStreamXml() = 0;
  // Transfer statistics since the last StartGrabbing (GigE Vision cameras; all zero for the others).
  virtual STransportInfo GetTransportInfo() = 0;
  // Camera Link cameras: whether the serial link answers, and opening it. Status::NotSupported elsewhere.
  virtual bool IsSerialOnline() = 0;
  virtual int32_t OpenSerial(const char* portName, const char* protocol) = 0;
  // Registers (callback set) or removes (callback null) the callback for a GenTL event type of a module
  // (EventModule). Registering returns Status::Ok or a negative code; removing returns -1 also when it removed the
  // callback (old applications rely on that); the new-buffer event of the data stream is refused with
  // Status::Refused.
  virtual int32_t SetEventCallback(uint32_t module, uint32_t eventType, IEventCallback* callback) = 0;
  // The handler of notifications such as Notification::DeviceLost; null removes it.
  virtual void SetHandler(ICameraHandler* handler) = 0;
  // Closes the camera and frees it; the pointer is invalid afterwards. Release its images first.
  virtual void Release() = 0;

protected:
  virtual ~ICamera() = default;
};

}  // namespace TALVIR
