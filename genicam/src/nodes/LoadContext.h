#pragma once
// What nodes need while they read their description elements: element identifiers, reference resolution with
// dependency edges, number parsing with errors that name the node, the element and the line.
#include <cstdint>
#include <string>
#include <string_view>

#include "nodes/Node.h"
#include "xml/XmlElement.h"

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

EElement ElementOf(std::string_view name);

class CLoadContext {
public:
  explicit CLoadContext(CNodeMapImpl& map) : m_map(map) {}

  CNodeMapImpl& Map() { return m_map; }

  // Text of an element, trimmed.
  static std::string_view Text(const CXmlElement& element);

  // The node the element names; unknown names raise an exception naming the owner, the element and the line.
  // reading = true adds a dependency edge (owner reads target).
  CNode* Resolve(CNode& owner, const CXmlElement& element, bool reading = true);
  CNode* ResolveName(CNode& owner, std::string_view name, const CXmlElement& element, bool reading = true);
  static void AddDependency(CNode& reader, CNode& target);
  // An IntSwissKnife written inside a register (an address part): an unnamed node owned by the map.
  CNode* CreateEmbeddedSwissKnife(CNode& owner, const CXmlElement& element);

  int64_t Integer(CNode& owner, const CXmlElement& element);
  double Float(CNode& owner, const CXmlElement& element);
  bool YesNo(CNode& owner, const CXmlElement& element);
  // Value or pValue-style element pair into a reference.
  void IntRef(CNode& owner, const CXmlElement& element, bool isPointer, CIntRef& ref);
  void FloatRef(CNode& owner, const CXmlElement& element, bool isPointer, CFloatRef& ref);
  // Min/pMin, Max/pMax and Inc/pInc into the three references; false for any other element.
  bool Limits(CNode& owner, EElement id, const CXmlElement& element, CIntRef& min, CIntRef& max, CIntRef& inc);
  bool Limits(CNode& owner, EElement id, const CXmlElement& element, CFloatRef& min, CFloatRef& max, CFloatRef& inc);

  [[noreturn]] void Fail(const CNode* owner, const CXmlElement& element, const char* problem) const;

private:
  CNodeMapImpl& m_map;
};

}  // namespace Engine
}  // namespace GenApi
