#pragma once
// Collects the library's diagnostic lines (one per failed GenTL call) while it lives, when switched on.
#include <talvir/Diagnostics.h>

#include <mutex>
#include <string>
#include <vector>

namespace TalvirCli {

class CDiagnosticLines {
public:
  // Registers with the library only when `enabled`.
  explicit CDiagnosticLines(bool enabled);
  ~CDiagnosticLines();
  CDiagnosticLines(const CDiagnosticLines&) = delete;
  CDiagnosticLines& operator=(const CDiagnosticLines&) = delete;

  std::vector<std::string> Lines() const;

private:
  static void Receive(const TALVIR::GenTLCallFailure& failure, void* context);

  bool m_enabled;
  mutable std::mutex m_mutex;
  std::vector<std::string> m_lines;
};

}  // namespace TalvirCli
