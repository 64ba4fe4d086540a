#pragma once
// What camera_bench and camera_soak share: cameras of the simulated producer made the way the library makes them
// (manager, discovery, registry) with a configuration of the program's choosing, a raw GenTL loop over the same
// camera's data stream, the stream's buffer accounting, and the process figures (resident memory, CPU time of a
// thread) read from /proc.
#include "camera/Camera.h"
#include "camera/CameraRegistry.h"
#include "camera/CtiPort.h"
#include "front/CtiManager.h"
#include "gentl/Cti.h"

#include <talvir/Talvir.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <list>
#include <new>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <stdlib.h>

namespace TALVIR::Bench {

// Camera registers used directly (big-endian, addresses of the simulated camera).
constexpr uint64_t kAcquisitionStart = 0x0204;
constexpr uint64_t kAcquisitionStop = 0x0208;
constexpr uint64_t kTimestampLatch = 0x0280;
constexpr uint64_t kTimestampLatchValue = 0x0288;

// One simulated device of the configuration.
struct SSimDevice {
  std::string id;
  uint32_t width;
  uint32_t height;
  double frameRate;  // 0: free run
  uint32_t bufferAnnounceMin = 1;
};

inline std::string SimConfig(const std::vector<SSimDevice>& devices) {
  std::string json = "{\"interfaces\":[{\"id\":\"Bench\",\"devices\":[";
  for (size_t i = 0; i < devices.size(); ++i) {
    const SSimDevice& d = devices[i];
    json += std::string(i == 0 ? "" : ",") + "{\"id\":\"" + d.id + "\",\"serial\":\"BENCH000" + std::to_string(i + 1) +
            "\",\"sensorWidth\":" + std::to_string(d.width) + ",\"sensorHeight\":" + std::to_string(d.height) +
            ",\"pixelFormats\":[\"Mono8\"],\"pixelFormat\":\"Mono8\",\"timestampFrequency\":1000000000" +
            ",\"frameRate\":" + std::to_string(d.frameRate) +
            ",\"bufferAnnounceMin\":" + std::to_string(d.bufferAnnounceMin) + "}";
  }
  return json + "]}]}";
}

// The producer TalvirSim.cti of the build folder loaded with `devices`, and the registry's cameras of them.
class CBenchRig {
public:
  explicit CBenchRig(const std::vector<SSimDevice>& devices) {
    std::string pattern = (std::filesystem::temp_directory_path() / "talvir-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
      throw std::runtime_error("cannot make a temporary folder");
    }
    m_folder = pattern;
    const std::filesystem::path config = m_folder / "sim.json";
    std::ofstream(config, std::ios::binary) << SimConfig(devices);
    setenv("TALVIR_SIM_CONFIG", config.string().c_str(), 1);
    m_manager = std::make_unique<CCtiManager>(std::string(TALVIR_BIN_DIR) + "/");
    m_producer = m_manager->GetOrLoadProducer("TalvirSim.cti");
    if (m_producer == nullptr) {
      throw std::runtime_error("cannot load TalvirSim.cti from " + std::string(TALVIR_BIN_DIR));
    }
    m_producer->Discover(&m_records);
    if (m_records.size() != devices.size()) {
      throw std::runtime_error("the simulated producer reports " + std::to_string(m_records.size()) + " devices");
    }
  }
  ~CBenchRig() {
    for (CCamera* camera : m_cameras) {
      camera->Release();
    }
    for (ICameraInfo* record : m_records) {
      record->Destroy();
    }
    m_manager.reset();
    unsetenv("TALVIR_SIM_CONFIG");
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
  }
  CBenchRig(const CBenchRig&) = delete;
  CBenchRig& operator=(const CBenchRig&) = delete;

  // The registry's camera of device `index`, released with the rig.
  CCamera& Camera(size_t index) {
    auto it = m_records.begin();
    std::advance(it, static_cast<long>(index));
    auto* const camera = dynamic_cast<CCamera*>(m_manager->Registry()->CreateCamera(*it));
    if (camera == nullptr) {
      throw std::runtime_error("the registry made no camera");
    }
    if (std::find(m_cameras.begin(), m_cameras.end(), camera) == m_cameras.end()) {
      m_cameras.push_back(camera);
    }
    return *camera;
  }

private:
  std::filesystem::path m_folder;
  std::unique_ptr<CCtiManager> m_manager;
  CCti* m_producer = nullptr;
  std::list<ICameraInfo*> m_records;
  std::vector<CCamera*> m_cameras;
};

inline void WriteRegister(CCtiPort& remote, uint64_t address, uint32_t value) {
  const uint8_t bytes[4] = {static_cast<uint8_t>(value >> 24), static_cast<uint8_t>(value >> 16),
                            static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)};
  remote.Write(bytes, static_cast<int64_t>(address), 4);
}

inline uint64_t ReadRegister64(CCtiPort& remote, uint64_t address) {
  uint8_t bytes[8] = {};
  remote.Read(bytes, static_cast<int64_t>(address), 8);
  uint64_t value = 0;
  for (uint8_t byte : bytes) {
    value = value << 8 | byte;
  }
  return value;
}

inline int64_t SteadyNs() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

// The simulated camera stamps frames with nanoseconds of the process's steady clock counted from an origin of its
// own. Latching its clock between two readings of ours gives that origin to within half the bracket; the tightest
// of many brackets counts. `uncertaintyNs` receives the half bracket.
inline int64_t CameraClockOriginNs(CCamera& camera, int64_t& uncertaintyNs) {
  CCtiPort* const remote = camera.RemotePort();
  int64_t best = INT64_MAX;
  int64_t origin = 0;
  for (int i = 0; i < 200; ++i) {
    const int64_t before = SteadyNs();
    WriteRegister(*remote, kTimestampLatch, 1);
    const int64_t after = SteadyNs();
    const auto ticks = static_cast<int64_t>(ReadRegister64(*remote, kTimestampLatchValue));
    if (after - before < best) {
      best = after - before;
      origin = before + (after - before) / 2 - ticks;
    }
  }
  uncertaintyNs = best / 2;
  return origin;
}

// What the producer reports about a camera's data stream (all zero when the stream is closed).
struct SStreamCounts {
  uint64_t announced = 0;
  uint64_t queued = 0;
  uint64_t awaitingDelivery = 0;
  uint64_t delivered = 0;
};

inline SStreamCounts StreamCounts(CCamera& camera) {
  SStreamCounts counts;
  CCtiPort* const stream = camera.StreamPort();
  if (stream == nullptr || stream->Producer() == nullptr) {
    return counts;
  }
  const auto query = [&](int32_t command) {
    uint64_t value = 0;
    size_t size = sizeof value;
    GenTL::INFO_DATATYPE type = 0;
    stream->Producer()->Api().DSGetInfo(stream->Handle(), command, &type, &value, &size);
    return value;
  };
  counts.announced = query(GenTL::STREAM_INFO_NUM_ANNOUNCED);
  counts.queued = query(GenTL::STREAM_INFO_NUM_QUEUED);
  counts.awaitingDelivery = query(GenTL::STREAM_INFO_NUM_AWAIT_DELIVERY);
  counts.delivered = query(GenTL::STREAM_INFO_NUM_DELIVERED);
  return counts;
}

// A minimal consumer's GenTL loop over an open camera's data stream, with buffers of its own: wait for a buffer,
// ask what a consumer needs to use it (base, bytes filled, width, height, pixel format, frame ID), queue it again.
// With `describeFully` it asks every figure the camera core's images are described by (the 17 queries of an
// image's fill once the producer-specific ones are known to be refused), so that comparing with it leaves out the
// producer's cost of answering.
class CRawLoop {
public:
  struct SFrame {
    void* handle = nullptr;
    void* base = nullptr;
    uint64_t sizeFilled = 0;
    uint64_t width = 0;
    uint64_t height = 0;
    uint64_t pixelFormat = 0;
    uint64_t frameId = 0;
  };

  CRawLoop(CCamera& camera, size_t bufferCount, size_t bufferSize, bool describeFully = false)
      : m_remote(*camera.RemotePort()), m_api(camera.StreamPort()->Producer()->Api()),
        m_stream(camera.StreamPort()->Handle()), m_describeFully(describeFully) {
    for (size_t i = 0; i < bufferCount; ++i) {
      // Aligned like the camera's own buffers, so that both loops see the same memory behaviour.
      auto* const memory = static_cast<uint8_t*>(::operator new[](bufferSize, std::align_val_t{64}));
      m_memory.push_back(memory);
      void* handle = nullptr;
      if (m_api.DSAnnounceBuffer(m_stream, memory, bufferSize, nullptr, &handle) != GenTL::GC_ERR_SUCCESS) {
        throw std::runtime_error("DSAnnounceBuffer failed");
      }
      m_handles.push_back(handle);
      m_api.DSQueueBuffer(m_stream, handle);
    }
    if (m_api.GCRegisterEvent(m_stream, GenTL::EVENT_NEW_BUFFER, &m_event) != GenTL::GC_ERR_SUCCESS ||
        m_api.DSStartAcquisition(m_stream, GenTL::ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE) != GenTL::GC_ERR_SUCCESS) {
      throw std::runtime_error("the raw loop cannot start acquisition");
    }
    WriteRegister(m_remote, kAcquisitionStart, 1);
  }
  ~CRawLoop() {
    WriteRegister(m_remote, kAcquisitionStop, 1);
    m_api.DSStopAcquisition(m_stream, GenTL::ACQ_STOP_FLAGS_DEFAULT);
    m_api.GCUnregisterEvent(m_stream, GenTL::EVENT_NEW_BUFFER);
    m_api.DSFlushQueue(m_stream, GenTL::ACQ_QUEUE_ALL_DISCARD);
    for (void* handle : m_handles) {
      m_api.DSRevokeBuffer(m_stream, handle, nullptr, nullptr);
    }
    for (uint8_t* memory : m_memory) {
      ::operator delete[](memory, std::align_val_t{64});
    }
  }
  CRawLoop(const CRawLoop&) = delete;
  CRawLoop& operator=(const CRawLoop&) = delete;

  // The next filled buffer, described; false on a time-out or failure.
  bool Next(SFrame& frame, uint64_t timeoutMs) {
    GenTL::EVENT_NEW_BUFFER_DATA data{};
    size_t size = sizeof data;
    if (m_api.EventGetData(m_event, &data, &size, timeoutMs) != GenTL::GC_ERR_SUCCESS) {
      return false;
    }
    frame.handle = data.BufferHandle;
    const bool described = Info(frame.handle, GenTL::BUFFER_INFO_BASE, &frame.base) &&
                           Info(frame.handle, GenTL::BUFFER_INFO_SIZE_FILLED, &frame.sizeFilled) &&
                           Info(frame.handle, GenTL::BUFFER_INFO_WIDTH, &frame.width) &&
                           Info(frame.handle, GenTL::BUFFER_INFO_HEIGHT, &frame.height) &&
                           Info(frame.handle, GenTL::BUFFER_INFO_PIXELFORMAT, &frame.pixelFormat) &&
                           Info(frame.handle, GenTL::BUFFER_INFO_FRAMEID, &frame.frameId);
    if (!described || !m_describeFully) {
      return described;
    }
    uint8_t flag = 0;
    uint64_t value = 0;
    bool ok = Info(frame.handle, GenTL::BUFFER_INFO_IS_INCOMPLETE, &flag);
    for (const int32_t command :
         {GenTL::BUFFER_INFO_SIZE, GenTL::BUFFER_INFO_XOFFSET, GenTL::BUFFER_INFO_YOFFSET, GenTL::BUFFER_INFO_XPADDING,
          GenTL::BUFFER_INFO_YPADDING, GenTL::BUFFER_INFO_TIMESTAMP, GenTL::BUFFER_INFO_IMAGEOFFSET,
          GenTL::BUFFER_INFO_PAYLOADTYPE}) {
      ok = Info(frame.handle, command, &value) && ok;
    }
    ok = Info(frame.handle, GenTL::BUFFER_INFO_IMAGEPRESENT, &flag) && ok;
    ok = Info(frame.handle, GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA, &flag) && ok;
    return ok;
  }
  // One more figure of a buffer (for example its time stamp).
  template <typename T>
  bool Info(void* handle, int32_t command, T* value) {
    GenTL::INFO_DATATYPE type = 0;
    size_t size = sizeof *value;
    return m_api.DSGetBufferInfo(m_stream, handle, command, &type, value, &size) == GenTL::GC_ERR_SUCCESS;
  }
  void Requeue(const SFrame& frame) { m_api.DSQueueBuffer(m_stream, frame.handle); }

private:
  CCtiPort& m_remote;
  const CGenTLFunctionTable& m_api;
  void* m_stream;
  bool m_describeFully;
  void* m_event = nullptr;
  std::vector<uint8_t*> m_memory;
  std::vector<void*> m_handles;
};

// Resident memory of the process in kB (VmRSS of /proc/self/status); 0 when unknown.
inline uint64_t ResidentKb() {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.rfind("VmRSS:", 0) == 0) {
      return std::strtoull(line.c_str() + 6, nullptr, 10);
    }
  }
  return 0;
}

// The process's threads (task IDs of /proc/self/task).
inline std::set<long> ThreadIds() {
  std::set<long> ids;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) {
    ids.insert(std::strtol(entry.path().filename().c_str(), nullptr, 10));
  }
  return ids;
}

// Nanoseconds a thread of the process (0: the calling thread) has run on a CPU (first figure of its schedstat);
// -1 when unknown.
inline int64_t ThreadCpuNs(long threadId) {
  std::ifstream stat(threadId == 0 ? std::string("/proc/thread-self/schedstat")
                                   : "/proc/self/task/" + std::to_string(threadId) + "/schedstat");
  long long ns = -1;
  stat >> ns;
  return ns;
}

}  // namespace TALVIR::Bench
