#pragma once
// "talvir-cli discover [--type MASK] [--producer NAME]".
#include <ostream>
#include <string>
#include <vector>

namespace TalvirCli {

// Runs the command with the arguments after "discover"; returns the process exit code.
int RunDiscover(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& errors);

} // namespace TalvirCli
