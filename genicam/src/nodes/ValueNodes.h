#pragma once
// Integer, Float, Boolean, Command, String, Category, Port and the nodes served minimally.
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "nodes/Node.h"
#include "nodes/ValueSource.h"

namespace GenApi {
namespace Engine {

// Range checks shared by integer-valued nodes.
void CheckIntRange(const CNode& node, int64_t value, int64_t min, int64_t max, int64_t inc, bool checkInc);
void CheckFloatRange(const CNode& node, double value, double min, double max);
std::string IntToText(int64_t value, ERepresentation representation);
int64_t TextToInt(const CNode& node, const gcstring& text);
double TextToFloat(const CNode& node, const gcstring& text);
std::string FloatToText(double value);

// Shared IInteger plumbing: public entry points lock, check access and forward to the internal interface.
class CIntegerBase : public CValueNode, public virtual IInteger {
public:
  using CValueNode::CValueNode;
  void SetValue(int64_t Value, bool Verify = true) override;
  int64_t GetValue(bool Verify = false, bool IgnoreCache = false) override;
  int64_t GetMin() override;
  int64_t GetMax() override;
  EIncMode GetIncMode() override;
  int64_t GetInc() override;
  int64_autovector_t GetListOfValidValues(bool bounded = true) override;
  ERepresentation GetRepresentation() override { return m_representation; }
  gcstring GetUnit() override { return m_unit; }
  void ImposeMin(int64_t Value) override;
  void ImposeMax(int64_t Value) override;
  gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
  void FromString(const gcstring& ValueStr, bool Verify = true) override;

  bool IsNumeric() const override { return true; }
  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  // Own limits before the imposed ones.
  virtual int64_t NativeMin() { return std::numeric_limits<int64_t>::min(); }
  virtual int64_t NativeMax() { return std::numeric_limits<int64_t>::max(); }
  virtual int64_t NativeInc() { return 1; }
  int64_t GetIntMin() override;
  int64_t GetIntMax() override;
  int64_t GetIntInc() override;
  // Range (and, when asked, increment) check against the node's current limits.
  void Verify(int64_t value, bool checkInc);

protected:
  ERepresentation m_representation = _UndefinedRepresentation;
  std::string m_unit;
  int64_t m_imposedMin = std::numeric_limits<int64_t>::min();
  int64_t m_imposedMax = std::numeric_limits<int64_t>::max();
  std::vector<int64_t> m_validValues;
};

class CFloatBase : public CValueNode, public virtual IFloat {
public:
  using CValueNode::CValueNode;
  void SetValue(double Value, bool Verify = true) override;
  double GetValue(bool Verify = false, bool IgnoreCache = false) override;
  double GetMin() override;
  double GetMax() override;
  bool HasInc() override;
  EIncMode GetIncMode() override;
  double GetInc() override;
  double_autovector_t GetListOfValidValues(bool bounded = true) override;
  ERepresentation GetRepresentation() override { return m_representation; }
  gcstring GetUnit() const override { return m_unit; }
  EDisplayNotation GetDisplayNotation() const override { return m_displayNotation; }
  int64_t GetDisplayPrecision() const override { return m_displayPrecision; }
  void ImposeMin(double Value) override;
  void ImposeMax(double Value) override;
  gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
  void FromString(const gcstring& ValueStr, bool Verify = true) override;

  bool IsNumeric() const override { return true; }
  bool IsFloatValued() const override { return true; }
  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  int64_t GetInt(bool verify, bool ignoreCache) override;
  void SetInt(int64_t value, bool verify) override { SetFloat(static_cast<double>(value), verify); }
  virtual double NativeMin() { return -std::numeric_limits<double>::max(); }
  virtual double NativeMax() { return std::numeric_limits<double>::max(); }
  double GetFloatMin() override;
  double GetFloatMax() override;
  int64_t GetIntMin() override;
  int64_t GetIntMax() override;
  void Verify(double value);

protected:
  ERepresentation m_representation = _UndefinedRepresentation;
  std::string m_unit;
  EDisplayNotation m_displayNotation = fnAutomatic;
  int64_t m_displayPrecision = 6;
  double m_imposedMin = -std::numeric_limits<double>::max();
  double m_imposedMax = std::numeric_limits<double>::max();
};

class CIntegerNode : public CIntegerBase {
public:
  CIntegerNode(CNodeMapImpl& map, std::string name) : CIntegerBase(map, std::move(name), intfIInteger) {}
  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override;
  EAccessMode OwnAccessMode() override { return m_value.AccessMode(*this); }
  int64_t GetInt(bool verify, bool ignoreCache) override;
  void SetInt(int64_t value, bool verify) override;
  int64_t NativeMin() override;
  int64_t NativeMax() override;
  int64_t NativeInc() override;
  bool CacheValid() const override { return const_cast<CValueSource&>(m_value).CacheValid(const_cast<CIntegerNode&>(*this)); }

private:
  CValueSource m_value;
  CIntRef m_min, m_max, m_inc;
};

class CFloatNode : public CFloatBase {
public:
  CFloatNode(CNodeMapImpl& map, std::string name) : CFloatBase(map, std::move(name), intfIFloat) {}
  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override;
  EAccessMode OwnAccessMode() override { return m_value.AccessMode(*this); }
  double GetFloat(bool verify, bool ignoreCache) override;
  void SetFloat(double value, bool verify) override;
  double NativeMin() override;
  double NativeMax() override;
  bool HasFloatInc() override;
  double GetFloatInc() override;
  bool CacheValid() const override { return const_cast<CValueSource&>(m_value).CacheValid(const_cast<CFloatNode&>(*this)); }
  CValueSource& Source() { return m_value; }

private:
  CValueSource m_value;
  CFloatRef m_min, m_max, m_inc;
};

class CBooleanNode : public CValueNode, public virtual IBoolean {
public:
  CBooleanNode(CNodeMapImpl& map, std::string name) : CValueNode(map, std::move(name), intfIBoolean) {}
  void SetValue(bool Value, bool Verify = true) override;
  bool GetValue(bool Verify = false, bool IgnoreCache = false) const override;
  gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
  void FromString(const gcstring& ValueStr, bool Verify = true) override;

  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override;
  EAccessMode OwnAccessMode() override { return m_value.AccessMode(*this); }
  int64_t GetInt(bool verify, bool ignoreCache) override;
  void SetInt(int64_t value, bool verify) override;
  bool CacheValid() const override { return const_cast<CValueSource&>(m_value).CacheValid(const_cast<CBooleanNode&>(*this)); }
  bool IsNumeric() const override { return true; }
  CValueSource& Source() { return m_value; }

private:
  bool Read(bool ignoreCache);
  CValueSource m_value;
  int64_t m_onValue = 1;
  int64_t m_offValue = 0;
};

class CCommandNode : public CValueNode, public virtual ICommand {
public:
  CCommandNode(CNodeMapImpl& map, std::string name) : CValueNode(map, std::move(name), intfICommand) {}
  void Execute(bool Verify = true) override;
  bool IsDone(bool Verify = true) override;
  gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
  void FromString(const gcstring& ValueStr, bool Verify = true) override;

  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override;
  EAccessMode OwnAccessMode() override { return m_value.AccessMode(*this); }
  int64_t GetInt(bool verify, bool ignoreCache) override;
  CValueSource& Source() { return m_value; }

private:
  CValueSource m_value;
  CIntRef m_commandValue;
};

class CStringNode : public CValueNode, public virtual IString {
public:
  CStringNode(CNodeMapImpl& map, std::string name) : CValueNode(map, std::move(name), intfIString) {}
  void SetValue(const gcstring& Value, bool Verify = true) override;
  gcstring GetValue(bool Verify = false, bool IgnoreCache = false) override;
  int64_t GetMaxLength() override;
  gcstring ToString(bool Verify = false, bool IgnoreCache = false) override { return GetValue(Verify, IgnoreCache); }
  void FromString(const gcstring& ValueStr, bool Verify = true) override { SetValue(ValueStr, Verify); }

  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  void FinishLoading(CLoadContext& context) override;
  EAccessMode OwnAccessMode() override { return m_value.AccessMode(*this); }
  std::string GetStr(bool verify, bool ignoreCache) override;
  void SetStr(const std::string& value, bool verify) override;
  CValueSource& Source() { return m_value; }

private:
  CValueSource m_value;
};

class CCategoryNode : public CValueNode, public virtual ICategory {
public:
  CCategoryNode(CNodeMapImpl& map, std::string name) : CValueNode(map, std::move(name), intfICategory) {}
  void GetFeatures(FeatureList_t& Features) const override;
  gcstring ToString(bool = false, bool = false) override { return gcstring(); }
  void FromString(const gcstring&, bool = true) override;
  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  const std::vector<CNode*>& Features() const { return m_features; }

private:
  std::vector<CNode*> m_features;
};

class CPortNode : public CNode, public virtual IPort {
public:
  CPortNode(CNodeMapImpl& map, std::string name) : CNode(map, std::move(name), intfIPort) {}
  void Read(void* pBuffer, int64_t Address, int64_t Length) override;
  void Write(const void* pBuffer, int64_t Address, int64_t Length) override;

  bool ConfigureElement(CLoadContext& context, EElement id, const pugi::xml_node& child) override;
  EAccessMode OwnAccessMode() override;
  // Register access of the engine (lock held).
  void ReadPort(void* buffer, int64_t address, int64_t length);
  void WritePort(const void* buffer, int64_t address, int64_t length);

  void ConnectPort(IPort* port) { m_port = port; }
  bool IsChunkPort() const { return m_hasChunkID || m_pChunkID != nullptr; }
  uint64_t ChunkID();
  void AttachChunk(const uint8_t* data, size_t length);
  void DetachChunk();
  void MoveChunk(const uint8_t* newBase, const uint8_t* oldBase);

private:
  IPort* m_port = nullptr;
  bool m_hasChunkID = false;
  uint64_t m_chunkID = 0;
  CNode* m_pChunkID = nullptr;
  bool m_swapEndianess = false;
  const uint8_t* m_chunkData = nullptr;
  size_t m_chunkLength = 0;
  bool m_chunkAttached = false;
};

// ConfRom, TextDesc, IntKey, AdvFeatureLock, SmartFeature, Node: loaded for completeness, no value.
class CPlainNode : public CNode {
public:
  CPlainNode(CNodeMapImpl& map, std::string name) : CNode(map, std::move(name), intfIBase) {}
};

}  // namespace Engine
}  // namespace GenApi
