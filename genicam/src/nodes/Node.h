#pragma once
// CNode: the engine's base of every node. It implements INode and ISelector and defines the internal evaluation
// interface through which nodes read each other (no string lookups, no locking: the public entry points lock once).
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <GenApi/INodeMap.h>
#include <GenApi/NodeCallback.h>
#include <GenApi/Pointer.h>

#include "formula/FormulaOperand.h"

namespace GenApi {
namespace Engine {

class CNodeMapImpl;
class CLoadContext;
class CNode;
class CRegisterCore;
class CXmlElement;
enum class EElement : uint8_t;

// An integer that is either a constant from the description or the value of another node.
struct CIntRef {
  CNode* node = nullptr;
  int64_t constant = 0;
  bool present = false;
  int64_t Get(bool ignoreCache = false) const;
};

// A floating-point value that is either a constant or the value of another node.
struct CFloatRef {
  CNode* node = nullptr;
  double constant = 0.0;
  bool present = false;
  double Get(bool ignoreCache = false) const;
};

class CNode : public virtual INode, public virtual ISelector, public IFormulaOperand {
public:
  CNode(CNodeMapImpl& map, std::string name, EInterfaceType principal);
  ~CNode() override;
  CNode(const CNode&) = delete;
  CNode& operator=(const CNode&) = delete;

  // INode
  gcstring GetName(bool FullQualified = false) const override;
  ENameSpace GetNameSpace() const override { return m_nameSpace; }
  EVisibility GetVisibility() const override { return m_visibility; }
  void InvalidateNode() override;
  bool IsCachable() const override;
  EYesNo IsAccessModeCacheable() const override { return m_accessCacheable ? Yes : No; }
  ECachingMode GetCachingMode() const override;
  int64_t GetPollingTime() const override { return m_pollingTime; }
  gcstring GetToolTip() const override { return m_texts ? m_texts->toolTip : std::string(); }
  gcstring GetDescription() const override { return m_texts ? m_texts->description : std::string(); }
  gcstring GetDisplayName() const override;
  gcstring GetDeviceName() const override;
  gcstring GetDocuURL() const override { return m_texts ? m_texts->docuURL : std::string(); }
  void GetChildren(NodeList_t& Children, ELinkType LinkType = ctReadingChildren) const override;
  void GetParents(NodeList_t& Parents, ELinkType LinkType = ctReadingChildren) const override;
  CallbackHandleType RegisterCallback(CNodeCallback* pCallback) override;
  bool DeregisterCallback(CallbackHandleType hCallback) override;
  INodeMap* GetNodeMap() const override;
  gcstring GetEventID() const override { return m_texts ? m_texts->eventID : std::string(); }
  bool IsStreamable() const override { return m_streamable; }
  void GetPropertyNames(gcstring_vector& PropertyNames) const override;
  bool GetProperty(const gcstring& PropertyName, gcstring& ValueStr, gcstring& AttributeStr) const override;
  void ImposeAccessMode(EAccessMode AccessMode) override;
  void ImposeVisibility(EVisibility Visibility) override;
  INode* GetAlias() const override { return AsINode(m_pAlias); }
  INode* GetCastAlias() const override { return AsINode(m_pCastAlias); }
  bool IsDeprecated() const override { return m_isDeprecated; }
  EInterfaceType GetPrincipalInterfaceType() const override { return m_principal; }
  bool IsFeature() const override { return m_isFeature; }

  // IBase
  EAccessMode GetAccessMode() const override;

  // ISelector
  bool IsSelector() const override { return !m_selected.empty(); }
  void GetSelectedFeatures(FeatureList_t& Features) const override;
  void GetSelectingFeatures(FeatureList_t& Features) const override;

  // ---- engine-internal interface (callers hold the node map's lock) ----
  const std::string& Name() const override { return m_name; }
  CNodeMapImpl& Map() const { return m_map; }
  static INode* AsINode(CNode* node) { return node; }

  // Effective access mode: implemented, available, locked, the type's own mode, the imposed mode.
  EAccessMode ComputeAccessMode();
  EAccessMode ComputeAccessModeUncached();
  // The node type's own access mode (target, register and port) before the common elements are applied.
  virtual EAccessMode OwnAccessMode() { return RO; }

  int64_t GetInt(bool verify, bool ignoreCache) override;
  double GetFloat(bool verify, bool ignoreCache) override;
  virtual void SetInt(int64_t value, bool verify);
  virtual void SetFloat(double value, bool verify);
  virtual std::string GetStr(bool verify, bool ignoreCache);
  virtual void SetStr(const std::string& value, bool verify);
  int64_t GetIntMin() override;
  int64_t GetIntMax() override;
  int64_t GetIntInc() override;
  double GetFloatMin() override;
  double GetFloatMax() override;
  virtual bool HasFloatInc() { return false; }
  double GetFloatInc() override;
  // True for nodes whose value is a number (used to pick defaults and conversions).
  virtual bool IsNumeric() const { return false; }
  bool IsFloatValued() const override { return false; }
  // Enumerations: the value of the entry with that symbolic name.
  bool FindEntryValue(std::string_view, int64_t&) override { return false; }
  // Drops the node's own cached value (registers); propagation is the node map's job.
  virtual void DropCache() {}
  virtual bool HasCache() const { return false; }
  virtual bool CacheValid() const { return false; }
  // Register nodes: their address, length, port and byte cache.
  virtual CRegisterCore* RegisterCore() { return nullptr; }

  // Loading: common elements here, type-specific ones in the override. Returns false for elements the type ignores.
  void Configure(CLoadContext& context, const CXmlElement& element);
  virtual bool ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child);
  // Called once every node is configured (defaults that depend on other nodes, checks).
  virtual void FinishLoading(CLoadContext& context);

  // Throws AccessException unless readable / writable.
  void CheckReadable();
  void CheckWritable();
  // The same, naming the value that could not be written.
  void CheckWritable(const std::string& valueText);
  // Called once after loading: every link list keeps each node once, in first-seen order.
  void RemoveDuplicateLinks();
  // Runs after a successful write through this node: invalidation of dependents and callbacks.
  void ValueChanged();

  // Graph edges, filled by the loader.
  std::vector<CNode*> m_readingChildren;           // nodes this node reads (value, address, access)
  std::vector<CNode*> m_writingChildren;           // nodes this node writes
  std::vector<CNode*> m_dependents;                // nodes that read this node
  std::vector<CNode*> m_invalidators;              // pInvalidator entries of this node
  std::vector<CNode*> m_invalidates;               // nodes that list this node as pInvalidator
  std::vector<CNode*> m_selected;                  // pSelected
  std::vector<CNode*> m_selecting;                 // nodes whose pSelected names this node
  std::vector<CNode*>* m_pAddressGroup = nullptr;  // registers at the same fixed address of the same port
  std::vector<CNodeCallback*> m_callbacks;
  uint32_t m_visitEpoch = 0;
  uint8_t m_walkState = 0;  // scratch of the loader's graph walks
  bool m_notifyPending = false;
  // The access mode is remembered when nothing it depends on can change behind the engine's back (no NoCache
  // register, no polled node below it); change propagation forgets it.
  bool m_accessCacheable = false;
  bool m_accessCacheValid = false;
  EAccessMode m_accessCache = NI;
  // True when this node's value can change without a write through the engine (NoCache registers, polled nodes).
  virtual bool IsVolatile() const { return m_pollingTime > 0; }
  int64_t m_pollElapsed = 0;
  bool m_isFeature = false;

protected:
  [[noreturn]] void ThrowNoInterface(const char* what) const;

  CNodeMapImpl& m_map;
  std::string m_name;
  EInterfaceType m_principal;
  ENameSpace m_nameSpace = Custom;
  EVisibility m_visibility = Beginner;
  // Texts for people; most nodes (registers, formulas) have none, so they live apart.
  struct CTexts {
    std::string toolTip;
    std::string description;
    std::string displayName;
    std::string docuURL;
    std::string eventID;
  };
  CTexts& Texts();
  std::unique_ptr<CTexts> m_texts;
  bool m_isDeprecated = false;
  bool m_streamable = false;
  EAccessMode m_imposedAccess = RW;
  EAccessMode m_userImposedAccess = RW;
  CNode* m_pIsImplemented = nullptr;
  CNode* m_pIsAvailable = nullptr;
  CNode* m_pIsLocked = nullptr;
  CNode* m_pError = nullptr;
  CNode* m_pAlias = nullptr;
  CNode* m_pCastAlias = nullptr;
  int64_t m_pollingTime = -1;
};

}  // namespace Engine
}  // namespace GenApi
