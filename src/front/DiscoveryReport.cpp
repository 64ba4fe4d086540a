#include "front/DiscoveryReport.h"

#include "front/CtiManager.h"
#include "gentl/GenTLErrorText.h"

#include <cstdio>

namespace TALVIR {
namespace {

DiscoveryNote ProducerNote(DiscoveryRule rule, int32_t errorCode, std::string text) {
  DiscoveryNote note;
  note.rule = rule;
  note.errorCode = errorCode;
  note.text = std::move(text);
  return note;
}

std::string Hex(uint64_t value) {
  char text[32];
  std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(value));
  return text;
}

// Why a producer that did not load lists nothing, in one line.
std::string NotLoadedText(const ProducerReport& producer) {
  std::string text;
  switch (producer.state) {
  case ProducerState::FileNotLoadable:
    text = "the system loader could not load " + producer.path + ": " + producer.loaderError;
    break;
  case ProducerState::FunctionMissing:
    text = "the file does not export the required GenTL function " + producer.missingFunction;
    break;
  case ProducerState::OpenFailed:
    text = "open status " + std::to_string(producer.openStatus) + ": " + producer.openStatusText;
    if (producer.errorCode != 0) {
      text += "; " + std::to_string(producer.errorCode) + " (" + GenTLErrorCodeName(producer.errorCode) + ")";
    }
    if (!producer.lastErrorText.empty()) {
      text += "; the producer says: " + producer.lastErrorText;
    }
    break;
  default: return text;
  }
  return text + ". A name that failed is not tried again until UnInit and Init.";
}

ProducerReport ReportProducer(CCtiManager& manager, const CDiscoveryRecord& record, const std::string& name,
                              bool selected) {
  CCti* producer = nullptr;
  ProducerReport report = manager.ProducerStatus(name, producer);
  report.selected = record.ran && selected;
  if (producer == nullptr) {
    if (report.state != ProducerState::NotTried) {
      report.notes.push_back(ProducerNote(DiscoveryRule::NotLoaded, report.errorCode, NotLoadedText(report)));
    }
    return report;
  }
  report.tlType = producer->ProducerTLType();
  if (report.tlType == 0) {
    report.notes.push_back(ProducerNote(DiscoveryRule::ProducerTypeUnknown, 0,
                                        "the producer's first interface reports no known transport-layer type: "
                                        "DiscoveryByTLType selects it only with a mask of every type (0x1ff)"));
  }
  if (record.ran && record.byType && !selected) {
    report.notes.push_back(ProducerNote(DiscoveryRule::NotSelectedByType, 0,
                                        "transport-layer type " + Hex(report.tlType) + " is outside the mask " +
                                            Hex(record.mask) + ": not enumerated"));
  }
  if (report.selected) {
    CEnumerationReport enumeration = producer->LastEnumeration();
    report.enumerated = enumeration.ran;
    report.enumerationSucceeded = enumeration.succeeded;
    report.devicesListed = enumeration.devicesListed;
    report.interfaces = std::move(enumeration.interfaces);
    for (DiscoveryNote& note : enumeration.notes) {
      report.notes.push_back(std::move(note));
    }
  } else {
    for (const std::string& id : producer->InterfaceIDs()) {
      InterfaceReport interfaceReport;
      interfaceReport.id = id;
      report.interfaces.push_back(interfaceReport);
    }
  }
  return report;
}

}  // namespace

DiscoveryReport BuildDiscoveryReport(CCtiManager& manager) {
  DiscoveryReport report;
  report.initialised = true;
  report.directory = manager.Directory();
  report.configurationPath = manager.ConfigurationPath();
  report.configurationRead = manager.ConfigurationLoaded();
  report.skipEmptyInterfaces = report.configurationRead && manager.Configuration().skipEmptyInterfaces;
  report.searchGenTLPath = report.configurationRead && manager.Configuration().searchGenTLPath;
  if (report.searchGenTLPath) {
    report.genTLPathFolders = CCtiManager::GenTLPathFolders();
  }
  CDiscoveryRecord record = manager.LastDiscovery();
  report.discoveryRan = record.ran;
  if (!record.ran) {
    record.request = "no discovery yet";
    for (const std::string& name : manager.ProducerNames()) {
      record.considered.emplace_back(name, false);
    }
  }
  report.request = record.request;
  for (const auto& [name, selected] : record.considered) {
    report.producers.push_back(ReportProducer(manager, record, name, selected));
  }
  return report;
}

}  // namespace TALVIR
