#pragma once
// Register, IntReg, MaskedIntReg (and StructReg entries), FloatReg and StringReg: nodes backed by port memory.
#include <cstdint>
#include <string>
#include <vector>

#include "nodes/Node.h"
#include "nodes/ValueNodes.h"

namespace GenApi {
namespace Engine {

class CPortNode;

// Address, length, port, access mode and the byte cache of a register.
class CRegisterCore {
public:
  bool Configure(CNode& owner, CLoadContext& context, EElement id, const pugi::xml_node& child);
  void Finish(CNode& owner, CLoadContext& context);

  int64_t Address(bool ignoreCache);
  int64_t Length();
  bool HasFixedAddress() const { return m_pAddresses.empty() && m_indexes.empty() && m_pLength == nullptr; }
  int64_t FixedAddress() const { return m_address; }
  int64_t FixedLength() const { return m_length; }
  CPortNode* Port() const { return m_port; }
  EAccessMode AccessMode();
  ECachingMode Caching() const { return m_caching; }
  void SetDefaultCaching(ECachingMode mode) {
    if (!m_cachingSet) m_caching = mode;
  }

  // Reads length bytes, from the cache when it is valid and allowed.
  void Read(CNode& owner, uint8_t* buffer, int64_t length, bool ignoreCache);
  void Write(CNode& owner, const uint8_t* buffer, int64_t length);
  void Drop() { m_cacheValid = false; }
  bool Valid() const { return m_cacheValid; }

  EAccessMode m_accessMode = RO;
  bool m_littleEndian = true;

private:
  struct CIndexPart {
    CNode* index;
    CNode* pOffset;
    int64_t offset;
    bool hasOffset;
  };
  int64_t m_address = 0;
  std::vector<CNode*> m_pAddresses;  // pAddress and embedded IntSwissKnife
  std::vector<CIndexPart> m_indexes;
  int64_t m_length = 4;
  bool m_hasLength = false;
  CNode* m_pLength = nullptr;
  CPortNode* m_port = nullptr;
  ECachingMode m_caching = WriteThrough;
  bool m_cachingSet = false;
  std::vector<uint8_t> m_cache;
  bool m_cacheValid = false;
};

// Implements IRegister on top of a register core; shared by every register node type.
class CRegisterBase : public CValueNode, public virtual IRegister {
public:
  CRegisterBase(CNodeMapImpl& map, std::string name, EInterfaceType principal)
      : CValueNode(map, std::move(name), principal) {}
  void Set(const uint8_t* pBuffer, int64_t Length, bool Verify = true) override;
  void Get(uint8_t* pBuffer, int64_t Length, bool Verify = false, bool IgnoreCache = false) override;
  int64_t GetLength() override;
  int64_t GetAddress() override;

  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override;
  EAccessMode OwnAccessMode() override { return m_core.AccessMode(); }
  void DropCache() override { m_core.Drop(); }
  bool HasCache() const override { return m_core.Caching() != NoCache; }
  bool CacheValid() const override { return m_core.Valid() && m_core.Caching() != NoCache; }
  ECachingMode GetCachingMode() const override { return m_core.Caching(); }
  bool IsVolatile() const override { return m_core.Caching() == NoCache || CValueNode::IsVolatile(); }
  CRegisterCore& Core() { return m_core; }

protected:
  CRegisterCore m_core;
};

// Register: raw bytes.
class CRawRegisterNode : public CRegisterBase {
public:
  CRawRegisterNode(CNodeMapImpl& map, std::string name) : CRegisterBase(map, std::move(name), intfIRegister) {}
  gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
  void FromString(const gcstring& ValueStr, bool Verify = true) override;
};

// IntReg, MaskedIntReg and StructReg entries.
class CIntRegNode : public CRegisterBase, public virtual IInteger {
public:
  CIntRegNode(CNodeMapImpl& map, std::string name, bool masked)
      : CRegisterBase(map, std::move(name), intfIInteger), m_masked(masked) {}
  // IInteger (same plumbing as CIntegerBase)
  void SetValue(int64_t Value, bool Verify = true) override;
  int64_t GetValue(bool Verify = false, bool IgnoreCache = false) override;
  int64_t GetMin() override;
  int64_t GetMax() override;
  EIncMode GetIncMode() override { return fixedIncrement; }
  int64_t GetInc() override { return 1; }
  int64_autovector_t GetListOfValidValues(bool = true) override { return int64_autovector_t(); }
  ERepresentation GetRepresentation() override { return m_representation; }
  gcstring GetUnit() override { return m_unit; }
  void ImposeMin(int64_t Value) override;
  void ImposeMax(int64_t Value) override;
  gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
  void FromString(const gcstring& ValueStr, bool Verify = true) override;

  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override;
  bool IsNumeric() const override { return true; }
  int64_t GetInt(bool verify, bool ignoreCache) override;
  void SetInt(int64_t value, bool verify) override;
  int64_t GetIntMin() override;
  int64_t GetIntMax() override;

private:
  // Bit position and width of the value inside the register of the given length.
  void Field(int64_t length, unsigned& shift, unsigned& width);
  bool m_masked;
  bool m_signed = false;
  int64_t m_lsb = -1;
  int64_t m_msb = -1;
  ERepresentation m_representation = _UndefinedRepresentation;
  std::string m_unit;
  int64_t m_imposedMin = std::numeric_limits<int64_t>::min();
  int64_t m_imposedMax = std::numeric_limits<int64_t>::max();
};

class CFloatRegNode : public CRegisterBase, public virtual IFloat {
public:
  CFloatRegNode(CNodeMapImpl& map, std::string name) : CRegisterBase(map, std::move(name), intfIFloat) {}
  void SetValue(double Value, bool Verify = true) override;
  double GetValue(bool Verify = false, bool IgnoreCache = false) override;
  double GetMin() override;
  double GetMax() override;
  bool HasInc() override { return false; }
  EIncMode GetIncMode() override { return noIncrement; }
  double GetInc() override;
  double_autovector_t GetListOfValidValues(bool = true) override { return double_autovector_t(); }
  ERepresentation GetRepresentation() override { return m_representation; }
  gcstring GetUnit() const override { return m_unit; }
  EDisplayNotation GetDisplayNotation() const override { return m_displayNotation; }
  int64_t GetDisplayPrecision() const override { return m_displayPrecision; }
  void ImposeMin(double Value) override;
  void ImposeMax(double Value) override;
  gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
  void FromString(const gcstring& ValueStr, bool Verify = true) override;

  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override;
  bool IsNumeric() const override { return true; }
  bool IsFloatValued() const override { return true; }
  int64_t GetInt(bool verify, bool ignoreCache) override;
  void SetInt(int64_t value, bool verify) override { SetFloat(static_cast<double>(value), verify); }
  double GetFloat(bool verify, bool ignoreCache) override;
  void SetFloat(double value, bool verify) override;
  double GetFloatMin() override;
  double GetFloatMax() override;
  int64_t GetIntMin() override;
  int64_t GetIntMax() override;

private:
  ERepresentation m_representation = _UndefinedRepresentation;
  std::string m_unit;
  EDisplayNotation m_displayNotation = fnAutomatic;
  int64_t m_displayPrecision = 6;
  double m_imposedMin = -std::numeric_limits<double>::max();
  double m_imposedMax = std::numeric_limits<double>::max();
};

class CStringRegNode : public CRegisterBase, public virtual IString {
public:
  CStringRegNode(CNodeMapImpl& map, std::string name) : CRegisterBase(map, std::move(name), intfIString) {}
  void SetValue(const gcstring& Value, bool Verify = true) override;
  gcstring GetValue(bool Verify = false, bool IgnoreCache = false) override;
  int64_t GetMaxLength() override;
  gcstring ToString(bool Verify = false, bool IgnoreCache = false) override { return GetValue(Verify, IgnoreCache); }
  void FromString(const gcstring& ValueStr, bool Verify = true) override { SetValue(ValueStr, Verify); }
  std::string GetStr(bool verify, bool ignoreCache) override;
  void SetStr(const std::string& value, bool verify) override;
};

}  // namespace Engine
}  // namespace GenApi
