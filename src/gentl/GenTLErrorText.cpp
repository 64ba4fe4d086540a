#include "gentl/GenTLErrorText.h"

#include "gentl/Cti.h"

#include <cstring>
#include <vector>

namespace TALVIR {
namespace {

// Producers' error texts are a sentence or two; a size beyond this is not a text.
constexpr size_t kMaxLastErrorSize = 64 * 1024;
constexpr size_t kFirstLastErrorSize = 1024;

}  // namespace

const char* GenTLErrorCodeName(int32_t code) {
  switch (code) {
  case GenTL::GC_ERR_SUCCESS: return "GC_ERR_SUCCESS";
  case GenTL::GC_ERR_ERROR: return "GC_ERR_ERROR";
  case GenTL::GC_ERR_NOT_INITIALIZED: return "GC_ERR_NOT_INITIALIZED";
  case GenTL::GC_ERR_NOT_IMPLEMENTED: return "GC_ERR_NOT_IMPLEMENTED";
  case GenTL::GC_ERR_RESOURCE_IN_USE: return "GC_ERR_RESOURCE_IN_USE";
  case GenTL::GC_ERR_ACCESS_DENIED: return "GC_ERR_ACCESS_DENIED";
  case GenTL::GC_ERR_INVALID_HANDLE: return "GC_ERR_INVALID_HANDLE";
  case GenTL::GC_ERR_INVALID_ID: return "GC_ERR_INVALID_ID";
  case GenTL::GC_ERR_NO_DATA: return "GC_ERR_NO_DATA";
  case GenTL::GC_ERR_INVALID_PARAMETER: return "GC_ERR_INVALID_PARAMETER";
  case GenTL::GC_ERR_IO: return "GC_ERR_IO";
  case GenTL::GC_ERR_TIMEOUT: return "GC_ERR_TIMEOUT";
  case GenTL::GC_ERR_ABORT: return "GC_ERR_ABORT";
  case GenTL::GC_ERR_INVALID_BUFFER: return "GC_ERR_INVALID_BUFFER";
  case GenTL::GC_ERR_NOT_AVAILABLE: return "GC_ERR_NOT_AVAILABLE";
  case GenTL::GC_ERR_INVALID_ADDRESS: return "GC_ERR_INVALID_ADDRESS";
  case GenTL::GC_ERR_BUFFER_TOO_SMALL: return "GC_ERR_BUFFER_TOO_SMALL";
  case GenTL::GC_ERR_INVALID_INDEX: return "GC_ERR_INVALID_INDEX";
  case GenTL::GC_ERR_PARSING_CHUNK_DATA: return "GC_ERR_PARSING_CHUNK_DATA";
  case GenTL::GC_ERR_INVALID_VALUE: return "GC_ERR_INVALID_VALUE";
  case GenTL::GC_ERR_RESOURCE_EXHAUSTED: return "GC_ERR_RESOURCE_EXHAUSTED";
  case GenTL::GC_ERR_OUT_OF_MEMORY: return "GC_ERR_OUT_OF_MEMORY";
  case GenTL::GC_ERR_BUSY: return "GC_ERR_BUSY";
  case GenTL::GC_ERR_AMBIGUOUS: return "GC_ERR_AMBIGUOUS";
  default: break;
  }
  return code <= GenTL::GC_ERR_CUSTOM_ID ? "GC_ERR_CUSTOM" : "GC_ERR_UNKNOWN";
}

const char* OpenProducerStatusText(int32_t status) {
  switch (status) {
  case OpenProducerStatus::Ok: return "opened";
  case OpenProducerStatus::InitLibFailed: return "GCInitLib failed: the producer could not initialise itself";
  case OpenProducerStatus::TLOpenFailed: return "TLOpen failed: the producer's system module could not be opened";
  case OpenProducerStatus::UpdateInterfaceListFailed:
    return "TLUpdateInterfaceList failed: the producer could not list its interfaces";
  case OpenProducerStatus::GetNumInterfacesFailed: return "TLGetNumInterfaces failed: the interface count is unknown";
  case OpenProducerStatus::NoInterface:
    return "the producer has no interface (for GigE Vision: no usable network adapter)";
  case OpenProducerStatus::GetInterfaceIDFailed:
    return "TLGetInterfaceID failed (an interface ID longer than the one before it is refused)";
  case OpenProducerStatus::OpenInterfaceFailed: return "TLOpenInterface failed: an interface could not be opened";
  default: break;
  }
  return "unknown open status";
}

std::string ProducerLastErrorText(GenTL::PFN_GCGetLastError getLastError, int32_t* code) {
  if (code != nullptr) {
    *code = GenTL::GC_ERR_SUCCESS;
  }
  if (getLastError == nullptr) {
    return std::string();
  }
  GenTL::GC_ERROR lastCode = GenTL::GC_ERR_SUCCESS;
  std::vector<char> text(kFirstLastErrorSize, '\0');
  size_t size = text.size();
  GenTL::GC_ERROR status = getLastError(&lastCode, text.data(), &size);
  if (status == GenTL::GC_ERR_BUFFER_TOO_SMALL && size > text.size() && size <= kMaxLastErrorSize) {
    text.assign(size, '\0');
    status = getLastError(&lastCode, text.data(), &size);
  }
  if (status != GenTL::GC_ERR_SUCCESS) {
    return std::string();
  }
  if (code != nullptr) {
    *code = lastCode;
  }
  return std::string(text.data(), strnlen(text.data(), text.size()));
}

}  // namespace TALVIR
