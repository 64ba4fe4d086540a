#pragma once
// Where Integer, Float, Boolean, Command, Enumeration and String nodes keep their value: a constant of their own
// (writable memory), another node (pValue), or one of several selected by an index node (pIndex + ValueIndexed).
#include <cstdint>
#include <string>
#include <vector>

#include "nodes/Node.h"

namespace GenApi {
namespace Engine {

class CLoadContext;

struct CSource {
  CNode* node = nullptr;
  int64_t intValue = 0;
  double floatValue = 0.0;
  std::string stringValue;
  bool present = false;
};

class CValueSource {
public:
  // Handles Value, pValue, pValueCopy, pIndex, ValueIndexed, pValueIndexed, ValueDefault, pValueDefault.
  // floatConstants: constants are parsed as floating point.
  bool Configure(CNode& owner, CLoadContext& context, EElement id, const CXmlElement& child, bool floatConstants,
                 bool stringConstants = false);
  // Fails the load when the node has no value at all.
  void Check(CNode& owner, CLoadContext& context, const CXmlElement& element) const;
  bool Present() const { return m_direct.present || m_pIndex != nullptr; }
  // The source that currently holds the value.
  CSource& Current(CNode& owner, bool ignoreCache);
  // The node that currently holds the value (the pValue target, or the node the index selects), whose limits the
  // owner takes when it has none of its own; null for a constant or when the index selects nothing.
  CNode* TargetNode(bool ignoreCache = false);

  int64_t GetInt(CNode& owner, bool ignoreCache);
  double GetFloat(CNode& owner, bool ignoreCache);
  std::string GetString(CNode& owner, bool ignoreCache);
  void SetInt(CNode& owner, int64_t value, bool verify);
  void SetFloat(CNode& owner, double value, bool verify);
  void SetString(CNode& owner, const std::string& value, bool verify);
  EAccessMode AccessMode(CNode& owner);
  bool CacheValid(CNode& owner);

private:
  struct CIndexed {
    int64_t index;
    CSource source;
  };
  CSource m_direct;
  CNode* m_pIndex = nullptr;
  std::vector<CIndexed> m_indexed;
  CSource m_default;
  std::vector<CNode*> m_copies;
};

}  // namespace Engine
}  // namespace GenApi
