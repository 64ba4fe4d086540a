#include "ZipWriter.h"

#include <zlib.h>

#include <cstdint>
#include <stdexcept>

namespace TalvirSim {
namespace {

void Put16(std::vector<char>& out, uint32_t value) {
  out.push_back(static_cast<char>(value & 0xFF));
  out.push_back(static_cast<char>((value >> 8) & 0xFF));
}

void Put32(std::vector<char>& out, uint32_t value) {
  Put16(out, value & 0xFFFF);
  Put16(out, value >> 16);
}

std::vector<char> RawDeflate(const std::string& content) {
  z_stream stream{};
  // Negative window bits: a raw DEFLATE stream without the zlib header, as ZIP entries carry it.
  if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::runtime_error("deflateInit2 failed");
  }
  std::vector<char> out(deflateBound(&stream, static_cast<uLong>(content.size())));
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data()));
  stream.avail_in = static_cast<uInt>(content.size());
  stream.next_out = reinterpret_cast<Bytef*>(out.data());
  stream.avail_out = static_cast<uInt>(out.size());
  const int result = deflate(&stream, Z_FINISH);
  const size_t produced = out.size() - stream.avail_out;
  deflateEnd(&stream);
  if (result != Z_STREAM_END) {
    throw std::runtime_error("deflate failed");
  }
  out.resize(produced);
  return out;
}

}  // namespace

std::vector<char> ZipOneFile(const std::string& fileName, const std::string& content) {
  const uint32_t crc = static_cast<uint32_t>(
      crc32(0, reinterpret_cast<const Bytef*>(content.data()), static_cast<uInt>(content.size())));
  std::vector<char> packed = RawDeflate(content);
  uint32_t method = 8;  // DEFLATE
  if (packed.size() >= content.size()) {
    packed.assign(content.begin(), content.end());
    method = 0;  // STORE
  }
  const uint32_t dosTime = 0;
  const uint32_t dosDate = (46u << 9) | (1u << 5) | 1u;  // 2026-01-01

  std::vector<char> zip;
  // Local file header.
  Put32(zip, 0x04034b50);
  Put16(zip, 20);
  Put16(zip, 0);
  Put16(zip, method);
  Put16(zip, dosTime);
  Put16(zip, dosDate);
  Put32(zip, crc);
  Put32(zip, static_cast<uint32_t>(packed.size()));
  Put32(zip, static_cast<uint32_t>(content.size()));
  Put16(zip, static_cast<uint32_t>(fileName.size()));
  Put16(zip, 0);
  zip.insert(zip.end(), fileName.begin(), fileName.end());
  zip.insert(zip.end(), packed.begin(), packed.end());
  const uint32_t centralStart = static_cast<uint32_t>(zip.size());
  // Central directory entry.
  Put32(zip, 0x02014b50);
  Put16(zip, 20);
  Put16(zip, 20);
  Put16(zip, 0);
  Put16(zip, method);
  Put16(zip, dosTime);
  Put16(zip, dosDate);
  Put32(zip, crc);
  Put32(zip, static_cast<uint32_t>(packed.size()));
  Put32(zip, static_cast<uint32_t>(content.size()));
  Put16(zip, static_cast<uint32_t>(fileName.size()));
  Put16(zip, 0);
  Put16(zip, 0);
  Put16(zip, 0);
  Put16(zip, 0);
  Put32(zip, 0);
  Put32(zip, 0);  // offset of the local header
  zip.insert(zip.end(), fileName.begin(), fileName.end());
  const uint32_t centralSize = static_cast<uint32_t>(zip.size()) - centralStart;
  // End of central directory.
  Put32(zip, 0x06054b50);
  Put16(zip, 0);
  Put16(zip, 0);
  Put16(zip, 1);
  Put16(zip, 1);
  Put32(zip, centralSize);
  Put32(zip, centralStart);
  Put16(zip, 0);
  return zip;
}

}  // namespace TalvirSim
