// The GenICam exception family: description, source file and line, and the composed what() text.
#include <GCBase/GCException.h>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace GenICam {

GenericException::GenericException(const char* description, const char* sourceFileName, unsigned int sourceLine)
    : GenericException(description, sourceFileName, sourceLine, "GenericException") {}

GenericException::GenericException(const char* description, const char* sourceFileName, unsigned int sourceLine,
                                   const char* exceptionType)
    : m_description(description ? description : ""), m_sourceFileName(sourceFileName ? sourceFileName : ""),
      m_type(exceptionType ? exceptionType : "GenericException"), m_sourceLine(sourceLine) {
  Compose();
}

GenericException::GenericException(const GenericException&) = default;
GenericException& GenericException::operator=(const GenericException&) = default;
GenericException::~GenericException() noexcept = default;

void GenericException::Compose() {
  m_what = m_description + " : " + m_type + " thrown (file '" + m_sourceFileName + "', line " +
           std::to_string(m_sourceLine) + ")";
}

const char* GenericException::GetDescription() const noexcept { return m_description.c_str(); }
const char* GenericException::GetSourceFileName() const noexcept { return m_sourceFileName.c_str(); }
unsigned int GenericException::GetSourceLine() const noexcept { return m_sourceLine; }
const char* GenericException::GetExceptionType() const noexcept { return m_type.c_str(); }
const char* GenericException::what() const noexcept { return m_what.c_str(); }

#define GENICAM_DEFINE_EXCEPTION(Name) \
  Name::Name(const char* description, const char* sourceFileName, unsigned int sourceLine) \
      : GenericException(description, sourceFileName, sourceLine, #Name) {} \
  Name::Name(const char* description, const char* sourceFileName, unsigned int sourceLine, const char* exceptionType) \
      : GenericException(description, sourceFileName, sourceLine, exceptionType) {} \
  Name::~Name() noexcept = default;

GENICAM_DEFINE_EXCEPTION(BadAllocException)
GENICAM_DEFINE_EXCEPTION(InvalidArgumentException)
GENICAM_DEFINE_EXCEPTION(OutOfRangeException)
GENICAM_DEFINE_EXCEPTION(PropertyException)
GENICAM_DEFINE_EXCEPTION(RuntimeException)
GENICAM_DEFINE_EXCEPTION(LogicalErrorException)
GENICAM_DEFINE_EXCEPTION(AccessException)
GENICAM_DEFINE_EXCEPTION(TimeoutException)
GENICAM_DEFINE_EXCEPTION(DynamicCastException)

std::string FormatExceptionText(const char* format, va_list args) {
  if (format == nullptr) return std::string();
  va_list copy;
  va_copy(copy, args);
  char small[512];
  const int needed = std::vsnprintf(small, sizeof small, format, copy);
  va_end(copy);
  if (needed < 0) return std::string(format);
  if (static_cast<size_t>(needed) < sizeof small) return std::string(small, static_cast<size_t>(needed));
  // Long texts (a node list, a formula) are cut at 64 KiB so that a hostile description cannot exhaust memory.
  const size_t size = std::min<size_t>(static_cast<size_t>(needed) + 1, 65536);
  std::vector<char> large(size);
  std::vsnprintf(large.data(), size, format, args);
  return std::string(large.data());
}

}  // namespace GenICam
