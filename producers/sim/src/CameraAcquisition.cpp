// The camera's acquisition side: grabber registers, the frame gate, frame jobs, delivery bookkeeping and remote-device
// events.
#include "Bytes.h"
#include "Camera.h"
#include "Library.h"
#include "talvirsim/SimRegisters.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace TalvirSim {

namespace R = Remote;

uint64_t CSimCamera::GrabberRegister(uint64_t remoteAddress) {
  if (m_lost) {
    Fail(GenTL::GC_ERR_IO, "the device " + m_config.id + " is lost");
  }
  std::lock_guard<std::mutex> lock(m_mutex);
  if (remoteAddress == R::kPayloadSize) {
    return PayloadSizeLocked();
  }
  return Get32(remoteAddress);
}

void CSimCamera::SetGrabberRegister(uint64_t remoteAddress, uint64_t value) {
  if (value > kNone32) {
    Fail(GenTL::GC_ERR_INVALID_VALUE, "value out of range");
  }
  uint8_t data[4];
  WriteBE32(data, static_cast<uint32_t>(value));
  Write(remoteAddress, data, 4, true);
}

void CSimCamera::Open(GenTL::DEVICE_ACCESS_FLAGS flags) {
  std::lock_guard<std::mutex> lock(m_mutex);
  if (m_lost) {
    Fail(GenTL::GC_ERR_IO, "the device " + m_config.id + " is lost");
  }
  if (flags < GenTL::DEVICE_ACCESS_READONLY || flags > GenTL::DEVICE_ACCESS_EXCLUSIVE) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, "unsupported access flags " + std::to_string(flags));
  }
  switch (m_config.accessStatus) {
  case GenTL::DEVICE_ACCESS_STATUS_NOACCESS:
    Fail(GenTL::GC_ERR_ACCESS_DENIED, "the device " + m_config.id + " cannot be accessed");
  case GenTL::DEVICE_ACCESS_STATUS_BUSY:
    Fail(GenTL::GC_ERR_RESOURCE_IN_USE, "the device " + m_config.id + " is busy (opened elsewhere)");
  case GenTL::DEVICE_ACCESS_STATUS_READONLY:
    if (flags != GenTL::DEVICE_ACCESS_READONLY) {
      Fail(GenTL::GC_ERR_ACCESS_DENIED, "the device " + m_config.id + " can only be opened read-only");
    }
    break;
  default: break;
  }
  if (m_open) {
    Fail(GenTL::GC_ERR_RESOURCE_IN_USE, "the device " + m_config.id + " is already open");
  }
  m_open = true;
  m_openReadOnly = flags == GenTL::DEVICE_ACCESS_READONLY;
}

void CSimCamera::Close() {
  std::lock_guard<std::mutex> lock(m_mutex);
  m_open = false;
  m_acquiring = false;
  m_pendingTriggers = 0;
  Set32(R::kTLParamsLocked, 0);
}

int32_t CSimCamera::AccessStatus() const {
  std::lock_guard<std::mutex> lock(m_mutex);
  if (m_open) {
    return m_openReadOnly ? GenTL::DEVICE_ACCESS_STATUS_OPEN_READONLY : GenTL::DEVICE_ACCESS_STATUS_OPEN_READWRITE;
  }
  return m_config.accessStatus;
}

void CSimCamera::Lose(const std::string& reason) {
  if (m_lost.exchange(true)) {
    return;
  }
  Fire(GenTL::EVENT_ERROR, ErrorEventRecord(GenTL::GC_ERR_IO, "device " + m_config.id + ": " + reason));
  CallWake();
  if (m_flavour == EFlavour::U3V) {
    Lib().ReportDeviceLost(m_config.serial);
  } else if (m_flavour == EFlavour::GEV) {
    Lib().ReportGevDeviceLost(m_config.ip);
  }
}

std::shared_ptr<CEvent> CSimCamera::MakeEvent(GenTL::EVENT_TYPE type) {
  if (type == GenTL::EVENT_REMOTE_DEVICE) {
    return std::make_shared<CQueuedEvent>(type, 576);
  }
  return CEventSource::MakeEvent(type);
}

void CSimCamera::SetWake(std::function<void()> wake) {
  std::lock_guard<std::mutex> lock(m_wakeMutex);
  m_wake = std::move(wake);
}

void CSimCamera::CallWake() {
  std::lock_guard<std::mutex> lock(m_wakeMutex);
  if (m_wake) {
    m_wake();
  }
}

void CSimCamera::StreamStarted() {
  std::lock_guard<std::mutex> lock(m_mutex);
  m_streaming = true;
}

void CSimCamera::StreamStopped() {
  std::lock_guard<std::mutex> lock(m_mutex);
  m_streaming = false;
}

SFrameGate CSimCamera::Gate() {
  std::lock_guard<std::mutex> lock(m_mutex);
  return GateLocked();
}

bool CSimCamera::StartFrame(SFrameJob& job) {
  std::lock_guard<std::mutex> lock(m_mutex);
  return StartFrameLocked(job);
}

bool CSimCamera::Poll(bool startUntimed, SFrameJob& job, SFrameGate& gate) {
  std::lock_guard<std::mutex> lock(m_mutex);
  gate = GateLocked();
  return startUntimed && gate.open && !gate.timed && StartFrameLocked(job);
}

SFrameGate CSimCamera::GateLocked() const {
  SFrameGate gate;
  gate.lost = m_lost;
  const bool started = m_acquiring || !m_config.requireAcquisitionStart;
  const uint32_t mode = Get32(R::kAcquisitionMode);
  const bool framesLeft = mode == 0 || m_framesLeft > 0 || !m_config.requireAcquisitionStart;
  const bool triggered = Get32(R::kTriggerModeBase) == 1;
  gate.open = !gate.lost && started && framesLeft && (!triggered || m_pendingTriggers > 0);
  gate.timed = !triggered && Get32(R::kSimFreeRun) == 0;
  double rate;
  if (m_config.lineScan) {
    rate = GetDoubleBE(R::kAcquisitionLineRate) / std::max<uint32_t>(1, Get32(R::kHeight));
  } else {
    rate = std::min(GetDoubleBE(R::kAcquisitionFrameRate), 1.0e6 / GetDoubleLE(R::kExposureTime));
  }
  if (!(rate > 0)) {
    gate.timed = false;
  } else {
    gate.period = std::chrono::nanoseconds(static_cast<int64_t>(1.0e9 / rate));
  }
  return gate;
}

bool CSimCamera::StartFrameLocked(SFrameJob& job) {
  if (m_lost) {
    return false;
  }
  const bool started = m_acquiring || !m_config.requireAcquisitionStart;
  const uint32_t mode = Get32(R::kAcquisitionMode);
  const bool counted = m_config.requireAcquisitionStart && mode != 0;
  const bool triggered = Get32(R::kTriggerModeBase) == 1;
  if (!started || (counted && m_framesLeft == 0) || (triggered && m_pendingTriggers == 0)) {
    return false;
  }
  if (counted && --m_framesLeft == 0) {
    m_acquiring = false;
  }
  if (triggered) {
    --m_pendingTriggers;
  }
  job.frameId = ++m_frameCounter;
  job.width = Get32(R::kWidth);
  job.height = Get32(R::kHeight);
  job.offsetX = Get32(R::kOffsetX);
  job.offsetY = Get32(R::kOffsetY);
  job.format = FindPixelFormat(Get32(R::kPixelFormat));
  job.imageSize = job.format ? ImageSize(*job.format, job.width, job.height) : 0;
  job.payloadSize = PayloadSizeLocked();
  job.chunkMode = Get32(R::kChunkModeActive) != 0;
  for (int i = 0; i < 3; ++i) {
    job.chunkEnabled[i] = Get32(R::kChunkEnableBase + 4 * i) != 0;
  }
  job.exposureTime = GetDoubleLE(R::kExposureTime);
  job.packetSize = Get32(R::kGevSCPSPacketSize);
  job.partialMode = Get32(R::kPartialImageOutputMode);
  const uint32_t every = Get32(R::kSimIncompleteEveryN);
  job.incomplete = every != 0 && job.frameId % every == 0;
  job.lateByMs = Get32(R::kSimLateFrameId) == job.frameId ? Get32(R::kSimLateByMs) : 0;
  const auto now = std::chrono::steady_clock::now();
  job.timestampNs = static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(now - m_epoch).count());
  job.timestamp = NowTicks();
  return true;
}

void CSimCamera::FrameDelivered(const SFrameJob& job) {
  bool fireEvent;
  bool lose = false;
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_deliveredCount;
    m_lastFrameId = job.frameId;
    fireEvent = Get32(R::kEventNotificationBase) == 1;
    const uint32_t loseAfter = Get32(R::kSimLoseAfterFrames);
    lose = loseAfter != 0 && m_deliveredCount >= loseAfter;
  }
  if (fireEvent) {
    FireExposureEnd(job.frameId, job.timestamp);
  }
  if (lose) {
    Lose("lost after " + std::to_string(m_deliveredCount) + " frames (SimLoseAfterFrames)");
  }
}

// Remote-device event data: the layout of a GigE Vision event packet, with the header fields in host byte order
// and the event's own data (frame ID, timestamp) big-endian as the description's event registers read them.
void CSimCamera::FireExposureEnd(uint64_t frameId, uint64_t timestamp) {
  const bool extended = m_config.eventLayoutVersion == 2;
  std::vector<uint8_t> packet(extended ? 32 : 24, 0);
  auto put16 = [&](size_t at, uint16_t v) { std::memcpy(&packet[at], &v, 2); };
  auto put32 = [&](size_t at, uint32_t v) { std::memcpy(&packet[at], &v, 4); };
  auto put64 = [&](size_t at, uint64_t v) { std::memcpy(&packet[at], &v, 8); };
  packet[0] = 0x42;                    // key
  packet[1] = extended ? 0x10 : 0x00;  // flags: extended IDs
  put16(2, 0x00C2);                    // event-data command
  put16(8, 0);                         // reserved
  put16(10, R::kEventIdExposureEnd);
  put16(12, 0);                                        // stream channel
  put16(14, static_cast<uint16_t>(frameId & 0xFFFF));  // block ID (16 bits)
  if (extended) {
    put64(16, frameId);  // block ID (64 bits)
    put32(24, static_cast<uint32_t>(timestamp >> 32));
    put32(28, static_cast<uint32_t>(timestamp));
  } else {
    put32(16, static_cast<uint32_t>(timestamp >> 32));
    put32(20, static_cast<uint32_t>(timestamp));
  }
  uint8_t data[16];
  WriteBE64(data, frameId);
  WriteBE64(data + 8, timestamp);
  packet.insert(packet.end(), data, data + sizeof data);
  put16(4, static_cast<uint16_t>(packet.size() - 8));  // length after the header
  Fire(GenTL::EVENT_REMOTE_DEVICE, std::move(packet));
}

}  // namespace TalvirSim
