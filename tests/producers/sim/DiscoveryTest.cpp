// Library lifecycle, system/interface/device enumeration and device information, per flavour.
#include "SimModule.h"
#include "talvirsim/SimRegisters.h"

#include "support/TestSystem.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

using namespace TalvirSimTest;

namespace {

std::string SystemInfo(const SGenTL& fn, TL_HANDLE system, TL_INFO_CMD command) {
  return InfoString([&](INFO_DATATYPE* t, void* b, size_t* s) { return fn.TLGetInfo(system, command, t, b, s); });
}

std::string DeviceInfo(const SGenTL& fn, IF_HANDLE iface, const std::string& id, DEVICE_INFO_CMD command) {
  return InfoString(
      [&](INFO_DATATYPE* t, void* b, size_t* s) { return fn.IFGetDeviceInfo(iface, id.c_str(), command, t, b, s); });
}

struct SEnumerated {
  explicit SEnumerated(const SGenTL& f) : fn(f) {
    if (fn.TLOpen(&system) != GC_ERR_SUCCESS) {
      return;
    }
    char id[1024];
    size_t size = sizeof id;
    fn.TLGetInterfaceID(system, 0, id, &size);
    fn.TLOpenInterface(system, id, &iface);
    bool8_t changed = 0;
    fn.IFUpdateDeviceList(iface, &changed, 1000);
    uint32_t count = 0;
    fn.IFGetNumDevices(iface, &count);
    for (uint32_t i = 0; i < count; ++i) {
      size = sizeof id;
      fn.IFGetDeviceID(iface, i, id, &size);
      devices.push_back(id);
    }
  }
  ~SEnumerated() {
    if (iface != nullptr) {
      fn.IFClose(iface);
    }
    if (system != nullptr) {
      fn.TLClose(system);
    }
  }
  const SGenTL& fn;
  TL_HANDLE system = nullptr;
  IF_HANDLE iface = nullptr;
  std::vector<std::string> devices;
};

}  // namespace

TEST(SimDiscovery, EveryStandardFunctionIsExported) {
  CSimModule module;
  ASSERT_TRUE(module.IsLoaded());
#define TALVIR_SIM_EXPECT_BOUND(name) EXPECT_NE(module.fn.name, nullptr) << #name;
  GENTL_FOR_EACH_FUNCTION_1_5(TALVIR_SIM_EXPECT_BOUND)
  GENTL_FOR_EACH_FUNCTION_1_6(TALVIR_SIM_EXPECT_BOUND)
#undef TALVIR_SIM_EXPECT_BOUND
  EXPECT_NE(module.fn.SetU3VCameraStatusCallback, nullptr);
}

TEST(SimDiscovery, FaultVariantsLackTheirExports) {
  CSimModule noQueue("TalvirSimNoQueue.cti");
  ASSERT_TRUE(noQueue.IsLoaded());
  EXPECT_EQ(noQueue.fn.DSQueueBuffer, nullptr);
  EXPECT_NE(noQueue.fn.DSAnnounceBuffer, nullptr);
  EXPECT_NE(noQueue.fn.GCGetInfo, nullptr);
  CSimModule noInfo("TalvirSimNoInfo.cti");
  ASSERT_TRUE(noInfo.IsLoaded());
  EXPECT_EQ(noInfo.fn.GCGetInfo, nullptr);
  EXPECT_EQ(noInfo.fn.GCGetLastError, nullptr);
  EXPECT_NE(noInfo.fn.DSQueueBuffer, nullptr);
  EXPECT_EQ(noInfo.Init(), GC_ERR_SUCCESS);
}

TEST(SimDiscovery, CallsBeforeInitFailWithNotInitialized) {
  CSimModule module;
  TL_HANDLE system = nullptr;
  EXPECT_EQ(module.fn.TLOpen(&system), GC_ERR_NOT_INITIALIZED);
  EXPECT_EQ(module.LastErrorCode(), GC_ERR_NOT_INITIALIZED);
  EXPECT_EQ(module.fn.GCCloseLib(), GC_ERR_NOT_INITIALIZED);
  ASSERT_EQ(module.Init(), GC_ERR_SUCCESS);
  EXPECT_EQ(module.fn.GCInitLib(), GC_ERR_RESOURCE_IN_USE);
}

TEST(SimDiscovery, DefaultConfigurationHasOneInterfaceWithAMonoAndAColourCamera) {
  CSimModule module;
  ASSERT_EQ(module.Init(), GC_ERR_SUCCESS);
  SEnumerated all(module.fn);
  ASSERT_NE(all.iface, nullptr);
  uint32_t interfaces = 0;
  EXPECT_EQ(module.fn.TLGetNumInterfaces(all.system, &interfaces), GC_ERR_SUCCESS);
  EXPECT_EQ(interfaces, 1u);
  ASSERT_EQ(all.devices.size(), 2u);
  EXPECT_EQ(all.devices[0], "SimMono-SIM00001");
  EXPECT_EQ(all.devices[1], "SimColor-SIM00002");
  EXPECT_EQ(DeviceInfo(module.fn, all.iface, all.devices[0], DEVICE_INFO_SERIAL_NUMBER), "SIM00001");
  EXPECT_EQ(DeviceInfo(module.fn, all.iface, all.devices[1], DEVICE_INFO_MODEL), "SimColor");
  EXPECT_EQ(DeviceInfo(module.fn, all.iface, all.devices[0], DEVICE_INFO_VENDOR), "Talvir");
  EXPECT_EQ(DeviceInfo(module.fn, all.iface, all.devices[0], DEVICE_INFO_TLTYPE), "Custom");
  EXPECT_EQ(SystemInfo(module.fn, all.system, TL_INFO_TLTYPE), "Custom");
  EXPECT_EQ(SystemInfo(module.fn, all.system, TL_INFO_NAME), "TalvirSim.cti");
}

TEST(SimDiscovery, FlavourFollowsTheFileNameTheModuleWasLoadedUnder) {
  struct SCase {
    const char* name;
    const char* tlType;
    const char* firstDevice;
  };
  const SCase cases[] = {{"TalvirSimGEVTL.cti", "GEV", "SimMono-GEV00001"},
                         {"U3VTLTAV.cti", "U3V", "SimMono U3V00001"},
                         {"TalvirSimCL.cti", "CL", "SimMono-CLG00001"},
                         {"TalvirSimCXP.cti", "CXP", "SimMono-CXP00001"},
                         {"AnyOtherName.cti", "Custom", "SimMono-SIM00001"}};
  for (const SCase& c : cases) {
    CSimModule module("TalvirSim.cti", c.name);
    ASSERT_EQ(module.Init(), GC_ERR_SUCCESS) << c.name;
    SEnumerated all(module.fn);
    ASSERT_FALSE(all.devices.empty()) << c.name;
    EXPECT_EQ(all.devices[0], c.firstDevice) << c.name;
    EXPECT_EQ(SystemInfo(module.fn, all.system, TL_INFO_TLTYPE), c.tlType) << c.name;
    const std::string ifType = InfoString([&](INFO_DATATYPE* t, void* b, size_t* s) {
      return module.fn.IFGetInfo(all.iface, INTERFACE_INFO_TLTYPE, t, b, s);
    });
    EXPECT_EQ(ifType, c.tlType) << c.name;
  }
}

TEST(SimDiscovery, GigEFlavourAnswersCommand1001WithThe420ByteRecord) {
  CSimModule module("TalvirSim.cti", "TalvirSimGEVTL.cti");
  ASSERT_EQ(module.Init(), GC_ERR_SUCCESS);
  SEnumerated all(module.fn);
  ASSERT_EQ(all.devices.size(), 2u);
  uint8_t record[420];
  std::memset(record, 0xEE, sizeof record);
  size_t size = sizeof record;
  INFO_DATATYPE type = 0;
  ASSERT_EQ(module.fn.IFGetDeviceInfo(all.iface, all.devices[0].c_str(), 1001, &type, record, &size), GC_ERR_SUCCESS);
  EXPECT_EQ(size, 420u);
  EXPECT_EQ(type, INFO_DATATYPE_BUFFER);
  EXPECT_EQ(record[0], 192);
  EXPECT_EQ(record[1], 168);
  EXPECT_EQ(record[2], 77);
  EXPECT_EQ(record[3], 11);
  EXPECT_STREQ(reinterpret_cast<const char*>(record + 4), "Talvir");
  EXPECT_STREQ(reinterpret_cast<const char*>(record + 36), "SimMono");
  EXPECT_EQ(record[108], 0x02);
  EXPECT_EQ(record[113], 0x0B);
  EXPECT_STREQ(reinterpret_cast<const char*>(record + 384), "GEV00001");
  EXPECT_STREQ(reinterpret_cast<const char*>(record + 400), "mono");
  uint32_t access = 0;
  std::memcpy(&access, record + 416, 4);
  EXPECT_EQ(access, 1u);
  // The default flavour does not know the command.
  CSimModule plain;
  ASSERT_EQ(plain.Init(), GC_ERR_SUCCESS);
  SEnumerated plainAll(plain.fn);
  size = sizeof record;
  EXPECT_EQ(plain.fn.IFGetDeviceInfo(plainAll.iface, plainAll.devices[0].c_str(), 1001, &type, record, &size),
            GC_ERR_INVALID_ID);
}

TEST(SimDiscovery, CameraLinkAndU3VFlavoursAnswerTheirCustomCommands) {
  CSimModule cl("TalvirSim.cti", "TalvirSimCL.cti");
  ASSERT_EQ(cl.Init(), GC_ERR_SUCCESS);
  SEnumerated clAll(cl.fn);
  ASSERT_FALSE(clAll.devices.empty());
  for (int command : {1201, 1202, 1230}) {
    uint64_t value = 99;
    size_t size = 8;
    INFO_DATATYPE type = 0;
    EXPECT_EQ(cl.fn.IFGetDeviceInfo(clAll.iface, clAll.devices[0].c_str(), command, &type, &value, &size),
              GC_ERR_SUCCESS)
        << command;
    EXPECT_EQ(type, INFO_DATATYPE_UINT64);
  }
  for (int command : {1203, 1204, 1205, 1206, 1207, 1208, 1209, 1231}) {
    EXPECT_NE(DeviceInfo(cl.fn, clAll.iface, clAll.devices[0], command), "<error>") << command;
  }
  EXPECT_EQ(DeviceInfo(cl.fn, clAll.iface, clAll.devices[0], 1208), "0.0");
  EXPECT_EQ(DeviceInfo(cl.fn, clAll.iface, clAll.devices[1], 1208), "0.1");

  CSimModule u3v("TalvirSim.cti", "U3VTLTAV.cti");
  ASSERT_EQ(u3v.Init(), GC_ERR_SUCCESS);
  SEnumerated u3vAll(u3v.fn);
  ASSERT_FALSE(u3vAll.devices.empty());
  EXPECT_EQ(DeviceInfo(u3v.fn, u3vAll.iface, u3vAll.devices[0], 1101), "SuperSpeed");
  EXPECT_NE(DeviceInfo(u3v.fn, u3vAll.iface, u3vAll.devices[0], 1100), "<error>");
  EXPECT_NE(DeviceInfo(u3v.fn, u3vAll.iface, u3vAll.devices[0], 1102), "<error>");
}

TEST(SimDiscovery, TooSmallBuffersReportTheNeededSize) {
  CSimModule module;
  ASSERT_EQ(module.Init(), GC_ERR_SUCCESS);
  SEnumerated all(module.fn);
  char id[4];
  size_t size = sizeof id;
  EXPECT_EQ(module.fn.IFGetDeviceID(all.iface, 0, id, &size), GC_ERR_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, std::strlen("SimMono-SIM00001") + 1);
  size = 0;
  EXPECT_EQ(module.fn.TLGetInterfaceID(all.system, 0, nullptr, &size), GC_ERR_SUCCESS);
  EXPECT_EQ(size, std::strlen("TalvirSim-IF0") + 1);
  EXPECT_EQ(module.fn.TLGetInterfaceID(all.system, 5, nullptr, &size), GC_ERR_INVALID_INDEX);
  EXPECT_EQ(module.fn.IFGetDeviceID(all.iface, 0, id, nullptr), GC_ERR_INVALID_PARAMETER);
}

TEST(SimDiscovery, BadHandlesAndUnknownIdsAreRejected) {
  CSimModule module;
  ASSERT_EQ(module.Init(), GC_ERR_SUCCESS);
  SEnumerated all(module.fn);
  uint32_t count = 0;
  EXPECT_EQ(module.fn.IFGetNumDevices(nullptr, &count), GC_ERR_INVALID_HANDLE);
  EXPECT_EQ(module.fn.IFGetNumDevices(all.system, &count), GC_ERR_INVALID_HANDLE);  // a system is no interface
  int notAHandle = 0;
  EXPECT_EQ(module.fn.TLGetNumInterfaces(&notAHandle, &count), GC_ERR_INVALID_HANDLE);
  IF_HANDLE iface = nullptr;
  EXPECT_EQ(module.fn.TLOpenInterface(all.system, "NoSuchInterface", &iface), GC_ERR_INVALID_ID);
  EXPECT_NE(module.LastError().find("NoSuchInterface"), std::string::npos);
  DEV_HANDLE device = nullptr;
  EXPECT_EQ(module.fn.IFOpenDevice(all.iface, "NoSuchDevice", DEVICE_ACCESS_CONTROL, &device), GC_ERR_INVALID_ID);
  EXPECT_EQ(module.fn.IFOpenDevice(all.iface, nullptr, DEVICE_ACCESS_CONTROL, &device), GC_ERR_INVALID_PARAMETER);
}

TEST(SimDiscovery, LastErrorIsKeptPerThread) {
  CSimModule module;
  ASSERT_EQ(module.Init(), GC_ERR_SUCCESS);
  uint32_t count = 0;
  EXPECT_EQ(module.fn.IFGetNumDevices(nullptr, &count), GC_ERR_INVALID_HANDLE);
  GC_ERROR otherThread = 0;
  std::thread([&] {
    TL_HANDLE system = nullptr;
    module.fn.TLOpen(&system);
    EXPECT_EQ(module.fn.TLOpen(&system), GC_ERR_RESOURCE_IN_USE);
    otherThread = module.LastErrorCode();
    module.fn.TLClose(system);
  }).join();
  EXPECT_EQ(otherThread, GC_ERR_RESOURCE_IN_USE);
  EXPECT_EQ(module.LastErrorCode(), GC_ERR_INVALID_HANDLE);
}

TEST(SimDiscovery, TheRemainingFunctionsAnswerOrSayTheyAreNotImplemented) {
  CSimModule module;
  ASSERT_EQ(module.Init(), GC_ERR_SUCCESS);
  const auto& fn = module.fn;
  SOpenDevice device(fn);
  ASSERT_TRUE(device.ok);
  bool8_t changed = 7;
  EXPECT_EQ(fn.TLUpdateInterfaceList(device.system, &changed, 100), GC_ERR_SUCCESS);
  EXPECT_EQ(changed, 0);
  EXPECT_EQ(InfoString([&](INFO_DATATYPE* t, void* b, size_t* s) {
              return fn.TLGetInterfaceInfo(device.system, "TalvirSim-IF0", INTERFACE_INFO_DISPLAYNAME, t, b, s);
            }),
            "Simulated Custom interface 0");
  size_t size = 8;
  uint64_t value = 0;
  EXPECT_EQ(fn.TLGetInterfaceInfo(device.system, "Nope", INTERFACE_INFO_ID, nullptr, &value, &size), GC_ERR_INVALID_ID);
  // Stacked writes run every entry.
  uint8_t gain[4] = {0, 0, 0, 100};
  uint8_t black[4] = {0, 0, 0, 70};
  PORT_REGISTER_STACK_ENTRY entries[2] = {{TalvirSim::Remote::kGainRaw, gain, 4},
                                          {TalvirSim::Remote::kBlackLevelRaw, black, 4}};
  size_t count = 2;
  EXPECT_EQ(fn.GCWritePortStacked(device.port, entries, &count), GC_ERR_SUCCESS);
  EXPECT_EQ(ReadBE32(fn, device.port, TalvirSim::Remote::kGainRaw), 100u);
  EXPECT_EQ(ReadBE32(fn, device.port, TalvirSim::Remote::kBlackLevelRaw), 70u);
  // The new-buffer event describes itself.
  EVENT_HANDLE event = nullptr;
  ASSERT_EQ(fn.GCRegisterEvent(device.stream, EVENT_NEW_BUFFER, &event), GC_ERR_SUCCESS);
  EXPECT_EQ(InfoValue<int32_t>([&](INFO_DATATYPE* t, void* b, size_t* s) {
              return fn.EventGetInfo(event, EVENT_EVENT_TYPE, t, b, s);
            }),
            EVENT_NEW_BUFFER);
  EXPECT_EQ(InfoValue<size_t>(
                [&](INFO_DATATYPE* t, void* b, size_t* s) { return fn.EventGetInfo(event, EVENT_SIZE_MAX, t, b, s); }),
            sizeof(EVENT_NEW_BUFFER_DATA));
  // Multi-part, flow and composite-buffer functions.
  auto buffers = device.AnnounceAndQueue(1);
  ASSERT_EQ(buffers.size(), 1u);
  size = 8;
  EXPECT_EQ(fn.DSGetBufferPartInfo(device.stream, buffers[0], 0, BUFFER_PART_INFO_BASE, nullptr, &value, &size),
            GC_ERR_INVALID_INDEX);
  EXPECT_EQ(fn.DSGetBufferPartInfoStacked(device.stream, buffers[0], nullptr, 0), GC_ERR_NOT_IMPLEMENTED);
  EXPECT_EQ(fn.DSGetFlowInfo(device.stream, 0, FLOW_INFO_SIZE, nullptr, &value, &size), GC_ERR_NOT_IMPLEMENTED);
  EXPECT_EQ(fn.DSGetBufferSegmentInfo(device.stream, buffers[0], 0, SEGMENT_INFO_BASE, nullptr, &value, &size),
            GC_ERR_NOT_IMPLEMENTED);
  BUFFER_HANDLE composite = nullptr;
  EXPECT_EQ(fn.DSAnnounceCompositeBuffer(device.stream, 0, nullptr, nullptr, nullptr, &composite),
            GC_ERR_NOT_IMPLEMENTED);
}

TEST(SimDiscovery, ALinkBehavesAsTheNameItWasLoadedUnderAndFindsItsConfigurationBesideIt) {
  CTempFolder folder;
  const std::filesystem::path link = folder.Path() / "LinkedGEVTL.cti";
  TALVIR::Testing::LinkFile(std::filesystem::path(TALVIR_BIN_DIR) / "TalvirSim.cti", link);
  std::ofstream(link.string() + ".json") << R"({"interfaces":[{"id":"ViaLink","devices":[{"id":"Linked"}]}]})";
  TALVIR::Platform::CDynamicModule module(link.string());
  ASSERT_TRUE(module.IsLoaded());
  auto init = module.Symbol<PFN_GCInitLib>("GCInitLib");
  auto close = module.Symbol<PFN_GCCloseLib>("GCCloseLib");
  auto open = module.Symbol<PFN_TLOpen>("TLOpen");
  auto interfaceId = module.Symbol<PFN_TLGetInterfaceID>("TLGetInterfaceID");
  auto info = module.Symbol<PFN_TLGetInfo>("TLGetInfo");
  ASSERT_EQ(init(), GC_ERR_SUCCESS);
  TL_HANDLE system = nullptr;
  ASSERT_EQ(open(&system), GC_ERR_SUCCESS);
  EXPECT_EQ(InfoString([&](INFO_DATATYPE* t, void* b, size_t* s) { return info(system, TL_INFO_TLTYPE, t, b, s); }),
            "GEV");
  char id[64];
  size_t size = sizeof id;
  ASSERT_EQ(interfaceId(system, 0, id, &size), GC_ERR_SUCCESS);
  EXPECT_STREQ(id, "ViaLink");
  EXPECT_EQ(close(), GC_ERR_SUCCESS);
}

TEST(SimDiscovery, TheEnvironmentVariableNamesAConfigurationForEveryModule) {
  CTempFolder folder;
  const std::filesystem::path config = folder.Path() / "shared.json";
  std::ofstream(config) << R"({"interfaces":[{"id":"FromEnvironment","devices":[]}]})";
  TALVIR::Testing::SetEnvironmentValue("TALVIR_SIM_CONFIG", config.string());
  CSimModule module;
  const GC_ERROR result = module.Init();
  CSimModule missing;
  TALVIR::Testing::SetEnvironmentValue("TALVIR_SIM_CONFIG", (folder.Path() / "absent.json").string());
  const GC_ERROR missingResult = missing.Init();
  const std::string missingText = missing.LastError();
  TALVIR::Testing::UnsetEnvironmentValue("TALVIR_SIM_CONFIG");
  ASSERT_EQ(result, GC_ERR_SUCCESS);
  TL_HANDLE system = nullptr;
  ASSERT_EQ(module.fn.TLOpen(&system), GC_ERR_SUCCESS);
  char id[64];
  size_t size = sizeof id;
  ASSERT_EQ(module.fn.TLGetInterfaceID(system, 0, id, &size), GC_ERR_SUCCESS);
  EXPECT_STREQ(id, "FromEnvironment");
  EXPECT_EQ(missingResult, GC_ERR_INVALID_PARAMETER);
  EXPECT_NE(missingText.find("TALVIR_SIM_CONFIG"), std::string::npos) << missingText;
}
