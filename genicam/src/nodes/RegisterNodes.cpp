// Register nodes: address arithmetic, byte cache, integer/float/string codecs.
#include "nodes/RegisterNodes.h"

#include <cinttypes>
#include <cmath>
#include <cstring>
#include <limits>

#include "load/LoadContext.h"
#include "load/NumberParsing.h"
#include "nodes/NodeMap.h"
#include "nodes/ValueNodes.h"

namespace GenApi {
namespace Engine {

namespace {
constexpr int64_t kMaxRegisterLength = 64 * 1024 * 1024;

uint64_t DecodeUnsigned(const uint8_t* bytes, int64_t length, bool littleEndian) {
  uint64_t raw = 0;
  if (littleEndian) {
    for (int64_t i = length; i-- > 0;) raw = (raw << 8) | bytes[i];
  } else {
    for (int64_t i = 0; i < length; ++i) raw = (raw << 8) | bytes[i];
  }
  return raw;
}

void EncodeUnsigned(uint64_t raw, uint8_t* bytes, int64_t length, bool littleEndian) {
  for (int64_t i = 0; i < length; ++i) {
    const uint8_t byte = static_cast<uint8_t>(raw >> (8 * i));
    bytes[littleEndian ? i : length - 1 - i] = byte;
  }
}

uint64_t MaskOf(unsigned width) { return width >= 64 ? ~uint64_t(0) : ((uint64_t(1) << width) - 1); }
}  // namespace

// ---------------------------------------------------------------- CRegisterCore

bool CRegisterCore::Configure(CNode& owner, CLoadContext& context, EElement id, const pugi::xml_node& child) {
  switch (id) {
    case EElement::Address:
      m_address = static_cast<int64_t>(static_cast<uint64_t>(m_address) +
                                       static_cast<uint64_t>(context.Integer(owner, child)));
      return true;
    case EElement::IntSwissKnife:
      m_pAddresses.push_back(context.CreateEmbeddedSwissKnife(owner, child));
      return true;
    case EElement::pAddress: m_pAddresses.push_back(context.Resolve(owner, child)); return true;
    case EElement::pIndex: {
      CIndexPart part{context.Resolve(owner, child), nullptr, 0, false};
      if (const pugi::xml_attribute offset = child.attribute("Offset")) {
        if (!ParseInteger(offset.value(), part.offset)) context.Fail(&owner, child, "bad Offset attribute");
        part.hasOffset = true;
      } else if (const pugi::xml_attribute pOffset = child.attribute("pOffset")) {
        part.pOffset = context.ResolveName(owner, TrimSpaces(pOffset.value()), child);
        part.hasOffset = true;
      }
      m_indexes.push_back(part);
      return true;
    }
    case EElement::Length:
      m_length = context.Integer(owner, child);
      m_hasLength = true;
      if (m_length < 0 || m_length > kMaxRegisterLength) context.Fail(&owner, child, "register length out of range");
      return true;
    case EElement::pLength: m_pLength = context.Resolve(owner, child); return true;
    case EElement::AccessMode: {
      const std::string_view text = CLoadContext::Text(child);
      if (text == "RO") m_accessMode = RO;
      else if (text == "RW") m_accessMode = RW;
      else if (text == "WO") m_accessMode = WO;
      else context.Fail(&owner, child, "unknown access mode");
      return true;
    }
    case EElement::pPort: {
      CNode* port = context.Resolve(owner, child);
      m_port = dynamic_cast<CPortNode*>(port);
      if (m_port == nullptr) context.Fail(&owner, child, "pPort does not name a Port node");
      return true;
    }
    case EElement::Cachable: {
      const std::string_view text = CLoadContext::Text(child);
      if (text == "NoCache") m_caching = NoCache;
      else if (text == "WriteThrough") m_caching = WriteThrough;
      else if (text == "WriteAround") m_caching = WriteAround;
      else context.Fail(&owner, child, "unknown caching mode");
      m_cachingSet = true;
      return true;
    }
    case EElement::Endianess: {
      const std::string_view text = CLoadContext::Text(child);
      if (text == "LittleEndian") m_littleEndian = true;
      else if (text == "BigEndian") m_littleEndian = false;
      else context.Fail(&owner, child, "unknown endianness");
      return true;
    }
    default: return false;
  }
}

void CRegisterCore::Finish(CNode& owner, CLoadContext& context) {
  if (m_port == nullptr) {
    // Registers without pPort use the device port, as the only port most descriptions have.
    m_port = dynamic_cast<CPortNode*>(context.Map().Find("Device"));
    if (m_port != nullptr) CLoadContext::AddDependency(owner, *m_port);
  }
}

int64_t CRegisterCore::Address(bool ignoreCache) {
  uint64_t address = static_cast<uint64_t>(m_address);
  for (CNode* part : m_pAddresses) address += static_cast<uint64_t>(part->GetInt(false, ignoreCache));
  for (const CIndexPart& part : m_indexes) {
    int64_t stride = 0;
    if (part.pOffset != nullptr) stride = part.pOffset->GetInt(false, ignoreCache);
    else if (part.hasOffset) stride = part.offset;
    else stride = Length();
    address += static_cast<uint64_t>(part.index->GetInt(false, ignoreCache)) * static_cast<uint64_t>(stride);
  }
  return static_cast<int64_t>(address);
}

int64_t CRegisterCore::Length() {
  if (m_pLength == nullptr) return m_length;
  const int64_t length = m_pLength->GetInt(false, false);
  if (length < 0 || length > kMaxRegisterLength) {
    throw OUT_OF_RANGE_EXCEPTION("Register length %" PRId64 " is out of range", length);
  }
  return length;
}

EAccessMode CRegisterCore::AccessMode() {
  if (m_port == nullptr) return NA;
  return Combine(m_accessMode, m_port->ComputeAccessMode());
}

void CRegisterCore::Read(CNode& owner, uint8_t* buffer, int64_t length, bool ignoreCache) {
  if (!ignoreCache && m_cacheValid && m_caching != NoCache && static_cast<int64_t>(m_cache.size()) == length) {
    if (length > 0) std::memcpy(buffer, m_cache.data(), static_cast<size_t>(length));
    return;
  }
  if (m_port == nullptr) throw ACCESS_EXCEPTION("Node '%s' has no port", owner.Name().c_str());
  const int64_t address = Address(ignoreCache);
  m_port->ReadPort(buffer, address, length);
  if (m_caching != NoCache) {
    m_cache.assign(buffer, buffer + length);
    m_cacheValid = true;
  }
}

void CRegisterCore::Write(CNode& owner, const uint8_t* buffer, int64_t length) {
  if (m_port == nullptr) throw ACCESS_EXCEPTION("Node '%s' has no port", owner.Name().c_str());
  const int64_t address = Address(false);
  m_cacheValid = false;
  m_port->WritePort(buffer, address, length);
  if (m_caching == WriteThrough) {
    m_cache.assign(buffer, buffer + length);
    m_cacheValid = true;
  }
}

// ---------------------------------------------------------------- CRegisterBase

bool CRegisterBase::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  if (m_core.Configure(*this, context, id, child)) return true;
  return CValueNode::ConfigureElement(context, id, child);
}

void CRegisterBase::FinishLoading(CLoadContext& context) { m_core.Finish(*this, context); }

void CRegisterBase::Set(const uint8_t* pBuffer, int64_t Length, bool) {
  CEntryGuard guard(m_map);
  CheckWritable();
  CDepthGuard depth(*this);
  const int64_t length = m_core.Length();
  if (Length < 0 || Length > length) {
    throw OUT_OF_RANGE_EXCEPTION("Node '%s': %" PRId64 " bytes do not fit the register of %" PRId64 " bytes",
                                 m_name.c_str(), Length, length);
  }
  m_core.Write(*this, pBuffer, Length);
  ValueChanged();
}

void CRegisterBase::Get(uint8_t* pBuffer, int64_t Length, bool, bool IgnoreCache) {
  CEntryGuard guard(m_map);
  CheckReadable();
  CDepthGuard depth(*this);
  const int64_t length = m_core.Length();
  if (Length < 0 || Length > length) {
    throw OUT_OF_RANGE_EXCEPTION("Node '%s': %" PRId64 " bytes asked from a register of %" PRId64 " bytes",
                                 m_name.c_str(), Length, length);
  }
  if (Length == length) {
    m_core.Read(*this, pBuffer, length, IgnoreCache);
    return;
  }
  std::vector<uint8_t> all(static_cast<size_t>(length));
  m_core.Read(*this, all.data(), length, IgnoreCache);
  if (Length > 0) std::memcpy(pBuffer, all.data(), static_cast<size_t>(Length));
}

int64_t CRegisterBase::GetLength() {
  CEntryGuard guard(m_map);
  CDepthGuard depth(*this);
  return m_core.Length();
}

int64_t CRegisterBase::GetAddress() {
  CEntryGuard guard(m_map);
  CDepthGuard depth(*this);
  return m_core.Address(false);
}

// ---------------------------------------------------------------- Register

gcstring CRawRegisterNode::ToString(bool Verify, bool IgnoreCache) {
  CEntryGuard guard(m_map);
  const int64_t length = GetLength();
  std::vector<uint8_t> bytes(static_cast<size_t>(length));
  Get(bytes.data(), length, Verify, IgnoreCache);
  static const char kDigits[] = "0123456789ABCDEF";
  std::string text = "0x";
  for (uint8_t byte : bytes) {
    text.push_back(kDigits[byte >> 4]);
    text.push_back(kDigits[byte & 15]);
  }
  return gcstring(text);
}

void CRawRegisterNode::FromString(const gcstring& ValueStr, bool Verify) {
  std::string_view text = TrimSpaces(ValueStr);
  if (text.size() >= 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) text.remove_prefix(2);
  if (text.size() % 2 != 0) throw INVALID_ARGUMENT_EXCEPTION("Node '%s': odd number of hex digits", m_name.c_str());
  std::vector<uint8_t> bytes;
  for (size_t i = 0; i < text.size(); i += 2) {
    int64_t value = 0;
    if (!ParseInteger(std::string("0x") + std::string(text.substr(i, 2)), value)) {
      throw INVALID_ARGUMENT_EXCEPTION("Node '%s': '%s' is not hexadecimal", m_name.c_str(), ValueStr.c_str());
    }
    bytes.push_back(static_cast<uint8_t>(value));
  }
  Set(bytes.data(), static_cast<int64_t>(bytes.size()), Verify);
}

// ---------------------------------------------------------------- IntReg / MaskedIntReg

bool CIntRegNode::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  switch (id) {
    case EElement::Sign: {
      const std::string_view text = CLoadContext::Text(child);
      if (text == "Signed") m_signed = true;
      else if (text == "Unsigned") m_signed = false;
      else context.Fail(this, child, "unknown sign");
      return true;
    }
    case EElement::Unit: m_unit = std::string(CLoadContext::Text(child)); return true;
    case EElement::Representation: {
      const std::string_view text = CLoadContext::Text(child);
      static const char* const kNames[] = {"Linear",    "Logarithmic", "Boolean",   "PureNumber",
                                           "HexNumber", "IPV4Address", "MACAddress"};
      bool known = false;
      for (int i = 0; i < 7; ++i) {
        if (text == kNames[i]) {
          m_representation = static_cast<ERepresentation>(i);
          known = true;
        }
      }
      if (!known) context.Fail(this, child, "unknown representation");
      return true;
    }
    case EElement::Bit:
      m_lsb = m_msb = context.Integer(*this, child);
      m_masked = true;
      return true;
    case EElement::LSB: m_lsb = context.Integer(*this, child); m_masked = true; return true;
    case EElement::MSB: m_msb = context.Integer(*this, child); m_masked = true; return true;
    default: return CRegisterBase::ConfigureElement(context, id, child);
  }
}

void CIntRegNode::FinishLoading(CLoadContext& context) {
  CRegisterBase::FinishLoading(context);
  if (m_masked) {
    if (m_lsb < 0 && m_msb < 0) m_lsb = m_msb = 0;
    if (m_lsb < 0) m_lsb = m_msb;
    if (m_msb < 0) m_msb = m_lsb;
    if (m_lsb > 4096 || m_msb > 4096) context.Fail(this, pugi::xml_node(), "bit number out of range");
  }
}

void CIntRegNode::Field(int64_t length, unsigned& shift, unsigned& width) {
  const int64_t bits = 8 * length;
  if (!m_masked) {
    shift = 0;
    width = static_cast<unsigned>(bits);
    return;
  }
  int64_t lsbPosition = m_lsb;
  int64_t msbPosition = m_msb;
  if (!m_core.m_littleEndian) {
    // Big-endian registers number their bits from the most significant one.
    lsbPosition = bits - 1 - m_lsb;
    msbPosition = bits - 1 - m_msb;
  }
  const int64_t low = std::min(lsbPosition, msbPosition);
  const int64_t high = std::max(lsbPosition, msbPosition);
  if (low < 0 || high >= bits) {
    throw RUNTIME_EXCEPTION("Node '%s': bits %" PRId64 "..%" PRId64 " lie outside the %" PRId64 "-byte register",
                            m_name.c_str(), m_lsb, m_msb, length);
  }
  shift = static_cast<unsigned>(low);
  width = static_cast<unsigned>(high - low + 1);
}

int64_t CIntRegNode::GetInt(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  const int64_t length = m_core.Length();
  if (length < 1 || length > 8) {
    throw RUNTIME_EXCEPTION("Node '%s': an integer register of %" PRId64 " bytes is not supported", m_name.c_str(),
                            length);
  }
  // Zeroed like every register buffer here: a port that reports more bytes than it wrote must not turn stack
  // garbage into a value.
  uint8_t bytes[8] = {};
  m_core.Read(*this, bytes, length, ignoreCache);
  unsigned shift = 0;
  unsigned width = 0;
  Field(length, shift, width);
  uint64_t value = (DecodeUnsigned(bytes, length, m_core.m_littleEndian) >> shift) & MaskOf(width);
  if (m_signed && width < 64 && ((value >> (width - 1)) & 1)) value |= ~MaskOf(width);
  return static_cast<int64_t>(value);
}

void CIntRegNode::SetInt(int64_t value, bool verify) {
  CDepthGuard depth(*this);
  if (verify) CheckIntRange(*this, value, GetIntMin(), GetIntMax(), 1, false);
  const int64_t length = m_core.Length();
  if (length < 1 || length > 8) {
    throw RUNTIME_EXCEPTION("Node '%s': an integer register of %" PRId64 " bytes is not supported", m_name.c_str(),
                            length);
  }
  unsigned shift = 0;
  unsigned width = 0;
  Field(length, shift, width);
  uint8_t bytes[8] = {};
  uint64_t raw = static_cast<uint64_t>(value) & MaskOf(width);
  if (width < 8 * length) {
    m_core.Read(*this, bytes, length, false);
    const uint64_t old = DecodeUnsigned(bytes, length, m_core.m_littleEndian);
    raw = (old & ~(MaskOf(width) << shift)) | (raw << shift);
  }
  EncodeUnsigned(raw, bytes, length, m_core.m_littleEndian);
  m_core.Write(*this, bytes, length);
  ValueChanged();
}

int64_t CIntRegNode::GetIntMin() {
  CDepthGuard depth(*this);
  unsigned shift = 0;
  unsigned width = 0;
  const int64_t length = m_core.Length();
  Field(length < 1 || length > 8 ? 8 : length, shift, width);
  int64_t min = 0;
  if (m_signed) min = width >= 64 ? std::numeric_limits<int64_t>::min() : -static_cast<int64_t>(uint64_t(1) << (width - 1));
  return std::max(min, m_imposedMin);
}

int64_t CIntRegNode::GetIntMax() {
  CDepthGuard depth(*this);
  unsigned shift = 0;
  unsigned width = 0;
  const int64_t length = m_core.Length();
  Field(length < 1 || length > 8 ? 8 : length, shift, width);
  int64_t max = 0;
  if (m_signed) {
    max = width >= 64 ? std::numeric_limits<int64_t>::max() : static_cast<int64_t>((uint64_t(1) << (width - 1)) - 1);
  } else {
    max = width >= 63 ? std::numeric_limits<int64_t>::max() : static_cast<int64_t>(MaskOf(width));
  }
  return std::min(max, m_imposedMax);
}

void CIntRegNode::SetValue(int64_t Value, bool Verify) {
  CEntryGuard guard(m_map);
  CheckWritable(std::to_string(Value));
  SetInt(Value, Verify);
}

int64_t CIntRegNode::GetValue(bool Verify, bool IgnoreCache) {
  CEntryGuard guard(m_map);
  CheckReadable();
  const int64_t value = GetInt(Verify, IgnoreCache);
  if (Verify) CheckIntRange(*this, value, GetIntMin(), GetIntMax(), 1, false);
  return value;
}

int64_t CIntRegNode::GetMin() {
  CEntryGuard guard(m_map);
  return GetIntMin();
}
int64_t CIntRegNode::GetMax() {
  CEntryGuard guard(m_map);
  return GetIntMax();
}
void CIntRegNode::ImposeMin(int64_t Value) {
  CEntryGuard guard(m_map);
  m_imposedMin = Value;
  m_map.PropagateChange(this, false);
}
void CIntRegNode::ImposeMax(int64_t Value) {
  CEntryGuard guard(m_map);
  m_imposedMax = Value;
  m_map.PropagateChange(this, false);
}
gcstring CIntRegNode::ToString(bool Verify, bool IgnoreCache) {
  return gcstring(IntToText(GetValue(Verify, IgnoreCache), m_representation));
}
void CIntRegNode::FromString(const gcstring& ValueStr, bool Verify) { SetValue(TextToInt(*this, ValueStr), Verify); }

// ---------------------------------------------------------------- FloatReg

bool CFloatRegNode::ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) {
  switch (id) {
    case EElement::Unit: m_unit = std::string(CLoadContext::Text(child)); return true;
    case EElement::Representation: return true;
    case EElement::DisplayNotation: {
      const std::string_view text = CLoadContext::Text(child);
      if (text == "Fixed") m_displayNotation = fnFixed;
      else if (text == "Scientific") m_displayNotation = fnScientific;
      else m_displayNotation = fnAutomatic;
      return true;
    }
    case EElement::DisplayPrecision: m_displayPrecision = context.Integer(*this, child); return true;
    default: return CRegisterBase::ConfigureElement(context, id, child);
  }
}

void CFloatRegNode::FinishLoading(CLoadContext& context) {
  m_core.SetDefaultCaching(WriteAround);
  CRegisterBase::FinishLoading(context);
}

double CFloatRegNode::GetFloat(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  const int64_t length = m_core.Length();
  if (length != 4 && length != 8) {
    throw RUNTIME_EXCEPTION("Node '%s': a float register of %" PRId64 " bytes is not supported", m_name.c_str(),
                            length);
  }
  uint8_t bytes[8] = {};
  m_core.Read(*this, bytes, length, ignoreCache);
  const uint64_t raw = DecodeUnsigned(bytes, length, m_core.m_littleEndian);
  if (length == 4) {
    const uint32_t raw32 = static_cast<uint32_t>(raw);
    float value = 0;
    std::memcpy(&value, &raw32, 4);
    return value;
  }
  double value = 0;
  std::memcpy(&value, &raw, 8);
  return value;
}

void CFloatRegNode::SetFloat(double value, bool verify) {
  CDepthGuard depth(*this);
  if (verify) CheckFloatRange(*this, value, GetFloatMin(), GetFloatMax());
  const int64_t length = m_core.Length();
  if (length != 4 && length != 8) {
    throw RUNTIME_EXCEPTION("Node '%s': a float register of %" PRId64 " bytes is not supported", m_name.c_str(),
                            length);
  }
  uint64_t raw = 0;
  if (length == 4) {
    const float single = static_cast<float>(value);
    uint32_t raw32 = 0;
    std::memcpy(&raw32, &single, 4);
    raw = raw32;
  } else {
    std::memcpy(&raw, &value, 8);
  }
  uint8_t bytes[8] = {};
  EncodeUnsigned(raw, bytes, length, m_core.m_littleEndian);
  m_core.Write(*this, bytes, length);
  ValueChanged();
}

int64_t CFloatRegNode::GetInt(bool verify, bool ignoreCache) {
  return ClampToInt64(GetFloat(verify, ignoreCache));  // truncated toward zero, as everywhere
}
// A 4-byte register holds a single-precision value: its range is the float range.
double CFloatRegNode::GetFloatMin() {
  const double native = m_core.Length() == 4 ? -static_cast<double>(std::numeric_limits<float>::max())
                                             : -std::numeric_limits<double>::max();
  return std::max(native, m_imposedMin);
}
double CFloatRegNode::GetFloatMax() {
  const double native = m_core.Length() == 4 ? static_cast<double>(std::numeric_limits<float>::max())
                                             : std::numeric_limits<double>::max();
  return std::min(native, m_imposedMax);
}
int64_t CFloatRegNode::GetIntMin() { return ClampToInt64(GetFloatMin()); }
int64_t CFloatRegNode::GetIntMax() { return ClampToInt64(GetFloatMax()); }

void CFloatRegNode::SetValue(double Value, bool Verify) {
  CEntryGuard guard(m_map);
  CheckWritable(FloatToText(Value));
  SetFloat(Value, Verify);
}
double CFloatRegNode::GetValue(bool Verify, bool IgnoreCache) {
  CEntryGuard guard(m_map);
  CheckReadable();
  const double value = GetFloat(Verify, IgnoreCache);
  if (Verify) CheckFloatRange(*this, value, GetFloatMin(), GetFloatMax());
  return value;
}
double CFloatRegNode::GetMin() {
  CEntryGuard guard(m_map);
  return GetFloatMin();
}
double CFloatRegNode::GetMax() {
  CEntryGuard guard(m_map);
  return GetFloatMax();
}
double CFloatRegNode::GetInc() { throw RUNTIME_EXCEPTION("Node '%s' has no increment", m_name.c_str()); }
void CFloatRegNode::ImposeMin(double Value) {
  CEntryGuard guard(m_map);
  m_imposedMin = Value;
  m_map.PropagateChange(this, false);
}
void CFloatRegNode::ImposeMax(double Value) {
  CEntryGuard guard(m_map);
  m_imposedMax = Value;
  m_map.PropagateChange(this, false);
}
gcstring CFloatRegNode::ToString(bool Verify, bool IgnoreCache) {
  return gcstring(FloatToText(GetValue(Verify, IgnoreCache)));
}
void CFloatRegNode::FromString(const gcstring& ValueStr, bool Verify) {
  SetValue(TextToFloat(*this, ValueStr), Verify);
}

// ---------------------------------------------------------------- StringReg

std::string CStringRegNode::GetStr(bool, bool ignoreCache) {
  CDepthGuard depth(*this);
  const int64_t length = m_core.Length();
  std::vector<uint8_t> bytes(static_cast<size_t>(length));
  m_core.Read(*this, bytes.data(), length, ignoreCache);
  size_t end = 0;
  while (end < bytes.size() && bytes[end] != 0) ++end;
  return std::string(reinterpret_cast<const char*>(bytes.data()), end);
}

void CStringRegNode::SetStr(const std::string& value, bool) {
  CDepthGuard depth(*this);
  const int64_t length = m_core.Length();
  if (static_cast<int64_t>(value.size()) > length) {
    throw OUT_OF_RANGE_EXCEPTION("Node '%s': a string of %zu characters does not fit %" PRId64 " bytes",
                                 m_name.c_str(), value.size(), length);
  }
  std::vector<uint8_t> bytes(static_cast<size_t>(length), 0);
  std::memcpy(bytes.data(), value.data(), value.size());
  m_core.Write(*this, bytes.data(), length);
  ValueChanged();
}

void CStringRegNode::SetValue(const gcstring& Value, bool Verify) {
  CEntryGuard guard(m_map);
  CheckWritable("'" + Value.substr(0, 64) + "'");
  SetStr(Value, Verify);
}

gcstring CStringRegNode::GetValue(bool Verify, bool IgnoreCache) {
  CEntryGuard guard(m_map);
  CheckReadable();
  return gcstring(GetStr(Verify, IgnoreCache));
}

int64_t CStringRegNode::GetMaxLength() {
  CEntryGuard guard(m_map);
  CDepthGuard depth(*this);
  return m_core.Length();
}

}  // namespace Engine
}  // namespace GenApi
