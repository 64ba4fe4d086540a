#include "ClSubcommand.h"

#include "ClCommand.h"

#include <CLI/CLI.hpp>

namespace TalvirCli {

CLI::App* CClSubcommand::Register(CLI::App& app) {
  m_command = app.add_subcommand(
      "cl", "Camera Link over the serial link: ports, protocols, probe, get NAME..., set NAME=VALUE... "
            "(talvir-cli cl --help for the details)");
  // The Camera Link commands parse their own arguments, --help included.
  m_command->prefix_command();
  m_command->set_help_flag();
  return m_command;
}

int CClSubcommand::Run(const SCommandContext& context) {
  return RunCl(m_command->remaining(), context.out, context.errors);
}

}  // namespace TalvirCli
