#pragma once
// "talvir-cli set NAME=VALUE... [camera options] [--module M]": sets features in order (enumerations by symbolic
// name, booleans true/false); a command is executed ("set TriggerSoftware"). Stops at the first refusal and reports
// the engine's message.
#include "CameraOptions.h"
#include "Command.h"

#include <string>
#include <vector>

namespace TalvirCli {

class CSetCommand final : public CCommand {
public:
  CLI::App* Register(CLI::App& app) override;
  int Run(const SCommandContext& context) override;

private:
  SCameraOptions m_camera;
  std::vector<std::string> m_assignments;
};

}  // namespace TalvirCli
