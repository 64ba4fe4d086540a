#include "camera/EventListener.h"

#include "gentl/Cti.h"

#include <algorithm>
#include <chrono>
#include <cstring>

namespace TALVIR {
namespace {

// The thread waits this long for an event before it looks at its stop flag again.
constexpr uint64_t kWaitMs = 10;
// After a failed wait that returned at once, the thread pauses this long instead of spinning.
constexpr std::chrono::milliseconds kFailurePause{10};
// The delivered bytes the record is built from: the extended layout reaches byte 31.
constexpr size_t kHeaderBytes = 32;

template <typename T>
T ReadAt(const uint8_t* data, size_t offset) {
  T value;
  std::memcpy(&value, data + offset, sizeof value);
  return value;
}

}  // namespace

CEventListener::CEventListener(CCti* producer, void* module, uint32_t eventType, IEventCallback* callback,
                               uint32_t layoutVersion)
    : m_pProducer(producer), m_hModule(module), m_eventType(eventType), m_pCallback(callback),
      m_layoutVersion(layoutVersion), m_data(kDataSize, 0) {}

CEventListener::~CEventListener() { Stop(); }

int32_t CEventListener::Start() {
  if (m_pProducer == nullptr || m_hModule == nullptr || m_pProducer->Api().GCRegisterEvent == nullptr ||
      m_pProducer->Api().EventGetData == nullptr) {
    return -2;
  }
  if (m_hEvent != nullptr || m_thread.joinable()) {
    return -3;
  }
  if (m_pProducer->Api().GCRegisterEvent(m_hModule, m_eventType, &m_hEvent) != GenTL::GC_ERR_SUCCESS) {
    m_hEvent = nullptr;
    return -4;
  }
  m_running = true;
  m_thread = std::thread([this] { Run(); });
  return 0;
}

void CEventListener::Stop() {
  m_running = false;
  if (m_pProducer == nullptr) {
    return;
  }
  const CGenTLFunctionTable& api = m_pProducer->Api();
  if (m_hEvent != nullptr && api.EventKill != nullptr) {
    api.EventKill(m_hEvent);
  }
  // The thread is joined before the event is unregistered: a producer may free the event's handle on
  // unregistering, and the thread must not be waiting on it then.
  if (m_thread.joinable()) {
    m_thread.join();
  }
  if (m_hEvent != nullptr && api.GCUnregisterEvent != nullptr) {
    api.GCUnregisterEvent(m_hModule, m_eventType);
  }
  m_hEvent = nullptr;
}

void CEventListener::Run() {
  const auto getData = m_pProducer->Api().EventGetData;
  while (m_running.load()) {
    size_t size = m_data.size();
    const auto started = std::chrono::steady_clock::now();
    if (getData(m_hEvent, m_data.data(), &size, kWaitMs) != GenTL::GC_ERR_SUCCESS) {
      if (m_running.load() && std::chrono::steady_clock::now() - started < kFailurePause) {
        std::this_thread::sleep_for(kFailurePause);
      }
      continue;
    }
    size = std::min(size, m_data.size());
    RewriteRecord(m_data.data(), size, m_layoutVersion);
    m_pCallback->OnEvent(m_data.data(), size);
  }
}

void CEventListener::RewriteRecord(uint8_t* data, size_t size, uint32_t layoutVersion) {
  // The buffer is reused from event to event: what this event did not deliver must not show the last one's bytes.
  if (size < kHeaderBytes) {
    std::memset(data + size, 0, kHeaderBytes - size);
  }
  SDeviceEventRecord record{};
  record.eventId = ReadAt<uint16_t>(data, 10);
  record.streamChannel = ReadAt<uint16_t>(data, 12);
  record.blockId = ReadAt<uint16_t>(data, 14);
  if (layoutVersion == 2) {
    record.blockId64 = ReadAt<uint64_t>(data, 16);
    record.timestampHigh = ReadAt<uint32_t>(data, 24);
    record.timestampLow = ReadAt<uint32_t>(data, 28);
  } else {
    record.timestampHigh = ReadAt<uint32_t>(data, 16);
    record.timestampLow = ReadAt<uint32_t>(data, 20);
  }
  std::memcpy(data, &record, sizeof record);
  data[24] = 0;
}

}  // namespace TALVIR
