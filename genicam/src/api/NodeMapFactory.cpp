// CNodeMapFactory: holds a description (file contents or bytes) and builds node maps from it.
#include <GenApi/NodeMapFactory.h>

#include <cstring>
#include <fstream>
#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "load/Loader.h"
#include "load/ZipReader.h"
#include "nodes/NodeMap.h"

namespace GenApi {

struct CNodeMapFactory::CData {
  EContentType type = ContentType_Auto;
  std::string bytes;
  std::string source;  // file name, for messages
};

namespace {
std::string ReadFile(const gcstring& fileName) {
  std::ifstream file(fileName.c_str(), std::ios::binary);
  if (!file) throw RUNTIME_EXCEPTION("Cannot open description file '%s'", fileName.c_str());
  file.seekg(0, std::ios::end);
  const std::streamoff size = file.tellg();
  file.seekg(0, std::ios::beg);
  if (size < 0) throw RUNTIME_EXCEPTION("Cannot read description file '%s'", fileName.c_str());
  std::string bytes(static_cast<size_t>(size), '\0');
  if (size > 0 && !file.read(&bytes[0], size)) {
    throw RUNTIME_EXCEPTION("Cannot read description file '%s'", fileName.c_str());
  }
  return bytes;
}

bool LooksZipped(const std::string& bytes) {
  return bytes.size() >= 4 && std::memcmp(bytes.data(), "PK\x03\x04", 4) == 0;
}
}  // namespace

CNodeMapFactory::CNodeMapFactory() = default;

CNodeMapFactory::CNodeMapFactory(EContentType ContentType, const gcstring& FileName)
    : m_pData(std::make_shared<CData>()) {
  m_pData->type = ContentType;
  m_pData->bytes = ReadFile(FileName);
  m_pData->source = FileName;
}

CNodeMapFactory::CNodeMapFactory(EContentType ContentType, const void* pData, size_t DataSize)
    : m_pData(std::make_shared<CData>()) {
  if (pData == nullptr && DataSize > 0) throw INVALID_ARGUMENT_EXCEPTION("Null description data");
  m_pData->type = ContentType;
  if (DataSize > 0) m_pData->bytes.assign(static_cast<const char*>(pData), DataSize);
}

CNodeMapFactory::CNodeMapFactory(const CNodeMapFactory&) = default;
CNodeMapFactory& CNodeMapFactory::operator=(const CNodeMapFactory&) = default;
CNodeMapFactory::~CNodeMapFactory() = default;

bool CNodeMapFactory::IsEmpty() const { return !m_pData || m_pData->bytes.empty(); }

void CNodeMapFactory::Release() { m_pData.reset(); }

namespace {
std::unique_ptr<Engine::CNodeMapImpl> Build(const std::string& bytes, bool zipped, const gcstring& deviceName) {
  if (zipped) {
    const std::string xml = Engine::ExtractFirstFile(bytes.data(), bytes.size());
    return Engine::LoadNodeMap(xml.data(), xml.size(), deviceName);
  }
  return Engine::LoadNodeMap(bytes.data(), bytes.size(), deviceName);
}
}  // namespace

INodeMap* CNodeMapFactory::CreateNodeMap(const gcstring& DeviceName, bool) {
  if (IsEmpty()) throw RUNTIME_EXCEPTION("No description data to build a node map from");
  const bool zipped = m_pData->type == ContentType_ZippedXml ||
                      (m_pData->type == ContentType_Auto && LooksZipped(m_pData->bytes));
  std::unique_ptr<Engine::CNodeMapImpl> map = Build(m_pData->bytes, zipped, DeviceName);
#if defined(__GLIBC__)
  // The parsed document (several times the file's size) was freed between the nodes' allocations; hand those pages
  // back to the system so that a loaded description costs its nodes' memory only.
  malloc_trim(0);
#endif
  return map.release();
}

}  // namespace GenApi
