#pragma once
// IntConverter: an integer target seen through FormulaFrom and written through FormulaTo, in 64-bit integers.
#include <cstdint>
#include <string>

#include "nodes/ConverterValueNode.h"
#include "nodes/IntegerBase.h"

namespace GenApi {
namespace Engine {

class CIntConverterNode : public CConverterValueNode<CIntegerBase, int64_t> {
public:
  CIntConverterNode(CNodeMapImpl& map, std::string name) : CConverterValueNode(map, std::move(name), intfIInteger) {}
  int64_t GetInt(bool, bool ignoreCache) override { return Read(ignoreCache); }
  void SetInt(int64_t value, bool verify) override {
    if (verify) Verify(value, false);
    Write(value, verify);
  }
  int64_t NativeMin() override { return ConvertedLimit(false); }
  int64_t NativeMax() override { return ConvertedLimit(true); }
};

}  // namespace Engine
}  // namespace GenApi
