#include "DescriptionScan.h"

#include <zlib.h>

#include <cstring>
#include <stdexcept>

#include "xml/XmlDocument.h"

namespace TALVIR::Tools {
namespace {
// Of a StructReg only the StructEntry children are features; an IntSwissKnife inside it is part of its address.
void ScanChildren(const GenApi::Engine::CXmlElement& parent, std::map<std::string, std::string>& elements,
                  bool entriesOnly = false) {
  for (GenApi::Engine::CXmlElement child = parent.FirstChild(); child; child = child.NextSibling()) {
    const std::string element(child.Name());
    if (entriesOnly && element != "StructEntry") continue;
    if (element == "Group" || element == "StructReg") {
      ScanChildren(child, elements, element == "StructReg");
      continue;
    }
    if (ValueKindOfElement(element) == EValueKind::None) continue;
    const std::string_view name = child.Attribute("Name");
    if (!name.empty()) elements.emplace(std::string(name), element);
  }
}

uint32_t LittleEndian32(const unsigned char* p) {
  return static_cast<uint32_t>(p[0]) | (static_cast<uint32_t>(p[1]) << 8) | (static_cast<uint32_t>(p[2]) << 16) |
         (static_cast<uint32_t>(p[3]) << 24);
}

uint16_t LittleEndian16(const unsigned char* p) { return static_cast<uint16_t>(p[0] | (p[1] << 8)); }
}  // namespace

std::map<std::string, std::string> ScanValueElements(const std::string& xml) {
  GenApi::Engine::CXmlDocument document;
  if (!document.Load(xml.data(), xml.size())) {
    const GenICam::Platform::CXmlParseError& error = document.Error();
    throw std::runtime_error("XML error at line " + std::to_string(error.line) + ", column " +
                             std::to_string(error.column) + ": " + error.message);
  }
  std::map<std::string, std::string> elements;
  ScanChildren(document.Root(), elements);
  return elements;
}

bool LooksLikeZip(const std::string& bytes) {
  return bytes.size() >= 4 && std::memcmp(bytes.data(), "PK\x03\x04", 4) == 0;
}

// Sizes and method come from the central directory when the archive has one (entries written with a trailing data
// descriptor have zero sizes in their local header), else from the first local file header.
std::string FirstFileOfZip(const std::string& zipBytes) {
  constexpr size_t kLocalHeaderSize = 30;
  constexpr size_t kCentralHeaderSize = 46;
  constexpr size_t kEndRecordSize = 22;
  if (!LooksLikeZip(zipBytes) || zipBytes.size() < kLocalHeaderSize) throw std::runtime_error("not a ZIP archive");
  const auto* bytes = reinterpret_cast<const unsigned char*>(zipBytes.data());

  uint16_t method = LittleEndian16(bytes + 8);
  uint32_t compressedSize = LittleEndian32(bytes + 18);
  uint32_t size = LittleEndian32(bytes + 22);
  size_t localHeader = 0;
  // The end record sits in the last 22 + 65535 (comment) bytes.
  for (size_t at = zipBytes.size() >= kEndRecordSize ? zipBytes.size() - kEndRecordSize : 0;; --at) {
    if (std::memcmp(bytes + at, "PK\x05\x06", 4) == 0) {
      const size_t directory = LittleEndian32(bytes + at + 16);
      if (directory <= zipBytes.size() - kCentralHeaderSize && std::memcmp(bytes + directory, "PK\x01\x02", 4) == 0) {
        method = LittleEndian16(bytes + directory + 10);
        compressedSize = LittleEndian32(bytes + directory + 20);
        size = LittleEndian32(bytes + directory + 24);
        localHeader = LittleEndian32(bytes + directory + 42);
      }
      break;
    }
    if (at == 0 || zipBytes.size() - at > kEndRecordSize + 0xFFFF) break;
  }
  if (localHeader > zipBytes.size() - kLocalHeaderSize || std::memcmp(bytes + localHeader, "PK\x03\x04", 4) != 0)
    throw std::runtime_error("ZIP directory points to no local file header");
  const size_t dataStart = localHeader + kLocalHeaderSize + LittleEndian16(bytes + localHeader + 26) +
                           LittleEndian16(bytes + localHeader + 28);
  if (dataStart > zipBytes.size() || compressedSize > zipBytes.size() - dataStart)
    throw std::runtime_error("ZIP entry reaches past the end of the archive");
  const char* data = zipBytes.data() + dataStart;
  if (method == 0) return std::string(data, compressedSize);
  if (method != 8) throw std::runtime_error("ZIP compression method " + std::to_string(method) + " is not supported");

  std::string out(size, '\0');
  z_stream stream{};
  if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) throw std::runtime_error("cannot start inflating");
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data));
  stream.avail_in = compressedSize;
  stream.next_out = reinterpret_cast<Bytef*>(out.data());
  stream.avail_out = size;
  const int status = inflate(&stream, Z_FINISH);
  inflateEnd(&stream);
  if (status != Z_STREAM_END || stream.total_out != size) throw std::runtime_error("corrupt DEFLATE data in ZIP entry");
  return out;
}
}  // namespace TALVIR::Tools
