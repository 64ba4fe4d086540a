#pragma once
// The simulated cameras' test pattern, shared by the producer (which draws it) and by tests (which compute the
// pixels they expect). Header-only and free of any GenTL or library dependency.
//
// Every pixel format is described by the components it carries; component c of pixel (x, y) in frame f is
//
//     value(x, y, f, c) = (x + 3*y + 7*f + 11*c) & ((1 << bits) - 1)
//
// where bits is the component's significant bit count (8 for Mono8, 12 for Mono12 and Mono12p, 5 or 6 for RGB565p).
// Components: mono and Bayer formats have one (c = 0); RGB/BGR formats R = 0, G = 1, B = 2 whatever their order in
// memory; YUV/YCbCr formats Y = 0, U (Cb) = 1, V (Cr) = 2, where the chroma of a pixel that shares its chroma with a
// neighbour is taken at the first pixel of its group (x rounded down to a multiple of 2 for 4:2:2, of 4 for 4:1:1).
// Images are stored row after row without line padding; packed formats pack the whole image as one stream, so a
// pixel pair or bit group may straddle the end of a row.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace TalvirSim {

enum class ELayout {
  Unpacked,    // each component in its own 1- or 2-byte little-endian container, in `order`
  PackedPair,  // two pixels in three bytes: high bits of p0, low bits of both (p0 low nibble), high bits of p1
  BitStream,   // components packed LSB first into a little-endian bit stream
  Yuv422,      // two pixels share U and V; `order` is the byte order of a group, e.g. "YUYV" or "UYVY"
  Yuv411,      // four pixels share U and V; group "UYYVYY"
  Packed565    // one 16-bit little-endian word per pixel; `order` lists the components from bit 0 upwards
};

struct SPixelFormat {
  const char* name;
  uint32_t code;
  ELayout layout;
  uint32_t bits;       // significant bits per component (the green component of 565 formats has one more)
  uint32_t container;  // bytes per component for Unpacked
  const char* order;   // component letters in memory order: "M" mono/Bayer, "RGB", "BGR", "YUV" ...
};

// Every format the simulated cameras can offer.
inline const std::vector<SPixelFormat>& AllPixelFormats() {
  static const std::vector<SPixelFormat> formats = {
      {"Mono8", 0x01080001, ELayout::Unpacked, 8, 1, "M"},
      {"Mono8s", 0x01080002, ELayout::Unpacked, 8, 1, "M"},
      {"Mono10", 0x01100003, ELayout::Unpacked, 10, 2, "M"},
      {"Mono12", 0x01100005, ELayout::Unpacked, 12, 2, "M"},
      {"Mono14", 0x01100025, ELayout::Unpacked, 14, 2, "M"},
      {"Mono16", 0x01100007, ELayout::Unpacked, 16, 2, "M"},
      {"Mono10Packed", 0x010C0004, ELayout::PackedPair, 10, 0, "M"},
      {"Mono12Packed", 0x010C0006, ELayout::PackedPair, 12, 0, "M"},
      {"Mono10p", 0x010A0046, ELayout::BitStream, 10, 0, "M"},
      {"Mono12p", 0x010C0047, ELayout::BitStream, 12, 0, "M"},
      {"Mono14p", 0x010E0104, ELayout::BitStream, 14, 0, "M"},
      {"BayerGR8", 0x01080008, ELayout::Unpacked, 8, 1, "M"},
      {"BayerRG8", 0x01080009, ELayout::Unpacked, 8, 1, "M"},
      {"BayerGB8", 0x0108000A, ELayout::Unpacked, 8, 1, "M"},
      {"BayerBG8", 0x0108000B, ELayout::Unpacked, 8, 1, "M"},
      {"BayerGR10", 0x0110000C, ELayout::Unpacked, 10, 2, "M"},
      {"BayerRG10", 0x0110000D, ELayout::Unpacked, 10, 2, "M"},
      {"BayerGB10", 0x0110000E, ELayout::Unpacked, 10, 2, "M"},
      {"BayerBG10", 0x0110000F, ELayout::Unpacked, 10, 2, "M"},
      {"BayerGR12", 0x01100010, ELayout::Unpacked, 12, 2, "M"},
      {"BayerRG12", 0x01100011, ELayout::Unpacked, 12, 2, "M"},
      {"BayerGB12", 0x01100012, ELayout::Unpacked, 12, 2, "M"},
      {"BayerBG12", 0x01100013, ELayout::Unpacked, 12, 2, "M"},
      {"BayerGR14", 0x01100109, ELayout::Unpacked, 14, 2, "M"},
      {"BayerRG14", 0x0110010A, ELayout::Unpacked, 14, 2, "M"},
      {"BayerGB14", 0x0110010B, ELayout::Unpacked, 14, 2, "M"},
      {"BayerBG14", 0x0110010C, ELayout::Unpacked, 14, 2, "M"},
      {"BayerGR16", 0x0110002E, ELayout::Unpacked, 16, 2, "M"},
      {"BayerRG16", 0x0110002F, ELayout::Unpacked, 16, 2, "M"},
      {"BayerGB16", 0x01100030, ELayout::Unpacked, 16, 2, "M"},
      {"BayerBG16", 0x01100031, ELayout::Unpacked, 16, 2, "M"},
      {"BayerGR10Packed", 0x010C0026, ELayout::PackedPair, 10, 0, "M"},
      {"BayerRG10Packed", 0x010C0027, ELayout::PackedPair, 10, 0, "M"},
      {"BayerGB10Packed", 0x010C0028, ELayout::PackedPair, 10, 0, "M"},
      {"BayerBG10Packed", 0x010C0029, ELayout::PackedPair, 10, 0, "M"},
      {"BayerGR12Packed", 0x010C002A, ELayout::PackedPair, 12, 0, "M"},
      {"BayerRG12Packed", 0x010C002B, ELayout::PackedPair, 12, 0, "M"},
      {"BayerGB12Packed", 0x010C002C, ELayout::PackedPair, 12, 0, "M"},
      {"BayerBG12Packed", 0x010C002D, ELayout::PackedPair, 12, 0, "M"},
      {"BayerGR10p", 0x010A0056, ELayout::BitStream, 10, 0, "M"},
      {"BayerRG10p", 0x010A0058, ELayout::BitStream, 10, 0, "M"},
      {"BayerGB10p", 0x010A0054, ELayout::BitStream, 10, 0, "M"},
      {"BayerBG10p", 0x010A0052, ELayout::BitStream, 10, 0, "M"},
      {"BayerGR12p", 0x010C0057, ELayout::BitStream, 12, 0, "M"},
      {"BayerRG12p", 0x010C0059, ELayout::BitStream, 12, 0, "M"},
      {"BayerGB12p", 0x010C0055, ELayout::BitStream, 12, 0, "M"},
      {"BayerBG12p", 0x010C0053, ELayout::BitStream, 12, 0, "M"},
      {"BayerGR14p", 0x010E0105, ELayout::BitStream, 14, 0, "M"},
      {"BayerRG14p", 0x010E0106, ELayout::BitStream, 14, 0, "M"},
      {"BayerGB14p", 0x010E0107, ELayout::BitStream, 14, 0, "M"},
      {"BayerBG14p", 0x010E0108, ELayout::BitStream, 14, 0, "M"},
      {"RGB8", 0x02180014, ELayout::Unpacked, 8, 1, "RGB"},
      {"BGR8", 0x02180015, ELayout::Unpacked, 8, 1, "BGR"},
      {"RGB10", 0x02300018, ELayout::Unpacked, 10, 2, "RGB"},
      {"RGB12", 0x0230001A, ELayout::Unpacked, 12, 2, "RGB"},
      {"RGB10p", 0x021E005C, ELayout::BitStream, 10, 0, "RGB"},
      {"YUV422_8", 0x02100032, ELayout::Yuv422, 8, 1, "YUYV"},
      {"YUV422_8_UYVY", 0x0210001F, ELayout::Yuv422, 8, 1, "UYVY"},
      {"YUV411_8_UYYVYY", 0x020C001E, ELayout::Yuv411, 8, 1, "UYYVYY"},
      {"YUV8_UYV", 0x02180020, ELayout::Unpacked, 8, 1, "UYV"},
      {"YCbCr422_8", 0x0210003B, ELayout::Yuv422, 8, 1, "YUYV"},
      {"YCbCr709_422_8", 0x02100041, ELayout::Yuv422, 8, 1, "YUYV"},
      {"YCbCr709_8_CbYCr", 0x02180040, ELayout::Unpacked, 8, 1, "UYV"},
      {"RGB565p", 0x02100035, ELayout::Packed565, 5, 0, "RGB"},
      {"BGR565p", 0x02100036, ELayout::Packed565, 5, 0, "BGR"},
  };
  return formats;
}

inline const SPixelFormat* FindPixelFormat(uint32_t code) {
  for (const SPixelFormat& format : AllPixelFormats()) {
    if (format.code == code) {
      return &format;
    }
  }
  return nullptr;
}

inline const SPixelFormat* FindPixelFormat(const std::string& name) {
  for (const SPixelFormat& format : AllPixelFormats()) {
    if (name == format.name) {
      return &format;
    }
  }
  return nullptr;
}

// The component index (R/Y = 0, G/U = 1, B/V = 2, mono = 0) of a letter of SPixelFormat::order.
inline uint32_t ComponentIndex(char letter) {
  switch (letter) {
  case 'G':
  case 'U': return 1;
  case 'B':
  case 'V': return 2;
  default: return 0;
  }
}

// Significant bits of one component; the middle component of a 565 format has six.
inline uint32_t ComponentBits(const SPixelFormat& format, uint32_t component) {
  if (format.layout == ELayout::Packed565 && component == 1) {
    return 6;
  }
  return format.bits;
}

// The pattern itself.
inline uint32_t PatternValue(uint64_t x, uint64_t y, uint64_t frameId, uint32_t component, uint32_t bits) {
  const uint64_t mask = bits >= 32 ? 0xFFFFFFFFu : ((uint64_t{1} << bits) - 1);
  return static_cast<uint32_t>((x + 3 * y + 7 * frameId + 11 * uint64_t{component}) & mask);
}

// What a test expects for component `component` of pixel (x, y), with the chroma sharing of the format applied.
inline uint32_t ExpectedComponent(const SPixelFormat& format, uint64_t x, uint64_t y, uint64_t frameId,
                                  uint32_t component) {
  uint64_t sampleX = x;
  if (component != 0 && format.layout == ELayout::Yuv422) {
    sampleX = x & ~uint64_t{1};
  } else if (component != 0 && format.layout == ELayout::Yuv411) {
    sampleX = x & ~uint64_t{3};
  }
  return PatternValue(sampleX, y, frameId, component, ComponentBits(format, component));
}

// Bytes one image of this format and size occupies (no line padding, packed formats rounded up to whole bytes).
inline size_t ImageSize(const SPixelFormat& format, uint64_t width, uint64_t height) {
  const uint64_t pixels = width * height;
  switch (format.layout) {
  case ELayout::Unpacked:
    return static_cast<size_t>(pixels * std::char_traits<char>::length(format.order) * format.container);
  case ELayout::PackedPair: return static_cast<size_t>((pixels * 3 + 1) / 2);
  case ELayout::BitStream:
    return static_cast<size_t>((pixels * std::char_traits<char>::length(format.order) * format.bits + 7) / 8);
  case ELayout::Yuv422: return static_cast<size_t>(pixels * 2);
  case ELayout::Yuv411: return static_cast<size_t>((pixels * 3 + 1) / 2);
  case ELayout::Packed565: return static_cast<size_t>(pixels * 2);
  }
  return 0;
}

namespace Detail {

// Appends bit groups to a little-endian bit stream, LSB first.
class CBitWriter {
public:
  CBitWriter(uint8_t* out, size_t size) : m_out(out), m_size(size) {}
  void Put(uint32_t value, uint32_t bits) {
    m_accumulator |= uint64_t{value} << m_count;
    m_count += bits;
    while (m_count >= 8) {
      Emit(static_cast<uint8_t>(m_accumulator & 0xFF));
      m_accumulator >>= 8;
      m_count -= 8;
    }
  }
  void Flush() {
    if (m_count > 0) {
      Emit(static_cast<uint8_t>(m_accumulator & 0xFF));
      m_accumulator = 0;
      m_count = 0;
    }
  }

private:
  void Emit(uint8_t byte) {
    if (m_pos < m_size) {
      m_out[m_pos] = byte;
    }
    ++m_pos;
  }
  uint8_t* m_out;
  size_t m_size;
  size_t m_pos = 0;
  uint64_t m_accumulator = 0;
  uint32_t m_count = 0;
};

// 8-bit single-component images: every row is a run of consecutive values, so it is copied out of a ramp.
inline void FillMono8(uint64_t width, uint64_t height, uint64_t frameId, uint8_t* out, size_t size) {
  std::vector<uint8_t> ramp(static_cast<size_t>(width) + 256);
  for (size_t i = 0; i < ramp.size(); ++i) {
    ramp[i] = static_cast<uint8_t>(i & 0xFF);
  }
  for (uint64_t y = 0; y < height; ++y) {
    const size_t rowStart = static_cast<size_t>(y * width);
    if (rowStart >= size) {
      return;
    }
    const size_t count = std::min(static_cast<size_t>(width), size - rowStart);
    const size_t start = static_cast<size_t>(PatternValue(0, y, frameId, 0, 8));
    std::memcpy(out + rowStart, ramp.data() + start, count);
  }
}

}  // namespace Detail

namespace Detail {

// Any layout, pixel by pixel.
inline size_t FillGeneric(const SPixelFormat& format, uint64_t width, uint64_t height, uint64_t frameId, uint8_t* out,
                          size_t size) {
  const size_t needed = ImageSize(format, width, height);
  const size_t order = std::char_traits<char>::length(format.order);
  const size_t limit = std::min(size, needed);
  size_t pos = 0;
  auto put = [&](uint8_t byte) {
    if (pos < limit) {
      out[pos] = byte;
    }
    ++pos;
  };
  CBitWriter bits(out, limit);
  for (uint64_t y = 0; y < height && pos < limit; ++y) {
    for (uint64_t x = 0; x < width; ++x) {
      switch (format.layout) {
      case ELayout::Unpacked:
        for (size_t i = 0; i < order; ++i) {
          const uint32_t v = ExpectedComponent(format, x, y, frameId, ComponentIndex(format.order[i]));
          put(static_cast<uint8_t>(v & 0xFF));
          if (format.container == 2) {
            put(static_cast<uint8_t>(v >> 8));
          }
        }
        break;
      case ELayout::PackedPair: {
        // Pixels are handled in pairs over the flat pixel sequence; the second of a pair writes the group.
        const uint64_t index = y * width + x;
        if (index % 2 == 1 || index + 1 == width * height) {
          const uint64_t first = index % 2 == 1 ? index - 1 : index;
          const uint32_t low = format.bits - 8;
          const uint32_t p0 = ExpectedComponent(format, first % width, first / width, frameId, 0);
          const uint32_t p1 = index % 2 == 1 ? ExpectedComponent(format, index % width, index / width, frameId, 0) : 0;
          const uint32_t lowMask = (1u << low) - 1;
          put(static_cast<uint8_t>(p0 >> low));
          put(static_cast<uint8_t>((p0 & lowMask) | ((p1 & lowMask) << 4)));
          if (index % 2 == 1) {
            put(static_cast<uint8_t>(p1 >> low));
          }
        }
        break;
      }
      case ELayout::BitStream:
        for (size_t i = 0; i < order; ++i) {
          bits.Put(ExpectedComponent(format, x, y, frameId, ComponentIndex(format.order[i])), format.bits);
        }
        break;
      case ELayout::Yuv422:
        if (x % 2 == 0) {
          for (size_t i = 0; i < 4; ++i) {
            const char letter = format.order[i];
            const bool second = letter == 'Y' && i > 0 && std::char_traits<char>::find(format.order, i, 'Y');
            const uint64_t px = second ? x + 1 : x;
            put(static_cast<uint8_t>(px < width ? ExpectedComponent(format, px, y, frameId, ComponentIndex(letter))
                                                : 0));
          }
        }
        break;
      case ELayout::Yuv411:
        if (x % 4 == 0) {
          uint64_t nextY = x;
          for (size_t i = 0; i < 6; ++i) {
            const char letter = format.order[i];
            if (letter == 'Y') {
              put(static_cast<uint8_t>(nextY < width ? ExpectedComponent(format, nextY, y, frameId, 0) : 0));
              ++nextY;
            } else {
              put(static_cast<uint8_t>(ExpectedComponent(format, x, y, frameId, ComponentIndex(letter))));
            }
          }
        }
        break;
      case ELayout::Packed565: {
        uint32_t word = 0;
        uint32_t shift = 0;
        for (size_t i = 0; i < 3; ++i) {
          const uint32_t component = ComponentIndex(format.order[i]);
          word |= ExpectedComponent(format, x, y, frameId, component) << shift;
          shift += ComponentBits(format, component);
        }
        put(static_cast<uint8_t>(word & 0xFF));
        put(static_cast<uint8_t>(word >> 8));
        break;
      }
      }
    }
  }
  if (format.layout == ELayout::BitStream) {
    bits.Flush();
  }
  return needed;
}

inline bool IsLittleEndianHost() {
  const uint16_t probe = 1;
  uint8_t first = 0;
  std::memcpy(&first, &probe, 1);
  return first == 1;
}

// Layouts whose rows are whole components: every component of row y in frame f is the one of row 0 in frame 0 plus
// 3y + 7f (within its bit mask), so row 0 is drawn once and every row is that template plus a constant.
inline void FillByRowOffset(const SPixelFormat& format, uint64_t width, uint64_t height, uint64_t frameId, uint8_t* out,
                            size_t size) {
  const size_t rowBytes = ImageSize(format, width, 1);
  std::vector<uint8_t> row0(rowBytes);
  FillGeneric(format, width, 1, 0, row0.data(), rowBytes);
  const bool wide = format.layout == ELayout::Unpacked && format.container == 2;
  const uint32_t mask = format.bits >= 16 ? 0xFFFFu : ((1u << format.bits) - 1);
  for (uint64_t y = 0; y < height; ++y) {
    const size_t start = static_cast<size_t>(y * rowBytes);
    if (start >= size) {
      return;
    }
    const size_t count = std::min(rowBytes, size - start);
    const uint32_t offset = static_cast<uint32_t>((3 * y + 7 * frameId) & 0xFFFF);
    uint8_t* row = out + start;
    // Blocks of 16 bytes with a fixed inner trip count, which compilers turn into vector additions at -O2.
    size_t done = 0;
    if (!wide) {
      const uint8_t add = static_cast<uint8_t>(offset);
      for (; done + 16 <= count; done += 16) {
        for (size_t j = 0; j < 16; ++j) {
          row[done + j] = static_cast<uint8_t>(row0[done + j] + add);
        }
      }
      for (size_t i = done; i < count; ++i) {
        row[i] = static_cast<uint8_t>(row0[i] + add);
      }
    } else {
      if (IsLittleEndianHost()) {
        for (; done + 16 <= count; done += 16) {
          uint16_t lanes[8];
          std::memcpy(lanes, row0.data() + done, sizeof lanes);
          for (size_t j = 0; j < 8; ++j) {
            lanes[j] = static_cast<uint16_t>((lanes[j] + offset) & mask);
          }
          std::memcpy(row + done, lanes, sizeof lanes);
        }
      }
      for (size_t i = done; i + 1 < count; i += 2) {
        const uint32_t value = ((uint32_t{row0[i]} | uint32_t{row0[i + 1]} << 8) + offset) & mask;
        row[i] = static_cast<uint8_t>(value);
        row[i + 1] = static_cast<uint8_t>(value >> 8);
      }
      if (count % 2 == 1) {
        const uint32_t value = ((uint32_t{row0[count - 1]} | uint32_t{row0[count]} << 8) + offset) & mask;
        row[count - 1] = static_cast<uint8_t>(value);
      }
    }
  }
}

}  // namespace Detail

// Draws frame `frameId` into `out`; writes at most `size` bytes (a short buffer receives the image's beginning).
// Returns the number of bytes the whole image needs. 4:2:2 and 4:1:1 images need widths of multiples of 2 and 4.
inline size_t FillImage(const SPixelFormat& format, uint64_t width, uint64_t height, uint64_t frameId, uint8_t* out,
                        size_t size) {
  const size_t needed = ImageSize(format, width, height);
  const size_t order = std::char_traits<char>::length(format.order);
  if (format.layout == ELayout::Unpacked && format.container == 1 && order == 1) {
    Detail::FillMono8(width, height, frameId, out, size);
    return needed;
  }
  const bool rowAligned = format.layout == ELayout::Unpacked || (format.layout == ELayout::Yuv422 && width % 2 == 0) ||
                          (format.layout == ELayout::Yuv411 && width % 4 == 0);
  if (rowAligned && width > 0) {
    Detail::FillByRowOffset(format, width, height, frameId, out, std::min(size, needed));
    return needed;
  }
  return Detail::FillGeneric(format, width, height, frameId, out, size);
}

inline std::vector<uint8_t> MakeImage(const SPixelFormat& format, uint64_t width, uint64_t height, uint64_t frameId) {
  std::vector<uint8_t> image(ImageSize(format, width, height));
  FillImage(format, width, height, frameId, image.data(), image.size());
  return image;
}

}  // namespace TalvirSim
