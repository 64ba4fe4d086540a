#include "DeviceId.h"

#include <CLProtocol/CLSerialApi.h>

#include <gtest/gtest.h>

using namespace CLProtocol;

TEST(DeviceId, TemplatesCompareTokenByToken) {
  EXPECT_TRUE(DeviceIdMatchesTemplate("KORIX#GENCP02", "KORIX#GENCP02"));
  EXPECT_TRUE(DeviceIdMatchesTemplate("KORIX", "KORIX#GENCP02"));
  EXPECT_TRUE(DeviceIdMatchesTemplate("KORIX#GENCP02#Model#1.0#SN", "KORIX#GENCP02"));
  EXPECT_FALSE(DeviceIdMatchesTemplate("A#Fam", "A#Family1"));
  EXPECT_FALSE(DeviceIdMatchesTemplate("A#Family1", "A#Fam"));
  EXPECT_FALSE(DeviceIdMatchesTemplate("", "KORIX#GENCP02"));
  EXPECT_FALSE(DeviceIdMatchesTemplate("OTHER#GENCP02", "KORIX#GENCP02"));
}

TEST(DeviceId, SplitsFolderFileAndShortPart) {
  std::string directory;
  std::string file;
  std::string shortId;
  ASSERT_TRUE(SplitDeviceId("/opt/drv#libX.so#KORIX#GENCP02#M", directory, file, shortId));
  EXPECT_EQ(directory, "/opt/drv");
  EXPECT_EQ(file, "libX.so");
  EXPECT_EQ(shortId, "KORIX#GENCP02#M");
  EXPECT_FALSE(SplitDeviceId("/opt/drv#libX.so", directory, file, shortId));
  EXPECT_FALSE(SplitDeviceId("#libX.so#KORIX", directory, file, shortId));
}

TEST(DeviceId, BaudRateBitsMapBothWays) {
  EXPECT_EQ(BaudRateOfBit(CL_BAUDRATE_9600), 9600u);
  EXPECT_EQ(BaudRateOfBit(CL_BAUDRATE_115200), 115200u);
  EXPECT_EQ(BaudRateOfBit(CL_BAUDRATE_921600), 921600u);
  EXPECT_EQ(BaudRateOfBit(0x3), 0u);
  EXPECT_EQ(BitOfBaudRate(115200), static_cast<uint32_t>(CL_BAUDRATE_115200));
  EXPECT_EQ(BitOfBaudRate(12345), 0u);
}
