#pragma once
// StringReg: text in port memory; reads stop at the first zero byte, writes pad with zero bytes.
#include <cstdint>
#include <string>

#include "nodes/RegisterNode.h"
#include "nodes/StringBase.h"

namespace GenApi {
namespace Engine {

class CStringRegNode : public CRegisterNode<CStringBase> {
public:
  CStringRegNode(CNodeMapImpl& map, std::string name) : CRegisterNode(map, std::move(name), intfIString) {}
  int64_t GetMaxLength() override;
  std::string GetStr(bool verify, bool ignoreCache) override;
  void SetStr(const std::string& value, bool verify) override;
};

}  // namespace Engine
}  // namespace GenApi
