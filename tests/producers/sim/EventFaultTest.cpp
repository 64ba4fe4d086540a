// Remote-device events, error events and the fault injections of the simulated producer.
#include "SimModule.h"
#include "talvirsim/SimRegisters.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <mutex>
#include <thread>

using namespace TalvirSimTest;
namespace R = TalvirSim::Remote;

namespace {

std::string Camera(const std::string& extra = "", const std::string& interfaceExtra = "") {
  return R"({"interfaces":[{"id":"IF")" + interfaceExtra +
         R"(,"devices":[{"id":"Cam","serial":"CAM00001","sensorWidth":32,"sensorHeight":8,"frameRate":0)" + extra +
         "}]}]}";
}

struct SRunning {
  SRunning(const std::string& json, const std::string& name = "TalvirSim.cti") : module("TalvirSim.cti", name, json) {
    init = module.Init();
    if (init == GC_ERR_SUCCESS) {
      device = std::make_unique<SOpenDevice>(module.fn);
    }
  }
  bool Ok() const { return device && device->ok; }
  EVENT_HANDLE StartStreaming(size_t buffers = 4) {
    device->AnnounceAndQueue(buffers);
    EVENT_HANDLE event = nullptr;
    module.fn.GCRegisterEvent(device->stream, EVENT_NEW_BUFFER, &event);
    module.fn.DSStartAcquisition(device->stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE);
    WriteBE32(module.fn, device->port, R::kAcquisitionStart, 1);
    return event;
  }
  GC_ERROR Next(EVENT_HANDLE event, EVENT_NEW_BUFFER_DATA& data, uint64_t timeoutMs = 2000) {
    size_t size = sizeof data;
    return module.fn.EventGetData(event, &data, &size, timeoutMs);
  }
  CSimModule module;
  GC_ERROR init = GC_ERR_ERROR;
  std::unique_ptr<SOpenDevice> device;
};

uint16_t U16(const uint8_t* p) {
  uint16_t v;
  std::memcpy(&v, p, 2);
  return v;
}

uint64_t BE64(const uint8_t* p) {
  uint64_t v = 0;
  for (int i = 0; i < 8; ++i) {
    v = (v << 8) | p[i];
  }
  return v;
}

}  // namespace

// ---- Remote-device events ----

TEST(SimEvents, ExposureEndEventsCarryTheFrameInGigELayout) {
  SRunning r(Camera());
  ASSERT_TRUE(r.Ok());
  const auto& fn = r.module.fn;
  EXPECT_EQ(ReadBE32(fn, r.device->port, R::kEventLayoutVersion) >> 24, 1u);
  WriteBE32(fn, r.device->port, R::kEventNotificationBase, 1);
  EVENT_HANDLE remote = nullptr;
  ASSERT_EQ(fn.GCRegisterEvent(r.device->device, EVENT_REMOTE_DEVICE, &remote), GC_ERR_SUCCESS);
  EVENT_HANDLE twice = nullptr;
  EXPECT_EQ(fn.GCRegisterEvent(r.device->device, EVENT_REMOTE_DEVICE, &twice), GC_ERR_RESOURCE_IN_USE);
  EVENT_HANDLE frames = r.StartStreaming();
  EVENT_NEW_BUFFER_DATA data{};
  ASSERT_EQ(r.Next(frames, data), GC_ERR_SUCCESS);
  const uint64_t frameId = r.device->BufferInfo<uint64_t>(data.BufferHandle, BUFFER_INFO_FRAMEID);
  const uint64_t timestamp = r.device->BufferInfo<uint64_t>(data.BufferHandle, BUFFER_INFO_TIMESTAMP);
  uint8_t packet[4096];
  size_t size = sizeof packet;
  ASSERT_EQ(fn.EventGetData(remote, packet, &size, 2000), GC_ERR_SUCCESS);
  ASSERT_EQ(size, 40u);
  EXPECT_EQ(packet[0], 0x42);
  EXPECT_EQ(U16(packet + 10), R::kEventIdExposureEnd);
  EXPECT_EQ(U16(packet + 12), 0);
  EXPECT_EQ(U16(packet + 14), static_cast<uint16_t>(frameId));
  uint32_t high = 0;
  uint32_t low = 0;
  std::memcpy(&high, packet + 16, 4);
  std::memcpy(&low, packet + 20, 4);
  EXPECT_EQ((uint64_t{high} << 32) | low, timestamp);
  EXPECT_EQ(BE64(packet + 24), frameId);
  EXPECT_EQ(BE64(packet + 32), timestamp);
  EXPECT_EQ(InfoString([&](INFO_DATATYPE* t, void* b, size_t* s) {
              return fn.EventGetDataInfo(remote, packet, size, EVENT_DATA_ID, t, b, s);
            }),
            "9001");
  uint8_t value[64];
  size_t valueSize = sizeof value;
  INFO_DATATYPE type = 0;
  ASSERT_EQ(fn.EventGetDataInfo(remote, packet, size, EVENT_DATA_VALUE, &type, value, &valueSize), GC_ERR_SUCCESS);
  EXPECT_EQ(type, INFO_DATATYPE_BUFFER);
  EXPECT_EQ(valueSize, 16u);
  EXPECT_EQ(BE64(value), frameId);
}

TEST(SimEvents, LayoutVersionTwoCarriesA64BitBlockId) {
  SRunning r(Camera(R"(,"eventLayoutVersion":2)"));
  ASSERT_TRUE(r.Ok());
  const auto& fn = r.module.fn;
  EXPECT_EQ(ReadBE32(fn, r.device->port, R::kEventLayoutVersion) >> 24, 2u);
  EVENT_HANDLE remote = nullptr;
  // Registered through the remote port handle this time: both reach the camera.
  ASSERT_EQ(fn.GCRegisterEvent(r.device->port, EVENT_REMOTE_DEVICE, &remote), GC_ERR_SUCCESS);
  ASSERT_EQ(WriteBE32(fn, r.device->port, R::kSimFireEvent, 1), GC_ERR_SUCCESS);
  uint8_t packet[256];
  size_t size = sizeof packet;
  ASSERT_EQ(fn.EventGetData(remote, packet, &size, 2000), GC_ERR_SUCCESS);
  ASSERT_EQ(size, 48u);
  EXPECT_EQ(U16(packet + 10), R::kEventIdExposureEnd);
  EXPECT_EQ(packet[1] & 0x10, 0x10);
  uint64_t numId = 0;
  size_t numSize = 8;
  INFO_DATATYPE type = 0;
  EXPECT_EQ(fn.EventGetDataInfo(remote, packet, size, EVENT_DATA_NUMID, &type, &numId, &numSize), GC_ERR_SUCCESS);
  EXPECT_EQ(numId, 0x9001u);
}

TEST(SimEvents, QueuedEventsCanBeCountedFlushedDiscardedAndKilled) {
  SRunning r(Camera());
  ASSERT_TRUE(r.Ok());
  const auto& fn = r.module.fn;
  EVENT_HANDLE remote = nullptr;
  ASSERT_EQ(fn.GCRegisterEvent(r.device->device, EVENT_REMOTE_DEVICE, &remote), GC_ERR_SUCCESS);
  for (int i = 0; i < 3; ++i) {
    WriteBE32(fn, r.device->port, R::kSimFireEvent, 1);
  }
  auto inQueue = [&] {
    return InfoValue<size_t>(
        [&](INFO_DATATYPE* t, void* b, size_t* s) { return fn.EventGetInfo(remote, EVENT_NUM_IN_QUEUE, t, b, s); });
  };
  EXPECT_EQ(inQueue(), 3u);
  uint8_t small[8];
  size_t size = sizeof small;
  EXPECT_EQ(fn.EventGetData(remote, small, &size, 0), GC_ERR_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 40u);
  EXPECT_EQ(inQueue(), 3u);                                               // a too-small buffer loses nothing
  EXPECT_EQ(fn.EventGetData(remote, nullptr, &size, 0), GC_ERR_SUCCESS);  // a null buffer discards one
  EXPECT_EQ(inQueue(), 2u);
  EXPECT_EQ(fn.EventFlush(remote), GC_ERR_SUCCESS);
  EXPECT_EQ(inQueue(), 0u);
  EXPECT_EQ(fn.EventGetData(remote, small, &size, 10), GC_ERR_TIMEOUT);
  EXPECT_EQ(fn.EventKill(remote), GC_ERR_SUCCESS);
  size = sizeof small;
  EXPECT_EQ(fn.EventGetData(remote, small, &size, GENTL_INFINITE), GC_ERR_ABORT);
  EXPECT_EQ(fn.GCUnregisterEvent(r.device->device, EVENT_REMOTE_DEVICE), GC_ERR_SUCCESS);
  EXPECT_EQ(fn.EventGetData(remote, small, &size, 0), GC_ERR_INVALID_HANDLE);
  EXPECT_EQ(fn.GCUnregisterEvent(r.device->device, EVENT_REMOTE_DEVICE), GC_ERR_NOT_AVAILABLE);
  EVENT_HANDLE unsupported = nullptr;
  EXPECT_EQ(fn.GCRegisterEvent(r.device->stream, EVENT_FEATURE_CHANGE, &unsupported), GC_ERR_NOT_IMPLEMENTED);
}

// ---- Faults ----

TEST(SimFaults, ABadConfigurationFailsInitWithAMessageNamingTheKey) {
  CSimModule typo("TalvirSim.cti", "TalvirSim.cti", R"({"interfaces":[{"id":"A","devices":[{"widht":64}]}]})");
  EXPECT_EQ(typo.Init(), GC_ERR_INVALID_PARAMETER);
  EXPECT_NE(typo.LastError().find("devices[0].widht: unknown key"), std::string::npos) << typo.LastError();
  CSimModule broken("TalvirSim.cti", "TalvirSim.cti", "{ not json");
  EXPECT_EQ(broken.Init(), GC_ERR_INVALID_PARAMETER);
  EXPECT_NE(broken.LastError().find("not valid JSON"), std::string::npos) << broken.LastError();
  CSimModule format("TalvirSim.cti", "TalvirSim.cti", R"({"interfaces":[{"devices":[{"pixelFormats":["Mono9"]}]}]})");
  EXPECT_EQ(format.Init(), GC_ERR_INVALID_PARAMETER);
  EXPECT_NE(format.LastError().find("Mono9"), std::string::npos) << format.LastError();
}

TEST(SimFaults, InitAndTLOpenCanBeMadeToFail) {
  CSimModule init("TalvirSim.cti", "TalvirSim.cti", R"({"failInitLib":true})");
  EXPECT_EQ(init.Init(), GC_ERR_IO);
  CSimModule open("TalvirSim.cti", "TalvirSim.cti", R"({"failTLOpen":true})");
  ASSERT_EQ(open.Init(), GC_ERR_SUCCESS);
  TL_HANDLE system = nullptr;
  EXPECT_EQ(open.fn.TLOpen(&system), GC_ERR_IO);
}

TEST(SimFaults, AnInterfaceCanHaveNoDevicesAndIdsCanOutgrowAConsumersBuffer) {
  const std::string longId(1500, 'L');
  CSimModule module("TalvirSim.cti", "TalvirSim.cti",
                    R"({"interfaces":[{"id":"Full","devices":[{"id":")" + longId +
                        R"("}]},{"id":"Empty","devices":[]}]})");
  ASSERT_EQ(module.Init(), GC_ERR_SUCCESS);
  const auto& fn = module.fn;
  TL_HANDLE system = nullptr;
  ASSERT_EQ(fn.TLOpen(&system), GC_ERR_SUCCESS);
  IF_HANDLE full = nullptr;
  IF_HANDLE empty = nullptr;
  ASSERT_EQ(fn.TLOpenInterface(system, "Full", &full), GC_ERR_SUCCESS);
  ASSERT_EQ(fn.TLOpenInterface(system, "Empty", &empty), GC_ERR_SUCCESS);
  uint32_t count = 9;
  fn.IFUpdateDeviceList(empty, nullptr, 1000);
  EXPECT_EQ(fn.IFGetNumDevices(empty, &count), GC_ERR_SUCCESS);
  EXPECT_EQ(count, 0u);
  char id[1024];
  size_t size = sizeof id;
  EXPECT_EQ(fn.IFGetDeviceID(full, 0, id, &size), GC_ERR_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 1501u);
  fn.IFClose(full);
  fn.IFClose(empty);
  fn.TLClose(system);
}

TEST(SimFaults, SlowEnumerationDelaysTheDeviceListUpdate) {
  CSimModule module("TalvirSim.cti", "TalvirSim.cti", Camera("", R"(,"enumerationDelayMs":120)"));
  ASSERT_EQ(module.Init(), GC_ERR_SUCCESS);
  TL_HANDLE system = nullptr;
  IF_HANDLE iface = nullptr;
  module.fn.TLOpen(&system);
  module.fn.TLOpenInterface(system, "IF", &iface);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(module.fn.IFUpdateDeviceList(iface, nullptr, 1000), GC_ERR_SUCCESS);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(110));
}

TEST(SimFaults, ReadsCoveringTheFailAddressFail) {
  SRunning r(Camera(R"(,"faults":{"readFailAddress":258})"));  // 0x102, inside SensorWidth
  ASSERT_TRUE(r.Ok());
  const auto& fn = r.module.fn;
  uint8_t bytes[4];
  size_t size = 4;
  EXPECT_EQ(fn.GCReadPort(r.device->port, R::kSensorWidth, bytes, &size), GC_ERR_IO);
  size = 4;
  EXPECT_EQ(fn.GCReadPort(r.device->port, R::kSensorHeight, bytes, &size), GC_ERR_SUCCESS);
  // Moved at run time through the test-control register.
  EXPECT_EQ(WriteBE32(fn, r.device->port, R::kSimReadFailAddress, R::kSensorHeight), GC_ERR_SUCCESS);
  size = 4;
  EXPECT_EQ(fn.GCReadPort(r.device->port, R::kSensorWidth, bytes, &size), GC_ERR_SUCCESS);
  size = 4;
  EXPECT_EQ(fn.GCReadPort(r.device->port, R::kSensorHeight, bytes, &size), GC_ERR_IO);
}

TEST(SimFaults, EveryNthFrameIsIncompleteWithItsSecondHalfMissing) {
  SRunning r(Camera(R"(,"faults":{"incompleteEveryN":2})"));
  ASSERT_TRUE(r.Ok());
  EVENT_HANDLE event = r.StartStreaming();
  for (int i = 0; i < 4; ++i) {
    EVENT_NEW_BUFFER_DATA data{};
    ASSERT_EQ(r.Next(event, data), GC_ERR_SUCCESS);
    const uint64_t frameId = r.device->BufferInfo<uint64_t>(data.BufferHandle, BUFFER_INFO_FRAMEID);
    const bool incomplete = r.device->BufferInfo<uint8_t>(data.BufferHandle, BUFFER_INFO_IS_INCOMPLETE) != 0;
    EXPECT_EQ(incomplete, frameId % 2 == 0) << frameId;
    const size_t filled = r.device->BufferInfo<size_t>(data.BufferHandle, BUFFER_INFO_SIZE_FILLED);
    EXPECT_EQ(filled, incomplete ? 128u : 256u);
    r.module.fn.DSQueueBuffer(r.device->stream, data.BufferHandle);
  }
}

TEST(SimFaults, ALateFrameArrivesLate) {
  SRunning r(Camera(R"(,"faults":{"lateFrameId":2,"lateByMs":150})"));
  ASSERT_TRUE(r.Ok());
  EVENT_HANDLE event = r.StartStreaming(1);
  EVENT_NEW_BUFFER_DATA data{};
  ASSERT_EQ(r.Next(event, data), GC_ERR_SUCCESS);
  r.module.fn.DSQueueBuffer(r.device->stream, data.BufferHandle);
  EXPECT_EQ(r.Next(event, data, 60), GC_ERR_TIMEOUT);
  ASSERT_EQ(r.Next(event, data), GC_ERR_SUCCESS);
  EXPECT_EQ(r.device->BufferInfo<uint64_t>(data.BufferHandle, BUFFER_INFO_FRAMEID), 2u);
}

TEST(SimFaults, DeviceLossAfterNFramesEndsFetchesAndFailsEveryLaterAccess) {
  SRunning r(Camera(R"(,"faults":{"loseAfterFrames":3})"));
  ASSERT_TRUE(r.Ok());
  const auto& fn = r.module.fn;
  EVENT_HANDLE errors = nullptr;
  ASSERT_EQ(fn.GCRegisterEvent(r.device->device, EVENT_ERROR, &errors), GC_ERR_SUCCESS);
  EVENT_HANDLE event = r.StartStreaming(8);
  EVENT_NEW_BUFFER_DATA data{};
  int delivered = 0;
  GC_ERROR last = GC_ERR_SUCCESS;
  while ((last = r.Next(event, data)) == GC_ERR_SUCCESS) {
    ++delivered;
  }
  EXPECT_EQ(delivered, 3);
  EXPECT_EQ(last, GC_ERR_IO);
  uint8_t bytes[4];
  size_t size = 4;
  EXPECT_EQ(fn.GCReadPort(r.device->port, R::kWidth, bytes, &size), GC_ERR_IO);
  EXPECT_EQ(WriteBE32(fn, r.device->port, R::kAcquisitionStop, 1), GC_ERR_IO);
  size = 8;
  EXPECT_EQ(fn.GCReadPort(r.device->device, 0x0000, bytes, &size), GC_ERR_IO);
  fn.DSStopAcquisition(r.device->stream, ACQ_STOP_FLAGS_DEFAULT);
  EXPECT_EQ(fn.DSStartAcquisition(r.device->stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE), GC_ERR_IO);
  uint8_t record[512];
  size = sizeof record;
  ASSERT_EQ(fn.EventGetData(errors, record, &size, 1000), GC_ERR_SUCCESS);
  int32_t code = 0;
  size_t codeSize = 4;
  INFO_DATATYPE type = 0;
  EXPECT_EQ(fn.EventGetDataInfo(errors, record, size, EVENT_DATA_ID, &type, &code, &codeSize), GC_ERR_SUCCESS);
  EXPECT_EQ(code, GC_ERR_IO);
  // The lost device leaves the interface at the next update.
  bool8_t changed = 0;
  EXPECT_EQ(fn.IFUpdateDeviceList(r.device->iface, &changed, 1000), GC_ERR_SUCCESS);
  EXPECT_EQ(changed, 1);
  uint32_t count = 9;
  fn.IFGetNumDevices(r.device->iface, &count);
  EXPECT_EQ(count, 0u);
}

TEST(SimFaults, SimDeviceLostWakesAWaitingFetch) {
  SRunning r(Camera(R"(,"frameRate":1)"));
  ASSERT_TRUE(r.Ok());
  EVENT_HANDLE event = nullptr;
  r.device->AnnounceAndQueue(2);
  r.module.fn.GCRegisterEvent(r.device->stream, EVENT_NEW_BUFFER, &event);
  r.module.fn.DSStartAcquisition(r.device->stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE);
  GC_ERROR waited = GC_ERR_SUCCESS;
  std::thread waiter([&] {
    EVENT_NEW_BUFFER_DATA data{};
    waited = r.Next(event, data, GENTL_INFINITE);
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  EXPECT_EQ(WriteBE32(r.module.fn, r.device->port, R::kSimDeviceLost, 1), GC_ERR_SUCCESS);
  waiter.join();
  EXPECT_EQ(waited, GC_ERR_IO);
}

namespace {
std::mutex g_statusMutex;
std::vector<std::pair<std::string, bool>> g_statusReports;
void RecordStatus(const char* id, bool online) {
  std::lock_guard<std::mutex> lock(g_statusMutex);
  g_statusReports.emplace_back(id, online);
}
}  // namespace

TEST(SimFaults, TheU3VFlavourReportsALostDeviceToItsStatusCallback) {
  {
    std::lock_guard<std::mutex> lock(g_statusMutex);
    g_statusReports.clear();
  }
  SRunning r(Camera(), "U3VTLTAV.cti");
  ASSERT_TRUE(r.Ok());
  ASSERT_NE(r.module.fn.SetU3VCameraStatusCallback, nullptr);
  r.module.fn.SetU3VCameraStatusCallback(&RecordStatus);
  EXPECT_EQ(WriteBE32(r.module.fn, r.device->port, R::kSimDeviceLost, 1), GC_ERR_SUCCESS);
  for (int spin = 0; spin < 200; ++spin) {
    {
      std::lock_guard<std::mutex> lock(g_statusMutex);
      if (!g_statusReports.empty()) {
        break;
      }
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  std::lock_guard<std::mutex> lock(g_statusMutex);
  ASSERT_EQ(g_statusReports.size(), 1u);
  EXPECT_EQ(g_statusReports[0].first, "CAM00001");
  EXPECT_FALSE(g_statusReports[0].second);
}

TEST(SimFaults, TheDeviceRecordCanBeMadeToFail) {
  CSimModule module("TalvirSim.cti", "TalvirSimGEVTL.cti", Camera(R"(,"faults":{"failDeviceRecord":true})"));
  ASSERT_EQ(module.Init(), GC_ERR_SUCCESS);
  TL_HANDLE system = nullptr;
  IF_HANDLE iface = nullptr;
  module.fn.TLOpen(&system);
  module.fn.TLOpenInterface(system, "IF", &iface);
  uint8_t record[420];
  size_t size = sizeof record;
  INFO_DATATYPE type = 0;
  EXPECT_EQ(module.fn.IFGetDeviceInfo(iface, "Cam", 1001, &type, record, &size), GC_ERR_IO);
  EXPECT_EQ(InfoString([&](INFO_DATATYPE* t, void* b, size_t* s) {
              return module.fn.IFGetDeviceInfo(iface, "Cam", DEVICE_INFO_SERIAL_NUMBER, t, b, s);
            }),
            "CAM00001");
}

TEST(SimFaults, AccessStatusLimitsOpening) {
  CSimModule module("TalvirSim.cti", "TalvirSim.cti",
                    R"({"interfaces":[{"id":"IF","devices":[{"id":"None","accessStatus":"NoAccess"},
                       {"id":"Busy","accessStatus":"Busy"},{"id":"RO","accessStatus":"ReadOnly"},{"id":"Free"}]}]})");
  ASSERT_EQ(module.Init(), GC_ERR_SUCCESS);
  const auto& fn = module.fn;
  TL_HANDLE system = nullptr;
  IF_HANDLE iface = nullptr;
  fn.TLOpen(&system);
  fn.TLOpenInterface(system, "IF", &iface);
  DEV_HANDLE device = nullptr;
  EXPECT_EQ(fn.IFOpenDevice(iface, "None", DEVICE_ACCESS_CONTROL, &device), GC_ERR_ACCESS_DENIED);
  EXPECT_EQ(fn.IFOpenDevice(iface, "Busy", DEVICE_ACCESS_CONTROL, &device), GC_ERR_RESOURCE_IN_USE);
  EXPECT_EQ(fn.IFOpenDevice(iface, "RO", DEVICE_ACCESS_EXCLUSIVE, &device), GC_ERR_ACCESS_DENIED);
  ASSERT_EQ(fn.IFOpenDevice(iface, "RO", DEVICE_ACCESS_READONLY, &device), GC_ERR_SUCCESS);
  PORT_HANDLE port = nullptr;
  fn.DevGetPort(device, &port);
  EXPECT_EQ(WriteBE32(fn, port, R::kWidth, 32), GC_ERR_ACCESS_DENIED);
  EXPECT_EQ(InfoValue<int32_t>([&](INFO_DATATYPE* t, void* b, size_t* s) {
              return fn.DevGetInfo(device, DEVICE_INFO_ACCESS_STATUS, t, b, s);
            }),
            DEVICE_ACCESS_STATUS_OPEN_READONLY);
  DEV_HANDLE free = nullptr;
  ASSERT_EQ(fn.IFOpenDevice(iface, "Free", DEVICE_ACCESS_EXCLUSIVE, &free), GC_ERR_SUCCESS);
  DEV_HANDLE second = nullptr;
  EXPECT_EQ(fn.IFOpenDevice(iface, "Free", DEVICE_ACCESS_CONTROL, &second), GC_ERR_RESOURCE_IN_USE);
  EXPECT_EQ(fn.DevClose(free), GC_ERR_SUCCESS);
  EXPECT_EQ(fn.DevClose(free), GC_ERR_INVALID_HANDLE);
  EXPECT_EQ(fn.IFOpenDevice(iface, "Free", DEVICE_ACCESS_CONTROL, &second), GC_ERR_SUCCESS);
  fn.TLClose(system);  // closes the interface and the devices under it
  uint32_t count = 0;
  EXPECT_EQ(fn.IFGetNumDevices(iface, &count), GC_ERR_INVALID_HANDLE);
}
