#include "GrabLoop.h"

#include "Command.h"

#include <chrono>
#include <ctime>

namespace TalvirCli {

CGrabLoop::CGrabLoop(TALVIR::ICamera& camera, uint32_t grabMode, uint32_t timeoutMs)
    : m_camera(camera), m_grabMode(grabMode), m_timeoutMs(timeoutMs) {}

const char* CGrabLoop::ModeName(uint32_t grabMode) {
  switch (grabMode) {
  case TALVIR::GrabMode::Direct: return "direct";
  case TALVIR::GrabMode::Newest: return "newest";
  case TALVIR::GrabMode::Fresh: return "fresh";
  default: return "?";
  }
}

std::string CGrabLoop::StartFailure(int32_t status) {
  using namespace TALVIR::Status;
  switch (status) {
  case AlreadyGrabbing: return "the camera is already grabbing";
  case NotOpen: return "the camera is not open";
  case StreamHasNoProducer:
  case StreamHasNoHandle: return "the camera has no data stream";
  case NoRemoteFeatures: return "the camera's features cannot be read";
  case NoPayloadSize: return "the camera does not tell its payload size";
  case OutOfMemory: return "there is not enough memory for the buffers";
  case AnnounceFailed: return "the producer refused the buffers";
  case RegisterEventFailed: return "the producer refused the new-buffer event";
  case StartStreamFailed: return "the producer or the camera refused to start acquisition";
  default: return "status " + std::to_string(status);
  }
}

std::string CGrabLoop::FetchFailure(int32_t status) {
  using namespace TALVIR::Status;
  switch (status) {
  case NotGrabbing: return "the camera is not grabbing";
  case AcquisitionEnded: return "the acquisition ended";
  case Aborted: return "the acquisition was stopped";
  case BufferTooSmall: return "an image did not fit its buffer";
  case ChunkParseFailed: return "the chunk data of an image could not be read";
  case ResourceExhausted: return "the producer ran out of resources";
  case FetchFailed: return "the producer failed to deliver an image (device lost?)";
  default: return "status " + std::to_string(status);
  }
}

SGrabStatistics CGrabLoop::Run(uint64_t count, const ImageHandler& onImage) {
  SGrabStatistics statistics;
  const int32_t started = m_camera.StartGrabbing(m_grabMode, 0);
  if (started != TALVIR::Status::Ok) {
    throw CCommandError("cannot start grabbing: " + StartFailure(started));
  }
  const auto wallStart = std::chrono::steady_clock::now();
  const std::clock_t cpuStart = std::clock();
  uint64_t timeoutsInARow = 0;
  std::string failure;
  while (statistics.frames < count) {
    TALVIR::IImage* image = nullptr;
    const int32_t status = m_camera.GetImage(&image, m_timeoutMs);
    if (status == TALVIR::Status::Timeout && image == nullptr) {
      ++statistics.timeouts;
      if (++timeoutsInARow >= kMaxTimeoutsInARow) {
        failure = "no image within " + std::to_string(m_timeoutMs) + " ms, " + std::to_string(kMaxTimeoutsInARow) +
                  " times in a row (is the camera triggered or stopped?)";
        break;
      }
      continue;
    }
    if (image == nullptr) {
      failure = "cannot grab: " + FetchFailure(status);
      break;
    }
    timeoutsInARow = 0;
    // Fill codes still hand out an image: it counts, as incomplete when the producer says so or it is unusable.
    if (!image->IsComplete() || status != TALVIR::Status::Ok) {
      ++statistics.incomplete;
    }
    const uint64_t number = statistics.frames++;
    try {
      onImage(*image, number, statistics.frames == count);
    } catch (...) {
      image->Release();
      m_camera.StopGrabbing();
      throw;
    }
    image->Release();
  }
  statistics.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - wallStart).count();
  statistics.cpuSeconds = static_cast<double>(std::clock() - cpuStart) / CLOCKS_PER_SEC;
  m_camera.StopGrabbing();
  if (!failure.empty()) {
    throw CCommandError(failure + " after " + std::to_string(statistics.frames) + " frames");
  }
  return statistics;
}

}  // namespace TalvirCli
