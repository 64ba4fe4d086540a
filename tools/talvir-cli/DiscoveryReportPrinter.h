#pragma once
// Prints the library's discovery report ("discover --verbose"): why each producer's devices are listed or not.
#include <talvir/Diagnostics.h>

#include <ostream>
#include <string>
#include <vector>

namespace TalvirCli {

// A short name for a discovery rule ("empty interface", ...).
const char* DiscoveryRuleName(TALVIR::DiscoveryRule rule);

// The report, then `failedCalls` (lines of the diagnostic callback) when there are any.
void PrintDiscoveryReport(std::ostream& out, const TALVIR::DiscoveryReport& report,
                          const std::vector<std::string>& failedCalls);

}  // namespace TalvirCli
