#include "front/CtiManager.h"

#include "camera/CameraRegistry.h"
#include "camera/CtiPort.h"
#include "cl/CLProtocolTemplate.h"
#include "front/DiscoveryConfig.h"
#include "gentl/GevCti.h"
#include "platform/DirectoryListing.h"

#include <optional>

namespace TALVIR {

CCtiManager::CCtiManager(std::string directory) : m_directory(std::move(directory)) {
  m_loadedProducers.max_load_factor(1.0f);
  m_registry = std::make_unique<CCameraRegistry>();
  // The name is appended with a separator of its own after a folder that already ends with one; the doubled
  // separator is harmless.
  std::optional<std::list<std::string>> names = ReadDiscoveryConfig(m_directory + "/" + kDiscoveryConfigFileName);
  if (names) {
    m_configuredNames = std::move(*names);
    m_configurationLoaded = true;
  }
}

CCtiManager::~CCtiManager() {
  // Cameras go first: they use the producers.
  m_registry.reset();
  m_loadedProducers.clear();
  m_failedProducers.clear();
  m_configuredNames.clear();
}

std::unique_ptr<CCti> CCtiManager::MakeProducer(const std::string& fileName) const {
  CCtiEnvironment environment;
  environment.directory = m_directory;
  environment.makeModulePort = MakeCtiPort;
  environment.clProtocolDescriptor = GetCLProtocolDeviceIDTemplate;
  if (fileName.find("GEVTL") != std::string::npos) {
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

std::vector<std::string> CCtiManager::ProducerNames() const {
  if (m_configurationLoaded) {
    return std::vector<std::string>(m_configuredNames.begin(), m_configuredNames.end());
  }
  return SearchProducerFiles();
}

std::vector<std::string> CCtiManager::SearchProducerFiles() const {
  return Platform::ListFilesWithExtension(m_directory, "cti");
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

} // namespace TALVIR
