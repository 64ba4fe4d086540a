#pragma once
// Port: the device's register space through a connected IPort, or the chunk data of the current buffer (ChunkID).
#include <cstddef>
#include <cstdint>
#include <string>

#include "nodes/Node.h"

namespace GenApi {
namespace Engine {

class CPortNode : public CNode, public virtual IPort {
public:
  CPortNode(CNodeMapImpl& map, std::string name) : CNode(map, std::move(name), intfIPort) {}
  void Read(void* pBuffer, int64_t Address, int64_t Length) override;
  void Write(const void* pBuffer, int64_t Address, int64_t Length) override;

  bool ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) override;
  EAccessMode OwnAccessMode() override;
  // Register access of the engine (lock held).
  void ReadPort(void* buffer, int64_t address, int64_t length);
  void WritePort(const void* buffer, int64_t address, int64_t length);

  void ConnectPort(IPort* port) { m_port = port; }
  bool IsChunkPort() const { return m_hasChunkID || m_pChunkID != nullptr; }
  uint64_t ChunkID();
  void AttachChunk(const uint8_t* data, size_t length);
  void DetachChunk();
  void MoveChunk(const uint8_t* newBase, const uint8_t* oldBase);

private:
  IPort* m_port = nullptr;
  bool m_hasChunkID = false;
  uint64_t m_chunkID = 0;
  CNode* m_pChunkID = nullptr;
  bool m_swapEndianess = false;
  const uint8_t* m_chunkData = nullptr;
  size_t m_chunkLength = 0;
  bool m_chunkAttached = false;
};

}  // namespace Engine
}  // namespace GenApi
