#pragma once
// Archives for the ZIP tests, written here with zlib's raw deflate: one or more files, STORE or DEFLATE, with or
// without a data descriptor, a comment or data before the archive; the offsets of each part are returned so that
// tests can damage exactly one field.
#include <zlib.h>

#include <cstdint>
#include <string>
#include <vector>

namespace ZipTest {

struct CZipFile {
  std::string name = "camera.xml";
  std::string content;
  int method = 8;
  bool dataDescriptor = false;
  bool descriptorSignature = true;
};

struct CZipArchive {
  std::string bytes;
  std::vector<size_t> local;    // local header of each file
  std::vector<size_t> data;     // first data byte of each file
  std::vector<size_t> central;  // central directory entry of each file
  size_t end = 0;               // end record
};

inline void Put16(std::string& out, uint32_t value) {
  out.push_back(static_cast<char>(value & 0xFF));
  out.push_back(static_cast<char>((value >> 8) & 0xFF));
}
inline void Put32(std::string& out, uint32_t value) {
  Put16(out, value & 0xFFFF);
  Put16(out, value >> 16);
}
inline void Patch16(std::string& out, size_t at, uint32_t value) {
  out[at] = static_cast<char>(value & 0xFF);
  out[at + 1] = static_cast<char>((value >> 8) & 0xFF);
}
inline void Patch32(std::string& out, size_t at, uint32_t value) {
  Patch16(out, at, value & 0xFFFF);
  Patch16(out, at + 2, value >> 16);
}

inline std::string Deflate(const std::string& content, int level = Z_BEST_COMPRESSION) {
  z_stream stream{};
  deflateInit2(&stream, level, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
  std::string out(deflateBound(&stream, static_cast<uLong>(content.size())) + 16, '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data()));
  stream.avail_in = static_cast<uInt>(content.size());
  stream.next_out = reinterpret_cast<Bytef*>(&out[0]);
  stream.avail_out = static_cast<uInt>(out.size());
  deflate(&stream, Z_FINISH);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  return out;
}

inline uint32_t Crc(const std::string& content) {
  return static_cast<uint32_t>(
      crc32(0, reinterpret_cast<const Bytef*>(content.data()), static_cast<uInt>(content.size())));
}

inline CZipArchive MakeArchive(const std::vector<CZipFile>& files, const std::string& comment = std::string(),
                               const std::string& before = std::string()) {
  CZipArchive archive;
  std::string& zip = archive.bytes;
  zip = before;
  std::vector<std::string> packed;
  for (const CZipFile& file : files) {
    packed.push_back(file.method == 8 ? Deflate(file.content) : file.content);
    const uint32_t crc = Crc(file.content);
    const bool descriptor = file.dataDescriptor;
    archive.local.push_back(zip.size());
    Put32(zip, 0x04034b50);
    Put16(zip, 20);
    Put16(zip, descriptor ? 8 : 0);
    Put16(zip, static_cast<uint32_t>(file.method));
    Put16(zip, 0);
    Put16(zip, 0x21);
    Put32(zip, descriptor ? 0 : crc);
    Put32(zip, descriptor ? 0 : static_cast<uint32_t>(packed.back().size()));
    Put32(zip, descriptor ? 0 : static_cast<uint32_t>(file.content.size()));
    Put16(zip, static_cast<uint32_t>(file.name.size()));
    Put16(zip, 4);
    zip += file.name;
    zip += std::string("\xFE\xCA\x00\x00", 4);  // an empty extra field
    archive.data.push_back(zip.size());
    zip += packed.back();
    if (descriptor) {
      if (file.descriptorSignature) Put32(zip, 0x08074b50);
      Put32(zip, crc);
      Put32(zip, static_cast<uint32_t>(packed.back().size()));
      Put32(zip, static_cast<uint32_t>(file.content.size()));
    }
  }
  const size_t directory = zip.size();
  for (size_t i = 0; i < files.size(); ++i) {
    const CZipFile& file = files[i];
    archive.central.push_back(zip.size());
    Put32(zip, 0x02014b50);
    Put16(zip, 20);
    Put16(zip, 20);
    Put16(zip, file.dataDescriptor ? 8 : 0);
    Put16(zip, static_cast<uint32_t>(file.method));
    Put16(zip, 0);
    Put16(zip, 0x21);
    Put32(zip, Crc(file.content));
    Put32(zip, static_cast<uint32_t>(packed[i].size()));
    Put32(zip, static_cast<uint32_t>(file.content.size()));
    Put16(zip, static_cast<uint32_t>(file.name.size()));
    Put16(zip, 0);
    Put16(zip, 0);
    Put16(zip, 0);
    Put16(zip, 0);
    Put32(zip, 0);
    Put32(zip, static_cast<uint32_t>(archive.local[i] - before.size()));
    zip += file.name;
  }
  archive.end = zip.size();
  Put32(zip, 0x06054b50);
  Put16(zip, 0);
  Put16(zip, 0);
  Put16(zip, static_cast<uint32_t>(files.size()));
  Put16(zip, static_cast<uint32_t>(files.size()));
  Put32(zip, static_cast<uint32_t>(archive.end - directory));
  Put32(zip, static_cast<uint32_t>(directory - before.size()));
  Put16(zip, static_cast<uint32_t>(comment.size()));
  zip += comment;
  return archive;
}

inline CZipArchive MakeArchive(const CZipFile& file) { return MakeArchive(std::vector<CZipFile>{file}); }

}  // namespace ZipTest
