#pragma once
// "talvir-cli watch [--serial S | --index N] [--seconds N] [--set Feature=Value]...": keeps a camera grabbing and
// prints a line when it goes away (notification 1001, or the watchdog finding it offline) and when it comes back.
#include "CameraOptions.h"
#include "Command.h"

#include <cstdint>
#include <string>
#include <vector>

namespace TalvirCli {

class CWatchCommand final : public CCommand {
public:
  CLI::App* Register(CLI::App& app) override;
  int Run(const SCommandContext& context) override;

private:
  SCameraOptions m_camera;
  double m_seconds = 0;
  uint64_t m_maxLosses = 0;
  std::vector<std::string> m_settings;
};

}  // namespace TalvirCli
