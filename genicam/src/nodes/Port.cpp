// Port nodes: the device's register space through a connected IPort, or the chunk data of the current buffer.
#include "nodes/Port.h"

#include <cinttypes>
#include <cstring>

#include "base/NumberParsing.h"
#include "nodes/LoadContext.h"
#include "nodes/NodeMap.h"

namespace GenApi {
namespace Engine {

bool CPortNode::ConfigureElement(CLoadContext& context, EElement id, const CXmlElement& child) {
  switch (id) {
  case EElement::ChunkID: {
    std::string_view text = CLoadContext::Text(child);
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) text.remove_prefix(2);
    int64_t value = 0;
    if (text.empty() || text.size() > 16 || !ParseInteger(std::string("0x") + std::string(text), value)) {
      context.Fail(this, child, "bad chunk ID");
    }
    m_chunkID = static_cast<uint64_t>(value);
    m_hasChunkID = true;
    return true;
  }
  case EElement::pChunkID: m_pChunkID = context.Resolve(*this, child); return true;
  case EElement::SwapEndianess: m_swapEndianess = context.YesNo(*this, child); return true;
  case EElement::CacheChunkData: context.YesNo(*this, child); return true;
  default: return CNode::ConfigureElement(context, id, child);
  }
}

EAccessMode CPortNode::OwnAccessMode() {
  if (IsChunkPort()) return m_chunkAttached ? RO : NA;
  return m_port ? m_port->GetAccessMode() : NA;
}

uint64_t CPortNode::ChunkID() {
  if (m_hasChunkID) return m_chunkID;
  return m_pChunkID ? static_cast<uint64_t>(m_pChunkID->GetInt(false, false)) : 0;
}

void CPortNode::ReadPort(void* buffer, int64_t address, int64_t length) {
  if (length < 0) throw INVALID_ARGUMENT_EXCEPTION("Port '%s': negative length", m_name.c_str());
  if (IsChunkPort()) {
    if (!m_chunkAttached) throw ACCESS_EXCEPTION("Port '%s': no chunk data attached", m_name.c_str());
    if (address < 0 || static_cast<uint64_t>(address) > m_chunkLength ||
        static_cast<uint64_t>(length) > m_chunkLength - static_cast<uint64_t>(address)) {
      throw ACCESS_EXCEPTION("Port '%s': read of %" PRId64 " bytes at %" PRId64 " lies outside the chunk of %zu bytes",
                             m_name.c_str(), length, address, m_chunkLength);
    }
    if (length > 0) std::memcpy(buffer, m_chunkData + address, static_cast<size_t>(length));
    return;
  }
  if (m_port == nullptr) throw ACCESS_EXCEPTION("Port '%s' is not connected", m_name.c_str());
  m_port->Read(buffer, address, length);
}

void CPortNode::WritePort(const void* buffer, int64_t address, int64_t length) {
  if (length < 0) throw INVALID_ARGUMENT_EXCEPTION("Port '%s': negative length", m_name.c_str());
  if (IsChunkPort()) throw ACCESS_EXCEPTION("Port '%s': chunk data are read-only", m_name.c_str());
  if (m_port == nullptr) throw ACCESS_EXCEPTION("Port '%s' is not connected", m_name.c_str());
  m_port->Write(buffer, address, length);
}

void CPortNode::Read(void* pBuffer, int64_t Address, int64_t Length) {
  CEntryGuard guard(m_map);
  ReadPort(pBuffer, Address, Length);
}

void CPortNode::Write(const void* pBuffer, int64_t Address, int64_t Length) {
  CEntryGuard guard(m_map);
  WritePort(pBuffer, Address, Length);
}

void CPortNode::AttachChunk(const uint8_t* data, size_t length) {
  m_chunkData = data;
  m_chunkLength = length;
  m_chunkAttached = true;
  m_map.PropagateChange(this, true);
}

void CPortNode::DetachChunk() {
  if (!m_chunkAttached) return;
  m_chunkAttached = false;
  m_chunkData = nullptr;
  m_chunkLength = 0;
  m_map.PropagateChange(this, true);
}

void CPortNode::MoveChunk(const uint8_t* newBase, const uint8_t* oldBase) {
  if (!m_chunkAttached) return;
  m_chunkData = newBase + (m_chunkData - oldBase);
  m_map.PropagateChange(this, true);
}

}  // namespace Engine
}  // namespace GenApi
