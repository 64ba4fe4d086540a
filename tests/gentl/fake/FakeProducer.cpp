// The scriptable producer behind FakeProducerState.h. Only what the library's discovery and port code call does
// something; every other function answers GC_ERR_NOT_IMPLEMENTED.
#include "FakeProducerState.h"

#include <GenTL/GenTL.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <thread>

using namespace GenTL;
using TALVIR::Testing::CFakeDevice;
using TALVIR::Testing::CFakeInterface;
using TALVIR::Testing::CFakePort;
using TALVIR::Testing::CFakeProducerState;
using TALVIR::Testing::EFakeFailure;

namespace {

CFakeProducerState& State() {
  static CFakeProducerState state;
  return state;
}

void Log(const std::string& call) { State().calls.push_back(call); }

CFakeInterface* InterfaceOf(void* handle) {
  for (size_t index = 0; index < State().interfaces.size(); ++index) {
    if (handle == TALVIR::Testing::FakeInterfaceHandle(index)) {
      return &State().interfaces[index];
    }
  }
  return nullptr;
}

size_t InterfaceIndexOf(void* handle) {
  return static_cast<size_t>(reinterpret_cast<uintptr_t>(handle) -
                             reinterpret_cast<uintptr_t>(TALVIR::Testing::FakeInterfaceHandle(0)));
}

GC_ERROR CopyText(const std::string& text, void* buffer, size_t* size) {
  if (size == nullptr) {
    return GC_ERR_INVALID_PARAMETER;
  }
  const size_t needed = text.size() + 1;
  if (buffer == nullptr) {
    *size = needed;
    return GC_ERR_SUCCESS;
  }
  if (*size < needed) {
    return GC_ERR_BUFFER_TOO_SMALL;
  }
  std::memcpy(buffer, text.c_str(), needed);
  *size = needed;
  return GC_ERR_SUCCESS;
}

GC_ERROR CopyNumber(uint64_t value, size_t width, INFO_DATATYPE* type, void* buffer, size_t* size) {
  if (size == nullptr || buffer == nullptr || *size < width) {
    return GC_ERR_BUFFER_TOO_SMALL;
  }
  std::memcpy(buffer, &value, width);
  *size = width;
  if (type != nullptr) {
    *type = width == 4 ? INFO_DATATYPE_INT32 : INFO_DATATYPE_UINT64;
  }
  return GC_ERR_SUCCESS;
}

}  // namespace

extern "C" GC_API_EXPORT CFakeProducerState* TalvirFakeProducerState() { return &State(); }

GENTL_NAMESPACE_BEGIN
extern "C" {

#ifndef FAKE_WITHOUT_INFO
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCGetInfo(TL_INFO_CMD, INFO_DATATYPE*, void*, size_t*) {
  return GC_ERR_NOT_IMPLEMENTED;
}
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCGetLastError(GC_ERROR* piErrorCode, char* sErrorText, size_t* piSize) {
  std::lock_guard<std::recursive_mutex> lock(State().mutex);
  if (State().lastErrorText.empty()) {
    return GC_ERR_NOT_IMPLEMENTED;
  }
  if (piErrorCode != nullptr) {
    *piErrorCode = State().lastErrorCode;
  }
  return CopyText(State().lastErrorText, sErrorText, piSize);
}
#endif

GC_API_EXPORT GC_ERROR GC_CALLTYPE GCInitLib(void) {
  std::lock_guard<std::recursive_mutex> lock(State().mutex);
  Log("GCInitLib");
  return State().failure == EFakeFailure::InitLib ? GC_ERR_ERROR : GC_ERR_SUCCESS;
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE GCCloseLib(void) {
  std::lock_guard<std::recursive_mutex> lock(State().mutex);
  Log("GCCloseLib");
  return GC_ERR_SUCCESS;
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE GCReadPort(PORT_HANDLE hPort, uint64_t iAddress, void* pBuffer, size_t* piSize) {
  std::lock_guard<std::recursive_mutex> lock(State().mutex);
  const auto found = State().ports.find(hPort);
  if (found == State().ports.end() || piSize == nullptr || pBuffer == nullptr) {
    return GC_ERR_INVALID_HANDLE;
  }
  const CFakePort& port = found->second;
  for (uint64_t failing : port.failingAddresses) {
    if (failing >= iAddress && failing < iAddress + *piSize) {
      return GC_ERR_IO;
    }
  }
  if (iAddress < port.address || iAddress + *piSize > port.address + port.memory.size()) {
    return GC_ERR_INVALID_ADDRESS;
  }
  // Misbehaving producers: fewer bytes than asked, or every byte claimed and the tail left unwritten.
  const size_t reported = *piSize - std::min(*piSize, port.shortReadBy);
  const size_t written = reported - std::min(reported, port.unwrittenTail);
  std::memcpy(pBuffer, port.memory.data() + (iAddress - port.address), written);
  *piSize = reported;
  Log("GCReadPort");
  return GC_ERR_SUCCESS;
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE GCWritePort(PORT_HANDLE hPort, uint64_t iAddress, const void* pBuffer,
                                               size_t* piSize) {
  std::lock_guard<std::recursive_mutex> lock(State().mutex);
  const auto found = State().ports.find(hPort);
  if (found == State().ports.end() || piSize == nullptr || pBuffer == nullptr) {
    return GC_ERR_INVALID_HANDLE;
  }
  for (uint64_t failing : found->second.failingAddresses) {
    if (failing >= iAddress && failing < iAddress + *piSize) {
      return GC_ERR_IO;
    }
  }
  State().writes[iAddress] = std::string(static_cast<const char*>(pBuffer), *piSize);
  return GC_ERR_SUCCESS;
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE GCGetPortURL(PORT_HANDLE hPort, char* sURL, size_t* piSize) {
  std::lock_guard<std::recursive_mutex> lock(State().mutex);
  Log("GCGetPortURL");
  const auto found = State().ports.find(hPort);
  if (found == State().ports.end() || found->second.failURL) {
    return GC_ERR_NOT_AVAILABLE;
  }
  return CopyText(found->second.url, sURL, piSize);
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE GCGetPortInfo(PORT_HANDLE, PORT_INFO_CMD, INFO_DATATYPE*, void*, size_t*) {
  return GC_ERR_NOT_IMPLEMENTED;
}
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCRegisterEvent(EVENTSRC_HANDLE, EVENT_TYPE, EVENT_HANDLE*) {
  return GC_ERR_NOT_IMPLEMENTED;
}
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCUnregisterEvent(EVENTSRC_HANDLE, EVENT_TYPE) { return GC_ERR_NOT_IMPLEMENTED; }
GC_API_EXPORT GC_ERROR GC_CALLTYPE EventGetData(EVENT_HANDLE, void*, size_t*, uint64_t) {
  return GC_ERR_NOT_IMPLEMENTED;
}
GC_API_EXPORT GC_ERROR GC_CALLTYPE EventGetDataInfo(EVENT_HANDLE, const void*, size_t, EVENT_DATA_INFO_CMD,
                                                    INFO_DATATYPE*, void*, size_t*) {
  return GC_ERR_NOT_IMPLEMENTED;
}
GC_API_EXPORT GC_ERROR GC_CALLTYPE EventGetInfo(EVENT_HANDLE, EVENT_INFO_CMD, INFO_DATATYPE*, void*, size_t*) {
  return GC_ERR_NOT_IMPLEMENTED;
}
GC_API_EXPORT GC_ERROR GC_CALLTYPE EventFlush(EVENT_HANDLE) { return GC_ERR_NOT_IMPLEMENTED; }
GC_API_EXPORT GC_ERROR GC_CALLTYPE EventKill(EVENT_HANDLE) { return GC_ERR_NOT_IMPLEMENTED; }

GC_API_EXPORT GC_ERROR GC_CALLTYPE TLOpen(TL_HANDLE* phTL) {
  std::lock_guard<std::recursive_mutex> lock(State().mutex);
  Log("TLOpen");
  if (State().failure == EFakeFailure::TLOpen) {
    return GC_ERR_ERROR;
  }
  *phTL = TALVIR::Testing::FakeSystemHandle();
  return GC_ERR_SUCCESS;
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE TLClose(TL_HANDLE hTL) {
  std::lock_guard<std::recursive_mutex> lock(State().mutex);
  Log(hTL == TALVIR::Testing::FakeSystemHandle() ? "TLClose" : "TLClose bad handle");
  return GC_ERR_SUCCESS;
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE TLGetInfo(TL_HANDLE, TL_INFO_CMD, INFO_DATATYPE*, void*, size_t*) {
  return GC_ERR_NOT_IMPLEMENTED;
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE TLGetNumInterfaces(TL_HANDLE, uint32_t* piNumIfaces) {
  std::lock_guard<std::recursive_mutex> lock(State().mutex);
  if (State().failure == EFakeFailure::GetNumInterfaces) {
    return GC_ERR_ERROR;
  }
  *piNumIfaces = static_cast<uint32_t>(State().interfaces.size());
  return GC_ERR_SUCCESS;
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE TLGetInterfaceID(TL_HANDLE, uint32_t iIndex, char* sID, size_t* piSize) {
  std::lock_guard<std::recursive_mutex> lock(State().mutex);
  Log("TLGetInterfaceID " + std::to_string(iIndex) + " size " + std::to_string(piSize != nullptr ? *piSize : 0));
  if (State().failure == EFakeFailure::GetInterfaceID || iIndex >= State().interfaces.size()) {
    return GC_ERR_INVALID_INDEX;
  }
  return CopyText(State().interfaces[iIndex].id, sID, piSize);
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE TLGetInterfaceInfo(TL_HANDLE, const char*, INTERFACE_INFO_CMD, INFO_DATATYPE*, void*,
                                                      size_t*) {
  return GC_ERR_NOT_IMPLEMENTED;
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE TLOpenInterface(TL_HANDLE, const char* sIfaceID, IF_HANDLE* phIface) {
  std::lock_guard<std::recursive_mutex> lock(State().mutex);
  Log(std::string("TLOpenInterface ") + sIfaceID);
  if (State().failure == EFakeFailure::OpenInterface) {
    return GC_ERR_ERROR;
  }
  for (size_t index = 0; index < State().interfaces.size(); ++index) {
    if (State().interfaces[index].id == sIfaceID) {
      *phIface = TALVIR::Testing::FakeInterfaceHandle(index);
      return GC_ERR_SUCCESS;
    }
  }
  return GC_ERR_INVALID_ID;
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE TLUpdateInterfaceList(TL_HANDLE, bool8_t* pbChanged, uint64_t) {
  std::lock_guard<std::recursive_mutex> lock(State().mutex);
  if (State().failure == EFakeFailure::UpdateInterfaceList) {
    return GC_ERR_ERROR;
  }
  if (pbChanged != nullptr) {
    *pbChanged = 1;
  }
  return GC_ERR_SUCCESS;
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE IFClose(IF_HANDLE hIface) {
  std::lock_guard<std::recursive_mutex> lock(State().mutex);
  Log("IFClose " + std::to_string(InterfaceIndexOf(hIface)));
  return GC_ERR_SUCCESS;
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE IFGetInfo(IF_HANDLE hIface, INTERFACE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                             void* pBuffer, size_t* piSize) {
  std::lock_guard<std::recursive_mutex> lock(State().mutex);
  CFakeInterface* fakeInterface = InterfaceOf(hIface);
  if (fakeInterface == nullptr) {
    return GC_ERR_INVALID_HANDLE;
  }
  if (piType != nullptr) {
    *piType = INFO_DATATYPE_STRING;
  }
  switch (iInfoCmd) {
  case INTERFACE_INFO_ID:
  case INTERFACE_INFO_DISPLAYNAME: return CopyText(fakeInterface->id, pBuffer, piSize);
  case INTERFACE_INFO_TLTYPE: return CopyText(fakeInterface->tlType, pBuffer, piSize);
  default: return GC_ERR_NOT_IMPLEMENTED;
  }
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE IFGetNumDevices(IF_HANDLE hIface, uint32_t* piNumDevices) {
  std::lock_guard<std::recursive_mutex> lock(State().mutex);
  CFakeInterface* fakeInterface = InterfaceOf(hIface);
  if (fakeInterface == nullptr || fakeInterface->failCount) {
    return GC_ERR_ERROR;
  }
  *piNumDevices = static_cast<uint32_t>(fakeInterface->devices.size());
  return GC_ERR_SUCCESS;
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE IFGetDeviceID(IF_HANDLE hIface, uint32_t iIndex, char* sIDeviceID, size_t* piSize) {
  std::lock_guard<std::recursive_mutex> lock(State().mutex);
  CFakeInterface* fakeInterface = InterfaceOf(hIface);
  if (fakeInterface == nullptr || iIndex >= fakeInterface->devices.size()) {
    return GC_ERR_INVALID_INDEX;
  }
  const CFakeDevice& device = fakeInterface->devices[iIndex];
  if (device.failID) {
    return GC_ERR_ERROR;
  }
  if (device.claimedIDSize != 0) {
    // A misbehaving producer: fills the buffer and reports more than it holds.
    std::memset(sIDeviceID, 'x', std::min(*piSize, device.claimedIDSize));
    *piSize = device.claimedIDSize;
    return GC_ERR_SUCCESS;
  }
  return CopyText(device.id, sIDeviceID, piSize);
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE IFUpdateDeviceList(IF_HANDLE hIface, bool8_t* pbChanged, uint64_t) {
  int delayMs = 0;
  {
    std::lock_guard<std::recursive_mutex> lock(State().mutex);
    Log("IFUpdateDeviceList " + std::to_string(InterfaceIndexOf(hIface)));
    CFakeInterface* fakeInterface = InterfaceOf(hIface);
    if (fakeInterface == nullptr || fakeInterface->failUpdate) {
      return GC_ERR_ERROR;
    }
    delayMs = State().updateDelayMs;
  }
  if (delayMs > 0) {
    std::this_thread::sleep_for(std::chrono::milliseconds(delayMs));
  }
  if (pbChanged != nullptr) {
    *pbChanged = 0;
  }
  return GC_ERR_SUCCESS;
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE IFGetDeviceInfo(IF_HANDLE hIface, const char* sDeviceID, DEVICE_INFO_CMD iInfoCmd,
                                                   INFO_DATATYPE* piType, void* pBuffer, size_t* piSize) {
  std::lock_guard<std::recursive_mutex> lock(State().mutex);
  CFakeInterface* fakeInterface = InterfaceOf(hIface);
  if (fakeInterface == nullptr || sDeviceID == nullptr) {
    return GC_ERR_INVALID_HANDLE;
  }
  const CFakeDevice* device = nullptr;
  for (const CFakeDevice& candidate : fakeInterface->devices) {
    if (candidate.id == sDeviceID) {
      device = &candidate;
    }
  }
  if (device == nullptr) {
    return GC_ERR_INVALID_ID;
  }
  if (std::find(device->failingCommands.begin(), device->failingCommands.end(), iInfoCmd) !=
      device->failingCommands.end()) {
    return GC_ERR_ERROR;
  }
  if (piType != nullptr) {
    *piType = INFO_DATATYPE_STRING;
  }
  switch (iInfoCmd) {
  case DEVICE_INFO_ID: return CopyText(device->id, pBuffer, piSize);
  case DEVICE_INFO_VENDOR: return CopyText(device->vendor, pBuffer, piSize);
  case DEVICE_INFO_MODEL: return CopyText(device->model, pBuffer, piSize);
  case DEVICE_INFO_TLTYPE: return CopyText(device->tlType, pBuffer, piSize);
  case DEVICE_INFO_DISPLAYNAME: return CopyText(device->displayName, pBuffer, piSize);
  case DEVICE_INFO_USER_DEFINED_NAME: return CopyText(device->userDefinedName, pBuffer, piSize);
  case DEVICE_INFO_SERIAL_NUMBER: return CopyText(device->serial, pBuffer, piSize);
  case DEVICE_INFO_VERSION: return CopyText(device->version, pBuffer, piSize);
  case DEVICE_INFO_ACCESS_STATUS:
    return CopyNumber(static_cast<uint32_t>(device->accessStatus), 4, piType, pBuffer, piSize);
  case DEVICE_INFO_TIMESTAMP_FREQUENCY: return CopyNumber(device->timestampFrequency, 8, piType, pBuffer, piSize);
  default: break;
  }
  const auto text = device->textInfo.find(iInfoCmd);
  if (text != device->textInfo.end()) {
    // Binary records (the GigE record) are copied whole, zero bytes included.
    if (piSize == nullptr || pBuffer == nullptr || *piSize < text->second.size()) {
      return GC_ERR_BUFFER_TOO_SMALL;
    }
    std::memcpy(pBuffer, text->second.data(), text->second.size());
    if (*piSize > text->second.size()) {
      static_cast<char*>(pBuffer)[text->second.size()] = '\0';
    }
    *piSize = text->second.size() + 1;
    return GC_ERR_SUCCESS;
  }
  const auto typed = device->typedInfo.find(iInfoCmd);
  if (typed != device->typedInfo.end()) {
    if (piSize == nullptr || pBuffer == nullptr || *piSize < typed->second.bytes.size()) {
      return GC_ERR_BUFFER_TOO_SMALL;
    }
    std::memcpy(pBuffer, typed->second.bytes.data(), typed->second.bytes.size());
    *piSize = typed->second.bytes.size();
    if (piType != nullptr) {
      *piType = typed->second.type;
    }
    return GC_ERR_SUCCESS;
  }
  const auto number = device->numberInfo.find(iInfoCmd);
  if (number != device->numberInfo.end()) {
    return CopyNumber(number->second, 8, piType, pBuffer, piSize);
  }
  return GC_ERR_NOT_IMPLEMENTED;
}

GC_API_EXPORT GC_ERROR GC_CALLTYPE IFOpenDevice(IF_HANDLE, const char*, DEVICE_ACCESS_FLAGS, DEV_HANDLE*) {
  return GC_ERR_NOT_IMPLEMENTED;
}
GC_API_EXPORT GC_ERROR GC_CALLTYPE DevGetPort(DEV_HANDLE, PORT_HANDLE*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_API_EXPORT GC_ERROR GC_CALLTYPE DevGetNumDataStreams(DEV_HANDLE, uint32_t*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_API_EXPORT GC_ERROR GC_CALLTYPE DevGetDataStreamID(DEV_HANDLE, uint32_t, char*, size_t*) {
  return GC_ERR_NOT_IMPLEMENTED;
}
GC_API_EXPORT GC_ERROR GC_CALLTYPE DevOpenDataStream(DEV_HANDLE, const char*, DS_HANDLE*) {
  return GC_ERR_NOT_IMPLEMENTED;
}
GC_API_EXPORT GC_ERROR GC_CALLTYPE DevGetInfo(DEV_HANDLE, DEVICE_INFO_CMD, INFO_DATATYPE*, void*, size_t*) {
  return GC_ERR_NOT_IMPLEMENTED;
}
GC_API_EXPORT GC_ERROR GC_CALLTYPE DevClose(DEV_HANDLE) { return GC_ERR_NOT_IMPLEMENTED; }
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSAnnounceBuffer(DS_HANDLE, void*, size_t, void*, BUFFER_HANDLE*) {
  return GC_ERR_NOT_IMPLEMENTED;
}
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSAllocAndAnnounceBuffer(DS_HANDLE, size_t, void*, BUFFER_HANDLE*) {
  return GC_ERR_NOT_IMPLEMENTED;
}
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSFlushQueue(DS_HANDLE, ACQ_QUEUE_TYPE) { return GC_ERR_NOT_IMPLEMENTED; }
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSStartAcquisition(DS_HANDLE, ACQ_START_FLAGS, uint64_t) {
  return GC_ERR_NOT_IMPLEMENTED;
}
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSStopAcquisition(DS_HANDLE, ACQ_STOP_FLAGS) { return GC_ERR_NOT_IMPLEMENTED; }
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetInfo(DS_HANDLE, STREAM_INFO_CMD, INFO_DATATYPE*, void*, size_t*) {
  return GC_ERR_NOT_IMPLEMENTED;
}
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferID(DS_HANDLE, uint32_t, BUFFER_HANDLE*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSClose(DS_HANDLE) { return GC_ERR_NOT_IMPLEMENTED; }
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSRevokeBuffer(DS_HANDLE, BUFFER_HANDLE, void**, void**) {
  return GC_ERR_NOT_IMPLEMENTED;
}
#ifndef FAKE_WITHOUT_QUEUE
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSQueueBuffer(DS_HANDLE, BUFFER_HANDLE) { return GC_ERR_NOT_IMPLEMENTED; }
#endif
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferInfo(DS_HANDLE, BUFFER_HANDLE, BUFFER_INFO_CMD, INFO_DATATYPE*, void*,
                                                   size_t*) {
  return GC_ERR_NOT_IMPLEMENTED;
}
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCGetNumPortURLs(PORT_HANDLE, uint32_t*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCGetPortURLInfo(PORT_HANDLE, uint32_t, URL_INFO_CMD, INFO_DATATYPE*, void*,
                                                    size_t*) {
  return GC_ERR_NOT_IMPLEMENTED;
}
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCReadPortStacked(PORT_HANDLE, PORT_REGISTER_STACK_ENTRY*, size_t*) {
  return GC_ERR_NOT_IMPLEMENTED;
}
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCWritePortStacked(PORT_HANDLE, PORT_REGISTER_STACK_ENTRY*, size_t*) {
  return GC_ERR_NOT_IMPLEMENTED;
}
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferChunkData(DS_HANDLE, BUFFER_HANDLE, SINGLE_CHUNK_DATA*, size_t*) {
  return GC_ERR_NOT_IMPLEMENTED;
}
GC_API_EXPORT GC_ERROR GC_CALLTYPE IFGetParentTL(IF_HANDLE, TL_HANDLE*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_API_EXPORT GC_ERROR GC_CALLTYPE DevGetParentIF(DEV_HANDLE, IF_HANDLE*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetParentDev(DS_HANDLE, DEV_HANDLE*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetNumBufferParts(DS_HANDLE, BUFFER_HANDLE, uint32_t*) {
  return GC_ERR_NOT_IMPLEMENTED;
}
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferPartInfo(DS_HANDLE, BUFFER_HANDLE, uint32_t, BUFFER_PART_INFO_CMD,
                                                       INFO_DATATYPE*, void*, size_t*) {
  return GC_ERR_NOT_IMPLEMENTED;
}

}  // extern "C"
GENTL_NAMESPACE_END
