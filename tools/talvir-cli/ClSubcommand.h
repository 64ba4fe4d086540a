#pragma once
// "talvir-cli cl ...": the Camera Link commands (ports, protocols, probe, get, set) under the common command line;
// everything after "cl" is handed to RunCl, which parses it itself.
#include "Command.h"

namespace TalvirCli {

class CClSubcommand final : public CCommand {
public:
  CLI::App* Register(CLI::App& app) override;
  int Run(const SCommandContext& context) override;

private:
  CLI::App* m_command = nullptr;
};

}  // namespace TalvirCli
