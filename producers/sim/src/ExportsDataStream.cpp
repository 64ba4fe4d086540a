// The exported data-stream functions and the USB3 Vision status hook.
#include "ExportPrelude.h"
#include <cstring>

extern "C" {

// ---- Data stream ----

GC_API_EXPORT GC_ERROR GC_CALLTYPE DSAnnounceBuffer(DS_HANDLE hDataStream, void* pBuffer, size_t iSize, void* pPrivate,
                                                    BUFFER_HANDLE* phBuffer) {
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
  return Guarded([&] {
    Lib().Get<CDataStream>(hDataStream, "data stream")->GetInfo(iInfoCmd, {piType, pBuffer, piSize});
  });
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

}  // extern "C"
