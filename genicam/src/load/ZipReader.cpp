// ZIP extraction through minizip, with file callbacks that serve a memory block instead of a file.
#include "load/ZipReader.h"

#include <cstring>

#include <unzip.h>

#include <GCBase/GCException.h>

namespace GenApi {
namespace Engine {

namespace {

struct CMemoryStream {
  const unsigned char* data;
  ZPOS64_T size;
  ZPOS64_T position;
};

voidpf ZCALLBACK OpenStream(voidpf opaque, const void*, int) { return opaque; }

uLong ZCALLBACK ReadStream(voidpf, voidpf stream, void* buffer, uLong size) {
  auto* memory = static_cast<CMemoryStream*>(stream);
  const ZPOS64_T left = memory->size - memory->position;
  const uLong count = static_cast<uLong>(size < left ? size : left);
  if (count > 0) std::memcpy(buffer, memory->data + memory->position, count);
  memory->position += count;
  return count;
}

uLong ZCALLBACK WriteStream(voidpf, voidpf, const void*, uLong) { return 0; }

ZPOS64_T ZCALLBACK TellStream(voidpf, voidpf stream) { return static_cast<CMemoryStream*>(stream)->position; }

long ZCALLBACK SeekStream(voidpf, voidpf stream, ZPOS64_T offset, int origin) {
  auto* memory = static_cast<CMemoryStream*>(stream);
  ZPOS64_T base = 0;
  switch (origin) {
  case ZLIB_FILEFUNC_SEEK_CUR: base = memory->position; break;
  case ZLIB_FILEFUNC_SEEK_END: base = memory->size; break;
  case ZLIB_FILEFUNC_SEEK_SET: base = 0; break;
  default: return -1;
  }
  if (offset > memory->size || base > memory->size - offset) return -1;
  memory->position = base + offset;
  return 0;
}

int ZCALLBACK CloseStream(voidpf, voidpf) { return 0; }
int ZCALLBACK ErrorStream(voidpf, voidpf) { return 0; }

class CArchive {
public:
  CArchive(CMemoryStream& stream) {
    zlib_filefunc64_def functions;
    functions.zopen64_file = OpenStream;
    functions.zread_file = ReadStream;
    functions.zwrite_file = WriteStream;
    functions.ztell64_file = TellStream;
    functions.zseek64_file = SeekStream;
    functions.zclose_file = CloseStream;
    functions.zerror_file = ErrorStream;
    functions.opaque = &stream;
    m_file = unzOpen2_64("memory", &functions);
  }
  ~CArchive() {
    if (m_file != nullptr) unzClose(m_file);
  }
  CArchive(const CArchive&) = delete;
  CArchive& operator=(const CArchive&) = delete;
  unzFile Get() const { return m_file; }

private:
  unzFile m_file = nullptr;
};

}  // namespace

std::string ExtractFirstFile(const void* data, size_t size, size_t maxSize) {
  if (data == nullptr || size < 22) throw RUNTIME_EXCEPTION("ZIP data too short (%zu bytes)", size);
  CMemoryStream stream{static_cast<const unsigned char*>(data), size, 0};
  CArchive archive(stream);
  if (archive.Get() == nullptr) throw RUNTIME_EXCEPTION("ZIP data: no readable archive directory");
  if (unzGoToFirstFile(archive.Get()) != UNZ_OK) throw RUNTIME_EXCEPTION("ZIP data: the archive holds no file");
  unz_file_info64 info;
  char name[256];
  if (unzGetCurrentFileInfo64(archive.Get(), &info, name, sizeof name, nullptr, 0, nullptr, 0) != UNZ_OK) {
    throw RUNTIME_EXCEPTION("ZIP data: unreadable file header");
  }
  if (info.uncompressed_size > maxSize) {
    throw RUNTIME_EXCEPTION("ZIP data: file '%s' is too large (%llu bytes)", name,
                            static_cast<unsigned long long>(info.uncompressed_size));
  }
  if (unzOpenCurrentFile(archive.Get()) != UNZ_OK) {
    throw RUNTIME_EXCEPTION("ZIP data: cannot open file '%s' (unsupported compression?)", name);
  }
  std::string text;
  text.reserve(static_cast<size_t>(info.uncompressed_size));
  char buffer[65536];
  for (;;) {
    const int count = unzReadCurrentFile(archive.Get(), buffer, sizeof buffer);
    if (count < 0) {
      unzCloseCurrentFile(archive.Get());
      throw RUNTIME_EXCEPTION("ZIP data: file '%s' is corrupt (error %d)", name, count);
    }
    if (count == 0) break;
    if (text.size() + static_cast<size_t>(count) > maxSize) {
      unzCloseCurrentFile(archive.Get());
      throw RUNTIME_EXCEPTION("ZIP data: file '%s' inflates beyond %zu bytes", name, maxSize);
    }
    text.append(buffer, static_cast<size_t>(count));
  }
  // A CRC mismatch is reported when the file is closed.
  if (unzCloseCurrentFile(archive.Get()) != UNZ_OK) {
    throw RUNTIME_EXCEPTION("ZIP data: file '%s' fails its checksum", name);
  }
  return text;
}

}  // namespace Engine
}  // namespace GenApi
