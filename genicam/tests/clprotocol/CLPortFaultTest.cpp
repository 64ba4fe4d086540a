// Faults of the serial link: each gives a clear error within a bounded time, and the link recovers afterwards.
#include "SerialLinkFixture.h"

#include <GCBase/GCException.h>

#include <chrono>
#include <future>

#include "GenCPBootstrap.h"

using CLProtocol::CCLPort;
using namespace TalvirSerialCam;

namespace {

constexpr uint32_t kShortTimeoutMs = 80;
// Four attempts of the short time-out, with room for a loaded machine.
constexpr auto kNoHang = std::chrono::seconds(5);

// Reads the GenCP version register and returns the error text ("" when the read succeeded).
std::string ReadVersion(CCLPort& port) {
  uint8_t buffer[4];
  try {
    port.Read(buffer, CLProtocol::GenCP::Bootstrap::kGenCPVersion, 4);
    return {};
  } catch (const GenICam::GenericException& error) {
    return std::string(error.GetDescription());
  }
}

}  // namespace

class SerialFaultTest : public SerialLinkTest {
protected:
  void ExpectFault(EFault fault, const std::string& code, const std::string& reason) {
    std::unique_ptr<CCLPort> port = Connect(kShortTimeoutMs);
    m_camera->SetFault(fault);
    const auto start = std::chrono::steady_clock::now();
    const std::string error = ReadVersion(*port);
    EXPECT_LT(std::chrono::steady_clock::now() - start, kNoHang);
    EXPECT_NE(error.find(code), std::string::npos) << error;
    EXPECT_NE(error.find(reason), std::string::npos) << error;
    EXPECT_GE(m_camera->Statistics().resends, 3u);
    m_camera->SetFault(EFault::None);
    EXPECT_EQ(ReadVersion(*port), "");
  }
};

TEST_F(SerialFaultTest, NoAnswerIsATimeout) {
  std::unique_ptr<CCLPort> port = Connect(kShortTimeoutMs);
  m_camera->SetFault(EFault::NoAnswer);
  uint8_t buffer[4];
  EXPECT_THROW(port->Read(buffer, 0, 4), GenICam::TimeoutException);
  m_camera->SetFault(EFault::None);
  EXPECT_EQ(ReadVersion(*port), "");
  port.reset();
  ExpectFault(EFault::NoAnswer, "CL_ERR_TIMEOUT", "no answer");
}

TEST_F(SerialFaultTest, CorruptChecksumsAreDropped) {
  ExpectFault(EFault::CorruptChecksum, "CL_ERR_GET_LAST_ERROR", "bad header checksum");
}

TEST_F(SerialFaultTest, AnswersToOtherRequestsAreDropped) {
  ExpectFault(EFault::WrongRequestId, "CL_ERR_GET_LAST_ERROR", "request id");
}

TEST_F(SerialFaultTest, TruncatedAnswersAreReported) {
  ExpectFault(EFault::Truncated, "CL_ERR_GET_LAST_ERROR", "truncated");
}

TEST_F(SerialFaultTest, OneLostAnswerIsRecoveredByAResend) {
  std::unique_ptr<CCLPort> port = Connect(kShortTimeoutMs);
  m_camera->SetFault(EFault::CorruptChecksum, 1);
  EXPECT_EQ(ReadVersion(*port), "");
  EXPECT_EQ(m_camera->Statistics().resends, 1u);
  m_camera->SetFault(EFault::NoAnswer, 2);
  EXPECT_EQ(ReadVersion(*port), "");
  EXPECT_EQ(m_camera->Statistics().resends, 3u);
}

TEST_F(SerialFaultTest, ACablePulledDuringAReadEndsItWithPortGone) {
  std::unique_ptr<CCLPort> port = Connect(2000);
  m_camera->SetFault(EFault::NoAnswer);
  const unsigned before = m_camera->Statistics().commands;
  std::future<std::string> read = std::async(std::launch::async, [&] { return ReadVersion(*port); });
  ASSERT_TRUE(m_camera->WaitForCommands(before + 1, 5000));
  const auto start = std::chrono::steady_clock::now();
  m_camera->PullCable();
  const std::string error = read.get();
  // Well before the 2 s register time-out: the hang-up ends the read.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1500));
  EXPECT_NE(error.find("CL_ERR_ERROR_NOT_FOUND"), std::string::npos) << error;
  EXPECT_NE(error.find("gone"), std::string::npos) << error;
  // Later accesses fail at once with the same clear reason.
  EXPECT_NE(ReadVersion(*port).find("CL_ERR_ERROR_NOT_FOUND"), std::string::npos);
}
