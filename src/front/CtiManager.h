#pragma once
// The process-wide manager: which producers to use, each loaded at most once, and the camera registry.
#include "front/DiscoveryConfig.h"
#include "gentl/Cti.h"

#include <talvir/Diagnostics.h>

#include <atomic>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace TALVIR {

class CCameraRegistry;
class ICameraInfo;

// What the last discovery asked for and which producers it considered.
struct CDiscoveryRecord {
  bool ran = false;
  std::string request;
  bool byType = false;
  uint64_t mask = 0;
  // Producer names in the order considered, each with whether it took part.
  std::vector<std::pair<std::string, bool>> considered;
};

class CCtiManager {
public:
  // Producers and the configuration file are looked for in `directory` (ending with a separator): the library's
  // own folder in the library.
  // `helperName` and `u3vProducerName`: the modules the camera registry links to (tests name others).
  explicit CCtiManager(std::string directory, const std::string& helperName = "VendraLib.dll",
                       const std::string& u3vProducerName = "U3VTLTAV.cti");
  ~CCtiManager();
  CCtiManager(const CCtiManager&) = delete;
  CCtiManager& operator=(const CCtiManager&) = delete;

  // The loaded producer of that file name; loads it on first request. A name that failed once is not tried again
  // while the manager lives. Names containing "GEVTL" get the GigE Vision producer class.
  CCti* GetOrLoadProducer(const std::string& fileName);

  // The names a discovery uses: the configured ones (UsesConfiguredNames), else the producer files found in the
  // folder; with SearchGenTLPath, also the producers in the GENICAM_GENTL64_PATH folders (as full paths).
  std::vector<std::string> ProducerNames();

  // Whether the names come from "CtiNames": a readable configuration that names producers, or that sets no
  // switch either (an absent "CtiNames" then reads as one empty name).
  bool UsesConfiguredNames() const;

  // Producer files in the folder: regular files whose extension is exactly "cti" (any case), in listing order.
  std::vector<std::string> SearchProducerFiles() const;

  // The folders of GENICAM_GENTL64_PATH, in order, without empty entries.
  static std::vector<std::string> GenTLPathFolders();

  // The first device record with exactly this serial number across the loaded producers, with a reference added.
  ICameraInfo* FindBySerial(const std::string& serial);

  CCameraRegistry* Registry() const { return m_registry.get(); }
  const std::string& Directory() const { return m_directory; }
  std::string ConfigurationPath() const;
  bool ConfigurationLoaded() const { return m_configurationLoaded.load(); }
  const std::list<std::string>& ConfiguredNames() const { return m_config.ctiNames; }
  const CDiscoveryConfig& Configuration() const { return m_config; }
  // Whether loading this name has failed before.
  bool HasFailed(const std::string& fileName);

  // Diagnostics: the last discovery, and what became of one producer name. The report of a name not tried yet
  // has the state NotTried; `producer` receives the loaded producer or null.
  void RecordDiscovery(CDiscoveryRecord record);
  CDiscoveryRecord LastDiscovery() const;
  ProducerReport ProducerStatus(const std::string& fileName, CCti*& producer);

private:
  std::unique_ptr<CCti> MakeProducer(const std::string& fileName) const;
  std::vector<std::string> SearchGenTLPathProducers(const std::vector<std::string>& namesSoFar);
  // The file the name is loaded from, and where the name came from.
  std::string ProducerPath(const std::string& fileName) const;
  std::string ProducerOrigin(const std::string& fileName) const;

  std::string m_directory;
  std::set<std::string> m_failedProducers;
  std::map<std::string, ProducerReport> m_failureReports;
  std::unordered_map<std::string, std::unique_ptr<CCti>> m_loadedProducers;
  mutable std::mutex m_mutex;
  std::unique_ptr<CCameraRegistry> m_registry;
  CDiscoveryConfig m_config;
  std::atomic<bool> m_configurationLoaded{false};
  // Names found in GENICAM_GENTL64_PATH folders: full paths, loaded as they are. Guarded by m_mutex.
  std::set<std::string> m_genTLPathProducers;
  mutable std::mutex m_recordMutex;
  CDiscoveryRecord m_lastDiscovery;
};

}  // namespace TALVIR
