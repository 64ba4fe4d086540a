#include "Objects.h"

#include "Library.h"

#include <chrono>
#include <cstdio>
#include <cstring>

namespace TalvirSim {

// ---- CPortModule ----

std::string CPortModule::PortVendor() { return Lib().Config().vendor; }
std::string CPortModule::PortModel() { return Lib().Config().model; }
std::string CPortModule::PortVersion() { return Lib().Config().version; }
std::string CPortModule::PortTLType() { return Lib().Config().tlType; }

void CPortModule::GetPortInfo(GenTL::PORT_INFO_CMD command, const SInfoOut& out) {
  switch (command) {
  case GenTL::PORT_INFO_ID: return PutString(out, PortId());
  case GenTL::PORT_INFO_VENDOR: return PutString(out, PortVendor());
  case GenTL::PORT_INFO_MODEL: return PutString(out, PortModel());
  case GenTL::PORT_INFO_TLTYPE: return PutString(out, PortTLType());
  case GenTL::PORT_INFO_MODULE: return PutString(out, PortModuleName());
  case GenTL::PORT_INFO_LITTLE_ENDIAN: return PutBool(out, PortLittleEndian());
  case GenTL::PORT_INFO_BIG_ENDIAN: return PutBool(out, !PortLittleEndian());
  case GenTL::PORT_INFO_ACCESS_READ: return PutBool(out, true);
  case GenTL::PORT_INFO_ACCESS_WRITE: return PutBool(out, PortWritable());
  case GenTL::PORT_INFO_ACCESS_NA:
  case GenTL::PORT_INFO_ACCESS_NI: return PutBool(out, false);
  case GenTL::PORT_INFO_VERSION: return PutString(out, PortVersion());
  case GenTL::PORT_INFO_PORTNAME: return PutString(out, PortModuleName() == "Device" ? "Device" : "TLPort");
  default: Fail(GenTL::GC_ERR_INVALID_ID, "unknown port info command " + std::to_string(command));
  }
}

void CPortModule::GetUrlInfo(uint32_t index, GenTL::URL_INFO_CMD command, const SInfoOut& out) {
  if (index != 0) {
    Fail(GenTL::GC_ERR_INVALID_INDEX, "the port has one URL, index " + std::to_string(index) + " asked");
  }
  const SDescription& description = Description();
  switch (command) {
  case GenTL::URL_INFO_URL: return PutString(out, description.Url());
  case GenTL::URL_INFO_SCHEMA_VER_MAJOR: return PutI32(out, static_cast<int32_t>(description.schemaMajor));
  case GenTL::URL_INFO_SCHEMA_VER_MINOR: return PutI32(out, static_cast<int32_t>(description.schemaMinor));
  case GenTL::URL_INFO_FILE_VER_MAJOR: return PutI32(out, static_cast<int32_t>(description.fileMajor));
  case GenTL::URL_INFO_FILE_VER_MINOR: return PutI32(out, static_cast<int32_t>(description.fileMinor));
  case GenTL::URL_INFO_FILE_VER_SUBMINOR: return PutI32(out, static_cast<int32_t>(description.fileSubMinor));
  case GenTL::URL_INFO_FILE_REGISTER_ADDRESS: return PutU64(out, description.address);
  case GenTL::URL_INFO_FILE_SIZE: return PutU64(out, description.data.size());
  case GenTL::URL_INFO_SCHEME: return PutI32(out, GenTL::URL_SCHEME_LOCAL);
  case GenTL::URL_INFO_FILENAME: return PutString(out, description.fileName);
  case GenTL::URL_INFO_FILE_SHA1_HASH:
    Fail(GenTL::GC_ERR_NOT_AVAILABLE, "no SHA1 hash is published for the description");
  default: Fail(GenTL::GC_ERR_INVALID_ID, "unknown URL info command " + std::to_string(command));
  }
}

// ---- CRegisterBank ----

void CRegisterBank::AddString(uint64_t base, size_t length, StringGetter get, size_t count, uint64_t stride) {
  m_entries.push_back({base, length, count, stride == 0 ? length : stride, std::move(get), {}, {}});
}

void CRegisterBank::AddInt(uint64_t base, size_t length, IntGetter get, IntSetter set, size_t count, uint64_t stride) {
  m_entries.push_back({base, length, count, stride == 0 ? length : stride, {}, std::move(get), std::move(set)});
}

void CRegisterBank::AddStored(uint64_t base, size_t length, uint64_t initial) {
  auto stored = m_stored;
  (*stored)[base] = initial;
  AddInt(
      base, length, [stored, base](size_t) { return stored->at(base); },
      [stored, base](size_t, uint64_t value) { (*stored)[base] = value; });
}

uint64_t CRegisterBank::Stored(uint64_t base) const {
  std::lock_guard<std::mutex> lock(m_mutex);
  return m_stored->at(base);
}

const CRegisterBank::SEntry* CRegisterBank::Find(uint64_t address, size_t length, size_t& index) const {
  for (const SEntry& entry : m_entries) {
    if (address < entry.base) {
      continue;
    }
    const uint64_t offset = address - entry.base;
    if (offset % entry.stride != 0 || offset / entry.stride >= entry.count) {
      continue;
    }
    if (length > entry.length) {
      Fail(GenTL::GC_ERR_INVALID_PARAMETER,
           "access of " + std::to_string(length) + " bytes to a register of " + std::to_string(entry.length));
    }
    index = static_cast<size_t>(offset / entry.stride);
    return &entry;
  }
  char text[64];
  std::snprintf(text, sizeof text, "no module register at 0x%llx", static_cast<unsigned long long>(address));
  Fail(GenTL::GC_ERR_INVALID_ADDRESS, text);
}

void CRegisterBank::Read(uint64_t address, void* buffer, size_t length) const {
  std::lock_guard<std::mutex> lock(m_mutex);
  size_t index = 0;
  const SEntry* entry = Find(address, length, index);
  std::vector<uint8_t> bytes(entry->length, 0);
  if (entry->getString) {
    const std::string text = entry->getString(index);
    std::memcpy(bytes.data(), text.data(), std::min(text.size(), entry->length - 1));
  } else {
    const uint64_t value = entry->getInt(index);
    for (size_t i = 0; i < entry->length && i < 8; ++i) {
      bytes[i] = static_cast<uint8_t>(value >> (8 * i));
    }
  }
  std::memcpy(buffer, bytes.data(), length);
}

void CRegisterBank::Write(uint64_t address, const void* buffer, size_t length) {
  std::unique_lock<std::mutex> lock(m_mutex);
  size_t index = 0;
  const SEntry* entry = Find(address, length, index);
  if (!entry->setInt) {
    char text[64];
    std::snprintf(text, sizeof text, "the module register at 0x%llx is read-only",
                  static_cast<unsigned long long>(address));
    Fail(GenTL::GC_ERR_ACCESS_DENIED, text);
  }
  if (length != entry->length) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, "the register takes " + std::to_string(entry->length) + " bytes");
  }
  uint64_t value = 0;
  const auto* bytes = static_cast<const uint8_t*>(buffer);
  for (size_t i = 0; i < length && i < 8; ++i) {
    value |= uint64_t{bytes[i]} << (8 * i);
  }
  const IntSetter setter = entry->setInt;
  lock.unlock();  // setters may reach other objects (a grabber's image format lives in its camera)
  setter(index, value);
}

// ---- CBankPort ----

void CBankPort::ReadPort(uint64_t address, void* buffer, size_t length) {
  if (m_description.Covers(address, length)) {
    if (length > 0) {
      std::memcpy(buffer, m_description.data.data() + (address - m_description.address), length);
    }
    return;
  }
  m_bank.Read(address, buffer, length);
}

void CBankPort::WritePort(uint64_t address, const void* buffer, size_t length) {
  m_bank.Write(address, buffer, length);
}

// ---- Events ----

void CEvent::GetDataInfo(const void*, size_t, GenTL::EVENT_DATA_INFO_CMD, const SInfoOut&) {
  Fail(GenTL::GC_ERR_NOT_AVAILABLE, "this event carries no data to analyse");
}

void CQueuedEvent::Push(std::vector<uint8_t> data) {
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_shutdown) {
      return;
    }
    m_queue.push_back(std::move(data));
    ++m_fired;
  }
  m_cv.notify_one();
}

void CQueuedEvent::GetData(void* buffer, size_t* size, uint64_t timeoutMs) {
  if (size == nullptr && buffer != nullptr) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, "the size pointer is null");
  }
  std::unique_lock<std::mutex> lock(m_mutex);
  const auto deadline = timeoutMs >= 0xFFFFFFFFull
                            ? std::chrono::steady_clock::time_point::max()
                            : std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
  for (;;) {
    if (m_shutdown) {
      Fail(GenTL::GC_ERR_ABORT, "the event was unregistered");
    }
    if (m_pendingKills > 0) {
      --m_pendingKills;
      Fail(GenTL::GC_ERR_ABORT, "the wait was ended by EventKill");
    }
    if (!m_queue.empty()) {
      break;
    }
    if (deadline == std::chrono::steady_clock::time_point::max()) {
      m_cv.wait(lock);
    } else if (m_cv.wait_until(lock, deadline) == std::cv_status::timeout && m_queue.empty() && m_pendingKills == 0 &&
               !m_shutdown) {
      Fail(GenTL::GC_ERR_TIMEOUT, "no event within " + std::to_string(timeoutMs) + " ms");
    }
  }
  std::vector<uint8_t>& front = m_queue.front();
  if (buffer == nullptr) {
    m_queue.pop_front();  // a null buffer discards the event
    return;
  }
  if (*size < front.size()) {
    const size_t given = *size;
    *size = front.size();
    Fail(GenTL::GC_ERR_BUFFER_TOO_SMALL,
         "event data of " + std::to_string(front.size()) + " bytes, buffer of " + std::to_string(given));
  }
  std::memcpy(buffer, front.data(), front.size());
  *size = front.size();
  m_queue.pop_front();
}

void CQueuedEvent::GetDataInfo(const void* in, size_t inSize, GenTL::EVENT_DATA_INFO_CMD command, const SInfoOut& out) {
  if (in == nullptr) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, "no event data given");
  }
  const auto* bytes = static_cast<const uint8_t*>(in);
  if (Type() == GenTL::EVENT_ERROR) {
    if (inSize < 4) {
      Fail(GenTL::GC_ERR_INVALID_PARAMETER, "error event data is at least 4 bytes");
    }
    int32_t code;
    std::memcpy(&code, bytes, 4);
    switch (command) {
    case GenTL::EVENT_DATA_ID: return PutI32(out, code);
    case GenTL::EVENT_DATA_VALUE:
      return PutString(out, std::string(reinterpret_cast<const char*>(bytes + 4),
                                        strnlen(reinterpret_cast<const char*>(bytes + 4), inSize - 4)));
    case GenTL::EVENT_DATA_NUMID: return PutU64(out, static_cast<uint64_t>(static_cast<int64_t>(code)));
    default: Fail(GenTL::GC_ERR_INVALID_ID, "unknown event data info command " + std::to_string(command));
    }
  }
  // Remote-device events: the event ID sits at bytes 10-11, the data after the header.
  if (inSize < 24) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, "remote-device event data is at least 24 bytes");
  }
  uint16_t id;
  std::memcpy(&id, bytes + 10, 2);
  const size_t header = (bytes[1] & 0x10) != 0 ? 32 : 24;
  switch (command) {
  case GenTL::EVENT_DATA_ID: {
    char text[8];
    std::snprintf(text, sizeof text, "%04X", id);
    return PutString(out, text);
  }
  case GenTL::EVENT_DATA_VALUE:
    return PutBytes(out, GenTL::INFO_DATATYPE_BUFFER, bytes + std::min(header, inSize),
                    inSize - std::min(header, inSize));
  case GenTL::EVENT_DATA_NUMID: return PutU64(out, id);
  default: Fail(GenTL::GC_ERR_INVALID_ID, "unknown event data info command " + std::to_string(command));
  }
}

void CQueuedEvent::GetInfo(GenTL::EVENT_INFO_CMD command, const SInfoOut& out) {
  std::lock_guard<std::mutex> lock(m_mutex);
  switch (command) {
  case GenTL::EVENT_EVENT_TYPE: return PutI32(out, Type());
  case GenTL::EVENT_NUM_IN_QUEUE: return PutSize(out, m_queue.size());
  case GenTL::EVENT_NUM_FIRED: return PutU64(out, m_fired);
  case GenTL::EVENT_SIZE_MAX: return PutSize(out, m_maxSize);
  case GenTL::EVENT_INFO_DATA_SIZE_MAX: return PutSize(out, m_maxSize);
  default: Fail(GenTL::GC_ERR_INVALID_ID, "unknown event info command " + std::to_string(command));
  }
}

void CQueuedEvent::Flush() {
  std::lock_guard<std::mutex> lock(m_mutex);
  m_queue.clear();
}

void CQueuedEvent::Kill() {
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_pendingKills;
  }
  m_cv.notify_all();
}

void CQueuedEvent::Shutdown() {
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_shutdown = true;
  }
  m_cv.notify_all();
}

std::shared_ptr<CEvent> CEventSource::MakeEvent(GenTL::EVENT_TYPE type) {
  if (type == GenTL::EVENT_ERROR) {
    return std::make_shared<CQueuedEvent>(type, 1024);
  }
  Fail(GenTL::GC_ERR_NOT_IMPLEMENTED, "event type " + std::to_string(type) + " is not offered by this module");
}

std::shared_ptr<CEvent> CEventSource::Register(GenTL::EVENT_TYPE type) {
  std::lock_guard<std::mutex> lock(m_eventMutex);
  if (m_events.count(type) != 0) {
    Fail(GenTL::GC_ERR_RESOURCE_IN_USE, "event type " + std::to_string(type) + " is already registered");
  }
  std::shared_ptr<CEvent> event = MakeEvent(type);
  m_events[type] = event;
  Lib().AddHandle(event);
  return event;
}

void CEventSource::Unregister(GenTL::EVENT_TYPE type) {
  std::shared_ptr<CEvent> event;
  {
    std::lock_guard<std::mutex> lock(m_eventMutex);
    auto it = m_events.find(type);
    if (it == m_events.end()) {
      Fail(GenTL::GC_ERR_NOT_AVAILABLE, "event type " + std::to_string(type) + " is not registered");
    }
    event = it->second;
    m_events.erase(it);
  }
  Lib().RemoveHandle(event->Handle());
  event->Shutdown();
}

void CEventSource::UnregisterAll() {
  std::map<GenTL::EVENT_TYPE, std::shared_ptr<CEvent>> events;
  {
    std::lock_guard<std::mutex> lock(m_eventMutex);
    events.swap(m_events);
  }
  for (auto& entry : events) {
    Lib().RemoveHandle(entry.second->Handle());
    entry.second->Shutdown();
  }
}

void CEventSource::Fire(GenTL::EVENT_TYPE type, std::vector<uint8_t> data) {
  std::shared_ptr<CEvent> event;
  {
    std::lock_guard<std::mutex> lock(m_eventMutex);
    auto it = m_events.find(type);
    if (it == m_events.end()) {
      return;
    }
    event = it->second;
  }
  if (auto* queued = dynamic_cast<CQueuedEvent*>(event.get())) {
    queued->Push(std::move(data));
  }
}

std::vector<uint8_t> ErrorEventRecord(GenTL::GC_ERROR code, const std::string& text) {
  std::string bytes(4, '\0');
  std::memcpy(&bytes[0], &code, 4);
  bytes += text;
  bytes.push_back('\0');
  return std::vector<uint8_t>(bytes.begin(), bytes.end());
}

}  // namespace TalvirSim
