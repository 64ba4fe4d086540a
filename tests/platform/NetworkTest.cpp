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
  for (const char* text : {"", "192.168.1", "256.1.1.1", "1.2.3.4.5", "a.b.c.d", " 1.2.3.4", "1.2.3.4 "}) {
    uint32_t address = 0xDEADBEEF;
    EXPECT_FALSE(ParseIPv4(text, address)) << text;
    EXPECT_EQ(address, 0xDEADBEEFu);
  }
}

}  // namespace
}  // namespace TALVIR::Platform
