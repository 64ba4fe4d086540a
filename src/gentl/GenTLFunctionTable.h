#pragma once
// The GenTL entry points of one producer, bound by name at load time.
#include "platform/DynamicModule.h"

#include <GenTL/GenTL.h>

#include <cstddef>

namespace TALVIR {

// One pointer per GenTL 1.5 function, named like the function, in binding order; null where the producer lacks
// an optional one.
struct CGenTLFunctionTable {
#define TALVIR_GENTL_TABLE_ENTRY(name) GenTL::PFN_##name name = nullptr;
  GENTL_FOR_EACH_FUNCTION_1_5(TALVIR_GENTL_TABLE_ENTRY)
#undef TALVIR_GENTL_TABLE_ENTRY
};

// Number of functions in the table.
constexpr size_t kGenTLFunctionCount = 57;

// Whether the library refuses a producer that lacks the function at `index` (binding order). The optional ones are
// the information and error queries, the port information, the event information queries and every function added
// after the core interface (URL lists, stacked port access, chunk data, parent handles, multi-part buffers).
bool IsRequiredGenTLFunction(size_t index);

// The name of the function at `index` (binding order); null past the end.
const char* GenTLFunctionName(size_t index);

// Binds every function of `module` in table order. Stops at the first missing required function and returns
// false; the functions after it stay null.
bool BindGenTLFunctions(Platform::ModuleHandle module, CGenTLFunctionTable& table);

} // namespace TALVIR
