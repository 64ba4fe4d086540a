#include "WatchCommand.h"

#include "CameraSession.h"
#include "FeatureAccess.h"

#include <talvir/Talvir.h>

#include <CLI/CLI.hpp>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>

namespace TalvirCli {
namespace {

using Clock = std::chrono::steady_clock;

// Receives the camera's notifications on the library's thread and hands a loss to the watching loop.
class CLossSignal final : public TALVIR::ICameraHandler {
public:
  void OnNotify(uint32_t code, uint64_t, uint64_t) override {
    if (code != TALVIR::Notification::DeviceLost) {
      return;
    }
    {
      std::lock_guard<std::mutex> lock(m_mutex);
      m_lost = true;
    }
    m_changed.notify_all();
  }
  // Whether a loss was reported since the last call.
  bool TakeLoss() {
    std::lock_guard<std::mutex> lock(m_mutex);
    const bool lost = m_lost;
    m_lost = false;
    return lost;
  }
  // Waits up to `timeout` for a loss report (used while the device is away, between attempts to reopen it).
  void Wait(Clock::duration timeout) {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait_for(lock, timeout, [this] { return m_lost; });
  }

private:
  std::mutex m_mutex;
  std::condition_variable m_changed;
  bool m_lost = false;
};

std::string Elapsed(Clock::time_point start) {
  char text[32];
  std::snprintf(text, sizeof text, "%8.3f s", std::chrono::duration<double>(Clock::now() - start).count());
  return text;
}

}  // namespace

CLI::App* CWatchCommand::Register(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "watch", "Keep a camera grabbing and print a line when it goes away (device lost) or comes back");
  m_camera.AddTo(*command, false);
  command->add_option("--seconds", m_seconds, "How long to watch (0: until interrupted)")->check(CLI::Range(0.0, 1e9));
  command->add_option("--losses", m_maxLosses, "Stop after this many losses (0: no limit)");
  command->add_option("--set", m_settings, "Set a camera feature before grabbing (Feature=Value; repeatable)");
  return command;
}

int CWatchCommand::Run(const SCommandContext& context) {
  std::vector<std::pair<std::string, std::string>> settings;
  for (const std::string& setting : m_settings) {
    settings.push_back(SplitAssignment(setting, false));
  }
  CCameraSession session;
  TALVIR::ICamera& camera = session.Open(m_camera);
  GenApi::INodeMap& features = session.NodeMap("remote");
  for (const auto& [name, value] : settings) {
    SetFeature(features, name, value, "remote");
  }
  CLossSignal signal;
  camera.SetHandler(&signal);
  const Clock::time_point start = Clock::now();
  const auto finished = [&] {
    return m_seconds > 0 && Clock::now() - start >= std::chrono::duration<double>(m_seconds);
  };
  uint64_t losses = 0;
  const auto enoughLosses = [&] { return m_maxLosses > 0 && losses >= m_maxLosses; };
  const std::string serial = camera.GetCameraInfo()->GetSerialNumber();
  if (camera.StartGrabbing(TALVIR::GrabMode::Newest, 0) != TALVIR::Status::Ok) {
    camera.SetHandler(nullptr);
    throw CCommandError("camera " + serial + " does not start grabbing");
  }
  context.out << Elapsed(start) << "  watching " << serial << '\n' << std::flush;
  bool present = true;
  uint64_t frames = 0;
  while (!finished() && !enoughLosses()) {
    if (present) {
      TALVIR::IImage* image = nullptr;
      if (camera.GetImage(&image, 200) == TALVIR::Status::Ok) {
        ++frames;
      }
      if (image != nullptr) {
        image->Release();
      }
      // The transport's report, or for transports without one the watchdog.
      if (signal.TakeLoss() || !camera.IsOnline()) {
        present = false;
        ++losses;
        context.out << Elapsed(start) << "  " << serial << " went away (device lost, notification 1001) after "
                    << frames << " frames\n"
                    << std::flush;
        camera.Close();
      }
    } else if (!enoughLosses()) {
      signal.Wait(std::chrono::seconds(1));
      signal.TakeLoss();
      if (camera.Open(TALVIR::AccessMode::Control) == TALVIR::Status::Ok &&
          camera.StartGrabbing(TALVIR::GrabMode::Newest, 0) == TALVIR::Status::Ok) {
        present = true;
        context.out << Elapsed(start) << "  " << serial << " is back\n" << std::flush;
      }
    }
  }
  camera.SetHandler(nullptr);
  context.out << Elapsed(start) << "  " << frames << " frames, " << losses << (losses == 1 ? " loss" : " losses")
              << (present ? "" : ", device still away") << '\n';
  return 0;
}

}  // namespace TalvirCli
