// genicam-inspect: checks a camera's description file offline. Loads it over an in-memory register space whose
// unwritten bytes are seeded pseudo-random values, applies --set assignments, and prints one JSON line per feature.
#include "FeatureDump.h"
#include "FileBytes.h"
#include "InspectNodeMap.h"

#include <iostream>

using namespace TALVIR::Tools;

int main(int argc, char** argv) {
  SDumpOptions options;
  const std::string problem = ParseDumpOptions(argc, argv, options);
  if (!problem.empty()) {
    std::cerr << "genicam-inspect: " << problem << "\n"
              << "usage: genicam-inspect FILE.xml|FILE.zip [--seed N] [--set Name=Value]... [--read Name]...\n";
    return 2;
  }
  std::string bytes;
  if (!ReadFileBytes(options.file, bytes)) {
    std::cerr << "genicam-inspect: cannot read '" << options.file << "'\n";
    return 1;
  }
  CSparseRegisterSpace registers(options.seed);
  CInspectNodeMap nodeMap(registers);
  try {
    nodeMap.Load(bytes);
  } catch (const GenICam::GenericException& e) {
    std::cerr << "genicam-inspect: " << options.file << ": " << e.GetDescription() << "\n";
    return 1;
  } catch (const std::exception& e) {
    std::cerr << "genicam-inspect: " << options.file << ": " << e.what() << "\n";
    return 1;
  }
  int status = 0;
  for (const auto& [name, value] : options.sets) {
    const std::string error = nodeMap.SetFromString(name, value);
    if (!error.empty()) {
      std::cerr << "genicam-inspect: --set " << name << "=" << value << ": " << error << "\n";
      status = 1;
    }
  }
  CFeatureDump dump;
  nodeMap.Dump(dump, options.reads);
  dump.Print(std::cout);
  return status;
}
