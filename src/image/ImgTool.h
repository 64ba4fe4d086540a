#pragma once
// CImgTool: converts a camera's raw images to 8-bit mono (monochrome formats) or to BGR8 (colour formats) for
// display. Each camera owns one tool; image objects ask their camera's tool the first time the user wants
// converted pixels.
//
// Buffers. By default the tool keeps two cached output buffers, one for mono output (width x height bytes) and
// one for colour output (width x height x 3 bytes), reused by every conversion and reallocated only when the
// needed size changes. So all images of one camera share them: a later conversion overwrites what an earlier
// result pointer shows, and a size change leaves earlier pointers dangling. Callers that keep converted images
// must copy them. In fresh-buffer mode every conversion instead allocates a new buffer (new uint8_t[]) that the
// caller owns and gives back with FreeFreshBuffer().
//
// Failure asymmetry, kept on purpose: when a pixel routine fails (for example a Bayer image narrower than two
// pixels), a conversion into a cached buffer still returns that buffer, with stale or partial contents; only
// in fresh-buffer mode is the buffer freed and null returned.
//
// Mono8, Mono8s and BGR8 need no work: Convert returns the source pointer itself. Formats the tool does not
// know give null, as do a null source and a zero width or height. Allocation failure throws std::bad_alloc.
//
// Not thread-safe: conversions of one camera's images must not run concurrently (they share the buffers).
// Supported formats: see OutputFormatOf() and ImgTool.cpp; RGB10, RGB12 and RGB10p go through the maker's
// conversion library when it is installed and through our own 8-bit reduction otherwise.
#include <cstdint>

namespace TALVIR {

class CImvexConverter;

class CImgTool {
public:
  // converter: the maker's conversion library to use; null means the process-wide one (CImvexConverter::ForProcess,
  // loaded on the first conversion that needs it). Tests pass their own.
  explicit CImgTool(bool freshBuffers = false, const CImvexConverter* converter = nullptr);
  virtual ~CImgTool();
  CImgTool(const CImgTool&) = delete;
  CImgTool& operator=(const CImgTool&) = delete;

  // The converted image, the source itself, or null (see above). width and height are in pixels; the source
  // holds the image in pixelFormat, tightly packed (the size ImageSizeBytes() gives).
  const uint8_t* Convert(const uint8_t* source, uint32_t width, uint32_t height, uint32_t pixelFormat);

  bool FreshBuffers() const { return m_freshBuffers; }
  void SetFreshBuffers(bool fresh) { m_freshBuffers = fresh; }

  // Gives back a buffer returned in fresh-buffer mode (not the source pointer, not a cached buffer).
  static void FreeFreshBuffer(const uint8_t* buffer);

  // PixelFormat::Mono8 or PixelFormat::BGR8: what Convert produces for this input format; 0 when it does not
  // convert it.
  static uint32_t OutputFormatOf(uint32_t pixelFormat);

private:
  uint8_t* TakeBuffer(uint64_t size, bool colour);
  const uint8_t* Finish(uint8_t* buffer, bool succeeded) const;

  bool m_freshBuffers;
  uint8_t* m_monoBuffer = nullptr;
  uint64_t m_monoSize = 0;
  uint8_t* m_colourBuffer = nullptr;
  uint64_t m_colourSize = 0;
  const CImvexConverter* m_converter;
};

}  // namespace TALVIR
