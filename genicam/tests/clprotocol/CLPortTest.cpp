// The serial link end to end: the PC's serial library on a pseudo-terminal, our GenCP driver, the simulated camera.
#include "SerialLinkFixture.h"

#include <CLProtocol/ProbeAnswer.h>
#include <GCBase/GCException.h>
#include <GenApi/GenApi.h>

#include <algorithm>

#include "GenCPBootstrap.h"
#include "support/TestSystem.h"

using CLProtocol::CCLPort;
using namespace TalvirSerialCam;

TEST_F(SerialLinkTest, ListsThePseudoTerminalAndOurDriver) {
  GenICam::gcstring_vector ports;
  CCLPort::GetPortIDs(ports);
  EXPECT_NE(std::find(ports.begin(), ports.end(), PortId()), ports.end());
  const std::string driver = DriverTemplate();
  ASSERT_FALSE(driver.empty());
  const std::string ourDriver = std::string("/CLProtocol/") + TALVIR::Testing::CLProtocolPlatformFolder() + "#" +
                                TALVIR::Testing::ModuleFileName("TavCLProtocolGenCP") + "#KORIX#GENCP02";
  EXPECT_NE(driver.find(ourDriver), std::string::npos) << driver;
}

TEST_F(SerialLinkTest, ProbeAnswersWithTheCameraIdentity) {
  const std::string answer = CCLPort::ProbeDevice(PortId(), DriverTemplate(), 500);
  CLProtocol::SProbeAnswer parsed;
  ASSERT_TRUE(CLProtocol::ParseProbeAnswer(answer, parsed)) << answer;
  const SCameraConfig defaults;
  EXPECT_EQ(parsed.manufacturer, defaults.manufacturer);
  EXPECT_EQ(parsed.family, defaults.family);
  EXPECT_EQ(parsed.model, defaults.model);
  EXPECT_EQ(parsed.version, defaults.version);
  EXPECT_EQ(parsed.serialNumber, defaults.serialNumber);
  EXPECT_FALSE(parsed.hasExtra);
  const std::string suffix = std::string("/CLProtocol/") + TALVIR::Testing::CLProtocolPlatformFolder() + "/" +
                             TALVIR::Testing::ModuleFileName("TavCLProtocolGenCP");
  ASSERT_GT(parsed.driverPath.size(), suffix.size());
  EXPECT_EQ(parsed.driverPath.substr(parsed.driverPath.size() - suffix.size()), suffix);
  // The camera offers stacked commands: the identity strings come in one of them, at 9600 baud.
  EXPECT_GE(m_camera->Statistics().stackedCommands, 1u);
  EXPECT_EQ(m_camera->Statistics().rateBit, static_cast<uint32_t>(CLProtocol::CL_BAUDRATE_9600));
}

TEST_F(SerialLinkTest, ProbeWithoutStackedCommandsReadsOneRegisterAtATimeAndReportsTheUserName) {
  SCameraConfig config;
  config.capability &= ~CLProtocol::GenCP::Capability::kStackedCommands;
  config.userName = "left camera";
  StartCamera(config);
  const std::string answer = CCLPort::ProbeDevice(PortId(), DriverTemplate(), 500);
  CLProtocol::SProbeAnswer parsed;
  ASSERT_TRUE(CLProtocol::ParseProbeAnswer(answer, parsed)) << answer;
  EXPECT_EQ(parsed.model, config.model);
  EXPECT_TRUE(parsed.hasExtra);
  EXPECT_EQ(parsed.extra, "left camera");
  EXPECT_EQ(m_camera->Statistics().stackedCommands, 0u);
}

TEST_F(SerialLinkTest, ProbeRefusesAnotherDriversTemplate) {
  const std::string driver = DriverTemplate();
  const std::string other = driver.substr(0, driver.size() - std::string("KORIX#GENCP02").size()) + "OTHER#X";
  try {
    CCLPort::ProbeDevice(PortId(), other, 500);
    FAIL() << "probe accepted a foreign template";
  } catch (const GenICam::GenericException& error) {
    EXPECT_NE(std::string(error.GetDescription()).find("CL_ERR_INVALID_DEVICEID"), std::string::npos)
        << error.GetDescription();
  }
}

TEST_F(SerialLinkTest, ProbeOfAPortWithoutCameraCostsOneTimeout) {
  m_camera->SetFault(EFault::NoAnswer);
  EXPECT_THROW(CCLPort::ProbeDevice(PortId(), DriverTemplate(), 50), GenICam::TimeoutException);
  // The first probe command is not resent, so a silent port holds discovery up for one time-out only.
  ASSERT_TRUE(m_camera->WaitForCommands(1, 5000));
  EXPECT_EQ(m_camera->Statistics().commands, 1u);
  EXPECT_EQ(m_camera->Statistics().resends, 0u);
}

TEST_F(SerialLinkTest, UnknownPortAndDriverAreClearErrors) {
  EXPECT_THROW(CCLPort::ProbeDevice("COM_Port#/dev/no-such-port", DriverTemplate(), 50),
               GenICam::InvalidArgumentException);
  EXPECT_THROW(CCLPort::ProbeDevice(PortId(), "/nowhere#libNone.so#KORIX#GENCP02", 50), GenICam::RuntimeException);
  EXPECT_THROW(CCLPort::ProbeDevice(PortId(), "no-separators", 50), GenICam::InvalidArgumentException);
}

TEST_F(SerialLinkTest, ConnectDownloadsTheDescriptionZippedAndPlain) {
  std::unique_ptr<CCLPort> port = Connect();
  EXPECT_EQ(port->GetAccessMode(), GenApi::RW);
  EXPECT_EQ(std::string(port->GetXML(true)), BuiltInDescription());
  const std::string stored = port->GetXML(false);
  ASSERT_GE(stored.size(), 4u);
  EXPECT_EQ(stored.substr(0, 4), std::string("PK\x03\x04", 4));

  SCameraConfig plainFirst;
  plainFirst.zippedFirst = false;
  port.reset();
  StartCamera(plainFirst);
  port = Connect();
  EXPECT_EQ(std::string(port->GetXML(false)), BuiltInDescription());
}

TEST_F(SerialLinkTest, ConnectSwitchesToTheFastestSharedRate) {
  SCameraConfig config;
  config.supportedRates = CLProtocol::CL_BAUDRATE_9600 | CLProtocol::CL_BAUDRATE_57600 | CLProtocol::CL_BAUDRATE_115200;
  StartCamera(config);
  std::unique_ptr<CCLPort> port = Connect();
  EXPECT_EQ(port->GetBaudRate(), static_cast<uint32_t>(CLProtocol::CL_BAUDRATE_115200));
  EXPECT_EQ(m_camera->Statistics().rateBit, static_cast<uint32_t>(CLProtocol::CL_BAUDRATE_115200));
  EXPECT_EQ(port->GetSupportedBaudRates(), config.supportedRates);
  // Register access works at the new rate.
  uint8_t version[4] = {};
  port->Read(version, CLProtocol::GenCP::Bootstrap::kGenCPVersion, 4);
  EXPECT_EQ(version[1], 1);
  EXPECT_EQ(m_camera->Statistics().garbled, 0u);
}

TEST_F(SerialLinkTest, SwitchesTo115200AndBack) {
  std::unique_ptr<CCLPort> port = Connect();
  port->SetBaudRate(CLProtocol::CL_BAUDRATE_115200);
  EXPECT_EQ(m_camera->Statistics().rateBit, static_cast<uint32_t>(CLProtocol::CL_BAUDRATE_115200));
  EXPECT_EQ(port->GetBaudRate(), static_cast<uint32_t>(CLProtocol::CL_BAUDRATE_115200));
  EXPECT_EQ(m_camera->Register32(Address::kSbrm + 4), static_cast<uint32_t>(CLProtocol::CL_BAUDRATE_115200));
  port->SetBaudRate(CLProtocol::CL_BAUDRATE_9600);
  EXPECT_EQ(m_camera->Statistics().rateBit, static_cast<uint32_t>(CLProtocol::CL_BAUDRATE_9600));
}

TEST_F(SerialLinkTest, AnUnconfirmedSwitchFallsBackAndTheLinkKeepsWorking) {
  SCameraConfig config;
  config.supportedRates = CLProtocol::CL_BAUDRATE_9600 | CLProtocol::CL_BAUDRATE_115200;
  StartCamera(config);
  std::unique_ptr<CCLPort> port = Connect();
  port->SetBaudRate(CLProtocol::CL_BAUDRATE_9600);
  m_camera->SetFault(EFault::IgnoreBaudConfirm, 1);
  try {
    port->SetBaudRate(CLProtocol::CL_BAUDRATE_115200);
    FAIL() << "the unconfirmed switch was reported as done";
  } catch (const GenICam::GenericException& error) {
    EXPECT_NE(std::string(error.GetDescription()).find("fell back"), std::string::npos) << error.GetDescription();
  }
  EXPECT_EQ(port->GetBaudRate(), static_cast<uint32_t>(CLProtocol::CL_BAUDRATE_9600));
  EXPECT_EQ(m_camera->Statistics().rateBit, static_cast<uint32_t>(CLProtocol::CL_BAUDRATE_9600));
  uint8_t rate[4] = {};
  port->Read(rate, Address::kSbrm + 4, 4);
  EXPECT_EQ(rate[3], CLProtocol::CL_BAUDRATE_9600);
}

TEST_F(SerialLinkTest, FeaturesReadAndWriteThroughTheNodeMap) {
  std::unique_ptr<CCLPort> port = Connect();
  GenApi::CNodeMapRef map;
  map._LoadXMLFromString(port->GetXML(true));
  ASSERT_TRUE(map._Connect(port.get(), "Device"));

  GenApi::CStringPtr vendor(map._GetNode("DeviceVendorName"));
  EXPECT_EQ(std::string(vendor->GetValue()), SCameraConfig().manufacturer);
  GenApi::CStringPtr userId(map._GetNode("DeviceUserID"));
  userId->SetValue("bench 3");
  EXPECT_EQ(std::string(userId->GetValue(false, true)), "bench 3");

  GenApi::CIntegerPtr width(map._GetNode("Width"));
  width->SetValue(1024);
  EXPECT_EQ(m_camera->Register32(Address::kWidth), 1024u);
  EXPECT_EQ(width->GetValue(false, true), 1024);
  GenApi::CIntegerPtr height(map._GetNode("Height"));
  height->SetValue(480);
  EXPECT_EQ(m_camera->Register32(Address::kHeight), 480u);

  GenApi::CEnumerationPtr format(map._GetNode("PixelFormat"));
  *format = "Mono12";
  EXPECT_EQ(m_camera->Register32(Address::kPixelFormat), 0x01100005u);

  GenApi::CFloatPtr exposure(map._GetNode("ExposureTime"));
  exposure->SetValue(1234.5);
  EXPECT_DOUBLE_EQ(exposure->GetValue(false, true), 1234.5);
  GenApi::CFloatPtr gain(map._GetNode("Gain"));
  gain->SetValue(6.0);
  EXPECT_DOUBLE_EQ(gain->GetValue(false, true), 6.0);

  GenApi::CEnumerationPtr selector(map._GetNode("TestPatternGeneratorSelector"));
  GenApi::CEnumerationPtr pattern(map._GetNode("TestPattern"));
  *selector = "FPGA";
  *pattern = "GreyVerticalRamp";
  EXPECT_EQ(m_camera->Register32(Address::kTestPattern + 4), 2u);
  EXPECT_EQ(m_camera->Register32(Address::kTestPattern), 0u);

  GenApi::CIntegerPtr locked(map._GetNode("TLParamsLocked"));
  locked->SetValue(1);
  EXPECT_FALSE(GenApi::IsWritable(width));
  locked->SetValue(0);
  EXPECT_TRUE(GenApi::IsWritable(width));
}

TEST_F(SerialLinkTest, SlowDeviceResetIsWaitedForThroughPendingAcknowledges) {
  std::unique_ptr<CCLPort> port = Connect(250);
  GenApi::CNodeMapRef map;
  map._LoadXMLFromString(port->GetXML(true));
  ASSERT_TRUE(map._Connect(port.get(), "Device"));
  GenApi::CIntegerPtr width(map._GetNode("Width"));
  width->SetValue(512);
  GenApi::CCommandPtr(map._GetNode("DeviceReset"))->Execute();
  EXPECT_GE(m_camera->Statistics().pendingAcks, 2u);
  EXPECT_EQ(m_camera->Register32(Address::kWidth), 2048u);
  EXPECT_EQ(width->GetValue(false, true), 2048);
}

TEST_F(SerialLinkTest, DeviceStatusesBecomeClearErrors) {
  std::unique_ptr<CCLPort> port = Connect();
  const uint8_t value[4] = {0, 0, 0, 1};
  try {
    port->Write(value, CLProtocol::GenCP::Bootstrap::kGenCPVersion, 4);
    FAIL() << "a write to a read-only register succeeded";
  } catch (const GenICam::RuntimeException& error) {
    EXPECT_NE(std::string(error.GetDescription()).find("WRITE_PROTECT"), std::string::npos) << error.GetDescription();
  }
  uint8_t buffer[4];
  try {
    port->Read(buffer, 0x5000000, 4);
    FAIL() << "a read of a missing register succeeded";
  } catch (const GenICam::RuntimeException& error) {
    EXPECT_NE(std::string(error.GetDescription()).find("INVALID_ADDRESS"), std::string::npos) << error.GetDescription();
  }
  const uint8_t badWidth[4] = {0, 0, 0, 17};
  EXPECT_THROW(port->Write(badWidth, Address::kWidth, 4), GenICam::RuntimeException);
  EXPECT_EQ(m_camera->Register32(Address::kWidth), 2048u);
}

TEST_F(SerialLinkTest, LongReadsSpanSeveralPackets) {
  std::unique_ptr<CCLPort> port = Connect();
  const std::string& plain = BuiltInDescription();
  ASSERT_GT(plain.size(), 3000u);
  std::string buffer(3000, '\0');
  port->Read(&buffer[0], Address::kPlainFile, 3000);
  EXPECT_EQ(buffer, plain.substr(0, 3000));
}

TEST_F(SerialLinkTest, DisconnectedPortIsNotAvailable) {
  std::unique_ptr<CCLPort> port = Connect();
  EXPECT_TRUE(port->IsConnected());
  EXPECT_THROW(port->Connect(DriverTemplate(), PortId()), GenICam::LogicalErrorException);
  port->Disconnect();
  EXPECT_EQ(port->GetAccessMode(), GenApi::NA);
  uint8_t buffer[4];
  EXPECT_THROW(port->Read(buffer, 0, 4), GenICam::AccessException);
  // The port is free again for the next connection.
  port->Connect(DriverTemplate(), PortId());
  EXPECT_TRUE(port->IsConnected());
}

TEST_F(SerialLinkTest, APortOpenedTwiceIsInUse) {
  std::unique_ptr<CCLPort> first = Connect();
  CCLPort second;
  try {
    second.Connect(DriverTemplate(), PortId());
    FAIL() << "the port was opened twice";
  } catch (const GenICam::RuntimeException& error) {
    EXPECT_NE(std::string(error.GetDescription()).find("PORT_IN_USE"), std::string::npos) << error.GetDescription();
  }
}
