#pragma once
// Runs both engines on one description file with the same seed and compares their dumps: ours in this process,
// the comparison engine in its own process (genicam-aravis-dump), so that it never shares a process with our engine.
#include "DumpComparison.h"

#include <cstdint>
#include <string>
#include <vector>

namespace TALVIR::Tools
{
struct SFileComparison
{
    std::string file;
    std::string problem; // why the comparison could not run; empty when it ran
    SComparison comparison;
};

SFileComparison CompareFile(const std::string& path, uint64_t seed, const std::string& oracleProgram);

// Our dump of a description file, as genicam-inspect prints it. Throws on load errors.
std::string OurDump(const std::string& bytes, uint64_t seed);

// The description files of a folder (*.xml), sorted; empty when the folder does not exist.
std::vector<std::string> DescriptionFiles(const std::string& folder);
} // namespace TALVIR::Tools
