// How fast a consumer can take frames from the simulated producer with a raw GenTL loop (EventGetData, then
// DSQueueBuffer): small frames measure the per-frame overhead, large frames the fill rate, which is compared with a
// plain memcpy of the same size in the same run. The summary printed at the end gives both ratios.
#include "SimModule.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

using namespace TalvirSimTest;

namespace {

constexpr uint32_t kLargeWidth = 2448;
constexpr uint32_t kLargeHeight = 2048;

double g_smallFramesPerSecond = 0;
double g_largeBytesPerSecond = 0;
double g_memcpyBytesPerSecond = 0;
double g_rgbBytesPerSecond = 0;

std::string FreeRunConfig(uint32_t width, uint32_t height, const std::string& format) {
  return "{\"interfaces\":[{\"id\":\"Bench\",\"devices\":[{\"id\":\"Fast\",\"serial\":\"FAST0001\",\"sensorWidth\":" +
         std::to_string(width) + ",\"sensorHeight\":" + std::to_string(height) + ",\"pixelFormats\":[\"" + format +
         "\"],\"frameRate\":0}]}]}";
}

// Runs the loop for the benchmark's iterations, one frame per iteration; returns false (with an error set on the
// state) when the producer cannot be set up.
bool RunLoop(benchmark::State& state, uint32_t width, uint32_t height, size_t bufferCount,
             const std::string& format = "Mono8") {
  CSimModule module("TalvirSim.cti", "TalvirSim.cti", FreeRunConfig(width, height, format));
  if (module.Init() != GC_ERR_SUCCESS) {
    state.SkipWithError(("GCInitLib failed: " + module.LastError()).c_str());
    return false;
  }
  {
    SOpenDevice device(module.fn);
    if (!device.ok) {
      state.SkipWithError("cannot open the simulated device");
      return false;
    }
    const auto& fn = module.fn;
    device.AnnounceAndQueue(bufferCount);
    EVENT_HANDLE event = nullptr;
    fn.GCRegisterEvent(device.stream, EVENT_NEW_BUFFER, &event);
    fn.DSStartAcquisition(device.stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE);
    WriteBE32(fn, device.port, 0x0204, 1);  // AcquisitionStart
    for (auto _ : state) {
      EVENT_NEW_BUFFER_DATA data{};
      size_t size = sizeof data;
      if (fn.EventGetData(event, &data, &size, 5000) != GC_ERR_SUCCESS) {
        state.SkipWithError("EventGetData failed");
        break;
      }
      benchmark::DoNotOptimize(data);
      fn.DSQueueBuffer(device.stream, data.BufferHandle);
    }
    WriteBE32(fn, device.port, 0x0208, 1);  // AcquisitionStop
    fn.DSStopAcquisition(device.stream, ACQ_STOP_FLAGS_DEFAULT);
    fn.GCUnregisterEvent(device.stream, EVENT_NEW_BUFFER);
    fn.DSFlushQueue(device.stream, ACQ_QUEUE_ALL_DISCARD);
    for (uint32_t i = 0;; ++i) {
      BUFFER_HANDLE buffer = nullptr;
      if (fn.DSGetBufferID(device.stream, 0, &buffer) != GC_ERR_SUCCESS) {
        break;
      }
      fn.DSRevokeBuffer(device.stream, buffer, nullptr, nullptr);
    }
  }
  return true;
}

void BM_RawLoop_64x64_Mono8(benchmark::State& state) {
  if (RunLoop(state, 64, 64, 16)) {
    state.counters["frames/s"] = benchmark::Counter(static_cast<double>(state.iterations()),
                                                    benchmark::Counter::kIsRate);
  }
}

void BM_RawLoop_2448x2048_Mono8(benchmark::State& state) {
  const double frameBytes = double{kLargeWidth} * kLargeHeight;
  if (RunLoop(state, kLargeWidth, kLargeHeight, 8)) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * frameBytes));
    state.counters["frames/s"] = benchmark::Counter(static_cast<double>(state.iterations()),
                                                    benchmark::Counter::kIsRate);
  }
}

// Colour frames are drawn from a row template plus an offset per row, not copied: how close that comes to memcpy.
void BM_RawLoop_2448x2048_RGB8(benchmark::State& state) {
  const double frameBytes = 3.0 * kLargeWidth * kLargeHeight;
  if (RunLoop(state, kLargeWidth, kLargeHeight, 8, "RGB8")) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * frameBytes));
    state.counters["frames/s"] = benchmark::Counter(static_cast<double>(state.iterations()),
                                                    benchmark::Counter::kIsRate);
  }
}

void BM_Memcpy_2448x2048(benchmark::State& state) {
  const size_t bytes = size_t{kLargeWidth} * kLargeHeight;
  // As many destinations as the loop has buffers, so both sides see the same cache behaviour.
  std::vector<std::vector<uint8_t>> destinations(8, std::vector<uint8_t>(bytes));
  std::vector<uint8_t> source(bytes, 0x5A);
  size_t next = 0;
  for (auto _ : state) {
    std::memcpy(destinations[next].data(), source.data(), bytes);
    benchmark::ClobberMemory();
    next = (next + 1) % destinations.size();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
}

BENCHMARK(BM_RawLoop_64x64_Mono8)->UseRealTime()->MinTime(1.0);
BENCHMARK(BM_RawLoop_2448x2048_Mono8)->UseRealTime()->MinTime(1.0);
BENCHMARK(BM_RawLoop_2448x2048_RGB8)->UseRealTime()->MinTime(1.0);
BENCHMARK(BM_Memcpy_2448x2048)->UseRealTime()->MinTime(1.0);

// Keeps the figures the summary needs while still printing the usual table.
class CSummaryReporter : public benchmark::ConsoleReporter {
public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      const std::string name = run.benchmark_name();
      const double seconds = run.GetAdjustedRealTime() * 1e-9 *
                             (run.time_unit == benchmark::kMillisecond   ? 1e6
                              : run.time_unit == benchmark::kMicrosecond ? 1e3
                                                                         : 1.0);
      if (seconds <= 0) {
        continue;
      }
      if (name.find("BM_RawLoop_64x64") == 0) {
        g_smallFramesPerSecond = 1.0 / seconds;
      } else if (name.find("BM_RawLoop_2448x2048_Mono8") == 0) {
        g_largeBytesPerSecond = double{kLargeWidth} * kLargeHeight / seconds;
      } else if (name.find("BM_RawLoop_2448x2048_RGB8") == 0) {
        g_rgbBytesPerSecond = 3.0 * kLargeWidth * kLargeHeight / seconds;
      } else if (name.find("BM_Memcpy") == 0) {
        g_memcpyBytesPerSecond = double{kLargeWidth} * kLargeHeight / seconds;
      }
    }
    ConsoleReporter::ReportRuns(runs);
  }
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  CSummaryReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  std::printf("\nSummary\n");
  std::printf("  64x64 Mono8 raw loop:      %.0f frames/s (goal: at least 100000)\n", g_smallFramesPerSecond);
  if (g_memcpyBytesPerSecond > 0) {
    std::printf(
        "  2448x2048 Mono8 raw loop:  %.2f GB/s, memcpy of the same size %.2f GB/s, ratio %.2f (goal: at least 0.5)\n",
        g_largeBytesPerSecond / 1e9, g_memcpyBytesPerSecond / 1e9, g_largeBytesPerSecond / g_memcpyBytesPerSecond);
    std::printf("  2448x2048 RGB8 raw loop:   %.2f GB/s (%.2f of the memcpy rate)\n", g_rgbBytesPerSecond / 1e9,
                g_rgbBytesPerSecond / g_memcpyBytesPerSecond);
  }
  return 0;
}
