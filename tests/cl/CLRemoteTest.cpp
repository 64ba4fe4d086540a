// The serial-link port of a Camera Link camera against the simulated serial camera, and a probe pass that finds it.
#include "cl/CLRemote.h"
#include "cl/CLProber.h"

#include "SerialCameraServer.h"

#include "support/ScopedEnvironmentVariable.h"
#include "support/Skips.h"

#include <CLProtocol/CLPort.h>
#include <GenApi/GenApi.h>

#include <gtest/gtest.h>

#include <memory>

namespace TALVIR {
namespace {

using TalvirSerialCam::CSerialCameraServer;
using TalvirSerialCam::SCameraConfig;

// Our driver's template as the CLProtocol layer lists it.
std::string DriverTemplate() {
  GenICam::gcstring_vector templates;
  CLProtocol::CCLPort::GetDeviceIDTemplates(templates);
  for (const GenICam::gcstring& entry : templates) {
    if (entry.find("#" + Testing::ModuleFileName("TavCLProtocolGenCP") + "#KORIX#GENCP02") != std::string::npos) {
      return entry;
    }
  }
  return {};
}

class CLRemoteTest : public ::testing::Test {
protected:
  void StartCamera(const SCameraConfig& config) {
    m_camera.reset();
    m_camera = std::make_unique<CSerialCameraServer>(config);
    std::string error;
    ASSERT_TRUE(m_camera->Start(error)) << error;
    m_ports.reset();
    m_ports = std::make_unique<Testing::CScopedEnvironmentVariable>("TALVIR_SERIAL_PORTS", m_camera->PortPath());
  }
  void SetUp() override {
    TALVIR_SKIP_WITHOUT_PSEUDO_TERMINALS();
    StartCamera(SCameraConfig());
  }
  void TearDown() override {
    m_camera.reset();
    m_ports.reset();
  }
  std::string PortId() const { return "COM_Port#" + m_camera->PortPath(); }

  std::unique_ptr<CSerialCameraServer> m_camera;
  std::unique_ptr<Testing::CScopedEnvironmentVariable> m_ports;
};

TEST_F(CLRemoteTest, ClosedRemoteIgnoresAccessAndIsNotAvailable) {
  CCLRemote remote;
  EXPECT_EQ(remote.GetAccessMode(), GenApi::NA);
  uint8_t buffer[4] = {1, 2, 3, 4};
  remote.Read(buffer, 0, 4);
  EXPECT_EQ(buffer[0], 1);
  remote.Write(buffer, 0x10000, 4);
  EXPECT_EQ(m_camera->Register32(0x10000), 2048u);
  EXPECT_EQ(remote.GetNodeMap(), nullptr);
  EXPECT_EQ(remote.GetXmlData(), "");
}

TEST_F(CLRemoteTest, NullArgumentsAndASecondOpenAreRefused) {
  CCLRemote remote;
  EXPECT_EQ(remote.Open(nullptr, "x"), -1);
  EXPECT_EQ(remote.Open("x", nullptr), -1);
  EXPECT_EQ(remote.GetAccessMode(), GenApi::NA);
  ASSERT_EQ(remote.Open(PortId().c_str(), DriverTemplate().c_str()), 0);
  EXPECT_EQ(remote.Open(PortId().c_str(), DriverTemplate().c_str()), -1);
  EXPECT_EQ(remote.GetAccessMode(), GenApi::RW);
}

TEST_F(CLRemoteTest, OpenBuildsTheCameraNodeMap) {
  CCLRemote remote;
  ASSERT_EQ(remote.Open(PortId().c_str(), DriverTemplate().c_str()), 0);
  EXPECT_EQ(remote.GetXmlFileName(), DriverTemplate());
  EXPECT_EQ(remote.GetXmlFileExtension(), "xml");
  EXPECT_EQ(remote.GetXmlData(), TalvirSerialCam::BuiltInDescription());
  GenApi::INodeMap* map = remote.GetNodeMap();
  ASSERT_NE(map, nullptr);
  GenApi::CIntegerPtr width(map->GetNode("Width"));
  width->SetValue(800);
  EXPECT_EQ(m_camera->Register32(0x10000), 800u);
  GenApi::CStringPtr model(map->GetNode("DeviceModelName"));
  EXPECT_EQ(std::string(model->GetValue()), SCameraConfig().model);
}

TEST_F(CLRemoteTest, AConnectionFailureIsMinusTwoAndLeavesNoLink) {
  CCLRemote remote;
  EXPECT_EQ(remote.Open("COM_Port#/dev/no-such-port", DriverTemplate().c_str()), -2);
  EXPECT_EQ(remote.GetAccessMode(), GenApi::NA);
  EXPECT_EQ(remote.GetXmlFileName(), DriverTemplate());
}

TEST_F(CLRemoteTest, AnEmptyDescriptionIsMinusThree) {
  SCameraConfig config;
  config.emptyDescription = true;
  StartCamera(config);
  CCLRemote remote;
  EXPECT_EQ(remote.Open(PortId().c_str(), DriverTemplate().c_str()), -3);
  EXPECT_EQ(remote.GetNodeMap(), nullptr);
  EXPECT_EQ(remote.GetXmlData(), "");
  EXPECT_EQ(remote.GetAccessMode(), GenApi::NA);
}

TEST_F(CLRemoteTest, ADescriptionThatDoesNotLoadIsMinusFour) {
  SCameraConfig config;
  config.description = "<RegisterDescription><Integer Name=\"A\"><pValue>Missing</pValue></Integer>"
                       "</RegisterDescription>";
  StartCamera(config);
  CCLRemote remote;
  EXPECT_EQ(remote.Open(PortId().c_str(), DriverTemplate().c_str()), -4);
  EXPECT_EQ(remote.GetAccessMode(), GenApi::NA);
  EXPECT_EQ(remote.GetXmlData(), config.description);
}

TEST_F(CLRemoteTest, EveryPortNodeIsServedByTheOneLink) {
  SCameraConfig config;
  config.description = R"(<RegisterDescription ModelName="M" VendorName="V" StandardNameSpace="None"
      SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0"
      SubMinorVersion="0" ProductGuid="00000000-0000-0000-0000-000000000001"
      VersionGuid="00000000-0000-0000-0000-000000000002" xmlns="http://www.genicam.org/GenApi/Version_1_1">
    <IntReg Name="A"><Address>0x10000</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
      <Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>
    <IntReg Name="B"><Address>0x10004</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Second</pPort>
      <Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>
    <Port Name="Device"/>
    <Port Name="Second"/>
  </RegisterDescription>)";
  StartCamera(config);
  CCLRemote remote;
  ASSERT_EQ(remote.Open(PortId().c_str(), DriverTemplate().c_str()), 0);
  GenApi::INodeMap* map = remote.GetNodeMap();
  ASSERT_NE(map, nullptr);
  EXPECT_EQ(GenApi::CIntegerPtr(map->GetNode("A"))->GetValue(), 2048);
  EXPECT_EQ(GenApi::CIntegerPtr(map->GetNode("B"))->GetValue(), 1088);
}

TEST_F(CLRemoteTest, AProbePassFindsTheCameraAndItsDeviceIdOpensIt) {
  std::list<CLProbeRecord> results;
  CCLProber prober(DriverTemplate(), &results, {});
  prober.ProbeAll({PortId()}, [](const std::string& port, const std::string& deviceIdTemplate, unsigned timeoutMs) {
    return std::string(CLProtocol::CCLPort::ProbeDevice(port, deviceIdTemplate, timeoutMs));
  });
  ASSERT_EQ(results.size(), 1u);
  const CLProbeRecord& record = results.front();
  EXPECT_EQ(std::string(record.portId), PortId());
  EXPECT_EQ(std::string(record.deviceId), DriverTemplate());
  EXPECT_EQ(std::string(record.manufacturer), SCameraConfig().manufacturer);
  EXPECT_EQ(std::string(record.serialNumber), SCameraConfig().serialNumber);
  CCLRemote remote;
  EXPECT_EQ(remote.Open(record.portId, record.deviceId), 0);
}

}  // namespace
}  // namespace TALVIR
