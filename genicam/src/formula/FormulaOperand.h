#pragma once
// What a formula reads from the nodes it names: values, limits and enumeration entries. The node map's nodes implement
// it, so formulas compile and evaluate without knowing the node types.
#include <cstdint>
#include <string>
#include <string_view>

namespace GenApi {
namespace Engine {

class IFormulaOperand {
public:
  // The node's name, for error messages.
  virtual const std::string& Name() const = 0;
  virtual int64_t GetInt(bool verify, bool ignoreCache) = 0;
  virtual double GetFloat(bool verify, bool ignoreCache) = 0;
  virtual int64_t GetIntMin() = 0;
  virtual int64_t GetIntMax() = 0;
  virtual int64_t GetIntInc() = 0;
  virtual double GetFloatMin() = 0;
  virtual double GetFloatMax() = 0;
  virtual double GetFloatInc() = 0;
  virtual bool IsFloatValued() const = 0;
  // Enumerations: the value of the entry with that symbolic name.
  virtual bool FindEntryValue(std::string_view symbolic, int64_t& value) = 0;

protected:
  ~IFormulaOperand() = default;
};

}  // namespace Engine
}  // namespace GenApi
