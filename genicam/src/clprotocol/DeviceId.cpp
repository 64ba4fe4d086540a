#include "DeviceId.h"

#include <algorithm>

namespace CLProtocol {

std::vector<std::string> SplitTokens(const std::string& text, char separator) {
  std::vector<std::string> tokens(1);
  for (const char c : text) {
    if (c == separator) {
      tokens.emplace_back();
    } else {
      tokens.back() += c;
    }
  }
  return tokens;
}

std::string JoinTokens(const std::vector<std::string>& tokens, size_t first, char separator) {
  std::string text;
  for (size_t i = first; i < tokens.size(); ++i) {
    if (i > first) {
      text += separator;
    }
    text += tokens[i];
  }
  return text;
}

bool DeviceIdMatchesTemplate(const std::string& deviceId, const std::string& shortTemplate) {
  const std::vector<std::string> id = SplitTokens(deviceId);
  const std::vector<std::string> pattern = SplitTokens(shortTemplate);
  if (id.empty() || id[0].empty()) {
    return false;
  }
  const size_t common = std::min(id.size(), pattern.size());
  for (size_t i = 0; i < common; ++i) {
    if (id[i] != pattern[i]) {
      return false;
    }
  }
  return true;
}

bool SplitDeviceId(const std::string& deviceId, std::string& directory, std::string& driverFile, std::string& shortId) {
  const std::vector<std::string> tokens = SplitTokens(deviceId);
  if (tokens.size() < 3 || tokens[0].empty() || tokens[1].empty() || tokens[2].empty()) {
    return false;
  }
  directory = tokens[0];
  driverFile = tokens[1];
  shortId = JoinTokens(tokens, 2);
  return true;
}

}  // namespace CLProtocol
