#include "gentl/Ref.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace TALVIR {
namespace {

// Counts its own deletion.
class CCountedRef final : public CRef {
public:
  explicit CCountedRef(std::atomic<int>& deletions) : m_deletions(deletions) {}
  ~CCountedRef() override { ++m_deletions; }

private:
  std::atomic<int>& m_deletions;
};

TEST(Ref, StartsWithTheCacheReferenceAndDeletesAtZero) {
  std::atomic<int> deletions{0};
  auto* ref = new CCountedRef(deletions);
  EXPECT_EQ(ref->ReferenceCount(), 1u);
  ref->AddRef();
  EXPECT_EQ(ref->ReferenceCount(), 2u);
  ref->ReleaseRef();
  EXPECT_EQ(deletions, 0);
  ref->ReleaseRef();
  EXPECT_EQ(deletions, 1);
}

TEST(Ref, DestroyOfASelfDeletingRecordIsAPlainRelease) {
  std::atomic<int> deletions{0};
  auto* ref = new CCountedRef(deletions);
  ref->AddRef();
  ref->DestroyRef();
  EXPECT_EQ(deletions, 0);
  EXPECT_FALSE(ref->IsReleased());
  EXPECT_EQ(ref->ReferenceCount(), 1u);
  ref->DestroyRef();
  EXPECT_EQ(deletions, 1);
}

TEST(Ref, ConcurrentDestroyDeletesExactlyOnce) {
  constexpr int kHolders = 16;
  for (int round = 0; round < 50; ++round) {
    std::atomic<int> deletions{0};
    auto* ref = new CCountedRef(deletions);
    for (int holder = 1; holder < kHolders; ++holder) {
      ref->AddRef();
    }
    std::atomic<bool> go{false};
    std::vector<std::thread> threads;
    for (int holder = 0; holder < kHolders; ++holder) {
      threads.emplace_back([&] {
        while (!go) {
          std::this_thread::yield();
        }
        ref->DestroyRef();
      });
    }
    go = true;
    for (std::thread& thread : threads) {
      thread.join();
    }
    ASSERT_EQ(deletions, 1) << "round " << round;
  }
}

TEST(Ref, ConcurrentAddAndReleaseKeepTheCount) {
  std::atomic<int> deletions{0};
  auto* ref = new CCountedRef(deletions);
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([ref] {
      for (int i = 0; i < 1000; ++i) {
        ref->AddRef();
        ref->ReleaseRef();
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(ref->ReferenceCount(), 1u);
  EXPECT_EQ(deletions, 0);
  ref->DestroyRef();
  EXPECT_EQ(deletions, 1);
}

TEST(Ref, DestroyWithoutAutoDeleteWaitsForTheOtherHolders) {
  std::atomic<int> deletions{0};
  auto* ref = new CCountedRef(deletions);
  ref->SetAutoDelete(false);
  ref->AddRef();  // another holder
  std::atomic<bool> destroyed{false};
  std::thread owner([&] {
    ref->DestroyRef();
    destroyed = true;
  });
  // The owner marks the record released and waits; no new reference can be taken meanwhile.
  while (!ref->IsReleased()) {
    std::this_thread::yield();
  }
  ref->AddRef();
  EXPECT_EQ(ref->ReferenceCount(), 1u);
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_FALSE(destroyed);
  EXPECT_EQ(deletions, 0);
  ref->ReleaseRef();  // the last other holder goes
  owner.join();
  EXPECT_TRUE(destroyed);
  EXPECT_EQ(deletions, 1);
}

TEST(Ref, DestroyWithoutAutoDeleteAndNoOtherHolderDeletesAtOnce) {
  std::atomic<int> deletions{0};
  auto* ref = new CCountedRef(deletions);
  ref->SetAutoDelete(false);
  ref->DestroyRef();
  EXPECT_EQ(deletions, 1);
}

TEST(Ref, ReleaseAtZeroOfAWaitingRecordDoesNotDelete) {
  std::atomic<int> deletions{0};
  auto* ref = new CCountedRef(deletions);
  ref->SetAutoDelete(false);
  ref->AddRef();
  ref->ReleaseRef();
  ref->ReleaseRef();
  EXPECT_EQ(deletions, 0);
  EXPECT_EQ(ref->ReferenceCount(), 0u);
  // A release below zero is ignored.
  ref->ReleaseRef();
  EXPECT_EQ(ref->ReferenceCount(), 0u);
  ref->DestroyRef();
  EXPECT_EQ(deletions, 1);
}

}  // namespace
}  // namespace TALVIR
