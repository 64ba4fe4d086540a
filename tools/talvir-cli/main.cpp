// talvir-cli: the library from the command line (see README.md beside this file).
#include "CliApp.h"
#include "HostSystem.h"

#include <iostream>
#include <string>
#include <vector>

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  return TalvirCli::RunCli(arguments, std::cout, std::cerr, TalvirCli::CHostSystem::StandardOutputIsTerminal());
}
