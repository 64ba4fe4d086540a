#pragma once
// Reading a feature into words and setting one from text, with the messages a command line user needs.
#include <GenApi/GenApi.h>

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace TalvirCli {

// What "features" and "get" print about one feature. Fields that do not apply stay empty.
struct SFeatureDescription {
  std::string name;
  std::string type;    // Integer, Float, Boolean, Command, String, Register, Enumeration, Category
  std::string access;  // NI, NA, WO, RO, RW
  std::string value;   // the value as text, empty when not readable
  std::string error;   // why the value could not be read
  std::string min, max, inc;
  std::string unit;
  std::vector<std::string> entries;  // enumerations: the available symbolic names
  std::string description;           // the tool tip
};

// Describes a node; never throws (a failing query fills `error`).
SFeatureDescription Describe(GenApi::INode* node);
nlohmann::ordered_json ToJson(const SFeatureDescription& feature);

// The node of that name, or CCommandError naming the module and close matches.
GenApi::INode* FindFeature(GenApi::INodeMap& map, const std::string& name, const std::string& module);

// Sets a feature from text: enumerations by symbolic name, booleans as true/false/1/0, commands executed (the text
// is ignored). Throws CCommandError with the engine's message when the feature refuses.
void SetFeature(GenApi::INodeMap& map, const std::string& name, const std::string& text, const std::string& module);

// Splits "Name=Value"; CUsageError for text without '=' or without a name.
std::pair<std::string, std::string> SplitAssignment(const std::string& assignment, bool valueOptional);

}  // namespace TalvirCli
