#include "platform/FileIO.h"

namespace TALVIR::Platform {

std::FILE* OpenFileForReading(const std::string& path) { return std::fopen(path.c_str(), "rb"); }

}  // namespace TALVIR::Platform
