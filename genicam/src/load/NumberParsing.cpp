// Parsing of integer and floating-point texts without locale dependence and without allocation.
#include "load/NumberParsing.h"

#include <cmath>
#include <cstdlib>
#include <string>

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

bool ParseDouble(std::string_view text, double& value) {
  text = TrimSpaces(text);
  if (text.empty() || text.size() > 128) return false;
  int64_t integer = 0;
  if (text.find_first_of(".eEnN") == std::string_view::npos || (text.size() > 2 && (text[1] == 'x' || text[1] == 'X'))) {
    if (ParseInteger(text, integer)) {
      value = static_cast<double>(integer);
      return true;
    }
  }
  char buffer[130];
  text.copy(buffer, text.size());
  buffer[text.size()] = '\0';
  char* end = nullptr;
  const double parsed = std::strtod(buffer, &end);
  if (end != buffer + text.size()) return false;
  value = parsed;
  return true;
}

}  // namespace Engine
}  // namespace GenApi
