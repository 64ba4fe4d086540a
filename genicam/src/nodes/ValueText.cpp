// Range checks, value texts and the names of representations and display notations.
#include "nodes/ValueText.h"

#include <charconv>
#include <cinttypes>
#include <cmath>
#include <cstdio>

#include "base/NumberParsing.h"
#include "nodes/Node.h"

namespace GenApi {
namespace Engine {

void CheckIntRange(const CNode& node, int64_t value, int64_t min, int64_t max, int64_t inc, bool checkInc) {
  if (value < min) {
    throw OUT_OF_RANGE_EXCEPTION("Node '%s': value %" PRId64 " is below the minimum %" PRId64, node.Name().c_str(),
                                 value, min);
  }
  if (value > max) {
    throw OUT_OF_RANGE_EXCEPTION("Node '%s': value %" PRId64 " is above the maximum %" PRId64, node.Name().c_str(),
                                 value, max);
  }
  if (checkInc && inc > 1) {
    const uint64_t offset = static_cast<uint64_t>(value) - static_cast<uint64_t>(min);
    if (offset % static_cast<uint64_t>(inc) != 0) {
      throw OUT_OF_RANGE_EXCEPTION("Node '%s': value %" PRId64 " is not the minimum %" PRId64
                                   " plus a multiple of the increment %" PRId64,
                                   node.Name().c_str(), value, min, inc);
    }
  }
}

void CheckFloatRange(const CNode& node, double value, double min, double max) {
  if (std::isnan(value)) throw INVALID_ARGUMENT_EXCEPTION("Node '%s': value is not a number", node.Name().c_str());
  if (value < min) {
    throw OUT_OF_RANGE_EXCEPTION("Node '%s': value %.17g is below the minimum %.17g", node.Name().c_str(), value, min);
  }
  if (value > max) {
    throw OUT_OF_RANGE_EXCEPTION("Node '%s': value %.17g is above the maximum %.17g", node.Name().c_str(), value, max);
  }
}

std::string IntToText(int64_t value, ERepresentation representation) {
  char text[32];
  if (representation == HexNumber) {
    std::snprintf(text, sizeof text, "0x%" PRIX64, static_cast<uint64_t>(value));
  } else {
    std::snprintf(text, sizeof text, "%" PRId64, value);
  }
  return text;
}

int64_t TextToInt(const CNode& node, const gcstring& text) {
  int64_t value = 0;
  if (!ParseInteger(text, value)) {
    throw INVALID_ARGUMENT_EXCEPTION("Node '%s': '%s' is not an integer", node.Name().c_str(), text.c_str());
  }
  return value;
}

double TextToFloat(const CNode& node, const gcstring& text) {
  double value = 0;
  if (!ParseDouble(text, value)) {
    throw INVALID_ARGUMENT_EXCEPTION("Node '%s': '%s' is not a number", node.Name().c_str(), text.c_str());
  }
  return value;
}

std::string FloatToText(double value) {
  char text[64];
  const auto result = std::to_chars(text, text + sizeof text, value);
  return std::string(text, result.ptr);
}

bool ParseRepresentation(std::string_view text, ERepresentation& representation) {
  static const char* const kNames[] = {"Linear",    "Logarithmic", "Boolean",   "PureNumber",
                                       "HexNumber", "IPV4Address", "MACAddress"};
  for (int i = 0; i < 7; ++i) {
    if (text == kNames[i]) {
      representation = static_cast<ERepresentation>(i);
      return true;
    }
  }
  return false;
}

bool ParseDisplayNotation(std::string_view text, EDisplayNotation& notation) {
  if (text == "Automatic") notation = fnAutomatic;
  else if (text == "Fixed") notation = fnFixed;
  else if (text == "Scientific") notation = fnScientific;
  else return false;
  return true;
}

}  // namespace Engine
}  // namespace GenApi
