#include "Camera.h"

#include "Bytes.h"
#include "Library.h"
#include "talvirsim/SimRegisters.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace TalvirSim {
namespace R = Remote;
namespace {

constexpr size_t kRegisterFileSize = 0x1000;

enum : uint32_t { kLockable = 1, kCommand = 2 };

struct SWritable {
  uint64_t address;
  size_t length;
  uint32_t flags;
};

// Every register a consumer may write, with its length; everything else in the register file is read-only.
const SWritable kWritable[] = {
    {R::kDeviceUserID, 16, 0},
    {R::kWidth, 4, kLockable},
    {R::kHeight, 4, kLockable},
    {R::kOffsetX, 4, kLockable},
    {R::kOffsetY, 4, kLockable},
    {R::kPixelFormat, 4, kLockable},
    {R::kTLParamsLocked, 4, 0},
    {R::kImageControl, 4, 0},
    {R::kPixelBigEndian, 4, 0},
    {R::kAcquisitionMode, 4, 0},
    {R::kAcquisitionStart, 4, kCommand},
    {R::kAcquisitionStop, 4, kCommand},
    {R::kAcquisitionFrameCount, 4, 0},
    {R::kAcquisitionFrameRate, 8, 0},
    {R::kExposureTime, 8, 0},
    {R::kAcquisitionLineRate, 8, 0},
    {R::kGainRaw, 4, 0},
    {R::kBlackLevelRaw, 4, 0},
    {R::kTriggerModeBase, 4, 0},
    {R::kTriggerModeBase + 4, 4, 0},
    {R::kTriggerSourceBase, 4, 0},
    {R::kTriggerSourceBase + 4, 4, 0},
    {R::kTriggerSelector, 4, 0},
    {R::kTriggerSoftware, 4, kCommand},
    {R::kChunkModeActive, 4, kLockable},
    {R::kChunkSelector, 4, 0},
    {R::kChunkEnableBase, 4, kLockable},
    {R::kChunkEnableBase + 4, 4, kLockable},
    {R::kChunkEnableBase + 8, 4, kLockable},
    {R::kEventSelector, 4, 0},
    {R::kEventNotificationBase, 4, 0},
    {R::kTimestampLatch, 4, kCommand},
    {R::kGevSCPSPacketSize, 4, kLockable},
    {R::kGevSCPD, 4, 0},
    {R::kPartialImageOutputMode, 4, 0},
    {R::kSimDeviceLost, 4, kCommand},
    {R::kSimLoseAfterFrames, 4, 0},
    {R::kSimIncompleteEveryN, 4, 0},
    {R::kSimLateFrameId, 4, 0},
    {R::kSimLateByMs, 4, 0},
    {R::kSimReadFailAddress, 4, 0},
    {R::kSimFireEvent, 4, kCommand},
    {R::kSimFreeRun, 4, 0},
};

const SWritable* FindWritable(uint64_t address) {
  for (const SWritable& entry : kWritable) {
    if (entry.address == address) {
      return &entry;
    }
  }
  return nullptr;
}

std::string Hex(uint64_t value) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(value));
  return text;
}

uint32_t FlavourCode(EFlavour flavour) { return static_cast<uint32_t>(flavour); }

}  // namespace

CSimCamera::CSimCamera(const SConfig& library, const SDeviceConfig& config)
    : m_config(config), m_flavour(library.flavour), m_epoch(std::chrono::steady_clock::now()),
      m_registers(kRegisterFileSize, 0) {
  InitRegisters();
  std::string xml = SelectSection(EmbeddedXml("remote.xml"), "<!--@LINESCAN_BEGIN@-->", "<!--@LINESCAN_END@-->",
                                  m_config.lineScan);
  xml = SelectSection(xml, "<!--@PIXEL_ENDIAN_BEGIN@-->", "<!--@PIXEL_ENDIAN_END@-->", m_config.pixelBigEndianNode);
  m_description = MakeDescription("TalvirSim" + m_config.model, xml, R::kDescriptionAddress, m_config.xmlZipped,
                                  m_config.urlScheme);
  m_description.fileMinor = 2;
}

void CSimCamera::InitRegisters() {
  m_registers[R::kEventLayoutVersion] = static_cast<uint8_t>(m_config.eventLayoutVersion);
  SetString(R::kDeviceVendorName, 32, m_config.vendor);
  SetString(R::kDeviceModelName, 32, m_config.model);
  SetString(R::kDeviceVersion, 32, m_config.version);
  SetString(R::kDeviceSerialNumber, 16, m_config.serial);
  SetString(R::kDeviceUserID, 16, m_config.userName);
  SetString(R::kDeviceManufacturerInfo, 48, "Simulated camera for tests and demos");
  SetString(R::kDeviceFirmwareVersion, 32, "sim-" + m_config.version);
  Set32(R::kSensorWidth, m_config.sensorWidth);
  Set32(R::kSensorHeight, m_config.sensorHeight);
  Set32(R::kWidthMax, m_config.sensorWidth - m_config.sensorWidth % 4);
  Set32(R::kHeightMax, m_config.sensorHeight);
  Set32(R::kWidth, m_config.width);
  Set32(R::kHeight, m_config.height);
  Set32(R::kPixelFormat, m_config.pixelFormat);
  Set32(R::kAcquisitionMode, 0);
  Set32(R::kAcquisitionFrameCount, 1);
  SetDoubleBE(R::kAcquisitionFrameRate, m_config.frameRate > 0 ? m_config.frameRate : 1000000.0);
  SetDoubleLE(R::kExposureTime, m_config.exposureTime);
  SetDoubleBE(R::kAcquisitionLineRate, m_config.lineRate);
  Set32(R::kBlackLevelRaw, 64);
  Set32(R::kTriggerSourceBase, 0);
  Set32(R::kGevSCPSPacketSize, m_config.packetSize);
  Set32(R::kGevSCPSPacketSizeMin, m_config.packetSizeMin);
  Set32(R::kGevSCPSPacketSizeMax, m_config.packetSizeMax);
  Set32(R::kGevSCPSPacketSizeInc, m_config.packetSizeInc);
  Set32(R::kSimLoseAfterFrames, static_cast<uint32_t>(std::min<uint64_t>(m_config.faults.loseAfterFrames, kNone32)));
  Set32(R::kSimIncompleteEveryN, m_config.faults.incompleteEveryN);
  Set32(R::kSimLateFrameId, static_cast<uint32_t>(std::min<uint64_t>(m_config.faults.lateFrameId, kNone32)));
  Set32(R::kSimLateByMs, m_config.faults.lateByMs);
  Set32(R::kSimReadFailAddress,
        m_config.faults.readFailAddress > kNone32 ? kNone32 : static_cast<uint32_t>(m_config.faults.readFailAddress));
  Set32(R::kSimFreeRun, m_config.frameRate <= 0 ? 1 : 0);
  Set32(R::kSimLineScan, m_config.lineScan ? 1 : 0);
  Set32(R::kSimFlavour, FlavourCode(m_flavour));
  const auto& formats = AllPixelFormats();
  for (size_t i = 0; i < formats.size(); ++i) {
    if (std::find(m_config.pixelFormats.begin(), m_config.pixelFormats.end(), formats[i].code) !=
        m_config.pixelFormats.end()) {
      m_registers[R::kSimOfferedFormats + i / 8] |= static_cast<uint8_t>(1u << (i % 8));
    }
  }
}

uint32_t CSimCamera::Get32(uint64_t address) const { return ReadBE32(&m_registers[address]); }
void CSimCamera::Set32(uint64_t address, uint32_t value) { WriteBE32(&m_registers[address], value); }

void CSimCamera::SetLE32(uint64_t address, uint32_t value) {
  for (int i = 0; i < 4; ++i) {
    m_registers[address + i] = static_cast<uint8_t>(value >> (8 * i));
  }
}

double CSimCamera::GetDoubleBE(uint64_t address) const {
  return DoubleFromBits((uint64_t{Get32(address)} << 32) | Get32(address + 4));
}

double CSimCamera::GetDoubleLE(uint64_t address) const {
  uint64_t bits = 0;
  for (int i = 7; i >= 0; --i) {
    bits = (bits << 8) | m_registers[address + i];
  }
  return DoubleFromBits(bits);
}

void CSimCamera::SetDoubleBE(uint64_t address, double value) {
  WriteBE64(&m_registers[address], BitsFromDouble(value));
}

void CSimCamera::SetDoubleLE(uint64_t address, double value) {
  const uint64_t bits = BitsFromDouble(value);
  for (int i = 0; i < 8; ++i) {
    m_registers[address + i] = static_cast<uint8_t>(bits >> (8 * i));
  }
}

void CSimCamera::SetString(uint64_t address, size_t length, const std::string& text) {
  std::fill(m_registers.begin() + static_cast<ptrdiff_t>(address),
            m_registers.begin() + static_cast<ptrdiff_t>(address + length), 0);
  std::memcpy(&m_registers[address], text.data(), std::min(text.size(), length - 1));
}

uint64_t CSimCamera::NowTicks() const {
  const auto ns = std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now() - m_epoch);
  const long double ticks = static_cast<long double>(ns.count()) * m_config.timestampFrequency / 1.0e9L;
  return static_cast<uint64_t>(ticks);
}

size_t CSimCamera::PayloadSizeLocked() const {
  const SPixelFormat* format = FindPixelFormat(Get32(R::kPixelFormat));
  size_t size = format ? ImageSize(*format, Get32(R::kWidth), Get32(R::kHeight)) : 0;
  if (Get32(R::kChunkModeActive) != 0) {
    size += 8;  // trailer of the image chunk
    for (int i = 0; i < 3; ++i) {
      if (Get32(R::kChunkEnableBase + 4 * i) != 0) {
        size += 8 + 8;
      }
    }
  }
  return size;
}

size_t CSimCamera::PayloadSize() {
  std::lock_guard<std::mutex> lock(m_mutex);
  return PayloadSizeLocked();
}

uint32_t CSimCamera::Width() {
  std::lock_guard<std::mutex> lock(m_mutex);
  return Get32(R::kWidth);
}

uint32_t CSimCamera::Height() {
  std::lock_guard<std::mutex> lock(m_mutex);
  return Get32(R::kHeight);
}

void CSimCamera::Read(uint64_t address, void* buffer, size_t length) {
  if (buffer == nullptr) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, "null read buffer");
  }
  if (m_lost) {
    Fail(GenTL::GC_ERR_IO, "the device " + m_config.id + " is lost");
  }
  if (m_description.Covers(address, length)) {
    if (length > 0) {
      std::memcpy(buffer, m_description.data.data() + (address - m_description.address), length);
    }
    return;
  }
  std::lock_guard<std::mutex> lock(m_mutex);
  if (address >= kRegisterFileSize || length > kRegisterFileSize - address) {
    Fail(GenTL::GC_ERR_INVALID_ADDRESS,
         "no remote register at " + Hex(address) + " for " + std::to_string(length) + " bytes");
  }
  const uint32_t failAt = Get32(R::kSimReadFailAddress);
  if (failAt != kNone32 && failAt >= address && failAt < address + length) {
    Fail(GenTL::GC_ERR_IO, "reading " + Hex(address) + " fails (test fault at " + Hex(failAt) + ")");
  }
  Set32(R::kPayloadSize, static_cast<uint32_t>(PayloadSizeLocked()));
  Set32(R::kSimFrameCounter, static_cast<uint32_t>(m_deliveredCount));
  std::memcpy(buffer, &m_registers[address], length);
}

void CSimCamera::Write(uint64_t address, const void* buffer, size_t length, bool writable) {
  if (buffer == nullptr) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, "null write buffer");
  }
  if (m_lost) {
    Fail(GenTL::GC_ERR_IO, "the device " + m_config.id + " is lost");
  }
  if (!writable) {
    Fail(GenTL::GC_ERR_ACCESS_DENIED, "the device is open read-only");
  }
  std::vector<std::function<void()>> after;
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    ApplyWrite(address, static_cast<const uint8_t*>(buffer), length, after);
  }
  // Effects that reach other objects (wake-ups, events, loss) run without the camera's lock.
  for (auto& action : after) {
    action();
  }
}

void CSimCamera::ApplyWrite(uint64_t address, const uint8_t* data, size_t length,
                            std::vector<std::function<void()>>& after) {
  const SWritable* entry = FindWritable(address);
  if (entry == nullptr) {
    if (address < kRegisterFileSize || m_description.Covers(address, length)) {
      Fail(GenTL::GC_ERR_ACCESS_DENIED, "the register at " + Hex(address) + " is read-only");
    }
    Fail(GenTL::GC_ERR_INVALID_ADDRESS, "no remote register at " + Hex(address));
  }
  if (length != entry->length) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, "the register at " + Hex(address) + " takes " +
                                              std::to_string(entry->length) + " bytes, not " + std::to_string(length));
  }
  if ((entry->flags & kLockable) && Get32(R::kTLParamsLocked) != 0) {
    Fail(GenTL::GC_ERR_ACCESS_DENIED, "the register at " + Hex(address) + " is locked while TLParamsLocked is set");
  }
  if ((entry->flags & kLockable) && m_streaming && address != R::kGevSCPSPacketSize) {
    // The image format cannot change under a running stream: the buffers were sized for it.
    Fail(GenTL::GC_ERR_RESOURCE_IN_USE, "the register at " + Hex(address) + " cannot change while streaming");
  }
  if (address == R::kDeviceUserID) {
    std::memcpy(&m_registers[address], data, length);
    m_registers[address + length - 1] = 0;
    return;
  }
  if (length == 8) {
    double value;
    uint64_t bits = 0;
    if (address == R::kExposureTime) {
      for (int i = 7; i >= 0; --i) {
        bits = (bits << 8) | data[i];
      }
    } else {
      bits = (uint64_t{ReadBE32(data)} << 32) | ReadBE32(data + 4);
    }
    value = DoubleFromBits(bits);
    if (!std::isfinite(value) || value <= 0) {
      Fail(GenTL::GC_ERR_INVALID_VALUE, "the value for " + Hex(address) + " must be positive");
    }
    std::memcpy(&m_registers[address], data, 8);
    after.push_back([this] { CallWake(); });
    return;
  }
  const uint32_t value = address == R::kImageControl ? (uint32_t{data[0]} | uint32_t{data[1]} << 8 |
                                                        uint32_t{data[2]} << 16 | uint32_t{data[3]} << 24)
                                                     : ReadBE32(data);
  auto require = [&](bool ok, const char* what) {
    if (!ok) {
      Fail(GenTL::GC_ERR_INVALID_VALUE, std::string(what) + ": " + std::to_string(value) + " rejected");
    }
  };
  switch (address) {
  case R::kWidth:
    require(value >= 16 && value % 4 == 0 && value + Get32(R::kOffsetX) <= Get32(R::kWidthMax), "Width");
    break;
  case R::kHeight: require(value >= 1 && value + Get32(R::kOffsetY) <= Get32(R::kHeightMax), "Height"); break;
  case R::kOffsetX: require(value % 4 == 0 && value + Get32(R::kWidth) <= Get32(R::kWidthMax), "OffsetX"); break;
  case R::kOffsetY: require(value + Get32(R::kHeight) <= Get32(R::kHeightMax), "OffsetY"); break;
  case R::kPixelFormat:
    require(std::find(m_config.pixelFormats.begin(), m_config.pixelFormats.end(), value) != m_config.pixelFormats.end(),
            "PixelFormat (not offered)");
    break;
  case R::kTLParamsLocked:
  case R::kPixelBigEndian:
  case R::kChunkModeActive:
  case R::kChunkEnableBase:
  case R::kChunkEnableBase + 4:
  case R::kChunkEnableBase + 8:
  case R::kEventNotificationBase:
  case R::kSimFreeRun:
  case R::kTriggerModeBase:
  case R::kTriggerModeBase + 4:
  case R::kTriggerSourceBase:
  case R::kTriggerSourceBase + 4:
  case R::kTriggerSelector: require(value <= 1, "flag"); break;
  case R::kAcquisitionMode:
  case R::kPartialImageOutputMode:
  case R::kChunkSelector: require(value <= 2, "selector"); break;
  case R::kEventSelector: require(value == 0, "EventSelector"); break;
  case R::kAcquisitionFrameCount: require(value >= 1, "AcquisitionFrameCount"); break;
  case R::kGainRaw: require(value <= 480, "GainRaw"); break;
  case R::kBlackLevelRaw: require(value <= 255, "BlackLevelRaw"); break;
  case R::kGevSCPSPacketSize: {
    const uint32_t minimum = Get32(R::kGevSCPSPacketSizeMin);
    const uint32_t increment = std::max<uint32_t>(1, Get32(R::kGevSCPSPacketSizeInc));
    require(value >= minimum && value <= Get32(R::kGevSCPSPacketSizeMax) && (value - minimum) % increment == 0,
            "GevSCPSPacketSize");
    break;
  }
  default: break;
  }
  if (entry->flags & kCommand) {
    if (value == 0) {
      return;  // writing 0 to a command register does nothing
    }
    switch (address) {
    case R::kAcquisitionStart: {
      const uint32_t mode = Get32(R::kAcquisitionMode);
      m_acquiring = true;
      m_framesLeft = mode == 1 ? 1 : mode == 2 ? Get32(R::kAcquisitionFrameCount) : 0;
      after.push_back([this] { CallWake(); });
      break;
    }
    case R::kAcquisitionStop:
      m_acquiring = false;
      m_pendingTriggers = 0;
      break;
    case R::kTriggerSoftware:
      if (Get32(R::kTriggerModeBase + 4 * Get32(R::kTriggerSelector)) == 1 &&
          Get32(R::kTriggerSourceBase + 4 * Get32(R::kTriggerSelector)) == 0 && Get32(R::kTriggerSelector) == 0) {
        ++m_pendingTriggers;
        after.push_back([this] { CallWake(); });
      }
      break;
    case R::kTimestampLatch: WriteBE64(&m_registers[R::kTimestampLatchValue], NowTicks()); break;
    case R::kSimDeviceLost: after.push_back([this] { Lose("lost on request (SimDeviceLost)"); }); break;
    case R::kSimFireEvent: {
      const uint64_t frameId = m_lastFrameId;
      const uint64_t now = NowTicks();
      after.push_back([this, frameId, now] { FireExposureEnd(frameId, now); });
      break;
    }
    default: break;
    }
    return;  // command registers read back as 0: the command is done at once
  }
  if (address == R::kImageControl) {
    SetLE32(address, value);
  } else {
    Set32(address, value);
  }
  if (address == R::kTriggerModeBase || address == R::kSimFreeRun) {
    after.push_back([this] { CallWake(); });
  }
}

}  // namespace TalvirSim
