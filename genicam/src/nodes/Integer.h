#pragma once
// Integer: a value of its own, a pValue target (with pValueCopy) or one selected by pIndex; Min, Max, Inc.
#include <cstdint>
#include <string>

#include "nodes/IntegerBase.h"
#include "nodes/NumberNode.h"

namespace GenApi {
namespace Engine {

class CIntegerNode : public CNumberNode<CIntegerBase, int64_t> {
public:
  CIntegerNode(CNodeMapImpl& map, std::string name) : CNumberNode(map, std::move(name), intfIInteger) {}
  int64_t GetInt(bool, bool ignoreCache) override { return Read(ignoreCache); }
  void SetInt(int64_t value, bool verify) override {
    if (verify) Verify(value, true);
    Write(value, verify);
  }
  int64_t NativeMin() override { return Limit(m_min, false); }
  int64_t NativeMax() override { return Limit(m_max, true); }
  // Without an increment of its own, an Integer steps like the integer-valued node that holds its value.
  int64_t NativeInc() override;
};

}  // namespace Engine
}  // namespace GenApi
