#include "ClCommand.h"

#include <talvir/Talvir.h>

#include <GenApi/GenApi.h>

#include <cstring>
#include <list>

namespace TalvirCli {
namespace {

constexpr const char* kOurDriverSuffix = "#KORIX#GENCP02";
constexpr const char* kOurDriverFile = "TavCLProtocolGenCP";

// Init on construction, UnInit on destruction (which also releases the cameras made meanwhile).
class CLibrarySession {
public:
  CLibrarySession() { TALVIR::Init(); }
  ~CLibrarySession() { TALVIR::UnInit(); }
  CLibrarySession(const CLibrarySession&) = delete;
  CLibrarySession& operator=(const CLibrarySession&) = delete;
};

// The record of a Camera Link camera known only by its serial port: CreateCamera makes a blank Camera Link camera
// for it, which OpenSerial then connects.
class CSerialOnlyRecord final : public TALVIR::ICameraInfo {
public:
  uint32_t GetTLType() const override { return TALVIR::TLType::CLSerialOnly; }
  uint32_t GetAccessStatus() const override { return 0; }
  const char* GetDeviceID() const override { return ""; }
  const char* GetSerialNumber() const override { return ""; }
  const char* GetVendor() const override { return ""; }
  const char* GetModel() const override { return ""; }
  const char* GetDisplayName() const override { return ""; }
  const char* GetUserDefinedName() const override { return ""; }
  const char* GetVersion() const override { return ""; }
  uint64_t GetTimestampFrequency() const override { return 0; }
  const char* GetCustomInfo(uint32_t /*item*/) const override { return nullptr; }
  void Destroy() override {}
};

// Releases a camera at the end of a scope.
struct SCameraGuard {
  TALVIR::ICamera* camera = nullptr;
  ~SCameraGuard() {
    if (camera != nullptr) {
      camera->Release();
    }
  }
};

struct SFeatureArguments {
  std::string port;
  std::string device;
  std::vector<std::string> features;
};

// "--port P", "--device D" and the rest; false with a message on a usage error.
bool ParseFeatureArguments(const std::vector<std::string>& args, SFeatureArguments& parsed, std::ostream& err) {
  for (size_t i = 1; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (arg == "--port" || arg == "--device") {
      if (i + 1 >= args.size()) {
        err << "talvir-cli cl: " << arg << " needs a value\n";
        return false;
      }
      (arg == "--port" ? parsed.port : parsed.device) = args[++i];
    } else if (arg.rfind("--", 0) == 0) {
      err << "talvir-cli cl: unknown option '" << arg << "'\n";
      return false;
    } else {
      parsed.features.push_back(arg);
    }
  }
  if (parsed.port.empty()) {
    err << "talvir-cli cl " << args[0] << ": --port is required (see 'talvir-cli cl ports')\n";
    return false;
  }
  if (parsed.features.empty()) {
    err << "talvir-cli cl " << args[0] << ": name at least one feature\n";
    return false;
  }
  return true;
}

std::string OurDriverTemplate() {
  for (const std::string& entry : TALVIR::GetCLProtocols()) {
    const size_t suffix = std::strlen(kOurDriverSuffix);
    if (entry.find(kOurDriverFile) != std::string::npos && entry.size() >= suffix &&
        entry.compare(entry.size() - suffix, suffix, kOurDriverSuffix) == 0) {
      return entry;
    }
  }
  return {};
}

const char* OpenSerialFailure(int32_t code) {
  switch (code) {
  case -2: return "the camera does not answer, or its description could not be downloaded";
  case -3: return "the camera's description file is empty";
  case -4: return "the camera's description file does not load";
  default: return "the serial link could not be opened";
  }
}

int RunPorts(std::ostream& out) {
  for (const std::string& port : TALVIR::GetCLSerials()) {
    out << port << "\n";
  }
  return 0;
}

int RunProtocols(std::ostream& out) {
  for (const std::string& protocol : TALVIR::GetCLProtocols()) {
    out << protocol << "\n";
  }
  return 0;
}

int RunProbe(std::ostream& out) {
  CLibrarySession session;
  std::list<TALVIR::ICameraInfo*> records = TALVIR::DiscoveryByTLType(TALVIR::TLType::CLSerialOnly);
  for (TALVIR::ICameraInfo* record : records) {
    const char* const port = record->GetCustomInfo(TALVIR::CustomInfo::CLGrabberSerialPort);
    out << "port " << (port != nullptr ? port : "?") << ": " << record->GetVendor() << " " << record->GetModel()
        << " version " << record->GetVersion() << " serial " << record->GetSerialNumber() << "\n"
        << "  device " << record->GetDeviceID() << "\n";
    record->Destroy();
  }
  out << records.size() << (records.size() == 1 ? " camera" : " cameras") << "\n";
  return 0;
}

// Reads (set: writes first) each feature; the value as GenApi gives it as text.
int RunFeatures(const std::vector<std::string>& args, bool write, std::ostream& out, std::ostream& err) {
  SFeatureArguments parsed;
  if (!ParseFeatureArguments(args, parsed, err)) {
    return 2;
  }
  if (write) {
    for (const std::string& feature : parsed.features) {
      if (feature.find('=') == std::string::npos || feature.front() == '=') {
        err << "talvir-cli cl set: '" << feature << "' is not NAME=VALUE\n";
        return 2;
      }
    }
  }
  CLibrarySession session;
  if (parsed.device.empty()) {
    parsed.device = OurDriverTemplate();
    if (parsed.device.empty()) {
      err << "talvir-cli cl: our protocol driver is not installed (see 'talvir-cli cl protocols'); name one with "
             "--device\n";
      return 1;
    }
  }
  CSerialOnlyRecord record;
  SCameraGuard guard{TALVIR::CreateCamera(&record)};
  if (guard.camera == nullptr) {
    err << "talvir-cli cl: the library made no Camera Link camera\n";
    return 1;
  }
  const int32_t opened = guard.camera->OpenSerial(parsed.port.c_str(), parsed.device.c_str());
  if (opened != 0) {
    err << "talvir-cli cl: " << parsed.port << ": " << OpenSerialFailure(opened) << " (" << opened << ")\n";
    return 1;
  }
  GenApi::INodeMap* const features = guard.camera->GetRemoteXml()->GetNodeMap();
  int result = 0;
  for (const std::string& feature : parsed.features) {
    const size_t equals = feature.find('=');
    const std::string name = write ? feature.substr(0, equals) : feature;
    GenApi::CValuePtr value(features->GetNode(name.c_str()));
    if (!value.IsValid()) {
      err << "talvir-cli cl: the camera has no feature '" << name << "' with a value\n";
      result = 1;
      continue;
    }
    try {
      if (write) {
        value->FromString(feature.substr(equals + 1).c_str());
      }
      out << name << " = " << value->ToString().c_str() << "\n";
    } catch (const GenICam::GenericException& error) {
      err << "talvir-cli cl: " << name << ": " << error.GetDescription() << "\n";
      result = 1;
    }
  }
  return result;
}

}  // namespace

void PrintClUsage(std::ostream& out) {
  out << "usage: talvir-cli cl ports | protocols | probe\n"
         "       talvir-cli cl get --port P [--device D] NAME...\n"
         "       talvir-cli cl set --port P [--device D] NAME=VALUE...\n"
         "  ports       the serial port IDs: PC ports (COM_Port#/dev/...) and frame-grabber channels\n"
         "  protocols   the Camera Link protocol drivers (device-ID templates)\n"
         "  probe       the cameras answering on the PC's serial ports (500 ms a port)\n"
         "  get, set    read or write a camera's features over its serial link on port P; D is the driver's device\n"
         "              ID (default: our GenCP driver)\n";
}

int RunCl(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  if (args.empty()) {
    PrintClUsage(err);
    return 2;
  }
  const std::string& command = args[0];
  if (command == "--help" || command == "-h") {
    PrintClUsage(out);
    return 0;
  }
  if ((command == "ports" || command == "protocols" || command == "probe") && args.size() > 1) {
    err << "talvir-cli cl " << command << ": takes no arguments\n";
    return 2;
  }
  if (command == "ports") {
    return RunPorts(out);
  }
  if (command == "protocols") {
    return RunProtocols(out);
  }
  if (command == "probe") {
    return RunProbe(out);
  }
  if (command == "get" || command == "set") {
    return RunFeatures(args, command == "set", out, err);
  }
  err << "talvir-cli cl: unknown command '" << command << "'\n";
  PrintClUsage(err);
  return 2;
}

}  // namespace TalvirCli
