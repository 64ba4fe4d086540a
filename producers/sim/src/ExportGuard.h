#pragma once
// What every exported GenTL function shares: exceptions become GenTL error codes and the calling thread's last
// error, and null output pointers are refused. The exports are split by module (ExportsLibrary, ExportsSystem,
// ExportsInterface, ExportsDevice, ExportsDataStream); the fault variants of the module leave parts out:
//   TALVIR_SIM_WITHOUT_QUEUE: no DSQueueBuffer export;
//   TALVIR_SIM_WITHOUT_INFO:  no GCGetInfo and no GCGetLastError exports.
#include "Errors.h"

#include <GenTL/GenTL.h>

#include <exception>
#include <new>
#include <string>

namespace TalvirSim {

template <typename TBody>
GenTL::GC_ERROR Guarded(TBody&& body) {
  try {
    body();
    return GenTL::GC_ERR_SUCCESS;
  } catch (const CGenTLError& error) {
    SetLastError(error.Code(), error.what());
    return error.Code();
  } catch (const std::bad_alloc&) {
    SetLastError(GenTL::GC_ERR_OUT_OF_MEMORY, "out of memory");
    return GenTL::GC_ERR_OUT_OF_MEMORY;
  } catch (const std::exception& error) {
    SetLastError(GenTL::GC_ERR_ERROR, error.what());
    return GenTL::GC_ERR_ERROR;
  } catch (...) {
    SetLastError(GenTL::GC_ERR_ERROR, "unexpected failure");
    return GenTL::GC_ERR_ERROR;
  }
}

template <typename T>
void RequireOut(T* pointer, const char* what) {
  if (pointer == nullptr) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, std::string("null ") + what);
  }
}

inline std::string RequireId(const char* id, const char* what) {
  if (id == nullptr) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, std::string("null ") + what);
  }
  return id;
}

inline void RequireSize(size_t* size) { RequireOut(size, "size pointer"); }

}  // namespace TalvirSim
