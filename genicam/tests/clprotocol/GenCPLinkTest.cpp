// The host side of GenCP over a serial port, driven directly: stacked commands and the request-id wrap.
#include "GenCPLink.h"

#include "SerialCameraServer.h"
#include "platform/SerialDevice.h"
#include "support/Skips.h"

#include <gtest/gtest.h>

using namespace CLProtocol;
using namespace TalvirSerialCam;
using GenICam::Platform::CSerialDevice;
using GenICam::Platform::ESerialResult;

namespace {

int32_t StatusOf(ESerialResult result) {
  return result == ESerialResult::Ok        ? CL_ERR_NO_ERR
         : result == ESerialResult::Timeout ? CL_ERR_TIMEOUT
                                            : CL_ERR_ERROR_NOT_FOUND;
}

int32_t DeviceRead(void* context, char* buffer, uint32_t* size, uint32_t timeoutMs) {
  return StatusOf(static_cast<CSerialDevice*>(context)->Read(buffer, *size, timeoutMs));
}
int32_t DeviceWrite(void* context, const char* buffer, uint32_t* size, uint32_t timeoutMs) {
  return StatusOf(static_cast<CSerialDevice*>(context)->Write(buffer, *size, timeoutMs));
}
int32_t DeviceFlush(void* context) {
  static_cast<CSerialDevice*>(context)->Flush();
  return CL_ERR_NO_ERR;
}
int32_t DeviceRates(void*, uint32_t* rates) {
  *rates = CL_BAUDRATE_9600;
  return CL_ERR_NO_ERR;
}
int32_t DeviceSetRate(void* context, uint32_t rate) {
  return static_cast<CSerialDevice*>(context)->SetBaudRate(BaudRateOfBit(rate)) ? CL_ERR_NO_ERR
                                                                                : CL_ERR_BAUD_RATE_NOT_SUPPORTED;
}

class GenCPLinkTest : public ::testing::Test {
protected:
  void SetUp() override {
    TALVIR_SKIP_WITHOUT_PSEUDO_TERMINALS();
    std::string error;
    ASSERT_TRUE(m_camera.Start(error)) << error;
    ASSERT_TRUE(m_device.Open(m_camera.PortPath(), error)) << error;
  }

  CSerialCameraServer m_camera;
  CSerialDevice m_device;
  CLPSerial m_serial{&m_device, &DeviceRead, &DeviceWrite, &DeviceFlush, &DeviceRates, &DeviceSetRate};
  GenCP::CGenCPLink m_link;
};

}  // namespace

TEST_F(GenCPLinkTest, StackedWritesAndReads) {
  std::vector<GenCP::SStackedEntry> writes(2);
  writes[0].address = Address::kWidth;
  writes[0].data = {0, 0, 0x02, 0x80};
  writes[1].address = Address::kHeight;
  writes[1].data = {0, 0, 0x01, 0xE0};
  ASSERT_EQ(m_link.WriteMemStacked(m_serial, writes, 500), CL_ERR_NO_ERR) << m_link.LastError();
  EXPECT_EQ(m_camera.Register32(Address::kWidth), 640u);
  EXPECT_EQ(m_camera.Register32(Address::kHeight), 480u);

  std::vector<GenCP::SStackedEntry> reads(2);
  reads[0].address = Address::kHeight;
  reads[0].length = 4;
  reads[1].address = Address::kWidth;
  reads[1].length = 4;
  ASSERT_EQ(m_link.ReadMemStacked(m_serial, reads, 500), CL_ERR_NO_ERR) << m_link.LastError();
  EXPECT_EQ(GenCP::GetU32(reads[0].data.data()), 480u);
  EXPECT_EQ(GenCP::GetU32(reads[1].data.data()), 640u);
  EXPECT_EQ(m_camera.Statistics().stackedCommands, 2u);
}

TEST_F(GenCPLinkTest, StackedWriteWithAnInvalidValueChangesNothingAfterIt) {
  std::vector<GenCP::SStackedEntry> writes(1);
  writes[0].address = Address::kWidth;
  writes[0].data = {0, 0, 0, 17};
  EXPECT_EQ(m_link.WriteMemStacked(m_serial, writes, 500), CL_ERR_GET_LAST_ERROR);
  EXPECT_NE(m_link.LastError().find("INVALID_PARAMETER"), std::string::npos) << m_link.LastError();
  EXPECT_EQ(m_camera.Register32(Address::kWidth), 2048u);
}

TEST_F(GenCPLinkTest, RequestIdsWrapToOneOnTheWire) {
  m_link.RequestIds().SetLast(0xFFFE);
  uint8_t buffer[4];
  ASSERT_EQ(m_link.ReadMem(m_serial, 0, buffer, 4, 500), CL_ERR_NO_ERR) << m_link.LastError();
  EXPECT_EQ(m_link.RequestIds().Last(), 0xFFFF);
  ASSERT_EQ(m_link.ReadMem(m_serial, 0, buffer, 4, 500), CL_ERR_NO_ERR) << m_link.LastError();
  EXPECT_EQ(m_link.RequestIds().Last(), 1);
  EXPECT_EQ(m_link.DroppedRequestId(), 0u);
}

TEST_F(GenCPLinkTest, WrittenLengthIsChecked) {
  m_link.SetWrittenLengthReported(true);
  const uint8_t value[4] = {0, 0, 0x01, 0x00};
  EXPECT_EQ(m_link.WriteMem(m_serial, Address::kWidth, value, 4, 500, false), CL_ERR_NO_ERR) << m_link.LastError();
  EXPECT_EQ(m_camera.Register32(Address::kWidth), 256u);
}
