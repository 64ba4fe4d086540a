#pragma once
// Basic fixed-width types used throughout GCBase and GenApi.
#include <cstddef>
#include <cstdint>

#include <GCBase/GCExport.h>

namespace GenICam {
using ::int16_t;
using ::int32_t;
using ::int64_t;
using ::int8_t;
using ::uint16_t;
using ::uint32_t;
using ::uint64_t;
using ::uint8_t;
}  // namespace GenICam
