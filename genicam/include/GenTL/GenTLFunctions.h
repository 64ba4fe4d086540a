#ifndef TALVIR_GENTL_FUNCTIONS_H
#define TALVIR_GENTL_FUNCTIONS_H
/* The functions a GenTL producer exports, and a pointer type for each (PFN_<name>) for consumers that bind them at
 * run time. The first list holds the 57 functions of the 1.5 interface, in the order in which our consumer binds them;
 * the second the additions of 1.6. GENTL_FOR_EACH_FUNCTION_1_5(X) / GENTL_FOR_EACH_FUNCTION_1_6(X) expand X(name) once per
 * function, in that order, for tables that must cover every function. */

#include "GenTLTypes.h"

GENTL_NAMESPACE_BEGIN
GENTL_EXTERN_C_BEGIN

/* ---- GenTL 1.5 ---- */
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCGetInfo(TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                                             size_t* piSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCGetLastError(GC_ERROR* piErrorCode, char* sErrorText, size_t* piSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCInitLib(void);
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCCloseLib(void);
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCReadPort(PORT_HANDLE hPort, uint64_t iAddress, void* pBuffer, size_t* piSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCWritePort(PORT_HANDLE hPort, uint64_t iAddress, const void* pBuffer,
                                               size_t* piSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCGetPortURL(PORT_HANDLE hPort, char* sURL, size_t* piSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCGetPortInfo(PORT_HANDLE hPort, PORT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                                 void* pBuffer, size_t* piSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCRegisterEvent(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE iEventID,
                                                   EVENT_HANDLE* phEvent);
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCUnregisterEvent(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE iEventID);
GC_API_EXPORT GC_ERROR GC_CALLTYPE EventGetData(EVENT_HANDLE hEvent, void* pBuffer, size_t* piSize, uint64_t iTimeout);
GC_API_EXPORT GC_ERROR GC_CALLTYPE EventGetDataInfo(EVENT_HANDLE hEvent, const void* pInBuffer, size_t iInSize,
                                                    EVENT_DATA_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                                    void* pOutBuffer, size_t* piOutSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE EventGetInfo(EVENT_HANDLE hEvent, EVENT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                                void* pBuffer, size_t* piSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE EventFlush(EVENT_HANDLE hEvent);
GC_API_EXPORT GC_ERROR GC_CALLTYPE EventKill(EVENT_HANDLE hEvent);
GC_API_EXPORT GC_ERROR GC_CALLTYPE TLOpen(TL_HANDLE* phTL);
GC_API_EXPORT GC_ERROR GC_CALLTYPE TLClose(TL_HANDLE hTL);
GC_API_EXPORT GC_ERROR GC_CALLTYPE TLGetInfo(TL_HANDLE hTL, TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                                             size_t* piSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE TLGetNumInterfaces(TL_HANDLE hTL, uint32_t* piNumIfaces);
GC_API_EXPORT GC_ERROR GC_CALLTYPE TLGetInterfaceID(TL_HANDLE hTL, uint32_t iIndex, char* sID, size_t* piSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE TLGetInterfaceInfo(TL_HANDLE hTL, const char* sIfaceID, INTERFACE_INFO_CMD iInfoCmd,
                                                      INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE TLOpenInterface(TL_HANDLE hTL, const char* sIfaceID, IF_HANDLE* phIface);
GC_API_EXPORT GC_ERROR GC_CALLTYPE TLUpdateInterfaceList(TL_HANDLE hTL, bool8_t* pbChanged, uint64_t iTimeout);
GC_API_EXPORT GC_ERROR GC_CALLTYPE IFClose(IF_HANDLE hIface);
GC_API_EXPORT GC_ERROR GC_CALLTYPE IFGetInfo(IF_HANDLE hIface, INTERFACE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                             void* pBuffer, size_t* piSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE IFGetNumDevices(IF_HANDLE hIface, uint32_t* piNumDevices);
GC_API_EXPORT GC_ERROR GC_CALLTYPE IFGetDeviceID(IF_HANDLE hIface, uint32_t iIndex, char* sIDeviceID, size_t* piSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE IFUpdateDeviceList(IF_HANDLE hIface, bool8_t* pbChanged, uint64_t iTimeout);
GC_API_EXPORT GC_ERROR GC_CALLTYPE IFGetDeviceInfo(IF_HANDLE hIface, const char* sDeviceID, DEVICE_INFO_CMD iInfoCmd,
                                                   INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE IFOpenDevice(IF_HANDLE hIface, const char* sDeviceID, DEVICE_ACCESS_FLAGS iOpenFlags,
                                                DEV_HANDLE* phDevice);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DevGetPort(DEV_HANDLE hDevice, PORT_HANDLE* phRemoteDevice);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DevGetNumDataStreams(DEV_HANDLE hDevice, uint32_t* piNumDataStreams);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DevGetDataStreamID(DEV_HANDLE hDevice, uint32_t iIndex, char* sDataStreamID,
                                                      size_t* piSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DevOpenDataStream(DEV_HANDLE hDevice, const char* sDataStreamID,
                                                     DS_HANDLE* phDataStream);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DevGetInfo(DEV_HANDLE hDevice, DEVICE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                              void* pBuffer, size_t* piSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DevClose(DEV_HANDLE hDevice);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSAnnounceBuffer(DS_HANDLE hDataStream, void* pBuffer, size_t iSize, void* pPrivate,
                                                    BUFFER_HANDLE* phBuffer);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSAllocAndAnnounceBuffer(DS_HANDLE hDataStream, size_t iSize, void* pPrivate,
                                                            BUFFER_HANDLE* phBuffer);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSFlushQueue(DS_HANDLE hDataStream, ACQ_QUEUE_TYPE iOperation);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSStartAcquisition(DS_HANDLE hDataStream, ACQ_START_FLAGS iStartFlags,
                                                      uint64_t iNumToAcquire);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSStopAcquisition(DS_HANDLE hDataStream, ACQ_STOP_FLAGS iStopFlags);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetInfo(DS_HANDLE hDataStream, STREAM_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                             void* pBuffer, size_t* piSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferID(DS_HANDLE hDataStream, uint32_t iIndex, BUFFER_HANDLE* phBuffer);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSClose(DS_HANDLE hDataStream);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSRevokeBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, void** pBuffer,
                                                  void** pPrivate);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSQueueBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferInfo(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                   BUFFER_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                                                   size_t* piSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCGetNumPortURLs(PORT_HANDLE hPort, uint32_t* piNumURLs);
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCGetPortURLInfo(PORT_HANDLE hPort, uint32_t iURLIndex, URL_INFO_CMD iInfoCmd,
                                                    INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCReadPortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries,
                                                     size_t* piNumEntries);
GC_API_EXPORT GC_ERROR GC_CALLTYPE GCWritePortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries,
                                                      size_t* piNumEntries);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferChunkData(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                        SINGLE_CHUNK_DATA* pChunkData, size_t* piNumChunks);
GC_API_EXPORT GC_ERROR GC_CALLTYPE IFGetParentTL(IF_HANDLE hIface, TL_HANDLE* phSystem);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DevGetParentIF(DEV_HANDLE hDevice, IF_HANDLE* phIface);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetParentDev(DS_HANDLE hDataStream, DEV_HANDLE* phDevice);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetNumBufferParts(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                       uint32_t* piNumParts);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferPartInfo(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                       uint32_t iPartIndex, BUFFER_PART_INFO_CMD iInfoCmd,
                                                       INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);

typedef GC_ERROR(GC_CALLTYPE* PFN_GCGetInfo)(TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                                             size_t* piSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_GCGetLastError)(GC_ERROR* piErrorCode, char* sErrorText, size_t* piSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_GCInitLib)(void);
typedef GC_ERROR(GC_CALLTYPE* PFN_GCCloseLib)(void);
typedef GC_ERROR(GC_CALLTYPE* PFN_GCReadPort)(PORT_HANDLE hPort, uint64_t iAddress, void* pBuffer, size_t* piSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_GCWritePort)(PORT_HANDLE hPort, uint64_t iAddress, const void* pBuffer,
                                               size_t* piSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_GCGetPortURL)(PORT_HANDLE hPort, char* sURL, size_t* piSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_GCGetPortInfo)(PORT_HANDLE hPort, PORT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                                 void* pBuffer, size_t* piSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_GCRegisterEvent)(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE iEventID,
                                                   EVENT_HANDLE* phEvent);
typedef GC_ERROR(GC_CALLTYPE* PFN_GCUnregisterEvent)(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE iEventID);
typedef GC_ERROR(GC_CALLTYPE* PFN_EventGetData)(EVENT_HANDLE hEvent, void* pBuffer, size_t* piSize, uint64_t iTimeout);
typedef GC_ERROR(GC_CALLTYPE* PFN_EventGetDataInfo)(EVENT_HANDLE hEvent, const void* pInBuffer, size_t iInSize,
                                                    EVENT_DATA_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                                    void* pOutBuffer, size_t* piOutSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_EventGetInfo)(EVENT_HANDLE hEvent, EVENT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                                void* pBuffer, size_t* piSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_EventFlush)(EVENT_HANDLE hEvent);
typedef GC_ERROR(GC_CALLTYPE* PFN_EventKill)(EVENT_HANDLE hEvent);
typedef GC_ERROR(GC_CALLTYPE* PFN_TLOpen)(TL_HANDLE* phTL);
typedef GC_ERROR(GC_CALLTYPE* PFN_TLClose)(TL_HANDLE hTL);
typedef GC_ERROR(GC_CALLTYPE* PFN_TLGetInfo)(TL_HANDLE hTL, TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                                             size_t* piSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_TLGetNumInterfaces)(TL_HANDLE hTL, uint32_t* piNumIfaces);
typedef GC_ERROR(GC_CALLTYPE* PFN_TLGetInterfaceID)(TL_HANDLE hTL, uint32_t iIndex, char* sID, size_t* piSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_TLGetInterfaceInfo)(TL_HANDLE hTL, const char* sIfaceID, INTERFACE_INFO_CMD iInfoCmd,
                                                      INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_TLOpenInterface)(TL_HANDLE hTL, const char* sIfaceID, IF_HANDLE* phIface);
typedef GC_ERROR(GC_CALLTYPE* PFN_TLUpdateInterfaceList)(TL_HANDLE hTL, bool8_t* pbChanged, uint64_t iTimeout);
typedef GC_ERROR(GC_CALLTYPE* PFN_IFClose)(IF_HANDLE hIface);
typedef GC_ERROR(GC_CALLTYPE* PFN_IFGetInfo)(IF_HANDLE hIface, INTERFACE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                             void* pBuffer, size_t* piSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_IFGetNumDevices)(IF_HANDLE hIface, uint32_t* piNumDevices);
typedef GC_ERROR(GC_CALLTYPE* PFN_IFGetDeviceID)(IF_HANDLE hIface, uint32_t iIndex, char* sIDeviceID, size_t* piSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_IFUpdateDeviceList)(IF_HANDLE hIface, bool8_t* pbChanged, uint64_t iTimeout);
typedef GC_ERROR(GC_CALLTYPE* PFN_IFGetDeviceInfo)(IF_HANDLE hIface, const char* sDeviceID, DEVICE_INFO_CMD iInfoCmd,
                                                   INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_IFOpenDevice)(IF_HANDLE hIface, const char* sDeviceID, DEVICE_ACCESS_FLAGS iOpenFlags,
                                                DEV_HANDLE* phDevice);
typedef GC_ERROR(GC_CALLTYPE* PFN_DevGetPort)(DEV_HANDLE hDevice, PORT_HANDLE* phRemoteDevice);
typedef GC_ERROR(GC_CALLTYPE* PFN_DevGetNumDataStreams)(DEV_HANDLE hDevice, uint32_t* piNumDataStreams);
typedef GC_ERROR(GC_CALLTYPE* PFN_DevGetDataStreamID)(DEV_HANDLE hDevice, uint32_t iIndex, char* sDataStreamID,
                                                      size_t* piSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_DevOpenDataStream)(DEV_HANDLE hDevice, const char* sDataStreamID,
                                                     DS_HANDLE* phDataStream);
typedef GC_ERROR(GC_CALLTYPE* PFN_DevGetInfo)(DEV_HANDLE hDevice, DEVICE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                              void* pBuffer, size_t* piSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_DevClose)(DEV_HANDLE hDevice);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSAnnounceBuffer)(DS_HANDLE hDataStream, void* pBuffer, size_t iSize, void* pPrivate,
                                                    BUFFER_HANDLE* phBuffer);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSAllocAndAnnounceBuffer)(DS_HANDLE hDataStream, size_t iSize, void* pPrivate,
                                                            BUFFER_HANDLE* phBuffer);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSFlushQueue)(DS_HANDLE hDataStream, ACQ_QUEUE_TYPE iOperation);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSStartAcquisition)(DS_HANDLE hDataStream, ACQ_START_FLAGS iStartFlags,
                                                      uint64_t iNumToAcquire);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSStopAcquisition)(DS_HANDLE hDataStream, ACQ_STOP_FLAGS iStopFlags);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSGetInfo)(DS_HANDLE hDataStream, STREAM_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                             void* pBuffer, size_t* piSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSGetBufferID)(DS_HANDLE hDataStream, uint32_t iIndex, BUFFER_HANDLE* phBuffer);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSClose)(DS_HANDLE hDataStream);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSRevokeBuffer)(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, void** pBuffer,
                                                  void** pPrivate);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSQueueBuffer)(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSGetBufferInfo)(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                   BUFFER_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                                                   size_t* piSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_GCGetNumPortURLs)(PORT_HANDLE hPort, uint32_t* piNumURLs);
typedef GC_ERROR(GC_CALLTYPE* PFN_GCGetPortURLInfo)(PORT_HANDLE hPort, uint32_t iURLIndex, URL_INFO_CMD iInfoCmd,
                                                    INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_GCReadPortStacked)(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries,
                                                     size_t* piNumEntries);
typedef GC_ERROR(GC_CALLTYPE* PFN_GCWritePortStacked)(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries,
                                                      size_t* piNumEntries);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSGetBufferChunkData)(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                        SINGLE_CHUNK_DATA* pChunkData, size_t* piNumChunks);
typedef GC_ERROR(GC_CALLTYPE* PFN_IFGetParentTL)(IF_HANDLE hIface, TL_HANDLE* phSystem);
typedef GC_ERROR(GC_CALLTYPE* PFN_DevGetParentIF)(DEV_HANDLE hDevice, IF_HANDLE* phIface);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSGetParentDev)(DS_HANDLE hDataStream, DEV_HANDLE* phDevice);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSGetNumBufferParts)(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                       uint32_t* piNumParts);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSGetBufferPartInfo)(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                       uint32_t iPartIndex, BUFFER_PART_INFO_CMD iInfoCmd,
                                                       INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);

/* ---- GenTL 1.6 additions ---- */
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferInfoStacked(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                          DS_BUFFER_INFO_STACKED* pInfoStacked, size_t iNumInfos);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferPartInfoStacked(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                              DS_BUFFER_PART_INFO_STACKED* pInfoStacked,
                                                              size_t iNumInfos);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetNumFlows(DS_HANDLE hDataStream, uint32_t* piNumFlows);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetFlowInfo(DS_HANDLE hDataStream, uint32_t iFlowIndex, FLOW_INFO_CMD iInfoCmd,
                                                 INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetNumBufferSegments(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                          uint32_t* piNumSegments);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSGetBufferSegmentInfo(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                          uint32_t iSegmentIndex, SEGMENT_INFO_CMD iInfoCmd,
                                                          INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
GC_API_EXPORT GC_ERROR GC_CALLTYPE DSAnnounceCompositeBuffer(DS_HANDLE hDataStream, size_t iNumSegments,
                                                             void** ppSegments, size_t* piSizes, void* pPrivate,
                                                             BUFFER_HANDLE* phBuffer);

typedef GC_ERROR(GC_CALLTYPE* PFN_DSGetBufferInfoStacked)(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                          DS_BUFFER_INFO_STACKED* pInfoStacked, size_t iNumInfos);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSGetBufferPartInfoStacked)(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                              DS_BUFFER_PART_INFO_STACKED* pInfoStacked,
                                                              size_t iNumInfos);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSGetNumFlows)(DS_HANDLE hDataStream, uint32_t* piNumFlows);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSGetFlowInfo)(DS_HANDLE hDataStream, uint32_t iFlowIndex, FLOW_INFO_CMD iInfoCmd,
                                                 INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSGetNumBufferSegments)(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                          uint32_t* piNumSegments);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSGetBufferSegmentInfo)(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                          uint32_t iSegmentIndex, SEGMENT_INFO_CMD iInfoCmd,
                                                          INFO_DATATYPE* piType, void* pBuffer, size_t* piSize);
typedef GC_ERROR(GC_CALLTYPE* PFN_DSAnnounceCompositeBuffer)(DS_HANDLE hDataStream, size_t iNumSegments,
                                                             void** ppSegments, size_t* piSizes, void* pPrivate,
                                                             BUFFER_HANDLE* phBuffer);

GENTL_EXTERN_C_END
GENTL_NAMESPACE_END

#define GENTL_FOR_EACH_FUNCTION_1_5(X) \
  X(GCGetInfo) \
  X(GCGetLastError) \
  X(GCInitLib) \
  X(GCCloseLib) \
  X(GCReadPort) \
  X(GCWritePort) \
  X(GCGetPortURL) \
  X(GCGetPortInfo) \
  X(GCRegisterEvent) \
  X(GCUnregisterEvent) \
  X(EventGetData) \
  X(EventGetDataInfo) \
  X(EventGetInfo) \
  X(EventFlush) \
  X(EventKill) \
  X(TLOpen) \
  X(TLClose) \
  X(TLGetInfo) \
  X(TLGetNumInterfaces) \
  X(TLGetInterfaceID) \
  X(TLGetInterfaceInfo) \
  X(TLOpenInterface) \
  X(TLUpdateInterfaceList) \
  X(IFClose) \
  X(IFGetInfo) \
  X(IFGetNumDevices) \
  X(IFGetDeviceID) \
  X(IFUpdateDeviceList) \
  X(IFGetDeviceInfo) \
  X(IFOpenDevice) \
  X(DevGetPort) \
  X(DevGetNumDataStreams) \
  X(DevGetDataStreamID) \
  X(DevOpenDataStream) \
  X(DevGetInfo) \
  X(DevClose) \
  X(DSAnnounceBuffer) \
  X(DSAllocAndAnnounceBuffer) \
  X(DSFlushQueue) \
  X(DSStartAcquisition) \
  X(DSStopAcquisition) \
  X(DSGetInfo) \
  X(DSGetBufferID) \
  X(DSClose) \
  X(DSRevokeBuffer) \
  X(DSQueueBuffer) \
  X(DSGetBufferInfo) \
  X(GCGetNumPortURLs) \
  X(GCGetPortURLInfo) \
  X(GCReadPortStacked) \
  X(GCWritePortStacked) \
  X(DSGetBufferChunkData) \
  X(IFGetParentTL) \
  X(DevGetParentIF) \
  X(DSGetParentDev) \
  X(DSGetNumBufferParts) \
  X(DSGetBufferPartInfo)

#define GENTL_FOR_EACH_FUNCTION_1_6(X) \
  X(DSGetBufferInfoStacked) \
  X(DSGetBufferPartInfoStacked) \
  X(DSGetNumFlows) \
  X(DSGetFlowInfo) \
  X(DSGetNumBufferSegments) \
  X(DSGetBufferSegmentInfo) \
  X(DSAnnounceCompositeBuffer)

#endif
