// Discovery over four producers that each take 300 ms to enumerate, against the slowest of them alone.
// ratio = time of one discovery over all four / time of the slowest single-producer discovery, both measured in
// each iteration; a serial discovery would give about 4, a parallel one about 1.
#include "LibraryUnderTest.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>

namespace {

constexpr int kProducers = 4;
constexpr int kEnumerationDelayMs = 300;

std::string ProducerName(int index) { return "Slow" + std::to_string(index) + ".cti"; }

// The library with four copies of the simulated producer, each delaying its device-list update.
TALVIR::Testing::CLibraryUnderTest& Library() {
  static TALVIR::Testing::CLibraryUnderTest* library = [] {
    auto* made = new TALVIR::Testing::CLibraryUnderTest();
    std::string names;
    for (int index = 0; index < kProducers; ++index) {
      made->CopyFromBin("TalvirSim.cti", ProducerName(index));
      made->WriteFile(ProducerName(index) + ".json",
                      R"({"interfaces": [{"enumerationDelayMs": )" + std::to_string(kEnumerationDelayMs) +
                          R"(, "devices": [{"id": "dev", "model": "Slow", "serial": "S)" + std::to_string(index) +
                          R"("}]}]})");
      names += (index == 0 ? "" : ";") + ProducerName(index);
    }
    made->WriteConfig(names);
    made->Load();
    made->Init();
    return made;
  }();
  return *library;
}

double TimedDiscovery(const char* name) {
  const auto start = std::chrono::steady_clock::now();
  std::list<TALVIR::ICameraInfo*> records = Library().Discovery(name);
  const auto stop = std::chrono::steady_clock::now();
  for (TALVIR::ICameraInfo* record : records) {
    record->Destroy();
  }
  if (records.size() != (name == nullptr ? kProducers : 1)) {
    throw std::runtime_error("unexpected device count " + std::to_string(records.size()));
  }
  return std::chrono::duration<double>(stop - start).count();
}

void BM_DiscoveryOfFourSlowProducers(benchmark::State& state) {
  // The first discovery loads the producers; loading is not what is measured.
  TimedDiscovery(nullptr);
  double slowestSingle = 0;
  double all = 0;
  for (auto _ : state) {
    state.PauseTiming();
    double slowest = 0;
    for (int index = 0; index < kProducers; ++index) {
      slowest = std::max(slowest, TimedDiscovery(ProducerName(index).c_str()));
    }
    slowestSingle += slowest;
    state.ResumeTiming();
    all += TimedDiscovery(nullptr);
  }
  const auto iterations = static_cast<double>(state.iterations());
  state.counters["slowest_single_s"] = slowestSingle / iterations;
  state.counters["all_four_s"] = all / iterations;
  state.counters["ratio"] = all / slowestSingle;
}
BENCHMARK(BM_DiscoveryOfFourSlowProducers)->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
