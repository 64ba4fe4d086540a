#include "gentl/CameraInfo.h"

#include <talvir/TLType.h>

#include <gtest/gtest.h>

namespace TALVIR {
namespace {

CCti* const kProducerA = reinterpret_cast<CCti*>(uintptr_t{0x10});
CCti* const kProducerB = reinterpret_cast<CCti*>(uintptr_t{0x20});

// Records live on the heap and go through Destroy, as in the library.
struct CRecordDeleter {
  void operator()(CCameraInfo* record) const { record->Destroy(); }
};
using RecordPtr = std::unique_ptr<CCameraInfo, CRecordDeleter>;

RecordPtr MakeRecord(CCti* producer, uint32_t tlType) {
  RecordPtr record(new CCameraInfo(producer, nullptr));
  record->m_tlType = tlType;
  record->m_deviceID = "dev";
  record->m_serialNumber = "SN";
  record->m_vendor = "V";
  record->m_model = "M";
  return record;
}

TEST(CameraInfo, GettersReturnTheRecordsFields) {
  RecordPtr record = MakeRecord(kProducerA, TLType::U3V);
  record->m_accessStatus = 4;
  record->m_displayName = "display";
  record->m_userDefinedName = "user";
  record->m_version = "2.1";
  record->m_timestampFrequency = 1000000000ull * 3;
  const ICameraInfo& info = *record;
  EXPECT_EQ(info.GetTLType(), TLType::U3V);
  EXPECT_EQ(info.GetAccessStatus(), 4u);
  EXPECT_STREQ(info.GetDeviceID(), "dev");
  EXPECT_STREQ(info.GetSerialNumber(), "SN");
  EXPECT_STREQ(info.GetVendor(), "V");
  EXPECT_STREQ(info.GetModel(), "M");
  EXPECT_STREQ(info.GetDisplayName(), "display");
  EXPECT_STREQ(info.GetUserDefinedName(), "user");
  EXPECT_STREQ(info.GetVersion(), "2.1");
  EXPECT_EQ(info.GetTimestampFrequency(), 3000000000ull);
  EXPECT_EQ(record->Producer(), kProducerA);
}

TEST(CameraInfo, CustomInfoIsNullForAMissingItem) {
  RecordPtr record = MakeRecord(kProducerA, TLType::CL);
  EXPECT_EQ(record->GetCustomInfo(21), nullptr);
  record->m_customInfo[21] = "";
  ASSERT_NE(record->GetCustomInfo(21), nullptr);
  EXPECT_STREQ(record->GetCustomInfo(21), "");
  EXPECT_EQ(record->GetCustomInfo(22), nullptr);
}

TEST(CameraInfo, EqualRecordsOfOneProducer) {
  RecordPtr a = MakeRecord(kProducerA, TLType::U3V);
  RecordPtr b = MakeRecord(kProducerA, TLType::U3V);
  EXPECT_TRUE(SameDevice(*a, b.get()));
  // Items other than the GigE ones do not matter.
  b->m_customInfo[10] = "different";
  b->m_displayName = "other";
  EXPECT_TRUE(SameDevice(*a, b.get()));
}

TEST(CameraInfo, EachIdentifyingFieldBreaksEquality) {
  RecordPtr a = MakeRecord(kProducerA, TLType::U3V);
  EXPECT_FALSE(SameDevice(*a, nullptr));
  EXPECT_FALSE(SameDevice(*a, MakeRecord(kProducerB, TLType::U3V).get()));
  EXPECT_FALSE(SameDevice(*a, MakeRecord(kProducerA, TLType::CXP).get()));
  RecordPtr b = MakeRecord(kProducerA, TLType::U3V);
  b->m_deviceID = "dev2";
  EXPECT_FALSE(SameDevice(*a, b.get()));
  b = MakeRecord(kProducerA, TLType::U3V);
  b->m_serialNumber = "sn";
  EXPECT_FALSE(SameDevice(*a, b.get()));
  b = MakeRecord(kProducerA, TLType::U3V);
  b->m_vendor = "V ";
  EXPECT_FALSE(SameDevice(*a, b.get()));
  b = MakeRecord(kProducerA, TLType::U3V);
  b->m_model = "m";
  EXPECT_FALSE(SameDevice(*a, b.get()));
}

TEST(CameraInfo, GigEAlsoComparesTheAddressItems) {
  RecordPtr a = MakeRecord(kProducerA, TLType::GEV);
  RecordPtr b = MakeRecord(kProducerA, TLType::GEV);
  EXPECT_TRUE(SameDevice(*a, b.get()));
  a->m_customInfo[CustomInfo::GevIPAddress] = "192.168.0.2";
  EXPECT_FALSE(SameDevice(*a, b.get()));
  b->m_customInfo[CustomInfo::GevIPAddress] = "192.168.0.2";
  EXPECT_TRUE(SameDevice(*a, b.get()));
  a->m_customInfo[CustomInfo::GevMACAddress] = "00:11:22:33:44:55";
  b->m_customInfo[CustomInfo::GevMACAddress] = "00:11:22:33:44:56";
  EXPECT_FALSE(SameDevice(*a, b.get()));
  b->m_customInfo[CustomInfo::GevMACAddress] = "00:11:22:33:44:55";
  a->m_customInfo[CustomInfo::GevAddress6] = "10.0.0.1";
  b->m_customInfo[CustomInfo::GevAddress6] = "10.0.0.2";
  EXPECT_FALSE(SameDevice(*a, b.get()));
  b->m_customInfo[CustomInfo::GevAddress6] = "10.0.0.1";
  // Other GigE items do not take part.
  b->m_customInfo[CustomInfo::GevAddress7] = "1.2.3.4";
  EXPECT_TRUE(SameDevice(*a, b.get()));
}

TEST(CameraInfo, ASerialPortOnlyRecordEqualsNothing) {
  RecordPtr a = MakeRecord(kProducerA, TLType::CLSerialOnly);
  RecordPtr b = MakeRecord(kProducerA, TLType::CLSerialOnly);
  EXPECT_FALSE(SameDevice(*a, b.get()));
  EXPECT_FALSE(SameDevice(*a, a.get()));
}

// An ICameraInfo that no producer of ours made.
class CForeignInfo final : public ICameraInfo {
public:
  uint32_t GetTLType() const override { return TLType::U3V; }
  uint32_t GetAccessStatus() const override { return 0; }
  const char* GetDeviceID() const override { return "dev"; }
  const char* GetSerialNumber() const override { return "SN"; }
  const char* GetVendor() const override { return "V"; }
  const char* GetModel() const override { return "M"; }
  const char* GetDisplayName() const override { return ""; }
  const char* GetUserDefinedName() const override { return ""; }
  const char* GetVersion() const override { return ""; }
  uint64_t GetTimestampFrequency() const override { return 0; }
  const char* GetCustomInfo(uint32_t) const override { return nullptr; }
  void Destroy() override {}
};

TEST(CameraInfo, AForeignRecordIsNeverEqual) {
  RecordPtr a = MakeRecord(kProducerA, TLType::U3V);
  CForeignInfo foreign;
  EXPECT_FALSE(SameDevice(*a, &foreign));
}

}  // namespace
}  // namespace TALVIR
