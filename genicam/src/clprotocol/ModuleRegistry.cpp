#include "ModuleRegistry.h"

#include "platform/DirectoryListing.h"
#include "platform/Environment.h"
#include "platform/ModuleNames.h"
#include "platform/SelfPath.h"

namespace CLProtocol {
namespace {

using GenICam::Platform::kPathSeparator;

// Folders from settings may end with either separator on Windows.
bool IsSeparator(char c) { return c == '/' || c == kPathSeparator; }

std::string WithoutTrailingSeparator(std::string folder) {
  while (folder.size() > 1 && IsSeparator(folder.back())) {
    folder.pop_back();
  }
  return folder;
}

}  // namespace

CModuleRegistry& CModuleRegistry::Instance() {
  // Never destroyed: modules stay loaded until the process ends, so that no serial library or driver is unloaded
  // while exit handlers (its own static objects, thread-local data, the sanitizers' leak scan) may still reach it.
  static CModuleRegistry* const registry = new CModuleRegistry();
  return *registry;
}

std::vector<std::string> CModuleRegistry::SerialLibraryFolders() {
  std::vector<std::string> folders;
  for (const std::string& entry : GenICam::Platform::EnvironmentPathList("GENICAM_CLSERIAL")) {
    folders.push_back(WithoutTrailingSeparator(entry));
  }
  const std::string own = GenICam::Platform::OwnModuleDirectory();
  if (!own.empty()) {
    folders.push_back(WithoutTrailingSeparator(own));
  }
  return folders;
}

std::vector<std::string> CModuleRegistry::DriverFolders() {
  std::vector<std::string> folders;
  for (const std::string& root : GenICam::Platform::EnvironmentPathList("GENICAM_CLPROTOCOL")) {
    folders.push_back(WithoutTrailingSeparator(root) + kPathSeparator + GenICam::Platform::CLProtocolPlatformFolder());
  }
  const std::string own = GenICam::Platform::OwnModuleDirectory();
  if (!own.empty()) {
    const std::string platform = GenICam::Platform::CLProtocolPlatformFolder();
    folders.push_back(own + "CLProtocol" + kPathSeparator + platform);
    folders.push_back(own + ".." + kPathSeparator + "CLProtocol" + kPathSeparator + platform);
  }
  return folders;
}

std::shared_ptr<CSerialLibrary> CModuleRegistry::LibraryLocked(const std::string& path) {
  for (const auto& entry : m_libraries) {
    if (entry.first == path) {
      return entry.second;
    }
  }
  auto library = std::make_shared<CSerialLibrary>(path);
  if (!library->IsUsable()) {
    library.reset();
  }
  m_libraries.emplace_back(path, library);
  return library;
}

std::vector<std::shared_ptr<CSerialLibrary>> CModuleRegistry::SerialLibraries() {
  std::vector<std::shared_ptr<CSerialLibrary>> found;
  const std::lock_guard<std::mutex> guard(m_lock);
  for (const std::string& folder : SerialLibraryFolders()) {
    for (const std::string& name :
         GenICam::Platform::ListFiles(folder, "clser", GenICam::Platform::ModuleFileSuffix())) {
      std::shared_ptr<CSerialLibrary> library = LibraryLocked(folder + kPathSeparator + name);
      bool seen = false;
      for (const auto& other : found) {
        seen = seen || other == library;
      }
      if (library && !seen) {
        found.push_back(library);
      }
    }
  }
  return found;
}

std::shared_ptr<CProtocolDriver> CModuleRegistry::Driver(const std::string& directory, const std::string& fileName) {
  const std::string folder = WithoutTrailingSeparator(directory);
  const std::string key = folder + kPathSeparator + fileName;
  const std::lock_guard<std::mutex> guard(m_lock);
  for (const auto& entry : m_drivers) {
    if (entry.first == key) {
      return entry.second;
    }
  }
  auto driver = std::make_shared<CProtocolDriver>(folder, fileName);
  if (!driver->IsUsable()) {
    driver.reset();
  }
  m_drivers.emplace_back(key, driver);
  return driver;
}

std::vector<std::shared_ptr<CProtocolDriver>> CModuleRegistry::Drivers() {
  std::vector<std::shared_ptr<CProtocolDriver>> found;
  for (const std::string& folder : DriverFolders()) {
    for (const std::string& name : GenICam::Platform::ListFiles(folder, "", GenICam::Platform::ModuleFileSuffix())) {
      if (std::shared_ptr<CProtocolDriver> driver = Driver(folder, name)) {
        found.push_back(driver);
      }
    }
  }
  return found;
}

std::vector<std::string> CModuleRegistry::PortIds() {
  std::vector<std::string> ids;
  for (const auto& library : SerialLibraries()) {
    const std::string manufacturer = library->Manufacturer();
    for (const std::string& name : library->PortNames()) {
      ids.push_back(manufacturer + "#" + name);
    }
  }
  return ids;
}

bool CModuleRegistry::FindPort(const std::string& portId, std::shared_ptr<CSerialLibrary>& library, uint32_t& index) {
  for (const auto& candidate : SerialLibraries()) {
    const std::string manufacturer = candidate->Manufacturer();
    const std::vector<std::string> names = candidate->PortNames();
    for (size_t i = 0; i < names.size(); ++i) {
      if (manufacturer + "#" + names[i] == portId) {
        library = candidate;
        index = static_cast<uint32_t>(i);
        return true;
      }
    }
  }
  return false;
}

}  // namespace CLProtocol
