// The cost of calling a producer function through the library's function table against calling the raw pointer,
// for calls that succeed and calls that fail, with the diagnostic callback off and on. With it off, the table's
// entry should cost the same as the raw pointer.
#include "gentl/GenTLFunctionTable.h"

#include <benchmark/benchmark.h>

#include <atomic>

namespace {

using namespace TALVIR;

GenTL::GC_ERROR GC_CALLTYPE Succeeds(GenTL::DS_HANDLE, GenTL::BUFFER_HANDLE) { return GenTL::GC_ERR_SUCCESS; }
GenTL::GC_ERROR GC_CALLTYPE Fails(GenTL::DS_HANDLE, GenTL::BUFFER_HANDLE) { return GenTL::GC_ERR_IO; }

std::atomic<uint64_t> g_received{0};
void Count(const GenTLCallFailure&, void*) { g_received.fetch_add(1, std::memory_order_relaxed); }

// The pointer goes through an opaque store so that the compiler cannot inline the producer function.
GenTL::PFN_DSQueueBuffer Opaque(GenTL::PFN_DSQueueBuffer function) {
  benchmark::DoNotOptimize(function);
  return function;
}

void RawPointer(benchmark::State& state, GenTL::PFN_DSQueueBuffer target) {
  const GenTL::PFN_DSQueueBuffer function = Opaque(target);
  for (auto _ : state) {
    benchmark::DoNotOptimize(function(nullptr, nullptr));
  }
}

void TableEntry(benchmark::State& state, GenTL::PFN_DSQueueBuffer target, bool callbackOn) {
  CGenTLCallContext context;
  context.producer = "Bench.cti";
  CGenTLFunctionTable table;
  table.DSQueueBuffer.Bind(Opaque(target), &context);
  CDiagnosticSink::Set(callbackOn ? &Count : nullptr, nullptr);
  for (auto _ : state) {
    benchmark::DoNotOptimize(table.DSQueueBuffer(nullptr, nullptr));
  }
  CDiagnosticSink::Set(nullptr, nullptr);
}

void BM_SucceedingCallRaw(benchmark::State& state) { RawPointer(state, &Succeeds); }
void BM_SucceedingCallTableCallbackOff(benchmark::State& state) { TableEntry(state, &Succeeds, false); }
void BM_FailingCallRaw(benchmark::State& state) { RawPointer(state, &Fails); }
void BM_FailingCallTableCallbackOff(benchmark::State& state) { TableEntry(state, &Fails, false); }
void BM_FailingCallTableCallbackOn(benchmark::State& state) { TableEntry(state, &Fails, true); }

BENCHMARK(BM_SucceedingCallRaw);
BENCHMARK(BM_SucceedingCallTableCallbackOff);
BENCHMARK(BM_FailingCallRaw);
BENCHMARK(BM_FailingCallTableCallbackOff);
BENCHMARK(BM_FailingCallTableCallbackOn);

}  // namespace

BENCHMARK_MAIN();
