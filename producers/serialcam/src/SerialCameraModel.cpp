#include "SerialCameraModel.h"

#include "GenCPBootstrap.h"
#include "GenCPPacket.h"
#include "ZipWriter.h"

#include <algorithm>
#include <cstring>
#include <map>

namespace TalvirSerialCam {

const std::map<std::string, std::string>& EmbeddedFiles();

namespace {

namespace Boot = CLProtocol::GenCP::Bootstrap;
using namespace CLProtocol::GenCP;

constexpr size_t kLowSize = 0x1000;

void PutBE(std::vector<uint8_t>& space, size_t offset, uint64_t value, size_t size) {
  for (size_t i = 0; i < size; ++i) {
    space[offset + i] = static_cast<uint8_t>(value >> (8 * (size - 1 - i)));
  }
}

void PutString(std::vector<uint8_t>& space, size_t offset, const std::string& text) {
  std::fill(space.begin() + static_cast<std::ptrdiff_t>(offset),
            space.begin() + static_cast<std::ptrdiff_t>(offset + Boot::kStringSize), 0);
  std::memcpy(space.data() + offset, text.data(), std::min(text.size(), Boot::kStringSize - 1));
}

uint32_t FloatBits(float value) {
  uint32_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

bool Inside(uint64_t address, size_t length, uint64_t start, size_t size) {
  return address >= start && length <= size && address - start <= size - length;
}

}  // namespace

const std::string& BuiltInDescription() { return EmbeddedFiles().at("SerialCamera.xml"); }

CSerialCameraModel::CSerialCameraModel(const SCameraConfig& config)
    : m_config(config), m_low(kLowSize, 0), m_features(Address::kFeatureEnd - Address::kWidth, 0) {
  m_plain = config.description.empty() ? BuiltInDescription() : config.description;
  m_zipped = TalvirSim::ZipOneFile("SerialCamera.xml", m_plain);
  if (config.emptyDescription) {
    m_plain.clear();
    m_zipped.clear();
  }
  PutBE(m_low, Boot::kGenCPVersion, 0x00010003, 4);
  PutString(m_low, Boot::kManufacturerName, config.manufacturer);
  PutString(m_low, Boot::kModelName, config.model);
  PutString(m_low, Boot::kFamilyName, config.family);
  PutString(m_low, Boot::kDeviceVersion, config.version);
  PutString(m_low, Boot::kManufacturerInfo, "simulated serial camera");
  PutString(m_low, Boot::kSerialNumber, config.serialNumber);
  PutString(m_low, Boot::kUserDefinedName, config.userName);
  PutBE(m_low, Boot::kCapability, config.capability, 8);
  PutBE(m_low, Boot::kMaxDeviceResponseTime, 300, 4);
  PutBE(m_low, Boot::kManifestTableAddress, Address::kManifest, 8);
  PutBE(m_low, Boot::kSbrmAddress, Address::kSbrm, 8);
  PutString(m_low, Boot::kSoftwareInterfaceVersion, "1.0");
  PutBE(m_low, Address::kSbrm + Sbrm::kSupportedBaudRates, config.supportedRates | 1u, 4);
  PutBE(m_low, Address::kSbrm + Sbrm::kCurrentBaudRate, 1, 4);
  // Manifest: two device descriptions, schema 1.1, file version 1.4.2.
  PutBE(m_low, Address::kManifest, 2, 8);
  const uint32_t fileVersion = (1u << 24) | (4u << 16) | 2u;
  const uint32_t schema = (1u << 24) | (1u << 16);
  struct SFile {
    uint32_t format;
    uint64_t address;
    uint64_t size;
  };
  const SFile zipped{schema | (Manifest::kFormatZip << 10), Address::kZippedFile, m_zipped.size()};
  const SFile plain{schema | (Manifest::kFormatPlain << 10), Address::kPlainFile, m_plain.size()};
  const SFile order[2] = {config.zippedFirst ? zipped : plain, config.zippedFirst ? plain : zipped};
  for (size_t i = 0; i < 2; ++i) {
    const size_t entry = Address::kManifest + 8 + i * Manifest::kEntrySize;
    PutBE(m_low, entry + Manifest::kFileVersion, fileVersion, 4);
    PutBE(m_low, entry + Manifest::kFormat, order[i].format, 4);
    PutBE(m_low, entry + Manifest::kAddress, order[i].address, 8);
    PutBE(m_low, entry + Manifest::kSize, order[i].size, 8);
  }
  ResetFeatures();
}

void CSerialCameraModel::Put32(uint64_t address, uint32_t value) {
  PutBE(m_features, static_cast<size_t>(address - Address::kWidth), value, 4);
}

void CSerialCameraModel::ResetFeatures() {
  std::fill(m_features.begin(), m_features.end(), 0);
  Put32(Address::kWidth, 2048);
  Put32(Address::kHeight, 1088);
  Put32(Address::kPixelFormat, 0x01080001);
  Put32(Address::kExposureTime, FloatBits(5000.0f));
  Put32(Address::kGain, FloatBits(0.0f));
  Put32(Address::kWidthMax, 2048);
  Put32(Address::kHeightMax, 1088);
}

uint32_t CSerialCameraModel::Register32(uint64_t address) const {
  std::vector<uint8_t> data;
  if (Read(address, 4, data) != STATUS_SUCCESS) {
    return 0;
  }
  return GetU32(data.data());
}

void CSerialCameraModel::SetCurrentRateRegister(uint32_t rateBit) {
  PutBE(m_low, Address::kSbrm + Sbrm::kCurrentBaudRate, rateBit, 4);
}

uint16_t CSerialCameraModel::Read(uint64_t address, size_t length, std::vector<uint8_t>& data) const {
  data.clear();
  const auto copy = [&](const uint8_t* base, uint64_t start) {
    const uint8_t* from = base + (address - start);
    data.assign(from, from + length);
    return static_cast<uint16_t>(STATUS_SUCCESS);
  };
  if (Inside(address, length, 0, m_low.size())) {
    return copy(m_low.data(), 0);
  }
  if (Inside(address, length, Address::kWidth, m_features.size())) {
    if (address <= Address::kDeviceReset && address + length > Address::kDeviceReset) {
      return STATUS_ACCESS_DENIED;  // the reset register is write-only
    }
    return copy(m_features.data(), Address::kWidth);
  }
  if (Inside(address, length, Address::kZippedFile, m_zipped.size())) {
    return copy(reinterpret_cast<const uint8_t*>(m_zipped.data()), Address::kZippedFile);
  }
  if (Inside(address, length, Address::kPlainFile, m_plain.size())) {
    return copy(reinterpret_cast<const uint8_t*>(m_plain.data()), Address::kPlainFile);
  }
  return STATUS_INVALID_ADDRESS;
}

uint16_t CSerialCameraModel::Write(uint64_t address, const uint8_t* data, size_t length) {
  if (Inside(address, length, Boot::kUserDefinedName, Boot::kStringSize)) {
    std::memcpy(m_low.data() + address, data, length);
    return STATUS_SUCCESS;
  }
  if (Inside(address, length, 0, m_low.size())) {
    return STATUS_WRITE_PROTECT;
  }
  if (!Inside(address, length, Address::kWidth, m_features.size())) {
    // The description files can be read but not written; anything else does not exist.
    std::vector<uint8_t> ignored;
    return Read(address, length, ignored) == STATUS_SUCCESS ? static_cast<uint16_t>(STATUS_WRITE_PROTECT)
                                                            : static_cast<uint16_t>(STATUS_INVALID_ADDRESS);
  }
  if (length != 4 || (address - Address::kWidth) % 4 != 0) {
    return STATUS_BAD_ALIGNMENT;
  }
  const uint32_t value = GetU32(data);
  const bool locked = Register32(Address::kTLParamsLocked) != 0;
  switch (address) {
  case Address::kWidthMax:
  case Address::kHeightMax: return STATUS_WRITE_PROTECT;
  case Address::kWidth:
    if (locked) {
      return STATUS_ACCESS_DENIED;
    }
    if (value < 16 || value > 2048 || value % 16 != 0) {
      return STATUS_INVALID_PARAMETER;
    }
    break;
  case Address::kHeight:
    if (locked) {
      return STATUS_ACCESS_DENIED;
    }
    if (value < 1 || value > 1088) {
      return STATUS_INVALID_PARAMETER;
    }
    break;
  case Address::kPixelFormat:
    if (locked) {
      return STATUS_ACCESS_DENIED;
    }
    if (value != 0x01080001 && value != 0x01100003 && value != 0x01100005) {
      return STATUS_INVALID_PARAMETER;
    }
    break;
  case Address::kTestPatternSelector:
  case Address::kTLParamsLocked:
    if (value > 1) {
      return STATUS_INVALID_PARAMETER;
    }
    break;
  case Address::kTestPattern:
  case Address::kTestPattern + 4:
    if (value > 2) {
      return STATUS_INVALID_PARAMETER;
    }
    break;
  case Address::kDeviceReset:
    if (value == 1) {
      ResetFeatures();
      PutString(m_low, Boot::kUserDefinedName, m_config.userName);
    }
    return STATUS_SUCCESS;
  default: break;
  }
  Put32(address, value);
  return STATUS_SUCCESS;
}

}  // namespace TalvirSerialCam
