#pragma once
// The GenTL entry points of one producer, bound by name at load time. Every call through the table that fails is
// handed to the application's diagnostic callback, when one is registered (CDiagnosticSink).
#include "gentl/DiagnosticSink.h"
#include "platform/DynamicModule.h"

#include <GenTL/GenTL.h>

#include <cstddef>
#include <string>

namespace TALVIR {

// Positions of the functions in the table, in binding order.
enum EGenTLFunction : size_t {
#define TALVIR_GENTL_INDEX(name) kGenTL_##name,
  GENTL_FOR_EACH_FUNCTION_1_5(TALVIR_GENTL_INDEX)
#undef TALVIR_GENTL_INDEX
      kGenTLFunctionCount
};

// What a failure report of one producer's calls names; owned by the producer, shared by its table's entries.
struct CGenTLCallContext {
  std::string producer;
  GenTL::PFN_GCGetLastError lastError = nullptr;
};

// Reports one failed call to the diagnostic sink, with the producer's last-error text.
void ReportFailedGenTLCall(const CGenTLCallContext* context, size_t index, const void* handle, GenTL::GC_ERROR code);

template <typename TArgument>
const void* HandleArgument(TArgument) {
  return nullptr;
}
inline const void* HandleArgument(void* handle) { return handle; }

template <size_t Index, typename TFunction>
class CGenTLEntry;

// One table entry: the producer's function, called like it. A null entry compares equal to nullptr.
template <size_t Index, typename... TArguments>
class CGenTLEntry<Index, GenTL::GC_ERROR(GC_CALLTYPE*)(TArguments...)> {
public:
  using Pointer = GenTL::GC_ERROR(GC_CALLTYPE*)(TArguments...);

  GenTL::GC_ERROR operator()(TArguments... arguments) const {
    const GenTL::GC_ERROR result = m_function(arguments...);
    // Off by default: a failed call then costs one relaxed atomic load, a successful one nothing.
    if (result != GenTL::GC_ERR_SUCCESS && CDiagnosticSink::Enabled()) {
      ReportFailedGenTLCall(m_context, Index, FirstHandle(arguments...), result);
    }
    return result;
  }

  // The producer's function itself; calls through it are not reported.
  Pointer Raw() const { return m_function; }
  void Bind(Pointer function, const CGenTLCallContext* context) {
    m_function = function;
    m_context = context;
  }
  explicit operator bool() const { return m_function != nullptr; }
  friend bool operator==(const CGenTLEntry& entry, std::nullptr_t) { return entry.m_function == nullptr; }
  friend bool operator!=(const CGenTLEntry& entry, std::nullptr_t) { return entry.m_function != nullptr; }
  friend bool operator==(std::nullptr_t, const CGenTLEntry& entry) { return entry.m_function == nullptr; }
  friend bool operator!=(std::nullptr_t, const CGenTLEntry& entry) { return entry.m_function != nullptr; }

private:
  static const void* FirstHandle() { return nullptr; }
  template <typename TFirst, typename... TRest>
  static const void* FirstHandle(TFirst first, TRest...) {
    return HandleArgument(first);
  }

  Pointer m_function = nullptr;
  const CGenTLCallContext* m_context = nullptr;
};

// One entry per GenTL 1.5 function, named like the function, in binding order; null where the producer lacks
// an optional one.
struct CGenTLFunctionTable {
#define TALVIR_GENTL_TABLE_ENTRY(name) CGenTLEntry<kGenTL_##name, GenTL::PFN_##name> name;
  GENTL_FOR_EACH_FUNCTION_1_5(TALVIR_GENTL_TABLE_ENTRY)
#undef TALVIR_GENTL_TABLE_ENTRY
};

static_assert(kGenTLFunctionCount == 57, "the GenTL 1.5 interface has 57 functions");

// Whether the library refuses a producer that lacks the function at `index` (binding order). The optional ones are
// the information and error queries, the port information, the event information queries and every function added
// after the core interface (URL lists, stacked port access, chunk data, parent handles, multi-part buffers).
bool IsRequiredGenTLFunction(size_t index);

// The name of the function at `index` (binding order); null past the end.
const char* GenTLFunctionName(size_t index);

// The kind of handle the function at `index` takes first: "library" (none), "system", "interface", "device",
// "data stream", "port", "event source" or "event".
const char* GenTLHandleKind(size_t index);

// Binds every function of `module` in table order; failures of calls through the table are reported with
// `context` (may be null: no producer name). Stops at the first missing required function and returns false, with
// its name in `missingFunction` when given; the functions after it stay null.
bool BindGenTLFunctions(Platform::ModuleHandle module, CGenTLFunctionTable& table,
                        const CGenTLCallContext* context = nullptr, std::string* missingFunction = nullptr);

}  // namespace TALVIR
