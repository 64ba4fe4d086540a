// The GenTL port over the simulated producer's modules: node maps of the system and interface modules as the
// producer keeps them, and the camera's own description, plain or zipped, behind any letter case of the scheme.
#include "camera/CtiPort.h"

#include "gentl/Cti.h"

#include "support/TempDirectory.h"

#include <talvirsim/SimRegisters.h>

#include <GenApi/GenApi.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace TALVIR {
namespace {

class CtiPortSimTest : public ::testing::Test {
protected:
  // The default producer copied into a fresh folder with `config` beside it, loaded with ports as module records.
  std::unique_ptr<CCti> LoadSim(const std::string& config) {
    std::filesystem::copy_file(std::filesystem::path(TALVIR_BIN_DIR) / "TalvirSim.cti",
                               m_folder.Path() / "TalvirSim.cti");
    if (!config.empty()) {
      m_folder.WriteFile("TalvirSim.cti.json", config);
    }
    CCtiEnvironment environment;
    environment.directory = m_folder.Path().string() + "/";
    environment.makeModulePort = MakeCtiPort;
    auto cti = std::make_unique<CCti>("TalvirSim.cti", environment);
    if (!cti->Load()) {
      ADD_FAILURE() << "the simulated producer did not load";
      return nullptr;
    }
    return cti;
  }

  // The camera's port of the first device of the first interface; closed again by the test.
  void* OpenRemotePort(CCti& cti, const char* deviceID) {
    GenTL::DEV_HANDLE device = nullptr;
    if (cti.Api().IFOpenDevice(cti.Interface(0)->Handle(), deviceID, GenTL::DEVICE_ACCESS_CONTROL, &device) !=
        GenTL::GC_ERR_SUCCESS) {
      return nullptr;
    }
    m_device = device;
    GenTL::PORT_HANDLE port = nullptr;
    return cti.Api().DevGetPort(device, &port) == GenTL::GC_ERR_SUCCESS ? port : nullptr;
  }

  void CloseDevice(CCti& cti) {
    if (m_device != nullptr) {
      cti.Api().DevClose(m_device);
      m_device = nullptr;
    }
  }

  static std::string StringFeature(GenApi::INodeMap* map, const char* name) {
    GenApi::CStringPtr feature = map->GetNode(name);
    return feature.IsValid() ? std::string(feature->GetValue()) : std::string("<missing>");
  }

  Testing::CTempDirectory m_folder;
  void* m_device = nullptr;
};

TEST_F(CtiPortSimTest, SystemAndInterfaceModulesHaveTheirNodeMaps) {
  std::unique_ptr<CCti> cti = LoadSim("");
  ASSERT_NE(cti, nullptr);
  IXml* system = cti->SystemModule()->Xml();
  ASSERT_NE(system, nullptr);
  GenApi::INodeMap* systemMap = system->GetNodeMap();
  ASSERT_NE(systemMap, nullptr);
  EXPECT_EQ(StringFeature(systemMap, "TLVendorName"), "Talvir");
  EXPECT_EQ(system->GetXmlFileExtension(), "XML");
  GenApi::INodeMap* interfaceMap = cti->Interface(0)->Xml()->GetNodeMap();
  ASSERT_NE(interfaceMap, nullptr);
  EXPECT_EQ(StringFeature(interfaceMap, "InterfaceID"), "TalvirSim-IF0");
}

TEST_F(CtiPortSimTest, TheCamerasPlainDescriptionLoads) {
  std::unique_ptr<CCti> cti = LoadSim("");
  ASSERT_NE(cti, nullptr);
  void* handle = OpenRemotePort(*cti, "SimMono-SIM00001");
  ASSERT_NE(handle, nullptr);
  {
    CCtiPort remote(cti.get(), handle);
    GenApi::INodeMap* map = remote.GetNodeMap();
    ASSERT_NE(map, nullptr);
    EXPECT_EQ(remote.GetXmlFileExtension(), "XML");
    EXPECT_EQ(remote.GetXmlFileName(), "TalvirSimSimMono");
    EXPECT_EQ(StringFeature(map, "DeviceSerialNumber"), "SIM00001");
    GenApi::CIntegerPtr width = map->GetNode("Width");
    ASSERT_TRUE(width.IsValid());
    EXPECT_EQ(width->GetValue(), 640);
  }
  CloseDevice(*cti);
}

TEST_F(CtiPortSimTest, TheCamerasZippedDescriptionLoadsBehindAMixedCaseScheme) {
  std::unique_ptr<CCti> cti = LoadSim(R"({"interfaces": [{"devices": [
      {"id": "zipped", "serial": "Z1", "xmlZipped": true, "urlScheme": "Local:"}]}]})");
  ASSERT_NE(cti, nullptr);
  void* handle = OpenRemotePort(*cti, "zipped");
  ASSERT_NE(handle, nullptr);
  {
    CCtiPort remote(cti.get(), handle);
    GenApi::INodeMap* map = remote.GetNodeMap();
    ASSERT_NE(map, nullptr);
    EXPECT_EQ(remote.GetXmlFileExtension(), "ZIP");
    EXPECT_EQ(remote.GetXmlData().substr(0, 2), "PK");
    EXPECT_EQ(StringFeature(map, "DeviceSerialNumber"), "Z1");
  }
  CloseDevice(*cti);
}

TEST_F(CtiPortSimTest, AFailingRegisterReadReachesTheFeatureReader) {
  char config[256];
  std::snprintf(
      config, sizeof config,
      R"({"interfaces": [{"devices": [{"id": "faulty", "serial": "F1", "faults": {"readFailAddress": %llu}}]}]})",
      static_cast<unsigned long long>(TalvirSim::Remote::kDeviceSerialNumber));
  std::unique_ptr<CCti> cti = LoadSim(config);
  ASSERT_NE(cti, nullptr);
  void* handle = OpenRemotePort(*cti, "faulty");
  ASSERT_NE(handle, nullptr);
  {
    CCtiPort remote(cti.get(), handle);
    GenApi::INodeMap* map = remote.GetNodeMap();
    ASSERT_NE(map, nullptr);
    GenApi::CStringPtr serial = map->GetNode("DeviceSerialNumber");
    ASSERT_TRUE(serial.IsValid());
    try {
      serial->GetValue(false, true);
      ADD_FAILURE() << "no exception";
    } catch (const GenICam::GenericException& error) {
      EXPECT_NE(std::string(error.GetDescription()).find("Read address 0x70 failure"), std::string::npos)
          << error.GetDescription();
    }
  }
  CloseDevice(*cti);
}

}  // namespace
}  // namespace TALVIR
