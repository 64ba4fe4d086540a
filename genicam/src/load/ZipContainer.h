#pragma once
// Our reader of ZIP archives held in memory, over zlib's raw inflate: the end record, the central directory's first
// entry, its local header, STORE or DEFLATE data (with or without a trailing data descriptor) and the CRC.
// Archives spread over several disks, encrypted entries and ZIP64 archives are refused.
#include <cstddef>
#include <string>

namespace GenApi {
namespace Engine {

// The first file of the archive. Throws a RuntimeException naming the problem when the data are not a readable
// archive, the entry is refused, fails its checksum, or would inflate beyond maxSize bytes; never allocates more
// than maxSize bytes for the output.
std::string ExtractFirstZipEntry(const void* data, size_t size, size_t maxSize);

}  // namespace Engine
}  // namespace GenApi
