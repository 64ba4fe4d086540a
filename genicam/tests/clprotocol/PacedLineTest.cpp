// The serial link when the simulated camera paces its bytes at the line rate, as a real serial line does: round
// trips take at least the wire time of their bytes, and answers longer than the register time-out's worth of line
// time still arrive (a full packet needs over a second at 9600 baud).
#include "SerialLinkFixture.h"

#include "GenCPPacket.h"

#include <CLProtocol/CLSerialApi.h>

#include <chrono>
#include <vector>

namespace {

using TalvirSerialCam::SCameraConfig;

// A 9600-baud-only camera (the link stays at the probing rate), paced.
SCameraConfig SlowPacedCamera() {
  SCameraConfig config;
  config.paceAtLineRate = true;
  config.supportedRates = CLProtocol::CL_BAUDRATE_9600;
  return config;
}

double LineMs(size_t bytes, uint32_t baud) { return static_cast<double>(bytes) * 10.0 * 1000.0 / baud; }

TEST_F(SerialLinkTest, APacedRoundTripTakesAtLeastTheWireTimeOfItsBytes) {
  StartCamera(SlowPacedCamera());
  std::unique_ptr<CLProtocol::CCLPort> port = Connect();
  CLProtocol::GenCP::SPacket command;
  command.scd = CLProtocol::GenCP::ReadMemScd(TalvirSerialCam::Address::kWidth, 4);
  const size_t onLine = CLProtocol::GenCP::Encode(command).size() + CLProtocol::GenCP::kHeaderSize + 4;
  uint32_t width = 0;
  const auto start = std::chrono::steady_clock::now();
  port->Read(&width, TalvirSerialCam::Address::kWidth, sizeof width);
  const double elapsedMs = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
  EXPECT_GE(elapsedMs, LineMs(onLine, 9600));
  EXPECT_NE(width, 0u);
}

TEST_F(SerialLinkTest, AFullPacketAtNineThousandSixHundredBaudIsWaitedFor) {
  StartCamera(SlowPacedCamera());
  // The register time-out (500 ms) bounds the wait for the answer to start; the length its header announces then
  // extends the wait by the data's line time (a full packet takes about 1070 ms at 9600 baud).
  std::unique_ptr<CLProtocol::CCLPort> port = Connect(500);
  std::vector<uint8_t> bytes(CLProtocol::GenCP::kMaxScdSize);
  port->Read(bytes.data(), TalvirSerialCam::Address::kPlainFile, static_cast<int64_t>(bytes.size()));
  const std::string& description = TalvirSerialCam::BuiltInDescription();
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), description.substr(0, bytes.size()));
}

}  // namespace
