#pragma once
// Device IDs and templates: "#"-separated tokens, compared token by token.
#include <string>
#include <vector>

namespace CLProtocol {

// The "#"-separated tokens of a text (an empty text gives one empty token).
std::vector<std::string> SplitTokens(const std::string& text, char separator = '#');
std::string JoinTokens(const std::vector<std::string>& tokens, size_t first, char separator = '#');

// Whether a short device ID (Manufacturer#Family[#Model[#Version[#Serial]]]) is covered by a short template: the
// ID must reach at least the manufacturer, and every token both have must be equal, so that "A#Fam" does not match
// "A#Family1".
bool DeviceIdMatchesTemplate(const std::string& deviceId, const std::string& shortTemplate);

// A full device ID cut into the driver's folder and file and the short part after them. False when it has fewer
// than three tokens or an empty folder or file.
bool SplitDeviceId(const std::string& deviceId, std::string& directory, std::string& driverFile, std::string& shortId);

}  // namespace CLProtocol
