// FloatReg: IEEE single or double values in port memory, in either byte order.
#include "nodes/FloatReg.h"

#include <cinttypes>
#include <cstring>
#include <limits>

#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

void CFloatRegNode::FinishLoading(CLoadContext& context) {
  m_core.SetDefaultCaching(WriteAround);
  CRegisterNode::FinishLoading(context);
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
  if (verify) Verify(value);
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

// A 4-byte register holds a single-precision value: its range is the float range.
double CFloatRegNode::NativeMin() {
  return m_core.Length() == 4 ? -static_cast<double>(std::numeric_limits<float>::max())
                              : -std::numeric_limits<double>::max();
}
double CFloatRegNode::NativeMax() {
  return m_core.Length() == 4 ? static_cast<double>(std::numeric_limits<float>::max())
                              : std::numeric_limits<double>::max();
}

}  // namespace Engine
}  // namespace GenApi
