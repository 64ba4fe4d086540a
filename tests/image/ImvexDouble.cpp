// Stands in for the maker's conversion library: records its arguments and fills the destination with a known
// pattern, so a test can tell that the library was called, with what, and that its output was used.
#include "ImvexDoubleApi.h"

#include <mutex>

namespace {

std::mutex g_mutex;
SImvexDoubleCall g_last{};
uint8_t g_result = 1;

}  // namespace

extern "C" __attribute__((visibility("default"))) uint8_t Imvex_Img_Convert(uint32_t sourceFormat, const void* source,
                                                                            uint32_t width, uint32_t height,
                                                                            uint32_t destinationFormat,
                                                                            void* destination, uint8_t flag) {
  std::lock_guard<std::mutex> lock(g_mutex);
  g_last.calls += 1;
  g_last.sourceFormat = sourceFormat;
  g_last.source = source;
  g_last.width = width;
  g_last.height = height;
  g_last.destinationFormat = destinationFormat;
  g_last.destination = destination;
  g_last.flag = flag;
  if (destination != nullptr) {
    auto* out = static_cast<uint8_t*>(destination);
    const uint64_t bytes = uint64_t{width} * height * 3;
    for (uint64_t i = 0; i < bytes; ++i) {
      out[i] = ImvexDoubleByte(i);
    }
  }
  return g_result;
}

extern "C" __attribute__((visibility("default"))) void ImvexDouble_LastCall(SImvexDoubleCall* call) {
  std::lock_guard<std::mutex> lock(g_mutex);
  *call = g_last;
}

extern "C" __attribute__((visibility("default"))) void ImvexDouble_Reset(uint8_t result) {
  std::lock_guard<std::mutex> lock(g_mutex);
  g_last = SImvexDoubleCall{};
  g_result = result;
}
