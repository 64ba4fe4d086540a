#include "gentl/GevCti.h"

#include "gentl/CameraInfo.h"
#include "gentl/GevDeviceRecord.h"

#include "FakeProducerModule.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace TALVIR {
namespace {

using Testing::CFakeProducerModule;
using Testing::MakeFakeDevice;
using Testing::MakeFakeInterface;

GevDeviceRecord SampleRecord() {
  GevDeviceRecord record{};
  const uint8_t ip[] = {192, 168, 1, 20};
  std::memcpy(record.data() + GevRecord::IPAddress, ip, 4);
  std::strcpy(reinterpret_cast<char*>(record.data() + GevRecord::Vendor), "GigE Vendor");
  std::strcpy(reinterpret_cast<char*>(record.data() + GevRecord::Model), "GigE Model");
  std::strcpy(reinterpret_cast<char*>(record.data() + GevRecord::Version), "v3");
  const uint8_t address6[] = {10, 0, 0, 1};
  std::memcpy(record.data() + GevRecord::Address6, address6, 4);
  const uint8_t address7[] = {255, 255, 255, 0};
  std::memcpy(record.data() + GevRecord::Address7, address7, 4);
  const uint8_t mac[] = {0x00, 0x11, 0x22, 0xAB, 0xCD, 0xEF};
  std::memcpy(record.data() + GevRecord::MAC, mac, 6);
  const uint8_t address3[] = {192, 168, 1, 1};
  std::memcpy(record.data() + GevRecord::Address3, address3, 4);
  const uint8_t address4[] = {255, 255, 0, 0};
  std::memcpy(record.data() + GevRecord::Address4, address4, 4);
  std::strcpy(reinterpret_cast<char*>(record.data() + GevRecord::Text5), "adapter text");
  std::strcpy(reinterpret_cast<char*>(record.data() + GevRecord::Serial), "GS0001");
  std::strcpy(reinterpret_cast<char*>(record.data() + GevRecord::UserName), "left camera");
  const uint32_t access = 6;
  std::memcpy(record.data() + GevRecord::AccessStatus, &access, 4);
  return record;
}

TEST(GevDeviceRecord, DeviceIDHoldsModelMacSerialAndAddressNumber) {
  const GevDeviceRecord record = SampleRecord();
  // 10.0.0.1 read as a host-order 32-bit value on a little-endian machine.
  EXPECT_EQ(GevDeviceID(record), "GigE Model@00-11-22-AB-CD-EF[GS0001]##16777226##");
}

TEST(GevDeviceRecord, DeviceIDOfTheDocumentedExample) {
  GevDeviceRecord record{};
  std::strcpy(reinterpret_cast<char*>(record.data() + GevRecord::Model), "M");
  const uint8_t mac[] = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55};
  std::memcpy(record.data() + GevRecord::MAC, mac, 6);
  std::strcpy(reinterpret_cast<char*>(record.data() + GevRecord::Serial), "S");
  EXPECT_EQ(GevDeviceID(record), "M@00-11-22-33-44-55[S]##0##");
}

TEST(GevDeviceRecord, FullFieldsAreCutAtTheirLength) {
  GevDeviceRecord record = SampleRecord();
  std::memset(record.data() + GevRecord::Model, 'M', 32);
  std::memset(record.data() + GevRecord::Version, 'V', 32);
  std::memset(record.data() + GevRecord::Serial, 'S', 16);
  std::memset(record.data() + GevRecord::UserName, 'U', 16);
  CCameraInfo info(nullptr, nullptr);
  ApplyGevDeviceRecord(record, info);
  EXPECT_EQ(info.m_model, std::string(32, 'M'));
  EXPECT_EQ(info.m_version, std::string(32, 'V'));
  EXPECT_EQ(info.m_serialNumber, std::string(16, 'S'));
  EXPECT_EQ(info.m_userDefinedName, std::string(16, 'U'));
  EXPECT_EQ(info.m_deviceID, std::string(32, 'M') + "@00-11-22-AB-CD-EF[" + std::string(16, 'S') + "]##16777226##");
}

TEST(GevDeviceRecord, SpreadsEveryFieldOverTheRecord) {
  CCameraInfo info(nullptr, nullptr);
  info.m_displayName = "kept";
  ApplyGevDeviceRecord(SampleRecord(), info);
  EXPECT_STREQ(info.GetCustomInfo(1), "192.168.1.20");
  EXPECT_STREQ(info.GetCustomInfo(2), "00:11:22:AB:CD:EF");
  EXPECT_STREQ(info.GetCustomInfo(3), "192.168.1.1");
  EXPECT_STREQ(info.GetCustomInfo(4), "255.255.0.0");
  EXPECT_STREQ(info.GetCustomInfo(5), "adapter text");
  EXPECT_STREQ(info.GetCustomInfo(6), "10.0.0.1");
  EXPECT_STREQ(info.GetCustomInfo(7), "255.255.255.0");
  EXPECT_STREQ(info.GetVendor(), "GigE Vendor");
  EXPECT_STREQ(info.GetModel(), "GigE Model");
  EXPECT_STREQ(info.GetVersion(), "v3");
  EXPECT_STREQ(info.GetSerialNumber(), "GS0001");
  EXPECT_STREQ(info.GetUserDefinedName(), "left camera");
  EXPECT_EQ(info.GetAccessStatus(), 6u);
  EXPECT_STREQ(info.GetDisplayName(), "kept");
}

class GevCtiTest : public ::testing::Test {
protected:
  CFakeProducerModule m_fake;

  CCtiEnvironment Environment() {
    CCtiEnvironment environment;
    environment.directory = CFakeProducerModule::Directory();
    return environment;
  }
};

TEST_F(GevCtiTest, DevicesCarryTheGigERecord) {
  Testing::CFakeDevice device = MakeFakeDevice("gev0", "SN-standard");
  const GevDeviceRecord record = SampleRecord();
  device.typedInfo[kGevDeviceRecordCommand] = {
      GenTL::INFO_DATATYPE_BUFFER, std::string(reinterpret_cast<const char*>(record.data()), record.size())};
  m_fake.State().interfaces.push_back(MakeFakeInterface("if0", "GEV", {device}));
  CGevCti cti("TalvirFake.cti", Environment());
  ASSERT_TRUE(cti.Load());
  std::list<ICameraInfo*> records;
  cti.Discover(&records);
  ASSERT_EQ(records.size(), 1u);
  const ICameraInfo& info = *records.front();
  EXPECT_STREQ(info.GetDeviceID(), "GigE Model@00-11-22-AB-CD-EF[GS0001]##16777226##");
  EXPECT_STREQ(info.GetSerialNumber(), "GS0001");
  EXPECT_STREQ(info.GetCustomInfo(1), "192.168.1.20");
  EXPECT_STREQ(info.GetDisplayName(), "Display of gev0");
  EXPECT_EQ(info.GetTimestampFrequency(), 125000000u);
  records.front()->Destroy();
}

TEST_F(GevCtiTest, ADeviceWithoutTheGigERecordKeepsTheStandardFields) {
  m_fake.State().interfaces.push_back(MakeFakeInterface("if0", "GEV", {MakeFakeDevice("gev0", "SN-standard")}));
  CGevCti cti("TalvirFake.cti", Environment());
  ASSERT_TRUE(cti.Load());
  std::list<ICameraInfo*> records;
  cti.Discover(&records);
  ASSERT_EQ(records.size(), 1u);
  const ICameraInfo& info = *records.front();
  EXPECT_STREQ(info.GetDeviceID(), "gev0");
  EXPECT_STREQ(info.GetSerialNumber(), "SN-standard");
  for (uint32_t item = 1; item <= 7; ++item) {
    EXPECT_EQ(info.GetCustomInfo(item), nullptr) << item;
  }
  records.front()->Destroy();
}

// Another maker's producer means something else by 1001: the answer is no GigE record and must not become one.
void ExpectStandardFieldsOnly(const ICameraInfo& info) {
  EXPECT_STREQ(info.GetDeviceID(), "gev0");
  EXPECT_STREQ(info.GetVendor(), "Vendor of gev0");
  EXPECT_STREQ(info.GetModel(), "Model of gev0");
  EXPECT_STREQ(info.GetSerialNumber(), "SN-standard");
  EXPECT_STREQ(info.GetUserDefinedName(), "User of gev0");
  EXPECT_STREQ(info.GetVersion(), "Version of gev0");
  EXPECT_EQ(info.GetAccessStatus(), 5u);
  for (uint32_t item = 1; item <= 7; ++item) {
    EXPECT_EQ(info.GetCustomInfo(item), nullptr) << item;
  }
}

TEST_F(GevCtiTest, AnAnswerThatIsNotTheRecordLeavesTheStandardFields) {
  const GevDeviceRecord record = SampleRecord();
  const std::string wholeRecord(reinterpret_cast<const char*>(record.data()), record.size());
  const Testing::CFakeAnswer answers[] = {
      {GenTL::INFO_DATATYPE_PTR, std::string("\x10\x20\x30\x40\x50\x60\x70\x7f", 8)},
      {GenTL::INFO_DATATYPE_BUFFER, wholeRecord.substr(0, 419)},
      {GenTL::INFO_DATATYPE_STRING, wholeRecord},
      {GenTL::INFO_DATATYPE_PTR, wholeRecord},
  };
  for (const Testing::CFakeAnswer& answer : answers) {
    m_fake.State().Reset();
    Testing::CFakeDevice device = MakeFakeDevice("gev0", "SN-standard");
    device.typedInfo[kGevDeviceRecordCommand] = answer;
    m_fake.State().interfaces.push_back(MakeFakeInterface("if0", "GEV", {device}));
    CGevCti cti("TalvirFake.cti", Environment());
    ASSERT_TRUE(cti.Load());
    std::list<ICameraInfo*> records;
    cti.Discover(&records);
    ASSERT_EQ(records.size(), 1u);
    SCOPED_TRACE("type " + std::to_string(answer.type) + ", " + std::to_string(answer.bytes.size()) + " bytes");
    ExpectStandardFieldsOnly(*records.front());
    records.front()->Destroy();
    const CEnumerationReport report = cti.LastEnumeration();
    const auto ignored = std::find_if(report.notes.begin(), report.notes.end(), [](const DiscoveryNote& note) {
      return note.rule == DiscoveryRule::GigERecordIgnored;
    });
    ASSERT_NE(ignored, report.notes.end());
    EXPECT_EQ(ignored->deviceID, "gev0");
    EXPECT_EQ(ignored->interfaceID, "if0");
  }
}

TEST_F(GevCtiTest, TheExtraModuleIsFreedWithTheProducer) {
  m_fake.State().interfaces.push_back(MakeFakeInterface("if0", "GEV", {MakeFakeDevice("gev0", "SN")}));
  auto cti = std::make_unique<CGevCti>("TalvirFake.cti", Environment());
  EXPECT_EQ(cti->ExtraModule(), nullptr);
  EXPECT_EQ(cti->ExtraPointer(), nullptr);
  ASSERT_TRUE(cti->Load());
  const std::string extraPath = CFakeProducerModule::Directory() + "TalvirFakeNoInfo.cti";
  cti->SetExtraModule(Platform::LoadModule(extraPath));
  ASSERT_NE(cti->ExtraModule(), nullptr);
  // Mark the extra module's state: it survives only while the module stays loaded.
  auto stateOf = reinterpret_cast<Testing::PFN_TalvirFakeProducerState>(
      Platform::FindSymbol(cti->ExtraModule(), Testing::kFakeProducerStateSymbol));
  ASSERT_NE(stateOf, nullptr);
  stateOf()->updateDelayMs = 77;
  cti.reset();
  Platform::CDynamicModule reloaded(extraPath);
  auto freshStateOf = reloaded.Symbol<Testing::PFN_TalvirFakeProducerState>(Testing::kFakeProducerStateSymbol);
  ASSERT_NE(freshStateOf, nullptr);
  EXPECT_EQ(freshStateOf()->updateDelayMs, 0) << "the extra module was not unloaded with the producer";
}

}  // namespace
}  // namespace TALVIR
