#include "gentl/TLTypeTable.h"

#include <talvir/TLType.h>

#include <gtest/gtest.h>

namespace TALVIR {
namespace {

TEST(TLTypeTable, MapsEveryKnownNameToItsBit) {
  EXPECT_EQ(TLTypeFromName("GEV"), 1u);
  EXPECT_EQ(TLTypeFromName("U3V"), 2u);
  EXPECT_EQ(TLTypeFromName("CL"), 4u);
  EXPECT_EQ(TLTypeFromName("CXP"), 8u);
  EXPECT_EQ(TLTypeFromName("IIDC"), 16u);
  EXPECT_EQ(TLTypeFromName("UVC"), 32u);
  EXPECT_EQ(TLTypeFromName("CLHS"), 64u);
  EXPECT_EQ(TLTypeFromName("Ethernet"), 128u);
  EXPECT_EQ(TLTypeFromName("PCI"), 256u);
}

TEST(TLTypeTable, ComparesWholeNamesCaseSensitively) {
  EXPECT_EQ(TLTypeFromName("gev"), 0u);
  EXPECT_EQ(TLTypeFromName("GEV "), 0u);
  EXPECT_EQ(TLTypeFromName("GE"), 0u);
  EXPECT_EQ(TLTypeFromName("ethernet"), 0u);
  // A prefix of a longer entry must not match the shorter one first.
  EXPECT_EQ(TLTypeFromName("CLH"), 0u);
  EXPECT_EQ(TLTypeFromName("CLHS"), TLType::CLHS);
}

TEST(TLTypeTable, UnknownAndSystemOnlyNamesGiveZero) {
  EXPECT_EQ(TLTypeFromName(""), 0u);
  EXPECT_EQ(TLTypeFromName("Mixed"), 0u);
  EXPECT_EQ(TLTypeFromName("Custom"), 0u);
}

TEST(TLTypeTable, NamesSingleBitsOnly) {
  EXPECT_STREQ(TLTypeName(TLType::U3V), "U3V");
  EXPECT_STREQ(TLTypeName(TLType::PCI), "PCI");
  EXPECT_STREQ(TLTypeName(0), "");
  EXPECT_STREQ(TLTypeName(TLType::GEV | TLType::U3V), "");
  EXPECT_STREQ(TLTypeName(TLType::CLSerialOnly), "");
}

}  // namespace
}  // namespace TALVIR
