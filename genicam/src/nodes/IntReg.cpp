// IntReg, MaskedIntReg and StructReg entries: integers in port memory, whole or a bit field.
#include "nodes/IntReg.h"

#include <algorithm>
#include <cinttypes>
#include <limits>

#include "nodes/LoadContext.h"
#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

bool CIntRegNode::ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) {
  switch (id) {
  case EElement::Sign: {
    const std::string_view text = CLoadContext::Text(child);
    if (text == "Signed") m_signed = true;
    else if (text == "Unsigned") m_signed = false;
    else context.Fail(this, child, "unknown sign");
    return true;
  }
  case EElement::Bit:
    m_lsb = m_msb = context.Integer(*this, child);
    m_masked = true;
    return true;
  case EElement::LSB:
    m_lsb = context.Integer(*this, child);
    m_masked = true;
    return true;
  case EElement::MSB:
    m_msb = context.Integer(*this, child);
    m_masked = true;
    return true;
  default: return CRegisterNode::ConfigureElement(context, id, child);
  }
}

void CIntRegNode::FinishLoading(CLoadContext& context) {
  CRegisterNode::FinishLoading(context);
  if (m_masked) {
    if (m_lsb < 0 && m_msb < 0) m_lsb = m_msb = 0;
    if (m_lsb < 0) m_lsb = m_msb;
    if (m_msb < 0) m_msb = m_lsb;
    if (m_lsb > 4096 || m_msb > 4096) context.Fail(this, CXmlElement(), "bit number out of range");
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
  if (verify) Verify(value, true);
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

int64_t CIntRegNode::NativeMin() {
  unsigned shift = 0;
  unsigned width = 0;
  const int64_t length = m_core.Length();
  Field(length < 1 || length > 8 ? 8 : length, shift, width);
  int64_t min = 0;
  if (m_signed)
    min = width >= 64 ? std::numeric_limits<int64_t>::min() : -static_cast<int64_t>(uint64_t(1) << (width - 1));
  return min;
}

int64_t CIntRegNode::NativeMax() {
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
  return max;
}

}  // namespace Engine
}  // namespace GenApi
