#pragma once
// "talvir-cli get NAME... [camera options] [--module M] [--json]": the values of features, one "Name = value" line
// each.
#include "CameraOptions.h"
#include "Command.h"

#include <string>
#include <vector>

namespace TalvirCli {

class CGetCommand final : public CCommand {
public:
  CLI::App* Register(CLI::App& app) override;
  int Run(const SCommandContext& context) override;

private:
  SCameraOptions m_camera;
  std::vector<std::string> m_names;
  bool m_json = false;
};

}  // namespace TalvirCli
