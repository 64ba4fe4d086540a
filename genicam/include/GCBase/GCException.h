#pragma once
// The GenICam exception family. Every exception records a description, the source file and the source line where it
// was raised. Raise them through the helper macros at the end of this file, e.g.
//   throw RUNTIME_EXCEPTION("Node '%s' is not readable", name);
#include <cstdarg>
#include <exception>
#include <string>

#include <GCBase/GCTypes.h>

namespace GenICam {

class GENICAM_API GenericException : public std::exception {
public:
  GenericException(const char* description, const char* sourceFileName, unsigned int sourceLine);
  GenericException(const char* description, const char* sourceFileName, unsigned int sourceLine,
                   const char* exceptionType);
  GenericException(const GenericException&);
  GenericException& operator=(const GenericException&);
  ~GenericException() noexcept override;

  const char* GetDescription() const noexcept;
  const char* GetSourceFileName() const noexcept;
  unsigned int GetSourceLine() const noexcept;
  // The name of the most derived exception class ("RuntimeException", ...).
  const char* GetExceptionType() const noexcept;
  // Description, type, file and line in one line.
  const char* what() const noexcept override;

private:
  void Compose();
  std::string m_description;
  std::string m_sourceFileName;
  std::string m_type;
  std::string m_what;
  unsigned int m_sourceLine;
};

#define GENICAM_DECLARE_EXCEPTION(Name) \
  class GENICAM_API Name : public GenericException { \
  public: \
    Name(const char* description, const char* sourceFileName, unsigned int sourceLine); \
    Name(const char* description, const char* sourceFileName, unsigned int sourceLine, const char* exceptionType); \
    ~Name() noexcept override; \
  }

GENICAM_DECLARE_EXCEPTION(BadAllocException);
GENICAM_DECLARE_EXCEPTION(InvalidArgumentException);
GENICAM_DECLARE_EXCEPTION(OutOfRangeException);
GENICAM_DECLARE_EXCEPTION(PropertyException);
GENICAM_DECLARE_EXCEPTION(RuntimeException);
GENICAM_DECLARE_EXCEPTION(LogicalErrorException);
GENICAM_DECLARE_EXCEPTION(AccessException);
GENICAM_DECLARE_EXCEPTION(TimeoutException);
GENICAM_DECLARE_EXCEPTION(DynamicCastException);

#undef GENICAM_DECLARE_EXCEPTION

// Format checking of printf-style texts. MinGW's "printf" archetype checks Microsoft's rules (no %zu); its C++
// runtime formats by the C99 rules, which the "gnu_printf" archetype checks.
#if defined(__MINGW32__)
#define GENICAM_PRINTF_LIKE(formatIndex, firstArgument) __attribute__((format(gnu_printf, formatIndex, firstArgument)))
#elif defined(__GNUC__)
#define GENICAM_PRINTF_LIKE(formatIndex, firstArgument) __attribute__((format(printf, formatIndex, firstArgument)))
#else
#define GENICAM_PRINTF_LIKE(formatIndex, firstArgument)
#endif

// printf-style formatting into a std::string (bounded, never throws on bad format arguments).
GENICAM_PRINTF_LIKE(1, 0)
GENICAM_API std::string FormatExceptionText(const char* format, va_list args);

// Builds an exception of type E that remembers where it was made.
template <class E>
class CExceptionReporter {
public:
  CExceptionReporter(const char* sourceFileName, unsigned int sourceLine, const char* typeName)
      : m_sourceFileName(sourceFileName), m_sourceLine(sourceLine), m_typeName(typeName) {}
  GENICAM_PRINTF_LIKE(2, 3)
  E Report(const char* format, ...) const {
    va_list args;
    va_start(args, format);
    const std::string text = FormatExceptionText(format, args);
    va_end(args);
    return E(text.c_str(), m_sourceFileName, m_sourceLine, m_typeName);
  }
  E Report() const { return E("", m_sourceFileName, m_sourceLine, m_typeName); }

private:
  const char* m_sourceFileName;
  unsigned int m_sourceLine;
  const char* m_typeName;
};

}  // namespace GenICam

#define GENICAM_MAKE_EXCEPTION(Type, ...) \
  ::GenICam::CExceptionReporter<::GenICam::Type>(__FILE__, __LINE__, #Type).Report(__VA_ARGS__)

#define GENERIC_EXCEPTION(...) GENICAM_MAKE_EXCEPTION(GenericException, __VA_ARGS__)
#define BAD_ALLOC_EXCEPTION(...) GENICAM_MAKE_EXCEPTION(BadAllocException, __VA_ARGS__)
#define INVALID_ARGUMENT_EXCEPTION(...) GENICAM_MAKE_EXCEPTION(InvalidArgumentException, __VA_ARGS__)
#define OUT_OF_RANGE_EXCEPTION(...) GENICAM_MAKE_EXCEPTION(OutOfRangeException, __VA_ARGS__)
#define PROPERTY_EXCEPTION(...) GENICAM_MAKE_EXCEPTION(PropertyException, __VA_ARGS__)
#define RUNTIME_EXCEPTION(...) GENICAM_MAKE_EXCEPTION(RuntimeException, __VA_ARGS__)
#define LOGICAL_ERROR_EXCEPTION(...) GENICAM_MAKE_EXCEPTION(LogicalErrorException, __VA_ARGS__)
#define ACCESS_EXCEPTION(...) GENICAM_MAKE_EXCEPTION(AccessException, __VA_ARGS__)
#define TIMEOUT_EXCEPTION(...) GENICAM_MAKE_EXCEPTION(TimeoutException, __VA_ARGS__)
#define DYNAMICCAST_EXCEPTION(...) GENICAM_MAKE_EXCEPTION(DynamicCastException, __VA_ARGS__)
