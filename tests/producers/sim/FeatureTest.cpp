// The camera description driven through the project's node-map engine over the producer's remote port: what a
// consumer's feature access does, end to end.
#include "SimModule.h"
#include "talvirsim/SimRegisters.h"

#include <GCBase/GCException.h>
#include <GenApi/GenApi.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace TalvirSimTest;
using namespace GenApi;
namespace R = TalvirSim::Remote;

namespace {

// Forwards register access to a GenTL port, as a consumer's port does.
class CGenTLPort : public CPortImpl {
public:
  CGenTLPort(const SGenTL& fn, PORT_HANDLE port) : m_fn(fn), m_port(port) {}
  EAccessMode GetAccessMode() const override { return RW; }
  void Read(void* buffer, int64_t address, int64_t length) override {
    size_t size = static_cast<size_t>(length);
    if (m_fn.GCReadPort(m_port, static_cast<uint64_t>(address), buffer, &size) != GC_ERR_SUCCESS) {
      throw GENERIC_EXCEPTION("Read address %#llx failure", static_cast<unsigned long long>(address));
    }
  }
  void Write(const void* buffer, int64_t address, int64_t length) override {
    size_t size = static_cast<size_t>(length);
    if (m_fn.GCWritePort(m_port, static_cast<uint64_t>(address), buffer, &size) != GC_ERR_SUCCESS) {
      throw GENERIC_EXCEPTION("Write address %#llx failure", static_cast<unsigned long long>(address));
    }
  }

private:
  const SGenTL& m_fn;
  PORT_HANDLE m_port;
};

std::string Description(const SGenTL& fn, PORT_HANDLE port) {
  size_t size = 0;
  fn.GCGetPortURL(port, nullptr, &size);
  std::string url(size, '\0');
  fn.GCGetPortURL(port, url.data(), &size);
  const size_t first = url.find(';');
  const size_t second = url.find(';', first + 1);
  const uint64_t address = std::stoull(url.substr(first + 1, second - first - 1), nullptr, 16);
  const uint64_t length = std::stoull(url.substr(second + 1), nullptr, 16);
  std::string xml(length, '\0');
  size = xml.size();
  fn.GCReadPort(port, address, xml.data(), &size);
  return xml;
}

// A module, its first device, and node maps over the remote port and the device module.
struct SFeatures {
  explicit SFeatures(const std::string& name = "TalvirSim.cti", const std::string& json = "")
      : module("TalvirSim.cti", name, json) {
    if (module.Init() != GC_ERR_SUCCESS) {
      return;
    }
    device = std::make_unique<SOpenDevice>(module.fn);
    if (!device->ok) {
      return;
    }
    remotePort = std::make_unique<CGenTLPort>(module.fn, device->port);
    remote._LoadXMLFromString(Description(module.fn, device->port).c_str());
    remote._Connect(remotePort.get(), "Device");
    devicePort = std::make_unique<CGenTLPort>(module.fn, device->device);
    deviceMap._LoadXMLFromString(Description(module.fn, device->device).c_str());
    deviceMap._Connect(devicePort.get(), "TLPort");
    ok = true;
  }
  INode* Node(const char* name) const { return remote._GetNode(name); }
  CSimModule module;
  std::unique_ptr<SOpenDevice> device;
  std::unique_ptr<CGenTLPort> remotePort;
  std::unique_ptr<CGenTLPort> devicePort;
  CNodeMapRef remote;
  CNodeMapRef deviceMap{"TLDevice"};
  bool ok = false;
};

}  // namespace

TEST(SimFeatures, IdentificationAndImageFormat) {
  SFeatures f;
  ASSERT_TRUE(f.ok);
  CStringPtr model = f.Node("DeviceModelName");
  ASSERT_TRUE(model.IsValid());
  EXPECT_EQ(std::string(model->GetValue().c_str()), "SimMono");
  CIntegerPtr width = f.Node("Width");
  CIntegerPtr payload = f.Node("PayloadSize");
  ASSERT_TRUE(width.IsValid());
  ASSERT_TRUE(payload.IsValid());
  EXPECT_EQ(width->GetValue(), 640);
  EXPECT_EQ(width->GetMin(), 16);
  EXPECT_EQ(width->GetMax(), 640);
  EXPECT_EQ(width->GetInc(), 4);
  EXPECT_EQ(payload->GetValue(), 640 * 480);
  width->SetValue(320);
  EXPECT_EQ(payload->GetValue(), 320 * 480);  // invalidated by the width register
  CIntegerPtr offsetX = f.Node("OffsetX");
  EXPECT_EQ(offsetX->GetMax(), 320);
  offsetX->SetValue(100);
  EXPECT_EQ(width->GetMax(), 540);
  EXPECT_THROW(width->SetValue(600), GenICam::GenericException);
  CEnumerationPtr format = f.Node("PixelFormat");
  ASSERT_TRUE(format.IsValid());
  EXPECT_EQ(std::string(format->GetCurrentEntry()->GetSymbolic().c_str()), "Mono8");
  format->FromString("Mono12");
  EXPECT_EQ(payload->GetValue(), 320 * 480 * 2);
  // The mono camera does not offer colour formats: their entries are unavailable.
  EXPECT_FALSE(IsAvailable(format->GetEntryByName("RGB8")));
  EXPECT_TRUE(IsAvailable(format->GetEntryByName("Mono12p")));
  EXPECT_THROW(format->FromString("RGB8"), GenICam::GenericException);
}

TEST(SimFeatures, TLParamsLockedLocksTheImageFormat) {
  SFeatures f;
  ASSERT_TRUE(f.ok);
  CIntegerPtr width = f.Node("Width");
  CIntegerPtr locked = f.Node("TLParamsLocked");
  ASSERT_TRUE(locked.IsValid());
  EXPECT_TRUE(IsWritable(width));
  locked->SetValue(1);
  EXPECT_FALSE(IsWritable(width));
  EXPECT_TRUE(IsReadable(width));
  locked->SetValue(0);
  EXPECT_TRUE(IsWritable(width));
}

TEST(SimFeatures, AcquisitionTriggerAndSelectors) {
  SFeatures f;
  ASSERT_TRUE(f.ok);
  CFloatPtr rate = f.Node("AcquisitionFrameRate");
  CFloatPtr resulting = f.Node("ResultingFrameRate");
  CFloatPtr exposure = f.Node("ExposureTime");
  ASSERT_TRUE(rate.IsValid() && resulting.IsValid() && exposure.IsValid());
  EXPECT_DOUBLE_EQ(rate->GetValue(), 100.0);
  EXPECT_DOUBLE_EQ(exposure->GetValue(), 1000.0);
  rate->SetValue(5000.0);
  EXPECT_DOUBLE_EQ(resulting->GetValue(), 1000.0);  // bounded by the exposure
  exposure->SetValue(100.0);
  EXPECT_DOUBLE_EQ(resulting->GetValue(), 5000.0);
  EXPECT_EQ(f.Node("AcquisitionLineRate"), nullptr);  // an area camera has no line-rate nodes at all
  CEnumerationPtr selector = f.Node("TriggerSelector");
  CEnumerationPtr mode = f.Node("TriggerMode");
  ASSERT_TRUE(selector.IsValid() && mode.IsValid());
  selector->FromString("LineStart");
  mode->FromString("On");
  selector->FromString("FrameStart");
  EXPECT_EQ(std::string(mode->ToString().c_str()), "Off");
  EXPECT_FALSE(IsAvailable(f.Node("TriggerSoftware")));
  mode->FromString("On");
  EXPECT_TRUE(IsAvailable(f.Node("TriggerSoftware")));
  selector->FromString("LineStart");
  EXPECT_EQ(std::string(mode->ToString().c_str()), "On");
  EXPECT_EQ(ReadBE32(f.module.fn, f.device->port, R::kTriggerModeBase + 4), 1u);
  CEnumerationPtr acquisitionMode = f.Node("AcquisitionMode");
  EXPECT_FALSE(IsAvailable(f.Node("AcquisitionFrameCount")));
  acquisitionMode->FromString("MultiFrame");
  EXPECT_TRUE(IsAvailable(f.Node("AcquisitionFrameCount")));
}

TEST(SimFeatures, ConvertersAndMaskedRegisters) {
  SFeatures f;
  ASSERT_TRUE(f.ok);
  CFloatPtr gain = f.Node("Gain");
  ASSERT_TRUE(gain.IsValid());
  gain->SetValue(12.5);
  EXPECT_EQ(ReadBE32(f.module.fn, f.device->port, R::kGainRaw), 125u);
  EXPECT_DOUBLE_EQ(gain->GetValue(), 12.5);
  EXPECT_DOUBLE_EQ(gain->GetMax(), 48.0);
  CIntegerPtr blackLevel = f.Node("BlackLevel");
  ASSERT_TRUE(blackLevel.IsValid());
  EXPECT_EQ(blackLevel->GetValue(), 0);
  blackLevel->SetValue(10);
  EXPECT_EQ(ReadBE32(f.module.fn, f.device->port, R::kBlackLevelRaw), 74u);
  CBooleanPtr reverseY = f.Node("ReverseY");
  ASSERT_TRUE(reverseY.IsValid());
  reverseY->SetValue(true);
  uint8_t control[4] = {0};
  size_t size = 4;
  f.module.fn.GCReadPort(f.device->port, R::kImageControl, control, &size);
  EXPECT_EQ(control[0], 0x02);  // bit 1 of a little-endian register
  EXPECT_FALSE(CBooleanPtr(f.Node("ReverseX"))->GetValue());
  CIntegerPtr layout = f.Node("SimEventLayoutVersion");
  ASSERT_TRUE(layout.IsValid());
  EXPECT_EQ(layout->GetValue(), 1);  // byte 0 of a big-endian register
}

TEST(SimFeatures, ChunkSelectionAndGigETransport) {
  SFeatures f("TalvirSimGEVTL.cti");
  ASSERT_TRUE(f.ok);
  CEnumerationPtr chunkSelector = f.Node("ChunkSelector");
  CBooleanPtr chunkEnable = f.Node("ChunkEnable");
  ASSERT_TRUE(chunkSelector.IsValid() && chunkEnable.IsValid());
  chunkSelector->FromString("FrameID");
  chunkEnable->SetValue(true);
  EXPECT_EQ(ReadBE32(f.module.fn, f.device->port, R::kChunkEnableBase + 4), 1u);
  CIntegerPtr packet = f.Node("GevSCPSPacketSize");
  ASSERT_TRUE(IsImplemented(packet));
  EXPECT_EQ(packet->GetMin(), 576);
  EXPECT_EQ(packet->GetMax(), 9000);
  EXPECT_EQ(packet->GetInc(), 4);
  EXPECT_TRUE(IsImplemented(f.Node("PartialImageOutputMode")));
  CBooleanPtr resend = f.deviceMap._GetNode("EnablePacketResend");
  ASSERT_TRUE(resend.IsValid());
  resend->SetValue(true);
  EXPECT_TRUE(resend->GetValue());
  CIntegerPtr timeout = f.deviceMap._GetNode("ImageTimeout");
  ASSERT_TRUE(timeout.IsValid());
  timeout->SetValue(2000);
  EXPECT_EQ(timeout->GetValue(), 2000);
  SFeatures plain;
  ASSERT_TRUE(plain.ok);
  EXPECT_FALSE(IsImplemented(plain.Node("GevSCPSPacketSize")));
}

TEST(SimFeatures, CommandsDriveTheCamera) {
  SFeatures f;
  ASSERT_TRUE(f.ok);
  CCommandPtr latch = f.Node("TimestampLatch");
  CIntegerPtr latched = f.Node("TimestampLatchValue");
  ASSERT_TRUE(latch.IsValid() && latched.IsValid());
  latch->Execute();
  EXPECT_TRUE(latch->IsDone());
  const int64_t first = latched->GetValue();
  latch->Execute();
  EXPECT_GT(latched->GetValue(), first);
  CCommandPtr lost = f.Node("SimDeviceLost");
  ASSERT_TRUE(lost.IsValid());
  lost->Execute();
  EXPECT_THROW(latched->GetValue(), GenICam::GenericException);
}

TEST(SimFeatures, LineScanCamerasHaveLineRatesInsteadOfFrameRates) {
  SFeatures f(
      "TalvirSimGEVTL.cti",
      R"({"interfaces":[{"id":"IF","devices":[{"id":"Line","lineScan":true,"lineRate":20000,"sensorHeight":1000}]}]})");
  ASSERT_TRUE(f.ok);
  CFloatPtr lineRate = f.Node("AcquisitionLineRate");
  CFloatPtr resultingLineRate = f.Node("ResultingLineRate");
  ASSERT_TRUE(lineRate.IsValid() && resultingLineRate.IsValid());
  EXPECT_TRUE(IsImplemented(lineRate));
  EXPECT_DOUBLE_EQ(resultingLineRate->GetValue(), 20000.0);
  lineRate->SetValue(12000.0);
  EXPECT_DOUBLE_EQ(resultingLineRate->GetValue(), 12000.0);
  EXPECT_FALSE(IsImplemented(f.Node("AcquisitionFrameRate")));
  EXPECT_EQ(std::string(CEnumerationPtr(f.Node("DeviceScanType"))->ToString().c_str()), "Linescan");
  EXPECT_EQ(CIntegerPtr(f.Node("Height"))->GetValue(), 1000);
}

TEST(SimFeatures, ThePixelByteOrderSwitchExistsOnlyWhenConfigured) {
  SFeatures plain("TalvirSimGEVTL.cti");
  ASSERT_TRUE(plain.ok);
  EXPECT_EQ(plain.Node("pgrPixelBigEndian"), nullptr);
  SFeatures with("TalvirSimGEVTL.cti",
                 R"({"interfaces":[{"id":"IF","devices":[{"id":"Cam","pixelBigEndianNode":true}]}]})");
  ASSERT_TRUE(with.ok);
  CBooleanPtr bigEndian = with.Node("pgrPixelBigEndian");
  ASSERT_TRUE(bigEndian.IsValid());
  EXPECT_FALSE(bigEndian->GetValue());
  bigEndian->SetValue(true);
  EXPECT_TRUE(bigEndian->GetValue(true, true));
}
