// talvir-cli: try the library from the command line.
#include "DiscoverCommand.h"

#include <iostream>
#include <string>
#include <vector>

namespace {

void PrintUsage(std::ostream& out) {
  out << "usage: talvir-cli discover [--type MASK] [--producer NAME] [--verbose]\n"
         "  discover            list the devices of the producers (.cti files) beside the library\n"
         "  --type MASK         only producers of these transport-layer types: GEV 1, U3V 2, CL 4, CXP 8,\n"
         "                      IIDC 16, UVC 32, CLHS 64, Ethernet 128, PCI 256 (511: every producer)\n"
         "  --producer NAME     only the producer file NAME\n"
         "  --verbose           also say why devices are missing: each producer, its interfaces, the rules applied\n"
         "                      and every GenTL call that failed\n";
}

} // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  if (arguments.empty() || arguments[0] == "--help" || arguments[0] == "-h") {
    PrintUsage(arguments.empty() ? std::cerr : std::cout);
    return arguments.empty() ? 2 : 0;
  }
  if (arguments[0] == "discover") {
    return TalvirCli::RunDiscover(std::vector<std::string>(arguments.begin() + 1, arguments.end()), std::cout,
                                  std::cerr);
  }
  std::cerr << "talvir-cli: unknown command '" << arguments[0] << "'\n";
  PrintUsage(std::cerr);
  return 2;
}
