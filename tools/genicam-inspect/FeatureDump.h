#pragma once
// The line format shared by genicam-inspect and the comparison oracle: one JSON object per feature, keys in a fixed
// order, lines sorted by feature name, so that two dumps can be compared line by line or feature by feature.
#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace TALVIR::Tools {
enum class EValueKind {
  None,  // no value interface: not dumped
  Integer,
  Float,
  Boolean,
  Enumeration,
  String,
  Register,
  Command
};

// Which value interface an element of a description file gives its node.
inline EValueKind ValueKindOfElement(const std::string& element) {
  static const std::map<std::string, EValueKind> kinds = {
      {"Integer", EValueKind::Integer},      {"IntReg", EValueKind::Integer},
      {"MaskedIntReg", EValueKind::Integer}, {"IntSwissKnife", EValueKind::Integer},
      {"IntConverter", EValueKind::Integer}, {"StructEntry", EValueKind::Integer},
      {"Float", EValueKind::Float},          {"FloatReg", EValueKind::Float},
      {"SwissKnife", EValueKind::Float},     {"Converter", EValueKind::Float},
      {"Boolean", EValueKind::Boolean},      {"Enumeration", EValueKind::Enumeration},
      {"String", EValueKind::String},        {"StringReg", EValueKind::String},
      {"Register", EValueKind::Register},    {"Command", EValueKind::Command},
  };
  const auto it = kinds.find(element);
  return it == kinds.end() ? EValueKind::None : it->second;
}

// JSON has no infinities or NaN; they are written as strings so that they survive and still compare equal.
inline nlohmann::ordered_json FloatToJson(double value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value > 0 ? "inf" : "-inf";
  return value;
}

inline std::string BytesToHex(const uint8_t* bytes, size_t length) {
  static const char digits[] = "0123456789abcdef";
  std::string text;
  text.reserve(length * 2);
  for (size_t i = 0; i < length; ++i) {
    text += digits[bytes[i] >> 4];
    text += digits[bytes[i] & 0x0F];
  }
  return text;
}

// Collects one record per feature and prints them sorted by name.
class CFeatureDump {
public:
  nlohmann::ordered_json& Add(const std::string& name, const std::string& element) {
    nlohmann::ordered_json& record = m_Records[name];
    record["name"] = name;
    record["type"] = element;
    return record;
  }

  // Keeps the first failure of a record: it is the one that explains the missing fields.
  static void NoteError(nlohmann::ordered_json& record, const std::string& message) {
    if (!record.contains("error")) record["error"] = message;
  }

  void Print(std::ostream& out) const {
    for (const auto& [name, record] : m_Records)
      out << record.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
  }

  size_t Size() const { return m_Records.size(); }
  bool Has(const std::string& name) const { return m_Records.count(name) != 0; }

private:
  std::map<std::string, nlohmann::ordered_json> m_Records;
};

// Command-line options shared by both dump programs.
struct SDumpOptions {
  std::string file;
  uint64_t seed = 0;
  std::vector<std::pair<std::string, std::string>> sets;  // applied in order before the dump
  std::vector<std::string> reads;                         // when not empty, only these features are dumped
};

// Parses "FILE [--seed N] [--set Name=Value]... [--read Name]..."; returns an error message, empty on success.
inline std::string ParseDumpOptions(int argc, char** argv, SDumpOptions& options) {
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    const bool hasValue = i + 1 < argc;
    if (arg == "--seed" && hasValue) {
      try {
        size_t used = 0;
        const std::string text = argv[++i];
        options.seed = std::stoull(text, &used, 0);
        if (used != text.size()) return "--seed needs an unsigned number, not '" + text + "'";
      } catch (const std::exception&) {
        return std::string("--seed needs an unsigned number, not '") + argv[i] + "'";
      }
    } else if (arg == "--set" && hasValue) {
      const std::string assignment = argv[++i];
      const auto equals = assignment.find('=');
      if (equals == std::string::npos || equals == 0) return "--set needs Name=Value, not '" + assignment + "'";
      options.sets.emplace_back(assignment.substr(0, equals), assignment.substr(equals + 1));
    } else if (arg == "--read" && hasValue) options.reads.emplace_back(argv[++i]);
    else if (!arg.empty() && arg[0] == '-') return "unknown or incomplete option '" + arg + "'";
    else if (options.file.empty()) options.file = arg;
    else return "only one description file may be given";
  }
  if (options.file.empty()) return "no description file given";
  return {};
}
}  // namespace TALVIR::Tools
