#pragma once
// The node interfaces of the node map. Nodes implement several of them at once (virtual inheritance from IBase and
// INode); applications reach the one they need through the smart pointers in Pointer.h (a checked dynamic_cast).
#include <GenApi/Types.h>

namespace GenApi {

struct INodeMap;
class CNodeCallback;

struct GENICAM_API IBase {
  virtual ~IBase() = default;
  virtual EAccessMode GetAccessMode() const = 0;
};

struct GENICAM_API INode : virtual IBase {
  virtual gcstring GetName(bool FullQualified = false) const = 0;
  virtual ENameSpace GetNameSpace() const = 0;
  virtual EVisibility GetVisibility() const = 0;
  // Drops every cached value of this node and of the nodes that depend on it; callbacks fire.
  virtual void InvalidateNode() = 0;
  virtual bool IsCachable() const = 0;
  virtual EYesNo IsAccessModeCacheable() const = 0;
  virtual ECachingMode GetCachingMode() const = 0;
  // Milliseconds after which INodeMap::Poll invalidates the node; -1 when the node is not polled.
  virtual int64_t GetPollingTime() const = 0;
  virtual gcstring GetToolTip() const = 0;
  virtual gcstring GetDescription() const = 0;
  virtual gcstring GetDisplayName() const = 0;
  virtual gcstring GetDeviceName() const = 0;
  virtual gcstring GetDocuURL() const = 0;
  virtual void GetChildren(NodeList_t& Children, ELinkType LinkType = ctReadingChildren) const = 0;
  virtual void GetParents(NodeList_t& Parents, ELinkType LinkType = ctReadingChildren) const = 0;
  // Takes ownership of the callback; the handle deregisters it. The callback fires whenever the node's value may have
  // changed (a write to it or to a node it depends on, an invalidation, a poll).
  virtual CallbackHandleType RegisterCallback(CNodeCallback* pCallback) = 0;
  virtual bool DeregisterCallback(CallbackHandleType hCallback) = 0;
  virtual INodeMap* GetNodeMap() const = 0;
  // Event identifier in hexadecimal, empty when the node has none.
  virtual gcstring GetEventID() const = 0;
  virtual bool IsStreamable() const = 0;
  virtual void GetPropertyNames(gcstring_vector& PropertyNames) const = 0;
  // Value of a description element of this node (e.g. "pValue", "Address"); false when the node has none.
  virtual bool GetProperty(const gcstring& PropertyName, gcstring& ValueStr, gcstring& AttributeStr) const = 0;
  virtual void ImposeAccessMode(EAccessMode AccessMode) = 0;
  virtual void ImposeVisibility(EVisibility Visibility) = 0;
  virtual INode* GetAlias() const = 0;
  virtual INode* GetCastAlias() const = 0;
  virtual bool IsDeprecated() const = 0;
  virtual EInterfaceType GetPrincipalInterfaceType() const = 0;
  // True when the node is reachable from the Root category (a feature shown to users).
  virtual bool IsFeature() const = 0;
};

struct IValue;

// Selector relations (pSelected): a selector chooses which instance of its selected features is addressed.
struct GENICAM_API ISelector : virtual IBase {
  virtual bool IsSelector() const = 0;
  virtual void GetSelectedFeatures(FeatureList_t& Features) const = 0;
  virtual void GetSelectingFeatures(FeatureList_t& Features) const = 0;
};

struct GENICAM_API IValue : virtual INode {
  virtual INode* GetNode() = 0;
  virtual gcstring ToString(bool Verify = false, bool IgnoreCache = false) = 0;
  virtual void FromString(const gcstring& ValueStr, bool Verify = true) = 0;
  virtual bool IsValueCacheValid() const = 0;
};

struct GENICAM_API IInteger : virtual IValue {
  virtual void SetValue(int64_t Value, bool Verify = true) = 0;
  virtual int64_t GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
  virtual int64_t GetMin() = 0;
  virtual int64_t GetMax() = 0;
  virtual EIncMode GetIncMode() = 0;
  virtual int64_t GetInc() = 0;
  virtual int64_autovector_t GetListOfValidValues(bool bounded = true) = 0;
  virtual ERepresentation GetRepresentation() = 0;
  virtual gcstring GetUnit() = 0;
  virtual void ImposeMin(int64_t Value) = 0;
  virtual void ImposeMax(int64_t Value) = 0;

  IInteger& operator=(int64_t Value) {
    SetValue(Value);
    return *this;
  }
  int64_t operator()() { return GetValue(); }
  int64_t operator*() { return GetValue(); }
};

struct GENICAM_API IFloat : virtual IValue {
  virtual void SetValue(double Value, bool Verify = true) = 0;
  virtual double GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
  virtual double GetMin() = 0;
  virtual double GetMax() = 0;
  virtual bool HasInc() = 0;
  virtual EIncMode GetIncMode() = 0;
  virtual double GetInc() = 0;
  virtual double_autovector_t GetListOfValidValues(bool bounded = true) = 0;
  virtual ERepresentation GetRepresentation() = 0;
  virtual gcstring GetUnit() const = 0;
  virtual EDisplayNotation GetDisplayNotation() const = 0;
  virtual int64_t GetDisplayPrecision() const = 0;
  virtual void ImposeMin(double Value) = 0;
  virtual void ImposeMax(double Value) = 0;

  IFloat& operator=(double Value) {
    SetValue(Value);
    return *this;
  }
  double operator()() { return GetValue(); }
  double operator*() { return GetValue(); }
};

struct GENICAM_API IBoolean : virtual IValue {
  virtual void SetValue(bool Value, bool Verify = true) = 0;
  virtual bool GetValue(bool Verify = false, bool IgnoreCache = false) const = 0;

  IBoolean& operator=(bool Value) {
    SetValue(Value);
    return *this;
  }
  bool operator()() const { return GetValue(); }
};

struct GENICAM_API ICommand : virtual IValue {
  virtual void Execute(bool Verify = true) = 0;
  // True once the device reports the command as finished (the value read back no longer equals the command value).
  virtual bool IsDone(bool Verify = true) = 0;
  void operator()() { Execute(); }
};

struct GENICAM_API IString : virtual IValue {
  virtual void SetValue(const gcstring& Value, bool Verify = true) = 0;
  virtual gcstring GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
  virtual int64_t GetMaxLength() = 0;

  IString& operator=(const gcstring& Value) {
    SetValue(Value);
    return *this;
  }
  gcstring operator()() { return GetValue(); }
  gcstring operator*() { return GetValue(); }
};

struct GENICAM_API IRegister : virtual IValue {
  virtual void Set(const uint8_t* pBuffer, int64_t Length, bool Verify = true) = 0;
  virtual void Get(uint8_t* pBuffer, int64_t Length, bool Verify = false, bool IgnoreCache = false) = 0;
  virtual int64_t GetLength() = 0;
  virtual int64_t GetAddress() = 0;
};

struct GENICAM_API IEnumEntry : virtual IValue {
  virtual int64_t GetValue() = 0;
  virtual gcstring GetSymbolic() const = 0;
  virtual double GetNumericValue() = 0;
  virtual bool IsSelfClearing() = 0;
};

struct GENICAM_API IEnumeration : virtual IValue {
  // Symbolic names of the entries that are currently available.
  virtual void GetSymbolics(StringList_t& Symbolics) = 0;
  // Every entry node, available or not.
  virtual void GetEntries(NodeList_t& Entries) = 0;
  virtual void SetIntValue(int64_t Value, bool Verify = true) = 0;
  virtual int64_t GetIntValue(bool Verify = false, bool IgnoreCache = false) = 0;
  virtual IEnumEntry* GetEntryByName(const gcstring& Symbolic) = 0;
  virtual IEnumEntry* GetEntry(int64_t IntValue) = 0;
  virtual IEnumEntry* GetCurrentEntry(bool Verify = false, bool IgnoreCache = false) = 0;

  IEnumeration& operator=(const gcstring& Symbolic) {
    FromString(Symbolic);
    return *this;
  }
  IEnumeration& operator=(const char* Symbolic) {
    FromString(gcstring(Symbolic));
    return *this;
  }
  IEnumEntry* operator*() { return GetCurrentEntry(); }
};

struct GENICAM_API ICategory : virtual IValue {
  virtual void GetFeatures(FeatureList_t& Features) const = 0;
};

// Register access of a device (or of a chunk buffer). Addresses and lengths are in bytes.
struct GENICAM_API IPort : virtual IBase {
  virtual void Read(void* pBuffer, int64_t Address, int64_t Length) = 0;
  virtual void Write(const void* pBuffer, int64_t Address, int64_t Length) = 0;
};

// What the node map tells a user port when it is connected.
struct GENICAM_API IPortConstruct : virtual IPort {
  // Called with the Port node the user port was connected to.
  virtual void SetPortImpl(IPort* pPort) = 0;
  virtual EYesNo GetSwapEndianess() = 0;
};

// A recorded list of writes, replayed onto a port (used to restore a device's settings).
struct GENICAM_API IPortWriteList {
  virtual ~IPortWriteList() = default;
  virtual void Write(const void* pBuffer, int64_t Address, int64_t Length) = 0;
  virtual void Replay(IPort* pPort) = 0;
  virtual void SetCookie(int64_t Value) = 0;
  virtual int64_t GetCookie() = 0;
};

struct GENICAM_API IPortReplay : virtual IPort {
  virtual void Replay(IPortWriteList* pPortRecorder, bool Invalidate = true) = 0;
};

// Destruction of objects handed out by factories.
struct GENICAM_API IDestroy {
  virtual ~IDestroy() = default;
  virtual void Destroy() = 0;
};

}  // namespace GenApi
