#pragma once
// EVENT_NEW_BUFFER of a data stream.
#include "Info.h"
#include "Objects.h"

#include <memory>

namespace TalvirSim {

class CDataStream;

// EVENT_NEW_BUFFER of a data stream: waits on the stream's output queue.
class CNewBufferEvent : public CEvent {
public:
  explicit CNewBufferEvent(std::weak_ptr<CDataStream> stream)
      : CEvent(GenTL::EVENT_NEW_BUFFER), m_stream(std::move(stream)) {}
  void GetData(void* buffer, size_t* size, uint64_t timeoutMs) override;
  void GetInfo(GenTL::EVENT_INFO_CMD command, const SInfoOut& out) override;
  void Flush() override;
  void Kill() override;
  void Shutdown() override;

private:
  std::shared_ptr<CDataStream> Stream();
  std::weak_ptr<CDataStream> m_stream;
};

}  // namespace TalvirSim
