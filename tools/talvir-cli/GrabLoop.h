#pragma once
// Grabs a number of images from an open camera in one grab mode and counts what happened. Shared by "grab" and
// "bench".
#include <talvir/Talvir.h>

#include <cstdint>
#include <functional>
#include <string>

namespace TalvirCli {

struct SGrabStatistics {
  uint64_t frames = 0;      // images received (complete or not)
  uint64_t incomplete = 0;  // of those, delivered incomplete by the producer
  uint64_t timeouts = 0;    // GetImage calls that timed out
  double seconds = 0;       // wall time from the first GetImage to the last
  double cpuSeconds = 0;    // processor time of the whole process over the same span
  double FramesPerSecond() const { return seconds > 0 ? static_cast<double>(frames) / seconds : 0; }
  double CpuMillisecondsPerFrame() const { return frames > 0 ? 1000.0 * cpuSeconds / static_cast<double>(frames) : 0; }
};

class CGrabLoop {
public:
  // Time-outs in a row after which the loop gives up (so that a camera that stopped sending ends the command).
  static constexpr uint64_t kMaxTimeoutsInARow = 3;

  CGrabLoop(TALVIR::ICamera& camera, uint32_t grabMode, uint32_t timeoutMs);
  // Called for each image received with its number (from 0) and whether it is the last one the loop will fetch;
  // the image is released after the call returns.
  using ImageHandler = std::function<void(TALVIR::IImage& image, uint64_t number, bool last)>;
  // Starts grabbing, fetches `count` images, stops grabbing. Throws CCommandError when the camera cannot start, a
  // fetch fails (device lost, ...), or kMaxTimeoutsInARow time-outs come in a row.
  SGrabStatistics Run(uint64_t count, const ImageHandler& onImage);

  static const char* ModeName(uint32_t grabMode);
  static std::string StartFailure(int32_t status);
  static std::string FetchFailure(int32_t status);

private:
  TALVIR::ICamera& m_camera;
  uint32_t m_grabMode;
  uint32_t m_timeoutMs;
};

}  // namespace TalvirCli
