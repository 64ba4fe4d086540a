// genicam-aravis-dump: evaluates a description file with the comparison engine over the seeded sparse register space
// and prints the same per-feature dump as genicam-inspect. Used by the differential test and the benchmarks only.
#include "AravisNodeMap.h"
#include "FeatureDump.h"
#include "FileBytes.h"
#include "StructEntryNormalisation.h"

#include <iostream>

using namespace TALVIR::Tools;

int main(int argc, char** argv) {
  SDumpOptions options;
  const std::string problem = ParseDumpOptions(argc, argv, options);
  if (!problem.empty()) {
    std::cerr << "genicam-aravis-dump: " << problem << "\n"
              << "usage: genicam-aravis-dump FILE.xml [--seed N] [--set Name=Value]... [--read Name]...\n";
    return 2;
  }
  std::string xml;
  if (!ReadFileBytes(options.file, xml)) {
    std::cerr << "genicam-aravis-dump: cannot read '" << options.file << "'\n";
    return 1;
  }

  // Makes the comparison engine follow the rule that a StructReg's access elements apply to its entries.
  xml = CopyStructRegAccessElementsToEntries(xml);

  CSparseRegisterSpace registers(options.seed);
  CAravisNodeMap nodeMap(registers);
  if (!nodeMap.Load(xml)) {
    std::cerr << "genicam-aravis-dump: the comparison engine could not load '" << options.file << "'\n";
    return 1;
  }
  int status = 0;
  for (const auto& [name, value] : options.sets) {
    const std::string error = nodeMap.SetFromString(name, value);
    if (!error.empty()) {
      std::cerr << "genicam-aravis-dump: --set " << name << "=" << value << ": " << error << "\n";
      status = 1;
    }
  }
  CFeatureDump dump;
  nodeMap.Dump(dump, options.reads);
  dump.Print(std::cout);
  return status;
}
