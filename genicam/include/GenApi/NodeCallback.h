#pragma once
// Node callbacks: an object called when a node's value may have changed. Register them with GenApi::Register(...).
#include <GenApi/Interfaces.h>

namespace GenApi {

class GENICAM_API CNodeCallback {
public:
  CNodeCallback(INode* pNode, ECallbackType Type) : m_pNode(pNode), m_type(Type) {}
  virtual ~CNodeCallback();
  virtual void operator()(ECallbackType Type) const = 0;
  virtual void Destroy() { delete this; }
  INode* GetNode() const { return m_pNode; }
  ECallbackType GetCallbackType() const { return m_type; }

private:
  INode* m_pNode;
  ECallbackType m_type;
};

// Calls a function (or any callable) with the node.
template <class Function>
class CFunctionNodeCallback : public CNodeCallback {
public:
  CFunctionNodeCallback(INode* pNode, Function function, ECallbackType Type)
      : CNodeCallback(pNode, Type), m_function(function) {}
  void operator()(ECallbackType Type) const override {
    if (Type == GetCallbackType()) m_function(GetNode());
  }

private:
  Function m_function;
};

// Calls a member function of a client object with the node.
template <class Client, class Member>
class CMemberNodeCallback : public CNodeCallback {
public:
  CMemberNodeCallback(INode* pNode, Client& client, Member member, ECallbackType Type)
      : CNodeCallback(pNode, Type), m_client(client), m_member(member) {}
  void operator()(ECallbackType Type) const override {
    if (Type == GetCallbackType()) (m_client.*m_member)(GetNode());
  }

private:
  Client& m_client;
  Member m_member;
};

template <class Function>
CallbackHandleType Register(INode* pNode, Function function, ECallbackType Type = cbPostInsideLock) {
  return pNode->RegisterCallback(new CFunctionNodeCallback<Function>(pNode, function, Type));
}

template <class Client, class Member>
CallbackHandleType Register(INode* pNode, Client& client, Member member, ECallbackType Type = cbPostInsideLock) {
  return pNode->RegisterCallback(new CMemberNodeCallback<Client, Member>(pNode, client, member, Type));
}

inline bool Deregister(INode* pNode, CallbackHandleType hCallback) { return pNode->DeregisterCallback(hCallback); }

}  // namespace GenApi
