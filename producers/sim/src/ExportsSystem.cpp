// The exported system-module functions.
#include "ExportPrelude.h"
#include <cstring>

extern "C" {

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

GC_API_EXPORT GC_ERROR GC_CALLTYPE TLGetInfo(TL_HANDLE hTL, TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                                             size_t* piSize) {
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

GC_API_EXPORT GC_ERROR GC_CALLTYPE TLGetInterfaceInfo(TL_HANDLE hTL, const char* sIfaceID, INTERFACE_INFO_CMD iInfoCmd,
                                                      INFO_DATATYPE* piType, void* pBuffer, size_t* piSize) {
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

}  // extern "C"
