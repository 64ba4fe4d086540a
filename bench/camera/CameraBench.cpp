// Speed of the camera core against a raw GenTL loop on the same simulated camera, measured in the same run.
//
//   camera_bench             Google Benchmark table of every measurement
//   camera_bench --summary   the same, then a short table of the ratios and figures the goals are about
//
// Measurements (all on cameras of the simulated producer, Mono8; devices are listed in Devices()):
//   Direct/<side>/<size>      frames/s of a direct-mode GetImage + Release loop over ICamera (side "ours"), of a
//                             raw GenTL loop (side "raw": EventGetData, the six buffer queries a minimal consumer
//                             makes, DSQueueBuffer) and of a raw loop asking all 17 figures an image of ours is
//                             described by (side "raw_full"), on the same free-running camera, one after another.
//                             ours / raw is what the goals are about; ours / raw_full leaves out the producer's cost
//                             of answering the queries a minimal consumer does not make, so it shows the camera
//                             core's own work (image object, locks, hand-over).
//   Interleaved/<size>        the same loops alternated in short slices, so that all see the same load of the
//                             machine; "ratio" is the median over the rounds of ours / raw frames/s, the ratio the
//                             summary reports against the goal.
//   Latency/<side>            time from the producer delivering a frame to the application having it (see
//                             LatencyOf), at 1000 frames/s: raw loop, newest-image and fresh-image modes.
//   Cpu100fps/<side>          CPU time per frame at 100 frames/s in newest-image mode, and of the raw loop.
//   ResidentMemory            VmRSS before open, open, and while grabbing with 8 buffers of 2448x2048.
#include "BenchRig.h"

#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

using namespace TALVIR;
using namespace TALVIR::Bench;

namespace {

enum EDevice : size_t { kSmall = 0, kLarge = 1, kTimed = 2, kSlow = 3 };

std::vector<SSimDevice> Devices() {
  return {{"Small", 64, 64, 0}, {"Large", 2448, 2048, 0}, {"Timed", 64, 64, 1000}, {"Slow", 64, 64, 100}};
}

// Buffers per loop: the small frames measure per-frame overhead with a deep queue, the large ones the fill rate.
size_t BufferCountOf(EDevice device) { return device == kLarge ? 8 : 16; }

std::string SizeName(EDevice device) { return device == kLarge ? "2448x2048" : "64x64"; }

CBenchRig* g_rig = nullptr;

CCamera& OpenCamera(EDevice device) {
  CCamera& camera = g_rig->Camera(device);
  if (!camera.IsOpen() && camera.Open(AccessMode::Control) != Status::Ok) {
    throw std::runtime_error("cannot open the simulated camera");
  }
  return camera;
}

size_t PayloadOf(EDevice device) {
  const SSimDevice d = Devices()[device];
  return size_t{d.width} * d.height;
}

// One side of a throughput comparison, started and stopped around its frames.
class CSide {
public:
  virtual ~CSide() = default;
  // One frame taken and given back; false on failure.
  virtual bool Frame() = 0;
};

class COurs final : public CSide {
public:
  COurs(CCamera& camera, uint64_t buffers) : m_camera(camera) {
    m_camera.SetBufferCount(buffers);
    if (m_camera.StartGrabbing(GrabMode::Direct, 0) != Status::Ok) {
      throw std::runtime_error("StartGrabbing failed");
    }
  }
  ~COurs() override { m_camera.StopGrabbing(); }
  bool Frame() override {
    IImage* image = nullptr;
    const int32_t result = m_camera.GetImage(&image, 5000);
    if (image == nullptr) {
      return false;
    }
    // What a consumer reads of every image; the same figures as the raw loop's queries.
    benchmark::DoNotOptimize(image->GetBuffer());
    benchmark::DoNotOptimize(image->GetFilledSize() + image->GetWidth() + image->GetHeight() + image->GetPixelFormat() +
                             image->GetFrameId());
    image->Release();
    return result == Status::Ok;
  }

private:
  CCamera& m_camera;
};

class CRaw final : public CSide {
public:
  CRaw(CCamera& camera, size_t buffers, size_t bufferSize, bool describeFully)
      : m_loop(camera, buffers, bufferSize, describeFully) {}
  bool Frame() override {
    CRawLoop::SFrame frame;
    if (!m_loop.Next(frame, 5000)) {
      return false;
    }
    benchmark::DoNotOptimize(frame);
    m_loop.Requeue(frame);
    return true;
  }

private:
  CRawLoop m_loop;
};

// The sides of a throughput comparison: the minimal raw loop, the raw loop asking every figure our images are
// described by, and the camera core.
enum ESide { kRaw = 0, kRawFull = 1, kOurs = 2 };
const char* const kSideNames[] = {"raw", "raw_full", "ours"};

std::unique_ptr<CSide> MakeSide(ESide which, EDevice device) {
  CCamera& camera = OpenCamera(device);
  if (which == kOurs) {
    return std::make_unique<COurs>(camera, BufferCountOf(device));
  }
  return std::make_unique<CRaw>(camera, BufferCountOf(device), PayloadOf(device), which == kRawFull);
}

void Direct(benchmark::State& state, ESide which, EDevice device) {
  try {
    const std::unique_ptr<CSide> side = MakeSide(which, device);
    for (auto _ : state) {
      if (!side->Frame()) {
        state.SkipWithError("no frame");
        break;
      }
    }
    state.counters["frames/s"] = benchmark::Counter(static_cast<double>(state.iterations()),
                                                    benchmark::Counter::kIsRate);
  } catch (const std::exception& error) {
    state.SkipWithError(error.what());
  }
}

double ProcessCpuSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

struct SSlice {
  double framesPerSecond;
  // Frames per second of CPU time of the whole process (the producer's generator thread included): unlike
  // frames/s, hardly changed by other processes taking the CPU away.
  double framesPerCpuSecond;
};

// One side over about `seconds`, not counting its start and first frame. The clock is read every 16 frames so that
// reading it adds next to nothing to either side.
SSlice RunSlice(ESide which, EDevice device, double seconds) {
  const std::unique_ptr<CSide> side = MakeSide(which, device);
  if (!side->Frame()) {
    throw std::runtime_error("no frame");
  }
  const double cpuStart = ProcessCpuSeconds();
  const auto start = std::chrono::steady_clock::now();
  const auto end = start + std::chrono::duration<double>(seconds);
  uint64_t frames = 0;
  for (;;) {
    for (int i = 0; i < 16; ++i) {
      if (!side->Frame()) {
        throw std::runtime_error("no frame");
      }
    }
    frames += 16;
    const auto now = std::chrono::steady_clock::now();
    if (now >= end) {
      const double cpu = ProcessCpuSeconds() - cpuStart;
      return {static_cast<double>(frames) / std::chrono::duration<double>(now - start).count(),
              cpu > 0 ? static_cast<double>(frames) / cpu : 0};
    }
  }
}

double Median(std::vector<double> values) {
  if (values.empty()) {
    return 0;
  }
  std::sort(values.begin(), values.end());
  const size_t n = values.size();
  return n % 2 != 0 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

double Percentile(std::vector<double> values, double fraction) {
  if (values.empty()) {
    return 0;
  }
  std::sort(values.begin(), values.end());
  const auto index = static_cast<size_t>(std::ceil(fraction * static_cast<double>(values.size()))) - 1;
  return values[std::min(index, values.size() - 1)];
}

// Each round runs one slice of every side, the order rotating from round to round, so that a drift of the
// machine's load favours no side. Medians over the rounds: "ratio" of ours / raw frames/s, "ratio_full" of
// ours / raw_full, "cpu_ratio" and "cpu_ratio_full" of the same for frames per CPU second; "best_ratio" is ours /
// raw of each side's fastest slice.
void Interleaved(benchmark::State& state, EDevice device) {
  constexpr int kRounds = 20;
  // Long enough for a few hundred large frames.
  const double sliceSeconds = device == kLarge ? 0.3 : 0.15;
  try {
    for (auto _ : state) {
      std::vector<double> rates[3];
      std::vector<double> ratios;
      std::vector<double> ratiosFull;
      std::vector<double> cpuRatios;
      std::vector<double> cpuRatiosFull;
      for (int round = 0; round < kRounds; ++round) {
        SSlice slices[3] = {};
        for (int slice = 0; slice < 3; ++slice) {
          const auto which = static_cast<ESide>((round + slice) % 3);
          slices[which] = RunSlice(which, device, sliceSeconds);
          rates[which].push_back(slices[which].framesPerSecond);
        }
        ratios.push_back(slices[kOurs].framesPerSecond / slices[kRaw].framesPerSecond);
        ratiosFull.push_back(slices[kOurs].framesPerSecond / slices[kRawFull].framesPerSecond);
        cpuRatios.push_back(slices[kOurs].framesPerCpuSecond / slices[kRaw].framesPerCpuSecond);
        cpuRatiosFull.push_back(slices[kOurs].framesPerCpuSecond / slices[kRawFull].framesPerCpuSecond);
      }
      state.counters["raw_fps"] = Median(rates[kRaw]);
      state.counters["raw_full_fps"] = Median(rates[kRawFull]);
      state.counters["ours_fps"] = Median(rates[kOurs]);
      state.counters["ratio"] = Median(ratios);
      state.counters["ratio_min"] = *std::min_element(ratios.begin(), ratios.end());
      state.counters["ratio_max"] = *std::max_element(ratios.begin(), ratios.end());
      state.counters["ratio_full"] = Median(ratiosFull);
      state.counters["cpu_ratio"] = Median(cpuRatios);
      state.counters["cpu_ratio_full"] = Median(cpuRatiosFull);
      // The fastest slice of each side is the one least disturbed by other work on the machine.
      state.counters["best_ratio"] = *std::max_element(rates[kOurs].begin(), rates[kOurs].end()) /
                                     *std::max_element(rates[kRaw].begin(), rates[kRaw].end());
    }
  } catch (const std::exception& error) {
    state.SkipWithError(error.what());
  }
}

// Latency: the simulated camera stamps each frame (in nanoseconds of this process's steady clock, from an origin
// found with the camera's timestamp latch) when it starts the frame; the stamp is taken just before the 64x64 frame
// is filled and queued for delivery, so "now minus stamp" when the application has the frame is the producer's
// fill-and-deliver time plus the consumer's wake-up and hand-over. The raw loop measures the same on the same
// camera, so the difference between the two sides is what the camera core adds. The origin is known to within half
// the tightest latch bracket (reported as "origin_uncertainty_us"), which shifts both sides alike.
void Latency(benchmark::State& state, int side) {
  constexpr size_t kFrames = 2000;
  constexpr size_t kWarmUp = 20;
  try {
    CCamera& camera = OpenCamera(kTimed);
    int64_t uncertainty = 0;
    const int64_t origin = CameraClockOriginNs(camera, uncertainty);
    std::vector<double> latencies;
    latencies.reserve(kFrames);
    for (auto _ : state) {
      if (side == 0) {
        CRawLoop loop(camera, 8, PayloadOf(kTimed));
        for (size_t i = 0; i < kFrames + kWarmUp; ++i) {
          CRawLoop::SFrame frame;
          uint64_t stamp = 0;
          if (!loop.Next(frame, 1000) || !loop.Info(frame.handle, GenTL::BUFFER_INFO_TIMESTAMP, &stamp)) {
            throw std::runtime_error("no frame");
          }
          const int64_t now = SteadyNs();
          if (i >= kWarmUp) {
            latencies.push_back(static_cast<double>(now - origin - static_cast<int64_t>(stamp)) / 1e3);
          }
          loop.Requeue(frame);
        }
      } else {
        camera.SetBufferCount(8);
        if (camera.StartGrabbing(side == 1 ? GrabMode::Newest : GrabMode::Fresh, 0) != Status::Ok) {
          throw std::runtime_error("StartGrabbing failed");
        }
        for (size_t i = 0; i < kFrames + kWarmUp; ++i) {
          IImage* image = nullptr;
          const int32_t result = camera.GetImage(&image, 1000);
          const int64_t now = SteadyNs();
          if (result != Status::Ok || image == nullptr) {
            if (image != nullptr) {
              image->Release();
            }
            camera.StopGrabbing();
            throw std::runtime_error("GetImage failed: " + std::to_string(result));
          }
          if (i >= kWarmUp) {
            latencies.push_back(static_cast<double>(now - origin - static_cast<int64_t>(image->GetTimestamp())) / 1e3);
          }
          image->Release();
        }
        camera.StopGrabbing();
      }
    }
    state.counters["median_us"] = Median(latencies);
    state.counters["p99_us"] = Percentile(latencies, 0.99);
    state.counters["max_us"] = *std::max_element(latencies.begin(), latencies.end());
    state.counters["origin_uncertainty_us"] = static_cast<double>(uncertainty) / 1e3;
  } catch (const std::exception& error) {
    state.SkipWithError(error.what());
  }
}

// CPU time per frame at 100 frames/s for `kSeconds`: the whole process (getrusage: the producer's generator
// thread that fills the frames, the consumer threads, and whatever else the process runs), and per thread from
// /proc/self/task/<id>/schedstat for the threads the acquisition start created. StartGrabbing creates the
// producer's generator thread first (inside DSStartAcquisition) and then the grab thread, so the grab thread is the
// newer (higher) of the two thread IDs. The raw loop has no grab thread: its consumer is the benchmark's thread.
void Cpu100fps(benchmark::State& state, bool ours) {
  constexpr double kSeconds = 5;
  try {
    CCamera& camera = OpenCamera(kSlow);
    for (auto _ : state) {
      const std::set<long> before = ThreadIds();
      std::unique_ptr<CRawLoop> loop;
      if (ours) {
        camera.SetBufferCount(8);
        if (camera.StartGrabbing(GrabMode::Newest, 0) != Status::Ok) {
          throw std::runtime_error("StartGrabbing failed");
        }
      } else {
        loop = std::make_unique<CRawLoop>(camera, 8, PayloadOf(kSlow));
      }
      std::vector<long> created;
      for (long id : ThreadIds()) {
        if (before.count(id) == 0) {
          created.push_back(id);
        }
      }
      std::sort(created.begin(), created.end());
      std::vector<int64_t> threadStart;
      for (long id : created) {
        threadStart.push_back(ThreadCpuNs(id));
      }
      const int64_t appStart = ThreadCpuNs(0);
      const double cpuStart = ProcessCpuSeconds();
      const auto start = std::chrono::steady_clock::now();
      uint64_t frames = 0;
      while (std::chrono::steady_clock::now() - start < std::chrono::duration<double>(kSeconds)) {
        if (ours) {
          IImage* image = nullptr;
          camera.GetImage(&image, 1000);
          if (image == nullptr) {
            throw std::runtime_error("no image");
          }
          image->Release();
        } else {
          CRawLoop::SFrame frame;
          if (!loop->Next(frame, 1000)) {
            throw std::runtime_error("no frame");
          }
          loop->Requeue(frame);
        }
        ++frames;
      }
      const double cpu = ProcessCpuSeconds() - cpuStart;
      const double appUs = static_cast<double>(ThreadCpuNs(0) - appStart) / 1e3 / static_cast<double>(frames);
      std::vector<double> threadUs;
      for (size_t i = 0; i < created.size(); ++i) {
        threadUs.push_back(static_cast<double>(ThreadCpuNs(created[i]) - threadStart[i]) / 1e3 /
                           static_cast<double>(frames));
      }
      if (ours) {
        camera.StopGrabbing();
      } else {
        loop.reset();
      }
      state.counters["frames"] = static_cast<double>(frames);
      state.counters["process_us_per_frame"] = cpu * 1e6 / static_cast<double>(frames);
      state.counters["app_thread_us_per_frame"] = appUs;
      if (!threadUs.empty()) {
        state.counters["generator_us_per_frame"] = threadUs.front();
      }
      if (ours && threadUs.size() >= 2) {
        state.counters["grab_thread_us_per_frame"] = threadUs.back();
      }
    }
  } catch (const std::exception& error) {
    state.SkipWithError(error.what());
  }
}

// Resident memory of the process: before the camera opens, once open, while grabbing into 8 buffers of 2448x2048
// (after 24 frames, so that every buffer has been written), and after the camera closed again.
void ResidentMemory(benchmark::State& state) {
  try {
    for (auto _ : state) {
      CCamera& camera = g_rig->Camera(kLarge);
      camera.Close();
      const double beforeOpen = static_cast<double>(ResidentKb());
      OpenCamera(kLarge);
      const double open = static_cast<double>(ResidentKb());
      camera.SetBufferCount(8);
      if (camera.StartGrabbing(GrabMode::Direct, 0) != Status::Ok) {
        throw std::runtime_error("StartGrabbing failed");
      }
      for (int i = 0; i < 24; ++i) {
        IImage* image = nullptr;
        camera.GetImage(&image, 5000);
        if (image == nullptr) {
          camera.StopGrabbing();
          throw std::runtime_error("no image");
        }
        image->Release();
      }
      const double grabbing = static_cast<double>(ResidentKb());
      camera.StopGrabbing();
      camera.Close();
      const double closed = static_cast<double>(ResidentKb());
      state.counters["before_open_kB"] = beforeOpen;
      state.counters["open_kB"] = open;
      state.counters["grabbing_kB"] = grabbing;
      state.counters["closed_kB"] = closed;
      state.counters["buffers_kB"] = 8.0 * static_cast<double>(PayloadOf(kLarge)) / 1024;
    }
  } catch (const std::exception& error) {
    state.SkipWithError(error.what());
  }
}

void RegisterAll() {
  benchmark::RegisterBenchmark("ResidentMemory", ResidentMemory)->Iterations(1)->UseRealTime();
  for (EDevice device : {kSmall, kLarge}) {
    const std::string size = SizeName(device);
    for (ESide which : {kRaw, kRawFull, kOurs}) {
      benchmark::RegisterBenchmark(("Direct/" + std::string(kSideNames[which]) + "/" + size).c_str(), Direct, which,
                                   device)
          ->UseRealTime()
          ->MinTime(1.0);
    }
    benchmark::RegisterBenchmark(("Interleaved/" + size).c_str(), Interleaved, device)->Iterations(1)->UseRealTime();
  }
  const char* const sides[] = {"raw", "newest", "fresh"};
  for (int side = 0; side < 3; ++side) {
    benchmark::RegisterBenchmark((std::string("Latency/") + sides[side]).c_str(), Latency, side)
        ->Iterations(1)
        ->UseRealTime();
  }
  benchmark::RegisterBenchmark("Cpu100fps/raw", Cpu100fps, false)->Iterations(1)->UseRealTime();
  benchmark::RegisterBenchmark("Cpu100fps/newest", Cpu100fps, true)->Iterations(1)->UseRealTime();
}

// Keeps every run's counters for the summary while printing the usual table.
class CSummaryReporter : public benchmark::ConsoleReporter {
public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.error_occurred || run.run_type != Run::RT_Iteration) {
        continue;
      }
      std::string name = run.benchmark_name();
      for (const char* suffix : {"/min_time:", "/iterations:", "/real_time"}) {
        const size_t at = name.find(suffix);
        if (at != std::string::npos) {
          name.erase(at);
        }
      }
      for (const auto& [counter, value] : run.counters) {
        m_counters[name + ":" + counter] = value.value;
      }
    }
  }

  void PrintSummary() const {
    std::printf("\nSummary (ratios from the same run)\n");
    std::printf("  direct GetImage loop, interleaved slices (medians of 20 rounds; cpu: frames per CPU second of the "
                "process):\n");
    std::printf("    %-10s %10s %10s %10s %9s %11s %8s %13s %9s %14s %9s\n", "size", "raw fps", "full fps", "ours fps",
                "ours/raw", "min-max", "goal", "ours/raw_full", "cpu o/r", "cpu o/raw_full", "best o/r");
    for (const char* size : {"64x64", "2448x2048"}) {
      const std::string key = "Interleaved/" + std::string(size) + ":";
      std::printf("    %-10s %10.0f %10.0f %10.0f %9.3f %5.2f-%5.2f %8s %13.3f %9.3f %14.3f %9.3f\n", size,
                  Get(key + "raw_fps"), Get(key + "raw_full_fps"), Get(key + "ours_fps"), Get(key + "ratio"),
                  Get(key + "ratio_min"), Get(key + "ratio_max"),
                  std::strcmp(size, "64x64") == 0 ? ">= 0.8" : ">= 0.98", Get(key + "ratio_full"),
                  Get(key + "cpu_ratio"), Get(key + "cpu_ratio_full"), Get(key + "best_ratio"));
    }
    std::printf("  direct GetImage loop, one benchmark after the other:\n");
    for (const char* size : {"64x64", "2448x2048"}) {
      const double raw = Get("Direct/raw/" + std::string(size) + ":frames/s");
      const double full = Get("Direct/raw_full/" + std::string(size) + ":frames/s");
      const double ours = Get("Direct/ours/" + std::string(size) + ":frames/s");
      std::printf("    %-10s %10.0f %10.0f %10.0f %9.3f %11s %8s %13.3f\n", size, raw, full, ours,
                  raw > 0 ? ours / raw : -1, "", "", full > 0 ? ours / full : -1);
    }
    std::printf("  latency at 1000 fps    %12s %12s %12s   (goal: median <= 200 us)\n", "median us", "p99 us",
                "max us");
    for (const char* side : {"raw", "newest", "fresh"}) {
      const std::string key = "Latency/" + std::string(side) + ":";
      std::printf("    %-20s %12.1f %12.1f %12.1f\n", side, Get(key + "median_us"), Get(key + "p99_us"),
                  Get(key + "max_us"));
    }
    std::printf("  CPU per frame at 100 fps, us: newest mode: process %.1f, grab thread %.1f, application thread %.1f, "
                "producer's generator %.1f; raw loop: process %.1f, consumer (application) thread %.1f, generator "
                "%.1f\n",
                Get("Cpu100fps/newest:process_us_per_frame"), Get("Cpu100fps/newest:grab_thread_us_per_frame"),
                Get("Cpu100fps/newest:app_thread_us_per_frame"), Get("Cpu100fps/newest:generator_us_per_frame"),
                Get("Cpu100fps/raw:process_us_per_frame"), Get("Cpu100fps/raw:app_thread_us_per_frame"),
                Get("Cpu100fps/raw:generator_us_per_frame"));
    std::printf("  resident memory: before open %.0f kB, open %.0f kB, grabbing 8 x 2448x2048 %.0f kB (+%.0f kB over "
                "open; buffers %.0f kB), closed %.0f kB\n",
                Get("ResidentMemory:before_open_kB"), Get("ResidentMemory:open_kB"), Get("ResidentMemory:grabbing_kB"),
                Get("ResidentMemory:grabbing_kB") - Get("ResidentMemory:open_kB"), Get("ResidentMemory:buffers_kB"),
                Get("ResidentMemory:closed_kB"));
  }

private:
  double Get(const std::string& key) const {
    const auto it = m_counters.find(key);
    return it == m_counters.end() ? -1 : it->second;
  }

  std::map<std::string, double> m_counters;
};

}  // namespace

int main(int argc, char** argv) {
  bool summary = false;
  std::vector<char*> args;
  for (int i = 0; i < argc; ++i) {
    if (std::strcmp(argv[i], "--summary") == 0) {
      summary = true;
    } else {
      args.push_back(argv[i]);
    }
  }
  int count = static_cast<int>(args.size());
  benchmark::Initialize(&count, args.data());
  if (benchmark::ReportUnrecognizedArguments(count, args.data())) {
    return 1;
  }
  try {
    CBenchRig rig(Devices());
    g_rig = &rig;
    RegisterAll();
    CSummaryReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    if (summary) {
      reporter.PrintSummary();
    }
    g_rig = nullptr;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "camera_bench: %s\n", error.what());
    return 1;
  }
  benchmark::Shutdown();
  return 0;
}
