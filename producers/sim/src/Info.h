#pragma once
// Writing the result of an info query (…GetInfo, DSGetBufferInfo, GCGetPortInfo, …) with GenTL's size negotiation:
// a null buffer asks for the size, a buffer that is too small gets GC_ERR_BUFFER_TOO_SMALL and the needed size.
#include "Errors.h"

#include <cstring>
#include <string>
#include <vector>

namespace TalvirSim {

struct SInfoOut {
  GenTL::INFO_DATATYPE* type;
  void* buffer;
  size_t* size;
};

inline void PutBytes(const SInfoOut& out, GenTL::INFO_DATATYPE type, const void* data, size_t length) {
  if (out.size == nullptr) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, "the size pointer is null");
  }
  if (out.type != nullptr) {
    *out.type = type;
  }
  if (out.buffer == nullptr) {
    *out.size = length;
    return;
  }
  if (*out.size < length) {
    const size_t given = *out.size;
    *out.size = length;
    Fail(GenTL::GC_ERR_BUFFER_TOO_SMALL,
         "buffer of " + std::to_string(given) + " bytes, " + std::to_string(length) + " needed");
  }
  if (length > 0) {
    std::memcpy(out.buffer, data, length);
  }
  *out.size = length;
}

inline void PutString(const SInfoOut& out, const std::string& text) {
  PutBytes(out, GenTL::INFO_DATATYPE_STRING, text.c_str(), text.size() + 1);
}

template <typename T>
void PutValue(const SInfoOut& out, GenTL::INFO_DATATYPE type, T value) {
  PutBytes(out, type, &value, sizeof value);
}

inline void PutBool(const SInfoOut& out, bool value) {
  PutValue<GenTL::bool8_t>(out, GenTL::INFO_DATATYPE_BOOL8, value ? 1 : 0);
}
inline void PutSize(const SInfoOut& out, size_t value) { PutValue(out, GenTL::INFO_DATATYPE_SIZET, value); }
inline void PutU64(const SInfoOut& out, uint64_t value) { PutValue(out, GenTL::INFO_DATATYPE_UINT64, value); }
inline void PutI32(const SInfoOut& out, int32_t value) { PutValue(out, GenTL::INFO_DATATYPE_INT32, value); }
inline void PutU32(const SInfoOut& out, uint32_t value) { PutValue(out, GenTL::INFO_DATATYPE_UINT32, value); }
inline void PutPtr(const SInfoOut& out, void* value) { PutValue(out, GenTL::INFO_DATATYPE_PTR, value); }

// A string into a caller buffer with the same negotiation (IDs, URLs), without a type.
inline void PutIdString(char* buffer, size_t* size, const std::string& text) {
  PutBytes(SInfoOut{nullptr, buffer, size}, GenTL::INFO_DATATYPE_STRING, text.c_str(), text.size() + 1);
}

}  // namespace TalvirSim
