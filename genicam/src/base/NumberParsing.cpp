// Parsing of integer and floating-point texts without locale dependence and without allocation.
#include "base/NumberParsing.h"

#include <charconv>
#include <cmath>

namespace GenApi {
namespace Engine {

namespace {
bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

int DigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return 99;
}
}  // namespace

std::string_view TrimSpaces(std::string_view text) {
  while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsSpace(text.back())) text.remove_suffix(1);
  return text;
}

bool ParseInteger(std::string_view text, int64_t& value) {
  text = TrimSpaces(text);
  bool negative = false;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  int base = 10;
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    base = 16;
    text.remove_prefix(2);
  }
  if (text.empty()) return false;
  uint64_t result = 0;
  for (char c : text) {
    const int digit = DigitValue(c);
    if (digit >= base) return false;
    result = result * static_cast<uint64_t>(base) + static_cast<uint64_t>(digit);
  }
  if (negative) result = 0 - result;
  value = static_cast<int64_t>(result);
  return true;
}

int64_t ClampToInt64(double value) {
  if (std::isnan(value)) return 0;
  if (value >= 9223372036854775807.0) return INT64_MAX;
  if (value <= -9223372036854775808.0) return INT64_MIN;
  return static_cast<int64_t>(value);
}

// Locale-independent: an application that switched to a locale with a decimal comma still loads "1.5".
bool ParseDouble(std::string_view text, double& value) {
  text = TrimSpaces(text);
  if (text.empty()) return false;
  int64_t integer = 0;
  if (text.size() > 2 &&
      (text[1] == 'x' || text[1] == 'X' || (text.size() > 3 && (text[2] == 'x' || text[2] == 'X')))) {
    if (ParseInteger(text, integer)) {
      value = static_cast<double>(integer);
      return true;
    }
    return false;
  }
  if (text.front() == '+') text.remove_prefix(1);
  double parsed = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), parsed);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size()) return false;
  value = parsed;
  return true;
}

}  // namespace Engine
}  // namespace GenApi
