// The ZIP container: all offsets are checked against the data before they are read; sizes come from the central
// directory, which is right even for entries written with a data descriptor (zero sizes in their local header).
#include "load/ZipContainer.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

#include <zlib.h>

#include <GCBase/GCException.h>

namespace GenApi {
namespace Engine {
namespace {

constexpr uint32_t kEndSignature = 0x06054b50;
constexpr uint32_t kZip64LocatorSignature = 0x07064b50;
constexpr uint32_t kCentralSignature = 0x02014b50;
constexpr uint32_t kLocalSignature = 0x04034b50;
constexpr size_t kEndSize = 22;
constexpr size_t kZip64LocatorSize = 20;
constexpr size_t kCentralSize = 46;
constexpr size_t kLocalSize = 30;
constexpr size_t kMaxComment = 0xFFFF;

class CBytes {
public:
  CBytes(const void* data, size_t size) : m_data(static_cast<const unsigned char*>(data)), m_size(size) {}
  size_t Size() const { return m_size; }
  const unsigned char* At(size_t offset) const { return m_data + offset; }
  bool Holds(size_t offset, size_t length) const { return offset <= m_size && length <= m_size - offset; }
  uint16_t U16(size_t offset) const { return static_cast<uint16_t>(m_data[offset] | (m_data[offset + 1] << 8)); }
  uint32_t U32(size_t offset) const {
    return static_cast<uint32_t>(U16(offset)) | (static_cast<uint32_t>(U16(offset + 2)) << 16);
  }

private:
  const unsigned char* m_data;
  size_t m_size;
};

// The end record is the last 22 bytes unless the archive carries a comment (up to 64 KiB) after it. The last
// signature wins and a comment cut short is tolerated, as minizip (the Linux reader) does: the comment is not read.
size_t FindEndRecord(const CBytes& bytes) {
  if (bytes.Size() < kEndSize) return SIZE_MAX;
  const size_t last = bytes.Size() - kEndSize;
  const size_t first = last > kMaxComment ? last - kMaxComment : 0;
  for (size_t at = last + 1; at-- > first;) {
    if (bytes.U32(at) == kEndSignature) return at;
  }
  return SIZE_MAX;
}

class CInflater {
public:
  CInflater() {
    if (inflateInit2(&m_stream, -MAX_WBITS) != Z_OK) throw RUNTIME_EXCEPTION("ZIP data: cannot start inflating");
  }
  ~CInflater() { inflateEnd(&m_stream); }
  CInflater(const CInflater&) = delete;
  CInflater& operator=(const CInflater&) = delete;
  z_stream& Stream() { return m_stream; }

private:
  z_stream m_stream{};
};

// Inflates exactly `expected` bytes from the compressed data; more output than that is refused as it comes, so an
// archive that lies about its size cannot make the output grow beyond it.
std::string Inflate(const unsigned char* data, size_t compressedSize, size_t expected, const std::string& name) {
  CInflater inflater;
  z_stream& stream = inflater.Stream();
  stream.next_in = const_cast<Bytef*>(data);
  stream.avail_in = static_cast<uInt>(compressedSize);
  std::string out;
  // Grown as output arrives, so that a header claiming a huge size over a few bytes allocates little.
  out.resize(std::min(expected, compressedSize * 4 + 65536));
  size_t produced = 0;
  for (;;) {
    if (produced == out.size() && out.size() < expected) {
      out.resize(out.size() > expected / 2 ? expected : out.size() * 2);
    }
    unsigned char spare = 0;  // room for one byte beyond the declared size, to notice an entry that is longer
    const bool full = produced == out.size();
    stream.next_out = full ? &spare : reinterpret_cast<Bytef*>(&out[produced]);
    stream.avail_out = full ? 1u : static_cast<uInt>(std::min<size_t>(out.size() - produced, UINT32_MAX));
    const uInt before = stream.avail_out;
    const int status = inflate(&stream, Z_NO_FLUSH);
    const size_t made = before - stream.avail_out;
    if (full && made > 0) {
      throw RUNTIME_EXCEPTION("ZIP data: file '%s' inflates beyond its declared %zu bytes", name.c_str(), expected);
    }
    produced += made;
    if (status == Z_STREAM_END) break;
    // Z_BUF_ERROR: no progress was possible, which with output room left means the input ran out.
    if (status == Z_BUF_ERROR) throw RUNTIME_EXCEPTION("ZIP data: file '%s' is truncated", name.c_str());
    if (status != Z_OK) {
      throw RUNTIME_EXCEPTION("ZIP data: file '%s' is corrupt (%s)", name.c_str(), stream.msg ? stream.msg : "inflate");
    }
  }
  if (produced != expected) {
    throw RUNTIME_EXCEPTION("ZIP data: file '%s' inflates to %zu bytes, not the declared %zu", name.c_str(), produced,
                            expected);
  }
  out.resize(produced);
  return out;
}

}  // namespace

std::string ExtractFirstZipEntry(const void* data, size_t size, size_t maxSize) {
  if (data == nullptr || size < kEndSize) throw RUNTIME_EXCEPTION("ZIP data too short (%zu bytes)", size);
  const CBytes bytes(data, size);
  const size_t end = FindEndRecord(bytes);
  if (end == SIZE_MAX) throw RUNTIME_EXCEPTION("ZIP data: no readable archive directory");
  if (end >= kZip64LocatorSize && bytes.U32(end - kZip64LocatorSize) == kZip64LocatorSignature) {
    throw RUNTIME_EXCEPTION("ZIP data: ZIP64 archives are not supported");
  }
  const uint16_t disk = bytes.U16(end + 4);
  const uint16_t directoryDisk = bytes.U16(end + 6);
  const uint16_t entriesHere = bytes.U16(end + 8);
  const uint16_t entries = bytes.U16(end + 10);
  const uint32_t directorySize = bytes.U32(end + 12);
  const uint32_t directoryOffset = bytes.U32(end + 16);
  if (entries == 0xFFFF || directorySize == 0xFFFFFFFF || directoryOffset == 0xFFFFFFFF) {
    throw RUNTIME_EXCEPTION("ZIP data: ZIP64 archives are not supported");
  }
  if (disk != 0 || directoryDisk != 0 || entriesHere != entries) {
    throw RUNTIME_EXCEPTION("ZIP data: archives spread over several disks are not supported");
  }
  if (entries == 0) throw RUNTIME_EXCEPTION("ZIP data: the archive holds no file");
  // Data before the archive (a self-extracting stub) shifts every offset by the same amount.
  if (static_cast<uint64_t>(directoryOffset) + directorySize > end) {
    throw RUNTIME_EXCEPTION("ZIP data: the archive directory lies beyond its end record");
  }
  const size_t shift = end - directoryOffset - directorySize;
  const size_t central = shift + directoryOffset;
  if (!bytes.Holds(central, kCentralSize) || bytes.U32(central) != kCentralSignature) {
    throw RUNTIME_EXCEPTION("ZIP data: no readable archive directory");
  }
  const uint16_t flags = bytes.U16(central + 8);
  const uint16_t method = bytes.U16(central + 10);
  const uint32_t crc = bytes.U32(central + 16);
  const uint32_t compressedSize = bytes.U32(central + 20);
  const uint32_t fileSize = bytes.U32(central + 24);
  const uint16_t nameLength = bytes.U16(central + 28);
  const uint32_t localOffset = bytes.U32(central + 42);
  if (!bytes.Holds(central + kCentralSize, nameLength)) throw RUNTIME_EXCEPTION("ZIP data: unreadable file header");
  const std::string name(reinterpret_cast<const char*>(bytes.At(central + kCentralSize)),
                         std::min<size_t>(nameLength, 255));
  if (compressedSize == 0xFFFFFFFF || fileSize == 0xFFFFFFFF || localOffset == 0xFFFFFFFF) {
    throw RUNTIME_EXCEPTION("ZIP data: file '%s' needs ZIP64, which is not supported", name.c_str());
  }
  if ((flags & 1u) != 0) throw RUNTIME_EXCEPTION("ZIP data: file '%s' is encrypted", name.c_str());
  if (method != 0 && method != 8) {
    throw RUNTIME_EXCEPTION("ZIP data: file '%s' uses compression method %u, not supported", name.c_str(),
                            static_cast<unsigned>(method));
  }
  if (fileSize > maxSize) {
    throw RUNTIME_EXCEPTION("ZIP data: file '%s' is too large (%llu bytes)", name.c_str(),
                            static_cast<unsigned long long>(fileSize));
  }
  const size_t local = shift + localOffset;
  if (!bytes.Holds(local, kLocalSize) || bytes.U32(local) != kLocalSignature) {
    throw RUNTIME_EXCEPTION("ZIP data: file '%s' has no local header", name.c_str());
  }
  if (bytes.U16(local + 8) != method) {
    throw RUNTIME_EXCEPTION("ZIP data: file '%s' has different methods in its headers", name.c_str());
  }
  const size_t start = local + kLocalSize + bytes.U16(local + 26) + bytes.U16(local + 28);
  if (!bytes.Holds(start, compressedSize)) throw RUNTIME_EXCEPTION("ZIP data: file '%s' is truncated", name.c_str());
  std::string text;
  if (method == 0) {
    if (compressedSize != fileSize) {
      throw RUNTIME_EXCEPTION("ZIP data: stored file '%s' has two different sizes", name.c_str());
    }
    text.assign(reinterpret_cast<const char*>(bytes.At(start)), fileSize);
  } else {
    text = Inflate(bytes.At(start), compressedSize, fileSize, name);
  }
  const uLong actual = crc32(0L, reinterpret_cast<const Bytef*>(text.data()), static_cast<uInt>(text.size()));
  if (static_cast<uint32_t>(actual) != crc) {
    throw RUNTIME_EXCEPTION("ZIP data: file '%s' fails its checksum", name.c_str());
  }
  return text;
}

}  // namespace Engine
}  // namespace GenApi
