#pragma once
// The GenApi port over one GenTL module handle (system, interface, device, remote device or data stream), and the
// holder of that module's node map, built on first use from the description stored in the module.
#include "gentl/GenTLModule.h"

#include <talvir/IXml.h>

#include <GenApi/GenApi.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

namespace TALVIR {

class CCti;

class CCtiPort final : public GenApi::CPortImpl, public IXml, public IGenTLModule {
public:
  // `producer` is not owned; a null producer or handle makes every register access a silent no-op.
  CCtiPort(CCti* producer, void* handle);
  ~CCtiPort() override;
  CCtiPort(const CCtiPort&) = delete;
  CCtiPort& operator=(const CCtiPort&) = delete;

  // GenApi port.
  GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
  // Throw GenICam::GenericException "Read address 0x.. failure" / "Write address 0x.. failure" when the producer
  // refuses the access.
  void Read(void* buffer, int64_t address, int64_t length) override;
  void Write(const void* buffer, int64_t address, int64_t length) override;

  // IXml; each operation first loads the description (once, never retried).
  std::string GetXmlFileName() override;
  std::string GetXmlFileExtension() override;
  std::string GetXmlData() override;
  GenApi::INodeMap* GetNodeMap() override;

  // The module record as the producer keeps it.
  void* Handle() const override { return m_hPort; }
  IXml* Xml() override { return this; }

  CCti* Producer() const { return m_pCti; }

private:
  void LoadOnce();
  void LoadDescription();

  CCti* m_pCti;
  void* m_hPort;
  bool m_xmlLoaded = false;
  std::string m_fileName;
  std::string m_fileExtension;
  std::string m_xmlData;
  GenApi::CNodeMapRef m_nodeMap{"Device"};
  std::mutex m_loadMutex;
};

// The producer's module records: ports with node maps.
std::unique_ptr<IGenTLModule> MakeCtiPort(CCti& producer, void* handle);

}  // namespace TALVIR
