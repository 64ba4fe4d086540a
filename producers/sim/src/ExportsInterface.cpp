// The exported interface-module functions.
#include "ExportPrelude.h"
#include <cstring>

extern "C" {

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

GC_API_EXPORT GC_ERROR GC_CALLTYPE IFGetDeviceID(IF_HANDLE hIface, uint32_t iIndex, char* sIDeviceID, size_t* piSize) {
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

GC_API_EXPORT GC_ERROR GC_CALLTYPE IFOpenDevice(IF_HANDLE hIface, const char* sDeviceID, DEVICE_ACCESS_FLAGS iOpenFlags,
                                                DEV_HANDLE* phDevice) {
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

}  // extern "C"
