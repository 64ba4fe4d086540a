// Endurance run of the camera core: a free-running 64x64 simulated camera grabbed in random sessions until the
// application has received `--frames` images (default 1000000). Each session picks at random whether to close and
// reopen the camera first, the buffer count (2..16, the producer's minimum being 2; 0 for the library's choice;
// 1, which the producer must refuse, leaving nothing announced), the grab mode, free run or software trigger, how
// many images the application holds at once, how many images it takes, and whether it releases the images it still
// holds before or after StopGrabbing.
//
//   camera_soak [--frames N] [--seed S]
//
// Checks, through the data stream's own figures (DSGetInfo):
//   - after every StopGrabbing: nothing announced, queued or awaiting delivery;
//   - in trigger mode, after each triggered frame has reached the application (nothing else in flight):
//     announced == queued + awaiting delivery + images the application holds (the grab thread of the newest and
//     fresh modes may hold one more only after a retry, see TriggeredSession);
//   - every image: 64x64 Mono8, and its first pixel is the simulator's pattern for its frame ID.
// Prints frames, sessions, reopens, failures, time and resident memory at the start, after the tenth session
// (warm), after the last session and at the end. Exit code 0; 1 on any accounting error; 2 on any other failure.
#include "BenchRig.h"

#include <GenApi/GenApi.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <deque>
#include <random>
#include <string>
#include <thread>

using namespace TALVIR;
using namespace TALVIR::Bench;

namespace {

constexpr uint32_t kSide = 64;
constexpr uint32_t kProducerMinimum = 2;
constexpr uint32_t kMaxBuffers = 16;
constexpr uint64_t kMono8 = 0x01080001;
// Resident memory is compared from this session on: the first sessions fill the allocator's pools and caches.
constexpr uint64_t kWarmSessions = 10;

struct SFigures {
  uint64_t frames = 0;
  uint64_t sessions = 0;
  uint64_t triggeredSessions = 0;
  uint64_t reopens = 0;
  uint64_t refusedStarts = 0;
  uint64_t triggerRetries = 0;
  uint64_t failures = 0;
  uint64_t accountingErrors = 0;
  uint64_t modeSessions[3] = {};
};

class CSoak {
public:
  CSoak(CCamera& camera, uint64_t seed) : m_camera(camera), m_random(seed) {}

  SFigures& Figures() { return m_figures; }

  void Fail(const std::string& what) {
    ++m_figures.failures;
    if (m_figures.failures <= 20) {
      std::fprintf(stderr, "failure (session %llu): %s\n", static_cast<unsigned long long>(m_figures.sessions),
                   what.c_str());
    }
  }
  void AccountingError(const std::string& what, const SStreamCounts& counts, size_t held) {
    ++m_figures.accountingErrors;
    if (m_figures.accountingErrors <= 20) {
      std::fprintf(stderr,
                   "accounting error (session %llu): %s: announced %llu, queued %llu, awaiting %llu, held %zu\n",
                   static_cast<unsigned long long>(m_figures.sessions), what.c_str(),
                   static_cast<unsigned long long>(counts.announced), static_cast<unsigned long long>(counts.queued),
                   static_cast<unsigned long long>(counts.awaitingDelivery), held);
    }
  }

  uint64_t Uniform(uint64_t low, uint64_t high) { return std::uniform_int_distribution<uint64_t>(low, high)(m_random); }

  // One session; `remaining` images are still wanted.
  void Session(uint64_t remaining) {
    ++m_figures.sessions;
    if (m_figures.sessions > 1 && Uniform(0, 9) == 0) {
      m_camera.Close();
      if (m_camera.Open(AccessMode::Control) != Status::Ok) {
        Fail("reopen failed");
        return;
      }
      ++m_figures.reopens;
    }
    // 0: the library's choice (the producer's minimum, at least 8); 1: below the producer's minimum, which the
    // producer refuses at the acquisition start.
    const uint64_t pick = Uniform(0, 19);
    const uint64_t buffers = pick == 0 ? 0 : pick == 1 ? 1 : Uniform(kProducerMinimum, kMaxBuffers);
    const auto mode = static_cast<uint32_t>(Uniform(0, 2));
    const bool triggered = Uniform(0, 4) == 0;
    try {
      GenApi::INodeMap& features = *m_camera.GetRemoteXml()->GetNodeMap();
      GenApi::CEnumerationPtr(features.GetNode("TriggerSelector"))->FromString("FrameStart");
      GenApi::CEnumerationPtr(features.GetNode("TriggerSource"))->FromString("Software");
      GenApi::CEnumerationPtr(features.GetNode("TriggerMode"))->FromString(triggered ? "On" : "Off");
    } catch (const GenICam::GenericException& error) {
      Fail(std::string("trigger settings: ") + error.GetDescription());
      return;
    }
    m_camera.SetBufferCount(buffers);
    const int32_t started = m_camera.StartGrabbing(mode, 0);
    if (buffers != 0 && buffers < kProducerMinimum) {
      // Refused by the producer: the buffers announced for it must all be gone again.
      ++m_figures.refusedStarts;
      if (started != Status::StartStreamFailed) {
        Fail("StartGrabbing with " + std::to_string(buffers) + " buffer returned " + std::to_string(started));
        m_camera.StopGrabbing();
      }
      const SStreamCounts refused = StreamCounts(m_camera);
      if (refused.announced != 0 || refused.queued != 0 || refused.awaitingDelivery != 0) {
        AccountingError("after a refused start", refused, 0);
      }
      return;
    }
    if (started != Status::Ok) {
      Fail("StartGrabbing returned " + std::to_string(started) + " with " + std::to_string(buffers) + " buffers");
      return;
    }
    ++m_figures.modeSessions[mode];
    const SStreamCounts atStart = StreamCounts(m_camera);
    const uint64_t expected = buffers == 0 ? 8 : buffers;
    if (atStart.announced != expected) {
      AccountingError("announced after start, expected " + std::to_string(expected), atStart, 0);
    }
    const uint64_t announced = atStart.announced == 0 ? 1 : atStart.announced;
    // The application never holds every buffer: one must stay free for the next frame.
    const auto holdAtMost = static_cast<size_t>(Uniform(0, announced - 1));
    std::deque<IImage*> held;
    if (triggered) {
      ++m_figures.triggeredSessions;
      TriggeredSession(mode, std::min<uint64_t>(remaining, Uniform(1, 40)), holdAtMost, held);
    } else {
      FreeSession(std::min<uint64_t>(remaining, Uniform(1, 5000)), holdAtMost, held);
    }
    const bool releaseBeforeStop = Uniform(0, 1) == 0;
    if (releaseBeforeStop) {
      ReleaseAll(held);
    }
    m_camera.StopGrabbing();
    const SStreamCounts stopped = StreamCounts(m_camera);
    if (stopped.announced != 0 || stopped.queued != 0 || stopped.awaitingDelivery != 0) {
      AccountingError("after StopGrabbing", stopped, held.size());
    }
    // Images held over the stop stay readable and give nothing back when released.
    for (IImage* image : held) {
      CheckImage(*image);
    }
    ReleaseAll(held);
    const SStreamCounts released = StreamCounts(m_camera);
    if (released.announced != 0 || released.queued != 0) {
      AccountingError("after releasing the images held over the stop", released, 0);
    }
  }

private:
  static void ReleaseAll(std::deque<IImage*>& held) {
    for (IImage* image : held) {
      image->Release();
    }
    held.clear();
  }

  // The simulator's pattern: pixel (0, 0) of frame f is 7 f (mod 256).
  void CheckImage(const IImage& image) {
    if (image.GetWidth() != kSide || image.GetHeight() != kSide || image.GetPixelFormat() != kMono8 ||
        image.GetBuffer() == nullptr) {
      Fail("image of the wrong geometry");
      return;
    }
    const auto expected = static_cast<uint8_t>(7 * image.GetFrameId());
    if (image.GetBuffer()[image.GetImageOffset()] != expected) {
      Fail("pixel (0, 0) of frame " + std::to_string(image.GetFrameId()) + " is " +
           std::to_string(image.GetBuffer()[image.GetImageOffset()]) + ", expected " + std::to_string(expected));
    }
  }

  // Keeps the new image and gives back the oldest ones beyond `holdAtMost`.
  void Keep(IImage* image, size_t holdAtMost, std::deque<IImage*>& held) {
    CheckImage(*image);
    ++m_figures.frames;
    held.push_back(image);
    while (held.size() > holdAtMost) {
      held.front()->Release();
      held.pop_front();
    }
  }

  void FreeSession(uint64_t frames, size_t holdAtMost, std::deque<IImage*>& held) {
    for (uint64_t i = 0; i < frames; ++i) {
      IImage* image = nullptr;
      const int32_t result = m_camera.GetImage(&image, 2000);
      if (result != Status::Ok || image == nullptr) {
        if (image != nullptr) {
          image->Release();
        }
        Fail("GetImage returned " + std::to_string(result) + " in free run");
        return;
      }
      Keep(image, holdAtMost, held);
    }
  }

  // One software trigger at a time, each frame waited for, so that no other frame is in flight when the stream's
  // figures are read. A fresh image must arrive after GetImage began: in fresh mode a helper thread fires the
  // trigger a millisecond after the call starts. On a loaded machine the frame can still reach the grab thread
  // first; it is then not fresh, goes back to the stream, the call times out and the trigger is fired again. A
  // frame that took longer than the time-out could still arrive after the retry's, so after a retry the grab thread
  // may hold one image besides the application's.
  void TriggeredSession(uint32_t mode, uint64_t frames, size_t holdAtMost, std::deque<IImage*>& held) {
    GenApi::CCommandPtr trigger(m_camera.GetRemoteXml()->GetNodeMap()->GetNode("TriggerSoftware"));
    bool retried = false;
    {
      const SStreamCounts counts = StreamCounts(m_camera);
      if (counts.announced != counts.queued + counts.awaitingDelivery) {
        AccountingError("trigger mode before the first trigger", counts, 0);
      }
    }
    std::string triggerError;
    const auto fire = [&] {
      try {
        trigger->Execute();
      } catch (const GenICam::GenericException& error) {
        triggerError = error.GetDescription();
      }
    };
    for (uint64_t i = 0; i < frames; ++i) {
      IImage* image = nullptr;
      int32_t result = Status::Timeout;
      for (int attempt = 0; attempt < 10 && result == Status::Timeout; ++attempt) {
        if (attempt > 0) {
          ++m_figures.triggerRetries;
          retried = true;
        }
        if (mode == GrabMode::Fresh) {
          std::thread firer([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            fire();
          });
          result = m_camera.GetImage(&image, 200);
          firer.join();
        } else {
          fire();
          result = m_camera.GetImage(&image, 2000);
        }
        if (!triggerError.empty()) {
          if (image != nullptr) {
            image->Release();
          }
          Fail("TriggerSoftware: " + triggerError);
          return;
        }
      }
      if (result != Status::Ok || image == nullptr) {
        if (image != nullptr) {
          image->Release();
        }
        const SStreamCounts counts = StreamCounts(m_camera);
        Fail("GetImage returned " + std::to_string(result) + " after a software trigger (mode " + std::to_string(mode) +
             ", frame " + std::to_string(i) + ", holding " + std::to_string(held.size()) + ", announced " +
             std::to_string(counts.announced) + ", queued " + std::to_string(counts.queued) + ", awaiting " +
             std::to_string(counts.awaitingDelivery) + ")");
        return;
      }
      Keep(image, holdAtMost, held);
      const SStreamCounts counts = StreamCounts(m_camera);
      const uint64_t accounted = counts.queued + counts.awaitingDelivery + held.size();
      const uint64_t libraryMayHold = mode != GrabMode::Direct && retried ? 1 : 0;
      if (counts.announced < accounted || counts.announced > accounted + libraryMayHold) {
        AccountingError("trigger mode, mode " + std::to_string(mode), counts, held.size());
      }
    }
  }

  CCamera& m_camera;
  std::mt19937_64 m_random;
  SFigures m_figures;
};

}  // namespace

int main(int argc, char** argv) {
  uint64_t target = 1000000;
  uint64_t seed = 1;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--frames") == 0 && i + 1 < argc) {
      target = std::strtoull(argv[++i], nullptr, 10);
    } else if (std::strcmp(argv[i], "--seed") == 0 && i + 1 < argc) {
      seed = std::strtoull(argv[++i], nullptr, 10);
    } else {
      std::fprintf(stderr, "usage: camera_soak [--frames N] [--seed S]\n");
      return 2;
    }
  }
  const auto began = std::chrono::steady_clock::now();
  const uint64_t residentStart = ResidentKb();
  uint64_t residentWarm = 0;
  uint64_t residentLast = 0;
  uint64_t residentPeak = residentStart;
  SFigures figures;
  try {
    CBenchRig rig({{"Soak", kSide, kSide, 0, kProducerMinimum}});
    CCamera& camera = rig.Camera(0);
    if (camera.Open(AccessMode::Control) != Status::Ok) {
      std::fprintf(stderr, "camera_soak: cannot open the simulated camera\n");
      return 2;
    }
    CSoak soak(camera, seed);
    uint64_t nextReport = 100000;
    while (soak.Figures().frames < target && soak.Figures().failures < 100) {
      soak.Session(target - soak.Figures().frames);
      const uint64_t resident = ResidentKb();
      residentPeak = std::max(residentPeak, resident);
      residentLast = resident;
      if (soak.Figures().sessions == kWarmSessions) {
        residentWarm = resident;
      }
      if (soak.Figures().frames >= nextReport) {
        std::fprintf(stderr, "  %llu frames, %llu sessions, resident %llu kB\n",
                     static_cast<unsigned long long>(soak.Figures().frames),
                     static_cast<unsigned long long>(soak.Figures().sessions),
                     static_cast<unsigned long long>(resident));
        nextReport += 100000;
      }
    }
    camera.Close();
    figures = soak.Figures();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "camera_soak: %s\n", error.what());
    return 2;
  }
  const uint64_t residentEnd = ResidentKb();
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  std::printf("frames %llu in %.1f s (%.0f frames/s)\n", static_cast<unsigned long long>(figures.frames), seconds,
              static_cast<double>(figures.frames) / seconds);
  std::printf("sessions (starts and stops) %llu: direct %llu, newest %llu, fresh %llu; triggered %llu\n",
              static_cast<unsigned long long>(figures.sessions),
              static_cast<unsigned long long>(figures.modeSessions[GrabMode::Direct]),
              static_cast<unsigned long long>(figures.modeSessions[GrabMode::Newest]),
              static_cast<unsigned long long>(figures.modeSessions[GrabMode::Fresh]),
              static_cast<unsigned long long>(figures.triggeredSessions));
  std::printf("reopens %llu, starts refused for too few buffers %llu, trigger retries %llu\n",
              static_cast<unsigned long long>(figures.reopens), static_cast<unsigned long long>(figures.refusedStarts),
              static_cast<unsigned long long>(figures.triggerRetries));
  std::printf("failures %llu, accounting errors %llu\n", static_cast<unsigned long long>(figures.failures),
              static_cast<unsigned long long>(figures.accountingErrors));
  std::printf("resident memory: start %llu kB, after session %llu %llu kB, after the last session %llu kB, peak %llu "
              "kB, after closing and unloading %llu kB\n",
              static_cast<unsigned long long>(residentStart), static_cast<unsigned long long>(kWarmSessions),
              static_cast<unsigned long long>(residentWarm), static_cast<unsigned long long>(residentLast),
              static_cast<unsigned long long>(residentPeak), static_cast<unsigned long long>(residentEnd));
  if (figures.accountingErrors != 0) {
    return 1;
  }
  return figures.failures != 0 ? 2 : 0;
}
