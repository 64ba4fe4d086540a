#include "camera/CtiPort.h"

#include "gentl/Cti.h"

#include "FakeProducerModule.h"

#include <GenApi/GenApi.h>

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstring>

namespace TALVIR {
namespace {

using Testing::CFakeProducerModule;
using Testing::MakeFakeDevice;
using Testing::MakeFakeInterface;

// A description with two port nodes; each integer reads 4 little-endian bytes through one of them.
const char* const kDescription = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="FakeModel" VendorName="Talvir" StandardNameSpace="None"
    SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0"
    MajorVersion="1" MinorVersion="0" SubMinorVersion="0" ToolTip="test"
    ProductGuid="11111111-2222-3333-4444-555555555555" VersionGuid="11111111-2222-3333-4444-666666666666"
    xmlns="http://www.genicam.org/GenApi/Version_1_1">
  <Category Name="Root">
    <pFeature>First</pFeature>
    <pFeature>Second</pFeature>
  </Category>
  <IntReg Name="First">
    <Address>0x100</Address>
    <Length>4</Length>
    <AccessMode>RW</AccessMode>
    <pPort>Device</pPort>
    <Sign>Unsigned</Sign>
    <Endianess>LittleEndian</Endianess>
  </IntReg>
  <IntReg Name="Second">
    <Address>0x104</Address>
    <Length>4</Length>
    <AccessMode>RO</AccessMode>
    <pPort>OtherPort</pPort>
    <Sign>Unsigned</Sign>
    <Endianess>LittleEndian</Endianess>
  </IntReg>
  <Port Name="Device"/>
  <Port Name="OtherPort"/>
</RegisterDescription>
)";

// A ZIP archive holding one file, stored without compression, padded to `totalSize` bytes with an archive comment.
std::string StoredZip(const std::string& name, const std::string& content, size_t totalSize) {
  const auto u16 = [](std::string& out, uint16_t value) {
    out.push_back(static_cast<char>(value & 0xFF));
    out.push_back(static_cast<char>(value >> 8));
  };
  const auto u32 = [&u16](std::string& out, uint32_t value) {
    u16(out, static_cast<uint16_t>(value & 0xFFFF));
    u16(out, static_cast<uint16_t>(value >> 16));
  };
  const uint32_t crc = static_cast<uint32_t>(
      crc32(0, reinterpret_cast<const Bytef*>(content.data()), static_cast<uInt>(content.size())));
  const auto size = static_cast<uint32_t>(content.size());
  std::string zip;
  u32(zip, 0x04034b50);
  u16(zip, 20);
  u16(zip, 0);
  u16(zip, 0);  // stored
  u16(zip, 0);
  u16(zip, 0);
  u32(zip, crc);
  u32(zip, size);
  u32(zip, size);
  u16(zip, static_cast<uint16_t>(name.size()));
  u16(zip, 0);
  zip += name;
  zip += content;
  const auto centralStart = static_cast<uint32_t>(zip.size());
  u32(zip, 0x02014b50);
  u16(zip, 20);
  u16(zip, 20);
  u16(zip, 0);
  u16(zip, 0);
  u16(zip, 0);
  u16(zip, 0);
  u32(zip, crc);
  u32(zip, size);
  u32(zip, size);
  u16(zip, static_cast<uint16_t>(name.size()));
  u16(zip, 0);
  u16(zip, 0);
  u16(zip, 0);
  u16(zip, 0);
  u32(zip, 0);
  u32(zip, 0);
  zip += name;
  const auto centralSize = static_cast<uint32_t>(zip.size() - centralStart);
  u32(zip, 0x06054b50);
  u16(zip, 0);
  u16(zip, 0);
  u16(zip, 1);
  u16(zip, 1);
  u32(zip, centralSize);
  u32(zip, centralStart);
  const size_t commentSize = totalSize - zip.size() - 2;
  u16(zip, static_cast<uint16_t>(commentSize));
  zip += std::string(commentSize, 'c');
  return zip;
}

class CtiPortTest : public ::testing::Test {
protected:
  void SetUp() override {
    m_fake.State().interfaces.push_back(MakeFakeInterface("if0", "GEV", {MakeFakeDevice("d0", "SN0")}));
    CCtiEnvironment environment;
    environment.directory = CFakeProducerModule::Directory();
    m_cti = std::make_unique<CCti>("TalvirFake.cti", environment);
    ASSERT_TRUE(m_cti->Load());
  }

  // Module memory for kHandle: registers at 0x100 and the description at `address`.
  void ServeDescription(const std::string& url, uint64_t address, const std::string& description) {
    Testing::CFakePort port;
    port.url = url;
    port.address = 0x100;
    port.memory.assign(static_cast<size_t>(address - 0x100), '\0');
    const uint32_t first = 0x11223344;
    const uint32_t second = 0x55667788;
    std::memcpy(port.memory.data(), &first, 4);
    std::memcpy(port.memory.data() + 4, &second, 4);
    port.memory += description;
    m_fake.State().ports[kHandle] = port;
  }

  static inline void* const kHandle = reinterpret_cast<void*>(uintptr_t{0x7000});
  CFakeProducerModule m_fake;
  std::unique_ptr<CCti> m_cti;
};

TEST_F(CtiPortTest, ReadsAndWritesGoToTheModule) {
  ServeDescription("local:x.xml;200;0", 0x200, "");
  CCtiPort port(m_cti.get(), kHandle);
  EXPECT_EQ(port.GetAccessMode(), GenApi::RW);
  uint32_t value = 0;
  port.Read(&value, 0x104, 4);
  EXPECT_EQ(value, 0x55667788u);
  const uint32_t written = 0xCAFE;
  port.Write(&written, 0x108, 4);
  EXPECT_EQ(m_fake.State().writes[0x108], std::string("\xFE\xCA\0\0", 4));
}

TEST_F(CtiPortTest, ANullHandleOrProducerIsASilentNoOp) {
  CCtiPort noHandle(m_cti.get(), nullptr);
  uint32_t value = 0xAAAAAAAA;
  EXPECT_NO_THROW(noHandle.Read(&value, 0x100, 4));
  EXPECT_EQ(value, 0xAAAAAAAAu);
  EXPECT_NO_THROW(noHandle.Write(&value, 0x100, 4));
  CCtiPort noProducer(nullptr, kHandle);
  EXPECT_NO_THROW(noProducer.Read(&value, 0x100, 4));
  EXPECT_EQ(value, 0xAAAAAAAAu);
  EXPECT_TRUE(m_fake.State().writes.empty());
  EXPECT_EQ(noHandle.GetNodeMap(), nullptr);
  EXPECT_EQ(noProducer.GetNodeMap(), nullptr);
}

TEST_F(CtiPortTest, AFailedReadThrowsWithTheAddressCutTo32Bits) {
  ServeDescription("local:x.xml;200;0", 0x200, "");
  m_fake.State().ports[kHandle].failingAddresses = {0x104};
  CCtiPort port(m_cti.get(), kHandle);
  uint32_t value = 0;
  try {
    port.Read(&value, 0x100000104ll, 4);
    FAIL() << "no exception";
  } catch (const GenICam::GenericException& error) {
    EXPECT_STREQ(error.GetDescription(), "Read address 0x104 failure");
    EXPECT_STREQ(error.GetSourceFileName(), "CtiPort");
    EXPECT_EQ(error.GetSourceLine(), 51u);
  }
}

TEST_F(CtiPortTest, AFailedWriteThrows) {
  ServeDescription("local:x.xml;200;0", 0x200, "");
  m_fake.State().ports[kHandle].failingAddresses = {0x10C};
  CCtiPort port(m_cti.get(), kHandle);
  const uint32_t value = 1;
  try {
    port.Write(&value, 0x10C, 4);
    FAIL() << "no exception";
  } catch (const GenICam::GenericException& error) {
    EXPECT_STREQ(error.GetDescription(), "Write address 0x10c failure");
    EXPECT_STREQ(error.GetSourceFileName(), "CtiPort");
    EXPECT_EQ(error.GetSourceLine(), 67u);
  }
}

TEST_F(CtiPortTest, PlainDescriptionWithTrailingZerosLoadsAndServesEveryPortNode) {
  const std::string description = std::string(kDescription) + std::string(7, '\0');
  char url[128];
  std::snprintf(url, sizeof url, "local:///camera.xml;2000;%zx?SchemaVersion=1.1.0", description.size());
  ServeDescription(url, 0x2000, description);
  CCtiPort port(m_cti.get(), kHandle);
  GenApi::INodeMap* map = port.GetNodeMap();
  ASSERT_NE(map, nullptr);
  EXPECT_EQ(port.GetXmlFileName(), "///camera");
  EXPECT_EQ(port.GetXmlFileExtension(), "XML");
  // The data as read, trailing zeros included.
  EXPECT_EQ(port.GetXmlData(), description);
  GenApi::CIntegerPtr first = map->GetNode("First");
  GenApi::CIntegerPtr second = map->GetNode("Second");
  ASSERT_TRUE(first.IsValid());
  ASSERT_TRUE(second.IsValid());
  EXPECT_EQ(first->GetValue(), 0x11223344);
  EXPECT_EQ(second->GetValue(), 0x55667788);
  first->SetValue(0x42);
  EXPECT_EQ(m_fake.State().writes[0x100], std::string("\x42\0\0\0", 4));
}

TEST_F(CtiPortTest, ReadFailuresThroughTheNodeMapReachTheCaller) {
  const std::string description = kDescription;
  char url[128];
  std::snprintf(url, sizeof url, "local:camera.xml;2000;%zx", description.size());
  ServeDescription(url, 0x2000, description);
  CCtiPort port(m_cti.get(), kHandle);
  GenApi::CIntegerPtr second = port.GetNodeMap()->GetNode("Second");
  ASSERT_TRUE(second.IsValid());
  m_fake.State().ports[kHandle].failingAddresses = {0x104};
  EXPECT_THROW(second->GetValue(false, true), GenICam::GenericException);
}

TEST_F(CtiPortTest, MixedCaseLocalZipUrlReadsExactlyTheNamedRange) {
  const std::string zip = StoredZip("camera.xml", kDescription, 0x3A4B);
  ASSERT_EQ(zip.size(), 0x3A4Bu);
  ServeDescription("Local:camera.zip;8000;3A4B", 0x8000, zip + "trailing bytes that are not read");
  m_fake.State().calls.clear();
  CCtiPort port(m_cti.get(), kHandle);
  GenApi::INodeMap* map = port.GetNodeMap();
  ASSERT_NE(map, nullptr);
  EXPECT_EQ(port.GetXmlFileName(), "camera");
  EXPECT_EQ(port.GetXmlFileExtension(), "ZIP");
  EXPECT_EQ(port.GetXmlData(), zip);
  GenApi::CIntegerPtr second = map->GetNode("Second");
  ASSERT_TRUE(second.IsValid());
  EXPECT_EQ(second->GetValue(), 0x55667788);
}

TEST_F(CtiPortTest, AFileOrWebUrlGivesNoNodeMapAndIsNotAskedAgain) {
  for (const char* url : {"file:///tmp/camera.xml", "http://example.invalid/camera.xml", "loca:camera.xml;0;0"}) {
    ServeDescription(url, 0x200, kDescription);
    m_fake.State().calls.clear();
    CCtiPort port(m_cti.get(), kHandle);
    EXPECT_EQ(port.GetNodeMap(), nullptr) << url;
    EXPECT_EQ(port.GetXmlFileName(), "");
    EXPECT_EQ(port.GetXmlFileExtension(), "");
    EXPECT_EQ(port.GetXmlData(), "");
    EXPECT_EQ(m_fake.State().CountCalls("GCGetPortURL"), 2u) << "size, then text, once only";
  }
}

TEST_F(CtiPortTest, AUrlWithoutItsSecondSeparatorGivesNoNodeMap) {
  ServeDescription("local:camera.xml;2000", 0x2000, kDescription);
  CCtiPort port(m_cti.get(), kHandle);
  EXPECT_EQ(port.GetNodeMap(), nullptr);
  EXPECT_EQ(port.GetXmlData(), "");
}

TEST_F(CtiPortTest, ANameWithoutExtensionLoadsAsPlainXml) {
  const std::string description = kDescription;
  char url[128];
  std::snprintf(url, sizeof url, "LOCAL:description;2000;%zx", description.size());
  ServeDescription(url, 0x2000, description);
  CCtiPort port(m_cti.get(), kHandle);
  EXPECT_NE(port.GetNodeMap(), nullptr);
  EXPECT_EQ(port.GetXmlFileName(), "");
  EXPECT_EQ(port.GetXmlFileExtension(), "");
  EXPECT_EQ(port.GetXmlData(), description);
}

TEST_F(CtiPortTest, AnUnreadableDescriptionIsNotRetried) {
  const std::string description = kDescription;
  char url[128];
  std::snprintf(url, sizeof url, "local:camera.xml;2000;%zx", description.size());
  ServeDescription(url, 0x2000, description);
  m_fake.State().ports[kHandle].failingAddresses = {0x2000};
  CCtiPort port(m_cti.get(), kHandle);
  EXPECT_EQ(port.GetNodeMap(), nullptr);
  m_fake.State().ports[kHandle].failingAddresses.clear();
  EXPECT_EQ(port.GetNodeMap(), nullptr);
  EXPECT_EQ(port.GetXmlFileName(), "");
}

TEST_F(CtiPortTest, ABrokenDescriptionLeavesEverythingEmpty) {
  const std::string broken = "<RegisterDescription><IntReg Name=";
  char url[128];
  std::snprintf(url, sizeof url, "local:camera.xml;2000;%zx", broken.size());
  ServeDescription(url, 0x2000, broken);
  CCtiPort port(m_cti.get(), kHandle);
  EXPECT_EQ(port.GetNodeMap(), nullptr);
  EXPECT_EQ(port.GetXmlFileName(), "");
  EXPECT_EQ(port.GetXmlFileExtension(), "");
  EXPECT_EQ(port.GetXmlData(), "");
}

TEST_F(CtiPortTest, ACorruptZipLeavesEverythingEmpty) {
  const std::string notZip = "PK\x03\x04 this is not an archive";
  char url[128];
  std::snprintf(url, sizeof url, "local:camera.zip;2000;%zx", notZip.size());
  ServeDescription(url, 0x2000, notZip);
  CCtiPort port(m_cti.get(), kHandle);
  EXPECT_EQ(port.GetNodeMap(), nullptr);
  EXPECT_EQ(port.GetXmlData(), "");
}

TEST_F(CtiPortTest, AnAbsurdLengthIsNotAllocated) {
  ServeDescription("local:camera.xml;2000;FFFFFFFFFFFFFFFF", 0x2000, kDescription);
  CCtiPort port(m_cti.get(), kHandle);
  EXPECT_EQ(port.GetNodeMap(), nullptr);
}

TEST_F(CtiPortTest, AModuleWithoutUrlHasNoNodeMap) {
  ServeDescription("local:camera.xml;2000;10", 0x2000, kDescription);
  m_fake.State().ports[kHandle].failURL = true;
  CCtiPort port(m_cti.get(), kHandle);
  EXPECT_EQ(port.GetNodeMap(), nullptr);
}

TEST_F(CtiPortTest, TheFactoryMakesPortsAsModuleRecords) {
  std::unique_ptr<IGenTLModule> record = MakeCtiPort(*m_cti, kHandle);
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->Handle(), kHandle);
  auto* port = dynamic_cast<CCtiPort*>(record.get());
  ASSERT_NE(port, nullptr);
  EXPECT_EQ(record->Xml(), static_cast<IXml*>(port));
  EXPECT_EQ(port->Producer(), m_cti.get());
}

}  // namespace
}  // namespace TALVIR
