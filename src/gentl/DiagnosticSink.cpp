#include "gentl/DiagnosticSink.h"

#include <mutex>
#include <shared_mutex>

namespace TALVIR {
namespace {

struct CRegistration {
  std::shared_mutex mutex;
  DiagnosticCallback callback = nullptr;
  void* context = nullptr;
};

CRegistration& Registration() {
  static CRegistration registration;
  return registration;
}

// Set while this thread runs the callback.
thread_local bool t_inCallback = false;

}  // namespace

std::atomic<bool> CDiagnosticSink::s_enabled{false};

void CDiagnosticSink::Set(DiagnosticCallback callback, void* context) {
  if (t_inCallback) {
    return;
  }
  CRegistration& registration = Registration();
  std::unique_lock<std::shared_mutex> lock(registration.mutex);
  registration.callback = callback;
  registration.context = context;
  s_enabled.store(callback != nullptr, std::memory_order_relaxed);
}

void CDiagnosticSink::Deliver(const GenTLCallFailure& failure) {
  if (t_inCallback) {
    return;
  }
  CRegistration& registration = Registration();
  std::shared_lock<std::shared_mutex> lock(registration.mutex);
  if (registration.callback == nullptr) {
    return;
  }
  t_inCallback = true;
  try {
    registration.callback(failure, registration.context);
  } catch (...) {
    // An exception from the application's callback must not change the outcome of the library's call.
  }
  t_inCallback = false;
}

}  // namespace TALVIR
