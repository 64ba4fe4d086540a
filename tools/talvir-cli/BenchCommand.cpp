#include "BenchCommand.h"

#include "CameraSession.h"
#include "FeatureAccess.h"
#include "GrabLoop.h"

#include <CLI/CLI.hpp>

#include <cstdio>

namespace TalvirCli {

CLI::App* CBenchCommand::Register(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "bench", "Grab in each grab mode and print frames/s, processor time per frame and time-outs as a table");
  m_camera.AddTo(*command, false);
  command->add_option("--count,-n", m_count, "Images per grab mode")
      ->check(CLI::Range(uint64_t{1}, uint64_t{1} << 40))
      ->capture_default_str();
  command->add_option("--timeout", m_timeoutMs, "Milliseconds to wait for each image")
      ->check(CLI::Range(uint32_t{1}, uint32_t{3600000}))
      ->capture_default_str();
  command->add_option("--set", m_settings, "Set a camera feature first (Feature=Value; repeatable)");
  return command;
}

int CBenchCommand::Run(const SCommandContext& context) {
  std::vector<std::pair<std::string, std::string>> settings;
  for (const std::string& setting : m_settings) {
    settings.push_back(SplitAssignment(setting, false));
  }
  CCameraSession session;
  TALVIR::ICamera& camera = session.Open(m_camera);
  for (const auto& [name, value] : settings) {
    SetFeature(session.NodeMap("remote"), name, value, "remote");
  }
  context.out << "MODE    FRAMES  FRAMES/S  CPU MS/FRAME  TIME-OUTS  INCOMPLETE\n";
  for (uint32_t mode : {TALVIR::GrabMode::Direct, TALVIR::GrabMode::Newest, TALVIR::GrabMode::Fresh}) {
    const SGrabStatistics statistics =
        CGrabLoop(camera, mode, m_timeoutMs).Run(m_count, [](TALVIR::IImage&, uint64_t, bool) {});
    char line[160];
    std::snprintf(line, sizeof line, "%-6s  %6llu  %8.1f  %12.3f  %9llu  %10llu\n", CGrabLoop::ModeName(mode),
                  static_cast<unsigned long long>(statistics.frames), statistics.FramesPerSecond(),
                  statistics.CpuMillisecondsPerFrame(), static_cast<unsigned long long>(statistics.timeouts),
                  static_cast<unsigned long long>(statistics.incomplete));
    context.out << line << std::flush;
  }
  return 0;
}

}  // namespace TalvirCli
