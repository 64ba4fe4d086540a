#include "Library.h"

#include "platform/DynamicModule.h"
#include "platform/Network.h"

#include "Camera.h"
#include "Modules.h"
#include "platform/SelfPath.h"

namespace TalvirSim {

CLibrary& CLibrary::Instance() {
  static CLibrary library;
  return library;
}

CLibrary::~CLibrary() {
  // A consumer that unloads the module without GCCloseLib still gets its threads stopped.
  if (m_initialised) {
    CloseLib();
  }
  JoinNotifiers();
}

void CLibrary::RequireInit() const {
  if (!m_initialised) {
    Fail(GenTL::GC_ERR_NOT_INITIALIZED, "GCInitLib has not been called");
  }
}

void CLibrary::InitLib() {
  std::lock_guard<std::mutex> lock(m_lifeMutex);
  if (m_initialised) {
    Fail(GenTL::GC_ERR_RESOURCE_IN_USE, "GCInitLib was already called");
  }
  const std::string path = TALVIR::Platform::OwnModulePath();
  SConfig config;
  try {
    config = LoadConfig(path);
  } catch (const std::exception& error) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, std::string("bad configuration: ") + error.what());
  }
  if (config.failInitLib) {
    Fail(GenTL::GC_ERR_IO, "GCInitLib fails on purpose (failInitLib in the configuration)");
  }
  m_config = config;
  m_cameras.clear();
  for (const SInterfaceConfig& iface : m_config.interfaces) {
    std::vector<std::shared_ptr<CSimCamera>> cameras;
    for (const SDeviceConfig& device : iface.devices) {
      cameras.push_back(std::make_shared<CSimCamera>(m_config, device));
    }
    m_cameras.push_back(cameras);
  }
  m_systemOpen = false;
  m_initialised = true;
}

void CLibrary::CloseLib() {
  std::shared_ptr<CSystem> system;
  {
    std::lock_guard<std::mutex> lock(m_lifeMutex);
    RequireInit();
    system = m_system.lock();
  }
  if (system) {
    system->CloseAll();
  }
  JoinNotifiers();
  std::lock_guard<std::mutex> lock(m_lifeMutex);
  {
    std::unique_lock<std::shared_mutex> handles(m_handleMutex);
    m_handles.clear();
  }
  for (auto& cameras : m_cameras) {
    for (auto& camera : cameras) {
      camera->UnregisterAll();
      camera->SetWake({});
    }
  }
  m_cameras.clear();
  m_systemOpen = false;
  m_initialised = false;
}

const std::vector<std::shared_ptr<CSimCamera>>& CLibrary::Cameras(size_t interfaceIndex) const {
  return m_cameras.at(interfaceIndex);
}

std::shared_ptr<CSystem> CLibrary::OpenSystem() {
  std::lock_guard<std::mutex> lock(m_lifeMutex);
  RequireInit();
  if (m_config.failTLOpen) {
    Fail(GenTL::GC_ERR_IO, "TLOpen fails on purpose (failTLOpen in the configuration)");
  }
  if (m_systemOpen) {
    Fail(GenTL::GC_ERR_RESOURCE_IN_USE, "the system module is already open");
  }
  auto system = std::make_shared<CSystem>();
  m_system = system;
  m_systemOpen = true;
  AddHandle(system);
  return system;
}

void CLibrary::SystemClosed() {
  std::lock_guard<std::mutex> lock(m_lifeMutex);
  m_systemOpen = false;
  m_system.reset();
}

void CLibrary::AddHandle(const std::shared_ptr<CObject>& object) {
  std::unique_lock<std::shared_mutex> lock(m_handleMutex);
  m_handles[object->Handle()] = object;
}

void CLibrary::RemoveHandle(const void* handle) {
  std::shared_ptr<CObject> keep;  // released after the lock: destructors may take other locks
  std::unique_lock<std::shared_mutex> lock(m_handleMutex);
  auto it = m_handles.find(handle);
  if (it != m_handles.end()) {
    keep = std::move(it->second);
    m_handles.erase(it);
  }
  lock.unlock();
}

void CLibrary::ReportDeviceLost(const std::string& id) {
  const StatusCallback callback = m_statusCallback.load();
  if (callback == nullptr) {
    return;
  }
  // Reported from a thread of our own, as hardware notifications arrive, never from inside a consumer's call.
  std::lock_guard<std::mutex> lock(m_notifierMutex);
  m_notifiers.emplace_back([callback, id] { callback(id.c_str(), false); });
}

void CLibrary::ReportGevDeviceLost(const std::string& address) {
  uint32_t networkOrder = 0;
  if (!TALVIR::Platform::ParseIPv4(address, networkOrder)) {
    return;
  }
  TALVIR::Platform::ModuleHandle helper = TALVIR::Platform::FindLoadedModule("VendraLib.dll");
  if (helper == nullptr) {
    return;
  }
  using ReportStatus = void (*)(uint32_t, bool);
  const auto report = reinterpret_cast<ReportStatus>(TALVIR::Platform::FindSymbol(helper, "HelperSimReportStatus"));
  if (report != nullptr) {
    report(networkOrder, false);  // delivered on a thread of the helper's own
  }
  TALVIR::Platform::FreeModule(helper);
}

void CLibrary::JoinNotifiers() {
  std::vector<std::thread> threads;
  {
    std::lock_guard<std::mutex> lock(m_notifierMutex);
    threads.swap(m_notifiers);
  }
  for (std::thread& thread : threads) {
    if (thread.joinable()) {
      thread.join();
    }
  }
}

}  // namespace TalvirSim
