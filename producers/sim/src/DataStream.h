#pragma once
// The GenTL data stream module: announced buffers, the input and output queues and the frame generator thread.
#include "Buffer.h"
#include "Camera.h"
#include "Info.h"
#include "Objects.h"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

namespace TalvirSim {

class CDevice;

class CDataStream : public CBankPort, public CEventSource {
public:
  CDataStream(std::shared_ptr<CDevice> device, std::string id);
  ~CDataStream() override;
  void Init();  // connects the camera's wake-up; needs shared_from_this
  CDevice* Parent() const { return m_device.get(); }

  GenTL::BUFFER_HANDLE Announce(void* memory, size_t size, void* user);
  GenTL::BUFFER_HANDLE AllocAndAnnounce(size_t size, void* user);
  void Revoke(GenTL::BUFFER_HANDLE handle, void** memory, void** user);
  void Queue(GenTL::BUFFER_HANDLE handle);
  void Flush(GenTL::ACQ_QUEUE_TYPE operation);
  void Start(GenTL::ACQ_START_FLAGS flags, uint64_t count);
  void Stop(GenTL::ACQ_STOP_FLAGS flags);
  void GetInfo(GenTL::STREAM_INFO_CMD command, const SInfoOut& out);
  GenTL::BUFFER_HANDLE BufferId(uint32_t index);
  void BufferInfo(GenTL::BUFFER_HANDLE handle, GenTL::BUFFER_INFO_CMD command, const SInfoOut& out);
  void ChunkData(GenTL::BUFFER_HANDLE handle, GenTL::SINGLE_CHUNK_DATA* chunks, size_t* count);
  uint32_t NumParts(GenTL::BUFFER_HANDLE handle);
  void Close();

  // The new-buffer event's side.
  void WaitNewBuffer(void* buffer, size_t* size, uint64_t timeoutMs);
  void KillWait();
  void ShutdownWaits();
  void FlushOutput();
  size_t OutputCount();
  uint64_t Delivered();

  std::string PortId() override { return m_id; }
  std::string PortModuleName() override { return "TLDataStream"; }

protected:
  std::shared_ptr<CEvent> MakeEvent(GenTL::EVENT_TYPE type) override;

private:
  CBuffer* FindLocked(GenTL::BUFFER_HANDLE handle);
  void Wake();
  void Generate();
  bool InputSufficientLocked() const;
  void FillBuffer(CBuffer& buffer, const SFrameJob& job);
  void StopLocked(std::unique_lock<std::mutex>& lock, bool kill);

  std::shared_ptr<CDevice> m_device;
  std::shared_ptr<CSimCamera> m_camera;
  std::string m_id;

  std::mutex m_mutex;
  std::condition_variable m_generatorCv;
  std::condition_variable m_consumerCv;
  std::vector<std::unique_ptr<CBuffer>> m_buffers;
  std::unordered_map<void*, CBuffer*> m_byHandle;
  std::deque<CBuffer*> m_input;
  std::deque<CBuffer*> m_output;
  bool m_running = false;        // between DSStartAcquisition and DSStopAcquisition
  bool m_generatorDone = false;  // the generator ended by itself (count reached, device lost)
  bool m_stopRequested = false;
  bool m_killRequested = false;
  bool m_wakeFlag = false;
  bool m_generatorWaiting = false;
  int m_consumersWaiting = 0;
  size_t m_pendingKills = 0;
  bool m_waitShutdown = false;
  uint64_t m_toAcquire = 0;
  uint64_t m_acquiredThisRun = 0;
  uint64_t m_delivered = 0;
  uint64_t m_underruns = 0;
  uint64_t m_started = 0;
  std::thread m_generator;
  bool m_closed = false;
};

}  // namespace TalvirSim
