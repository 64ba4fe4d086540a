#pragma once
// One discovered device.
#include <talvir/Export.h>

#include <cstdint>

namespace TALVIR {

// A device record as discovery hands it out. Records are reference-counted and owned by the producer that found
// them: every record in a discovery result carries one reference taken for the caller, which the caller gives back
// with Destroy(). Strings point into the record and stay valid while the caller holds its reference.
// The order of the operations is part of the binary interface.
class TALVIR_API ICameraInfo {
public:
  virtual uint32_t GetTLType() const = 0;        // a TLType bit (talvir/TLType.h)
  virtual uint32_t GetAccessStatus() const = 0;  // the producer's device access status
  virtual const char* GetDeviceID() const = 0;   // the producer's device ID, used to open the device
  virtual const char* GetSerialNumber() const = 0;
  virtual const char* GetVendor() const = 0;
  virtual const char* GetModel() const = 0;
  virtual const char* GetDisplayName() const = 0;
  virtual const char* GetUserDefinedName() const = 0;
  virtual const char* GetVersion() const = 0;
  virtual uint64_t GetTimestampFrequency() const = 0;
  // Transport-specific details by item number (GigE addresses, producer texts); null when the record has none.
  virtual const char* GetCustomInfo(uint32_t item) const = 0;
  // Gives back the caller's reference; the record goes away with its last reference.
  virtual void Destroy() = 0;

protected:
  // Records are never deleted through this interface.
  ~ICameraInfo() = default;
};

}  // namespace TALVIR
