#include "gentl/GenTLFunctionTable.h"

#include <array>
#include <cstring>

namespace TALVIR {
namespace {

struct CFunctionSlot {
  const char* name;
  bool required;
};

// The functions a consumer can do without: it only reads information through them, or they came after the core.
bool IsOptionalName(const char* name) {
  static constexpr const char* kOptional[] = {
      "GCGetInfo",         "GCGetLastError",     "GCGetPortInfo",     "EventGetDataInfo",    "EventGetInfo",
      "GCGetNumPortURLs",  "GCGetPortURLInfo",   "GCReadPortStacked", "GCWritePortStacked",  "DSGetBufferChunkData",
      "IFGetParentTL",     "DevGetParentIF",     "DSGetParentDev",    "DSGetNumBufferParts", "DSGetBufferPartInfo",
  };
  for (const char* optional : kOptional) {
    if (std::strcmp(optional, name) == 0) {
      return true;
    }
  }
  return false;
}

const std::array<CFunctionSlot, kGenTLFunctionCount>& Slots() {
  static const std::array<CFunctionSlot, kGenTLFunctionCount> slots = [] {
    std::array<CFunctionSlot, kGenTLFunctionCount> result{};
    size_t index = 0;
#define TALVIR_GENTL_SLOT(name) result[index++] = CFunctionSlot{#name, !IsOptionalName(#name)};
    GENTL_FOR_EACH_FUNCTION_1_5(TALVIR_GENTL_SLOT)
#undef TALVIR_GENTL_SLOT
    return result;
  }();
  return slots;
}

// dlsym gives object pointers; each table entry has its own function-pointer type.
template <typename TFunction> void Assign(TFunction& slot, void* symbol) { slot = reinterpret_cast<TFunction>(symbol); }

} // namespace

bool IsRequiredGenTLFunction(size_t index) { return index < kGenTLFunctionCount && Slots()[index].required; }

const char* GenTLFunctionName(size_t index) { return index < kGenTLFunctionCount ? Slots()[index].name : nullptr; }

bool BindGenTLFunctions(Platform::ModuleHandle module, CGenTLFunctionTable& table) {
  size_t index = 0;
  bool complete = true;
  // Each expansion binds one function; once a required one is missing, the rest are skipped.
#define TALVIR_GENTL_BIND(name)                                                                                       \
  if (complete) {                                                                                                     \
    void* symbol = Platform::FindSymbol(module, #name);                                                               \
    if (symbol == nullptr && Slots()[index].required) {                                                               \
      complete = false;                                                                                               \
    } else {                                                                                                          \
      Assign(table.name, symbol);                                                                                     \
    }                                                                                                                 \
    ++index;                                                                                                          \
  }
  GENTL_FOR_EACH_FUNCTION_1_5(TALVIR_GENTL_BIND)
#undef TALVIR_GENTL_BIND
  return complete;
}

} // namespace TALVIR
