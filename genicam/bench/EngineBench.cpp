// Node-map engine benchmarks, each next to the comparison engine in the same run:
//   Load/<engine>/<file>           loading every sample description file
//   IntegerRead/<engine>/cached    an Integer over an IntReg, value served from the cache
//   IntegerRead/<engine>/uncached  the same read forced to reach the register space
//   RealIntegerRead/<engine>/...   the same two reads of an Integer of the largest sample file
//   ResidentMemory/<engine>        resident size added by loading the largest sample file (measured in a child process)
// Run with --summary to print the ratios (ours / theirs) after the usual table.
#include "AravisNodeMap.h"
#include "DifferentialRun.h"
#include "FileBytes.h"
#include "InspectNodeMap.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <unistd.h>

using namespace TALVIR::Tools;

namespace {
const std::string kCorpus = std::string(TALVIR_SHARED_DIR) + "/genicam-xml";

// An Integer whose value comes from a cached 4-byte big-endian IntReg: the shape of most camera features.
const char* const kReadDescription = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Bench" VendorName="Talvir" ToolTip="" StandardNameSpace="None"
    SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0"
    SubMinorVersion="0" ProductGuid="00000000-0000-0000-0000-000000000000"
    VersionGuid="00000000-0000-0000-0000-000000000001"
    xmlns="http://www.genicam.org/GenApi/Version_1_1">
  <Integer Name="Gain">
    <pValue>GainReg</pValue>
    <Min>0</Min>
    <Max>4294967295</Max>
    <Inc>1</Inc>
  </Integer>
  <IntReg Name="GainReg">
    <Address>0x1000</Address>
    <Length>4</Length>
    <AccessMode>RW</AccessMode>
    <pPort>Device</pPort>
    <Cachable>WriteThrough</Cachable>
    <Sign>Unsigned</Sign>
    <Endianess>BigEndian</Endianess>
  </IntReg>
  <Port Name="Device"/>
</RegisterDescription>
)";

// Readable with the seeded registers in the largest sample file (many of its features are not implemented there).
const char* const kRealFeature = "GainRaw";

struct SCorpusFile {
  std::string name;
  std::string bytes;
};

const std::vector<SCorpusFile>& Corpus() {
  static const std::vector<SCorpusFile> files = [] {
    std::vector<SCorpusFile> loaded;
    for (const std::string& path : DescriptionFiles(kCorpus)) {
      SCorpusFile file{path.substr(path.rfind('/') + 1), {}};
      if (ReadFileBytes(path, file.bytes)) loaded.push_back(std::move(file));
    }
    return loaded;
  }();
  return files;
}

const SCorpusFile* LargestFile() {
  const auto& files = Corpus();
  const auto it = std::max_element(files.begin(), files.end(), [](const SCorpusFile& a, const SCorpusFile& b) {
    return a.bytes.size() < b.bytes.size();
  });
  return it == files.end() ? nullptr : &*it;
}

void LoadOurs(benchmark::State& state, const SCorpusFile* file) {
  for (auto _ : state) {
    GenApi::CNodeMapRef nodeMap;
    nodeMap._LoadXMLFromString(file->bytes);
    benchmark::DoNotOptimize(nodeMap._Ptr);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * file->bytes.size()));
}

void LoadTheirs(benchmark::State& state, const SCorpusFile* file) {
  CSparseRegisterSpace registers;
  for (auto _ : state) {
    CAravisNodeMap nodeMap(registers);
    if (!nodeMap.Load(file->bytes)) {
      state.SkipWithError("the comparison engine cannot load the file");
      break;
    }
    benchmark::DoNotOptimize(nodeMap.Gc());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * file->bytes.size()));
}

// A feature to read: the description text and the feature's name.
struct SReadTarget {
  const std::string* description;
  const char* feature;
};

const std::string& SmallDescription() {
  static const std::string text = kReadDescription;
  return text;
}

void ReadOurs(benchmark::State& state, SReadTarget target, bool ignoreCache) {
  CSparseRegisterSpace registers(1);
  CInspectNodeMap nodeMap(registers);
  nodeMap.Load(*target.description);
  GenApi::CIntegerPtr gain(nodeMap.NodeMap()._GetNode(target.feature));
  if (!gain.IsValid() || !GenApi::IsReadable(gain)) {
    state.SkipWithError("the feature is not a readable integer");
    return;
  }
  gain->GetValue();  // fills the cache
  const uint64_t readsBefore = registers.ReadCount();
  for (auto _ : state) benchmark::DoNotOptimize(gain->GetValue(false, ignoreCache));
  state.counters["port_reads_per_read"] = static_cast<double>(registers.ReadCount() - readsBefore) /
                                          static_cast<double>(state.iterations());
}

void ReadTheirs(benchmark::State& state, SReadTarget target, bool cache) {
  CSparseRegisterSpace registers(1);
  CAravisNodeMap nodeMap(registers);
  if (!nodeMap.Load(*target.description)) {
    state.SkipWithError("the comparison engine cannot load the description");
    return;
  }
  nodeMap.SetRegisterCache(cache);
  void* gain = nodeMap.FindInteger(target.feature);
  int64_t value = 0;
  if (gain == nullptr || !CAravisNodeMap::ReadIntegerNode(gain, value)) {
    state.SkipWithError("the comparison engine cannot read the feature");
    return;
  }
  const uint64_t readsBefore = registers.ReadCount();
  for (auto _ : state) {
    CAravisNodeMap::ReadIntegerNode(gain, value);
    benchmark::DoNotOptimize(value);
  }
  state.counters["port_reads_per_read"] = static_cast<double>(registers.ReadCount() - readsBefore) /
                                          static_cast<double>(state.iterations());
}

long ResidentKilobytes() {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line))
    if (line.compare(0, 6, "VmRSS:") == 0) return std::stol(line.substr(6));
  return -1;
}

// Loads the file in a fresh process of this program (see ResidentProbe), so that neither engine's allocations nor
// memory freed by earlier benchmarks blur the figure. Returns the growth of the resident set in kB, -1 on failure.
long ResidentGrowthInFreshProcess(const char* engine, const SCorpusFile* file) {
  char self[4096] = {};
  if (readlink("/proc/self/exe", self, sizeof self - 1) <= 0) return -1;
  const std::string command = "'" + std::string(self) + "' --resident-probe " + engine + " '" + kCorpus + "/" +
                              file->name + "' 2>/dev/null";
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return -1;
  long growth = -1;
  if (fscanf(pipe, "%ld", &growth) != 1) growth = -1;
  return pclose(pipe) == 0 ? growth : -1;
}

// The child side: reads the file, notes the resident size, loads, and prints how much the resident size grew.
int ResidentProbe(const std::string& engine, const std::string& path) {
  std::string bytes;
  if (!ReadFileBytes(path, bytes)) return 1;
  const long before = ResidentKilobytes();
  CSparseRegisterSpace registers;
  if (engine == "ours") {
    CInspectNodeMap nodeMap(registers);
    nodeMap.Load(bytes);
    std::printf("%ld\n", ResidentKilobytes() - before);
    return 0;
  }
  CAravisNodeMap nodeMap(registers);
  if (!nodeMap.Load(bytes)) return 1;
  std::printf("%ld\n", ResidentKilobytes() - before);
  return 0;
}

void Memory(benchmark::State& state, const char* engine, const SCorpusFile* file) {
  long growth = -1;
  for (auto _ : state) growth = ResidentGrowthInFreshProcess(engine, file);
  if (growth < 0) state.SkipWithError("measurement failed");
  state.counters["resident_kB"] = static_cast<double>(growth);
  state.counters["file_kB"] = static_cast<double>(file->bytes.size()) / 1024.0;
}

void RegisterAll() {
  for (const SCorpusFile& file : Corpus()) {
    benchmark::RegisterBenchmark(("Load/ours/" + file.name).c_str(), LoadOurs, &file)
        ->Unit(benchmark::kMicrosecond)
        ->MinTime(0.2);
    benchmark::RegisterBenchmark(("Load/theirs/" + file.name).c_str(), LoadTheirs, &file)
        ->Unit(benchmark::kMicrosecond)
        ->MinTime(0.2);
  }
  const SReadTarget small{&SmallDescription(), "Gain"};
  benchmark::RegisterBenchmark("IntegerRead/ours/cached", ReadOurs, small, false);
  benchmark::RegisterBenchmark("IntegerRead/theirs/cached", ReadTheirs, small, true);
  benchmark::RegisterBenchmark("IntegerRead/ours/uncached", ReadOurs, small, true);
  benchmark::RegisterBenchmark("IntegerRead/theirs/uncached", ReadTheirs, small, false);
  if (const SCorpusFile* largest = LargestFile()) {
    // The same reads of a feature of a real camera, an Integer reached through its own chain of nodes.
    const SReadTarget real{&largest->bytes, kRealFeature};
    benchmark::RegisterBenchmark("RealIntegerRead/ours/cached", ReadOurs, real, false);
    benchmark::RegisterBenchmark("RealIntegerRead/theirs/cached", ReadTheirs, real, true);
    benchmark::RegisterBenchmark("RealIntegerRead/ours/uncached", ReadOurs, real, true);
    benchmark::RegisterBenchmark("RealIntegerRead/theirs/uncached", ReadTheirs, real, false);
    benchmark::RegisterBenchmark("ResidentMemory/ours", Memory, "ours", largest)->Iterations(1);
    benchmark::RegisterBenchmark("ResidentMemory/theirs", Memory, "theirs", largest)->Iterations(1);
  }
}

// Keeps every run's time per iteration (nanoseconds) and counters for the summary.
class CSummaryReporter : public benchmark::ConsoleReporter {
public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.error_occurred || run.run_type != Run::RT_Iteration) continue;
      const std::string name = BaseName(run.benchmark_name());
      // CPU time: the machines this runs on are shared, and wall time then mostly measures the neighbours.
      m_Nanoseconds[name] = run.GetAdjustedCPUTime() * 1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit);
      for (const auto& [counter, value] : run.counters) m_Counters[name + ":" + counter] = value.value;
    }
  }

  void PrintSummary(std::ostream& out) const {
    out << "\nSummary (CPU time per operation; ratio = ours / theirs; smaller is better)\n";
    std::vector<double> loadRatios;
    for (const SCorpusFile& file : Corpus()) {
      const double ours = Find("Load/ours/" + file.name);
      const double theirs = Find("Load/theirs/" + file.name);
      if (ours > 0 && theirs > 0) loadRatios.push_back(ours / theirs);
    }
    if (!loadRatios.empty()) {
      std::sort(loadRatios.begin(), loadRatios.end());
      const size_t n = loadRatios.size();
      const double median = n % 2 ? loadRatios[n / 2] : (loadRatios[n / 2 - 1] + loadRatios[n / 2]) / 2;
      out << "load, median ratio over " << n << " files: " << median << " (goal <= 0.333)\n";
    }
    if (const SCorpusFile* largest = LargestFile()) {
      const double ours = Find("Load/ours/" + largest->name);
      const double theirs = Find("Load/theirs/" + largest->name);
      out << "load, largest file " << largest->name << " (" << largest->bytes.size() << " bytes): ours " << ours / 1e6
          << " ms, theirs " << theirs / 1e6 << " ms, ratio " << Ratio(ours, theirs) << " (goal <= 0.333)\n";
    }
    const double cachedOurs = Find("IntegerRead/ours/cached");
    const double cachedTheirs = Find("IntegerRead/theirs/cached");
    out << "cached Integer(IntReg) read: ours " << cachedOurs << " ns, theirs " << cachedTheirs << " ns, ratio "
        << Ratio(cachedOurs, cachedTheirs) << " (goal <= 200 ns and <= 0.1)\n";
    const double uncachedOurs = Find("IntegerRead/ours/uncached");
    const double uncachedTheirs = Find("IntegerRead/theirs/uncached");
    out << "uncached Integer(IntReg) read: ours " << uncachedOurs << " ns, theirs " << uncachedTheirs << " ns, ratio "
        << Ratio(uncachedOurs, uncachedTheirs) << " (goal <= 0.5)\n";
    const double realCachedOurs = Find("RealIntegerRead/ours/cached");
    const double realCachedTheirs = Find("RealIntegerRead/theirs/cached");
    const double realUncachedOurs = Find("RealIntegerRead/ours/uncached");
    const double realUncachedTheirs = Find("RealIntegerRead/theirs/uncached");
    out << "same reads of " << kRealFeature << " in the largest file: cached ours " << realCachedOurs << " ns, theirs "
        << realCachedTheirs << " ns, ratio " << Ratio(realCachedOurs, realCachedTheirs) << "; uncached ours "
        << realUncachedOurs << " ns, theirs " << realUncachedTheirs << " ns, ratio "
        << Ratio(realUncachedOurs, realUncachedTheirs) << "\n";
    const double memoryOurs = Counter("ResidentMemory/ours:resident_kB");
    const double memoryTheirs = Counter("ResidentMemory/theirs:resident_kB");
    out << "resident memory after loading the largest file: ours " << memoryOurs << " kB, theirs " << memoryTheirs
        << " kB, ratio " << Ratio(memoryOurs, memoryTheirs) << "\n";
  }

private:
  // The registered name, without the "/min_time:..." or "/iterations:..." the library appends.
  static std::string BaseName(std::string name) {
    for (const char* suffix : {"/min_time:", "/iterations:"}) {
      const size_t at = name.find(suffix);
      if (at != std::string::npos) name.erase(at);
    }
    return name;
  }
  static double Ratio(double a, double b) { return a > 0 && b > 0 ? a / b : -1; }
  double Find(const std::string& name) const {
    const auto it = m_Nanoseconds.find(name);
    return it == m_Nanoseconds.end() ? -1 : it->second;
  }
  double Counter(const std::string& key) const {
    const auto it = m_Counters.find(key);
    return it == m_Counters.end() ? -1 : it->second;
  }

  std::map<std::string, double> m_Nanoseconds;
  std::map<std::string, double> m_Counters;
};
}  // namespace

int main(int argc, char** argv) {
  if (argc == 4 && std::strcmp(argv[1], "--resident-probe") == 0) return ResidentProbe(argv[2], argv[3]);
  bool summary = false;
  std::vector<char*> args;
  for (int i = 0; i < argc; ++i) {
    if (std::strcmp(argv[i], "--summary") == 0) summary = true;
    else args.push_back(argv[i]);
  }
  int count = static_cast<int>(args.size());
  benchmark::Initialize(&count, args.data());
  if (benchmark::ReportUnrecognizedArguments(count, args.data())) return 1;
  if (Corpus().empty())
    std::cerr << "note: no sample description files in " << kCorpus << "; only the read benchmarks run\n";
  RegisterAll();
  CSummaryReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  if (summary) reporter.PrintSummary(std::cout);
  benchmark::Shutdown();
  return 0;
}
