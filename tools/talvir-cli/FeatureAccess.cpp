#include "FeatureAccess.h"

#include "Command.h"

#include <algorithm>
#include <cctype>

namespace TalvirCli {
namespace {

const char* TypeName(GenApi::EInterfaceType type) {
  switch (type) {
  case GenApi::intfIInteger: return "Integer";
  case GenApi::intfIFloat: return "Float";
  case GenApi::intfIBoolean: return "Boolean";
  case GenApi::intfICommand: return "Command";
  case GenApi::intfIString: return "String";
  case GenApi::intfIRegister: return "Register";
  case GenApi::intfIEnumeration: return "Enumeration";
  case GenApi::intfICategory: return "Category";
  case GenApi::intfIEnumEntry: return "EnumEntry";
  case GenApi::intfIPort: return "Port";
  default: return "Node";
  }
}

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

std::string Number(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%.10g", value);
  return text;
}

void FillRange(GenApi::INode* node, SFeatureDescription& feature) {
  if (GenApi::CIntegerPtr integer{node}) {
    feature.min = std::to_string(integer->GetMin());
    feature.max = std::to_string(integer->GetMax());
    feature.inc = std::to_string(integer->GetInc());
    feature.unit = integer->GetUnit();
  } else if (GenApi::CFloatPtr floating{node}) {
    feature.min = Number(floating->GetMin());
    feature.max = Number(floating->GetMax());
    if (floating->HasInc()) {
      feature.inc = Number(floating->GetInc());
    }
    feature.unit = floating->GetUnit();
  } else if (GenApi::CEnumerationPtr enumeration{node}) {
    GenApi::StringList_t symbolics;
    enumeration->GetSymbolics(symbolics);
    feature.entries.assign(symbolics.begin(), symbolics.end());
  }
}

}  // namespace

SFeatureDescription Describe(GenApi::INode* node) {
  SFeatureDescription feature;
  feature.name = node->GetName();
  try {
    feature.type = TypeName(node->GetPrincipalInterfaceType());
    feature.access = GenApi::AccessModeName(node->GetAccessMode());
    feature.description = node->GetToolTip();
    if (GenApi::IsAvailable(node)) {
      FillRange(node, feature);
    }
    const GenApi::EInterfaceType type = node->GetPrincipalInterfaceType();
    if (GenApi::IsReadable(node) && type != GenApi::intfICommand && type != GenApi::intfICategory) {
      feature.value = GenApi::CValuePtr(node)->ToString();
    }
  } catch (const GenICam::GenericException& error) {
    feature.error = error.GetDescription();
  }
  return feature;
}

nlohmann::ordered_json ToJson(const SFeatureDescription& feature) {
  nlohmann::ordered_json json{{"name", feature.name}, {"type", feature.type}, {"access", feature.access}};
  const auto add = [&json](const char* key, const std::string& value) {
    if (!value.empty()) {
      json[key] = value;
    }
  };
  add("value", feature.value);
  add("error", feature.error);
  add("min", feature.min);
  add("max", feature.max);
  add("inc", feature.inc);
  add("unit", feature.unit);
  if (!feature.entries.empty()) {
    json["entries"] = feature.entries;
  }
  add("description", feature.description);
  return json;
}

GenApi::INode* FindFeature(GenApi::INodeMap& map, const std::string& name, const std::string& module) {
  if (GenApi::INode* node = map.GetNode(name)) {
    return node;
  }
  // Suggest features whose names contain the text, or differ from it only in case.
  GenApi::NodeList_t nodes;
  map.GetNodes(nodes);
  std::vector<std::string> close;
  for (GenApi::INode* node : nodes) {
    const std::string candidate = node->GetName();
    if (node->IsFeature() && Lower(candidate).find(Lower(name)) != std::string::npos) {
      close.push_back(candidate);
    }
  }
  std::sort(close.begin(), close.end());
  std::string message = "no feature '" + name + "' in the " + module + " module";
  if (!close.empty()) {
    message += " (did you mean";
    for (size_t index = 0; index < close.size() && index < 5; ++index) {
      message += (index == 0 ? " " : ", ") + close[index];
    }
    message += close.size() > 5 ? ", ...?)" : "?)";
  } else {
    message += " (see talvir-cli features)";
  }
  throw CCommandError(message);
}

void SetFeature(GenApi::INodeMap& map, const std::string& name, const std::string& text, const std::string& module) {
  GenApi::INode* node = FindFeature(map, name, module);
  try {
    const GenApi::EInterfaceType type = node->GetPrincipalInterfaceType();
    if (!GenApi::IsWritable(node)) {
      throw CCommandError("cannot set " + name + ": it is not writable now (access mode " +
                          GenApi::AccessModeName(node->GetAccessMode()) + ")");
    }
    if (type == GenApi::intfICommand) {
      GenApi::CCommandPtr(node)->Execute();
      return;
    }
    GenApi::CValuePtr value(node);
    if (!value.IsValid() || type == GenApi::intfICategory) {
      throw CCommandError("cannot set " + name + ": it is a " + TypeName(type) + ", which has no value");
    }
    value->FromString(text);
  } catch (const GenICam::GenericException& error) {
    std::string message = "cannot set " + name + " to '" + text + "': " + error.GetDescription();
    if (GenApi::CEnumerationPtr enumeration{node}) {
      GenApi::StringList_t symbolics;
      enumeration->GetSymbolics(symbolics);
      message += " (one of:";
      for (const GenICam::gcstring& symbolic : symbolics) {
        message += " " + symbolic;
      }
      message += ")";
    }
    throw CCommandError(message);
  }
}

std::pair<std::string, std::string> SplitAssignment(const std::string& assignment, bool valueOptional) {
  const size_t equals = assignment.find('=');
  if (equals == 0 || (equals == std::string::npos && !valueOptional) || assignment.empty()) {
    throw CUsageError("'" + assignment + "' is not NAME=VALUE");
  }
  if (equals == std::string::npos) {
    return {assignment, std::string()};
  }
  return {assignment.substr(0, equals), assignment.substr(equals + 1)};
}

}  // namespace TalvirCli
