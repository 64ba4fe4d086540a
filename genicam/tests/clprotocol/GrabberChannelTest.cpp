// The serial channels of the simulated Camera Link frame grabber: each carries a camera that the CLProtocol layer
// probes, connects and drives like one on a PC port.
#include <CLProtocol/CLPort.h>
#include <CLProtocol/ProbeAnswer.h>
#include <GCBase/GCException.h>
#include <GenApi/GenApi.h>

#include <gtest/gtest.h>

#include "support/TestSystem.h"

#include <algorithm>

namespace {

std::string DriverTemplate() {
  GenICam::gcstring_vector templates;
  CLProtocol::CCLPort::GetDeviceIDTemplates(templates);
  for (const GenICam::gcstring& entry : templates) {
    if (entry.find("#" + TALVIR::Testing::ModuleFileName("TavCLProtocolGenCP") + "#KORIX#GENCP02") !=
        std::string::npos) {
      return entry;
    }
  }
  return {};
}

}  // namespace

TEST(GrabberChannel, ChannelsAreListedAsGrabberPorts) {
  GenICam::gcstring_vector ports;
  CLProtocol::CCLPort::GetPortIDs(ports);
  EXPECT_NE(std::find(ports.begin(), ports.end(), "KORIX#CL_GRABBER#SERIAL0.0"), ports.end());
  EXPECT_NE(std::find(ports.begin(), ports.end(), "KORIX#CL_GRABBER#SERIAL0.1"), ports.end());
}

TEST(GrabberChannel, EachChannelHasItsOwnCamera) {
  CLProtocol::SProbeAnswer first;
  CLProtocol::SProbeAnswer second;
  ASSERT_TRUE(CLProtocol::ParseProbeAnswer(
      CLProtocol::CCLPort::ProbeDevice("KORIX#CL_GRABBER#SERIAL0.0", DriverTemplate(), 500), first));
  ASSERT_TRUE(CLProtocol::ParseProbeAnswer(
      CLProtocol::CCLPort::ProbeDevice("KORIX#CL_GRABBER#SERIAL0.1", DriverTemplate(), 500), second));
  EXPECT_EQ(first.serialNumber, "CLG00001");
  EXPECT_EQ(second.serialNumber, "CLG00002");
  EXPECT_EQ(first.manufacturer, second.manufacturer);
}

TEST(GrabberChannel, ConnectSwitchesRateAndServesTheNodeMap) {
  CLProtocol::CCLPort port;
  port.Connect(DriverTemplate(), "KORIX#CL_GRABBER#SERIAL0.1");
  EXPECT_EQ(port.GetBaudRate(), static_cast<uint32_t>(CLProtocol::CL_BAUDRATE_921600));
  port.SetBaudRate(CLProtocol::CL_BAUDRATE_115200);
  EXPECT_EQ(port.GetBaudRate(), static_cast<uint32_t>(CLProtocol::CL_BAUDRATE_115200));
  GenApi::CNodeMapRef map;
  map._LoadXMLFromString(port.GetXML(true));
  ASSERT_TRUE(map._Connect(&port, "Device"));
  GenApi::CIntegerPtr height(map._GetNode("Height"));
  height->SetValue(600);
  EXPECT_EQ(height->GetValue(false, true), 600);
  EXPECT_EQ(std::string(GenApi::CStringPtr(map._GetNode("DeviceSerialNumber"))->GetValue()), "CLG00002");
  // The slow reset is waited for through pending acknowledges, with the timers running while the host waits.
  port.SetRegisterTimeout(250);
  GenApi::CCommandPtr(map._GetNode("DeviceReset"))->Execute();
  EXPECT_EQ(height->GetValue(false, true), 1088);
}

TEST(GrabberChannel, AChannelOpenedTwiceIsInUse) {
  CLProtocol::CCLPort first;
  first.Connect(DriverTemplate(), "KORIX#CL_GRABBER#SERIAL0.0");
  CLProtocol::CCLPort second;
  EXPECT_THROW(second.Connect(DriverTemplate(), "KORIX#CL_GRABBER#SERIAL0.0"), GenICam::RuntimeException);
}
