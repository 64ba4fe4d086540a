#pragma once
// "talvir-cli grab [--serial S | --index N] [--mode direct|newest|fresh] [--count N] [--timeout MS]
// [--set Feature=Value]... [--save FILE]": opens a camera, sets its features, grabs, reports frames, frames per
// second, time-outs and incomplete frames, and saves the last image.
#include "CameraOptions.h"
#include "Command.h"

#include <cstdint>
#include <string>
#include <vector>

namespace TalvirCli {

class CGrabCommand final : public CCommand {
public:
  CLI::App* Register(CLI::App& app) override;
  int Run(const SCommandContext& context) override;

  // "direct", "newest", "fresh" to a GrabMode value.
  static uint32_t ParseMode(const std::string& name);

private:
  SCameraOptions m_camera;
  std::string m_mode = "direct";
  uint64_t m_count = 100;
  uint32_t m_timeoutMs = 1000;
  uint64_t m_buffers = 0;
  std::vector<std::string> m_settings;
  std::string m_save;
};

}  // namespace TalvirCli
