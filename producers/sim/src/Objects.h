#pragma once
// Base classes of everything a GenTL handle can name: every handle is the address of a CObject kept alive by the
// library's handle table (CLibrary), so a call that races with a close still works on a live object.
#include "Description.h"
#include "Info.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace TalvirSim {

class CObject : public std::enable_shared_from_this<CObject> {
public:
  virtual ~CObject() = default;
  CObject() = default;
  CObject(const CObject&) = delete;
  CObject& operator=(const CObject&) = delete;
  void* Handle() { return this; }
};

// ---- Ports: a module's register space with its description file ----

class CPortModule : public virtual CObject {
public:
  virtual void ReadPort(uint64_t address, void* buffer, size_t length) = 0;
  virtual void WritePort(uint64_t address, const void* buffer, size_t length) = 0;
  virtual const SDescription& Description() = 0;
  virtual std::string PortId() = 0;
  virtual std::string PortModuleName() = 0;  // "TLSystem", "TLInterface", "TLDevice", "TLDataStream", "Device"
  virtual std::string PortVendor();
  virtual std::string PortModel();
  virtual std::string PortVersion();
  virtual std::string PortTLType();
  virtual bool PortLittleEndian() { return true; }
  virtual bool PortWritable() { return true; }
  void GetPortInfo(GenTL::PORT_INFO_CMD command, const SInfoOut& out);
  void GetUrlInfo(uint32_t index, GenTL::URL_INFO_CMD command, const SInfoOut& out);
};

// Registers of a module's own node map: strings and integers computed on demand, optionally in arrays indexed by a
// selector (element i at base + i * stride).
class CRegisterBank {
public:
  using StringGetter = std::function<std::string(size_t index)>;
  using IntGetter = std::function<uint64_t(size_t index)>;
  using IntSetter = std::function<void(size_t index, uint64_t value)>;

  void AddString(uint64_t base, size_t length, StringGetter get, size_t count = 1, uint64_t stride = 0);
  void AddInt(uint64_t base, size_t length, IntGetter get, IntSetter set = {}, size_t count = 1, uint64_t stride = 0);
  // A plain read-write integer that the bank stores itself.
  void AddStored(uint64_t base, size_t length, uint64_t initial);
  uint64_t Stored(uint64_t base) const;

  void Read(uint64_t address, void* buffer, size_t length) const;
  void Write(uint64_t address, const void* buffer, size_t length);

private:
  struct SEntry {
    uint64_t base;
    size_t length;
    size_t count;
    uint64_t stride;
    StringGetter getString;
    IntGetter getInt;
    IntSetter setInt;
  };
  const SEntry* Find(uint64_t address, size_t length, size_t& index) const;
  std::vector<SEntry> m_entries;
  std::shared_ptr<std::map<uint64_t, uint64_t>> m_stored = std::make_shared<std::map<uint64_t, uint64_t>>();
  mutable std::mutex m_mutex;
};

// A module port whose features live in a CRegisterBank and whose description is built once.
class CBankPort : public CPortModule {
public:
  void ReadPort(uint64_t address, void* buffer, size_t length) override;
  void WritePort(uint64_t address, const void* buffer, size_t length) override;
  const SDescription& Description() override { return m_description; }

protected:
  CRegisterBank m_bank;
  SDescription m_description;
};

// ---- Events ----

class CEvent : public virtual CObject {
public:
  explicit CEvent(GenTL::EVENT_TYPE type) : m_type(type) {}
  GenTL::EVENT_TYPE Type() const { return m_type; }
  virtual void GetData(void* buffer, size_t* size, uint64_t timeoutMs) = 0;
  virtual void GetDataInfo(const void* in, size_t inSize, GenTL::EVENT_DATA_INFO_CMD command, const SInfoOut& out);
  virtual void GetInfo(GenTL::EVENT_INFO_CMD command, const SInfoOut& out) = 0;
  virtual void Flush() = 0;
  virtual void Kill() = 0;
  // Unregistration: every waiter ends with GC_ERR_ABORT and later waits fail.
  virtual void Shutdown() = 0;

private:
  GenTL::EVENT_TYPE m_type;
};

// An event whose occurrences are byte records in a queue (errors, remote-device events).
class CQueuedEvent : public CEvent {
public:
  CQueuedEvent(GenTL::EVENT_TYPE type, size_t maxSize) : CEvent(type), m_maxSize(maxSize) {}
  void Push(std::vector<uint8_t> data);
  void GetData(void* buffer, size_t* size, uint64_t timeoutMs) override;
  void GetDataInfo(const void* in, size_t inSize, GenTL::EVENT_DATA_INFO_CMD command, const SInfoOut& out) override;
  void GetInfo(GenTL::EVENT_INFO_CMD command, const SInfoOut& out) override;
  void Flush() override;
  void Kill() override;
  void Shutdown() override;

private:
  std::mutex m_mutex;
  std::condition_variable m_cv;
  std::deque<std::vector<uint8_t>> m_queue;
  size_t m_maxSize;
  size_t m_pendingKills = 0;
  bool m_shutdown = false;
  uint64_t m_fired = 0;
};

// Something events can be registered on.
class CEventSource : public virtual CObject {
public:
  std::shared_ptr<CEvent> Register(GenTL::EVENT_TYPE type);
  void Unregister(GenTL::EVENT_TYPE type);
  void UnregisterAll();
  // Queues a record on the registered event of this type, if any.
  void Fire(GenTL::EVENT_TYPE type, std::vector<uint8_t> data);

protected:
  // Makes the event object of a type this source supports; throws GC_ERR_NOT_IMPLEMENTED otherwise.
  virtual std::shared_ptr<CEvent> MakeEvent(GenTL::EVENT_TYPE type);

private:
  std::mutex m_eventMutex;
  std::map<GenTL::EVENT_TYPE, std::shared_ptr<CEvent>> m_events;
};

// An EVENT_ERROR record: the error code followed by its text.
std::vector<uint8_t> ErrorEventRecord(GenTL::GC_ERROR code, const std::string& text);

}  // namespace TalvirSim
