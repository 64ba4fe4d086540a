#pragma once
// FloatReg: IEEE single (4 bytes) or double (8 bytes) values in port memory, in either byte order; WriteAround caching
// unless the description says otherwise.
#include <cstdint>
#include <string>

#include "nodes/FloatBase.h"
#include "nodes/RegisterNode.h"

namespace GenApi {
namespace Engine {

class CFloatRegNode : public CRegisterNode<CFloatBase> {
public:
  CFloatRegNode(CNodeMapImpl& map, std::string name) : CRegisterNode(map, std::move(name), intfIFloat) {}

  void FinishLoading(CLoadContext& context) override;
  double GetFloat(bool verify, bool ignoreCache) override;
  void SetFloat(double value, bool verify) override;
  double NativeMin() override;
  double NativeMax() override;
};

}  // namespace Engine
}  // namespace GenApi
