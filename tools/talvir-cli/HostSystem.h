#pragma once
// The little talvir-cli itself asks of the operating system (the library's own calls live in its platform layer).
namespace TalvirCli {

class CHostSystem {
public:
  // Whether standard output is a terminal (progress lines are printed only there).
  static bool StandardOutputIsTerminal();
  // The characters that end a folder name in a path: "/" on POSIX systems, "\\/" on Windows.
  static const char* PathSeparators();
};

}  // namespace TalvirCli
