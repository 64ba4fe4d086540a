#pragma once
// SwissKnife, IntSwissKnife, Converter and IntConverter: values computed by formulas over other nodes.
#include <string>

#include "formula/Formula.h"
#include "nodes/ValueNodes.h"

namespace GenApi {
namespace Engine {

// pVariable / Constant / Expression elements into a formula set.
bool ConfigureFormulaVariable(CNode& owner, CLoadContext& context, EElement id, const pugi::xml_node& child,
                              CFormulaSet& set);

class CIntSwissKnifeNode : public CIntegerBase {
public:
  CIntSwissKnifeNode(CNodeMapImpl& map, std::string name)
      : CIntegerBase(map, std::move(name), intfIInteger), m_set(this, true) {}
  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override;
  EAccessMode OwnAccessMode() override { return RO; }
  int64_t GetInt(bool verify, bool ignoreCache) override;
  void SetInt(int64_t value, bool verify) override;

private:
  CFormulaSet m_set;
  std::string m_formula;
  bool m_hasFormula = false;
  int m_program = -1;
};

class CSwissKnifeNode : public CFloatBase {
public:
  CSwissKnifeNode(CNodeMapImpl& map, std::string name)
      : CFloatBase(map, std::move(name), intfIFloat), m_set(this, false) {}
  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override;
  EAccessMode OwnAccessMode() override { return RO; }
  double GetFloat(bool verify, bool ignoreCache) override;
  void SetFloat(double value, bool verify) override;

private:
  CFormulaSet m_set;
  std::string m_formula;
  bool m_hasFormula = false;
  int m_program = -1;
};

// The common part of both converters: FROM is the user value, TO the value of pValue.
struct CConverterCore {
  explicit CConverterCore(CNode* owner, bool integerMode) : set(owner, integerMode) {}
  bool Configure(CNode& owner, CLoadContext& context, EElement id, const pugi::xml_node& child);
  void Finish(CNode& owner, CLoadContext& context);
  CFormulaSet set;
  std::string formulaTo;
  std::string formulaFrom;
  bool hasTo = false;
  bool hasFrom = false;
  int programTo = -1;
  int programFrom = -1;
  CNode* target = nullptr;
  ESlope slope = Automatic;
  bool isLinear = false;
};

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

class CConverterNode : public CFloatBase {
public:
  CConverterNode(CNodeMapImpl& map, std::string name)
      : CFloatBase(map, std::move(name), intfIFloat), m_core(this, false) {}
  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override { m_core.Finish(*this, context); }
  EAccessMode OwnAccessMode() override { return m_core.target->ComputeAccessMode(); }
  double GetFloat(bool verify, bool ignoreCache) override;
  void SetFloat(double value, bool verify) override;
  double NativeMin() override;
  double NativeMax() override;
  // A linear converter over a target with an increment steps by the converted increment.
  bool HasFloatInc() override;
  double GetFloatInc() override;

private:
  double From(double to, bool ignoreCache);
  CConverterCore m_core;
};

}  // namespace Engine
}  // namespace GenApi
