#pragma once
// Runs both engines on one description file with the same seed and compares their dumps: ours in this process,
// the comparison engine in its own process (genicam-aravis-dump), so that it never shares a process with our engine.
#include "DumpComparison.h"

#include <cstdint>
#include <string>
#include <vector>

namespace TALVIR::Tools {
struct SFileComparison {
  std::string file;
  std::string problem;  // why the comparison could not run; empty when it ran
  SComparison comparison;
  std::vector<std::pair<std::string, std::string>> writes;  // the assignments of the second comparison
};

using Assignments = std::vector<std::pair<std::string, std::string>>;

// Compares the dumps of a freshly loaded description. With writes > 0, both engines then also write that many
// features (chosen where both agree: writable integer features, each set to its minimum) before a second pair of
// dumps is compared, so that writes, cache invalidation and dependent values are compared too. Assignments our
// engine refuses (an earlier write made the feature unwritable) are left out for both engines.
SFileComparison CompareFile(const std::string& path, uint64_t seed, const std::string& oracleProgram,
                            size_t writes = 0);

// Our dump of a description file, as genicam-inspect prints it, after the assignments (whose failures are appended
// to `failures` as "Name: message"). Throws on load errors.
std::string OurDump(const std::string& bytes, uint64_t seed, const Assignments& sets = {},
                    std::vector<std::string>* failures = nullptr);

// Up to `count` features, evenly spread over the sorted names, that both dumps show alike as writable integers whose
// minimum differs from their value; each assigned its minimum.
Assignments PickWrites(const DumpRecords& ours, const DumpRecords& theirs, size_t count);

// The description files of a folder (*.xml), sorted; empty when the folder does not exist.
std::vector<std::string> DescriptionFiles(const std::string& folder);
}  // namespace TALVIR::Tools
