#pragma once
// Chunk data: connects the chunk records of a GenTL buffer to the chunk Port nodes of a node map (those with a
// ChunkID), so that chunk features read from the buffer. While no buffer is attached, chunk features are not available.
#include <cstddef>
#include <cstdint>

#include <GenApi/INodeMap.h>
#include <GenTL/GenTL.h>

namespace GenApi {

struct AttachStatistics_t {
  int64_t NumChunkPorts = 0;      // chunk Port nodes in the node map
  int64_t NumChunks = 0;          // records offered
  int64_t NumAttachedChunks = 0;  // records that matched a chunk port
};

class GENICAM_API CChunkAdapterGenTL {
public:
  explicit CChunkAdapterGenTL(INodeMap* pNodeMap = nullptr, int64_t MaxChunkCacheSize = -1);
  ~CChunkAdapterGenTL();
  CChunkAdapterGenTL(const CChunkAdapterGenTL&) = delete;
  CChunkAdapterGenTL& operator=(const CChunkAdapterGenTL&) = delete;

  // Finds the node map's chunk ports; detaches from the previous node map first.
  void AttachNodeMap(INodeMap* pNodeMap);
  void DetachNodeMap();

  // True when at least one record's ChunkID matches a chunk port of the node map.
  bool CheckBufferLayout(const uint8_t* pBaseAddress, const GenTL::SINGLE_CHUNK_DATA* pChunks, int64_t NumChunks) const;

  // Attaches the records: a chunk port whose ChunkID matches reads from pBaseAddress + ChunkOffset, ChunkLength bytes
  // (the last record wins when an ID repeats). The buffer must stay valid until DetachBuffer or the next AttachBuffer.
  // With BufferSize > 0, records that reach past it are ignored. Chunk values cached from the previous buffer are
  // dropped and the chunk features' callbacks fire.
  void AttachBuffer(const uint8_t* pBaseAddress, const GenTL::SINGLE_CHUNK_DATA* pChunks, int64_t NumChunks,
                    AttachStatistics_t* pStatistics = nullptr, size_t BufferSize = 0);
  // Same records, moved to a new base address (a buffer copied elsewhere).
  void UpdateBuffer(const uint8_t* pBaseAddress);
  void DetachBuffer();

private:
  struct CImpl;
  CImpl* m_pImpl;
};

}  // namespace GenApi
