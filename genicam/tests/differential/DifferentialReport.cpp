// genicam-differential-report: the differential comparison over a whole folder of description files, with the overall
// agreement rate, the count of each documented deviation and every disagreement.
//   genicam-differential-report [--seed N] [--writes N] [--oracle PATH] [FOLDER]
// With --writes N, each file is compared a second time after both engines wrote N features (see CompareFile).
#include "DifferentialRun.h"

#include <iostream>

using namespace TALVIR::Tools;

int main(int argc, char** argv) {
  uint64_t seed = 0;
  size_t writes = 0;
  std::string oracle = std::string(TALVIR_BIN_DIR) + "/genicam-aravis-dump";
  std::string folder = std::string(TALVIR_SHARED_DIR) + "/genicam-xml";
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--seed" && i + 1 < argc) seed = std::stoull(argv[++i], nullptr, 0);
    else if (arg == "--writes" && i + 1 < argc) writes = std::stoul(argv[++i]);
    else if (arg == "--oracle" && i + 1 < argc) oracle = argv[++i];
    else folder = arg;
  }
  const std::vector<std::string> files = DescriptionFiles(folder);
  if (files.empty()) {
    std::cerr << "no description files in " << folder << "\n";
    return 2;
  }
  SComparison total;
  size_t failedFiles = 0;
  for (const std::string& file : files) {
    const SFileComparison result = CompareFile(file, seed, oracle, writes);
    if (!result.problem.empty()) {
      ++failedFiles;
      std::cout << file << ": " << result.problem << "\n";
      continue;
    }
    const SComparison& c = result.comparison;
    std::cout << file << ": " << c.features << " features, " << (c.features - c.agreeing - c.deviating)
              << " disagree\n";
    for (const std::string& line : c.disagreements) std::cout << "  " << line << "\n";
    if (!c.disagreements.empty() && !result.writes.empty()) {
      std::cout << "  writes (to reproduce):";
      for (const auto& [name, value] : result.writes) std::cout << " --set " << name << "=" << value;
      std::cout << "\n";
    }
    total.Add(c);
  }
  const size_t disagreeing = total.features - total.agreeing - total.deviating;
  std::cout << "\nfiles " << files.size() << " (" << failedFiles << " could not be compared), features "
            << total.features << ", agree " << total.agreeing << ", documented deviations only " << total.deviating
            << ", disagree " << disagreeing << "\n";
  for (const auto& [kind, count] : total.deviationsByKind)
    std::cout << "deviation " << kind << ": " << count << " features\n";
  std::cout << "agreement rate (agreeing + documented deviations) / features: " << 100.0 * total.AgreementRate()
            << "%\n";
  std::cout << "strict agreement (no deviation needed): "
            << (total.features ? 100.0 * double(total.agreeing) / double(total.features) : 100.0) << "%\n";
  return disagreeing == 0 && failedFiles == 0 ? 0 : 1;
}
