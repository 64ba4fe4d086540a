#pragma once
// Reads the first file of a ZIP archive held in memory (STORE or DEFLATE).
#include <cstddef>
#include <string>

namespace GenApi {
namespace Engine {

// Throws a RuntimeException when the data are not a readable archive or the file is larger than maxSize.
std::string ExtractFirstFile(const void* data, size_t size, size_t maxSize = 256u * 1024u * 1024u);

}  // namespace Engine
}  // namespace GenApi
