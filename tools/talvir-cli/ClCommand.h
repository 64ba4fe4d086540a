#pragma once
// "talvir-cli cl": Camera Link serial ports, protocol drivers, probing, and a camera's features over its serial link.
//   cl ports                                         the serial port IDs (PC ports and frame-grabber channels)
//   cl protocols                                     the protocol drivers' device-ID templates
//   cl probe                                         the cameras that answer on the PC's serial ports
//   cl get --port P [--device D] NAME...             read features over the serial link
//   cl set --port P [--device D] NAME=VALUE...       write features, then read them back
// Without --device, our GenCP driver's template is used.
#include <ostream>
#include <string>
#include <vector>

namespace TalvirCli {

// Runs the command with the arguments after "cl"; returns the process exit code: 0 done, 1 a failure (the port does
// not answer, a feature is missing or refuses the value), 2 a usage error.
int RunCl(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

// The usage text of the command.
void PrintClUsage(std::ostream& out);

}  // namespace TalvirCli
