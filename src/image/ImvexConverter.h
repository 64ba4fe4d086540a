#pragma once
// The maker's conversion library ("ImvexImgConvert.dll", libImvexImgConvert.so here), used for RGB10, RGB12 and
// RGB10p. It is optional: when it is not installed, IsAvailable() is false and the caller converts by itself.
//
// Its one export, Imvex_Img_Convert, takes (source pixel format, source, width, height, destination pixel
// format, destination, one-byte flag) and returns a one-byte boolean; we always ask for BGR8 with the flag set.
#include "platform/DynamicModule.h"

#include <cstdint>
#include <string>

namespace TALVIR {

class CImvexConverter {
public:
  // Loads the library by name (looked for beside our own module first, then by the system loader) or by path.
  explicit CImvexConverter(const std::string& moduleNameOrPath);

  // The process-wide instance, loaded from "ImvexImgConvert.dll" on first use; safe to call from any thread.
  static const CImvexConverter& ForProcess();

  static constexpr const char* kModuleName = "ImvexImgConvert.dll";
  static constexpr const char* kExportName = "Imvex_Img_Convert";

  bool IsAvailable() const { return m_convert != nullptr; }

  // Converts to BGR8 into destination (width x height x 3 bytes). False when the library is absent or says no.
  bool ConvertToBgr8(uint32_t sourceFormat, const uint8_t* source, uint32_t width, uint32_t height,
                     uint8_t* destination) const;

  // The export's signature, as the library's callers and the test double declare it.
  using ConvertFunction = uint8_t (*)(uint32_t sourceFormat, const void* source, uint32_t width, uint32_t height,
                                      uint32_t destinationFormat, void* destination, uint8_t flag);

private:
  Platform::CDynamicModule m_module;
  ConvertFunction m_convert = nullptr;
};

}  // namespace TALVIR
