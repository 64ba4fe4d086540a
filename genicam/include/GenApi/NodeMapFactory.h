#pragma once
// Builds node maps from a description: plain XML or a ZIP archive holding it (the archive's first file is used).
#include <cstddef>
#include <memory>

#include <GenApi/INodeMap.h>

namespace GenApi {

enum EContentType {
  ContentType_Auto,      // ZIP when the data starts with the ZIP signature, XML otherwise
  ContentType_Xml,       // XML text
  ContentType_ZippedXml  // a ZIP archive (STORE or DEFLATE) whose first file is the XML text
};

class GENICAM_API CNodeMapFactory {
public:
  CNodeMapFactory();
  // Reads the file now; a file that cannot be read raises a RuntimeException naming it.
  CNodeMapFactory(EContentType ContentType, const gcstring& FileName);
  // Copies the data.
  CNodeMapFactory(EContentType ContentType, const void* pData, size_t DataSize);
  CNodeMapFactory(const CNodeMapFactory&);
  CNodeMapFactory& operator=(const CNodeMapFactory&);
  ~CNodeMapFactory();

  bool IsEmpty() const;
  // Parses the description and builds a new node map; the caller owns it (CNodeMapRef takes it over, or
  // dynamic_cast<IDestroy*>(map)->Destroy()). Errors in the description raise a GenICam exception naming the file
  // position or the node.
  INodeMap* CreateNodeMap(const gcstring& DeviceName = "Device", bool DoRelease = true);
  // Frees the description data.
  void Release();

private:
  struct CData;
  std::shared_ptr<CData> m_pData;
};

}  // namespace GenApi
