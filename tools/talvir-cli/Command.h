#pragma once
// One talvir-cli command: it adds its subcommand and options to the parser, and runs once they are parsed.
#include <ostream>
#include <stdexcept>
#include <string>

namespace CLI {
class App;
}

namespace TalvirCli {

// Where a command writes, and whether standard output is a terminal (progress lines only go to a terminal).
struct SCommandContext {
  std::ostream& out;
  std::ostream& errors;
  bool terminal = false;
};

// A failure the user can act on: printed as "talvir-cli: <message>", exit status 1.
class CCommandError : public std::runtime_error {
public:
  explicit CCommandError(const std::string& message) : std::runtime_error(message) {}
};

// A command line that is wrong in a way the parser cannot see (a malformed NAME=VALUE): exit status 2.
class CUsageError : public std::runtime_error {
public:
  explicit CUsageError(const std::string& message) : std::runtime_error(message) {}
};

class CCommand {
public:
  virtual ~CCommand() = default;
  // Adds the command to the parser; returns its subcommand.
  virtual CLI::App* Register(CLI::App& app) = 0;
  // Runs the parsed command; returns the exit status, or throws CCommandError / CUsageError.
  virtual int Run(const SCommandContext& context) = 0;
};

}  // namespace TalvirCli
