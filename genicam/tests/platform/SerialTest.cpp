#include "platform/PseudoTerminal.h"
#include "platform/SerialDevice.h"
#include "platform/SerialPortList.h"

#include <gtest/gtest.h>

namespace GenICam {
namespace Platform {
namespace {

TEST(SerialDevice, AMissingDeviceFailsAndSaysSo) {
  CSerialDevice device;
  std::string error;
#ifdef _WIN32
  const std::string missing = "COM251";
#else
  const std::string missing = "/dev/talvir-no-such-tty";
#endif
  EXPECT_FALSE(device.Open(missing, error));
  EXPECT_TRUE(device.OpenFailedForMissingDevice());
  EXPECT_FALSE(device.IsOpen());
  EXPECT_NE(error.find(missing), std::string::npos) << error;
  char byte = 0;
  EXPECT_EQ(device.Read(&byte, 1, 0), ESerialResult::Failed);
  EXPECT_EQ(device.Write(&byte, 1, 0), ESerialResult::Failed);
  EXPECT_EQ(device.BytesAvailable(), 0u);
  EXPECT_FALSE(device.SetBaudRate(9600));
}

TEST(SerialDevice, OffersTheSameRatesOnEveryPlatform) {
  for (uint32_t rate : {9600u, 19200u, 38400u, 57600u, 115200u, 230400u, 460800u, 921600u}) {
    EXPECT_TRUE(CSerialDevice::IsSupportedBaudRate(rate)) << rate;
  }
  for (uint32_t rate : {0u, 300u, 14400u, 1000000u}) {
    EXPECT_FALSE(CSerialDevice::IsSupportedBaudRate(rate)) << rate;
  }
}

TEST(SerialPortList, ListsOnlyPortsThatAreThereSortedByPath) {
  const std::vector<SSerialPortInfo> ports = ListSystemSerialPorts();
  for (size_t i = 1; i < ports.size(); ++i) {
    EXPECT_NE(ports[i - 1].path, ports[i].path);
  }
  for (const SSerialPortInfo& port : ports) {
    EXPECT_FALSE(port.path.empty());
  }
  EXPECT_FALSE(IsTerminalDevice(""));
#ifdef _WIN32
  EXPECT_FALSE(IsTerminalDevice("COM251"));
#else
  EXPECT_FALSE(IsTerminalDevice("/dev/talvir-no-such-tty"));
#endif
}

TEST(PseudoTerminal, ThePairServesAClientThroughTheSerialDevice) {
#ifdef _WIN32
  GTEST_SKIP() << "Windows has no pseudo-terminals; simulated serial devices need a virtual null-modem pair there";
#else
  CPseudoTerminal terminal;
  std::string error;
  ASSERT_TRUE(terminal.Open(error)) << error;
  EXPECT_TRUE(IsTerminalDevice(terminal.SlaveName()));
  CSerialDevice client;
  ASSERT_TRUE(client.Open(terminal.SlaveName(), error)) << error;
  ASSERT_EQ(client.Write("ping", 4, 1000), ESerialResult::Ok);
  std::string received;
  while (received.size() < 4) {
    ASSERT_EQ(terminal.ReadSome(received, 1000), ESerialResult::Ok);
  }
  EXPECT_EQ(received, "ping");
  ASSERT_TRUE(terminal.Write("pong", 4));
  char answer[4] = {};
  ASSERT_EQ(client.Read(answer, sizeof answer, 1000), ESerialResult::Ok);
  EXPECT_EQ(std::string(answer, sizeof answer), "pong");
  terminal.Close();
  EXPECT_EQ(terminal.ReadSome(received, 0), ESerialResult::Gone);
#endif
}

TEST(PseudoTerminal, OpeningFailsWithAReasonOnWindows) {
#ifndef _WIN32
  GTEST_SKIP() << "pseudo-terminals exist on Linux";
#else
  CPseudoTerminal terminal;
  std::string error;
  EXPECT_FALSE(terminal.Open(error));
  EXPECT_NE(error.find("not available on Windows"), std::string::npos) << error;
  EXPECT_TRUE(terminal.SlaveName().empty());
  std::string out;
  EXPECT_EQ(terminal.ReadSome(out, 0), ESerialResult::Gone);
  EXPECT_FALSE(terminal.Write("x", 1));
  EXPECT_EQ(terminal.ClientBaudRate(), 0u);
#endif
}

}  // namespace
}  // namespace Platform
}  // namespace GenICam
