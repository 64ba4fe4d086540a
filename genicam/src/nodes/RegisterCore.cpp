// CRegisterCore: address arithmetic, byte cache and the IRegister entry points of register nodes.
#include "nodes/RegisterCore.h"

#include <cinttypes>
#include <cstring>

#include "base/NumberParsing.h"
#include "nodes/LoadContext.h"
#include "nodes/NodeMap.h"
#include "nodes/Port.h"

namespace GenApi {
namespace Engine {

namespace {
constexpr int64_t kMaxRegisterLength = 64 * 1024 * 1024;
}  // namespace

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

bool CRegisterCore::Configure(CNode& owner, CLoadContext& context, EElement id, const CXmlElement& child) {
  switch (id) {
  case EElement::Address:
    m_address =
        static_cast<int64_t>(static_cast<uint64_t>(m_address) + static_cast<uint64_t>(context.Integer(owner, child)));
    return true;
  case EElement::IntSwissKnife: m_pAddresses.push_back(context.CreateEmbeddedSwissKnife(owner, child)); return true;
  case EElement::pAddress: m_pAddresses.push_back(context.Resolve(owner, child)); return true;
  case EElement::pIndex: {
    CIndexPart part{context.Resolve(owner, child), nullptr, 0, false};
    std::string_view offset;
    if (child.FindAttribute("Offset", offset)) {
      if (!ParseInteger(offset, part.offset)) context.Fail(&owner, child, "bad Offset attribute");
      part.hasOffset = true;
    } else if (child.FindAttribute("pOffset", offset)) {
      part.pOffset = context.ResolveName(owner, TrimSpaces(offset), child);
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

void CRegisterCore::SetBytes(CNode& owner, const uint8_t* buffer, int64_t size) {
  CEntryGuard guard(owner.Map());
  owner.CheckWritable();
  CDepthGuard depth(owner);
  const int64_t length = Length();
  if (size < 0 || size > length) {
    throw OUT_OF_RANGE_EXCEPTION("Node '%s': %" PRId64 " bytes do not fit the register of %" PRId64 " bytes",
                                 owner.Name().c_str(), size, length);
  }
  Write(owner, buffer, size);
  owner.ValueChanged();
}

void CRegisterCore::GetBytes(CNode& owner, uint8_t* buffer, int64_t size, bool ignoreCache) {
  CEntryGuard guard(owner.Map());
  owner.CheckReadable();
  CDepthGuard depth(owner);
  const int64_t length = Length();
  if (size < 0 || size > length) {
    throw OUT_OF_RANGE_EXCEPTION("Node '%s': %" PRId64 " bytes asked from a register of %" PRId64 " bytes",
                                 owner.Name().c_str(), size, length);
  }
  if (size == length) {
    Read(owner, buffer, length, ignoreCache);
    return;
  }
  std::vector<uint8_t> all(static_cast<size_t>(length));
  Read(owner, all.data(), length, ignoreCache);
  if (size > 0) std::memcpy(buffer, all.data(), static_cast<size_t>(size));
}

int64_t CRegisterCore::PublicLength(CNode& owner) {
  CEntryGuard guard(owner.Map());
  CDepthGuard depth(owner);
  return Length();
}

int64_t CRegisterCore::PublicAddress(CNode& owner) {
  CEntryGuard guard(owner.Map());
  CDepthGuard depth(owner);
  return Address(false);
}

}  // namespace Engine
}  // namespace GenApi
