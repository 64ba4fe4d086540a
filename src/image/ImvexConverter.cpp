#include "image/ImvexConverter.h"

#include "image/PixelFormats.h"

namespace TALVIR {

CImvexConverter::CImvexConverter(const std::string& moduleNameOrPath) : m_module(moduleNameOrPath) {
  m_convert = m_module.Symbol<ConvertFunction>(kExportName);
}

const CImvexConverter& CImvexConverter::ForProcess() {
  // A function-local static: loaded once, on first use, and the initialisation is thread-safe.
  static const CImvexConverter instance(kModuleName);
  return instance;
}

bool CImvexConverter::ConvertToBgr8(uint32_t sourceFormat, const uint8_t* source, uint32_t width, uint32_t height,
                                    uint8_t* destination) const {
  if (m_convert == nullptr) {
    return false;
  }
  return m_convert(sourceFormat, source, width, height, PixelFormat::BGR8, destination, 1) != 0;
}

}  // namespace TALVIR
