// Cameras used from several threads at once: fetches, stops, releases and closes racing each other. Run under the
// thread sanitizer too.
#include "SimRig.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace TALVIR {
namespace {

using Testing::CSimRig;

constexpr const char* kFastCamera =
    R"({ "interfaces": [ { "devices": [ { "width": 64, "height": 64, "frameRate": 0 } ] } ] })";

TEST(CameraConcurrency, SeveralThreadsFetchInEveryMode) {
  for (uint32_t mode : {GrabMode::Direct, GrabMode::Newest, GrabMode::Fresh}) {
    CSimRig rig("TalvirSim.cti", kFastCamera);
    CCamera* camera = rig.Camera(0);
    ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
    ASSERT_EQ(camera->StartGrabbing(mode, 0), Status::Ok);
    std::atomic<int> images{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
      threads.emplace_back([&] {
        for (int i = 0; i < 50; ++i) {
          IImage* image = nullptr;
          if (camera->GetImage(&image, 2000) == Status::Ok) {
            ++images;
          }
          if (image != nullptr) {
            image->Release();
          }
        }
      });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
    EXPECT_EQ(images.load(), 200);
    camera->StopGrabbing();
    EXPECT_EQ(CSimRig::Counts(*camera).announced, 0u);
  }
}

TEST(CameraConcurrency, StopGrabbingWhileOtherThreadsWaitForImages) {
  for (uint32_t mode : {GrabMode::Direct, GrabMode::Newest, GrabMode::Fresh}) {
    CSimRig rig;
    CCamera* camera = rig.Camera(0);
    ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
    CSimRig::SetEnum(*camera, "TriggerMode", "On");  // no frame will come
    ASSERT_EQ(camera->StartGrabbing(mode, 0), Status::Ok);
    std::atomic<int> waiting{0};
    std::vector<int32_t> results(3, 0);
    std::vector<std::thread> threads;
    for (size_t t = 0; t < results.size(); ++t) {
      threads.emplace_back([&, t] {
        IImage* image = nullptr;
        ++waiting;
        results[t] = camera->GetImage(&image, 60000);
        if (image != nullptr) {
          image->Release();
        }
      });
    }
    while (waiting.load() < 3) {
      std::this_thread::yield();
    }
    const auto started = std::chrono::steady_clock::now();
    camera->StopGrabbing();
    for (std::thread& thread : threads) {
      thread.join();
    }
    // Every waiter came back long before its minute was up, with a code that says why.
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(10));
    for (int32_t result : results) {
      EXPECT_TRUE(result == Status::Aborted || result == Status::NotGrabbing || result == Status::AcquisitionEnded)
          << result;
    }
    EXPECT_EQ(CSimRig::Counts(*camera).announced, 0u);
  }
}

TEST(CameraConcurrency, StopAndStartRaceFetchesAndReleasesOnOtherThreads) {
  CSimRig rig("TalvirSim.cti", kFastCamera);
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  camera->SetBufferCount(4);
  std::atomic<bool> done{false};
  std::mutex handOverLock;
  std::vector<IImage*> handOver;
  // Fetchers hand their images to a releaser thread.
  std::vector<std::thread> threads;
  for (int t = 0; t < 2; ++t) {
    threads.emplace_back([&] {
      while (!done.load()) {
        IImage* image = nullptr;
        camera->GetImage(&image, 20);
        if (image != nullptr) {
          std::lock_guard<std::mutex> lock(handOverLock);
          handOver.push_back(image);
        }
      }
    });
  }
  threads.emplace_back([&] {
    while (!done.load()) {
      std::vector<IImage*> batch;
      {
        std::lock_guard<std::mutex> lock(handOverLock);
        batch.swap(handOver);
      }
      for (IImage* image : batch) {
        image->Release();
      }
      std::this_thread::yield();
    }
  });
  for (int round = 0; round < 30; ++round) {
    ASSERT_EQ(camera->StartGrabbing(round % 3, 0), Status::Ok);
    for (int i = 0; i < 3; ++i) {
      IImage* image = nullptr;
      camera->GetImage(&image, 1000);
      if (image != nullptr) {
        image->Release();
      }
    }
    camera->StopGrabbing();
  }
  done = true;
  for (std::thread& thread : threads) {
    thread.join();
  }
  for (IImage* image : handOver) {
    image->Release();
  }
  EXPECT_EQ(CSimRig::Counts(*camera).announced, 0u);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  EXPECT_EQ(CSimRig::Counts(*camera).announced, 4u);
}

TEST(CameraConcurrency, CloseAndReleaseWhileAnotherThreadFetches) {
  CSimRig rig("TalvirSim.cti", kFastCamera);
  for (int round = 0; round < 10; ++round) {
    CCamera* camera = rig.Camera(0);
    ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
    ASSERT_EQ(camera->StartGrabbing(round % 3, 0), Status::Ok);
    std::atomic<int> fetched{0};
    std::atomic<bool> stop{false};
    std::thread fetcher([&] {
      while (!stop.load()) {
        IImage* image = nullptr;
        if (camera->GetImage(&image, 50) == Status::NotGrabbing) {
          return;
        }
        if (image != nullptr) {
          ++fetched;
          image->Release();
        }
      }
    });
    while (fetched.load() < 3) {
      std::this_thread::yield();
    }
    camera->Close();
    fetcher.join();
    EXPECT_FALSE(camera->IsOpen());
    camera->Release();
  }
}

}  // namespace
}  // namespace TALVIR
