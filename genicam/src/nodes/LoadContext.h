#pragma once
// What nodes need while they read their description elements: element identifiers, reference resolution with
// dependency edges, number parsing with errors that name the node, the element and the line.
#include <cstdint>
#include <string>
#include <string_view>

#include <pugixml.hpp>

#include "nodes/Node.h"

namespace GenApi {
namespace Engine {

class CNodeMapImpl;

enum class EElement : uint8_t {
  Unknown,
  // every node
  Extension,
  ToolTip,
  Description,
  DisplayName,
  Visibility,
  DocuURL,
  IsDeprecated,
  EventID,
  pIsImplemented,
  pIsAvailable,
  pIsLocked,
  pBlockPolling,
  ImposedAccessMode,
  pError,
  pAlias,
  pCastAlias,
  pInvalidator,
  // registers
  Address,
  IntSwissKnife,
  pAddress,
  pIndex,
  Length,
  pLength,
  AccessMode,
  pPort,
  Cachable,
  PollingTime,
  Sign,
  Endianess,
  Unit,
  Representation,
  pSelected,
  Bit,
  LSB,
  MSB,
  DisplayNotation,
  DisplayPrecision,
  StructEntry,
  Streamable,
  // values
  Value,
  pValue,
  pValueCopy,
  ValueIndexed,
  pValueIndexed,
  ValueDefault,
  pValueDefault,
  Min,
  pMin,
  Max,
  pMax,
  Inc,
  pInc,
  ValidValueSet,
  OnValue,
  OffValue,
  CommandValue,
  pCommandValue,
  EnumEntry,
  NumericValue,
  Symbolic,
  IsSelfClearing,
  pVariable,
  Constant,
  Expression,
  Formula,
  FormulaTo,
  FormulaFrom,
  Slope,
  IsLinear,
  pFeature,
  ChunkID,
  pChunkID,
  SwapEndianess,
  CacheChunkData,
  Name
};

EElement ElementOf(const char* name);

class CLoadContext {
public:
  CLoadContext(CNodeMapImpl& map, std::string_view documentText) : m_map(map), m_text(documentText) {}

  CNodeMapImpl& Map() { return m_map; }

  // Text of an element, trimmed.
  static std::string_view Text(const pugi::xml_node& element);

  // The node the element names; unknown names raise an exception naming the owner, the element and the line.
  // reading = true adds a dependency edge (owner reads target).
  CNode* Resolve(CNode& owner, const pugi::xml_node& element, bool reading = true);
  CNode* ResolveName(CNode& owner, std::string_view name, const pugi::xml_node& element, bool reading = true);
  static void AddDependency(CNode& reader, CNode& target);
  // An IntSwissKnife written inside a register (an address part): an unnamed node owned by the map.
  CNode* CreateEmbeddedSwissKnife(CNode& owner, const pugi::xml_node& element);

  int64_t Integer(CNode& owner, const pugi::xml_node& element);
  double Float(CNode& owner, const pugi::xml_node& element);
  bool YesNo(CNode& owner, const pugi::xml_node& element);
  // Value or pValue-style element pair into a reference.
  void IntRef(CNode& owner, const pugi::xml_node& element, bool isPointer, CIntRef& ref);
  void FloatRef(CNode& owner, const pugi::xml_node& element, bool isPointer, CFloatRef& ref);
  // Min/pMin, Max/pMax and Inc/pInc into the three references; false for any other element.
  bool Limits(CNode& owner, EElement id, const pugi::xml_node& element, CIntRef& min, CIntRef& max, CIntRef& inc);
  bool Limits(CNode& owner, EElement id, const pugi::xml_node& element, CFloatRef& min, CFloatRef& max, CFloatRef& inc);

  [[noreturn]] void Fail(const CNode* owner, const pugi::xml_node& element, const char* problem) const;
  // 1-based line of an element in the document text.
  size_t LineOf(const pugi::xml_node& element) const;

private:
  CNodeMapImpl& m_map;
  std::string_view m_text;
};

}  // namespace Engine
}  // namespace GenApi
