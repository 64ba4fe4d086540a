#pragma once
// One grabbed image: a filled buffer of the camera's data stream, described by what the producer reported.
#include <talvir/Export.h>
#include <talvir/IChunk.h>

#include <cstdint>
#include <list>

namespace TALVIR {

// Handed out by ICamera::GetImage. The pixels stay in the camera's buffer, which the producer cannot fill again
// until the application calls Release(): an application that keeps many images starves the stream. Release every
// image before releasing its camera. Releasing while the camera grabs gives the buffer back to the stream;
// after StopGrabbing it gives nothing back (the buffers are gone with the acquisition).
// An image may be released on any thread. The order of the operations is part of the binary interface.
class TALVIR_API IImage {
public:
  virtual bool IsComplete() const = 0;           // false when the producer delivered the buffer incomplete
  virtual uint64_t GetPayloadType() const = 0;   // GenTL payload type (1 image, 4 chunk data, ...)
  virtual const uint8_t* GetBuffer() const = 0;  // start of the buffer (the image starts GetImageOffset() later)
  virtual uint64_t GetBufferSize() const = 0;    // size of the buffer in bytes
  virtual bool IsImagePresent() const = 0;
  virtual uint64_t GetFrameId() const = 0;
  virtual uint64_t GetImageOffset() const = 0;  // byte offset of the pixels in the buffer (0 with chunk data)
  virtual uint64_t GetWidth() const = 0;        // pixels
  virtual uint64_t GetHeight() const = 0;       // lines
  virtual uint64_t GetPixelFormat() const = 0;  // PFNC code
  virtual uint64_t GetOffsetX() const = 0;
  virtual uint64_t GetOffsetY() const = 0;
  virtual uint64_t GetPaddingX() const = 0;
  virtual uint64_t GetPaddingY() const = 0;
  // The chunks found in the buffer's chunk data; the chunk objects belong to the image.
  virtual std::list<IChunk*> GetChunks() const = 0;
  virtual uint64_t GetTimestamp() const = 0;  // in ticks of ICameraInfo::GetTimestampFrequency()
  // Producer-specific figures of the buffer (buffer information 1001, 1002, 1003; GigE producers: packet counts);
  // 0 when the producer has none.
  virtual uint64_t GetCustomInfo1() const = 0;
  virtual uint64_t GetCustomInfo2() const = 0;
  virtual uint64_t GetCustomInfo3() const = 0;
  // Bits of one stored unit and units per pixel of the pixel format: RGB8 is 8 and 3, Mono12Packed 12 and 1.
  virtual uint64_t GetPixelBits() const = 0;
  virtual uint64_t GetPixelFactor() const = 0;
  virtual uint64_t GetLinePitch() const = 0;  // GetPixelFactor() * GetPixelBits() * GetWidth() / 8
  // The image converted for display: Mono8 for monochrome formats, BGR8 for colour formats (see
  // ConvertedPixelFormat in talvir/Talvir.h); the buffer itself when it already is Mono8 or BGR8. Made on the first
  // call. Null for an incomplete image and for a format the library cannot convert. The converted pixels belong to
  // the camera and are shared by its images: the next conversion of another image of the same camera may
  // overwrite them. Not to be called for two images of one camera at the same time.
  virtual const uint8_t* GetConvertedImage() = 0;
  virtual void SetUserData(uint64_t value) = 0;  // a value of the application's own
  virtual uint64_t GetUserData() const = 0;
  // Gives the image back (and its buffer to the stream while the camera grabs); the pointer is invalid afterwards.
  virtual void Release() = 0;

protected:
  virtual ~IImage() = default;

public:
  virtual uint64_t GetFilledSize() const = 0;  // bytes the producer wrote into the buffer
};

}  // namespace TALVIR
