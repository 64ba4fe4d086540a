#include "Errors.h"

namespace TalvirSim {
namespace {
struct SLastError {
  GenTL::GC_ERROR code = GenTL::GC_ERR_SUCCESS;
  std::string text = "no error";
};
// One per thread and per loaded copy of the module: each flavour file is a separate copy with its own TLS block.
thread_local SLastError t_lastError;
} // namespace

void SetLastError(GenTL::GC_ERROR code, const std::string& text) {
  t_lastError.code = code;
  t_lastError.text = text;
}

GenTL::GC_ERROR LastErrorCode() { return t_lastError.code; }

const std::string& LastErrorText() { return t_lastError.text; }

} // namespace TalvirSim
