#pragma once
// The serial libraries and protocol drivers of the process, each loaded at most once and never unloaded.
//
// Serial libraries are the files clser*.so (clser*.dll on Windows) in each folder listed in GENICAM_CLSERIAL, then
// in the folder of this library's own file. Drivers are the *.so (*.dll) files in <root>/<platform> for each root
// listed in GENICAM_CLPROTOCOL, then in CLProtocol/<platform> beside this library's folder and in its parent folder,
// and any driver a device ID names by folder and file. <platform> is Linux64_x64 on Linux, Win64_x64 on Windows.
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "ProtocolDriver.h"
#include "SerialLibrary.h"

namespace CLProtocol {

class CModuleRegistry {
public:
  static CModuleRegistry& Instance();

  // The usable serial libraries found now, in folder order then by file name.
  std::vector<std::shared_ptr<CSerialLibrary>> SerialLibraries();
  // The usable drivers found now, in folder order then by file name.
  std::vector<std::shared_ptr<CProtocolDriver>> Drivers();
  // The driver at exactly this folder and file, loaded on first use; null when it is not a usable driver.
  std::shared_ptr<CProtocolDriver> Driver(const std::string& directory, const std::string& fileName);

  // The library and index of a port ID "<manufacturer>#<port name>"; false when no library lists it.
  bool FindPort(const std::string& portId, std::shared_ptr<CSerialLibrary>& library, uint32_t& index);
  // The port IDs of all libraries.
  std::vector<std::string> PortIds();

  static std::vector<std::string> SerialLibraryFolders();
  static std::vector<std::string> DriverFolders();

private:
  CModuleRegistry() = default;
  std::shared_ptr<CSerialLibrary> LibraryLocked(const std::string& path);

  std::mutex m_lock;
  std::vector<std::pair<std::string, std::shared_ptr<CSerialLibrary>>> m_libraries;  // null entry: not usable
  std::vector<std::pair<std::string, std::shared_ptr<CProtocolDriver>>> m_drivers;   // null entry: not usable
};

}  // namespace CLProtocol
