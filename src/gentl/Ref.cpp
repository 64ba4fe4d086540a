#include "gentl/Ref.h"

namespace TALVIR {

void CRef::AddRef() {
  std::lock_guard<std::mutex> lock(m_mutex);
  if (!m_released) {
    ++m_refCount;
  }
}

void CRef::ReleaseRef() {
  bool deleteNow = false;
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_refCount == 0) {
      return;
    }
    --m_refCount;
    if (m_refCount == 0) {
      if (m_autoDelete != 0) {
        deleteNow = true;
      } else {
        m_lastReleased.notify_all();
      }
    }
  }
  // The mutex belongs to this object: it must be unlocked before the object goes.
  if (deleteNow) {
    delete this;
  }
}

void CRef::DestroyRef() {
  {
    std::unique_lock<std::mutex> lock(m_mutex);
    // Only the first DestroyRef of a waiting record waits; any later one is an ordinary release.
    if (m_autoDelete != 0 || m_released) {
      lock.unlock();
      ReleaseRef();
      return;
    }
    m_released = true;
    if (m_refCount > 0) {
      --m_refCount;
    }
    // Wait for the other holders; a predicate guards against spurious wake-ups, which would delete a record still
    // in use.
    m_lastReleased.wait(lock, [this] { return m_refCount == 0; });
  }
  delete this;
}

void CRef::SetAutoDelete(bool autoDelete) {
  std::lock_guard<std::mutex> lock(m_mutex);
  m_autoDelete = autoDelete ? 1 : 0;
}

bool CRef::IsReleased() const {
  std::lock_guard<std::mutex> lock(m_mutex);
  return m_released;
}

uint64_t CRef::ReferenceCount() const {
  std::lock_guard<std::mutex> lock(m_mutex);
  return m_refCount;
}

}  // namespace TALVIR
