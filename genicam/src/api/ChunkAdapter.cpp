// CChunkAdapterGenTL: attaches GenTL chunk records to the chunk ports of a node map.
#include <GenApi/ChunkAdapter.h>

#include <vector>

#include "nodes/NodeMap.h"
#include "nodes/Port.h"

namespace GenApi {

// The adapter forgets its node map when the map is destroyed first, so that a late DetachBuffer does no harm.
struct CChunkAdapterGenTL::CImpl final : Engine::IMapObserver {
  void NodeMapDestroyed() override {
    map = nullptr;
    base = nullptr;
  }
  Engine::CNodeMapImpl* map = nullptr;
  const uint8_t* base = nullptr;
};

CChunkAdapterGenTL::CChunkAdapterGenTL(INodeMap* pNodeMap, int64_t) : m_pImpl(new CImpl) {
  try {
    if (pNodeMap != nullptr) AttachNodeMap(pNodeMap);
  } catch (...) {
    delete m_pImpl;
    throw;
  }
}

CChunkAdapterGenTL::~CChunkAdapterGenTL() {
  try {
    DetachNodeMap();
  } catch (...) {
    // Detaching reads no registers; nothing to report from a destructor.
  }
  delete m_pImpl;
}

void CChunkAdapterGenTL::AttachNodeMap(INodeMap* pNodeMap) {
  DetachNodeMap();
  if (pNodeMap == nullptr) return;
  auto* map = dynamic_cast<Engine::CNodeMapImpl*>(pNodeMap);
  if (map == nullptr) throw INVALID_ARGUMENT_EXCEPTION("The chunk adapter needs a node map of this library");
  m_pImpl->map = map;
  map->AddObserver(m_pImpl);
}

void CChunkAdapterGenTL::DetachNodeMap() {
  if (m_pImpl->map == nullptr) return;
  DetachBuffer();
  m_pImpl->map->RemoveObserver(m_pImpl);
  m_pImpl->map = nullptr;
}

bool CChunkAdapterGenTL::CheckBufferLayout(const uint8_t*, const GenTL::SINGLE_CHUNK_DATA* pChunks,
                                           int64_t NumChunks) const {
  if (m_pImpl->map == nullptr || pChunks == nullptr) return false;
  Engine::CEntryGuard guard(*m_pImpl->map);
  for (Engine::CPortNode* port : m_pImpl->map->ChunkPorts()) {
    const uint64_t id = port->ChunkID();
    for (int64_t i = 0; i < NumChunks; ++i) {
      if (pChunks[i].ChunkID == id) return true;
    }
  }
  return false;
}

void CChunkAdapterGenTL::AttachBuffer(const uint8_t* pBaseAddress, const GenTL::SINGLE_CHUNK_DATA* pChunks,
                                      int64_t NumChunks, AttachStatistics_t* pStatistics, size_t BufferSize) {
  if (m_pImpl->map == nullptr) throw LOGICAL_ERROR_EXCEPTION("No node map attached to the chunk adapter");
  if (pBaseAddress == nullptr || (pChunks == nullptr && NumChunks > 0) || NumChunks < 0) {
    throw INVALID_ARGUMENT_EXCEPTION("Invalid chunk buffer");
  }
  Engine::CEntryGuard guard(*m_pImpl->map);
  AttachStatistics_t statistics;
  statistics.NumChunkPorts = static_cast<int64_t>(m_pImpl->map->ChunkPorts().size());
  statistics.NumChunks = NumChunks;
  m_pImpl->base = pBaseAddress;
  for (Engine::CPortNode* port : m_pImpl->map->ChunkPorts()) {
    const uint64_t id = port->ChunkID();
    const GenTL::SINGLE_CHUNK_DATA* match = nullptr;
    for (int64_t i = 0; i < NumChunks; ++i) {
      const GenTL::SINGLE_CHUNK_DATA& record = pChunks[i];
      if (record.ChunkID != id || record.ChunkOffset < 0) continue;
      if (BufferSize > 0 && (static_cast<size_t>(record.ChunkOffset) > BufferSize ||
                             record.ChunkLength > BufferSize - static_cast<size_t>(record.ChunkOffset))) {
        continue;
      }
      match = &record;
    }
    if (match != nullptr) {
      port->AttachChunk(pBaseAddress + match->ChunkOffset, match->ChunkLength);
      ++statistics.NumAttachedChunks;
    } else {
      port->DetachChunk();
    }
  }
  if (pStatistics != nullptr) *pStatistics = statistics;
}

void CChunkAdapterGenTL::UpdateBuffer(const uint8_t* pBaseAddress) {
  if (m_pImpl->map == nullptr || m_pImpl->base == nullptr) return;
  Engine::CEntryGuard guard(*m_pImpl->map);
  for (Engine::CPortNode* port : m_pImpl->map->ChunkPorts()) port->MoveChunk(pBaseAddress, m_pImpl->base);
  m_pImpl->base = pBaseAddress;
}

void CChunkAdapterGenTL::DetachBuffer() {
  if (m_pImpl->map == nullptr) return;
  Engine::CEntryGuard guard(*m_pImpl->map);
  for (Engine::CPortNode* port : m_pImpl->map->ChunkPorts()) port->DetachChunk();
  m_pImpl->base = nullptr;
}

}  // namespace GenApi
