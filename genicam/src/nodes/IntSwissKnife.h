#pragma once
// IntSwissKnife: a read-only integer computed by a formula in 64-bit integers.
#include <string>

#include "nodes/FormulaValueNode.h"
#include "nodes/IntegerBase.h"

namespace GenApi {
namespace Engine {

class CIntSwissKnifeNode : public CFormulaValueNode<CIntegerBase> {
public:
  CIntSwissKnifeNode(CNodeMapImpl& map, std::string name)
      : CFormulaValueNode(map, std::move(name), intfIInteger, true) {}
  int64_t GetInt(bool, bool ignoreCache) override { return Evaluate<int64_t>(ignoreCache); }
  void SetInt(int64_t, bool) override { RefuseWrite(); }
};

}  // namespace Engine
}  // namespace GenApi
