#include "DeviceTable.h"

#include <talvir/CustomInfo.h>
#include <talvir/TLType.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstdio>

namespace TalvirCli {
namespace {

constexpr size_t kColumns = 7;
using Row = std::array<std::string, kColumns>;

std::string AccessStatusText(uint32_t status) {
  switch (status) {
  case 1: return "ReadWrite";
  case 2: return "ReadOnly";
  case 3: return "NoAccess";
  case 4: return "Busy";
  case 5: return "OpenReadWrite";
  case 6: return "OpenReadOnly";
  default: return "Unknown(" + std::to_string(status) + ")";
  }
}

std::string Text(const char* text) { return text != nullptr ? text : ""; }

}  // namespace

std::string TLTypeText(uint32_t tlType) {
  using namespace TALVIR::TLType;
  switch (tlType) {
  case GEV: return "GEV";
  case U3V: return "U3V";
  case CL: return "CL";
  case CXP: return "CXP";
  case IIDC: return "IIDC";
  case UVC: return "UVC";
  case CLHS: return "CLHS";
  case Ethernet: return "Ethernet";
  case PCI: return "PCI";
  case CLSerialOnly: return "CL-serial";
  case 0: return "-";
  default: break;
  }
  char text[16];
  std::snprintf(text, sizeof text, "0x%x", tlType);
  return text;
}

void PrintDeviceTable(std::ostream& out, const std::list<TALVIR::ICameraInfo*>& records) {
  std::vector<Row> rows;
  rows.push_back({"VENDOR", "MODEL", "SERIAL", "TL", "ACCESS", "DEVICE ID", "PRODUCER"});
  for (TALVIR::ICameraInfo* record : records) {
    rows.push_back({Text(record->GetVendor()), Text(record->GetModel()), Text(record->GetSerialNumber()),
                    TLTypeText(record->GetTLType()), AccessStatusText(record->GetAccessStatus()),
                    Text(record->GetDeviceID()), Text(record->GetCustomInfo(TALVIR::CustomInfo::ProducerFile))});
  }
  std::array<size_t, kColumns> widths{};
  for (const Row& row : rows) {
    for (size_t column = 0; column < kColumns; ++column) {
      widths[column] = std::max(widths[column], row[column].size());
    }
  }
  for (const Row& row : rows) {
    std::string line;
    for (size_t column = 0; column < kColumns; ++column) {
      line += row[column];
      if (column + 1 < kColumns) {
        line += std::string(widths[column] - row[column].size() + 2, ' ');
      }
    }
    out << line << '\n';
  }
}

void PrintDeviceJson(std::ostream& out, const std::list<TALVIR::ICameraInfo*>& records) {
  nlohmann::ordered_json devices = nlohmann::ordered_json::array();
  for (TALVIR::ICameraInfo* record : records) {
    devices.push_back({{"vendor", Text(record->GetVendor())},
                       {"model", Text(record->GetModel())},
                       {"serial", Text(record->GetSerialNumber())},
                       {"tlType", TLTypeText(record->GetTLType())},
                       {"access", AccessStatusText(record->GetAccessStatus())},
                       {"deviceId", Text(record->GetDeviceID())},
                       {"producer", Text(record->GetCustomInfo(TALVIR::CustomInfo::ProducerFile))},
                       {"displayName", Text(record->GetDisplayName())},
                       {"userDefinedName", Text(record->GetUserDefinedName())},
                       {"version", Text(record->GetVersion())},
                       {"timestampFrequency", record->GetTimestampFrequency()}});
  }
  // Device texts come from producers and cameras: replace bytes that are not UTF-8 rather than fail.
  out << nlohmann::ordered_json{{"devices", devices}}.dump(2, ' ', false, nlohmann::json::error_handler_t::replace)
      << '\n';
}

}  // namespace TalvirCli
