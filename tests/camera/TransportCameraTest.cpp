// The transport cameras: GigE Vision producer set-up, helper-library pushes, statistics and device-lost reports;
// USB3 Vision device-lost reports; the classes the registry makes.
#include "SimRig.h"

#include "camera/GevCamera.h"
#include "camera/HelperLibrary.h"
#include "camera/U3vCamera.h"
#include "platform/DynamicModule.h"
#include "platform/Network.h"

#include <talvirsim/HelperLibrarySim.h>

#include <gtest/gtest.h>

#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>

namespace TALVIR {
namespace {

using Testing::CSimRig;
using Testing::SImageGuard;

// The simulated helper library the registry loaded (the same file, so the same module).
class CHelperProbe {
public:
  CHelperProbe() : m_module(std::string(TALVIR_BIN_DIR) + "/" + Testing::ModuleFileName("VendraLib")) {
    if (!m_module.IsLoaded()) {
      throw std::runtime_error("the simulated helper library is missing");
    }
    m_count = m_module.Symbol<decltype(&HelperSimPushCount)>("HelperSimPushCount");
    m_get = m_module.Symbol<decltype(&HelperSimGetPush)>("HelperSimGetPush");
    m_clear = m_module.Symbol<decltype(&HelperSimClearPushes)>("HelperSimClearPushes");
    m_report = m_module.Symbol<decltype(&HelperSimReportStatus)>("HelperSimReportStatus");
    m_wait = m_module.Symbol<decltype(&HelperSimWaitReports)>("HelperSimWaitReports");
    m_clear();
  }
  // The last value pushed by each function for `address`.
  std::map<std::string, double> Pushes(uint32_t address) const {
    std::map<std::string, double> last;
    for (uint32_t i = 0; i < m_count(); ++i) {
      SHelperPush push{};
      if (m_get(i, &push) && push.address == address) {
        last[push.function] = push.value;
      }
    }
    return last;
  }
  uint32_t Count() const { return m_count(); }
  void Clear() const { m_clear(); }
  void ReportAndWait(uint32_t address, bool online) const {
    m_report(address, online);
    m_wait();
  }

private:
  Platform::CDynamicModule m_module;
  decltype(&HelperSimPushCount) m_count = nullptr;
  decltype(&HelperSimGetPush) m_get = nullptr;
  decltype(&HelperSimClearPushes) m_clear = nullptr;
  decltype(&HelperSimReportStatus) m_report = nullptr;
  decltype(&HelperSimWaitReports) m_wait = nullptr;
};

// Counts device-lost notifications and remembers the thread they came on.
class CLossHandler final : public ICameraHandler {
public:
  void OnNotify(uint32_t code, uint64_t, uint64_t) override {
    if (m_action) {
      m_action();
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    m_codes.push_back(code);
    m_thread = std::this_thread::get_id();
    m_arrived.notify_all();
  }
  bool WaitFor(size_t count) {
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_arrived.wait_for(lock, std::chrono::seconds(5), [&] { return m_codes.size() >= count; });
  }
  size_t Count() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_codes.size();
  }
  std::thread::id Thread() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_thread;
  }
  std::function<void()> m_action;

private:
  std::mutex m_mutex;
  std::condition_variable m_arrived;
  std::vector<uint32_t> m_codes;
  std::thread::id m_thread;
};

uint32_t AddressOf(ICamera& camera) {
  uint32_t address = 0;
  EXPECT_TRUE(Platform::ParseIPv4(camera.GetCameraInfo()->GetCustomInfo(CustomInfo::GevIPAddress), address));
  return address;
}

uint32_t ReadDeviceRegister(CCamera& camera, uint64_t address, size_t size) {
  uint32_t value = 0;
  camera.DevicePort()->Read(&value, static_cast<int64_t>(address), static_cast<int64_t>(size));
  return value;
}

TEST(TransportCamera, TheRegistryMakesTheClassOfEachTransport) {
  {
    CSimRig rig("TalvirSimGEVTL.cti");
    EXPECT_NE(dynamic_cast<CGevCamera*>(rig.Camera(0)), nullptr);
  }
  {
    CSimRig rig("U3VTLTAV.cti");
    EXPECT_NE(dynamic_cast<CU3VCamera*>(rig.Camera(0)), nullptr);
  }
  for (const char* producer : {"TalvirSimCXP.cti", "TalvirSim.cti"}) {
    CSimRig rig(producer);
    CCamera* camera = rig.Camera(0);
    EXPECT_EQ(dynamic_cast<CGevCamera*>(camera), nullptr);
    EXPECT_EQ(dynamic_cast<CU3VCamera*>(camera), nullptr);
  }
}

TEST(TransportCamera, OpeningAGigECameraTunesItsProducer) {
  CSimRig rig("TalvirSimGEVTL.cti", R"({ "interfaces": [ { "devices": [
      { "packetSizeMin": 600, "packetSizeMax": 8000, "packetSizeInc": 1, "packetSize": 1500 } ] } ] })");
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  EXPECT_EQ(ReadDeviceRegister(*camera, 0x228, 2), 600u);
  EXPECT_EQ(ReadDeviceRegister(*camera, 0x22C, 2), 8000u);
  EXPECT_EQ(ReadDeviceRegister(*camera, 0x230, 2), 4u) << "an increment of 1 is given as 4";
  EXPECT_EQ(ReadDeviceRegister(*camera, 0x24, 4), 0x430u);
  GenApi::INodeMap* producerFeatures = camera->GetDeviceXml()->GetNodeMap();
  GenApi::CBooleanPtr resend(producerFeatures->GetNode("EnablePacketResend"));
  GenApi::CBooleanPtr filter(producerFeatures->GetNode("EnableFilterDriver"));
  GenApi::CIntegerPtr timeout(producerFeatures->GetNode("ImageTimeout"));
  EXPECT_TRUE(resend->GetValue(true, true));
  EXPECT_TRUE(filter->GetValue(true, true));
  EXPECT_EQ(timeout->GetValue(true, true), 2000);
  EXPECT_TRUE(camera->IsOnline());
}

TEST(TransportCamera, EveryStartPushesTheAreaCamerasSettingsToTheHelper) {
  CHelperProbe helper;
  CSimRig rig("TalvirSimGEVTL.cti",
              R"({ "interfaces": [ { "devices": [ { "frameRate": 40, "exposureTime": 2500 } ] } ] })");
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  CSimRig::SetInteger(*camera, "GevSCPD", 1234);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  const std::map<std::string, double> pushes = helper.Pushes(AddressOf(*camera));
  EXPECT_EQ(pushes.at("SetCameraScanType"), 0.0);
  EXPECT_EQ(pushes.at("SetCameraTriggerSelector"), 0.0);
  EXPECT_FLOAT_EQ(static_cast<float>(pushes.at("SetCameraFrameRate")), 40.0f);
  EXPECT_FLOAT_EQ(static_cast<float>(pushes.at("SetCameraExposureTime")), 2500.0f);
  EXPECT_EQ(pushes.at("SetCameraSCPD"), 1234.0);
  EXPECT_EQ(pushes.size(), 5u);
}

TEST(TransportCamera, ALineStartTriggerIsPushedAndTheSelectorRestored) {
  CHelperProbe helper;
  CSimRig rig("TalvirSimGEVTL.cti");
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  CSimRig::SetEnum(*camera, "TriggerSelector", "LineStart");
  CSimRig::SetEnum(*camera, "TriggerMode", "On");
  CSimRig::SetEnum(*camera, "TriggerSelector", "FrameStart");
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  EXPECT_EQ(helper.Pushes(AddressOf(*camera)).at("SetCameraTriggerSelector"), 1.0);
  GenApi::CEnumerationPtr selector(CSimRig::Features(*camera).GetNode("TriggerSelector"));
  EXPECT_EQ(std::string(selector->ToString(true, true).c_str()), "FrameStart");
}

TEST(TransportCamera, ALineScanCameraPushesItsLineRateOverItsHeight) {
  CHelperProbe helper;
  CSimRig rig("TalvirSimGEVTL.cti", R"({ "interfaces": [ { "devices": [
      { "lineScan": true, "lineRate": 20000, "sensorHeight": 1000, "height": 1000, "exposureTime": 10 } ] } ] })");
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  const std::map<std::string, double> pushes = helper.Pushes(AddressOf(*camera));
  EXPECT_EQ(pushes.at("SetCameraScanType"), 1.0);
  EXPECT_FLOAT_EQ(static_cast<float>(pushes.at("SetCameraFrameRate")), 20.0f);
}

TEST(TransportCamera, WithoutTheHelperLibraryCamerasOpenAndGrabAndNothingIsPushed) {
  CHelperProbe helper;
  CSimRig rig("TalvirSimGEVTL.cti", "", "NoSuchHelper.dll");
  EXPECT_TRUE(rig.Registry().HelperName().empty());
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Newest, 0), Status::Ok);
  SImageGuard image;
  EXPECT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
  EXPECT_EQ(helper.Count(), 0u);
}

TEST(TransportCamera, StatisticsCountEveryFetchAndStartClearsThem) {
  CSimRig rig("TalvirSimGEVTL.cti", R"({ "interfaces": [ { "devices": [
      { "width": 64, "height": 64, "frameRate": 0, "bufferAnnounceMin": 2, "faults": { "incompleteEveryN": 4 } } ] } ] })");
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  uint64_t bytes = 0;
  uint64_t packets[3] = {};
  int complete = 0;
  int incomplete = 0;
  for (int i = 0; i < 12; ++i) {
    SImageGuard image;
    const int32_t result = camera->GetImage(&image.image, 2000);
    ASSERT_NE(image.image, nullptr);
    bytes += image.image->GetBufferSize();
    packets[0] += image.image->GetCustomInfo1();
    packets[1] += image.image->GetCustomInfo2();
    packets[2] += image.image->GetCustomInfo3();
    (result == Status::Ok ? complete : incomplete) += 1;
  }
  const STransportInfo info = camera->GetTransportInfo();
  EXPECT_EQ(info.frames, static_cast<uint64_t>(complete));
  EXPECT_EQ(info.timeouts, static_cast<uint32_t>(incomplete));
  EXPECT_EQ(incomplete, 3);
  EXPECT_EQ(info.bytesTotal, bytes);
  EXPECT_EQ(info.packetCounter1, packets[0]);
  EXPECT_EQ(info.packetCounter2, packets[1]);
  EXPECT_EQ(info.packetCounter3, packets[2]);
  EXPECT_GT(packets[0], 0u);
  camera->StopGrabbing();
  EXPECT_EQ(camera->GetTransportInfo().frames, info.frames) << "kept until the next start";
  // A start that fails in the common part (too few buffers for the producer) still clears the figures.
  camera->SetBufferCount(1);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::StartStreamFailed);
  EXPECT_EQ(camera->GetTransportInfo().frames, 0u);
  EXPECT_EQ(camera->GetTransportInfo().bytesTotal, 0u);
  EXPECT_EQ(camera->GetTransportInfo().timeouts, 0u);
}

TEST(TransportCamera, StartReadsThePartialImagePolicyAndPixelByteOrder) {
  CSimRig rig("TalvirSimGEVTL.cti", R"({ "interfaces": [ { "devices": [ {}, { "pixelBigEndianNode": true } ] } ] })");
  auto* plain = dynamic_cast<CGevCamera*>(rig.Camera(0));
  ASSERT_EQ(plain->Open(AccessMode::Control), Status::Ok);
  CSimRig::SetEnum(*plain, "PartialImageOutputMode", "PartialImageFilled");
  ASSERT_EQ(plain->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  EXPECT_EQ(plain->StoredPartialImageMode(), PartialImageMode::Filled);
  EXPECT_TRUE(plain->GetImageFillFlag()) << "without pgrPixelBigEndian pixels count as big-endian";
  EXPECT_EQ(plain->StoredWidth(), 640u);
  plain->StopGrabbing();
  CSimRig::SetEnum(*plain, "PartialImageOutputMode", "PartialImageDiscard");
  ASSERT_EQ(plain->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  EXPECT_EQ(plain->StoredPartialImageMode(), PartialImageMode::Discard);

  auto* flagged = dynamic_cast<CGevCamera*>(rig.Camera(1));
  ASSERT_EQ(flagged->Open(AccessMode::Control), Status::Ok);
  ASSERT_EQ(flagged->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  GenApi::CBooleanPtr bigEndian(CSimRig::Features(*flagged).GetNode("pgrPixelBigEndian"));
  EXPECT_TRUE(bigEndian->GetValue(true, true)) << "set at start";
  EXPECT_TRUE(flagged->GetImageFillFlag());
}

TEST(TransportCamera, AGigELossNotifiesOnceOnTheHelpersThreadAndReopeningReconnects) {
  CHelperProbe helper;
  CSimRig rig("TalvirSimGEVTL.cti");
  CCamera* camera = rig.Camera(0);
  CLossHandler handler;
  camera->SetHandler(&handler);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  EXPECT_TRUE(camera->IsOnline());
  const uint32_t address = AddressOf(*camera);
  helper.ReportAndWait(address, true);
  EXPECT_EQ(handler.Count(), 0u) << "a device coming back is not acted on";
  uint32_t other = 0;
  ASSERT_TRUE(Platform::ParseIPv4("10.9.8.7", other));
  helper.ReportAndWait(other, false);
  EXPECT_EQ(handler.Count(), 0u) << "an address that no camera has";
  helper.ReportAndWait(address, false);
  helper.ReportAndWait(address, false);
  EXPECT_EQ(handler.Count(), 1u) << "two losses notify once";
  EXPECT_NE(handler.Thread(), std::this_thread::get_id());
  EXPECT_FALSE(camera->IsOnline());
  camera->Close();
  EXPECT_FALSE(camera->IsOnline()) << "closing does not reconnect";
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  EXPECT_TRUE(camera->IsOnline());
  helper.ReportAndWait(address, false);
  EXPECT_EQ(handler.Count(), 2u);
  camera->SetHandler(nullptr);
}

TEST(TransportCamera, ALossDuringGetImageInEveryModeMayCreateAndReleaseCameras) {
  CHelperProbe helper;
  for (uint32_t mode : {GrabMode::Direct, GrabMode::Newest, GrabMode::Fresh}) {
    CSimRig rig("TalvirSimGEVTL.cti");
    CCamera* camera = rig.Camera(0);
    CLossHandler handler;
    // From inside the notification: make the other camera and release it again (the registry is held).
    handler.m_action = [&rig] {
      if (CCamera* other = rig.Camera(1)) {
        other->Release();
      }
    };
    camera->SetHandler(&handler);
    ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
    CSimRig::SetEnum(*camera, "TriggerMode", "On");
    ASSERT_EQ(camera->StartGrabbing(mode, 0), Status::Ok);
    std::atomic<bool> fetching{false};
    std::thread fetcher([&] {
      fetching = true;
      SImageGuard image;
      camera->GetImage(&image.image, 300);
    });
    while (!fetching.load()) {
      std::this_thread::yield();
    }
    helper.ReportAndWait(AddressOf(*camera), false);
    fetcher.join();
    EXPECT_EQ(handler.Count(), 1u);
    EXPECT_EQ(rig.Registry().CameraCount(), 1u);
    camera->SetHandler(nullptr);
  }
}

TEST(TransportCamera, AUsb3VisionLossReachesTheCameraOnce) {
  CSimRig rig("U3VTLTAV.cti");
  ASSERT_FALSE(rig.Registry().U3vProducerName().empty());
  CCamera* camera = rig.Camera(0);
  CLossHandler handler;
  camera->SetHandler(&handler);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  EXPECT_TRUE(camera->IsOnline());
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Newest, 0), Status::Ok);
  CSimRig::Execute(*camera, "SimDeviceLost");
  ASSERT_TRUE(handler.WaitFor(1));
  EXPECT_NE(handler.Thread(), std::this_thread::get_id());
  EXPECT_FALSE(camera->IsOnline());
  // The direct report of the registry's handler for the same device changes nothing more.
  CCameraRegistry::OnU3vStatus(camera->GetCameraInfo()->GetSerialNumber(), false);
  EXPECT_EQ(handler.Count(), 1u);
  camera->SetHandler(nullptr);
}

TEST(TransportCamera, ReleasingTheLibraryReleasesEveryCameraStillOpen) {
  CSimRig rig("TalvirSimGEVTL.cti");
  for (size_t index : {0u, 1u}) {
    ASSERT_EQ(rig.Camera(index)->Open(AccessMode::Control), Status::Ok);
    ASSERT_EQ(rig.Camera(index)->StartGrabbing(index == 0 ? GrabMode::Newest : GrabMode::Direct, 0), Status::Ok);
  }
  EXPECT_EQ(rig.Registry().CameraCount(), 2u);
  rig.CloseManager();  // the leak checker sees whether both were freed
  // A report after the library is gone finds no registry and does nothing.
  CCameraRegistry::OnGevStatus(0x0B4DA8C0, false);
  CCameraRegistry::OnU3vStatus("GEV00001", false);
}

}  // namespace
}  // namespace TALVIR

namespace TALVIR {
namespace {

TEST(TransportCameraEndToEnd, AGigEDeviceLostInTheSimulatorReachesTheCameraThroughTheHelper) {
  Testing::CSimRig rig("TalvirSimGEVTL.cti");
  CCamera* camera = rig.Camera(1);
  CLossHandler handler;
  camera->SetHandler(&handler);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Newest, 0), Status::Ok);
  Testing::CSimRig::Execute(*camera, "SimDeviceLost");
  ASSERT_TRUE(handler.WaitFor(1)) << "producer -> helper library -> status handler -> notification";
  EXPECT_FALSE(camera->IsOnline());
  camera->Close();
  EXPECT_EQ(handler.Count(), 1u);
  camera->SetHandler(nullptr);
}

}  // namespace
}  // namespace TALVIR
