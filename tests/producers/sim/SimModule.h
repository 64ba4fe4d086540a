#pragma once
// Loads a private copy of a simulated producer file, as a consumer would, and binds its GenTL functions.
// Every CSimModule copies the file into a fresh temporary folder, so each test gets a module with fresh state.
#include "platform/DynamicModule.h"

#include "support/TempDirectory.h"

#include <GenTL/GenTL.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace TalvirSimTest {

using namespace GenTL;

#define TALVIR_SIM_DECLARE_POINTER(name) PFN_##name name = nullptr;
struct SGenTL {
  GENTL_FOR_EACH_FUNCTION_1_5(TALVIR_SIM_DECLARE_POINTER)
  GENTL_FOR_EACH_FUNCTION_1_6(TALVIR_SIM_DECLARE_POINTER)
  void (*SetU3VCameraStatusCallback)(void (*)(const char*, bool)) = nullptr;
};
#undef TALVIR_SIM_DECLARE_POINTER

using CTempFolder = TALVIR::Testing::CTempDirectory;

class CSimModule {
public:
  // `builtFile`: a file of the build ("TalvirSim.cti", "TalvirSimNoQueue.cti", ...); `loadName`: the name the copy
  // gets (it selects the flavour); `json`: written beside the copy as <loadName>.json when not empty.
  explicit CSimModule(const std::string& builtFile = "TalvirSim.cti", const std::string& loadName = "",
                      const std::string& json = "") {
    const std::string name = loadName.empty() ? builtFile : loadName;
    m_path = m_folder.Path() / name;
    std::filesystem::copy_file(std::filesystem::path(TALVIR_BIN_DIR) / builtFile, m_path);
    if (!json.empty()) {
      std::ofstream(m_path.string() + ".json") << json;
    }
    m_module = TALVIR::Platform::CDynamicModule(m_path.string());
#define TALVIR_SIM_BIND(name) fn.name = m_module.Symbol<PFN_##name>(#name);
    GENTL_FOR_EACH_FUNCTION_1_5(TALVIR_SIM_BIND)
    GENTL_FOR_EACH_FUNCTION_1_6(TALVIR_SIM_BIND)
#undef TALVIR_SIM_BIND
    fn.SetU3VCameraStatusCallback =
        m_module.Symbol<void (*)(void (*)(const char*, bool))>("SetU3VCameraStatusCallback");
  }
  ~CSimModule() {
    if (m_initialised && fn.GCCloseLib != nullptr) {
      fn.GCCloseLib();
    }
  }
  CSimModule(const CSimModule&) = delete;
  CSimModule& operator=(const CSimModule&) = delete;

  bool IsLoaded() const { return m_module.IsLoaded(); }
  const std::filesystem::path& Path() const { return m_path; }

  GC_ERROR Init() {
    const GC_ERROR result = fn.GCInitLib();
    m_initialised = result == GC_ERR_SUCCESS;
    return result;
  }
  GC_ERROR Close() {
    m_initialised = false;
    return fn.GCCloseLib();
  }

  // The text GCGetLastError reports on this thread.
  std::string LastError() const {
    if (fn.GCGetLastError == nullptr) {
      return "(no GCGetLastError)";
    }
    GC_ERROR code = 0;
    size_t size = 0;
    if (fn.GCGetLastError(&code, nullptr, &size) != GC_ERR_SUCCESS) {
      return "(GCGetLastError failed)";
    }
    std::string text(size, '\0');
    fn.GCGetLastError(&code, text.data(), &size);
    text.resize(size > 0 ? size - 1 : 0);
    return text;
  }
  GC_ERROR LastErrorCode() const {
    GC_ERROR code = 0;
    size_t size = 0;
    fn.GCGetLastError(&code, nullptr, &size);
    return code;
  }

  SGenTL fn;

private:
  CTempFolder m_folder;
  std::filesystem::path m_path;
  TALVIR::Platform::CDynamicModule m_module;
  bool m_initialised = false;
};

// ---- Small helpers over the C interface ----

// A string result of an info function with size negotiation; the call is given (type, buffer, size) at the end.
template <typename TCall>
std::string InfoString(TCall call) {
  INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
  size_t size = 0;
  if (call(&type, nullptr, &size) != GC_ERR_SUCCESS) {
    return "<error>";
  }
  std::string text(size, '\0');
  if (call(&type, text.data(), &size) != GC_ERR_SUCCESS) {
    return "<error>";
  }
  text.resize(size > 0 ? size - 1 : 0);
  return text;
}

template <typename T, typename TCall>
T InfoValue(TCall call) {
  INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
  T value{};
  size_t size = sizeof value;
  call(&type, &value, &size);
  return value;
}

inline uint32_t ReadBE32(const SGenTL& fn, PORT_HANDLE port, uint64_t address) {
  uint8_t bytes[4] = {0, 0, 0, 0};
  size_t size = 4;
  fn.GCReadPort(port, address, bytes, &size);
  return (uint32_t{bytes[0]} << 24) | (uint32_t{bytes[1]} << 16) | (uint32_t{bytes[2]} << 8) | bytes[3];
}

inline GC_ERROR WriteBE32(const SGenTL& fn, PORT_HANDLE port, uint64_t address, uint32_t value) {
  const uint8_t bytes[4] = {static_cast<uint8_t>(value >> 24), static_cast<uint8_t>(value >> 16),
                            static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)};
  size_t size = 4;
  return fn.GCWritePort(port, address, bytes, &size);
}

// System, first interface, one device with its remote port and data stream, opened in that order and closed in
// reverse. Check `ok` (and `error`) before use.
struct SOpenDevice {
  SOpenDevice(const SGenTL& f, uint32_t deviceIndex = 0, DEVICE_ACCESS_FLAGS flags = DEVICE_ACCESS_CONTROL,
              uint32_t interfaceIndex = 0)
      : fn(f) {
    error = fn.TLOpen(&system);
    if (error != GC_ERR_SUCCESS) {
      return;
    }
    char id[1024];
    size_t size = sizeof id;
    if ((error = fn.TLGetInterfaceID(system, interfaceIndex, id, &size)) != GC_ERR_SUCCESS ||
        (error = fn.TLOpenInterface(system, id, &iface)) != GC_ERR_SUCCESS) {
      return;
    }
    bool8_t changed = 0;
    fn.IFUpdateDeviceList(iface, &changed, 1000);
    size = sizeof id;
    if ((error = fn.IFGetDeviceID(iface, deviceIndex, id, &size)) != GC_ERR_SUCCESS) {
      return;
    }
    deviceId = id;
    if ((error = fn.IFOpenDevice(iface, id, flags, &device)) != GC_ERR_SUCCESS ||
        (error = fn.DevGetPort(device, &port)) != GC_ERR_SUCCESS) {
      return;
    }
    size = sizeof id;
    if ((error = fn.DevGetDataStreamID(device, 0, id, &size)) != GC_ERR_SUCCESS ||
        (error = fn.DevOpenDataStream(device, id, &stream)) != GC_ERR_SUCCESS) {
      return;
    }
    ok = true;
  }
  ~SOpenDevice() {
    if (stream != nullptr) {
      fn.DSClose(stream);
    }
    if (device != nullptr) {
      fn.DevClose(device);
    }
    if (iface != nullptr) {
      fn.IFClose(iface);
    }
    if (system != nullptr) {
      fn.TLClose(system);
    }
  }
  SOpenDevice(const SOpenDevice&) = delete;
  SOpenDevice& operator=(const SOpenDevice&) = delete;

  size_t PayloadSize() const {
    return InfoValue<size_t>(
        [&](INFO_DATATYPE* t, void* b, size_t* s) { return fn.DSGetInfo(stream, STREAM_INFO_PAYLOAD_SIZE, t, b, s); });
  }
  size_t StreamInfo(STREAM_INFO_CMD command) const {
    return InfoValue<size_t>(
        [&](INFO_DATATYPE* t, void* b, size_t* s) { return fn.DSGetInfo(stream, command, t, b, s); });
  }
  template <typename T>
  T BufferInfo(BUFFER_HANDLE buffer, BUFFER_INFO_CMD command) const {
    return InfoValue<T>(
        [&](INFO_DATATYPE* t, void* b, size_t* s) { return fn.DSGetBufferInfo(stream, buffer, command, t, b, s); });
  }
  // Announces `count` producer-allocated buffers of the payload size and queues them.
  std::vector<BUFFER_HANDLE> AnnounceAndQueue(size_t count) {
    std::vector<BUFFER_HANDLE> buffers;
    const size_t payload = PayloadSize();
    for (size_t i = 0; i < count; ++i) {
      BUFFER_HANDLE buffer = nullptr;
      if (fn.DSAllocAndAnnounceBuffer(stream, payload, reinterpret_cast<void*>(i + 1), &buffer) != GC_ERR_SUCCESS ||
          fn.DSQueueBuffer(stream, buffer) != GC_ERR_SUCCESS) {
        break;
      }
      buffers.push_back(buffer);
    }
    return buffers;
  }

  const SGenTL& fn;
  GC_ERROR error = GC_ERR_SUCCESS;
  bool ok = false;
  TL_HANDLE system = nullptr;
  IF_HANDLE iface = nullptr;
  DEV_HANDLE device = nullptr;
  PORT_HANDLE port = nullptr;
  DS_HANDLE stream = nullptr;
  std::string deviceId;
};

}  // namespace TalvirSimTest
