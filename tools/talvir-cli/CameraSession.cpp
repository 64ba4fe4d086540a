#include "CameraSession.h"

#include "Command.h"
#include "ProducerCheck.h"

#include <GenApi/INodeMap.h>

namespace TalvirCli {
namespace {

std::string OpenFailure(int32_t status) {
  using namespace TALVIR::Status;
  switch (status) {
  case NoProducer: return "the device record has no producer";
  case OpenDeviceFailed:
    return "the producer refused to open the device (in use by another program, no access, or gone)";
  case NoRemotePort: return "the device has no port to the camera";
  case StreamCountFailed: return "the producer cannot tell the device's data streams";
  case NoStream: return "the device has no data stream";
  case StreamIDFailed: return "the producer cannot name the data stream";
  case OpenStreamFailed: return "the producer refused to open the data stream";
  default: return "status " + std::to_string(status);
  }
}

}  // namespace

CCameraSession::CCameraSession() { TALVIR::Init(); }

CCameraSession::~CCameraSession() {
  if (m_camera != nullptr) {
    m_camera->Release();
  }
  for (TALVIR::ICameraInfo* record : m_records) {
    record->Destroy();
  }
  TALVIR::UnInit();
}

std::string CCameraSession::Describe(const SCameraOptions& options) {
  return options.serial.empty() ? "index " + std::to_string(options.index) : "serial '" + options.serial + "'";
}

TALVIR::ICameraInfo* CCameraSession::Choose(const SCameraOptions& options) {
  m_records = TALVIR::Discovery(options.producer.empty() ? nullptr : options.producer.c_str());
  if (m_records.empty()) {
    throw CCommandError("no camera found: " + CProducerCheck().ExplainNothingFound(options.producer));
  }
  if (options.serial.empty()) {
    if (options.index < 0 || static_cast<size_t>(options.index) >= m_records.size()) {
      throw CCommandError("no camera at index " + std::to_string(options.index) + ": discovery found " +
                          std::to_string(m_records.size()) + " (indexes 0 to " + std::to_string(m_records.size() - 1) +
                          ")");
    }
    auto chosen = m_records.begin();
    std::advance(chosen, options.index);
    return *chosen;
  }
  std::string found;
  for (TALVIR::ICameraInfo* record : m_records) {
    const char* serial = record->GetSerialNumber();
    if (serial != nullptr && options.serial == serial) {
      return record;
    }
    found += (found.empty() ? "" : ", ") + std::string(serial != nullptr ? serial : "?");
  }
  throw CCommandError("no camera with serial '" + options.serial + "' (found: " + found + ")");
}

TALVIR::ICamera& CCameraSession::Open(const SCameraOptions& options) {
  TALVIR::ICameraInfo* record = Choose(options);
  const std::string serial = record->GetSerialNumber() != nullptr ? record->GetSerialNumber() : "";
  m_camera = TALVIR::CreateCamera(record);
  if (m_camera == nullptr) {
    throw CCommandError("cannot use camera '" + serial + "': the library could not create a camera object for it");
  }
  const int32_t status = m_camera->Open(TALVIR::AccessMode::Control);
  if (status != TALVIR::Status::Ok) {
    throw CCommandError("cannot open camera '" + serial + "': " + OpenFailure(status));
  }
  return *m_camera;
}

GenApi::INodeMap& CCameraSession::NodeMap(const std::string& module) {
  TALVIR::IXml* xml = nullptr;
  if (m_camera != nullptr) {
    if (module == "system") {
      xml = m_camera->GetSystemXml();
    } else if (module == "interface") {
      xml = m_camera->GetInterfaceXml();
    } else if (module == "device") {
      xml = m_camera->GetDeviceXml();
    } else if (module == "remote") {
      xml = m_camera->GetRemoteXml();
    } else if (module == "stream") {
      xml = m_camera->GetStreamXml();
    }
  }
  if (xml == nullptr) {
    throw CCommandError("the " + module + " module has no features (it is not open or has no description)");
  }
  GenApi::INodeMap* map = xml->GetNodeMap();
  if (map == nullptr) {
    throw CCommandError("the description of the " + module + " module could not be loaded");
  }
  return *map;
}

}  // namespace TalvirCli
