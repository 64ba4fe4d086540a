#include "NewBufferEvent.h"

#include "DataStream.h"

namespace TalvirSim {

std::shared_ptr<CDataStream> CNewBufferEvent::Stream() {
  auto stream = m_stream.lock();
  if (!stream) {
    Fail(GenTL::GC_ERR_ABORT, "the data stream was closed");
  }
  return stream;
}

void CNewBufferEvent::GetData(void* buffer, size_t* size, uint64_t timeoutMs) {
  size_t ignored = sizeof(GenTL::EVENT_NEW_BUFFER_DATA);
  Stream()->WaitNewBuffer(buffer, size != nullptr ? size : (buffer == nullptr ? &ignored : nullptr), timeoutMs);
}

void CNewBufferEvent::GetInfo(GenTL::EVENT_INFO_CMD command, const SInfoOut& out) {
  auto stream = Stream();
  switch (command) {
  case GenTL::EVENT_EVENT_TYPE: return PutI32(out, Type());
  case GenTL::EVENT_NUM_IN_QUEUE: return PutSize(out, stream->OutputCount());
  case GenTL::EVENT_NUM_FIRED: return PutU64(out, stream->Delivered());
  case GenTL::EVENT_SIZE_MAX:
  case GenTL::EVENT_INFO_DATA_SIZE_MAX: return PutSize(out, sizeof(GenTL::EVENT_NEW_BUFFER_DATA));
  default: Fail(GenTL::GC_ERR_INVALID_ID, "unknown event info command " + std::to_string(command));
  }
}

void CNewBufferEvent::Flush() { Stream()->FlushOutput(); }

void CNewBufferEvent::Kill() { Stream()->KillWait(); }

void CNewBufferEvent::Shutdown() {
  if (auto stream = m_stream.lock()) {
    stream->ShutdownWaits();
  }
}

}  // namespace TalvirSim
