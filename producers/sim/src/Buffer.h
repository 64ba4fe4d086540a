#pragma once
// One buffer announced to a data stream, with what its last fill left.
#include "Camera.h"

#include <GenTL/GenTL.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace TalvirSim {

struct CBuffer {
  enum class EState { Unqueued, Input, Filling, Output };

  void* base = nullptr;
  size_t size = 0;
  void* userPointer = nullptr;
  std::unique_ptr<uint8_t[]> owned;  // producer-allocated memory
  size_t index = 0;                  // announce order
  EState state = EState::Unqueued;
  // What the last fill left.
  bool newData = false;
  bool incomplete = false;
  bool dataLarger = false;
  SFrameJob job;
  size_t sizeFilled = 0;
  uint64_t packets[3] = {0, 0, 0};  // GigE: packets received, resent, missing
  std::vector<GenTL::SINGLE_CHUNK_DATA> chunks;
};

}  // namespace TalvirSim
