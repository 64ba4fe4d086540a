#pragma once
// CRegisterCore: what every register node has (address parts, length, port, access mode, caching mode, byte cache),
// and the byte codecs of integer and float registers.
#include <cstdint>
#include <vector>

#include "nodes/Node.h"

namespace GenApi {
namespace Engine {

class CPortNode;

// Unsigned value of length bytes in the given byte order, and back.
uint64_t DecodeUnsigned(const uint8_t* bytes, int64_t length, bool littleEndian);
void EncodeUnsigned(uint64_t raw, uint8_t* bytes, int64_t length, bool littleEndian);
// The low width bits set.
uint64_t MaskOf(unsigned width);

// Address, length, port, access mode and the byte cache of a register.
class CRegisterCore {
public:
  bool Configure(CNode& owner, CLoadContext& context, EElement id, const CXmlElement& child);
  void Finish(CNode& owner, CLoadContext& context);

  int64_t Address(bool ignoreCache);
  int64_t Length();
  bool HasFixedAddress() const { return m_pAddresses.empty() && m_indexes.empty() && m_pLength == nullptr; }
  int64_t FixedAddress() const { return m_address; }
  int64_t FixedLength() const { return m_length; }
  CPortNode* Port() const { return m_port; }
  EAccessMode AccessMode();
  ECachingMode Caching() const { return m_caching; }
  void SetDefaultCaching(ECachingMode mode) {
    if (!m_cachingSet) m_caching = mode;
  }

  // Reads length bytes, from the cache when it is valid and allowed.
  void Read(CNode& owner, uint8_t* buffer, int64_t length, bool ignoreCache);
  void Write(CNode& owner, const uint8_t* buffer, int64_t length);
  void Drop() { m_cacheValid = false; }
  // IRegister entry points of the owner: lock, check access, then read or write bytes.
  void SetBytes(CNode& owner, const uint8_t* buffer, int64_t length);
  void GetBytes(CNode& owner, uint8_t* buffer, int64_t length, bool ignoreCache);
  int64_t PublicLength(CNode& owner);
  int64_t PublicAddress(CNode& owner);
  bool Valid() const { return m_cacheValid; }

  EAccessMode m_accessMode = RO;
  bool m_littleEndian = true;

private:
  struct CIndexPart {
    CNode* index;
    CNode* pOffset;
    int64_t offset;
    bool hasOffset;
  };
  int64_t m_address = 0;
  std::vector<CNode*> m_pAddresses;  // pAddress and embedded IntSwissKnife
  std::vector<CIndexPart> m_indexes;
  int64_t m_length = 4;
  bool m_hasLength = false;
  CNode* m_pLength = nullptr;
  CPortNode* m_port = nullptr;
  ECachingMode m_caching = WriteThrough;
  bool m_cachingSet = false;
  std::vector<uint8_t> m_cache;
  bool m_cacheValid = false;
};

}  // namespace Engine
}  // namespace GenApi
