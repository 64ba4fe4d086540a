#include "DiagnosticLines.h"

namespace TalvirCli {

CDiagnosticLines::CDiagnosticLines(bool enabled) : m_enabled(enabled) {
  if (m_enabled) {
    TALVIR::SetDiagnosticCallback(&CDiagnosticLines::Receive, this);
  }
}

CDiagnosticLines::~CDiagnosticLines() {
  if (m_enabled) {
    TALVIR::SetDiagnosticCallback(nullptr, nullptr);
  }
}

std::vector<std::string> CDiagnosticLines::Lines() const {
  std::lock_guard<std::mutex> lock(m_mutex);
  return m_lines;
}

void CDiagnosticLines::Receive(const TALVIR::GenTLCallFailure& failure, void* context) {
  auto* self = static_cast<CDiagnosticLines*>(context);
  std::lock_guard<std::mutex> lock(self->m_mutex);
  self->m_lines.emplace_back(failure.line);
}

}  // namespace TalvirCli
