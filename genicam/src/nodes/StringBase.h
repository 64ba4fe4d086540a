#pragma once
// CStringBase: the IString plumbing (locking, access checks, texts) written once for String and StringReg nodes.
#include <string>

#include "nodes/ValueNode.h"

namespace GenApi {
namespace Engine {

class CStringBase : public CValueNode, public virtual IString {
public:
  using CValueNode::CValueNode;
  void SetValue(const gcstring& Value, bool Verify = true) override;
  gcstring GetValue(bool Verify = false, bool IgnoreCache = false) override;
  gcstring ToString(bool Verify = false, bool IgnoreCache = false) override { return GetValue(Verify, IgnoreCache); }
  void FromString(const gcstring& ValueStr, bool Verify = true) override { SetValue(ValueStr, Verify); }
};

}  // namespace Engine
}  // namespace GenApi
