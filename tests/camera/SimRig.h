#pragma once
// A camera of a simulated producer, made the way the library makes it (manager, discovery, registry), with the
// simulator's configuration chosen by the test and helpers to look at the stream's buffer accounting.
#include "support/TempDirectory.h"
#include "support/TestSystem.h"

#include "camera/Camera.h"
#include "camera/CameraRegistry.h"
#include "camera/CtiPort.h"
#include "front/CtiManager.h"
#include "gentl/CameraInfo.h"
#include "gentl/Cti.h"

#include <talvir/Talvir.h>

#include <GenApi/GenApi.h>

#include <gtest/gtest.h>

#include <list>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

namespace TALVIR::Testing {

// What the producer reports about the camera's data stream.
struct SStreamCounts {
  uint64_t announced = 0;
  uint64_t queued = 0;
  uint64_t awaitingDelivery = 0;
};

class CSimRig {
public:
  // `producer`: a simulated producer file of the build folder; `config`: the simulator's JSON configuration (empty:
  // its defaults).
  explicit CSimRig(const std::string& producer = "TalvirSim.cti", const std::string& config = "",
                   const std::string& helperName = kHelperLibraryName) {
    if (!config.empty()) {
      const auto file = m_folder.WriteFile("sim.json", config);
      SetEnvironmentValue("TALVIR_SIM_CONFIG", file.string());
    } else {
      UnsetEnvironmentValue("TALVIR_SIM_CONFIG");
    }
    m_manager = std::make_unique<CCtiManager>(std::string(TALVIR_BIN_DIR) + "/", helperName);
    m_producer = m_manager->GetOrLoadProducer(producer);
    if (m_producer == nullptr) {
      throw std::runtime_error("cannot load " + producer);
    }
    m_producer->Discover(&m_records);
  }
  ~CSimRig() {
    m_manager.reset();
    for (ICameraInfo* record : m_records) {
      record->Destroy();
    }
    UnsetEnvironmentValue("TALVIR_SIM_CONFIG");
  }
  CSimRig(const CSimRig&) = delete;
  CSimRig& operator=(const CSimRig&) = delete;

  size_t DeviceCount() const { return m_records.size(); }
  ICameraInfo* Record(size_t index) const {
    auto it = m_records.begin();
    std::advance(it, static_cast<long>(index));
    return *it;
  }
  // The registry's camera for device `index` (owned by the registry until released).
  CCamera* Camera(size_t index = 0) {
    return dynamic_cast<CCamera*>(m_manager->Registry()->CreateCamera(Record(index)));
  }
  CCameraRegistry& Registry() { return *m_manager->Registry(); }
  // Ends the library's side (as UnInit does): cameras still alive are released.
  void CloseManager() { m_manager.reset(); }
  CCti& Producer() { return *m_producer; }

  static SStreamCounts Counts(CCamera& camera) {
    SStreamCounts counts;
    CCtiPort* const stream = camera.StreamPort();
    if (stream == nullptr) {
      return counts;
    }
    const auto query = [&](int32_t command) {
      uint64_t value = 0;
      size_t size = sizeof value;
      GenTL::INFO_DATATYPE type = 0;
      stream->Producer()->Api().DSGetInfo(stream->Handle(), command, &type, &value, &size);
      return value;
    };
    counts.announced = query(GenTL::STREAM_INFO_NUM_ANNOUNCED);
    counts.queued = query(GenTL::STREAM_INFO_NUM_QUEUED);
    counts.awaitingDelivery = query(GenTL::STREAM_INFO_NUM_AWAIT_DELIVERY);
    return counts;
  }

  // The camera's own features.
  static GenApi::INodeMap& Features(ICamera& camera) {
    IXml* const xml = camera.GetRemoteXml();
    if (xml == nullptr || xml->GetNodeMap() == nullptr) {
      throw std::runtime_error("camera has no node map");
    }
    return *xml->GetNodeMap();
  }
  static void SetInteger(ICamera& camera, const char* name, int64_t value) {
    GenApi::CIntegerPtr node(Features(camera).GetNode(name));
    node->SetValue(value);
  }
  static void SetEnum(ICamera& camera, const char* name, const char* value) {
    GenApi::CEnumerationPtr node(Features(camera).GetNode(name));
    node->FromString(value);
  }
  static void SetBool(ICamera& camera, const char* name, bool value) {
    GenApi::CBooleanPtr node(Features(camera).GetNode(name));
    node->SetValue(value);
  }
  static void Execute(ICamera& camera, const char* name) {
    GenApi::CCommandPtr node(Features(camera).GetNode(name));
    node->Execute();
  }

private:
  CTempDirectory m_folder;
  std::unique_ptr<CCtiManager> m_manager;
  CCti* m_producer = nullptr;
  std::list<ICameraInfo*> m_records;
};

// Releases an image at the end of a scope.
struct SImageGuard {
  IImage* image = nullptr;
  ~SImageGuard() {
    if (image != nullptr) {
      image->Release();
    }
  }
};

}  // namespace TALVIR::Testing
