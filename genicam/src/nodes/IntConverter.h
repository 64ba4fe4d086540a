#pragma once
// IntConverter: an integer target seen through FormulaFrom and written through FormulaTo, in 64-bit integers.
#include <string>

#include "nodes/ConverterCore.h"
#include "nodes/IntegerBase.h"

namespace GenApi {
namespace Engine {

class CIntConverterNode : public CIntegerBase {
public:
  CIntConverterNode(CNodeMapImpl& map, std::string name)
      : CIntegerBase(map, std::move(name), intfIInteger), m_core(this, true) {}
  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override { m_core.Finish(*this, context); }
  EAccessMode OwnAccessMode() override { return m_core.target->ComputeAccessMode(); }
  int64_t GetInt(bool verify, bool ignoreCache) override;
  void SetInt(int64_t value, bool verify) override;
  int64_t NativeMin() override;
  int64_t NativeMax() override;

private:
  int64_t From(int64_t to, bool ignoreCache);
  CConverterCore m_core;
};

}  // namespace Engine
}  // namespace GenApi
