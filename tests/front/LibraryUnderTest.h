#pragma once
// The real library, loaded from a temporary folder that a test fills with producer files and a configuration, so
// that "beside the library" means that folder. The library file is copied, not linked: the loader recognises an
// already loaded file by its identity, and a library that cannot be unloaded (it holds unique symbols) would
// otherwise be handed back with its first folder. The exported functions are reached by their mangled names, as
// an application's loader would.
#include "support/TempDirectory.h"
#include "support/TestSystem.h"

#include "platform/DynamicModule.h"

#include <talvir/Talvir.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace TALVIR::Testing {

class CLibraryUnderTest {
public:
  CLibraryUnderTest() {
    std::filesystem::copy_file(std::filesystem::path(TALVIR_BIN_DIR) / LibraryFile(), m_folder.Path() / LibraryFile());
  }
  ~CLibraryUnderTest() {
    if (m_module.IsLoaded() && UnInit != nullptr) {
      UnInit();
    }
  }
  CLibraryUnderTest(const CLibraryUnderTest&) = delete;
  CLibraryUnderTest& operator=(const CLibraryUnderTest&) = delete;

  // A copy of build/bin/<name> (a producer) under `as` (default: the same name).
  void CopyFromBin(const std::string& name, const std::string& as = "") const {
    std::filesystem::copy_file(std::filesystem::path(TALVIR_BIN_DIR) / name,
                               m_folder.Path() / (as.empty() ? name : as));
  }
  // A link to any file, for producers whose state the test shares (the loader sees the linked file).
  void Link(const std::string& target, const std::string& as) const { LinkFile(target, m_folder.Path() / as); }
  // A symbolic link to a folder (for a folder of drivers the library finds beside itself).
  void LinkFolder(const std::string& target, const std::string& as) const {
    std::filesystem::create_directory_symlink(target, m_folder.Path() / as);
  }
  void WriteFile(const std::string& name, const std::string& content) const { m_folder.WriteFile(name, content); }
  void WriteConfig(const std::string& ctiNames) const {
    m_folder.WriteFile("DiscoveryCfg.ini", "[User]\nCtiNames=" + ctiNames + "\n");
  }
  std::string Directory() const { return m_folder.Directory(); }
  // The library's file name on this platform ("libTalvir.so", "Talvir.dll").
  static std::string LibraryFile() { return ModuleFileName("Talvir"); }

  // Loads the library and binds the entry points; call after laying out the folder.
  void Load() {
    m_module = Platform::CDynamicModule(Directory() + LibraryFile());
    if (!m_module.IsLoaded()) {
      throw std::runtime_error(LibraryFile() + " not loadable: " + Platform::LastModuleError());
    }
    Init = Bind<decltype(&TALVIR::Init)>("_ZN6TALVIR4InitEv");
    UnInit = Bind<decltype(&TALVIR::UnInit)>("_ZN6TALVIR6UnInitEv");
    // Functions returning std::list carry the library ABI tag in their names.
    Discovery = Bind<decltype(&TALVIR::Discovery)>("_ZN6TALVIR9DiscoveryB5cxx11EPKc");
    // uint64_t is "unsigned long" (mangled m) on 64-bit Linux and "unsigned long long" (y) on 64-bit Windows.
    DiscoveryByTLType = Bind<decltype(&TALVIR::DiscoveryByTLType)>(kWindows ? "_ZN6TALVIR17DiscoveryByTLTypeB5cxx11Ey"
                                                                            : "_ZN6TALVIR17DiscoveryByTLTypeB5cxx11Em");
    CreateCamera = Bind<decltype(&TALVIR::CreateCamera)>("_ZN6TALVIR12CreateCameraEPNS_11ICameraInfoE");
    CreateCameraBySN = Bind<decltype(&TALVIR::CreateCameraBySN)>("_ZN6TALVIR16CreateCameraBySNEPKc");
    GetDiscoveryReport = Bind<decltype(&TALVIR::GetDiscoveryReport)>("_ZN6TALVIR18GetDiscoveryReportEv");
    SetDiagnosticCallback = Bind<decltype(&TALVIR::SetDiagnosticCallback)>(
        "_ZN6TALVIR21SetDiagnosticCallbackEPFvRKNS_16GenTLCallFailureEPvES3_");
    CreateCameraWithCLCamOnly =
        Bind<decltype(&TALVIR::CreateCameraWithCLCamOnly)>("_ZN6TALVIR25CreateCameraWithCLCamOnlyEv");
    GetCLProtocols = Bind<decltype(&TALVIR::GetCLProtocols)>("_ZN6TALVIR14GetCLProtocolsB5cxx11Ev");
    GetCLSerials = Bind<decltype(&TALVIR::GetCLSerials)>("_ZN6TALVIR12GetCLSerialsB5cxx11Ev");
  }

  decltype(&TALVIR::Init) Init = nullptr;
  decltype(&TALVIR::UnInit) UnInit = nullptr;
  decltype(&TALVIR::Discovery) Discovery = nullptr;
  decltype(&TALVIR::DiscoveryByTLType) DiscoveryByTLType = nullptr;
  decltype(&TALVIR::CreateCamera) CreateCamera = nullptr;
  decltype(&TALVIR::CreateCameraBySN) CreateCameraBySN = nullptr;
  decltype(&TALVIR::GetDiscoveryReport) GetDiscoveryReport = nullptr;
  decltype(&TALVIR::SetDiagnosticCallback) SetDiagnosticCallback = nullptr;
  decltype(&TALVIR::CreateCameraWithCLCamOnly) CreateCameraWithCLCamOnly = nullptr;
  decltype(&TALVIR::GetCLProtocols) GetCLProtocols = nullptr;
  decltype(&TALVIR::GetCLSerials) GetCLSerials = nullptr;

private:
  template <typename TFunction>
  TFunction Bind(const char* name) const {
    auto function = m_module.Symbol<TFunction>(name);
    if (function == nullptr) {
      throw std::runtime_error(LibraryFile() + " does not export " + name);
    }
    return function;
  }

  CTempDirectory m_folder;
  Platform::CDynamicModule m_module;
};

}  // namespace TALVIR::Testing
