// Ports: URL information, port information, register access of the module ports and the flavour-specific
// registers. The descriptions behind the URLs are checked in PortDescriptionTest.cpp.
#include "PortAccess.h"
#include "SimModule.h"
#include "talvirsim/SimRegisters.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>

using namespace TalvirSimTest;
namespace R = TalvirSim::Remote;

TEST(SimPorts, UrlInformationDescribesTheDescriptionFile) {
  SOpened o("TalvirSim.cti");
  ASSERT_TRUE(o.Ok());
  const auto& fn = o.module.fn;
  uint32_t urls = 0;
  EXPECT_EQ(fn.GCGetNumPortURLs(o.device->port, &urls), GC_ERR_SUCCESS);
  EXPECT_EQ(urls, 1u);
  const SUrl url = ParseUrl(PortUrl(fn, o.device->port));
  auto info = [&](URL_INFO_CMD command) {
    return InfoValue<uint64_t>(
        [&](INFO_DATATYPE* t, void* b, size_t* s) { return fn.GCGetPortURLInfo(o.device->port, 0, command, t, b, s); });
  };
  EXPECT_EQ(info(URL_INFO_FILE_REGISTER_ADDRESS), url.address);
  EXPECT_EQ(info(URL_INFO_FILE_SIZE), url.length);
  EXPECT_EQ(static_cast<int32_t>(info(URL_INFO_SCHEME)), URL_SCHEME_LOCAL);
  EXPECT_EQ(static_cast<int32_t>(info(URL_INFO_SCHEMA_VER_MAJOR)), 1);
  EXPECT_EQ(InfoString([&](INFO_DATATYPE* t, void* b, size_t* s) {
              return fn.GCGetPortURLInfo(o.device->port, 0, URL_INFO_FILENAME, t, b, s);
            }),
            url.fileName);
  size_t size = 8;
  uint64_t value = 0;
  EXPECT_EQ(fn.GCGetPortURLInfo(o.device->port, 1, URL_INFO_URL, nullptr, &value, &size), GC_ERR_INVALID_INDEX);
}

TEST(SimPorts, PortInformationAnswersEveryCommand) {
  SOpened o("TalvirSim.cti");
  ASSERT_TRUE(o.Ok());
  const auto& fn = o.module.fn;
  for (PORT_INFO_CMD command = PORT_INFO_ID; command <= PORT_INFO_PORTNAME; ++command) {
    size_t size = 0;
    EXPECT_EQ(fn.GCGetPortInfo(o.device->port, command, nullptr, nullptr, &size), GC_ERR_SUCCESS) << command;
  }
  auto flag = [&](PORT_INFO_CMD command) {
    return InfoValue<uint8_t>(
        [&](INFO_DATATYPE* t, void* b, size_t* s) { return fn.GCGetPortInfo(o.device->port, command, t, b, s); });
  };
  EXPECT_EQ(flag(PORT_INFO_BIG_ENDIAN), 1);
  EXPECT_EQ(flag(PORT_INFO_LITTLE_ENDIAN), 0);
  EXPECT_EQ(flag(PORT_INFO_ACCESS_WRITE), 1);
}

TEST(SimPorts, RegisterAccessRejectsBadAddressesLengthsAndReadOnlyRegisters) {
  SOpened o("TalvirSim.cti");
  ASSERT_TRUE(o.Ok());
  const auto& fn = o.module.fn;
  uint8_t bytes[8] = {0};
  size_t size = 4;
  EXPECT_EQ(fn.GCReadPort(o.device->port, 0x7FFFFFFF, bytes, &size), GC_ERR_INVALID_ADDRESS);
  EXPECT_EQ(fn.GCReadPort(o.device->port, 0, nullptr, &size), GC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(fn.GCReadPort(o.device->port, 0, bytes, nullptr), GC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(WriteBE32(fn, o.device->port, R::kSensorWidth, 10), GC_ERR_ACCESS_DENIED);
  size = 2;
  EXPECT_EQ(fn.GCWritePort(o.device->port, R::kWidth, bytes, &size), GC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(WriteBE32(fn, o.device->port, 0x7FFFFFF0, 1), GC_ERR_INVALID_ADDRESS);
  EXPECT_EQ(WriteBE32(fn, o.device->port, R::kPixelFormat, 0x12345678), GC_ERR_INVALID_VALUE);
  // Module registers are little-endian 8-byte values.
  size = 8;
  uint64_t interfaces = 0;
  ASSERT_EQ(fn.GCReadPort(o.device->system, 0x0028, &interfaces, &size), GC_ERR_SUCCESS);
  EXPECT_EQ(interfaces, 1u);
  size = 8;
  EXPECT_EQ(fn.GCWritePort(o.device->system, 0x0028, &interfaces, &size), GC_ERR_ACCESS_DENIED);
  // Stacked access runs every entry.
  uint8_t width[4];
  uint8_t height[4];
  PORT_REGISTER_STACK_ENTRY entries[2] = {{R::kWidth, width, 4}, {R::kHeight, height, 4}};
  size_t count = 2;
  ASSERT_EQ(fn.GCReadPortStacked(o.device->port, entries, &count), GC_ERR_SUCCESS);
  EXPECT_EQ(width[3] | width[2] << 8, 640);
  EXPECT_EQ(height[3] | height[2] << 8, 480);
}

TEST(SimPorts, TheCameraIdentifiesItselfAndStoresItsUserId) {
  SOpened o("TalvirSim.cti");
  ASSERT_TRUE(o.Ok());
  const auto& fn = o.module.fn;
  char text[33] = {0};
  size_t size = 32;
  ASSERT_EQ(fn.GCReadPort(o.device->port, R::kDeviceModelName, text, &size), GC_ERR_SUCCESS);
  EXPECT_STREQ(text, "SimMono");
  size = 16;
  ASSERT_EQ(fn.GCReadPort(o.device->port, R::kDeviceSerialNumber, text, &size), GC_ERR_SUCCESS);
  EXPECT_STREQ(text, "SIM00001");
  char user[16] = "line-3";
  size = 16;
  ASSERT_EQ(fn.GCWritePort(o.device->port, R::kDeviceUserID, user, &size), GC_ERR_SUCCESS);
  std::memset(text, 0, sizeof text);
  size = 16;
  fn.GCReadPort(o.device->port, R::kDeviceUserID, text, &size);
  EXPECT_STREQ(text, "line-3");
}

TEST(SimPorts, GigEDeviceModuleKeepsTheStreamTuningWrites) {
  SOpened o("TalvirSimGEVTL.cti");
  ASSERT_TRUE(o.Ok());
  const auto& fn = o.module.fn;
  const uint32_t tuning = 1072;
  size_t size = 4;
  ASSERT_EQ(fn.GCWritePort(o.device->device, TalvirSim::DeviceModule::kStreamTuning, &tuning, &size), GC_ERR_SUCCESS);
  const uint16_t limits[3] = {576, 9000, 4};
  const uint64_t addresses[3] = {TalvirSim::DeviceModule::kPacketSizeMin, TalvirSim::DeviceModule::kPacketSizeMax,
                                 TalvirSim::DeviceModule::kPacketSizeInc};
  for (int i = 0; i < 3; ++i) {
    size = 2;
    ASSERT_EQ(fn.GCWritePort(o.device->device, addresses[i], &limits[i], &size), GC_ERR_SUCCESS);
  }
  uint32_t readTuning = 0;
  size = 4;
  ASSERT_EQ(fn.GCReadPort(o.device->device, TalvirSim::DeviceModule::kStreamTuning, &readTuning, &size),
            GC_ERR_SUCCESS);
  EXPECT_EQ(readTuning, 1072u);
  for (int i = 0; i < 3; ++i) {
    uint16_t value = 0;
    size = 2;
    ASSERT_EQ(fn.GCReadPort(o.device->device, addresses[i], &value, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(value, limits[i]);
  }
  // The camera's packet-size limits come from its registers.
  EXPECT_EQ(ReadBE32(fn, o.device->port, R::kGevSCPSPacketSizeMin), 576u);
  EXPECT_EQ(ReadBE32(fn, o.device->port, R::kGevSCPSPacketSizeInc), 4u);
  EXPECT_EQ(WriteBE32(fn, o.device->port, R::kGevSCPSPacketSize, 1502), GC_ERR_INVALID_VALUE);
  EXPECT_EQ(WriteBE32(fn, o.device->port, R::kGevSCPSPacketSize, 8000), GC_ERR_SUCCESS);
  // The default flavour has no such registers.
  SOpened plain("TalvirSim.cti");
  ASSERT_TRUE(plain.Ok());
  size = 4;
  EXPECT_EQ(plain.module.fn.GCWritePort(plain.device->device, TalvirSim::DeviceModule::kStreamTuning, &tuning, &size),
            GC_ERR_INVALID_ADDRESS);
}

TEST(SimPorts, GrabberFlavoursExposeTheImageFormatOnTheirModules) {
  SOpened cl("TalvirSimCL.cti");
  ASSERT_TRUE(cl.Ok());
  uint64_t value = 0;
  size_t size = 8;
  ASSERT_EQ(cl.module.fn.GCReadPort(cl.device->device, 0x0100, &value, &size), GC_ERR_SUCCESS);
  EXPECT_EQ(value, 1024u);
  value = 512;
  size = 8;
  ASSERT_EQ(cl.module.fn.GCWritePort(cl.device->device, 0x0100, &value, &size), GC_ERR_SUCCESS);
  EXPECT_EQ(ReadBE32(cl.module.fn, cl.device->port, R::kWidth), 512u);
  size = 8;
  cl.module.fn.GCReadPort(cl.device->device, 0x0120, &value, &size);
  EXPECT_EQ(value, 512u * 768);

  SOpened cxp("TalvirSimCXP.cti");
  ASSERT_TRUE(cxp.Ok());
  size = 8;
  ASSERT_EQ(cxp.module.fn.GCReadPort(cxp.device->stream, 0x0100, &value, &size), GC_ERR_SUCCESS);
  EXPECT_EQ(value, cxp.device->PayloadSize());
  size = 8;
  ASSERT_EQ(cxp.module.fn.GCReadPort(cxp.device->stream, 0x0108, &value, &size), GC_ERR_SUCCESS);
  EXPECT_EQ(value, 480u);
}
