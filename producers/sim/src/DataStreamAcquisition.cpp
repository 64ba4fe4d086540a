// The data stream's frame generator: filling buffers with frames and chunks, and handing them to the consumer.
#include "DataStream.h"

#include "Bytes.h"
#include "Device.h"
#include "Library.h"
#include "talvirsim/SimRegisters.h"

#include <algorithm>
#include <chrono>
#include <cstring>

namespace TalvirSim {
namespace {

using Clock = std::chrono::steady_clock;

}  // namespace

bool CDataStream::InputSufficientLocked() const {
  // Waking the generator for every returned buffer costs a thread switch per frame; a few at a time is cheaper, but
  // never while the consumer has nothing left to take.
  const size_t batch = std::max<size_t>(1, m_buffers.size() / 4);
  return m_input.size() >= batch || (!m_input.empty() && m_output.empty());
}

void CDataStream::FillBuffer(CBuffer& buffer, const SFrameJob& job) {
  auto* base = static_cast<uint8_t*>(buffer.base);
  buffer.job = job;
  buffer.chunks.clear();
  buffer.dataLarger = job.payloadSize > buffer.size;
  const size_t imageBytes = std::min(job.imageSize, buffer.size);
  if (job.format != nullptr) {
    FillImage(*job.format, job.width, job.height, job.frameId, base, imageBytes);
  }
  size_t filled = imageBytes;
  if (job.incomplete) {
    // Packets lost in transit: the second half of the image never arrives and stays zero.
    const size_t arrived = job.imageSize / 2;
    if (arrived < imageBytes) {
      std::memset(base + arrived, 0, imageBytes - arrived);
    }
    filled = std::min(arrived, imageBytes);
  }
  if (job.chunkMode) {
    // GigE-style chunk layout: each chunk's data followed by its ID and length, big-endian.
    size_t at = job.imageSize;
    auto trailer = [&](uint32_t id, size_t length) {
      if (at + 8 <= buffer.size) {
        WriteBE32(base + at, id);
        WriteBE32(base + at + 4, static_cast<uint32_t>(length));
      }
      at += 8;
    };
    trailer(Remote::kChunkIdImage, job.imageSize);
    const uint32_t ids[3] = {Remote::kChunkIdTimestamp, Remote::kChunkIdFrameID, Remote::kChunkIdExposureTime};
    for (int i = 0; i < 3; ++i) {
      if (!job.chunkEnabled[i]) {
        continue;
      }
      if (at + 16 <= buffer.size) {
        uint64_t value = job.timestamp;
        if (i == 1) {
          value = job.frameId;
        } else if (i == 2) {
          std::memcpy(&value, &job.exposureTime, 8);
        }
        WriteBE64(base + at, value);
        buffer.chunks.push_back({ids[i], static_cast<ptrdiff_t>(at), 8});
      }
      at += 8;
      trailer(ids[i], 8);
    }
    if (!job.incomplete) {
      filled = std::min(at, buffer.size);
    }
  }
  buffer.incomplete = job.incomplete || buffer.dataLarger;
  buffer.sizeFilled = filled;
  buffer.newData = true;
  if (Lib().Config().flavour == EFlavour::GEV) {
    const uint64_t perPacket = job.packetSize > 36 ? job.packetSize - 36 : 1;
    const uint64_t packets = (job.payloadSize + perPacket - 1) / perPacket;
    buffer.packets[0] = job.incomplete ? packets - packets / 2 : packets;
    buffer.packets[1] = job.incomplete ? 1 : 0;
    buffer.packets[2] = job.incomplete ? packets / 2 : 0;
  }
}

void CDataStream::WaitNewBuffer(void* out, size_t* size, uint64_t timeoutMs) {
  if (size == nullptr) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, "the size pointer is null");
  }
  if (out != nullptr && *size < sizeof(GenTL::EVENT_NEW_BUFFER_DATA)) {
    const size_t given = *size;
    *size = sizeof(GenTL::EVENT_NEW_BUFFER_DATA);
    Fail(GenTL::GC_ERR_BUFFER_TOO_SMALL, "new-buffer data is 16 bytes, buffer of " + std::to_string(given));
  }
  std::unique_lock<std::mutex> lock(m_mutex);
  const bool forever = timeoutMs >= 0xFFFFFFFFull;
  const Clock::time_point deadline = forever ? Clock::time_point::max()
                                             : Clock::now() + std::chrono::milliseconds(timeoutMs);
  for (;;) {
    if (m_waitShutdown) {
      Fail(GenTL::GC_ERR_ABORT, "the new-buffer event was unregistered");
    }
    if (m_pendingKills > 0) {
      --m_pendingKills;
      Fail(GenTL::GC_ERR_ABORT, "the wait was ended by EventKill");
    }
    if (!m_output.empty()) {
      break;
    }
    if (m_camera->IsLost()) {
      Fail(GenTL::GC_ERR_IO, "the device " + m_camera->Config().id + " is lost");
    }
    if (!forever && Clock::now() >= deadline) {
      Fail(GenTL::GC_ERR_TIMEOUT, "no buffer within " + std::to_string(timeoutMs) + " ms");
    }
    if (m_generatorWaiting && !m_input.empty()) {
      m_generatorCv.notify_one();  // the consumer runs dry: the generator must not wait for a fuller input queue
    }
    ++m_consumersWaiting;
    if (forever) {
      m_consumerCv.wait(lock);
    } else {
      m_consumerCv.wait_until(lock, deadline);
    }
    --m_consumersWaiting;
  }
  CBuffer* buffer = m_output.front();
  m_output.pop_front();
  buffer->state = CBuffer::EState::Unqueued;  // delivered: the consumer holds it until it queues it again
  if (out != nullptr) {
    GenTL::EVENT_NEW_BUFFER_DATA data{buffer, buffer->userPointer};
    std::memcpy(out, &data, sizeof data);
    *size = sizeof data;
  }
}

void CDataStream::KillWait() {
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_pendingKills;
  }
  m_consumerCv.notify_all();
}

void CDataStream::ShutdownWaits() {
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_waitShutdown = true;
  }
  m_consumerCv.notify_all();
}

void CDataStream::FlushOutput() {
  std::lock_guard<std::mutex> lock(m_mutex);
  for (CBuffer* buffer : m_output) {
    buffer->state = CBuffer::EState::Unqueued;
  }
  m_output.clear();
}

size_t CDataStream::OutputCount() {
  std::lock_guard<std::mutex> lock(m_mutex);
  return m_output.size();
}

uint64_t CDataStream::Delivered() {
  std::lock_guard<std::mutex> lock(m_mutex);
  return m_delivered;
}

void CDataStream::GetInfo(GenTL::STREAM_INFO_CMD command, const SInfoOut& out) {
  std::unique_lock<std::mutex> lock(m_mutex);
  switch (command) {
  case GenTL::STREAM_INFO_ID: return PutString(out, m_id);
  case GenTL::STREAM_INFO_NUM_DELIVERED: return PutU64(out, m_delivered);
  case GenTL::STREAM_INFO_NUM_UNDERRUN: return PutU64(out, m_underruns);
  case GenTL::STREAM_INFO_NUM_ANNOUNCED: return PutSize(out, m_buffers.size());
  case GenTL::STREAM_INFO_NUM_QUEUED: {
    size_t queued = m_input.size();
    for (const auto& buffer : m_buffers) {
      queued += buffer->state == CBuffer::EState::Filling ? 1 : 0;
    }
    return PutSize(out, queued);
  }
  case GenTL::STREAM_INFO_NUM_AWAIT_DELIVERY: return PutSize(out, m_output.size());
  case GenTL::STREAM_INFO_NUM_STARTED: return PutU64(out, m_started);
  case GenTL::STREAM_INFO_PAYLOAD_SIZE: lock.unlock(); return PutSize(out, m_camera->PayloadSize());
  case GenTL::STREAM_INFO_IS_GRABBING: return PutBool(out, m_running && !m_generatorDone);
  case GenTL::STREAM_INFO_DEFINES_PAYLOADSIZE:
    return PutBool(out, Lib().Config().flavour == EFlavour::CXP || Lib().Config().flavour == EFlavour::CL);
  case GenTL::STREAM_INFO_TLTYPE: return PutString(out, Lib().Config().tlType);
  case GenTL::STREAM_INFO_NUM_CHUNKS_MAX: return PutSize(out, 3);
  case GenTL::STREAM_INFO_BUF_ANNOUNCE_MIN: return PutSize(out, m_camera->Config().bufferAnnounceMin);
  case GenTL::STREAM_INFO_BUF_ALIGNMENT: return PutSize(out, 1);
  case GenTL::STREAM_INFO_FLOW_TABLE:
  case GenTL::STREAM_INFO_GENDC_PREFETCH_DESCRIPTOR:
    Fail(GenTL::GC_ERR_NOT_AVAILABLE, "the stream has no flows and no GenDC descriptor");
  default: Fail(GenTL::GC_ERR_INVALID_ID, "unknown stream info command " + std::to_string(command));
  }
}

GenTL::BUFFER_HANDLE CDataStream::BufferId(uint32_t index) {
  std::lock_guard<std::mutex> lock(m_mutex);
  if (index >= m_buffers.size()) {
    Fail(GenTL::GC_ERR_INVALID_INDEX,
         "buffer index " + std::to_string(index) + " of " + std::to_string(m_buffers.size()));
  }
  return m_buffers[index].get();
}

void CDataStream::BufferInfo(GenTL::BUFFER_HANDLE handle, GenTL::BUFFER_INFO_CMD command, const SInfoOut& out) {
  std::lock_guard<std::mutex> lock(m_mutex);
  const CBuffer& buffer = *FindLocked(handle);
  const SFrameJob& job = buffer.job;
  const bool filled = buffer.newData;
  switch (command) {
  case GenTL::BUFFER_INFO_BASE: return PutPtr(out, buffer.base);
  case GenTL::BUFFER_INFO_SIZE: return PutSize(out, buffer.size);
  case GenTL::BUFFER_INFO_USER_PTR: return PutPtr(out, buffer.userPointer);
  case GenTL::BUFFER_INFO_TIMESTAMP: return PutU64(out, filled ? job.timestamp : 0);
  case GenTL::BUFFER_INFO_NEW_DATA: return PutBool(out, filled);
  case GenTL::BUFFER_INFO_IS_QUEUED:
    return PutBool(out, buffer.state == CBuffer::EState::Input || buffer.state == CBuffer::EState::Filling);
  case GenTL::BUFFER_INFO_IS_ACQUIRING: return PutBool(out, buffer.state == CBuffer::EState::Filling);
  case GenTL::BUFFER_INFO_IS_INCOMPLETE: return PutBool(out, filled && buffer.incomplete);
  case GenTL::BUFFER_INFO_TLTYPE: return PutString(out, Lib().Config().tlType);
  case GenTL::BUFFER_INFO_SIZE_FILLED:
  case GenTL::BUFFER_INFO_DATA_SIZE: return PutSize(out, filled ? buffer.sizeFilled : 0);
  case GenTL::BUFFER_INFO_WIDTH:
    if (m_camera->Config().legacyChunkPayload) {
      return PutSize(out, 0xFFFFFFFF);  // no geometry: the consumer knows the width itself
    }
    return PutSize(out, filled ? job.width : 0);
  case GenTL::BUFFER_INFO_HEIGHT:
    if (m_camera->Config().legacyChunkPayload) {
      return PutSize(out, filled ? buffer.sizeFilled : 0);  // the byte count, reported as height
    }
    return PutSize(out, filled && !m_camera->Config().zeroBufferHeight ? job.height : 0);
  case GenTL::BUFFER_INFO_XOFFSET: return PutSize(out, filled ? job.offsetX : 0);
  case GenTL::BUFFER_INFO_YOFFSET: return PutSize(out, filled ? job.offsetY : 0);
  case GenTL::BUFFER_INFO_XPADDING:
  case GenTL::BUFFER_INFO_YPADDING: return PutSize(out, 0);
  case GenTL::BUFFER_INFO_FRAMEID: return PutU64(out, filled ? job.frameId : 0);
  case GenTL::BUFFER_INFO_IMAGEPRESENT: return PutBool(out, filled);
  case GenTL::BUFFER_INFO_IMAGEOFFSET: return PutSize(out, 0);
  case GenTL::BUFFER_INFO_PAYLOADTYPE:
    return PutSize(out,
                   m_camera->Config().legacyChunkPayload ? GenTL::PAYLOAD_TYPE_CHUNK_DATA : GenTL::PAYLOAD_TYPE_IMAGE);
  case GenTL::BUFFER_INFO_PIXELFORMAT: return PutU64(out, filled && job.format ? job.format->code : 0);
  case GenTL::BUFFER_INFO_PIXELFORMAT_NAMESPACE: return PutU64(out, GenTL::PIXELFORMAT_NAMESPACE_PFNC_32BIT);
  case GenTL::BUFFER_INFO_DELIVERED_IMAGEHEIGHT:
    return PutSize(out, !filled ? 0 : buffer.incomplete && job.width > 0 ? job.height / 2 : job.height);
  case GenTL::BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE:
    return PutSize(out, filled && job.chunkMode ? job.payloadSize - job.imageSize : 0);
  case GenTL::BUFFER_INFO_CHUNKLAYOUTID:
    return PutU64(out, uint64_t{job.chunkEnabled[0]} | uint64_t{job.chunkEnabled[1]} << 1 |
                           uint64_t{job.chunkEnabled[2]} << 2);
  case GenTL::BUFFER_INFO_FILENAME: Fail(GenTL::GC_ERR_NOT_AVAILABLE, "image buffers carry no file name");
  case GenTL::BUFFER_INFO_PIXEL_ENDIANNESS: return PutI32(out, GenTL::PIXELENDIANNESS_LITTLE);
  case GenTL::BUFFER_INFO_TIMESTAMP_NS: return PutU64(out, filled ? job.timestampNs : 0);
  case GenTL::BUFFER_INFO_DATA_LARGER_THAN_BUFFER: return PutBool(out, filled && buffer.dataLarger);
  case GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA: return PutBool(out, filled && job.chunkMode);
  case GenTL::BUFFER_INFO_IS_COMPOSITE: return PutBool(out, false);
  default: break;
  }
  if (command >= 1001 && command <= 1003 && Lib().Config().flavour == EFlavour::GEV) {
    return PutU64(out, filled ? buffer.packets[command - 1001] : 0);
  }
  Fail(GenTL::GC_ERR_INVALID_ID, "unknown buffer info command " + std::to_string(command));
}

void CDataStream::ChunkData(GenTL::BUFFER_HANDLE handle, GenTL::SINGLE_CHUNK_DATA* chunks, size_t* count) {
  if (count == nullptr) {
    Fail(GenTL::GC_ERR_INVALID_PARAMETER, "the count pointer is null");
  }
  std::lock_guard<std::mutex> lock(m_mutex);
  const CBuffer& buffer = *FindLocked(handle);
  if (!buffer.newData || !buffer.job.chunkMode) {
    Fail(GenTL::GC_ERR_NO_DATA, "the buffer holds no chunk data");
  }
  if (chunks == nullptr) {
    *count = buffer.chunks.size();
    return;
  }
  if (*count < buffer.chunks.size()) {
    const size_t given = *count;
    *count = buffer.chunks.size();
    Fail(GenTL::GC_ERR_BUFFER_TOO_SMALL,
         std::to_string(buffer.chunks.size()) + " chunks, room for " + std::to_string(given));
  }
  std::copy(buffer.chunks.begin(), buffer.chunks.end(), chunks);
  *count = buffer.chunks.size();
}

uint32_t CDataStream::NumParts(GenTL::BUFFER_HANDLE handle) {
  std::lock_guard<std::mutex> lock(m_mutex);
  FindLocked(handle);
  return 0;  // single-part image buffers
}

void CDataStream::Close() {
  {
    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_closed) {
      return;
    }
    m_closed = true;
    StopLocked(lock, true);
  }
  m_camera->SetWake({});
  UnregisterAll();
  Lib().RemoveHandle(Handle());
  m_device->StreamClosed();
}


}  // namespace TalvirSim
