// One node map used from several threads at once (run under ThreadSanitizer too).
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "MemoryPort.h"

using namespace EngineTest;
using namespace GenApi;

namespace {

TEST(Threads, ConcurrentReadersAndWritersSeeConsistentValues) {
  CTestMap t("<Integer Name='Width'><pValue>WidthReg</pValue><Min>0</Min><Max>1000000</Max></Integer>"
             "<IntReg Name='WidthReg'><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
             "<pPort>Device</pPort></IntReg>"
             "<IntSwissKnife Name='Double'><pVariable Name='W'>Width</pVariable><Formula>W * 2</Formula>"
             "</IntSwissKnife>"
             "<IntReg Name='Volatile'><Address>8</Address><Length>4</Length><AccessMode>RO</AccessMode>"
             "<pPort>Device</pPort><Cachable>NoCache</Cachable></IntReg>");
  std::atomic<int> callbacks{0};
  Register(t.Node("Double"), [&](INode*) { ++callbacks; });
  std::atomic<bool> bad{false};
  std::vector<std::thread> threads;
  constexpr int kIterations = 2000;
  for (int w = 0; w < 2; ++w) {
    threads.emplace_back([&, w] {
      CIntegerPtr width(t.Node("Width"));
      for (int i = 0; i < kIterations; ++i) width->SetValue(w * 100000 + i);
    });
  }
  for (int r = 0; r < 2; ++r) {
    threads.emplace_back([&] {
      CIntegerPtr doubled(t.Node("Double"));
      CIntegerPtr width(t.Node("Width"));
      CIntegerPtr vol(t.Node("Volatile"));
      for (int i = 0; i < kIterations; ++i) {
        CAutoLock lock(t.map._Ptr->GetLock());  // two reads as one step
        const int64_t w = width->GetValue();
        if (doubled->GetValue() != 2 * w) bad = true;
        vol->GetValue();
        if (i % 97 == 0) t.map._InvalidateNodes();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_FALSE(bad);
  EXPECT_GE(callbacks.load(), 2 * kIterations);
}

}  // namespace
