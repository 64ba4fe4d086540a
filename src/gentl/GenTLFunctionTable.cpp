#include "gentl/GenTLFunctionTable.h"

#include "gentl/GenTLErrorText.h"

#include <array>
#include <cstdio>
#include <cstring>

namespace TALVIR {
namespace {

struct CFunctionSlot {
  const char* name;
  bool required;
  const char* handleKind;
};

// The functions a consumer can do without: it only reads information through them, or they came after the core.
bool IsOptionalName(const char* name) {
  static constexpr const char* kOptional[] = {
      "GCGetInfo",        "GCGetLastError",   "GCGetPortInfo",     "EventGetDataInfo",    "EventGetInfo",
      "GCGetNumPortURLs", "GCGetPortURLInfo", "GCReadPortStacked", "GCWritePortStacked",  "DSGetBufferChunkData",
      "IFGetParentTL",    "DevGetParentIF",   "DSGetParentDev",    "DSGetNumBufferParts", "DSGetBufferPartInfo",
  };
  for (const char* optional : kOptional) {
    if (std::strcmp(optional, name) == 0) {
      return true;
    }
  }
  return false;
}

bool StartsWith(const char* name, const char* prefix) { return std::strncmp(name, prefix, std::strlen(prefix)) == 0; }

// GenTL names its functions after the module whose handle they take first.
const char* HandleKindOfName(const char* name) {
  if (std::strcmp(name, "GCInitLib") == 0 || std::strcmp(name, "GCCloseLib") == 0 ||
      std::strcmp(name, "GCGetInfo") == 0 || std::strcmp(name, "GCGetLastError") == 0) {
    return "library";
  }
  if (std::strcmp(name, "GCRegisterEvent") == 0 || std::strcmp(name, "GCUnregisterEvent") == 0) {
    return "event source";
  }
  if (StartsWith(name, "GC")) {
    return "port";
  }
  if (StartsWith(name, "Event")) {
    return "event";
  }
  if (StartsWith(name, "TL")) {
    return "system";
  }
  if (StartsWith(name, "IF")) {
    return "interface";
  }
  if (StartsWith(name, "Dev")) {
    return "device";
  }
  return "data stream";
}

const std::array<CFunctionSlot, kGenTLFunctionCount>& Slots() {
  static const std::array<CFunctionSlot, kGenTLFunctionCount> slots = [] {
    std::array<CFunctionSlot, kGenTLFunctionCount> result{};
    size_t index = 0;
#define TALVIR_GENTL_SLOT(name) result[index++] = CFunctionSlot{#name, !IsOptionalName(#name), HandleKindOfName(#name)};
    GENTL_FOR_EACH_FUNCTION_1_5(TALVIR_GENTL_SLOT)
#undef TALVIR_GENTL_SLOT
    return result;
  }();
  return slots;
}

// dlsym gives object pointers; each table entry has its own function-pointer type.
template <typename TEntry>
void Assign(TEntry& entry, void* symbol, const CGenTLCallContext* context) {
  entry.Bind(reinterpret_cast<typename TEntry::Pointer>(symbol), context);
}

}  // namespace

bool IsRequiredGenTLFunction(size_t index) { return index < kGenTLFunctionCount && Slots()[index].required; }

const char* GenTLFunctionName(size_t index) { return index < kGenTLFunctionCount ? Slots()[index].name : nullptr; }

const char* GenTLHandleKind(size_t index) {
  return index < kGenTLFunctionCount ? Slots()[index].handleKind : "library";
}

void ReportFailedGenTLCall(const CGenTLCallContext* context, size_t index, const void* handle, GenTL::GC_ERROR code) {
  const char* const producer = context != nullptr ? context->producer.c_str() : "";
  const char* const function = GenTLFunctionName(index) != nullptr ? GenTLFunctionName(index) : "?";
  const char* const handleKind = GenTLHandleKind(index);
  // The last error belongs to this thread's last call, which was the failed one; asking must not report again.
  const std::string lastError =
      context != nullptr && index != kGenTL_GCGetLastError ? ProducerLastErrorText(context->lastError) : std::string();
  const char* const errorName = GenTLErrorCodeName(code);
  char handleText[32] = "";
  if (handle != nullptr) {
    std::snprintf(handleText, sizeof handleText, " %p", handle);
  }
  std::string line = std::string("GenTL call failed: ") + producer + ": " + function + " on " + handleKind +
                     handleText + " returned " + std::to_string(code) + " (" + errorName + ")";
  if (!lastError.empty()) {
    line += ": " + lastError;
  }
  GenTLCallFailure failure{producer, function, handleKind, handle, code, errorName, lastError.c_str(), line.c_str()};
  CDiagnosticSink::Deliver(failure);
}

bool BindGenTLFunctions(Platform::ModuleHandle module, CGenTLFunctionTable& table, const CGenTLCallContext* context,
                        std::string* missingFunction) {
  size_t index = 0;
  bool complete = true;
  // Each expansion binds one function; once a required one is missing, the rest are skipped.
#define TALVIR_GENTL_BIND(name) \
  if (complete) { \
    void* symbol = Platform::FindSymbol(module, #name); \
    if (symbol == nullptr && Slots()[index].required) { \
      complete = false; \
      if (missingFunction != nullptr) { \
        *missingFunction = #name; \
      } \
    } else { \
      Assign(table.name, symbol, context); \
    } \
    ++index; \
  }
  GENTL_FOR_EACH_FUNCTION_1_5(TALVIR_GENTL_BIND)
#undef TALVIR_GENTL_BIND
  return complete;
}

}  // namespace TALVIR
