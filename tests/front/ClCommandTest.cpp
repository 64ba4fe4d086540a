// "talvir-cli cl" against the real library, the simulated serial camera on a pseudo-terminal and the simulated frame
// grabber's serial channels.
#include "ClCommand.h"

#include "SerialCameraServer.h"

#include "support/ScopedEnvironmentVariable.h"
#include "support/Skips.h"
#include "support/TestSystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <sstream>

namespace TalvirCli {
namespace {

using TalvirSerialCam::CSerialCameraServer;
using TalvirSerialCam::SCameraConfig;
using ::testing::HasSubstr;

constexpr uint64_t kWidthRegister = 0x10000;

struct SRun {
  int code = 0;
  std::string out;
  std::string err;
};

class ClCommandTest : public ::testing::Test {
protected:
  // One camera for the whole suite: the library reads the port list once per process.
  static void SetUpTestSuite() {
    if (!TALVIR::Testing::kHasPseudoTerminals) {
      return;
    }
    s_server = std::make_unique<CSerialCameraServer>();
    std::string error;
    ASSERT_TRUE(s_server->Start(error)) << error;
    s_ports = std::make_unique<TALVIR::Testing::CScopedEnvironmentVariable>("TALVIR_SERIAL_PORTS",
                                                                            s_server->PortPath());
  }
  static void TearDownTestSuite() {
    s_ports.reset();
    s_server.reset();
  }
  // The port of the simulated serial camera; where there is none, a name that no port has.
  static std::string Port() { return "COM_Port#" + (s_server ? s_server->PortPath() : std::string("no-camera-port")); }
  static SRun Run(const std::vector<std::string>& args) {
    std::ostringstream out;
    std::ostringstream err;
    SRun run;
    run.code = RunCl(args, out, err);
    run.out = out.str();
    run.err = err.str();
    return run;
  }

  static std::unique_ptr<CSerialCameraServer> s_server;
  static std::unique_ptr<TALVIR::Testing::CScopedEnvironmentVariable> s_ports;
};

std::unique_ptr<CSerialCameraServer> ClCommandTest::s_server;
std::unique_ptr<TALVIR::Testing::CScopedEnvironmentVariable> ClCommandTest::s_ports;

TEST_F(ClCommandTest, UsageErrorsSayWhatIsWrong) {
  SRun run = Run({});
  EXPECT_EQ(run.code, 2);
  EXPECT_THAT(run.err, HasSubstr("usage: talvir-cli cl"));
  run = Run({"frobnicate"});
  EXPECT_EQ(run.code, 2);
  EXPECT_THAT(run.err, HasSubstr("unknown command 'frobnicate'"));
  run = Run({"get", "Width"});
  EXPECT_EQ(run.code, 2);
  EXPECT_THAT(run.err, HasSubstr("--port is required"));
  run = Run({"get", "--port", Port()});
  EXPECT_EQ(run.code, 2);
  EXPECT_THAT(run.err, HasSubstr("name at least one feature"));
  run = Run({"get", "--port"});
  EXPECT_EQ(run.code, 2);
  EXPECT_THAT(run.err, HasSubstr("--port needs a value"));
  run = Run({"set", "--port", Port(), "Width"});
  EXPECT_EQ(run.code, 2);
  EXPECT_THAT(run.err, HasSubstr("'Width' is not NAME=VALUE"));
  run = Run({"ports", "extra"});
  EXPECT_EQ(run.code, 2);
  run = Run({"--help"});
  EXPECT_EQ(run.code, 0);
  EXPECT_THAT(run.out, HasSubstr("usage: talvir-cli cl"));
}

TEST_F(ClCommandTest, PortsListThePcPortsAndTheGrabberChannels) {
  TALVIR_SKIP_WITHOUT_PSEUDO_TERMINALS();
  const SRun run = Run({"ports"});
  EXPECT_EQ(run.code, 0);
  EXPECT_THAT(run.out, HasSubstr(Port() + "\n"));
  EXPECT_THAT(run.out, HasSubstr("KORIX#CL_GRABBER#SERIAL0.0\n"));
  EXPECT_THAT(run.out, HasSubstr("KORIX#CL_GRABBER#SERIAL0.1\n"));
}

TEST_F(ClCommandTest, ProtocolsListOurDriver) {
  const SRun run = Run({"protocols"});
  EXPECT_EQ(run.code, 0);
  EXPECT_THAT(run.out, HasSubstr("#" + TALVIR::Testing::ModuleFileName("TavCLProtocolGenCP") + "#KORIX#GENCP02\n"));
}

TEST_F(ClCommandTest, ProbeFindsTheCameraOnThePseudoTerminal) {
  TALVIR_SKIP_WITHOUT_PSEUDO_TERMINALS();
  const SRun run = Run({"probe"});
  EXPECT_EQ(run.code, 0);
  const SCameraConfig camera;
  EXPECT_THAT(run.out, HasSubstr("port " + Port() + ": " + camera.manufacturer + " " + camera.model));
  EXPECT_THAT(run.out, HasSubstr("serial " + camera.serialNumber + "\n"));
  EXPECT_THAT(run.out, HasSubstr("\n1 camera\n"));
}

TEST_F(ClCommandTest, GetReadsFeaturesOverTheSerialLink) {
  TALVIR_SKIP_WITHOUT_PSEUDO_TERMINALS();
  const SRun run = Run({"get", "--port", Port(), "Width", "DeviceModelName"});
  EXPECT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(run.out, "Width = " + std::to_string(s_server->Register32(kWidthRegister)) +
                         "\nDeviceModelName = " + SCameraConfig().model + "\n");
}

TEST_F(ClCommandTest, SetWritesAndReadsBack) {
  TALVIR_SKIP_WITHOUT_PSEUDO_TERMINALS();
  const SRun run = Run({"set", "--port", Port(), "Width=800", "PixelFormat=Mono12"});
  EXPECT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(run.out, "Width = 800\nPixelFormat = Mono12\n");
  EXPECT_EQ(s_server->Register32(kWidthRegister), 800u);
  EXPECT_EQ(Run({"get", "--port", Port(), "Width"}).out, "Width = 800\n");
}

TEST_F(ClCommandTest, AMissingFeatureOrABadValueFailsButTheOthersAreDone) {
  TALVIR_SKIP_WITHOUT_PSEUDO_TERMINALS();
  SRun run = Run({"get", "--port", Port(), "NoSuchFeature", "Width"});
  EXPECT_EQ(run.code, 1);
  EXPECT_THAT(run.err, HasSubstr("no feature 'NoSuchFeature'"));
  EXPECT_THAT(run.out, HasSubstr("Width = "));
  run = Run({"set", "--port", Port(), "PixelFormat=NotAFormat", "Width=640"});
  EXPECT_EQ(run.code, 1);
  EXPECT_THAT(run.err, HasSubstr("PixelFormat: "));
  EXPECT_EQ(run.out, "Width = 640\n");
}

TEST_F(ClCommandTest, APortWithoutCameraIsAFailure) {
  const std::string port = TALVIR::Testing::kWindows ? "COM_Port#COM250" : "COM_Port#/dev/no-such-port";
  const SRun run = Run({"get", "--port", port, "Width"});
  EXPECT_EQ(run.code, 1);
  EXPECT_THAT(run.err, HasSubstr(port + ": "));
  EXPECT_EQ(run.out, "");
}

TEST_F(ClCommandTest, TheGrabbersChannelReachesTheCameraBehindIt) {
  const SRun run = Run({"get", "--port", "KORIX#CL_GRABBER#SERIAL0.1", "DeviceSerialNumber"});
  EXPECT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(run.out, "DeviceSerialNumber = CLG00002\n");
}

}  // namespace
}  // namespace TalvirCli
