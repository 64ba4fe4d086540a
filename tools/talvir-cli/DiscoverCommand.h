#pragma once
// "talvir-cli discover [--type MASK | --producer NAME] [--json]": the devices of the producers beside the library.
#include "Command.h"

#include <string>
#include <vector>

namespace TalvirCli {

class CDiscoverCommand final : public CCommand {
public:
  CLI::App* Register(CLI::App& app) override;
  int Run(const SCommandContext& context) override;

private:
  std::string m_type;
  std::string m_producer;
  bool m_json = false;
  bool m_verbose = false;
};

// Runs "discover" with these arguments (those after the command's name); returns the exit status.
int RunDiscover(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& errors);

}  // namespace TalvirCli
