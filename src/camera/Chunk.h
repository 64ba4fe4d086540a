#pragma once
// One chunk of an image's chunk data: an ID and a stretch of the image's buffer.
#include <talvir/IChunk.h>

#include <cstdint>

namespace TALVIR {

class CChunk final : public IChunk {
public:
  CChunk(uint64_t id, const uint8_t* data, uint64_t size) : m_id(id), m_pData(data), m_size(size) {}
  ~CChunk() override = default;
  CChunk(const CChunk&) = delete;
  CChunk& operator=(const CChunk&) = delete;

  uint64_t GetChunkId() const override { return m_id; }
  const uint8_t* GetChunkData() const override { return m_pData; }
  uint64_t GetChunkSize() const override { return m_size; }

private:
  uint64_t m_id;
  const uint8_t* m_pData;  // inside the image buffer, which the image keeps alive
  uint64_t m_size;
};

}  // namespace TALVIR
