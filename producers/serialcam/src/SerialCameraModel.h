#pragma once
// The register space of the simulated serial camera: GenCP bootstrap registers, the serial technology register map,
// the manifest with a zipped and a plain description file, and the camera's feature registers. Pure data: the
// server (CSerialCameraServer) owns the link, the timing and the faults.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace TalvirSerialCam {

struct SCameraConfig {
  std::string manufacturer = "Korix";
  std::string family = "KXCL";
  std::string model = "KX-CL2048";
  std::string version = "1.4.2";
  std::string serialNumber = "CL0001";
  std::string userName;
  // Capability bits: user name, family name, serial technology map, written length, stacked commands.
  uint64_t capability = (1ull << 0) | (1ull << 8) | (1ull << 9) | (1ull << 11) | (1ull << 13);
  // Baud-rate bits the camera offers (9600 to 921600).
  uint32_t supportedRates = 0xFF;
  // Whether the manifest lists the zipped description first (else the plain one).
  bool zippedFirst = true;
  // How long a DeviceReset takes; the camera answers with pending acknowledges meanwhile.
  uint32_t slowWriteMs = 600;
  uint32_t pendingTimeoutMs = 200;
  // The description file served (empty: the built-in one).
  std::string description;
  // Serve description files of zero bytes (a camera whose description is missing).
  bool emptyDescription = false;
  // Pace the bytes at the line rate (10 bits a byte) as a real serial line would; a pseudo-terminal alone delivers
  // at once. Used by the pseudo-terminal server only.
  bool paceAtLineRate = false;
};

// Fixed addresses of the simulated camera.
namespace Address {
constexpr uint64_t kSbrm = 0x300;
constexpr uint64_t kManifest = 0x400;
constexpr uint64_t kWidth = 0x10000;
constexpr uint64_t kHeight = 0x10004;
constexpr uint64_t kPixelFormat = 0x10008;
constexpr uint64_t kExposureTime = 0x1000C;
constexpr uint64_t kGain = 0x10010;
constexpr uint64_t kTLParamsLocked = 0x10014;
constexpr uint64_t kTestPattern = 0x10018;  // two registers, one per generator
constexpr uint64_t kWidthMax = 0x10020;
constexpr uint64_t kHeightMax = 0x10024;
constexpr uint64_t kTestPatternSelector = 0x10028;
constexpr uint64_t kDeviceReset = 0x1002C;
constexpr uint64_t kFeatureEnd = 0x10030;
constexpr uint64_t kZippedFile = 0x100000;
constexpr uint64_t kPlainFile = 0x200000;
}  // namespace Address

// The built-in description file.
const std::string& BuiltInDescription();

class CSerialCameraModel {
public:
  explicit CSerialCameraModel(const SCameraConfig& config);

  // Register access; the result is a GenCP status (0 for success).
  uint16_t Read(uint64_t address, size_t length, std::vector<uint8_t>& data) const;
  uint16_t Write(uint64_t address, const uint8_t* data, size_t length);
  // Whether a write to this address takes the camera a while (DeviceReset).
  bool IsSlowWrite(uint64_t address) const { return address == Address::kDeviceReset; }

  uint32_t Register32(uint64_t address) const;
  const SCameraConfig& Config() const { return m_config; }
  const std::string& PlainDescription() const { return m_plain; }
  const std::vector<char>& ZippedDescription() const { return m_zipped; }
  // The current baud-rate bit register of the serial technology map (the server drives it).
  void SetCurrentRateRegister(uint32_t rateBit);

private:
  void ResetFeatures();
  void Put32(uint64_t address, uint32_t value);

  SCameraConfig m_config;
  std::vector<uint8_t> m_low;  // 0 .. 0x1000: bootstrap, serial technology map, manifest
  std::vector<uint8_t> m_features;
  std::string m_plain;
  std::vector<char> m_zipped;
};

}  // namespace TalvirSerialCam
