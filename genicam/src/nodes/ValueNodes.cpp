// Integer, Float, Boolean, Command, String, Category and Port nodes.
#include "nodes/ValueNodes.h"

#include <algorithm>
#include <charconv>
#include <cinttypes>
#include <cmath>
#include <cstring>

#include "load/LoadContext.h"
#include "load/NumberParsing.h"
#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

// ---------------------------------------------------------------- helpers

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

namespace {
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
}  // namespace

// ---------------------------------------------------------------- CIntegerBase

bool CIntegerBase::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  switch (id) {
    case EElement::Unit: m_unit = std::string(CLoadContext::Text(child)); return true;
    case EElement::Representation:
      if (!ParseRepresentation(CLoadContext::Text(child), m_representation)) {
        context.Fail(this, child, "unknown representation");
      }
      return true;
    case EElement::ValidValueSet: {
      std::string_view text = CLoadContext::Text(child);
      while (!text.empty()) {
        const size_t separator = text.find(';');
        int64_t value = 0;
        if (!ParseInteger(text.substr(0, separator), value)) context.Fail(this, child, "bad valid value");
        m_validValues.push_back(value);
        if (separator == std::string_view::npos) break;
        text.remove_prefix(separator + 1);
      }
      return true;
    }
    default: return CValueNode::ConfigureElement(context, id, child);
  }
}

int64_t CIntegerBase::GetIntMin() {
  CDepthGuard depth(*this);
  return std::max(NativeMin(), m_imposedMin);
}
int64_t CIntegerBase::GetIntMax() {
  CDepthGuard depth(*this);
  return std::min(NativeMax(), m_imposedMax);
}
int64_t CIntegerBase::GetIntInc() {
  CDepthGuard depth(*this);
  const int64_t inc = NativeInc();
  if (inc <= 0) throw RUNTIME_EXCEPTION("Node '%s': increment %" PRId64 " is not positive", m_name.c_str(), inc);
  return inc;
}

void CIntegerBase::Verify(int64_t value, bool checkInc) {
  CheckIntRange(*this, value, GetIntMin(), GetIntMax(), checkInc ? GetIntInc() : 1, checkInc);
  if (!m_validValues.empty() && std::find(m_validValues.begin(), m_validValues.end(), value) == m_validValues.end()) {
    throw OUT_OF_RANGE_EXCEPTION("Node '%s': value %" PRId64 " is not in the set of valid values", m_name.c_str(),
                                 value);
  }
}

void CIntegerBase::SetValue(int64_t Value, bool Verify) {
  CEntryGuard guard(m_map);
  CheckWritable(std::to_string(Value));
  SetInt(Value, Verify);
}

int64_t CIntegerBase::GetValue(bool Verify, bool IgnoreCache) {
  CEntryGuard guard(m_map);
  CheckReadable();
  const int64_t value = GetInt(Verify, IgnoreCache);
  if (Verify) this->Verify(value, false);
  return value;
}

int64_t CIntegerBase::GetMin() {
  CEntryGuard guard(m_map);
  return GetIntMin();
}
int64_t CIntegerBase::GetMax() {
  CEntryGuard guard(m_map);
  return GetIntMax();
}
EIncMode CIntegerBase::GetIncMode() { return m_validValues.empty() ? fixedIncrement : listIncrement; }
int64_t CIntegerBase::GetInc() {
  CEntryGuard guard(m_map);
  return GetIntInc();
}

int64_autovector_t CIntegerBase::GetListOfValidValues(bool bounded) {
  CEntryGuard guard(m_map);
  int64_autovector_t values;
  const int64_t min = bounded ? GetIntMin() : std::numeric_limits<int64_t>::min();
  const int64_t max = bounded ? GetIntMax() : std::numeric_limits<int64_t>::max();
  for (int64_t value : m_validValues) {
    if (value >= min && value <= max) values.push_back(value);
  }
  return values;
}

void CIntegerBase::ImposeMin(int64_t Value) {
  CEntryGuard guard(m_map);
  m_imposedMin = Value;
  m_map.PropagateChange(this, false);
}
void CIntegerBase::ImposeMax(int64_t Value) {
  CEntryGuard guard(m_map);
  m_imposedMax = Value;
  m_map.PropagateChange(this, false);
}

gcstring CIntegerBase::ToString(bool Verify, bool IgnoreCache) {
  return gcstring(IntToText(GetValue(Verify, IgnoreCache), m_representation));
}
void CIntegerBase::FromString(const gcstring& ValueStr, bool Verify) { SetValue(TextToInt(*this, ValueStr), Verify); }

// ---------------------------------------------------------------- CFloatBase

bool CFloatBase::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  switch (id) {
    case EElement::Unit: m_unit = std::string(CLoadContext::Text(child)); return true;
    case EElement::Representation:
      if (!ParseRepresentation(CLoadContext::Text(child), m_representation)) {
        context.Fail(this, child, "unknown representation");
      }
      return true;
    case EElement::DisplayNotation: {
      const std::string_view text = CLoadContext::Text(child);
      if (text == "Automatic") m_displayNotation = fnAutomatic;
      else if (text == "Fixed") m_displayNotation = fnFixed;
      else if (text == "Scientific") m_displayNotation = fnScientific;
      else context.Fail(this, child, "unknown display notation");
      return true;
    }
    case EElement::DisplayPrecision: m_displayPrecision = context.Integer(*this, child); return true;
    default: return CValueNode::ConfigureElement(context, id, child);
  }
}

// A float read as an integer is truncated toward zero, as a C conversion does.
int64_t CFloatBase::GetInt(bool verify, bool ignoreCache) { return ClampToInt64(GetFloat(verify, ignoreCache)); }
double CFloatBase::GetFloatMin() {
  CDepthGuard depth(*this);
  return std::max(NativeMin(), m_imposedMin);
}
double CFloatBase::GetFloatMax() {
  CDepthGuard depth(*this);
  return std::min(NativeMax(), m_imposedMax);
}
int64_t CFloatBase::GetIntMin() { return ClampToInt64(std::ceil(GetFloatMin())); }
int64_t CFloatBase::GetIntMax() { return ClampToInt64(std::floor(GetFloatMax())); }

void CFloatBase::Verify(double value) { CheckFloatRange(*this, value, GetFloatMin(), GetFloatMax()); }

void CFloatBase::SetValue(double Value, bool Verify) {
  CEntryGuard guard(m_map);
  CheckWritable(FloatToText(Value));
  SetFloat(Value, Verify);
}

double CFloatBase::GetValue(bool Verify, bool IgnoreCache) {
  CEntryGuard guard(m_map);
  CheckReadable();
  const double value = GetFloat(Verify, IgnoreCache);
  if (Verify) this->Verify(value);
  return value;
}

double CFloatBase::GetMin() {
  CEntryGuard guard(m_map);
  return GetFloatMin();
}
double CFloatBase::GetMax() {
  CEntryGuard guard(m_map);
  return GetFloatMax();
}
bool CFloatBase::HasInc() {
  CEntryGuard guard(m_map);
  return HasFloatInc();
}
EIncMode CFloatBase::GetIncMode() {
  CEntryGuard guard(m_map);
  return HasFloatInc() ? fixedIncrement : noIncrement;
}
double CFloatBase::GetInc() {
  CEntryGuard guard(m_map);
  if (!HasFloatInc()) throw RUNTIME_EXCEPTION("Node '%s' has no increment", m_name.c_str());
  return GetFloatInc();
}
double_autovector_t CFloatBase::GetListOfValidValues(bool) { return double_autovector_t(); }
void CFloatBase::ImposeMin(double Value) {
  CEntryGuard guard(m_map);
  m_imposedMin = Value;
  m_map.PropagateChange(this, false);
}
void CFloatBase::ImposeMax(double Value) {
  CEntryGuard guard(m_map);
  m_imposedMax = Value;
  m_map.PropagateChange(this, false);
}
gcstring CFloatBase::ToString(bool Verify, bool IgnoreCache) { return gcstring(FloatToText(GetValue(Verify, IgnoreCache))); }
void CFloatBase::FromString(const gcstring& ValueStr, bool Verify) { SetValue(TextToFloat(*this, ValueStr), Verify); }

// ---------------------------------------------------------------- Integer

bool CIntegerNode::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  if (m_value.Configure(*this, context, id, child, false)) return true;
  switch (id) {
    case EElement::Min: context.IntRef(*this, child, false, m_min); return true;
    case EElement::pMin: context.IntRef(*this, child, true, m_min); return true;
    case EElement::Max: context.IntRef(*this, child, false, m_max); return true;
    case EElement::pMax: context.IntRef(*this, child, true, m_max); return true;
    case EElement::Inc: context.IntRef(*this, child, false, m_inc); return true;
    case EElement::pInc: context.IntRef(*this, child, true, m_inc); return true;
    default: return CIntegerBase::ConfigureElement(context, id, child);
  }
}

void CIntegerNode::FinishLoading(CLoadContext& context) { m_value.Check(*this, context, pugi::xml_node()); }
void CFloatNode::FinishLoading(CLoadContext& context) { m_value.Check(*this, context, pugi::xml_node()); }
void CBooleanNode::FinishLoading(CLoadContext& context) { m_value.Check(*this, context, pugi::xml_node()); }
void CCommandNode::FinishLoading(CLoadContext& context) { m_value.Check(*this, context, pugi::xml_node()); }
void CStringNode::FinishLoading(CLoadContext& context) { m_value.Check(*this, context, pugi::xml_node()); }

int64_t CIntegerNode::GetInt(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  return m_value.GetInt(*this, ignoreCache);
}

void CIntegerNode::SetInt(int64_t value, bool verify) {
  CDepthGuard depth(*this);
  if (verify) Verify(value, true);
  m_value.SetInt(*this, value, verify);
  ValueChanged();
}

int64_t CIntegerNode::NativeMin() {
  if (m_min.present) return m_min.Get();
  CNode* target = m_value.TargetNode();
  return target && target->IsNumeric() ? target->GetIntMin() : std::numeric_limits<int64_t>::min();
}
int64_t CIntegerNode::NativeMax() {
  if (m_max.present) return m_max.Get();
  CNode* target = m_value.TargetNode();
  return target && target->IsNumeric() ? target->GetIntMax() : std::numeric_limits<int64_t>::max();
}
int64_t CIntegerNode::NativeInc() {
  if (m_inc.present) return m_inc.Get();
  CNode* target = m_value.TargetNode();
  return target && target->IsNumeric() && !target->IsFloatValued() ? target->GetIntInc() : 1;
}

// ---------------------------------------------------------------- Float

bool CFloatNode::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  if (m_value.Configure(*this, context, id, child, true)) return true;
  switch (id) {
    case EElement::Min: context.FloatRef(*this, child, false, m_min); return true;
    case EElement::pMin: context.FloatRef(*this, child, true, m_min); return true;
    case EElement::Max: context.FloatRef(*this, child, false, m_max); return true;
    case EElement::pMax: context.FloatRef(*this, child, true, m_max); return true;
    case EElement::Inc: context.FloatRef(*this, child, false, m_inc); return true;
    case EElement::pInc: context.FloatRef(*this, child, true, m_inc); return true;
    default: return CFloatBase::ConfigureElement(context, id, child);
  }
}

double CFloatNode::GetFloat(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  return m_value.GetFloat(*this, ignoreCache);
}

void CFloatNode::SetFloat(double value, bool verify) {
  CDepthGuard depth(*this);
  if (verify) Verify(value);
  m_value.SetFloat(*this, value, verify);
  ValueChanged();
}

double CFloatNode::NativeMin() {
  if (m_min.present) return m_min.Get();
  CNode* target = m_value.TargetNode();
  return target && target->IsNumeric() ? target->GetFloatMin() : -std::numeric_limits<double>::max();
}
double CFloatNode::NativeMax() {
  if (m_max.present) return m_max.Get();
  CNode* target = m_value.TargetNode();
  return target && target->IsNumeric() ? target->GetFloatMax() : std::numeric_limits<double>::max();
}
// Without an increment of its own, a Float over an integer-valued node steps by that node's increment, and over a
// float-valued node by its increment when it has one.
bool CFloatNode::HasFloatInc() {
  if (m_inc.present) return true;
  CNode* target = m_value.TargetNode();
  if (target == nullptr || !target->IsNumeric()) return false;
  return target->IsFloatValued() ? target->HasFloatInc() : true;
}
double CFloatNode::GetFloatInc() {
  if (m_inc.present) return m_inc.Get();
  CNode* target = m_value.TargetNode();
  if (target != nullptr && target->IsNumeric()) {
    return target->IsFloatValued() ? target->GetFloatInc() : static_cast<double>(target->GetIntInc());
  }
  return 0.0;
}

// ---------------------------------------------------------------- Boolean

bool CBooleanNode::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  if (m_value.Configure(*this, context, id, child, false)) return true;
  switch (id) {
    case EElement::OnValue: m_onValue = context.Integer(*this, child); return true;
    case EElement::OffValue: m_offValue = context.Integer(*this, child); return true;
    default: return CValueNode::ConfigureElement(context, id, child);
  }
}

bool CBooleanNode::Read(bool ignoreCache) {
  CDepthGuard depth(*this);
  const int64_t value = m_value.GetInt(*this, ignoreCache);
  if (value == m_onValue) return true;
  if (value == m_offValue) return false;
  throw OUT_OF_RANGE_EXCEPTION("Node '%s': value %" PRId64 " is neither the on value %" PRId64
                               " nor the off value %" PRId64,
                               m_name.c_str(), value, m_onValue, m_offValue);
}

bool CBooleanNode::GetValue(bool, bool IgnoreCache) const {
  CEntryGuard guard(m_map);
  CBooleanNode& self = const_cast<CBooleanNode&>(*this);
  self.CheckReadable();
  return self.Read(IgnoreCache);
}

void CBooleanNode::SetValue(bool Value, bool Verify) {
  CEntryGuard guard(m_map);
  CheckWritable(Value ? "true" : "false");
  SetInt(Value ? 1 : 0, Verify);
}

int64_t CBooleanNode::GetInt(bool, bool ignoreCache) { return Read(ignoreCache) ? 1 : 0; }

void CBooleanNode::SetInt(int64_t value, bool verify) {
  CDepthGuard depth(*this);
  m_value.SetInt(*this, value != 0 ? m_onValue : m_offValue, verify);
  ValueChanged();
}

gcstring CBooleanNode::ToString(bool Verify, bool IgnoreCache) { return GetValue(Verify, IgnoreCache) ? "1" : "0"; }

void CBooleanNode::FromString(const gcstring& ValueStr, bool Verify) {
  std::string text(TrimSpaces(ValueStr));
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (text == "1" || text == "true") {
    SetValue(true, Verify);
  } else if (text == "0" || text == "false") {
    SetValue(false, Verify);
  } else {
    throw INVALID_ARGUMENT_EXCEPTION("Node '%s': '%s' is not a boolean", m_name.c_str(), ValueStr.c_str());
  }
}

// ---------------------------------------------------------------- Command

bool CCommandNode::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  if (m_value.Configure(*this, context, id, child, false)) return true;
  switch (id) {
    case EElement::CommandValue: context.IntRef(*this, child, false, m_commandValue); return true;
    case EElement::pCommandValue: context.IntRef(*this, child, true, m_commandValue); return true;
    default: return CValueNode::ConfigureElement(context, id, child);
  }
}

int64_t CCommandNode::GetInt(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  return m_value.GetInt(*this, ignoreCache);
}

void CCommandNode::Execute(bool Verify) {
  CEntryGuard guard(m_map);
  CheckWritable();
  CDepthGuard depth(*this);
  const int64_t commandValue = m_commandValue.present ? m_commandValue.Get() : 1;
  m_value.SetInt(*this, commandValue, Verify);
  ValueChanged();
}

bool CCommandNode::IsDone(bool) {
  CEntryGuard guard(m_map);
  CDepthGuard depth(*this);
  const EAccessMode mode = m_value.AccessMode(*this);
  if (mode != RO && mode != RW) return true;
  const int64_t commandValue = m_commandValue.present ? m_commandValue.Get() : 1;
  const bool done = m_value.GetInt(*this, true) != commandValue;
  if (done) ValueChanged();
  return done;
}

gcstring CCommandNode::ToString(bool, bool) {
  throw LOGICAL_ERROR_EXCEPTION("Node '%s': a command has no value text", m_name.c_str());
}

void CCommandNode::FromString(const gcstring&, bool) {
  throw LOGICAL_ERROR_EXCEPTION("Node '%s': a command has no value text", m_name.c_str());
}

// ---------------------------------------------------------------- String

bool CStringNode::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  if (m_value.Configure(*this, context, id, child, false, true)) return true;
  return CValueNode::ConfigureElement(context, id, child);
}

std::string CStringNode::GetStr(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  return m_value.GetString(*this, ignoreCache);
}

void CStringNode::SetStr(const std::string& value, bool verify) {
  CDepthGuard depth(*this);
  m_value.SetString(*this, value, verify);
  ValueChanged();
}

void CStringNode::SetValue(const gcstring& Value, bool Verify) {
  CEntryGuard guard(m_map);
  CheckWritable("'" + Value.substr(0, 64) + "'");
  SetStr(Value, Verify);
}

gcstring CStringNode::GetValue(bool Verify, bool IgnoreCache) {
  CEntryGuard guard(m_map);
  CheckReadable();
  return gcstring(GetStr(Verify, IgnoreCache));
}

int64_t CStringNode::GetMaxLength() {
  CEntryGuard guard(m_map);
  CNode* target = m_value.Current(*this, false).node;
  if (auto* text = dynamic_cast<IString*>(target)) return text->GetMaxLength();
  return std::numeric_limits<int64_t>::max();
}

// ---------------------------------------------------------------- Category

bool CCategoryNode::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  if (id == EElement::pFeature) {
    CNode* feature = context.Resolve(*this, child, false);
    m_features.push_back(feature);
    return true;
  }
  return CValueNode::ConfigureElement(context, id, child);
}

void CCategoryNode::GetFeatures(FeatureList_t& Features) const {
  CEntryGuard guard(m_map);
  Features.clear();
  for (CNode* node : m_features) {
    if (auto* value = dynamic_cast<IValue*>(node)) Features.push_back(value);
  }
}

void CCategoryNode::FromString(const gcstring&, bool) {
  throw LOGICAL_ERROR_EXCEPTION("Node '%s': a category has no value", m_name.c_str());
}

// ---------------------------------------------------------------- Port

bool CPortNode::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  switch (id) {
    case EElement::ChunkID: {
      std::string_view text = CLoadContext::Text(child);
      if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) text.remove_prefix(2);
      int64_t value = 0;
      if (text.empty() || text.size() > 16 || !ParseInteger(std::string("0x") + std::string(text), value)) {
        context.Fail(this, child, "bad chunk ID");
      }
      m_chunkID = static_cast<uint64_t>(value);
      m_hasChunkID = true;
      return true;
    }
    case EElement::pChunkID: m_pChunkID = context.Resolve(*this, child); return true;
    case EElement::SwapEndianess: m_swapEndianess = context.YesNo(*this, child); return true;
    case EElement::CacheChunkData: context.YesNo(*this, child); return true;
    default: return CNode::ConfigureElement(context, id, child);
  }
}

EAccessMode CPortNode::OwnAccessMode() {
  if (IsChunkPort()) return m_chunkAttached ? RO : NA;
  return m_port ? m_port->GetAccessMode() : NA;
}

uint64_t CPortNode::ChunkID() {
  if (m_hasChunkID) return m_chunkID;
  return m_pChunkID ? static_cast<uint64_t>(m_pChunkID->GetInt(false, false)) : 0;
}

void CPortNode::ReadPort(void* buffer, int64_t address, int64_t length) {
  if (length < 0) throw INVALID_ARGUMENT_EXCEPTION("Port '%s': negative length", m_name.c_str());
  if (IsChunkPort()) {
    if (!m_chunkAttached) throw ACCESS_EXCEPTION("Port '%s': no chunk data attached", m_name.c_str());
    if (address < 0 || static_cast<uint64_t>(address) > m_chunkLength ||
        static_cast<uint64_t>(length) > m_chunkLength - static_cast<uint64_t>(address)) {
      throw ACCESS_EXCEPTION("Port '%s': read of %" PRId64 " bytes at %" PRId64 " lies outside the chunk of %zu bytes",
                             m_name.c_str(), length, address, m_chunkLength);
    }
    if (length > 0) std::memcpy(buffer, m_chunkData + address, static_cast<size_t>(length));
    return;
  }
  if (m_port == nullptr) throw ACCESS_EXCEPTION("Port '%s' is not connected", m_name.c_str());
  m_port->Read(buffer, address, length);
}

void CPortNode::WritePort(const void* buffer, int64_t address, int64_t length) {
  if (length < 0) throw INVALID_ARGUMENT_EXCEPTION("Port '%s': negative length", m_name.c_str());
  if (IsChunkPort()) throw ACCESS_EXCEPTION("Port '%s': chunk data are read-only", m_name.c_str());
  if (m_port == nullptr) throw ACCESS_EXCEPTION("Port '%s' is not connected", m_name.c_str());
  m_port->Write(buffer, address, length);
}

void CPortNode::Read(void* pBuffer, int64_t Address, int64_t Length) {
  CEntryGuard guard(m_map);
  ReadPort(pBuffer, Address, Length);
}

void CPortNode::Write(const void* pBuffer, int64_t Address, int64_t Length) {
  CEntryGuard guard(m_map);
  WritePort(pBuffer, Address, Length);
}

void CPortNode::AttachChunk(const uint8_t* data, size_t length) {
  m_chunkData = data;
  m_chunkLength = length;
  m_chunkAttached = true;
  m_map.PropagateChange(this, true);
}

void CPortNode::DetachChunk() {
  if (!m_chunkAttached) return;
  m_chunkAttached = false;
  m_chunkData = nullptr;
  m_chunkLength = 0;
  m_map.PropagateChange(this, true);
}

void CPortNode::MoveChunk(const uint8_t* newBase, const uint8_t* oldBase) {
  if (!m_chunkAttached) return;
  m_chunkData = newBase + (m_chunkData - oldBase);
  m_map.PropagateChange(this, true);
}

}  // namespace Engine
}  // namespace GenApi
