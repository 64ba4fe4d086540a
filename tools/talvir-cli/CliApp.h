#pragma once
// The whole talvir-cli command line: every command, --help on each, exit status 0 (success), 1 (failure), 2 (usage).
#include <ostream>
#include <string>
#include <vector>

namespace TalvirCli {

// Parses and runs one command line (without the program name). Errors go to `errors` as one line each, starting
// with "talvir-cli: ". `terminal` says whether `out` is a terminal (for progress lines).
int RunCli(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& errors, bool terminal = false);

}  // namespace TalvirCli
