// The exported device-module functions.
#include "ExportPrelude.h"
#include <cstring>

extern "C" {

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

}  // extern "C"
