#pragma once
// What the conversion-library test double records and how a test steers it. The double exports these two
// functions beside the real library's one export.
#include <cstdint>

struct SImvexDoubleCall {
  uint32_t calls;
  uint32_t sourceFormat;
  const void* source;
  uint32_t width;
  uint32_t height;
  uint32_t destinationFormat;
  void* destination;
  uint8_t flag;
};

// Copies the last call's arguments (and the number of calls so far) into *call.
using ImvexDoubleLastCallFunction = void (*)(SImvexDoubleCall* call);
// Sets the value the next calls return, and forgets earlier calls.
using ImvexDoubleResetFunction = void (*)(uint8_t result);

// The bytes the double writes: byte i of the destination becomes ImvexDoubleByte(i).
inline uint8_t ImvexDoubleByte(uint64_t i) { return static_cast<uint8_t>(i * 7 + 1); }
