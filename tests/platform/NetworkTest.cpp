#include "platform/Network.h"

#include <gtest/gtest.h>

#include <cstring>

namespace TALVIR::Platform {
namespace {

TEST(Network, DottedTextParsesIntoNetworkByteOrder) {
  uint32_t address = 0;
  ASSERT_TRUE(ParseIPv4("192.168.77.11", address));
  uint8_t bytes[4];
  std::memcpy(bytes, &address, sizeof bytes);
  EXPECT_EQ(bytes[0], 192);
  EXPECT_EQ(bytes[1], 168);
  EXPECT_EQ(bytes[2], 77);
  EXPECT_EQ(bytes[3], 11);
  EXPECT_EQ(FormatIPv4(address), "192.168.77.11");
}

TEST(Network, AnythingElseIsRefusedAndLeavesTheAddress) {
  // Leading zeros, hexadecimal parts and short forms are refused alike on every platform.
  for (const char* text : {"", "192.168.1", "256.1.1.1", "1.2.3.4.5", "a.b.c.d", " 1.2.3.4", "1.2.3.4 ", "01.2.3.4",
                           "1.2.3.04", "0x1.2.3.4", "1..2.3", "1.2.3.4\n", "1.2.3.256", "1.2.3.", ".1.2.3"}) {
    uint32_t address = 0xDEADBEEF;
    EXPECT_FALSE(ParseIPv4(text, address)) << text;
    EXPECT_EQ(address, 0xDEADBEEFu);
  }
}

TEST(Network, TheExtremesParseAndFormatBack) {
  for (const char* text : {"0.0.0.0", "255.255.255.255", "10.0.0.1"}) {
    uint32_t address = 0;
    ASSERT_TRUE(ParseIPv4(text, address)) << text;
    EXPECT_EQ(FormatIPv4(address), text);
  }
}

}  // namespace
}  // namespace TALVIR::Platform
