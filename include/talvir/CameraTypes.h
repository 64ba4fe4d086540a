#pragma once
// What an application passes to a camera and gets back from it besides images: access and grab modes, status
// codes, the notification handler, the device-event callback and the transport statistics.
#include <talvir/Export.h>

#include <cstddef>
#include <cstdint>

namespace TALVIR {

// ICamera::Open.
namespace AccessMode {
constexpr uint32_t Control = 0;    // control access: others may still read the device
constexpr uint32_t Exclusive = 1;  // nobody else may open the device
constexpr uint32_t ReadOnly = 2;   // features can be read, not written; enough to stream from some producers
}  // namespace AccessMode

// ICamera::StartGrabbing.
namespace GrabMode {
constexpr uint32_t Direct = 0;  // GetImage returns the next filled buffer, oldest first; nothing is dropped
constexpr uint32_t Newest = 1;  // a grab thread keeps only the newest image; GetImage returns it
constexpr uint32_t Fresh = 2;   // as Newest, but only an image that arrived after GetImage was called
}  // namespace GrabMode

// Status codes of ICamera operations: 0 is success, negative numbers name the step that failed.
namespace Status {
constexpr int32_t Ok = 0;
// Open
constexpr int32_t NoProducer = -1;        // the device record has no producer
constexpr int32_t OpenDeviceFailed = -2;  // the producer refused to open the device (busy, no access, gone)
constexpr int32_t NoRemotePort = -3;
constexpr int32_t StreamCountFailed = -4;
constexpr int32_t NoStream = -5;
constexpr int32_t StreamIDFailed = -6;
constexpr int32_t OpenStreamFailed = -7;
// StartGrabbing
constexpr int32_t AlreadyGrabbing = -1;
constexpr int32_t NotOpen = -2;
constexpr int32_t StreamHasNoProducer = -3;
constexpr int32_t StreamHasNoHandle = -4;
constexpr int32_t NoRemoteFeatures = -5;
constexpr int32_t NoPayloadSize = -6;
constexpr int32_t OutOfMemory = -7;
constexpr int32_t AnnounceFailed = -8;
constexpr int32_t RegisterEventFailed = -9;
constexpr int32_t StartStreamFailed = -10;
// GetImage
constexpr int32_t NotGrabbing = -1;       // no acquisition was started (or it was stopped), or a null out-pointer
constexpr int32_t AcquisitionEnded = -2;  // direct mode: the acquisition is being stopped
constexpr int32_t Timeout = -11;          // also: size-check mode 1 rejected the image
constexpr int32_t Aborted = -12;          // the acquisition was stopped while waiting
constexpr int32_t BufferTooSmall = -13;
constexpr int32_t ChunkParseFailed = -14;
constexpr int32_t ResourceExhausted = -15;
constexpr int32_t FetchFailed = -10;  // any other producer failure (for example a lost device)
// Image fill results: the fetch succeeded but the image could not be described completely. *out still holds the
// image, which the application must release like any other.
constexpr int32_t ImageInvalid = -21;             // no producer, stream or buffer to describe
constexpr int32_t ImageQueryFailed = -22;         // the producer refused a buffer information query
constexpr int32_t ImageIncomplete = -23;          // the producer delivered the buffer incomplete
constexpr int32_t ImageNoBase = -24;              // the buffer has no base address
constexpr int32_t ImageUnknownPixelFormat = -25;  // a pixel format the library does not know
constexpr int32_t ImageBufferTooSmall = -26;      // the buffer is smaller than its image
constexpr int32_t ImageNoGeometry = -27;          // a buffer without geometry and no width known to the camera
// SetEventCallback
constexpr int32_t Refused = -10;  // the new-buffer event of the data stream belongs to the acquisition
constexpr int32_t NotSupported = -1;
}  // namespace Status

// ICamera::SetEventCallback: which module raises the event.
namespace EventModule {
constexpr uint32_t Device = 1;        // the producer's device module
constexpr uint32_t RemoteDevice = 2;  // the camera itself
constexpr uint32_t DataStream = 3;
}  // namespace EventModule

// Notification codes passed to ICameraHandler::OnNotify.
namespace Notification {
constexpr uint32_t DeviceLost = 1001;  // the device went away; close the camera and open it again once it is back
}  // namespace Notification

// Receives camera notifications (ICamera::SetHandler). Implemented by the application; the camera does not own
// it, and it must outlive the camera or be removed with SetHandler(nullptr) first. Called on a library thread
// (for example the thread of the module that noticed a device loss), never under the camera's own lock.
class TALVIR_API ICameraHandler {
public:
  // code: a Notification code; arg1, arg2: details of the code (0 for DeviceLost).
  virtual void OnNotify(uint32_t code, uint64_t arg1, uint64_t arg2) = 0;

protected:
  ~ICameraHandler() = default;
};

// The start of the data handed to IEventCallback::OnEvent: the GigE Vision style event header that the camera sent,
// in host byte order, whatever the layout version of the camera. The bytes after the record are the event's data
// as delivered, except byte 24, which is set to 0.
struct SDeviceEventRecord {
  uint16_t eventId;        // the event's ID (for example 0x9001)
  uint16_t streamChannel;  // the stream channel the event refers to
  uint16_t blockId;        // low 16 bits of the block (frame) ID
  uint16_t reserved;
  uint64_t blockId64;      // the 64-bit block ID (layout version 2 only; else 0)
  uint32_t timestampHigh;  // the camera's time stamp, high and low 32 bits
  uint32_t timestampLow;
};
static_assert(sizeof(SDeviceEventRecord) == 24, "the event record is 24 bytes");

// Receives device events (ICamera::SetEventCallback). Implemented by the application; the camera does not own
// it. Called on a thread of the camera's own, one thread per registered callback; it must not remove itself
// (SetEventCallback with null) from inside OnEvent.
class TALVIR_API IEventCallback {
public:
  // data: the event buffer (4096 bytes), which starts with an SDeviceEventRecord; deliveredSize: how many bytes the
  // producer delivered. The buffer is reused for the next event: copy what must be kept.
  virtual void OnEvent(const uint8_t* data, size_t deliveredSize) = 0;

protected:
  ~IEventCallback() = default;
};

// ICamera::GetTransportInfo: transfer statistics since the last StartGrabbing (GigE Vision cameras; all zero for
// the other transports).
struct STransportInfo {
  uint64_t bytesTotal;  // bytes of every image fetched
  uint32_t timeouts;    // fetches that timed out
  uint32_t reserved;
  uint64_t frames;          // fetches that succeeded
  uint64_t packetCounter1;  // the producer's packet figures, summed over the fetched images
  uint64_t packetCounter2;
  uint64_t packetCounter3;
};
static_assert(sizeof(STransportInfo) == 48, "the transport information record is 48 bytes");

}  // namespace TALVIR
