#pragma once
// The feature description and node map of one module (producer system, interface, device, remote device, stream).
#include <talvir/Export.h>

#include <string>

namespace GenApi {
struct INodeMap;
}

namespace TALVIR {

// Owned by the library (by the camera or producer the module belongs to); never deleted by the application.
// The description is loaded on the first call of any operation; a description that cannot be loaded leaves every
// operation empty and is not tried again. The order of the operations is part of the binary interface.
class TALVIR_API IXml {
public:
  // The description file's name without its extension, as the module names it.
  virtual std::string GetXmlFileName() = 0;
  // The extension in upper case: "XML" or "ZIP".
  virtual std::string GetXmlFileExtension() = 0;
  // The raw description as read from the module: XML text or ZIP bytes (may hold zero bytes).
  virtual std::string GetXmlData() = 0;
  // The module's node map, connected to the module; null when no description could be loaded.
  virtual GenApi::INodeMap* GetNodeMap() = 0;

protected:
  ~IXml() = default;
};

}  // namespace TALVIR
