#include "gentl/GevDeviceRecord.h"

#include "gentl/CameraInfo.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>

namespace TALVIR {
namespace {

std::string FieldText(const GevDeviceRecord& record, size_t offset, size_t length) {
  const char* const start = reinterpret_cast<const char*>(record.data() + offset);
  return std::string(start, strnlen(start, length));
}

uint32_t HostValue(const GevDeviceRecord& record, size_t offset) {
  uint32_t value = 0;
  std::memcpy(&value, record.data() + offset, sizeof value);
  return value;
}

std::string MacText(const GevDeviceRecord& record, char separator) {
  const uint8_t* mac = record.data() + GevRecord::MAC;
  char text[32];
  std::snprintf(text, sizeof text, "%02X%c%02X%c%02X%c%02X%c%02X%c%02X", mac[0], separator, mac[1], separator, mac[2],
                separator, mac[3], separator, mac[4], separator, mac[5]);
  return text;
}

}  // namespace

std::string GevDottedAddress(const GevDeviceRecord& record, size_t offset) {
  const uint8_t* bytes = record.data() + offset;
  char text[16];
  std::snprintf(text, sizeof text, "%u.%u.%u.%u", bytes[0], bytes[1], bytes[2], bytes[3]);
  return text;
}

std::string GevDeviceID(const GevDeviceRecord& record) {
  char number[16];
  std::snprintf(number, sizeof number, "%" PRIu32, HostValue(record, GevRecord::Address6));
  return FieldText(record, GevRecord::Model, 32) + "@" + MacText(record, '-') + "[" +
         FieldText(record, GevRecord::Serial, 16) + "]##" + number + "##";
}

void ApplyGevDeviceRecord(const GevDeviceRecord& gevRecord, CCameraInfo& record) {
  record.m_customInfo[CustomInfo::GevIPAddress] = GevDottedAddress(gevRecord, GevRecord::IPAddress);
  record.m_customInfo[CustomInfo::GevMACAddress] = MacText(gevRecord, ':');
  record.m_customInfo[CustomInfo::GevAddress3] = GevDottedAddress(gevRecord, GevRecord::Address3);
  record.m_customInfo[CustomInfo::GevAddress4] = GevDottedAddress(gevRecord, GevRecord::Address4);
  record.m_customInfo[CustomInfo::GevText5] = FieldText(gevRecord, GevRecord::Text5, 260);
  record.m_customInfo[CustomInfo::GevAddress6] = GevDottedAddress(gevRecord, GevRecord::Address6);
  record.m_customInfo[CustomInfo::GevAddress7] = GevDottedAddress(gevRecord, GevRecord::Address7);
  record.m_deviceID = GevDeviceID(gevRecord);
  record.m_vendor = FieldText(gevRecord, GevRecord::Vendor, 32);
  record.m_model = FieldText(gevRecord, GevRecord::Model, 32);
  record.m_version = FieldText(gevRecord, GevRecord::Version, 32);
  record.m_serialNumber = FieldText(gevRecord, GevRecord::Serial, 16);
  record.m_userDefinedName = FieldText(gevRecord, GevRecord::UserName, 16);
  record.m_accessStatus = HostValue(gevRecord, GevRecord::AccessStatus);
}

}  // namespace TALVIR
