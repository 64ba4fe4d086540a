#pragma once
// Texts for GenTL error codes, for the open statuses of a producer, and the producer's own last-error text.
#include <GenTL/GenTL.h>

#include <cstdint>
#include <string>

namespace TALVIR {

// "GC_ERR_IO" for -1010, ...; "GC_ERR_CUSTOM" for producer-specific codes (-10000 and below), "GC_ERR_UNKNOWN" for
// any other value.
const char* GenTLErrorCodeName(int32_t code);

// What an OpenProducerStatus value means, naming the GenTL call that failed.
const char* OpenProducerStatusText(int32_t status);

// The producer's GCGetLastError text for the calling thread's last call (empty when the producer has no
// GCGetLastError or it fails); the code it reports goes to `code` when given. Calls the function directly, so that
// asking is not itself reported as a failure.
std::string ProducerLastErrorText(GenTL::PFN_GCGetLastError getLastError, int32_t* code = nullptr);

}  // namespace TALVIR
