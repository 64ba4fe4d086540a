#pragma once
// The process-wide receiver of failed GenTL calls: the application's diagnostic callback, when it registered one.
#include <talvir/Diagnostics.h>

#include <atomic>

namespace TALVIR {

class CDiagnosticSink {
public:
  // Whether a callback is registered. Checked on the failure path of every GenTL call, so it is one relaxed load.
  static bool Enabled() { return s_enabled.load(std::memory_order_relaxed); }

  // Replaces the callback (null: none). Waits until no call of the previous one is running; ignored when made from
  // inside a callback, which would otherwise wait for itself.
  static void Set(DiagnosticCallback callback, void* context);

  // Hands one failure to the callback, if any. Failures raised while this thread runs the callback are dropped.
  static void Deliver(const GenTLCallFailure& failure);

private:
  static std::atomic<bool> s_enabled;
};

}  // namespace TALVIR
