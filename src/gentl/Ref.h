#pragma once
// Reference counting for device records, which the producer's device cache, discovery callers and cameras share.
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace TALVIR {

// Starts with one reference: the one of the producer's device cache.
class CRef {
public:
  CRef() = default;
  virtual ~CRef() = default;
  CRef(const CRef&) = delete;
  CRef& operator=(const CRef&) = delete;

  // Adds a reference unless the record has been marked released (then nobody may take a new one).
  void AddRef();
  // Drops a reference. At zero, a self-deleting record deletes itself; any other wakes the thread in DestroyRef.
  void ReleaseRef();
  // Gives up the holder's reference. A self-deleting record: the same as ReleaseRef. Otherwise the record is marked
  // released, and the call waits until every other holder has released before it deletes the record.
  void DestroyRef();

  void SetAutoDelete(bool autoDelete);
  bool IsReleased() const;
  uint64_t ReferenceCount() const;

private:
  int32_t m_autoDelete = 1;
  bool m_released = false;
  uint64_t m_refCount = 1;
  mutable std::mutex m_mutex;
  std::condition_variable m_lastReleased;
};

}  // namespace TALVIR
