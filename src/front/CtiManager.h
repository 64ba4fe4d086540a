#pragma once
// The process-wide manager: which producers to use, each loaded at most once, and the camera registry.
#include "gentl/Cti.h"

#include <atomic>
#include <list>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace TALVIR {

class CCameraRegistry;
class ICameraInfo;

class CCtiManager {
public:
  // Producers and the configuration file are looked for in `directory` (ending with a separator): the library's
  // own folder in the library.
  explicit CCtiManager(std::string directory);
  ~CCtiManager();
  CCtiManager(const CCtiManager&) = delete;
  CCtiManager& operator=(const CCtiManager&) = delete;

  // The loaded producer of that file name; loads it on first request. A name that failed once is not tried again
  // while the manager lives. Names containing "GEVTL" get the GigE Vision producer class.
  CCti* GetOrLoadProducer(const std::string& fileName);

  // The names a discovery uses: the configured ones when the configuration file was read, else the producer files
  // found in the folder.
  std::vector<std::string> ProducerNames() const;

  // Producer files in the folder: regular files whose extension is exactly "cti" (any case), in listing order.
  std::vector<std::string> SearchProducerFiles() const;

  // The first device record with exactly this serial number across the loaded producers, with a reference added.
  ICameraInfo* FindBySerial(const std::string& serial);

  CCameraRegistry* Registry() const { return m_registry.get(); }
  const std::string& Directory() const { return m_directory; }
  bool ConfigurationLoaded() const { return m_configurationLoaded.load(); }
  const std::list<std::string>& ConfiguredNames() const { return m_configuredNames; }
  // Whether loading this name has failed before.
  bool HasFailed(const std::string& fileName);

private:
  std::unique_ptr<CCti> MakeProducer(const std::string& fileName) const;

  std::string m_directory;
  std::set<std::string> m_failedProducers;
  std::unordered_map<std::string, std::unique_ptr<CCti>> m_loadedProducers;
  std::mutex m_mutex;
  std::unique_ptr<CCameraRegistry> m_registry;
  std::list<std::string> m_configuredNames;
  std::atomic<bool> m_configurationLoaded{false};
};

} // namespace TALVIR
