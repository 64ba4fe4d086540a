#pragma once
// The library's device record: what a producer reports about one device, and where the device was found.
#include "gentl/Ref.h"

#include <talvir/CustomInfo.h>
#include <talvir/ICameraInfo.h>

#include <cstdint>
#include <string>
#include <unordered_map>

namespace TALVIR {

class CCti;
class IGenTLModule;

class CCameraInfo final : public ICameraInfo, public CRef {
public:
  CCameraInfo(CCti* producer, IGenTLModule* interfaceModule);

  uint32_t GetTLType() const override { return m_tlType; }
  uint32_t GetAccessStatus() const override { return m_accessStatus; }
  const char* GetDeviceID() const override { return m_deviceID.c_str(); }
  const char* GetSerialNumber() const override { return m_serialNumber.c_str(); }
  const char* GetVendor() const override { return m_vendor.c_str(); }
  const char* GetModel() const override { return m_model.c_str(); }
  const char* GetDisplayName() const override { return m_displayName.c_str(); }
  const char* GetUserDefinedName() const override { return m_userDefinedName.c_str(); }
  const char* GetVersion() const override { return m_version.c_str(); }
  uint64_t GetTimestampFrequency() const override { return m_timestampFrequency; }
  const char* GetCustomInfo(uint32_t item) const override;
  void Destroy() override { DestroyRef(); }

  CCti* Producer() const { return m_producer; }
  IGenTLModule* Interface() const { return m_interface; }

  // Filled by the producer while it enumerates; not changed once the record is handed out.
  uint32_t m_tlType = 0;
  uint32_t m_accessStatus = 0;
  std::string m_deviceID;
  // The ID the producer itself listed the device under; differs from m_deviceID where the library makes its own
  // (GigE Vision records), and opens the device with producers that know only their own IDs.
  std::string m_producerDeviceID;
  std::string m_serialNumber;
  std::string m_vendor;
  std::string m_model;
  std::string m_displayName;
  std::string m_userDefinedName;
  std::string m_version;
  uint64_t m_timestampFrequency = 0;
  std::unordered_map<uint32_t, std::string> m_customInfo;

private:
  CCti* m_producer;
  IGenTLModule* m_interface;
};

// Whether two records describe the same device as seen through the same producer: same producer, TL type, device
// ID, serial number, vendor and model; for GigE devices also the same IP address, MAC address and item 6 address.
// A record of a serial-port-only Camera Link camera never equals anything.
bool SameDevice(const CCameraInfo& record, const ICameraInfo* other);

}  // namespace TALVIR
