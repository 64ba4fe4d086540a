#pragma once
// Number texts of description files: decimal or 0x-hexadecimal integers (optionally signed), and floating-point values.
#include <cstdint>
#include <string_view>

namespace GenApi {
namespace Engine {

std::string_view TrimSpaces(std::string_view text);
// False when the text is not a complete integer (after trimming); values beyond 64 bits wrap like the device does.
bool ParseInteger(std::string_view text, int64_t& value);
bool ParseDouble(std::string_view text, double& value);
// Double to int64 without undefined behaviour: NaN gives 0, values beyond the range saturate.
int64_t ClampToInt64(double value);

}  // namespace Engine
}  // namespace GenApi
