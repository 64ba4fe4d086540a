#pragma once
// One chunk of the chunk data that a camera appended to an image.
#include <talvir/Export.h>

#include <cstdint>

namespace TALVIR {

// Points into its image's buffer: valid until the image is released. Owned by the image, never deleted by the
// application. The order of the operations is part of the binary interface.
class TALVIR_API IChunk {
public:
  virtual uint64_t GetChunkId() const = 0;          // the chunk ID the camera's description names (ChunkID of a port)
  virtual const uint8_t* GetChunkData() const = 0;  // the chunk's bytes inside the image buffer
  virtual uint64_t GetChunkSize() const = 0;        // its length in bytes

protected:
  virtual ~IChunk() = default;
};

}  // namespace TALVIR
