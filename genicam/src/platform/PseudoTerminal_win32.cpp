#include "platform/PseudoTerminal.h"

namespace GenICam {
namespace Platform {
namespace {

const char* const kUnavailable =
    "pseudo-terminals are not available on Windows: a simulated serial device needs a pair of connected serial "
    "ports there (a virtual null-modem driver)";

}  // namespace

// Windows has no pseudo-terminal pair that a serial-port client could open by name: every operation fails, and
// the object stays closed.
CPseudoTerminal::~CPseudoTerminal() { Close(); }

bool CPseudoTerminal::Open(std::string& error) {
  error = kUnavailable;
  return false;
}

ESerialResult CPseudoTerminal::ReadSome(std::string& /*out*/, uint32_t /*timeoutMs*/) { return ESerialResult::Gone; }

bool CPseudoTerminal::Write(const void* /*buffer*/, size_t /*size*/) { return false; }

uint32_t CPseudoTerminal::ClientBaudRate() const { return 0; }

void CPseudoTerminal::Interrupt() {}

void CPseudoTerminal::Close() { m_slaveName.clear(); }

}  // namespace Platform
}  // namespace GenICam
