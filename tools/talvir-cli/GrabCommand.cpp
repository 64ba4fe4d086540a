#include "GrabCommand.h"

#include "CameraSession.h"
#include "FeatureAccess.h"
#include "GrabLoop.h"
#include "ImageWriter.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <cstdio>

namespace TalvirCli {

uint32_t CGrabCommand::ParseMode(const std::string& name) {
  if (name == "newest") {
    return TALVIR::GrabMode::Newest;
  }
  if (name == "fresh") {
    return TALVIR::GrabMode::Fresh;
  }
  return TALVIR::GrabMode::Direct;
}

CLI::App* CGrabCommand::Register(CLI::App& app) {
  CLI::App* command = app.add_subcommand("grab", "Open a camera, set features, grab images, report the rate and "
                                                 "save the last image");
  m_camera.AddTo(*command, false);
  command
      ->add_option("--mode", m_mode,
                   "Grab mode: direct (every image, oldest first), newest (the newest image), "
                   "fresh (an image that arrives after asking)")
      ->check(CLI::IsMember({"direct", "newest", "fresh"}))
      ->capture_default_str();
  command->add_option("--count,-n", m_count, "Number of images to grab")
      ->check(CLI::Range(uint64_t{1}, uint64_t{1} << 40))
      ->capture_default_str();
  command->add_option("--timeout", m_timeoutMs, "Milliseconds to wait for each image")
      ->check(CLI::Range(uint32_t{1}, uint32_t{3600000}))
      ->capture_default_str();
  command->add_option("--buffers", m_buffers, "Buffers to announce (0: the producer's minimum, at least 8)")
      ->check(CLI::Range(uint64_t{0}, uint64_t{4096}));
  command->add_option("--set", m_settings, "Set a camera feature before grabbing (Feature=Value; repeatable)");
  command->add_option("--save", m_save, "Save the last image: FILE.png, FILE.tif or FILE.raw (with FILE.raw.json)");
  return command;
}

int CGrabCommand::Run(const SCommandContext& context) {
  std::vector<std::pair<std::string, std::string>> settings;
  for (const std::string& setting : m_settings) {
    settings.push_back(SplitAssignment(setting, false));
  }
  if (!m_save.empty()) {
    (void)CImageWriter::FormatOf(m_save);  // a wrong file name is a usage error, found before the camera opens
  }
  CCameraSession session;
  TALVIR::ICamera& camera = session.Open(m_camera);
  GenApi::INodeMap& features = session.NodeMap("remote");
  for (const auto& [name, value] : settings) {
    SetFeature(features, name, value, "remote");
  }
  if (m_buffers != 0) {
    camera.SetBufferCount(m_buffers);
  }

  const uint32_t mode = ParseMode(m_mode);
  auto lastProgress = std::chrono::steady_clock::now();
  const auto start = lastProgress;
  std::string saved;
  const SGrabStatistics statistics =
      CGrabLoop(camera, mode, m_timeoutMs).Run(m_count, [&](TALVIR::IImage& image, uint64_t number, bool last) {
        const auto now = std::chrono::steady_clock::now();
        if (context.terminal && (last || now - lastProgress > std::chrono::milliseconds(200))) {
          lastProgress = now;
          const double seconds = std::chrono::duration<double>(now - start).count();
          char line[128];
          std::snprintf(line, sizeof line, "\rgrabbing: %llu/%llu frames, %.1f fps   ",
                        static_cast<unsigned long long>(number + 1), static_cast<unsigned long long>(m_count),
                        seconds > 0 ? static_cast<double>(number + 1) / seconds : 0.0);
          context.out << line << std::flush;
        }
        if (last && !m_save.empty()) {
          CImageWriter::Save(m_save, image);
          saved = m_save + " (" + std::to_string(image.GetWidth()) + "x" + std::to_string(image.GetHeight()) +
                  ", frame " + std::to_string(image.GetFrameId()) + ")";
        }
      });
  if (context.terminal) {
    context.out << '\n';
  }
  char summary[256];
  std::snprintf(summary, sizeof summary, "%llu frames in %.2f s (%s mode): %.1f fps, %llu time-outs, %llu incomplete\n",
                static_cast<unsigned long long>(statistics.frames), statistics.seconds, m_mode.c_str(),
                statistics.FramesPerSecond(), static_cast<unsigned long long>(statistics.timeouts),
                static_cast<unsigned long long>(statistics.incomplete));
  context.out << summary;
  if (camera.GetCameraInfo()->GetTLType() == TALVIR::TLType::GEV) {
    // The GigE camera's own transfer figures since the start: bytes, frames, packet counters of the producer.
    const TALVIR::STransportInfo transfer = camera.GetTransportInfo();
    std::snprintf(summary, sizeof summary,
                  "GigE transfer: %llu bytes, %llu frames, %u incomplete (packet time-out), packets %llu / %llu / "
                  "%llu\n",
                  static_cast<unsigned long long>(transfer.bytesTotal),
                  static_cast<unsigned long long>(transfer.frames), transfer.timeouts,
                  static_cast<unsigned long long>(transfer.packetCounter1),
                  static_cast<unsigned long long>(transfer.packetCounter2),
                  static_cast<unsigned long long>(transfer.packetCounter3));
    context.out << summary;
  }
  if (!saved.empty()) {
    context.out << "saved " << saved << '\n';
  }
  return 0;
}

}  // namespace TalvirCli
