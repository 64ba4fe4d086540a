#pragma once
// The state of one loaded copy of the module: initialisation, configuration, the open handles and the simulated
// cameras. Each flavour file is loaded as a separate copy, so this state is never shared between flavours.
#include "Config.h"
#include "Errors.h"
#include "Objects.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <thread>
#include <unordered_map>
#include <vector>

namespace TalvirSim {

class CSimCamera;
class CSystem;

using StatusCallback = void (*)(const char* id, bool online);

class CLibrary {
public:
  static CLibrary& Instance();
  ~CLibrary();

  void InitLib();
  void CloseLib();
  bool IsInitialised() const { return m_initialised.load(); }
  void RequireInit() const;

  // Valid between InitLib and CloseLib.
  const SConfig& Config() const { return m_config; }
  const std::vector<std::shared_ptr<CSimCamera>>& Cameras(size_t interfaceIndex) const;

  std::shared_ptr<CSystem> OpenSystem();
  void SystemClosed();

  void AddHandle(const std::shared_ptr<CObject>& object);
  void RemoveHandle(const void* handle);

  // The object a handle names, as type T; GC_ERR_INVALID_HANDLE when it names nothing or something else.
  template <typename T>
  std::shared_ptr<T> Get(void* handle, const char* what) const {
    RequireInit();
    if (handle == nullptr) {
      Fail(GenTL::GC_ERR_INVALID_HANDLE, std::string("null ") + what + " handle");
    }
    std::shared_ptr<CObject> object;
    {
      std::shared_lock<std::shared_mutex> lock(m_handleMutex);
      auto it = m_handles.find(handle);
      if (it != m_handles.end()) {
        object = it->second;
      }
    }
    std::shared_ptr<T> typed = std::dynamic_pointer_cast<T>(object);
    if (!typed) {
      Fail(GenTL::GC_ERR_INVALID_HANDLE, std::string("not a valid ") + what + " handle");
    }
    return typed;
  }

  // The U3V flavour reports lost devices to this callback, from a thread of its own.
  void SetStatusCallback(StatusCallback callback) { m_statusCallback.store(callback); }
  void ReportDeviceLost(const std::string& id);
  // A GigE device lost: reported through the simulated helper library when a consumer has loaded it, as the real
  // GigE stack reports through the helper library.
  void ReportGevDeviceLost(const std::string& address);

private:
  CLibrary() = default;
  void JoinNotifiers();

  std::mutex m_lifeMutex;
  std::atomic<bool> m_initialised{false};
  SConfig m_config;
  std::vector<std::vector<std::shared_ptr<CSimCamera>>> m_cameras;
  std::weak_ptr<CSystem> m_system;
  bool m_systemOpen = false;

  mutable std::shared_mutex m_handleMutex;
  std::unordered_map<const void*, std::shared_ptr<CObject>> m_handles;

  std::atomic<StatusCallback> m_statusCallback{nullptr};
  std::mutex m_notifierMutex;
  std::vector<std::thread> m_notifiers;
};

inline CLibrary& Lib() { return CLibrary::Instance(); }

}  // namespace TalvirSim
