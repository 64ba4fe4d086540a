#include "platform/FileIO.h"

namespace TALVIR::Platform {

std::FILE* OpenFileForReading(const std::string& path) {
  std::FILE* opened = nullptr;
  if (fopen_s(&opened, path.c_str(), "rb") != 0) {
    return nullptr;
  }
  return opened;
}

}  // namespace TALVIR::Platform
