#pragma once
// "talvir-cli bench [--serial S | --index N] [--count N] [--timeout MS] [--set Feature=Value]...": grabs the same
// number of images in each grab mode and prints frames per second, processor time per frame and time-outs as a
// table.
#include "CameraOptions.h"
#include "Command.h"

#include <cstdint>
#include <string>
#include <vector>

namespace TalvirCli {

class CBenchCommand final : public CCommand {
public:
  CLI::App* Register(CLI::App& app) override;
  int Run(const SCommandContext& context) override;

private:
  SCameraOptions m_camera;
  uint64_t m_count = 200;
  uint32_t m_timeoutMs = 1000;
  std::vector<std::string> m_settings;
};

}  // namespace TalvirCli
