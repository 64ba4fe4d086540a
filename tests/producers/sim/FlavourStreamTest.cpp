// Flavour-specific streaming (GigE packet counters and partial-image policy, CoaXPress buffer height, line-scan
// timing), acquisition modes, the remaining query functions and the module node maps' indexed registers.
#include "SimModule.h"
#include "talvirsim/SimRegisters.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>

using namespace TalvirSimTest;
namespace R = TalvirSim::Remote;

namespace {

std::string Camera(const std::string& extra = "") {
  return R"({"interfaces":[{"id":"IF","devices":[{"id":"Cam","serial":"CAM00001","sensorWidth":64,"sensorHeight":16,"frameRate":0)" +
         extra + "}]}]}";
}

struct SRun {
  SRun(const std::string& name, const std::string& json) : module("TalvirSim.cti", name, json) {
    if (module.Init() == GC_ERR_SUCCESS) {
      device = std::make_unique<SOpenDevice>(module.fn);
    }
  }
  bool Ok() const { return device && device->ok; }
  EVENT_HANDLE Start(size_t buffers = 4, uint64_t count = GENTL_INFINITE) {
    device->AnnounceAndQueue(buffers);
    EVENT_HANDLE event = nullptr;
    module.fn.GCRegisterEvent(device->stream, EVENT_NEW_BUFFER, &event);
    module.fn.DSStartAcquisition(device->stream, ACQ_START_FLAGS_DEFAULT, count);
    WriteBE32(module.fn, device->port, R::kAcquisitionStart, 1);
    return event;
  }
  GC_ERROR Next(EVENT_HANDLE event, EVENT_NEW_BUFFER_DATA& data, uint64_t timeoutMs = 2000) {
    size_t size = sizeof data;
    return module.fn.EventGetData(event, &data, &size, timeoutMs);
  }
  CSimModule module;
  std::unique_ptr<SOpenDevice> device;
};

}  // namespace

TEST(SimFlavourStream, GigEBuffersCountTheirPackets) {
  SRun r("TalvirSimGEVTL.cti", Camera(R"(,"faults":{"incompleteEveryN":2})"));
  ASSERT_TRUE(r.Ok());
  EVENT_HANDLE event = r.Start();
  for (int i = 0; i < 2; ++i) {
    EVENT_NEW_BUFFER_DATA data{};
    ASSERT_EQ(r.Next(event, data), GC_ERR_SUCCESS);
    const bool incomplete = r.device->BufferInfo<uint8_t>(data.BufferHandle, BUFFER_INFO_IS_INCOMPLETE) != 0;
    const uint64_t received = r.device->BufferInfo<uint64_t>(data.BufferHandle, 1001);
    const uint64_t resent = r.device->BufferInfo<uint64_t>(data.BufferHandle, 1002);
    const uint64_t missing = r.device->BufferInfo<uint64_t>(data.BufferHandle, 1003);
    // 1024 bytes in packets of 1500 - 36 bytes of payload: one packet.
    EXPECT_EQ(received + missing, 1u);
    EXPECT_EQ(missing != 0 || resent != 0, incomplete);
    r.module.fn.DSQueueBuffer(r.device->stream, data.BufferHandle);
  }
}

TEST(SimFlavourStream, GigEPartialImageDiscardDropsIncompleteFrames) {
  SRun r("TalvirSimGEVTL.cti", Camera(R"(,"faults":{"incompleteEveryN":2})"));
  ASSERT_TRUE(r.Ok());
  WriteBE32(r.module.fn, r.device->port, R::kPartialImageOutputMode, 1);
  EVENT_HANDLE event = r.Start();
  for (int i = 0; i < 4; ++i) {
    EVENT_NEW_BUFFER_DATA data{};
    ASSERT_EQ(r.Next(event, data), GC_ERR_SUCCESS);
    EXPECT_EQ(r.device->BufferInfo<uint64_t>(data.BufferHandle, BUFFER_INFO_FRAMEID) % 2, 1u);
    EXPECT_EQ(r.device->BufferInfo<uint8_t>(data.BufferHandle, BUFFER_INFO_IS_INCOMPLETE), 0);
    r.module.fn.DSQueueBuffer(r.device->stream, data.BufferHandle);
  }
}

TEST(SimFlavourStream, CoaXPressReportsNoHeightButDefinesThePayload) {
  SRun r("TalvirSimCXP.cti", Camera());
  ASSERT_TRUE(r.Ok());
  EXPECT_EQ(r.device->StreamInfo(STREAM_INFO_DEFINES_PAYLOADSIZE) & 0xFF, 1u);
  EVENT_HANDLE event = r.Start();
  EVENT_NEW_BUFFER_DATA data{};
  ASSERT_EQ(r.Next(event, data), GC_ERR_SUCCESS);
  EXPECT_EQ(r.device->BufferInfo<size_t>(data.BufferHandle, BUFFER_INFO_HEIGHT), 0u);
  EXPECT_EQ(r.device->BufferInfo<size_t>(data.BufferHandle, BUFFER_INFO_WIDTH), 64u);
  uint64_t bufferHeight = 0;
  size_t size = 8;
  ASSERT_EQ(r.module.fn.GCReadPort(r.device->stream, 0x0108, &bufferHeight, &size), GC_ERR_SUCCESS);
  EXPECT_EQ(bufferHeight, 16u);
}

TEST(SimFlavourStream, CameraLinkGrabbersStreamWithoutTheCamerasStart) {
  SRun r("TalvirSimCL.cti", Camera());
  ASSERT_TRUE(r.Ok());
  r.device->AnnounceAndQueue(2);
  EVENT_HANDLE event = nullptr;
  r.module.fn.GCRegisterEvent(r.device->stream, EVENT_NEW_BUFFER, &event);
  ASSERT_EQ(r.module.fn.DSStartAcquisition(r.device->stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE), GC_ERR_SUCCESS);
  EVENT_NEW_BUFFER_DATA data{};
  EXPECT_EQ(r.Next(event, data), GC_ERR_SUCCESS);
}

TEST(SimFlavourStream, LineScanFramesComeAtLineRateOverHeight) {
  SRun r("TalvirSim.cti", Camera(R"(,"lineScan":true,"lineRate":1600,"frameRate":100)"));
  ASSERT_TRUE(r.Ok());
  EXPECT_EQ(ReadBE32(r.module.fn, r.device->port, R::kSimLineScan), 1u);
  // 1600 lines/s over 16 lines: 100 frames/s.
  EVENT_HANDLE event = r.Start(8);
  const auto start = std::chrono::steady_clock::now();
  EVENT_NEW_BUFFER_DATA data{};
  for (int i = 0; i < 5; ++i) {
    ASSERT_EQ(r.Next(event, data), GC_ERR_SUCCESS);
    r.module.fn.DSQueueBuffer(r.device->stream, data.BufferHandle);
  }
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(35));
}

TEST(SimFlavourStream, SingleAndMultiFrameModesStopTheCamera) {
  SRun r("TalvirSim.cti", Camera());
  ASSERT_TRUE(r.Ok());
  const auto& fn = r.module.fn;
  WriteBE32(fn, r.device->port, R::kAcquisitionMode, 2);
  WriteBE32(fn, r.device->port, R::kAcquisitionFrameCount, 3);
  EVENT_HANDLE event = r.Start(8);
  EVENT_NEW_BUFFER_DATA data{};
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(r.Next(event, data), GC_ERR_SUCCESS);
  }
  EXPECT_EQ(r.Next(event, data, 60), GC_ERR_TIMEOUT);
  WriteBE32(fn, r.device->port, R::kAcquisitionMode, 1);
  WriteBE32(fn, r.device->port, R::kAcquisitionStart, 1);
  EXPECT_EQ(r.Next(event, data), GC_ERR_SUCCESS);
  EXPECT_EQ(r.Next(event, data, 60), GC_ERR_TIMEOUT);
  // The stream itself keeps running: the camera simply sends no more.
  EXPECT_EQ(r.device->StreamInfo(STREAM_INFO_IS_GRABBING) & 0xFF, 1u);
}

TEST(SimFlavourStream, SoftwareTriggersMakeOneFrameEach) {
  SRun r("TalvirSim.cti", Camera());
  ASSERT_TRUE(r.Ok());
  const auto& fn = r.module.fn;
  WriteBE32(fn, r.device->port, R::kTriggerModeBase, 1);
  EVENT_HANDLE event = r.Start(8);
  EVENT_NEW_BUFFER_DATA data{};
  EXPECT_EQ(r.Next(event, data, 40), GC_ERR_TIMEOUT);
  WriteBE32(fn, r.device->port, R::kTriggerSoftware, 1);
  WriteBE32(fn, r.device->port, R::kTriggerSoftware, 1);
  EXPECT_EQ(r.Next(event, data), GC_ERR_SUCCESS);
  EXPECT_EQ(r.Next(event, data), GC_ERR_SUCCESS);
  EXPECT_EQ(r.Next(event, data, 40), GC_ERR_TIMEOUT);
  // Line triggers do not start frames of an area camera.
  WriteBE32(fn, r.device->port, R::kTriggerSelector, 1);
  WriteBE32(fn, r.device->port, R::kTriggerModeBase + 4, 1);
  WriteBE32(fn, r.device->port, R::kTriggerSoftware, 1);
  EXPECT_EQ(r.Next(event, data, 40), GC_ERR_TIMEOUT);
}

TEST(SimFlavourStream, StackedBufferInfoAnswersEachEntry) {
  SRun r("TalvirSim.cti", Camera());
  ASSERT_TRUE(r.Ok());
  EVENT_HANDLE event = r.Start(2, 1);
  EVENT_NEW_BUFFER_DATA data{};
  ASSERT_EQ(r.Next(event, data), GC_ERR_SUCCESS);
  uint64_t frameId = 0;
  size_t width = 0;
  uint64_t junk = 0;
  DS_BUFFER_INFO_STACKED entries[3] = {{BUFFER_INFO_FRAMEID, 0, &frameId, sizeof frameId, -1},
                                       {BUFFER_INFO_WIDTH, 0, &width, sizeof width, -1},
                                       {9999, 0, &junk, sizeof junk, -1}};
  EXPECT_EQ(r.module.fn.DSGetBufferInfoStacked(r.device->stream, data.BufferHandle, entries, 3), GC_ERR_ERROR);
  EXPECT_EQ(entries[0].iResult, GC_ERR_SUCCESS);
  EXPECT_EQ(frameId, 1u);
  EXPECT_EQ(entries[1].iResult, GC_ERR_SUCCESS);
  EXPECT_EQ(width, 64u);
  EXPECT_EQ(entries[2].iResult, GC_ERR_INVALID_ID);
  uint32_t parts = 7;
  EXPECT_EQ(r.module.fn.DSGetNumBufferParts(r.device->stream, data.BufferHandle, &parts), GC_ERR_SUCCESS);
  EXPECT_EQ(parts, 0u);
  uint32_t flows = 7;
  EXPECT_EQ(r.module.fn.DSGetNumFlows(r.device->stream, &flows), GC_ERR_SUCCESS);
  EXPECT_EQ(flows, 0u);
  EXPECT_EQ(r.module.fn.DSGetNumBufferSegments(r.device->stream, data.BufferHandle, &parts), GC_ERR_NOT_IMPLEMENTED);
}

TEST(SimFlavourStream, ParentsAndLibraryInformation) {
  CSimModule module("TalvirSim.cti", "TalvirSimGEVTL.cti");
  // Library information is available before GCInitLib.
  EXPECT_EQ(
      InfoString([&](INFO_DATATYPE* t, void* b, size_t* s) { return module.fn.GCGetInfo(TL_INFO_TLTYPE, t, b, s); }),
      "GEV");
  ASSERT_EQ(module.Init(), GC_ERR_SUCCESS);
  EXPECT_EQ(InfoValue<uint32_t>([&](INFO_DATATYPE* t, void* b, size_t* s) {
              return module.fn.GCGetInfo(TL_INFO_GENTL_VER_MINOR, t, b, s);
            }),
            5u);
  EXPECT_NE(InfoString([&](INFO_DATATYPE* t, void* b, size_t* s) {
              return module.fn.GCGetInfo(TL_INFO_PATHNAME, t, b, s);
            }).find("TalvirSimGEVTL.cti"),
            std::string::npos);
  SOpenDevice device(module.fn);
  ASSERT_TRUE(device.ok);
  TL_HANDLE system = nullptr;
  IF_HANDLE iface = nullptr;
  DEV_HANDLE dev = nullptr;
  EXPECT_EQ(module.fn.IFGetParentTL(device.iface, &system), GC_ERR_SUCCESS);
  EXPECT_EQ(system, device.system);
  EXPECT_EQ(module.fn.DevGetParentIF(device.device, &iface), GC_ERR_SUCCESS);
  EXPECT_EQ(iface, device.iface);
  EXPECT_EQ(module.fn.DSGetParentDev(device.stream, &dev), GC_ERR_SUCCESS);
  EXPECT_EQ(dev, device.device);
  uint32_t streams = 0;
  EXPECT_EQ(module.fn.DevGetNumDataStreams(device.device, &streams), GC_ERR_SUCCESS);
  EXPECT_EQ(streams, 1u);
  DS_HANDLE second = nullptr;
  EXPECT_EQ(module.fn.DevOpenDataStream(device.device, (device.deviceId + "-Stream0").c_str(), &second),
            GC_ERR_RESOURCE_IN_USE);
  EXPECT_EQ(module.fn.DevOpenDataStream(device.device, "Other", &second), GC_ERR_INVALID_ID);
}

TEST(SimFlavourStream, ModuleNodeMapsServeIndexedRegisters) {
  CSimModule module;
  ASSERT_EQ(module.Init(), GC_ERR_SUCCESS);
  SOpenDevice device(module.fn, 1);
  ASSERT_TRUE(device.ok);
  const auto& fn = module.fn;
  char text[256] = {0};
  size_t size = sizeof text;
  ASSERT_EQ(fn.GCReadPort(device.system, 0x10000, text, &size), GC_ERR_SUCCESS);
  EXPECT_STREQ(text, "TalvirSim-IF0");
  size = sizeof text;
  ASSERT_EQ(fn.GCReadPort(device.iface, 0x10000 + 0x100, text, &size), GC_ERR_SUCCESS);
  EXPECT_STREQ(text, "SimColor-SIM00002");
  uint64_t access = 0;
  size = 8;
  ASSERT_EQ(fn.GCReadPort(device.iface, 0x50000 + 8, &access, &size), GC_ERR_SUCCESS);
  EXPECT_EQ(access, uint64_t{DEVICE_ACCESS_STATUS_OPEN_READWRITE});
  size = 8;
  ASSERT_EQ(fn.GCReadPort(device.iface, 0x50000, &access, &size), GC_ERR_SUCCESS);
  EXPECT_EQ(access, uint64_t{DEVICE_ACCESS_STATUS_READWRITE});
  size = sizeof text;
  ASSERT_EQ(fn.GCReadPort(device.device, 0x1300, text, &size), GC_ERR_SUCCESS);
  EXPECT_STREQ(text, "SIM00002");
  device.AnnounceAndQueue(3);
  uint64_t announced = 0;
  size = 8;
  ASSERT_EQ(fn.GCReadPort(device.stream, 0x0000, &announced, &size), GC_ERR_SUCCESS);
  EXPECT_EQ(announced, 3u);
  size = 8;
  EXPECT_EQ(fn.GCReadPort(device.stream, 0x0004, &announced, &size), GC_ERR_INVALID_ADDRESS);
}

TEST(SimFlavourStream, LegacyChunkPayloadsCarryNoGeometry) {
  SRun r("TalvirSim.cti", Camera(R"(,"legacyChunkPayload":true)"));
  ASSERT_TRUE(r.Ok());
  EVENT_HANDLE event = r.Start(2, 1);
  EVENT_NEW_BUFFER_DATA data{};
  ASSERT_EQ(r.Next(event, data), GC_ERR_SUCCESS);
  EXPECT_EQ(r.device->BufferInfo<size_t>(data.BufferHandle, BUFFER_INFO_PAYLOADTYPE), size_t{PAYLOAD_TYPE_CHUNK_DATA});
  EXPECT_EQ(r.device->BufferInfo<size_t>(data.BufferHandle, BUFFER_INFO_WIDTH), size_t{0xFFFFFFFF});
  EXPECT_EQ(r.device->BufferInfo<size_t>(data.BufferHandle, BUFFER_INFO_HEIGHT), 64u * 16);  // the byte count
}
