// A Camera Link camera's serial link against the simulated serial camera on a pseudo-terminal: opening and closing
// the link, its features, a failed link, and the watchdog on the link when the cable is pulled.
#include "cl/CLCamera.h"

#include "SerialCameraServer.h"

#include "support/ScopedEnvironmentVariable.h"
#include "support/Skips.h"

#include <CLProtocol/CLPort.h>
#include <GenApi/GenApi.h>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>

namespace TALVIR {
namespace {

using TalvirSerialCam::CSerialCameraServer;
using TalvirSerialCam::SCameraConfig;

constexpr uint64_t kWidthRegister = 0x10000;

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

class CManualClock {
public:
  std::function<int64_t()> Function() {
    return [this] { return m_now.load(); };
  }
  void Advance(int64_t ms) { m_now += ms; }

private:
  std::atomic<int64_t> m_now{5000000};
};

class CLCameraSerialTest : public ::testing::Test {
protected:
  void StartCamera(const SCameraConfig& config) {
    m_server.reset();
    m_server = std::make_unique<CSerialCameraServer>(config);
    std::string error;
    ASSERT_TRUE(m_server->Start(error)) << error;
    m_ports.reset();
    m_ports = std::make_unique<Testing::CScopedEnvironmentVariable>("TALVIR_SERIAL_PORTS", m_server->PortPath());
  }
  void SetUp() override {
    TALVIR_SKIP_WITHOUT_PSEUDO_TERMINALS();
    StartCamera(SCameraConfig());
    m_camera = new CCLCamera(nullptr, nullptr);
    m_camera->SetClockForTesting(m_clock.Function());
  }
  void TearDown() override {
    if (m_camera != nullptr) {
      m_camera->Release();
    }
    m_server.reset();
    m_ports.reset();
  }
  std::string PortId() const { return "COM_Port#" + m_server->PortPath(); }
  int32_t Connect() { return m_camera->OpenSerial(PortId().c_str(), DriverTemplate().c_str()); }
  GenApi::INodeMap& Features() {
    IXml* const xml = m_camera->GetRemoteXml();
    if (xml == nullptr || xml->GetNodeMap() == nullptr) {
      throw std::runtime_error("no serial node map");
    }
    return *xml->GetNodeMap();
  }

  std::unique_ptr<CSerialCameraServer> m_server;
  std::unique_ptr<Testing::CScopedEnvironmentVariable> m_ports;
  CCLCamera* m_camera = nullptr;
  CManualClock m_clock;
};

TEST_F(CLCameraSerialTest, TheSerialLinkGivesTheCamerasFeatures) {
  EXPECT_EQ(m_camera->GetRemoteXml(), nullptr);
  ASSERT_EQ(Connect(), 0);
  EXPECT_TRUE(m_camera->IsSerialOnline());
  GenApi::CIntegerPtr width(Features().GetNode("Width"));
  ASSERT_TRUE(width.IsValid());
  width->SetValue(1024);
  EXPECT_EQ(m_server->Register32(kWidthRegister), 1024u);
  EXPECT_EQ(width->GetValue(), 1024);
  GenApi::CFloatPtr exposure(Features().GetNode("ExposureTime"));
  ASSERT_TRUE(exposure.IsValid());
  const double wanted = exposure->GetMin() + 2 * (exposure->GetMax() - exposure->GetMin()) / 3;
  exposure->SetValue(wanted);
  EXPECT_NEAR(exposure->GetValue(), wanted, 1.0);
  // The camera's description file is what the link downloaded.
  EXPECT_EQ(m_camera->GetRemoteXml()->GetXmlData(), TalvirSerialCam::BuiltInDescription());
}

TEST_F(CLCameraSerialTest, ASecondOpenIsRefusedAndKeepsTheFirstLink) {
  ASSERT_EQ(Connect(), 0);
  IXml* const first = m_camera->GetRemoteXml();
  EXPECT_EQ(Connect(), -1);
  EXPECT_EQ(m_camera->GetRemoteXml(), first);
  GenApi::CIntegerPtr width(Features().GetNode("Width"));
  width->SetValue(800);
  EXPECT_EQ(m_server->Register32(kWidthRegister), 800u);
}

TEST_F(CLCameraSerialTest, ANullArgumentClosesTheLink) {
  EXPECT_EQ(m_camera->OpenSerial(nullptr, nullptr), -1);
  ASSERT_EQ(Connect(), 0);
  EXPECT_EQ(m_camera->OpenSerial(nullptr, DriverTemplate().c_str()), 0);
  EXPECT_EQ(m_camera->GetRemoteXml(), nullptr);
  EXPECT_FALSE(m_camera->IsSerialOnline());
  EXPECT_FALSE(m_camera->CheckOnline(nullptr)) << "the camera is marked offline";
  EXPECT_EQ(m_camera->OpenSerial(nullptr, nullptr), -1);
  // The port is free again.
  EXPECT_EQ(Connect(), 0);
}

TEST_F(CLCameraSerialTest, AFailedLinkIsNotKeptAndMarksTheCameraOffline) {
  SCameraConfig config;
  config.emptyDescription = true;
  StartCamera(config);
  m_camera->SetOnline(true);
  ASSERT_TRUE(m_camera->CheckOnline(nullptr));
  EXPECT_EQ(Connect(), -3);
  EXPECT_EQ(m_camera->GetRemoteXml(), nullptr);
  EXPECT_FALSE(m_camera->CheckOnline(nullptr));
  EXPECT_FALSE(m_camera->IsSerialOnline());
  // Nothing is held: the next try opens a new link (and fails the same way).
  EXPECT_EQ(Connect(), -3);
  EXPECT_EQ(m_camera->OpenSerial("COM_Port#/dev/no-such-port", DriverTemplate().c_str()), -2);
  EXPECT_EQ(m_camera->GetRemoteXml(), nullptr);
}

TEST_F(CLCameraSerialTest, TheWatchdogLeavesTheLinkAloneForThreeSeconds) {
  ASSERT_EQ(Connect(), 0);
  const unsigned commands = m_server->Statistics().commands;
  m_clock.Advance(2999);
  EXPECT_TRUE(m_camera->IsSerialOnline());
  EXPECT_EQ(m_server->Statistics().commands, commands);
  m_clock.Advance(1);
  EXPECT_TRUE(m_camera->IsSerialOnline());
  EXPECT_EQ(m_server->Statistics().commands, commands + 1) << "one probe read";
}

TEST_F(CLCameraSerialTest, TheWatchdogReportsThePulledCableAfterALongSilence) {
  ASSERT_EQ(Connect(), 0);
  m_clock.Advance(3000);
  ASSERT_TRUE(m_camera->IsSerialOnline());
  m_server->PullCable();
  m_clock.Advance(10000);
  EXPECT_FALSE(m_camera->IsSerialOnline());
  // Offline stays offline without asking again.
  m_clock.Advance(10000);
  EXPECT_FALSE(m_camera->IsSerialOnline());
}

TEST_F(CLCameraSerialTest, ThreeFailedProbesInShortSuccessionMarkTheLinkOffline) {
  ASSERT_EQ(Connect(), 0);
  m_server->PullCable();
  for (int probe = 1; probe <= 2; ++probe) {
    m_clock.Advance(3000);
    EXPECT_TRUE(m_camera->IsSerialOnline()) << "probe " << probe;
  }
  m_clock.Advance(3000);
  EXPECT_FALSE(m_camera->IsSerialOnline());
}

TEST_F(CLCameraSerialTest, ALinkThatIsOpenAgainIsOnlineAgain) {
  ASSERT_EQ(Connect(), 0);
  m_server->PullCable();
  m_clock.Advance(10000);
  ASSERT_FALSE(m_camera->IsSerialOnline());
  ASSERT_EQ(m_camera->OpenSerial(nullptr, nullptr), 0);
  StartCamera(SCameraConfig());
  ASSERT_EQ(Connect(), 0);
  EXPECT_TRUE(m_camera->IsSerialOnline());
}

}  // namespace
}  // namespace TALVIR
