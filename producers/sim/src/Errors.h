#pragma once
// Error reporting of the producer: every failure is a CGenTLError thrown inside the module and turned into a
// GenTL error code at the exported boundary, where its text becomes this thread's last error.
#include <GenTL/GenTL.h>

#include <stdexcept>
#include <string>

namespace TalvirSim {

class CGenTLError : public std::runtime_error {
public:
  CGenTLError(GenTL::GC_ERROR code, const std::string& text) : std::runtime_error(text), m_code(code) {}
  GenTL::GC_ERROR Code() const { return m_code; }

private:
  GenTL::GC_ERROR m_code;
};

[[noreturn]] inline void Fail(GenTL::GC_ERROR code, const std::string& text) { throw CGenTLError(code, text); }

// The calling thread's last error, as GCGetLastError reports it.
void SetLastError(GenTL::GC_ERROR code, const std::string& text);
GenTL::GC_ERROR LastErrorCode();
std::string LastErrorText();

}  // namespace TalvirSim
