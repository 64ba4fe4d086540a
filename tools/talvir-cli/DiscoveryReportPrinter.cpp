#include "DiscoveryReportPrinter.h"

#include "DeviceTable.h"

namespace TalvirCli {
namespace {

const char* OnOff(bool value) { return value ? "on" : "off"; }

void PrintLoadState(std::ostream& out, const TALVIR::ProducerReport& producer) {
  switch (producer.state) {
  case TALVIR::ProducerState::NotTried: out << "  not tried yet\n"; return;
  case TALVIR::ProducerState::Loaded:
    out << "  loaded, transport-layer type " << (producer.tlType == 0 ? "unknown" : TLTypeText(producer.tlType))
        << "\n";
    return;
  case TALVIR::ProducerState::FileNotLoadable:
    out << "  NOT LOADED: the system loader refused the file: " << producer.loaderError << "\n";
    return;
  case TALVIR::ProducerState::FunctionMissing:
    out << "  NOT LOADED: the required GenTL function " << producer.missingFunction << " is missing\n";
    return;
  case TALVIR::ProducerState::OpenFailed:
    out << "  NOT LOADED: open status " << producer.openStatus << ", " << producer.openStatusText << "\n";
    if (producer.errorCode != 0) {
      out << "    the call returned " << producer.errorCode << " (" << TALVIR::GenTLErrorName(producer.errorCode)
          << ")\n";
    }
    if (!producer.lastErrorText.empty()) {
      out << "    the producer says: " << producer.lastErrorText << "\n";
    }
    return;
  }
}

void PrintProducer(std::ostream& out, const TALVIR::ProducerReport& producer) {
  out << "\nProducer " << producer.name << " (" << producer.origin << ")\n";
  out << "  file: " << producer.path << "\n";
  PrintLoadState(out, producer);
  if (producer.state == TALVIR::ProducerState::Loaded) {
    if (!producer.selected) {
      out << "  not part of this discovery\n";
    } else if (producer.enumerated) {
      out << "  enumeration " << (producer.enumerationSucceeded ? "succeeded" : "FAILED") << ", "
          << producer.devicesListed << (producer.devicesListed == 1 ? " device" : " devices") << " listed\n";
    }
  }
  for (const TALVIR::InterfaceReport& interfaceReport : producer.interfaces) {
    out << "  interface " << interfaceReport.id << ": ";
    if (interfaceReport.counted) {
      out << interfaceReport.deviceCount << (interfaceReport.deviceCount == 1 ? " device" : " devices") << ", "
          << interfaceReport.devicesListed << " listed\n";
    } else {
      out << "not counted\n";
    }
  }
  for (const TALVIR::DiscoveryNote& note : producer.notes) {
    out << "  - " << DiscoveryRuleName(note.rule);
    if (!note.interfaceID.empty()) {
      out << " [interface " << note.interfaceID << "]";
    }
    if (!note.deviceID.empty()) {
      out << " [device " << note.deviceID << "]";
    }
    out << ": " << note.text << "\n";
  }
}

}  // namespace

const char* DiscoveryRuleName(TALVIR::DiscoveryRule rule) {
  switch (rule) {
  case TALVIR::DiscoveryRule::EmptyInterface: return "empty interface";
  case TALVIR::DiscoveryRule::EmptyInterfaceSkipped: return "empty interface skipped";
  case TALVIR::DiscoveryRule::InterfaceUpdateFailed: return "interface update failed";
  case TALVIR::DiscoveryRule::InterfaceCountFailed: return "interface count failed";
  case TALVIR::DiscoveryRule::DeviceIDFailed: return "device ID query failed";
  case TALVIR::DiscoveryRule::DeviceIDTooLong: return "device ID too long";
  case TALVIR::DiscoveryRule::InfoQueryFailed: return "information query failed";
  case TALVIR::DiscoveryRule::GigERecordIgnored: return "GigE record ignored";
  case TALVIR::DiscoveryRule::NotSelectedByType: return "not selected by type";
  case TALVIR::DiscoveryRule::ProducerTypeUnknown: return "producer type unknown";
  case TALVIR::DiscoveryRule::NotLoaded: return "not loaded";
  case TALVIR::DiscoveryRule::EnumerationFailed: return "enumeration failed";
  }
  return "rule";
}

void PrintDiscoveryReport(std::ostream& out, const TALVIR::DiscoveryReport& report,
                          const std::vector<std::string>& failedCalls) {
  out << "\nDiscovery report\n";
  if (!report.initialised) {
    out << "  the library is not initialised\n";
    return;
  }
  out << "  request: " << report.request << "\n";
  out << "  library folder: " << report.directory << "\n";
  out << "  configuration: " << report.configurationPath
      << (report.configurationRead ? " (read)" : " (not found or not valid: every .cti file in the library folder)")
      << "\n";
  out << "  SkipEmptyInterfaces " << OnOff(report.skipEmptyInterfaces) << ", SearchGenTLPath "
      << OnOff(report.searchGenTLPath) << "\n";
  for (const std::string& folder : report.genTLPathFolders) {
    out << "  GENICAM_GENTL64_PATH folder: " << folder << "\n";
  }
  if (report.producers.empty()) {
    out << "  no producer file was found or configured\n";
  }
  for (const TALVIR::ProducerReport& producer : report.producers) {
    PrintProducer(out, producer);
  }
  if (!failedCalls.empty()) {
    out << "\nFailed GenTL calls\n";
    for (const std::string& line : failedCalls) {
      out << "  " << line << "\n";
    }
  }
}

}  // namespace TalvirCli
