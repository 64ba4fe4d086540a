// The Camera Link entry points of the real library: the driver and port lists, the serial-link-only camera, and the
// discovery of cameras on serial ports, against the simulated serial camera on a pseudo-terminal and the simulated
// frame grabber's serial channels.
#include "LibraryUnderTest.h"

#include "SerialCameraServer.h"

#include "support/ScopedEnvironmentVariable.h"
#include "support/Skips.h"

#include <GenApi/GenApi.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <memory>

namespace TALVIR {
namespace {

using TalvirSerialCam::CSerialCameraServer;
using TalvirSerialCam::SCameraConfig;
using Testing::CLibraryUnderTest;
using ::testing::Contains;
using ::testing::EndsWith;

const std::string kDriverSuffix = "#" + Testing::ModuleFileName("TavCLProtocolGenCP") + "#KORIX#GENCP02";

class CameraLinkEntryPointsTest : public ::testing::Test {
protected:
  void SetUp() override {
    TALVIR_SKIP_WITHOUT_PSEUDO_TERMINALS();
    std::string error;
    ASSERT_TRUE(m_server.Start(error)) << error;
    // The PC's serial library lists the pseudo-terminal; the library's driver template names the driver folder
    // beside the library.
    m_ports = std::make_unique<Testing::CScopedEnvironmentVariable>("TALVIR_SERIAL_PORTS", m_server.PortPath());
    m_library.LinkFolder(std::string(TALVIR_BIN_DIR) + "/CLProtocol", "CLProtocol");
    m_library.WriteConfig("");
    m_library.Load();
  }

  std::string PortId() const { return "COM_Port#" + m_server.PortPath(); }
  std::string OurDriver() {
    for (const std::string& entry : m_library.GetCLProtocols()) {
      if (entry.size() > kDriverSuffix.size() &&
          entry.compare(entry.size() - kDriverSuffix.size(), std::string::npos, kDriverSuffix) == 0) {
        return entry;
      }
    }
    return {};
  }
  static int64_t Width(ICamera& camera) {
    GenApi::CIntegerPtr width(camera.GetRemoteXml()->GetNodeMap()->GetNode("Width"));
    return width->GetValue();
  }

  CSerialCameraServer m_server;
  std::unique_ptr<Testing::CScopedEnvironmentVariable> m_ports;
  CLibraryUnderTest m_library;
};

TEST_F(CameraLinkEntryPointsTest, TheListsNameOurDriverAndEveryPort) {
  EXPECT_THAT(m_library.GetCLProtocols(), Contains(EndsWith(kDriverSuffix)));
  const std::list<std::string> serials = m_library.GetCLSerials();
  EXPECT_THAT(serials, Contains(PortId()));
  EXPECT_THAT(serials, Contains(std::string("KORIX#CL_GRABBER#SERIAL0.0")));
  EXPECT_THAT(serials, Contains(std::string("KORIX#CL_GRABBER#SERIAL0.1")));
  // Read once: a port that appears later is not listed.
  CSerialCameraServer later;
  std::string error;
  ASSERT_TRUE(later.Start(error)) << error;
  m_ports->Set(m_server.PortPath() + ":" + later.PortPath());
  EXPECT_EQ(m_library.GetCLSerials(), serials);
}

TEST_F(CameraLinkEntryPointsTest, TheSerialOnlyCameraNeedsInitAndWorksOverTheLink) {
  ::testing::internal::CaptureStdout();
  EXPECT_EQ(m_library.CreateCameraWithCLCamOnly(), nullptr) << "before Init";
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "ICamera* CreateCameraWithCLCamOnly()\n");
  m_library.Init();
  ::testing::internal::CaptureStdout();
  ICamera* camera = m_library.CreateCameraWithCLCamOnly();
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "ICamera* CreateCameraWithCLCamOnly()\n");
  ASSERT_NE(camera, nullptr);
  EXPECT_EQ(camera->GetCameraInfo()->GetTLType(), TLType::CLSerialOnly);
  EXPECT_EQ(camera->Open(AccessMode::Control), Status::NoProducer);
  const std::string driver = OurDriver();
  ASSERT_FALSE(driver.empty());
  ASSERT_EQ(camera->OpenSerial(PortId().c_str(), driver.c_str()), 0);
  EXPECT_TRUE(camera->IsSerialOnline());
  GenApi::CIntegerPtr width(camera->GetRemoteXml()->GetNodeMap()->GetNode("Width"));
  width->SetValue(640);
  EXPECT_EQ(m_server.Register32(0x10000), 640u);
  // The grabber's channel through the same entry points.
  ICamera* behindGrabber = m_library.CreateCameraWithCLCamOnly();
  ASSERT_NE(behindGrabber, nullptr);
  EXPECT_NE(behindGrabber, camera);
  ASSERT_EQ(behindGrabber->OpenSerial("KORIX#CL_GRABBER#SERIAL0.1", driver.c_str()), 0);
  EXPECT_EQ(Width(*behindGrabber), 2048);
  behindGrabber->Release();
  // The camera still alive is released by UnInit.
}

TEST_F(CameraLinkEntryPointsTest, DiscoveryFindsTheSerialCameraAndItsRecordOpensIt) {
  m_library.Init();
  std::list<ICameraInfo*> records = m_library.DiscoveryByTLType(TLType::CLSerialOnly);
  // Only the PC's ports are probed: the grabber's channels are reached through the grabber.
  ASSERT_EQ(records.size(), 1u);
  ICameraInfo* record = records.front();
  const SCameraConfig camera;
  EXPECT_EQ(record->GetTLType(), TLType::CLSerialOnly);
  EXPECT_EQ(std::string(record->GetVendor()), camera.manufacturer);
  EXPECT_EQ(std::string(record->GetModel()), camera.model);
  EXPECT_EQ(std::string(record->GetSerialNumber()), camera.serialNumber);
  EXPECT_FALSE(std::string(record->GetVersion()).empty());
  ASSERT_NE(record->GetCustomInfo(CustomInfo::CLGrabberSerialPort), nullptr);
  EXPECT_EQ(std::string(record->GetCustomInfo(CustomInfo::CLGrabberSerialPort)), PortId());
  ASSERT_NE(record->GetCustomInfo(CustomInfo::CLProtocolDescriptor), nullptr);
  EXPECT_THAT(std::string(record->GetCustomInfo(CustomInfo::CLProtocolDescriptor)), EndsWith(kDriverSuffix));
  EXPECT_EQ(std::string(record->GetDeviceID()), record->GetCustomInfo(CustomInfo::CLProtocolDescriptor));

  ICamera* opened = m_library.CreateCamera(record);
  ASSERT_NE(opened, nullptr);
  EXPECT_NE(opened->GetCameraInfo(), record) << "the camera is made blank";
  ASSERT_EQ(opened->OpenSerial(record->GetCustomInfo(CustomInfo::CLGrabberSerialPort),
                               record->GetCustomInfo(CustomInfo::CLProtocolDescriptor)),
            0);
  EXPECT_EQ(Width(*opened), 2048);
  opened->Release();
  record->Destroy();
}

}  // namespace
}  // namespace TALVIR
