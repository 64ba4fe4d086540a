// talvir-cli: the library from the command line (see README.md beside this file).
#include "CliApp.h"

#include <cstdio>
#include <iostream>
#include <string>
#include <unistd.h>
#include <vector>

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  return TalvirCli::RunCli(arguments, std::cout, std::cerr, isatty(fileno(stdout)) == 1);
}
