// Producers that read fewer bytes than asked, or claim every byte and write fewer. Also run under valgrind
// (memcheck reports any value built from bytes nobody wrote): the command is in the README, under "Other builds".
#include "camera/CtiPort.h"

#include "gentl/Cti.h"

#include "FakeProducerModule.h"

#include <GenApi/GenApi.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace TALVIR {
namespace {

using Testing::CFakeProducerModule;
using Testing::MakeFakeDevice;
using Testing::MakeFakeInterface;

// An 8-byte MAC address register (the producer holds 6 bytes there), a 4-byte integer, a float and a string.
const char* const kDescription = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="FakeModel" VendorName="Talvir" StandardNameSpace="None"
    SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0"
    MajorVersion="1" MinorVersion="0" SubMinorVersion="0" ToolTip="test"
    ProductGuid="11111111-2222-3333-4444-555555555555" VersionGuid="11111111-2222-3333-4444-666666666666"
    xmlns="http://www.genicam.org/GenApi/Version_1_1">
  <Category Name="Root">
    <pFeature>MacAddress</pFeature>
    <pFeature>Counter</pFeature>
    <pFeature>Ratio</pFeature>
    <pFeature>Label</pFeature>
  </Category>
  <IntReg Name="MacAddress">
    <Address>0x100</Address>
    <Length>8</Length>
    <AccessMode>RO</AccessMode>
    <pPort>Device</pPort>
    <Cachable>NoCache</Cachable>
    <Sign>Unsigned</Sign>
    <Endianess>LittleEndian</Endianess>
    <Representation>MACAddress</Representation>
  </IntReg>
  <IntReg Name="Counter">
    <Address>0x108</Address>
    <Length>4</Length>
    <AccessMode>RO</AccessMode>
    <pPort>Device</pPort>
    <Cachable>NoCache</Cachable>
    <Sign>Unsigned</Sign>
    <Endianess>LittleEndian</Endianess>
  </IntReg>
  <FloatReg Name="Ratio">
    <Address>0x110</Address>
    <Length>8</Length>
    <AccessMode>RO</AccessMode>
    <pPort>Device</pPort>
    <Cachable>NoCache</Cachable>
    <Endianess>LittleEndian</Endianess>
  </FloatReg>
  <StringReg Name="Label">
    <Address>0x118</Address>
    <Length>8</Length>
    <AccessMode>RO</AccessMode>
    <pPort>Device</pPort>
    <Cachable>NoCache</Cachable>
  </StringReg>
  <Port Name="Device"/>
</RegisterDescription>
)";

constexpr uint64_t kDescriptionAddress = 0x200;

class CtiPortShortReadTest : public ::testing::Test {
protected:
  void SetUp() override {
    m_fake.State().interfaces.push_back(MakeFakeInterface("if0", "GEV", {MakeFakeDevice("d0", "SN0")}));
    CCtiEnvironment environment;
    environment.directory = CFakeProducerModule::Directory();
    m_cti = std::make_unique<CCti>("TalvirFake.cti", environment);
    ASSERT_TRUE(m_cti->Load());

    Testing::CFakePort port;
    char url[128];
    std::snprintf(url, sizeof url, "local:camera.xml;%llx;%zx", static_cast<unsigned long long>(kDescriptionAddress),
                  std::strlen(kDescription));
    port.url = url;
    port.address = 0x100;
    port.memory.assign(kDescriptionAddress - 0x100, '\0');
    // The MAC address 00:11:22:33:44:55, little-endian, and two bytes the misbehaving producer never writes.
    const unsigned char mac[] = {0x55, 0x44, 0x33, 0x22, 0x11, 0x00, 0xEE, 0xEE};
    std::memcpy(port.memory.data(), mac, sizeof mac);
    const uint32_t counter = 0x01020304;
    std::memcpy(port.memory.data() + 8, &counter, 4);
    const double ratio = 0.5;
    std::memcpy(port.memory.data() + 0x10, &ratio, 8);
    std::memcpy(port.memory.data() + 0x18, "LABEL-01", 8);
    port.memory += kDescription;
    m_fake.State().ports[kHandle] = port;
    m_port = std::make_unique<CCtiPort>(m_cti.get(), kHandle);
    // The description loads while the producer still behaves.
    m_nodeMap = m_port->GetNodeMap();
    ASSERT_NE(m_nodeMap, nullptr);
  }

  Testing::CFakePort& Port() { return m_fake.State().ports[kHandle]; }

  static inline void* const kHandle = reinterpret_cast<void*>(uintptr_t{0x7100});
  CFakeProducerModule m_fake;
  std::unique_ptr<CCti> m_cti;
  std::unique_ptr<CCtiPort> m_port;
  GenApi::INodeMap* m_nodeMap = nullptr;
};

TEST_F(CtiPortShortReadTest, AShortReadIsAFailedRead) {
  Port().shortReadBy = 2;
  uint64_t value = 0;
  try {
    m_port->Read(&value, 0x100, 8);
    FAIL() << "no exception";
  } catch (const GenICam::GenericException& error) {
    EXPECT_STREQ(error.GetDescription(), "Read address 0x100 failure");
    EXPECT_STREQ(error.GetSourceFileName(), "CtiPort");
    EXPECT_EQ(error.GetSourceLine(), 51u);
  }
  // A whole read still works.
  Port().shortReadBy = 0;
  m_port->Read(&value, 0x100, 8);
  EXPECT_EQ(value, 0xEEEE001122334455u);
}

TEST_F(CtiPortShortReadTest, ShortReadsThroughTheNodeMapReachTheCallerAsFailures) {
  Port().shortReadBy = 1;
  GenApi::CIntegerPtr mac = m_nodeMap->GetNode("MacAddress");
  GenApi::CIntegerPtr counter = m_nodeMap->GetNode("Counter");
  GenApi::CFloatPtr ratio = m_nodeMap->GetNode("Ratio");
  GenApi::CStringPtr label = m_nodeMap->GetNode("Label");
  ASSERT_TRUE(mac.IsValid() && counter.IsValid() && ratio.IsValid() && label.IsValid());
  EXPECT_THROW(mac->GetValue(), GenICam::GenericException);
  EXPECT_THROW(counter->GetValue(), GenICam::GenericException);
  EXPECT_THROW(ratio->GetValue(), GenICam::GenericException);
  EXPECT_THROW(label->GetValue(), GenICam::GenericException);
}

TEST_F(CtiPortShortReadTest, BytesAProducerClaimsButNeverWritesReadAsZero) {
  // The producer reports all 8 bytes of the MAC register and writes 6: the rest must be the zeros the engine put
  // there, never what happened to be in memory.
  Port().unwrittenTail = 2;
  GenApi::CIntegerPtr mac = m_nodeMap->GetNode("MacAddress");
  ASSERT_TRUE(mac.IsValid());
  for (int attempt = 0; attempt < 3; ++attempt) {
    EXPECT_EQ(mac->GetValue(), 0x001122334455);
    EXPECT_EQ(std::string(mac->ToString().c_str()), std::to_string(0x001122334455));
  }
  GenApi::CIntegerPtr counter = m_nodeMap->GetNode("Counter");
  EXPECT_EQ(counter->GetValue(), 0x0304);
  GenApi::CFloatPtr ratio = m_nodeMap->GetNode("Ratio");
  double expected = 0;
  const double whole = 0.5;
  std::memcpy(&expected, &whole, 6);
  EXPECT_EQ(ratio->GetValue(), expected);
  GenApi::CStringPtr label = m_nodeMap->GetNode("Label");
  EXPECT_EQ(std::string(label->GetValue().c_str()), "LABEL-");
}

}  // namespace
}  // namespace TALVIR
