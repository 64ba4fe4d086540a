// ZIP extraction through our own container reader, for builds without minizip (Windows).
#include "load/ZipContainer.h"
#include "load/ZipReader.h"

namespace GenApi {
namespace Engine {

std::string ExtractFirstFile(const void* data, size_t size, size_t maxSize) {
  return ExtractFirstZipEntry(data, size, maxSize);
}

}  // namespace Engine
}  // namespace GenApi
