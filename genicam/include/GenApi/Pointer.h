#pragma once
// Smart pointers to node interfaces and the access-mode helpers. A pointer built from any node pointer holds the
// requested interface when the node implements it and is null otherwise (IsValid()); using a null pointer raises a
// LogicalErrorException instead of crashing.
#include <cstddef>

#include <GenApi/INodeMap.h>
#include <GenApi/Interfaces.h>

namespace GenApi {

template <class T, class B = IBase>
class CPointer {
public:
  CPointer() noexcept : m_pT(nullptr) {}
  CPointer(std::nullptr_t) noexcept : m_pT(nullptr) {}
  CPointer(T* pT) noexcept : m_pT(pT) {}
  template <class U, class = decltype(dynamic_cast<T*>(static_cast<U*>(nullptr)))>
  CPointer(U* pU) : m_pT(pU ? dynamic_cast<T*>(pU) : nullptr) {}
  template <class U, class UB>
  CPointer(const CPointer<U, UB>& other) : CPointer(static_cast<U*>(other)) {}

  CPointer& operator=(std::nullptr_t) noexcept {
    m_pT = nullptr;
    return *this;
  }
  template <class U>
  CPointer& operator=(U* pU) {
    *this = CPointer(pU);
    return *this;
  }

  bool IsValid() const noexcept { return m_pT != nullptr; }
  explicit operator bool() const noexcept { return m_pT != nullptr; }
  operator T*() const noexcept { return m_pT; }
  T* operator->() const {
    if (m_pT == nullptr) throw LOGICAL_ERROR_EXCEPTION("Feature not present (reference not valid)");
    return m_pT;
  }
  T& operator*() const { return *operator->(); }
  void Release() noexcept { m_pT = nullptr; }
  bool operator==(std::nullptr_t) const noexcept { return m_pT == nullptr; }
  bool operator!=(std::nullptr_t) const noexcept { return m_pT != nullptr; }

private:
  T* m_pT;
};

using CBasePtr = CPointer<IBase>;
using CNodePtr = CPointer<INode>;
using CValuePtr = CPointer<IValue>;
using CSelectorPtr = CPointer<ISelector>;
using CIntegerPtr = CPointer<IInteger>;
using CFloatPtr = CPointer<IFloat>;
using CBooleanPtr = CPointer<IBoolean>;
using CCommandPtr = CPointer<ICommand>;
using CEnumerationPtr = CPointer<IEnumeration>;
using CEnumEntryPtr = CPointer<IEnumEntry>;
using CStringPtr = CPointer<IString>;
using CRegisterPtr = CPointer<IRegister>;
using CCategoryPtr = CPointer<ICategory>;
using CPortPtr = CPointer<IPort>;

// Access-mode helpers.
inline bool IsReadable(EAccessMode mode) { return mode == RO || mode == RW; }
inline bool IsWritable(EAccessMode mode) { return mode == WO || mode == RW; }
inline bool IsImplemented(EAccessMode mode) { return mode != NI; }
inline bool IsAvailable(EAccessMode mode) { return !(mode == NA || mode == NI); }

inline bool IsReadable(const IBase* p) { return p != nullptr && IsReadable(p->GetAccessMode()); }
inline bool IsWritable(const IBase* p) { return p != nullptr && IsWritable(p->GetAccessMode()); }
inline bool IsImplemented(const IBase* p) { return p != nullptr && IsImplemented(p->GetAccessMode()); }
inline bool IsAvailable(const IBase* p) { return p != nullptr && IsAvailable(p->GetAccessMode()); }

template <class T, class B>
bool IsReadable(const CPointer<T, B>& p) {
  return p.IsValid() && IsReadable(p->GetAccessMode());
}
template <class T, class B>
bool IsWritable(const CPointer<T, B>& p) {
  return p.IsValid() && IsWritable(p->GetAccessMode());
}
template <class T, class B>
bool IsImplemented(const CPointer<T, B>& p) {
  return p.IsValid() && IsImplemented(p->GetAccessMode());
}
template <class T, class B>
bool IsAvailable(const CPointer<T, B>& p) {
  return p.IsValid() && IsAvailable(p->GetAccessMode());
}

// The stricter of two access modes (as when a feature sits on a register of a port).
GENICAM_API EAccessMode Combine(EAccessMode first, EAccessMode second);
// True when a node of visibility Visibility is shown at the user level MaxVisibility.
inline bool IsVisible(EVisibility Visibility, EVisibility MaxVisibility) { return Visibility <= MaxVisibility; }

GENICAM_API const char* AccessModeName(EAccessMode mode);        // "NI", "NA", "WO", "RO", "RW"
GENICAM_API const char* InterfaceTypeName(EInterfaceType type);  // "IInteger", ...

}  // namespace GenApi
