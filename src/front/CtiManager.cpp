#include "front/CtiManager.h"

#include "camera/CameraRegistry.h"
#include "camera/CtiPort.h"
#include "cl/CLCamera.h"
#include "cl/CLProtocolTemplate.h"
#include "gentl/GevCti.h"
#include "platform/DirectoryListing.h"
#include "platform/Environment.h"
#include "platform/FileStatus.h"
#include "platform/SelfPath.h"

#include <optional>

namespace TALVIR {
namespace {

constexpr const char* kGenTLPathVariable = "GENICAM_GENTL64_PATH";

// The file-name part of a path.
std::string BaseName(const std::string& path) {
  const size_t separator = path.find_last_of("/\\");
  return separator == std::string::npos ? path : path.substr(separator + 1);
}

}  // namespace

CCtiManager::CCtiManager(std::string directory, const std::string& helperName, const std::string& u3vProducerName)
    : m_directory(std::move(directory)) {
  m_loadedProducers.max_load_factor(1.0f);
  m_registry = std::make_unique<CCameraRegistry>(helperName, u3vProducerName);
  // The camera core cannot know the Camera Link area above it: it gets the factory of its cameras here.
  m_registry->SetCameraLinkFactory(&MakeCLCamera);
  std::optional<CDiscoveryConfig> config = ReadDiscoveryConfig(ConfigurationPath());
  if (config) {
    m_config = std::move(*config);
    m_configurationLoaded = true;
  }
}

CCtiManager::~CCtiManager() {
  // Cameras go first: they use the producers.
  m_registry.reset();
  m_loadedProducers.clear();
  m_failedProducers.clear();
  m_config.ctiNames.clear();
}

std::string CCtiManager::ConfigurationPath() const {
  // The name is appended with a separator of its own after a folder that already ends with one; the doubled
  // separator is harmless.
  return m_directory + Platform::kPathSeparator + kDiscoveryConfigFileName;
}

std::unique_ptr<CCti> CCtiManager::MakeProducer(const std::string& fileName) const {
  CCtiEnvironment environment;
  // Producers found in GENICAM_GENTL64_PATH folders are named by their full path.
  environment.directory = m_genTLPathProducers.count(fileName) != 0 ? std::string() : m_directory;
  environment.makeModulePort = MakeCtiPort;
  environment.clProtocolDescriptor = GetCLProtocolDeviceIDTemplate;
  environment.skipEmptyInterfaces = m_config.skipEmptyInterfaces;
  const std::string kindName = m_genTLPathProducers.count(fileName) != 0 ? BaseName(fileName) : fileName;
  if (kindName.find("GEVTL") != std::string::npos) {
    return std::make_unique<CGevCti>(fileName, std::move(environment));
  }
  return std::make_unique<CCti>(fileName, std::move(environment));
}

CCti* CCtiManager::GetOrLoadProducer(const std::string& fileName) {
  std::lock_guard<std::mutex> lock(m_mutex);
  const auto loaded = m_loadedProducers.find(fileName);
  if (loaded != m_loadedProducers.end()) {
    return loaded->second.get();
  }
  if (m_failedProducers.count(fileName) != 0) {
    return nullptr;
  }
  std::unique_ptr<CCti> producer = MakeProducer(fileName);
  if (!producer->Load()) {
    // Kept for the discovery report: the name is not tried again, so this is the only chance to learn why.
    m_failureReports[fileName] = producer->LoadReport();
    producer.reset();
    m_failedProducers.insert(fileName);
    return nullptr;
  }
  CCti* const result = producer.get();
  m_loadedProducers.emplace(fileName, std::move(producer));
  return result;
}

bool CCtiManager::HasFailed(const std::string& fileName) {
  std::lock_guard<std::mutex> lock(m_mutex);
  return m_failedProducers.count(fileName) != 0;
}

std::vector<std::string> CCtiManager::ProducerNames() {
  std::vector<std::string> names;
  if (UsesConfiguredNames()) {
    names.assign(m_config.ctiNames.begin(), m_config.ctiNames.end());
  } else {
    names = SearchProducerFiles();
  }
  if (m_configurationLoaded && m_config.searchGenTLPath) {
    for (std::string& path : SearchGenTLPathProducers(names)) {
      names.push_back(std::move(path));
    }
  }
  return names;
}

bool CCtiManager::UsesConfiguredNames() const {
  // A file that only sets switches, without naming producers, keeps the search beside the library: switching an
  // option on must not switch discovery off.
  return m_configurationLoaded && (m_config.ctiNamesGiven || !m_config.switchesGiven);
}

std::vector<std::string> CCtiManager::SearchProducerFiles() const {
  return Platform::ListFilesWithExtension(m_directory, "cti");
}

std::vector<std::string> CCtiManager::GenTLPathFolders() {
  const std::optional<std::string> value = Platform::EnvironmentVariable(kGenTLPathVariable);
  return value ? Platform::SplitPathList(*value) : std::vector<std::string>();
}

std::vector<std::string> CCtiManager::SearchGenTLPathProducers(const std::vector<std::string>& namesSoFar) {
  // The same file must not be loaded under two names: the system loader would hand out one module, whose second
  // initialisation fails and whose failed copy would then close the library for the first.
  std::set<std::string> seenFiles;
  for (const std::string& name : namesSoFar) {
    if (std::optional<std::string> canonical = Platform::CanonicalPath(m_directory + name)) {
      seenFiles.insert(*canonical);
    }
  }
  std::set<std::string> seenFolders;
  if (std::optional<std::string> own = Platform::CanonicalPath(m_directory.empty() ? "." : m_directory)) {
    seenFolders.insert(*own);
  }
  std::vector<std::string> paths;
  for (const std::string& folder : GenTLPathFolders()) {
    const std::optional<std::string> canonicalFolder = Platform::CanonicalPath(folder);
    if (!canonicalFolder || !seenFolders.insert(*canonicalFolder).second) {
      continue;
    }
    const std::string prefix = folder.back() == Platform::kPathSeparator ? folder : folder + Platform::kPathSeparator;
    for (const std::string& file : Platform::ListFilesWithExtension(folder, "cti")) {
      const std::string path = prefix + file;
      const std::optional<std::string> canonicalFile = Platform::CanonicalPath(path);
      if (canonicalFile && !seenFiles.insert(*canonicalFile).second) {
        continue;
      }
      paths.push_back(path);
    }
  }
  std::lock_guard<std::mutex> lock(m_mutex);
  m_genTLPathProducers.insert(paths.begin(), paths.end());
  return paths;
}

std::string CCtiManager::ProducerPath(const std::string& fileName) const {
  return m_genTLPathProducers.count(fileName) != 0 ? fileName : m_directory + fileName;
}

std::string CCtiManager::ProducerOrigin(const std::string& fileName) const {
  if (m_genTLPathProducers.count(fileName) != 0) {
    return kGenTLPathVariable;
  }
  if (UsesConfiguredNames()) {
    for (const std::string& configured : m_config.ctiNames) {
      if (configured == fileName) {
        return kDiscoveryConfigFileName;
      }
    }
    return "by name";
  }
  return "library folder";
}

ICameraInfo* CCtiManager::FindBySerial(const std::string& serial) {
  std::lock_guard<std::mutex> lock(m_mutex);
  for (const auto& entry : m_loadedProducers) {
    if (ICameraInfo* found = entry.second->FindBySerial(serial)) {
      return found;
    }
  }
  return nullptr;
}

void CCtiManager::RecordDiscovery(CDiscoveryRecord record) {
  record.ran = true;
  std::lock_guard<std::mutex> lock(m_recordMutex);
  m_lastDiscovery = std::move(record);
}

CDiscoveryRecord CCtiManager::LastDiscovery() const {
  std::lock_guard<std::mutex> lock(m_recordMutex);
  return m_lastDiscovery;
}

ProducerReport CCtiManager::ProducerStatus(const std::string& fileName, CCti*& producer) {
  std::lock_guard<std::mutex> lock(m_mutex);
  producer = nullptr;
  ProducerReport report;
  const auto loaded = m_loadedProducers.find(fileName);
  const auto failed = m_failureReports.find(fileName);
  if (loaded != m_loadedProducers.end()) {
    producer = loaded->second.get();
    report = producer->LoadReport();
  } else if (failed != m_failureReports.end()) {
    report = failed->second;
  }
  report.name = fileName;
  report.path = ProducerPath(fileName);
  report.origin = ProducerOrigin(fileName);
  return report;
}

}  // namespace TALVIR
