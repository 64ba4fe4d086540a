#pragma once
// The recursive lock that guards one node map. Several threads may use a node map; each call locks it. Applications
// that need several calls to happen atomically hold it themselves (CAutoLock).
#include <GCBase/GCTypes.h>

namespace GenApi {

class GENICAM_API CLock {
public:
  CLock();
  ~CLock();
  CLock(const CLock&) = delete;
  CLock& operator=(const CLock&) = delete;
  void Lock();
  void Unlock();
  bool TryLock();

private:
  void* m_pMutex;  // a recursive mutex; hidden so that the header does not depend on the standard library's layout
};

class CAutoLock {
public:
  explicit CAutoLock(CLock& lock) : m_lock(lock) { m_lock.Lock(); }
  ~CAutoLock() { m_lock.Unlock(); }
  CAutoLock(const CAutoLock&) = delete;
  CAutoLock& operator=(const CAutoLock&) = delete;

private:
  CLock& m_lock;
};

}  // namespace GenApi
