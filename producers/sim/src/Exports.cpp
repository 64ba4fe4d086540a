// The exported GenTL C interface. Every function turns exceptions into GenTL error codes and records the calling
// thread's last error; the fault variants of the module are built from this file with parts left out:
//   TALVIR_SIM_WITHOUT_QUEUE: no DSQueueBuffer export;
//   TALVIR_SIM_WITHOUT_INFO:  no GCGetInfo and no GCGetLastError exports.
#include "Library.h"
#include "Modules.h"
#include "platform/SelfPath.h"

#include <cstring>
#include <new>

using namespace GenTL;
using TalvirSim::CDataStream;
using TalvirSim::CDevice;
using TalvirSim::CEvent;
using TalvirSim::CEventSource;
using TalvirSim::CGenTLError;
using TalvirSim::CInterface;
using TalvirSim::CPortModule;
using TalvirSim::CRemotePort;
using TalvirSim::CSystem;
using TalvirSim::Fail;
using TalvirSim::Lib;
using TalvirSim::SInfoOut;

namespace {

template <typename TBody> GC_ERROR Guarded(TBody&& body) {
  try {
    body();
    return GC_ERR_SUCCESS;
  } catch (const CGenTLError& error) {
    TalvirSim::SetLastError(error.Code(), error.what());
    return error.Code();
  } catch (const std::bad_alloc&) {
    TalvirSim::SetLastError(GC_ERR_OUT_OF_MEMORY, "out of memory");
    return GC_ERR_OUT_OF_MEMORY;
  } catch (const std::exception& error) {
    TalvirSim::SetLastError(GC_ERR_ERROR, error.what());
    return GC_ERR_ERROR;
  } catch (...) {
    TalvirSim::SetLastError(GC_ERR_ERROR, "unexpected failure");
    return GC_ERR_ERROR;
  }
}

template <typename T> void RequireOut(T* pointer, const char* what) {
  if (pointer == nullptr) {
    Fail(GC_ERR_INVALID_PARAMETER, std::string("null ") + what);
  }
}

std::string RequireId(const char* id, const char* what) {
  if (id == nullptr) {
    Fail(GC_ERR_INVALID_PARAMETER, std::string("null ") + what);
  }
  return id;
}

void RequireSize(size_t* size) { RequireOut(size, "size pointer"); }

} // namespace

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
      case TL_INFO_ID:
        return TalvirSim::PutString({piType, pBuffer, piSize}, config.id);
      case TL_INFO_VENDOR:
        return TalvirSim::PutString({piType, pBuffer, piSize}, config.vendor);
      case TL_INFO_MODEL:
        return TalvirSim::PutString({piType, pBuffer, piSize}, config.model);
      case TL_INFO_VERSION:
        return TalvirSim::PutString({piType, pBuffer, piSize}, config.version);
      case TL_INFO_TLTYPE:
        return TalvirSim::PutString({piType, pBuffer, piSize}, config.tlType);
      case TL_INFO_NAME:
        return TalvirSim::PutString({piType, pBuffer, piSize}, config.moduleName);
      case TL_INFO_PATHNAME:
        return TalvirSim::PutString({piType, pBuffer, piSize}, config.modulePath);
      case TL_INFO_DISPLAYNAME:
        return TalvirSim::PutString({piType, pBuffer, piSize}, config.model + " (" + config.tlType + ")");
      case TL_INFO_CHAR_ENCODING:
        return TalvirSim::PutI32({piType, pBuffer, piSize}, TL_CHAR_ENCODING_ASCII);
      case TL_INFO_GENTL_VER_MAJOR:
        return TalvirSim::PutU32({piType, pBuffer, piSize}, 1);
      case TL_INFO_GENTL_VER_MINOR:
        return TalvirSim::PutU32({piType, pBuffer, piSize}, 5);
      default:
        Fail(GC_ERR_INVALID_ID, "unknown library info command " + std::to_string(iInfoCmd));
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
  return Guarded(
      [&] { Lib().Get<CPortModule>(hPort, "port")->GetUrlInfo(iURLIndex, iInfoCmd, {piType, pBuffer, piSize}); });
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
} // namespace

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

GC_API_EXPORT GC_ERROR GC_CALLTYPE EventGetData(EVENT_HANDLE hEvent, void* pBuffer, size_t* piSize,
                                                uint64_t iTimeout) {
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

// ---- System ----

GC_API_EXPORT GC_ERROR GC_CALLTYPE TLOpen(TL_HANDLE* phTL) {
  return Guarded([&] {
    RequireOut(phTL, "system handle pointer");
    Lib().RequireInit();
    *phTL = Lib().OpenSystem()->Handle();
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE TLClose(TL_HANDLE hTL) {
  return Guarded([&] { Lib().Get<CSystem>(hTL, "system")->CloseAll(); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE TLGetInfo(TL_HANDLE hTL, TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                             void* pBuffer, size_t* piSize) {
  return Guarded([&] { Lib().Get<CSystem>(hTL, "system")->GetInfo(iInfoCmd, {piType, pBuffer, piSize}); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE TLGetNumInterfaces(TL_HANDLE hTL, uint32_t* piNumIfaces) {
  return Guarded([&] {
    auto system = Lib().Get<CSystem>(hTL, "system");
    RequireOut(piNumIfaces, "count pointer");
    *piNumIfaces = system->NumInterfaces();
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE TLGetInterfaceID(TL_HANDLE hTL, uint32_t iIndex, char* sID, size_t* piSize) {
  return Guarded([&] {
    auto system = Lib().Get<CSystem>(hTL, "system");
    TalvirSim::PutIdString(sID, piSize, system->InterfaceId(iIndex));
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE TLGetInterfaceInfo(TL_HANDLE hTL, const char* sIfaceID,
                                                      INTERFACE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                                      void* pBuffer, size_t* piSize) {
  return Guarded([&] {
    auto system = Lib().Get<CSystem>(hTL, "system");
    system->InterfaceInfo(RequireId(sIfaceID, "interface ID"), iInfoCmd, {piType, pBuffer, piSize});
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE TLOpenInterface(TL_HANDLE hTL, const char* sIfaceID, IF_HANDLE* phIface) {
  return Guarded([&] {
    auto system = Lib().Get<CSystem>(hTL, "system");
    RequireOut(phIface, "interface handle pointer");
    *phIface = system->OpenInterface(RequireId(sIfaceID, "interface ID"))->Handle();
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE TLUpdateInterfaceList(TL_HANDLE hTL, bool8_t* pbChanged, uint64_t) {
  return Guarded([&] {
    const bool changed = Lib().Get<CSystem>(hTL, "system")->UpdateInterfaceList();
    if (pbChanged != nullptr) {
      *pbChanged = changed ? 1 : 0;
    }
  });
}

// ---- Interface ----

GC_API_EXPORT GC_ERROR GC_CALLTYPE IFClose(IF_HANDLE hIface) {
  return Guarded([&] { Lib().Get<CInterface>(hIface, "interface")->Close(); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE IFGetInfo(IF_HANDLE hIface, INTERFACE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                             void* pBuffer, size_t* piSize) {
  return Guarded([&] { Lib().Get<CInterface>(hIface, "interface")->GetInfo(iInfoCmd, {piType, pBuffer, piSize}); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE IFGetNumDevices(IF_HANDLE hIface, uint32_t* piNumDevices) {
  return Guarded([&] {
    auto iface = Lib().Get<CInterface>(hIface, "interface");
    RequireOut(piNumDevices, "count pointer");
    *piNumDevices = iface->NumDevices();
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE IFGetDeviceID(IF_HANDLE hIface, uint32_t iIndex, char* sIDeviceID,
                                                 size_t* piSize) {
  return Guarded([&] {
    auto iface = Lib().Get<CInterface>(hIface, "interface");
    TalvirSim::PutIdString(sIDeviceID, piSize, iface->DeviceId(iIndex));
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE IFUpdateDeviceList(IF_HANDLE hIface, bool8_t* pbChanged, uint64_t iTimeout) {
  return Guarded([&] {
    const bool changed = Lib().Get<CInterface>(hIface, "interface")->UpdateDeviceList(iTimeout);
    if (pbChanged != nullptr) {
      *pbChanged = changed ? 1 : 0;
    }
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE IFGetDeviceInfo(IF_HANDLE hIface, const char* sDeviceID, DEVICE_INFO_CMD iInfoCmd,
                                                   INFO_DATATYPE* piType, void* pBuffer, size_t* piSize) {
  return Guarded([&] {
    auto iface = Lib().Get<CInterface>(hIface, "interface");
    iface->DeviceInfo(RequireId(sDeviceID, "device ID"), iInfoCmd, {piType, pBuffer, piSize});
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE IFOpenDevice(IF_HANDLE hIface, const char* sDeviceID,
                                                DEVICE_ACCESS_FLAGS iOpenFlags, DEV_HANDLE* phDevice) {
  return Guarded([&] {
    auto iface = Lib().Get<CInterface>(hIface, "interface");
    RequireOut(phDevice, "device handle pointer");
    *phDevice = iface->OpenDevice(RequireId(sDeviceID, "device ID"), iOpenFlags)->Handle();
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE IFGetParentTL(IF_HANDLE hIface, TL_HANDLE* phSystem) {
  return Guarded([&] {
    auto iface = Lib().Get<CInterface>(hIface, "interface");
    RequireOut(phSystem, "system handle pointer");
    *phSystem = iface->Parent()->Handle();
  });
}

// ---- Device ----

GC_API_EXPORT GC_ERROR GC_CALLTYPE DevGetPort(DEV_HANDLE hDevice, PORT_HANDLE* phRemoteDevice) {
  return Guarded([&] {
    auto device = Lib().Get<CDevice>(hDevice, "device");
    RequireOut(phRemoteDevice, "port handle pointer");
    *phRemoteDevice = device->RemotePort()->Handle();
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DevGetNumDataStreams(DEV_HANDLE hDevice, uint32_t* piNumDataStreams) {
  return Guarded([&] {
    auto device = Lib().Get<CDevice>(hDevice, "device");
    RequireOut(piNumDataStreams, "count pointer");
    *piNumDataStreams = device->NumStreams();
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DevGetDataStreamID(DEV_HANDLE hDevice, uint32_t iIndex, char* sDataStreamID,
                                                      size_t* piSize) {
  return Guarded([&] {
    auto device = Lib().Get<CDevice>(hDevice, "device");
    TalvirSim::PutIdString(sDataStreamID, piSize, device->StreamId(iIndex));
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DevOpenDataStream(DEV_HANDLE hDevice, const char* sDataStreamID,
                                                     DS_HANDLE* phDataStream) {
  return Guarded([&] {
    auto device = Lib().Get<CDevice>(hDevice, "device");
    RequireOut(phDataStream, "stream handle pointer");
    *phDataStream = device->OpenStream(RequireId(sDataStreamID, "stream ID"))->Handle();
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DevGetInfo(DEV_HANDLE hDevice, DEVICE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                              void* pBuffer, size_t* piSize) {
  return Guarded([&] { Lib().Get<CDevice>(hDevice, "device")->GetInfo(iInfoCmd, {piType, pBuffer, piSize}); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DevClose(DEV_HANDLE hDevice) {
  return Guarded([&] { Lib().Get<CDevice>(hDevice, "device")->Close(); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DevGetParentIF(DEV_HANDLE hDevice, IF_HANDLE* phIface) {
  return Guarded([&] {
    auto device = Lib().Get<CDevice>(hDevice, "device");
    RequireOut(phIface, "interface handle pointer");
    *phIface = device->Parent()->Handle();
  });
}

// ---- Data stream ----

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSAnnounceBuffer(DS_HANDLE hDataStream, void* pBuffer, size_t iSize,
                                                    void* pPrivate, BUFFER_HANDLE* phBuffer) {
  return Guarded([&] {
    auto stream = Lib().Get<CDataStream>(hDataStream, "data stream");
    RequireOut(phBuffer, "buffer handle pointer");
    *phBuffer = stream->Announce(pBuffer, iSize, pPrivate);
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSAllocAndAnnounceBuffer(DS_HANDLE hDataStream, size_t iSize, void* pPrivate,
                                                            BUFFER_HANDLE* phBuffer) {
  return Guarded([&] {
    auto stream = Lib().Get<CDataStream>(hDataStream, "data stream");
    RequireOut(phBuffer, "buffer handle pointer");
    *phBuffer = stream->AllocAndAnnounce(iSize, pPrivate);
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSFlushQueue(DS_HANDLE hDataStream, ACQ_QUEUE_TYPE iOperation) {
  return Guarded([&] { Lib().Get<CDataStream>(hDataStream, "data stream")->Flush(iOperation); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSStartAcquisition(DS_HANDLE hDataStream, ACQ_START_FLAGS iStartFlags,
                                                      uint64_t iNumToAcquire) {
  return Guarded([&] { Lib().Get<CDataStream>(hDataStream, "data stream")->Start(iStartFlags, iNumToAcquire); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSStopAcquisition(DS_HANDLE hDataStream, ACQ_STOP_FLAGS iStopFlags) {
  return Guarded([&] { Lib().Get<CDataStream>(hDataStream, "data stream")->Stop(iStopFlags); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetInfo(DS_HANDLE hDataStream, STREAM_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                             void* pBuffer, size_t* piSize) {
  return Guarded(
      [&] { Lib().Get<CDataStream>(hDataStream, "data stream")->GetInfo(iInfoCmd, {piType, pBuffer, piSize}); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferID(DS_HANDLE hDataStream, uint32_t iIndex, BUFFER_HANDLE* phBuffer) {
  return Guarded([&] {
    auto stream = Lib().Get<CDataStream>(hDataStream, "data stream");
    RequireOut(phBuffer, "buffer handle pointer");
    *phBuffer = stream->BufferId(iIndex);
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSClose(DS_HANDLE hDataStream) {
  return Guarded([&] { Lib().Get<CDataStream>(hDataStream, "data stream")->Close(); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSRevokeBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, void** pBuffer,
                                                  void** pPrivate) {
  return Guarded([&] { Lib().Get<CDataStream>(hDataStream, "data stream")->Revoke(hBuffer, pBuffer, pPrivate); });
}

#ifndef TALVIR_SIM_WITHOUT_QUEUE
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSQueueBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer) {
  return Guarded([&] { Lib().Get<CDataStream>(hDataStream, "data stream")->Queue(hBuffer); });
}
#endif

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferInfo(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                   BUFFER_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                                                   size_t* piSize) {
  return Guarded([&] {
    Lib().Get<CDataStream>(hDataStream, "data stream")->BufferInfo(hBuffer, iInfoCmd, {piType, pBuffer, piSize});
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferChunkData(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                        SINGLE_CHUNK_DATA* pChunkData, size_t* piNumChunks) {
  return Guarded(
      [&] { Lib().Get<CDataStream>(hDataStream, "data stream")->ChunkData(hBuffer, pChunkData, piNumChunks); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetParentDev(DS_HANDLE hDataStream, DEV_HANDLE* phDevice) {
  return Guarded([&] {
    auto stream = Lib().Get<CDataStream>(hDataStream, "data stream");
    RequireOut(phDevice, "device handle pointer");
    *phDevice = stream->Parent()->Handle();
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetNumBufferParts(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                       uint32_t* piNumParts) {
  return Guarded([&] {
    auto stream = Lib().Get<CDataStream>(hDataStream, "data stream");
    RequireOut(piNumParts, "count pointer");
    *piNumParts = stream->NumParts(hBuffer);
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferPartInfo(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t,
                                                       BUFFER_PART_INFO_CMD, INFO_DATATYPE*, void*, size_t*) {
  return Guarded([&] {
    auto stream = Lib().Get<CDataStream>(hDataStream, "data stream");
    stream->NumParts(hBuffer);
    Fail(GC_ERR_INVALID_INDEX, "image buffers have no parts");
  });
}

// ---- 1.6 additions ----

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferInfoStacked(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                          DS_BUFFER_INFO_STACKED* pInfoStacked, size_t iNumInfos) {
  return Guarded([&] {
    auto stream = Lib().Get<CDataStream>(hDataStream, "data stream");
    RequireOut(pInfoStacked, "info entries");
    bool failed = false;
    for (size_t i = 0; i < iNumInfos; ++i) {
      DS_BUFFER_INFO_STACKED& entry = pInfoStacked[i];
      INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
      size_t size = entry.iSize;
      entry.iResult = Guarded([&] { stream->BufferInfo(hBuffer, entry.iInfoCmd, {&type, entry.pBuffer, &size}); });
      entry.iType = type;
      entry.iSize = size;
      failed = failed || entry.iResult != GC_ERR_SUCCESS;
    }
    if (failed) {
      Fail(GC_ERR_ERROR, "at least one stacked buffer info query failed; see each entry's result");
    }
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferPartInfoStacked(DS_HANDLE, BUFFER_HANDLE, DS_BUFFER_PART_INFO_STACKED*,
                                                              size_t) {
  return Guarded([] { Fail(GC_ERR_NOT_IMPLEMENTED, "multi-part buffers are not simulated"); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetNumFlows(DS_HANDLE hDataStream, uint32_t* piNumFlows) {
  return Guarded([&] {
    Lib().Get<CDataStream>(hDataStream, "data stream");
    RequireOut(piNumFlows, "count pointer");
    *piNumFlows = 0;
  });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetFlowInfo(DS_HANDLE, uint32_t, FLOW_INFO_CMD, INFO_DATATYPE*, void*, size_t*) {
  return Guarded([] { Fail(GC_ERR_NOT_IMPLEMENTED, "flows are not simulated"); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetNumBufferSegments(DS_HANDLE, BUFFER_HANDLE, uint32_t*) {
  return Guarded([] { Fail(GC_ERR_NOT_IMPLEMENTED, "composite buffers are not simulated"); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferSegmentInfo(DS_HANDLE, BUFFER_HANDLE, uint32_t, SEGMENT_INFO_CMD,
                                                          INFO_DATATYPE*, void*, size_t*) {
  return Guarded([] { Fail(GC_ERR_NOT_IMPLEMENTED, "composite buffers are not simulated"); });
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSAnnounceCompositeBuffer(DS_HANDLE, size_t, void**, size_t*, void*,
                                                             BUFFER_HANDLE*) {
  return Guarded([] { Fail(GC_ERR_NOT_IMPLEMENTED, "composite buffers are not simulated"); });
}

// ---- USB3 Vision status hook ----

// The U3V flavour calls `callback(serial number, false)` from a thread of its own when a device is lost.
GC_API_EXPORT void GC_CALLTYPE SetU3VCameraStatusCallback(void (*callback)(const char* id, bool online)) {
  Lib().SetStatusCallback(callback);
}

} // extern "C"
