#pragma once
// IntReg, MaskedIntReg and StructReg entries: integers in port memory, whole or a bit field (Bit, LSB/MSB), signed
// or unsigned, in either byte order. Limits follow the field width.
#include <cstdint>
#include <string>

#include "nodes/IntegerBase.h"
#include "nodes/RegisterNode.h"

namespace GenApi {
namespace Engine {

class CIntRegNode : public CRegisterNode<CIntegerBase> {
public:
  CIntRegNode(CNodeMapImpl& map, std::string name, bool masked)
      : CRegisterNode(map, std::move(name), intfIInteger), m_masked(masked) {}

  bool ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) override;
  void FinishLoading(CLoadContext& context) override;
  int64_t GetInt(bool verify, bool ignoreCache) override;
  void SetInt(int64_t value, bool verify) override;
  int64_t NativeMin() override;
  int64_t NativeMax() override;

private:
  // Bit position and width of the value inside the register of the given length.
  void Field(int64_t length, unsigned& shift, unsigned& width);
  bool m_masked;
  bool m_signed = false;
  int64_t m_lsb = -1;
  int64_t m_msb = -1;
};

}  // namespace Engine
}  // namespace GenApi
