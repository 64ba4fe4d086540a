// CLock: a recursive mutex behind an opaque pointer.
#include <GenApi/Lock.h>

#include <mutex>

namespace GenApi {

namespace {
std::recursive_mutex& MutexOf(void* p) { return *static_cast<std::recursive_mutex*>(p); }
}  // namespace

CLock::CLock() : m_pMutex(new std::recursive_mutex) {}
CLock::~CLock() { delete static_cast<std::recursive_mutex*>(m_pMutex); }
void CLock::Lock() { MutexOf(m_pMutex).lock(); }
void CLock::Unlock() { MutexOf(m_pMutex).unlock(); }
bool CLock::TryLock() { return MutexOf(m_pMutex).try_lock(); }

}  // namespace GenApi
