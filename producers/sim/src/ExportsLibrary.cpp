// The exported library, port and event functions.
#include "ExportPrelude.h"
#include "platform/SelfPath.h"

#include <cstring>

extern "C" {

// ---- Library ----

#ifndef TALVIR_SIM_WITHOUT_INFO
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCGetInfo(TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                                             size_t* piSize) {
  return Guarded([&] {
    // Library information is available before GCInitLib too, from the module's own name and configuration.
    RequireSize(piSize);
    TalvirSim::SConfig unopened;
    if (!Lib().IsInitialised()) {
      const std::string path = TALVIR::Platform::OwnModulePath();
      try {
        unopened = TalvirSim::LoadConfig(path);
      } catch (const std::exception&) {
        unopened = TalvirSim::DefaultConfig(TalvirSim::FlavourFromFileName(path), path);
      }
    }
    auto systemInfo = [&](const TalvirSim::SConfig& config) {
      switch (iInfoCmd) {
      case TL_INFO_ID: return TalvirSim::PutString({piType, pBuffer, piSize}, config.id);
      case TL_INFO_VENDOR: return TalvirSim::PutString({piType, pBuffer, piSize}, config.vendor);
      case TL_INFO_MODEL: return TalvirSim::PutString({piType, pBuffer, piSize}, config.model);
      case TL_INFO_VERSION: return TalvirSim::PutString({piType, pBuffer, piSize}, config.version);
      case TL_INFO_TLTYPE: return TalvirSim::PutString({piType, pBuffer, piSize}, config.tlType);
      case TL_INFO_NAME: return TalvirSim::PutString({piType, pBuffer, piSize}, config.moduleName);
      case TL_INFO_PATHNAME: return TalvirSim::PutString({piType, pBuffer, piSize}, config.modulePath);
      case TL_INFO_DISPLAYNAME:
        return TalvirSim::PutString({piType, pBuffer, piSize}, config.model + " (" + config.tlType + ")");
      case TL_INFO_CHAR_ENCODING: return TalvirSim::PutI32({piType, pBuffer, piSize}, TL_CHAR_ENCODING_ASCII);
      case TL_INFO_GENTL_VER_MAJOR: return TalvirSim::PutU32({piType, pBuffer, piSize}, 1);
      case TL_INFO_GENTL_VER_MINOR: return TalvirSim::PutU32({piType, pBuffer, piSize}, 5);
      default: Fail(GC_ERR_INVALID_ID, "unknown library info command " + std::to_string(iInfoCmd));
      }
    };
    systemInfo(Lib().IsInitialised() ? Lib().Config() : unopened);
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE GCGetLastError(GC_ERROR* piErrorCode, char* sErrorText, size_t* piSize) {
  // Reports, never records: asking for the last error must not replace it.
  if (piErrorCode == nullptr || piSize == nullptr) {
    return GC_ERR_INVALID_PARAMETER;
  }
  *piErrorCode = TalvirSim::LastErrorCode();
  const std::string text = TalvirSim::LastErrorText();
  if (sErrorText == nullptr) {
    *piSize = text.size() + 1;
    return GC_ERR_SUCCESS;
  }
  if (*piSize < text.size() + 1) {
    *piSize = text.size() + 1;
    return GC_ERR_BUFFER_TOO_SMALL;
  }
  std::memcpy(sErrorText, text.c_str(), text.size() + 1);
  *piSize = text.size() + 1;
  return GC_ERR_SUCCESS;
}
#endif

GC_API_EXPORT GC_ERROR GC_CALLTYPE GCInitLib(void) {
  return Guarded([] { Lib().InitLib(); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE GCCloseLib(void) {
  return Guarded([] { Lib().CloseLib(); });
}

// ---- Ports ----

GC_API_EXPORT GC_ERROR GC_CALLTYPE GCReadPort(PORT_HANDLE hPort, uint64_t iAddress, void* pBuffer, size_t* piSize) {
  return Guarded([&] {
    auto port = Lib().Get<CPortModule>(hPort, "port");
    RequireSize(piSize);
    RequireOut(pBuffer, "buffer");
    port->ReadPort(iAddress, pBuffer, *piSize);
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE GCWritePort(PORT_HANDLE hPort, uint64_t iAddress, const void* pBuffer,
                                               size_t* piSize) {
  return Guarded([&] {
    auto port = Lib().Get<CPortModule>(hPort, "port");
    RequireSize(piSize);
    RequireOut(pBuffer, "buffer");
    port->WritePort(iAddress, pBuffer, *piSize);
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE GCGetPortURL(PORT_HANDLE hPort, char* sURL, size_t* piSize) {
  return Guarded([&] {
    auto port = Lib().Get<CPortModule>(hPort, "port");
    TalvirSim::PutIdString(sURL, piSize, port->Description().Url());
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE GCGetPortInfo(PORT_HANDLE hPort, PORT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                                 void* pBuffer, size_t* piSize) {
  return Guarded([&] { Lib().Get<CPortModule>(hPort, "port")->GetPortInfo(iInfoCmd, {piType, pBuffer, piSize}); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE GCGetNumPortURLs(PORT_HANDLE hPort, uint32_t* piNumURLs) {
  return Guarded([&] {
    Lib().Get<CPortModule>(hPort, "port");
    RequireOut(piNumURLs, "count pointer");
    *piNumURLs = 1;
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE GCGetPortURLInfo(PORT_HANDLE hPort, uint32_t iURLIndex, URL_INFO_CMD iInfoCmd,
                                                    INFO_DATATYPE* piType, void* pBuffer, size_t* piSize) {
  return Guarded([&] {
    Lib().Get<CPortModule>(hPort, "port")->GetUrlInfo(iURLIndex, iInfoCmd, {piType, pBuffer, piSize});
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE GCReadPortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries,
                                                     size_t* piNumEntries) {
  return Guarded([&] {
    auto port = Lib().Get<CPortModule>(hPort, "port");
    RequireOut(piNumEntries, "entry count");
    RequireOut(pEntries, "entries");
    for (size_t i = 0; i < *piNumEntries; ++i) {
      RequireOut(pEntries[i].pBuffer, "entry buffer");
      port->ReadPort(pEntries[i].Address, pEntries[i].pBuffer, pEntries[i].Size);
    }
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE GCWritePortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries,
                                                      size_t* piNumEntries) {
  return Guarded([&] {
    auto port = Lib().Get<CPortModule>(hPort, "port");
    RequireOut(piNumEntries, "entry count");
    RequireOut(pEntries, "entries");
    for (size_t i = 0; i < *piNumEntries; ++i) {
      RequireOut(pEntries[i].pBuffer, "entry buffer");
      port->WritePort(pEntries[i].Address, pEntries[i].pBuffer, pEntries[i].Size);
    }
  });
}

// ---- Events ----

namespace {
// Device and remote-port handles register on the camera, which raises the remote-device and error events.
CEventSource& EventSourceOf(EVENTSRC_HANDLE handle, std::shared_ptr<TalvirSim::CObject>& keep) {
  auto object = Lib().Get<TalvirSim::CObject>(handle, "event source");
  keep = object;
  if (auto* device = dynamic_cast<CDevice*>(object.get())) {
    return device->Camera();
  }
  if (auto* remote = dynamic_cast<CRemotePort*>(object.get())) {
    return remote->Camera();
  }
  auto* source = dynamic_cast<CEventSource*>(object.get());
  if (source == nullptr) {
    Fail(GC_ERR_INVALID_HANDLE, "the handle cannot raise events");
  }
  return *source;
}
}  // namespace

GC_API_EXPORT GC_ERROR GC_CALLTYPE GCRegisterEvent(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE iEventID,
                                                   EVENT_HANDLE* phEvent) {
  return Guarded([&] {
    std::shared_ptr<TalvirSim::CObject> keep;
    CEventSource& source = EventSourceOf(hEventSrc, keep);
    RequireOut(phEvent, "event handle pointer");
    *phEvent = source.Register(iEventID)->Handle();
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE GCUnregisterEvent(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE iEventID) {
  return Guarded([&] {
    std::shared_ptr<TalvirSim::CObject> keep;
    EventSourceOf(hEventSrc, keep).Unregister(iEventID);
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE EventGetData(EVENT_HANDLE hEvent, void* pBuffer, size_t* piSize, uint64_t iTimeout) {
  return Guarded([&] { Lib().Get<CEvent>(hEvent, "event")->GetData(pBuffer, piSize, iTimeout); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE EventGetDataInfo(EVENT_HANDLE hEvent, const void* pInBuffer, size_t iInSize,
                                                    EVENT_DATA_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                                    void* pOutBuffer, size_t* piOutSize) {
  return Guarded([&] {
    Lib().Get<CEvent>(hEvent, "event")->GetDataInfo(pInBuffer, iInSize, iInfoCmd, {piType, pOutBuffer, piOutSize});
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE EventGetInfo(EVENT_HANDLE hEvent, EVENT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                                void* pBuffer, size_t* piSize) {
  return Guarded([&] { Lib().Get<CEvent>(hEvent, "event")->GetInfo(iInfoCmd, {piType, pBuffer, piSize}); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE EventFlush(EVENT_HANDLE hEvent) {
  return Guarded([&] { Lib().Get<CEvent>(hEvent, "event")->Flush(); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE EventKill(EVENT_HANDLE hEvent) {
  return Guarded([&] { Lib().Get<CEvent>(hEvent, "event")->Kill(); });
}

}  // extern "C"
