// The Camera Link camera without hardware: how many buffers it announces, how it reads the grabber's geometry, the
// access flags it opens with, the blank camera the registry makes for serial-port cameras, and the device record of
// a serial-port camera.
#include "cl/CLCamera.h"
#include "cl/CLGrabberGeometry.h"
#include "cl/CLSerialDiscovery.h"

#include "camera/CameraRegistry.h"
#include "gentl/CameraInfo.h"

#include <talvir/CameraTypes.h>
#include <talvir/CustomInfo.h>
#include <talvir/TLType.h>

#include <GenApi/GenApi.h>
#include <GenTL/GenTL.h>

#include <gtest/gtest.h>

#include <cstring>

namespace TALVIR {
namespace {

constexpr uint64_t kMiB = 1024 * 1024;

TEST(CLCameraAnnounceCount, HalfAGigabyteOfBuffersBetweenFourAndEightThousand) {
  EXPECT_EQ(CCLCamera::AnnounceCountFor(kMiB), 512u);
  EXPECT_EQ(CCLCamera::AnnounceCountFor(64 * kMiB), 8u);
  EXPECT_EQ(CCLCamera::AnnounceCountFor(1024 * kMiB), 4u);
  EXPECT_EQ(CCLCamera::AnnounceCountFor(16 * 1024), 8000u);
  EXPECT_EQ(CCLCamera::AnnounceCountFor(200 * kMiB), 4u);
  EXPECT_EQ(CCLCamera::AnnounceCountFor(3 * kMiB), 170u);
  // Callers never pass 0; a division by it must still not happen.
  EXPECT_EQ(CCLCamera::AnnounceCountFor(0), 4u);
}

TEST(CLCameraAnnounceCount, TheApplicationsBufferCountWins) {
  auto* camera = new CCLCamera(nullptr, nullptr);
  camera->SetBufferCount(3);
  EXPECT_EQ(camera->GetAnnounceCount(), 3u);
  camera->SetBufferCount(0);
  // No acquisition has fixed a payload size: the smallest count.
  EXPECT_EQ(camera->GetAnnounceCount(), 4u);
  camera->Release();
}

TEST(CLCameraAccess, AnyOtherModeThanControlOrReadOnlyOpensExclusively) {
  EXPECT_EQ(CCamera::AccessFlagsOf(AccessMode::Control), GenTL::DEVICE_ACCESS_CONTROL);
  EXPECT_EQ(CCamera::AccessFlagsOf(AccessMode::ReadOnly), GenTL::DEVICE_ACCESS_READONLY);
  EXPECT_EQ(CCamera::AccessFlagsOf(AccessMode::Exclusive), GenTL::DEVICE_ACCESS_EXCLUSIVE);
  EXPECT_EQ(CCamera::AccessFlagsOf(7), GenTL::DEVICE_ACCESS_EXCLUSIVE);
}

// A grabber's node map with constant features.
class CGrabberMap {
public:
  explicit CGrabberMap(const std::string& features) {
    m_map._LoadXMLFromString(R"(<RegisterDescription ModelName="G" VendorName="V" StandardNameSpace="None"
        SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0"
        SubMinorVersion="0" ProductGuid="00000000-0000-0000-0000-000000000001"
        VersionGuid="00000000-0000-0000-0000-000000000002" xmlns="http://www.genicam.org/GenApi/Version_1_1">)" +
                             features + "</RegisterDescription>");
  }
  GenApi::INodeMap& Map() { return *static_cast<GenApi::INodeMap*>(m_map); }

private:
  GenApi::CNodeMapRef m_map{"Device"};
};

const std::string kWidth = R"(<Integer Name="Width"><Value>640</Value></Integer>)";
const std::string kHeight = R"(<Integer Name="Height"><Value>10</Value></Integer>)";

TEST(CLGrabberGeometry, AGrabberWithoutPixelFormatIsSizedAsEightBitMonochrome) {
  CGrabberMap grabber(kWidth + kHeight);
  SGrabberGeometry geometry;
  ASSERT_TRUE(ReadGrabberGeometry(grabber.Map(), geometry));
  EXPECT_EQ(geometry.width, 640u);
  EXPECT_EQ(geometry.height, 10u);
  EXPECT_EQ(geometry.pixelFormat, 0x01080001u);
  EXPECT_EQ(geometry.PayloadSize(), 6400u);
}

TEST(CLGrabberGeometry, ThePixelFormatSizesTheImage) {
  CGrabberMap grabber(kWidth + kHeight + R"(<Enumeration Name="PixelFormat">
      <EnumEntry Name="Mono16"><Value>0x01100007</Value></EnumEntry><Value>0x01100007</Value></Enumeration>)");
  SGrabberGeometry geometry;
  ASSERT_TRUE(ReadGrabberGeometry(grabber.Map(), geometry));
  EXPECT_EQ(geometry.pixelFormat, 0x01100007u);
  EXPECT_EQ(geometry.PayloadSize(), 12800u);
}

TEST(CLGrabberGeometry, AMissingOrEmptySideIsNoGeometry) {
  SGrabberGeometry geometry;
  geometry.width = 7;
  CGrabberMap noHeight(kWidth);
  EXPECT_FALSE(ReadGrabberGeometry(noHeight.Map(), geometry));
  EXPECT_EQ(geometry.width, 7u) << "a failed read changes nothing";
  CGrabberMap zero(kWidth + R"(<Integer Name="Height"><Value>0</Value></Integer>)");
  EXPECT_FALSE(ReadGrabberGeometry(zero.Map(), geometry));
  CGrabberMap wrongType(kWidth + R"(<Float Name="Height"><Value>10</Value></Float>)");
  EXPECT_FALSE(ReadGrabberGeometry(wrongType.Map(), geometry));
}

CLProbeRecord Probe(const char* port, const char* extra) {
  CLProbeRecord probe{};
  std::strcpy(probe.portId, port);
  std::strcpy(probe.deviceId, "/lib/CLProtocol/Linux64_x64#libTavCLProtocolGenCP.so#KORIX#GENCP02");
  std::strcpy(probe.manufacturer, "Korix");
  std::strcpy(probe.family, "KXCL");
  std::strcpy(probe.model, "KX-CL2048");
  std::strcpy(probe.version, "1.4.2");
  std::strcpy(probe.serialNumber, "SN42");
  std::strcpy(probe.extra, extra);
  return probe;
}

TEST(CLSerialRecord, CarriesTheProbeAndWhatOpenSerialNeeds) {
  const CLProbeRecord probe = Probe("COM_Port#/dev/ttyUSB0", "left");
  CCameraInfo* record = MakeCLSerialRecord(probe);
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->GetTLType(), TLType::CLSerialOnly);
  EXPECT_STREQ(record->GetVendor(), "Korix");
  EXPECT_STREQ(record->GetModel(), "KX-CL2048");
  EXPECT_STREQ(record->GetVersion(), "1.4.2");
  EXPECT_STREQ(record->GetSerialNumber(), "SN42");
  EXPECT_STREQ(record->GetUserDefinedName(), "left");
  EXPECT_STREQ(record->GetDeviceID(), probe.deviceId);
  EXPECT_STREQ(record->GetCustomInfo(CustomInfo::CLGrabberSerialPort), "COM_Port#/dev/ttyUSB0");
  EXPECT_STREQ(record->GetCustomInfo(CustomInfo::CLProtocolDescriptor), probe.deviceId);
  EXPECT_STREQ(record->GetCustomInfo(CustomInfo::CLSerialFamily), "KXCL");
  EXPECT_EQ(record->Producer(), nullptr);
  EXPECT_FALSE(SameDevice(*record, record)) << "serial-port records never equal anything";
  record->Destroy();
}

class CLBlankCameraTest : public ::testing::Test {
protected:
  // No helper library, no USB3 Vision producer.
  CCameraRegistry m_registry{"no-such-helper.so", "no-such-producer.cti"};
};

TEST_F(CLBlankCameraTest, WithoutTheFactoryNoSerialOnlyCameraIsMade) {
  CCameraInfo record(nullptr, nullptr);
  record.m_tlType = TLType::CLSerialOnly;
  EXPECT_EQ(m_registry.CreateCamera(&record), nullptr);
  EXPECT_EQ(m_registry.CreateSerialOnlyCamera(), nullptr);
  EXPECT_EQ(m_registry.CameraCount(), 0u);
}

TEST_F(CLBlankCameraTest, ASerialOnlyRecordGivesANewBlankCameraEachTime) {
  m_registry.SetCameraLinkFactory(&MakeCLCamera);
  CCameraInfo* record = MakeCLSerialRecord(Probe("COM_Port#/dev/ttyUSB0", ""));
  ICamera* first = m_registry.CreateCamera(record);
  ICamera* second = m_registry.CreateCamera(record);
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_NE(first, second);
  EXPECT_EQ(m_registry.CameraCount(), 2u);
  EXPECT_NE(dynamic_cast<CCLCamera*>(first), nullptr);
  // The record given is not attached: the camera has its own, empty one.
  ASSERT_NE(first->GetCameraInfo(), nullptr);
  EXPECT_NE(first->GetCameraInfo(), record);
  EXPECT_EQ(first->GetCameraInfo()->GetTLType(), TLType::CLSerialOnly);
  EXPECT_STREQ(first->GetCameraInfo()->GetSerialNumber(), "");
  EXPECT_EQ(record->ReferenceCount(), 1u);
  record->Destroy();

  // Without a grabber it serves the serial link only.
  EXPECT_EQ(first->Open(AccessMode::Control), Status::NoProducer);
  EXPECT_FALSE(first->IsOpen());
  EXPECT_FALSE(first->IsOnline());
  EXPECT_FALSE(first->IsSerialOnline());
  EXPECT_EQ(first->GetRemoteXml(), nullptr);
  EXPECT_EQ(first->GetDeviceXml(), nullptr);
  EXPECT_EQ(first->StartGrabbing(GrabMode::Direct, 0), -2);
  EXPECT_EQ(first->OpenSerial(nullptr, nullptr), -1) << "no link to close";
  EXPECT_EQ(first->OpenSerial("COM_Port#/x", nullptr), -1);
  first->Release();
  EXPECT_EQ(m_registry.CameraCount(), 1u);
  // The second is released by the registry.
}

}  // namespace
}  // namespace TALVIR
