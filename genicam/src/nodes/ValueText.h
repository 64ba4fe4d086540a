#pragma once
// Range checks and value texts shared by every integer, float and string interface (value nodes and registers alike):
// the checks name the node and the value, and the Representation and DisplayNotation names are parsed here only.
#include <cstdint>
#include <string>
#include <string_view>

#include <GenApi/Types.h>

namespace GenApi {
namespace Engine {

class CNode;

void CheckIntRange(const CNode& node, int64_t value, int64_t min, int64_t max, int64_t inc, bool checkInc);
void CheckFloatRange(const CNode& node, double value, double min, double max);
std::string IntToText(int64_t value, ERepresentation representation);
int64_t TextToInt(const CNode& node, const gcstring& text);
double TextToFloat(const CNode& node, const gcstring& text);
std::string FloatToText(double value);
// False for names the description format does not define.
bool ParseRepresentation(std::string_view text, ERepresentation& representation);
bool ParseDisplayNotation(std::string_view text, EDisplayNotation& notation);

}  // namespace Engine
}  // namespace GenApi
