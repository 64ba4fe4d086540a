// Streaming through the C interface: buffers, queues, acquisition, frame contents and buffer information.
#include "SimModule.h"
#include "talvirsim/SimRegisters.h"
#include "talvirsim/TestPattern.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <thread>

using namespace TalvirSimTest;
namespace R = TalvirSim::Remote;

namespace {

// A small, fast camera: free-running unless a test sets a frame rate.
std::string SmallCamera(const std::string& extra = "") {
  return R"({"interfaces":[{"id":"IF","devices":[{"id":"Cam","serial":"CAM00001","sensorWidth":32,"sensorHeight":8,
            "pixelFormats":"all","pixelFormat":"Mono8","frameRate":0)" +
         extra + "}]}]}";
}

struct SStreaming {
  explicit SStreaming(const std::string& json = SmallCamera()) : module("TalvirSim.cti", "TalvirSim.cti", json) {
    if (module.Init() == GC_ERR_SUCCESS) {
      device = std::make_unique<SOpenDevice>(module.fn);
    }
  }
  bool Ok() const { return device && device->ok; }
  const SGenTL& fn() const { return module.fn; }
  EVENT_HANDLE Register() {
    EVENT_HANDLE event = nullptr;
    fn().GCRegisterEvent(device->stream, EVENT_NEW_BUFFER, &event);
    return event;
  }
  GC_ERROR Start(uint64_t count = GENTL_INFINITE) {
    const GC_ERROR result = fn().DSStartAcquisition(device->stream, ACQ_START_FLAGS_DEFAULT, count);
    WriteBE32(fn(), device->port, R::kAcquisitionStart, 1);
    return result;
  }
  GC_ERROR Next(EVENT_HANDLE event, EVENT_NEW_BUFFER_DATA& data, uint64_t timeoutMs = 2000) {
    size_t size = sizeof data;
    return fn().EventGetData(event, &data, &size, timeoutMs);
  }
  // announced == queued + awaiting delivery + delivered and held
  void ExpectAccounting(size_t held, const char* step) {
    const size_t announced = device->StreamInfo(STREAM_INFO_NUM_ANNOUNCED);
    const size_t queued = device->StreamInfo(STREAM_INFO_NUM_QUEUED);
    const size_t awaiting = device->StreamInfo(STREAM_INFO_NUM_AWAIT_DELIVERY);
    EXPECT_EQ(announced, queued + awaiting + held) << step << ": announced " << announced << ", queued " << queued
                                                   << ", awaiting " << awaiting << ", held " << held;
  }
  CSimModule module;
  std::unique_ptr<SOpenDevice> device;
};

}  // namespace

TEST(SimStream, EveryOfferedFormatDeliversTheDocumentedPattern) {
  SStreaming s;
  ASSERT_TRUE(s.Ok());
  const auto& fn = s.fn();
  for (const TalvirSim::SPixelFormat& format : TalvirSim::AllPixelFormats()) {
    ASSERT_EQ(WriteBE32(fn, s.device->port, R::kPixelFormat, format.code), GC_ERR_SUCCESS) << format.name;
    const size_t payload = s.device->PayloadSize();
    ASSERT_EQ(payload, TalvirSim::ImageSize(format, 32, 8)) << format.name;
    std::vector<uint8_t> memory(payload + 16, 0xCD);
    BUFFER_HANDLE buffer = nullptr;
    ASSERT_EQ(fn.DSAnnounceBuffer(s.device->stream, memory.data(), payload, &memory, &buffer), GC_ERR_SUCCESS);
    ASSERT_EQ(fn.DSQueueBuffer(s.device->stream, buffer), GC_ERR_SUCCESS);
    EVENT_HANDLE event = s.Register();
    ASSERT_EQ(s.Start(1), GC_ERR_SUCCESS);
    EVENT_NEW_BUFFER_DATA data{};
    ASSERT_EQ(s.Next(event, data), GC_ERR_SUCCESS) << format.name;
    EXPECT_EQ(data.BufferHandle, buffer);
    EXPECT_EQ(data.pUserPointer, &memory);
    const uint64_t frameId = s.device->BufferInfo<uint64_t>(buffer, BUFFER_INFO_FRAMEID);
    EXPECT_GT(frameId, 0u);
    EXPECT_EQ(s.device->BufferInfo<uint64_t>(buffer, BUFFER_INFO_PIXELFORMAT), format.code);
    EXPECT_EQ(s.device->BufferInfo<size_t>(buffer, BUFFER_INFO_WIDTH), 32u);
    EXPECT_EQ(s.device->BufferInfo<size_t>(buffer, BUFFER_INFO_HEIGHT), 8u);
    EXPECT_EQ(s.device->BufferInfo<size_t>(buffer, BUFFER_INFO_SIZE_FILLED), payload);
    EXPECT_EQ(s.device->BufferInfo<uint8_t>(buffer, BUFFER_INFO_IS_INCOMPLETE), 0);
    const std::vector<uint8_t> expected = TalvirSim::MakeImage(format, 32, 8, frameId);
    EXPECT_EQ(std::memcmp(memory.data(), expected.data(), payload), 0) << format.name;
    EXPECT_EQ(memory[payload], 0xCD) << format.name << ": wrote past the payload";
    fn.DSStopAcquisition(s.device->stream, ACQ_STOP_FLAGS_DEFAULT);
    WriteBE32(fn, s.device->port, R::kAcquisitionStop, 1);
    fn.GCUnregisterEvent(s.device->stream, EVENT_NEW_BUFFER);
    ASSERT_EQ(fn.DSRevokeBuffer(s.device->stream, buffer, nullptr, nullptr), GC_ERR_SUCCESS);
  }
}

TEST(SimStream, FramesFlowOnlyAfterTheCamerasAcquisitionStart) {
  SStreaming s;
  ASSERT_TRUE(s.Ok());
  s.device->AnnounceAndQueue(2);
  EVENT_HANDLE event = s.Register();
  ASSERT_EQ(s.fn().DSStartAcquisition(s.device->stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE), GC_ERR_SUCCESS);
  EVENT_NEW_BUFFER_DATA data{};
  EXPECT_EQ(s.Next(event, data, 50), GC_ERR_TIMEOUT);
  WriteBE32(s.fn(), s.device->port, R::kAcquisitionStart, 1);
  EXPECT_EQ(s.Next(event, data), GC_ERR_SUCCESS);
}

TEST(SimStream, QueueAccountingHoldsAtEveryStep) {
  SStreaming s;
  ASSERT_TRUE(s.Ok());
  const auto& fn = s.fn();
  // Software trigger: one frame per trigger, so the counts are stable between steps.
  WriteBE32(fn, s.device->port, R::kTriggerModeBase, 1);
  const size_t payload = s.device->PayloadSize();
  std::vector<BUFFER_HANDLE> buffers(5);
  for (auto& buffer : buffers) {
    ASSERT_EQ(fn.DSAllocAndAnnounceBuffer(s.device->stream, payload, nullptr, &buffer), GC_ERR_SUCCESS);
  }
  s.ExpectAccounting(5, "announced");
  for (int i = 0; i < 3; ++i) {
    fn.DSQueueBuffer(s.device->stream, buffers[i]);
  }
  s.ExpectAccounting(2, "three queued");
  EVENT_HANDLE event = s.Register();
  ASSERT_EQ(s.Start(), GC_ERR_SUCCESS);
  auto triggerAndWait = [&](size_t awaiting) {
    WriteBE32(fn, s.device->port, R::kTriggerSoftware, 1);
    for (int spin = 0; spin < 400 && s.device->StreamInfo(STREAM_INFO_NUM_AWAIT_DELIVERY) < awaiting; ++spin) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_EQ(s.device->StreamInfo(STREAM_INFO_NUM_AWAIT_DELIVERY), awaiting);
  };
  triggerAndWait(1);
  s.ExpectAccounting(2, "one frame awaiting delivery");
  triggerAndWait(2);
  s.ExpectAccounting(2, "two frames awaiting delivery");
  EVENT_NEW_BUFFER_DATA data{};
  ASSERT_EQ(s.Next(event, data), GC_ERR_SUCCESS);
  s.ExpectAccounting(3, "one frame delivered and held");
  fn.DSQueueBuffer(s.device->stream, data.BufferHandle);
  s.ExpectAccounting(2, "requeued");
  EXPECT_EQ(fn.DSQueueBuffer(s.device->stream, data.BufferHandle), GC_ERR_RESOURCE_IN_USE);
  s.ExpectAccounting(2, "double queue refused");
  fn.DSFlushQueue(s.device->stream, ACQ_QUEUE_OUTPUT_DISCARD);
  s.ExpectAccounting(3, "output discarded");
  fn.DSFlushQueue(s.device->stream, ACQ_QUEUE_UNQUEUED_TO_INPUT);
  s.ExpectAccounting(0, "everything queued");
  EXPECT_EQ(s.device->StreamInfo(STREAM_INFO_NUM_QUEUED), 5u);
  triggerAndWait(1);
  fn.DSFlushQueue(s.device->stream, ACQ_QUEUE_INPUT_TO_OUTPUT);
  EXPECT_EQ(s.device->StreamInfo(STREAM_INFO_NUM_AWAIT_DELIVERY), 5u);
  s.ExpectAccounting(0, "input moved to output");
  fn.DSFlushQueue(s.device->stream, ACQ_QUEUE_ALL_TO_INPUT);
  EXPECT_EQ(s.device->StreamInfo(STREAM_INFO_NUM_QUEUED), 5u);
  s.ExpectAccounting(0, "all to input");
  fn.DSFlushQueue(s.device->stream, ACQ_QUEUE_ALL_DISCARD);
  EXPECT_EQ(s.device->StreamInfo(STREAM_INFO_NUM_QUEUED), 0u);
  s.ExpectAccounting(5, "all discarded");
  EXPECT_EQ(fn.DSFlushQueue(s.device->stream, 77), GC_ERR_INVALID_PARAMETER);
}

TEST(SimStream, RevokingNeedsAnUnqueuedBufferAndHandsBackTheCallersMemory) {
  SStreaming s;
  ASSERT_TRUE(s.Ok());
  const auto& fn = s.fn();
  std::vector<uint8_t> memory(s.device->PayloadSize());
  int tag = 0;
  BUFFER_HANDLE own = nullptr;
  ASSERT_EQ(fn.DSAnnounceBuffer(s.device->stream, memory.data(), memory.size(), &tag, &own), GC_ERR_SUCCESS);
  BUFFER_HANDLE again = nullptr;
  EXPECT_EQ(fn.DSAnnounceBuffer(s.device->stream, memory.data(), memory.size(), &tag, &again), GC_ERR_RESOURCE_IN_USE);
  EXPECT_EQ(fn.DSAnnounceBuffer(s.device->stream, nullptr, 16, nullptr, &again), GC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(fn.DSAnnounceBuffer(s.device->stream, memory.data(), 0, nullptr, &again), GC_ERR_INVALID_PARAMETER);
  BUFFER_HANDLE allocated = nullptr;
  ASSERT_EQ(fn.DSAllocAndAnnounceBuffer(s.device->stream, 64, &tag, &allocated), GC_ERR_SUCCESS);
  BUFFER_HANDLE byIndex = nullptr;
  EXPECT_EQ(fn.DSGetBufferID(s.device->stream, 1, &byIndex), GC_ERR_SUCCESS);
  EXPECT_EQ(byIndex, allocated);
  EXPECT_EQ(fn.DSGetBufferID(s.device->stream, 2, &byIndex), GC_ERR_INVALID_INDEX);
  fn.DSQueueBuffer(s.device->stream, own);
  void* base = nullptr;
  void* user = nullptr;
  EXPECT_EQ(fn.DSRevokeBuffer(s.device->stream, own, &base, &user), GC_ERR_BUSY);
  fn.DSFlushQueue(s.device->stream, ACQ_QUEUE_ALL_DISCARD);
  EXPECT_EQ(fn.DSRevokeBuffer(s.device->stream, own, &base, &user), GC_ERR_SUCCESS);
  EXPECT_EQ(base, memory.data());
  EXPECT_EQ(user, &tag);
  EXPECT_EQ(fn.DSRevokeBuffer(s.device->stream, own, &base, &user), GC_ERR_INVALID_HANDLE);
  EXPECT_EQ(fn.DSRevokeBuffer(s.device->stream, allocated, &base, &user), GC_ERR_SUCCESS);
  EXPECT_EQ(base, nullptr);  // producer memory is freed, not handed back
  EXPECT_EQ(s.device->StreamInfo(STREAM_INFO_NUM_ANNOUNCED), 0u);
}

TEST(SimStream, StartNeedsTheAnnounceMinimumAndRefusesASecondStart) {
  SStreaming s(SmallCamera(R"(,"bufferAnnounceMin":3)"));
  ASSERT_TRUE(s.Ok());
  EXPECT_EQ(s.device->StreamInfo(STREAM_INFO_BUF_ANNOUNCE_MIN), 3u);
  s.device->AnnounceAndQueue(2);
  EXPECT_EQ(s.fn().DSStartAcquisition(s.device->stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE),
            GC_ERR_RESOURCE_EXHAUSTED);
  s.device->AnnounceAndQueue(1);
  EXPECT_EQ(s.fn().DSStartAcquisition(s.device->stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE), GC_ERR_SUCCESS);
  EXPECT_EQ(s.fn().DSStartAcquisition(s.device->stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE),
            GC_ERR_RESOURCE_IN_USE);
  EXPECT_EQ(s.fn().DSStopAcquisition(s.device->stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
  EXPECT_EQ(s.fn().DSStopAcquisition(s.device->stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
  EXPECT_EQ(s.fn().DSStartAcquisition(s.device->stream, ACQ_START_FLAGS_DEFAULT, 0), GC_ERR_INVALID_PARAMETER);
}

TEST(SimStream, AcquisitionEndsByItselfAfterTheRequestedCount) {
  SStreaming s;
  ASSERT_TRUE(s.Ok());
  s.device->AnnounceAndQueue(8);
  EVENT_HANDLE event = s.Register();
  ASSERT_EQ(s.Start(3), GC_ERR_SUCCESS);
  EVENT_NEW_BUFFER_DATA data{};
  uint64_t previous = 0;
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(s.Next(event, data), GC_ERR_SUCCESS);
    const uint64_t frameId = s.device->BufferInfo<uint64_t>(data.BufferHandle, BUFFER_INFO_FRAMEID);
    EXPECT_EQ(frameId, previous + 1);
    previous = frameId;
  }
  EXPECT_EQ(s.Next(event, data, 100), GC_ERR_TIMEOUT);
  EXPECT_EQ(s.device->StreamInfo(STREAM_INFO_NUM_DELIVERED), 3u);
  EXPECT_EQ(s.device->StreamInfo(STREAM_INFO_IS_GRABBING) & 0xFF, 0u);
}

TEST(SimStream, EventKillEndsAWaitingFetchWithAbort) {
  SStreaming s;
  ASSERT_TRUE(s.Ok());
  s.device->AnnounceAndQueue(2);
  EVENT_HANDLE event = s.Register();
  ASSERT_EQ(s.fn().DSStartAcquisition(s.device->stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE), GC_ERR_SUCCESS);
  GC_ERROR waited = GC_ERR_SUCCESS;
  std::thread waiter([&] {
    EVENT_NEW_BUFFER_DATA data{};
    size_t size = sizeof data;
    waited = s.fn().EventGetData(event, &data, &size, GENTL_INFINITE);
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  EXPECT_EQ(s.fn().EventKill(event), GC_ERR_SUCCESS);
  waiter.join();
  EXPECT_EQ(waited, GC_ERR_ABORT);
}

TEST(SimStream, ATooSmallBufferIsDeliveredIncomplete) {
  SStreaming s;
  ASSERT_TRUE(s.Ok());
  const size_t payload = s.device->PayloadSize();
  std::vector<uint8_t> memory(payload / 2);
  BUFFER_HANDLE buffer = nullptr;
  ASSERT_EQ(s.fn().DSAnnounceBuffer(s.device->stream, memory.data(), memory.size(), nullptr, &buffer), GC_ERR_SUCCESS);
  s.fn().DSQueueBuffer(s.device->stream, buffer);
  EVENT_HANDLE event = s.Register();
  ASSERT_EQ(s.Start(1), GC_ERR_SUCCESS);
  EVENT_NEW_BUFFER_DATA data{};
  ASSERT_EQ(s.Next(event, data), GC_ERR_SUCCESS);
  EXPECT_EQ(s.device->BufferInfo<uint8_t>(buffer, BUFFER_INFO_IS_INCOMPLETE), 1);
  EXPECT_EQ(s.device->BufferInfo<uint8_t>(buffer, BUFFER_INFO_DATA_LARGER_THAN_BUFFER), 1);
  EXPECT_EQ(s.device->BufferInfo<size_t>(buffer, BUFFER_INFO_SIZE_FILLED), memory.size());
}

TEST(SimStream, ChunkDataCarriesTimestampFrameIdAndExposure) {
  SStreaming s;
  ASSERT_TRUE(s.Ok());
  const auto& fn = s.fn();
  const size_t imageSize = s.device->PayloadSize();
  WriteBE32(fn, s.device->port, R::kChunkModeActive, 1);
  for (uint32_t i = 0; i < 3; ++i) {
    WriteBE32(fn, s.device->port, R::kChunkEnableBase + 4 * i, 1);
  }
  EXPECT_EQ(s.device->PayloadSize(), imageSize + 8 + 3 * 16);
  EXPECT_EQ(ReadBE32(fn, s.device->port, R::kPayloadSize), imageSize + 8 + 3 * 16);
  s.device->AnnounceAndQueue(2);
  EVENT_HANDLE event = s.Register();
  ASSERT_EQ(s.Start(1), GC_ERR_SUCCESS);
  EVENT_NEW_BUFFER_DATA data{};
  ASSERT_EQ(s.Next(event, data), GC_ERR_SUCCESS);
  EXPECT_EQ(s.device->BufferInfo<uint8_t>(data.BufferHandle, BUFFER_INFO_CONTAINS_CHUNKDATA), 1);
  size_t count = 0;
  ASSERT_EQ(fn.DSGetBufferChunkData(s.device->stream, data.BufferHandle, nullptr, &count), GC_ERR_SUCCESS);
  ASSERT_EQ(count, 3u);
  SINGLE_CHUNK_DATA chunks[3];
  size_t small = 1;
  EXPECT_EQ(fn.DSGetBufferChunkData(s.device->stream, data.BufferHandle, chunks, &small), GC_ERR_BUFFER_TOO_SMALL);
  EXPECT_EQ(small, 3u);
  ASSERT_EQ(fn.DSGetBufferChunkData(s.device->stream, data.BufferHandle, chunks, &count), GC_ERR_SUCCESS);
  const auto* base = static_cast<const uint8_t*>(s.device->BufferInfo<void*>(data.BufferHandle, BUFFER_INFO_BASE));
  auto be64 = [&](ptrdiff_t offset) {
    uint64_t value = 0;
    for (int i = 0; i < 8; ++i) {
      value = (value << 8) | base[offset + i];
    }
    return value;
  };
  EXPECT_EQ(chunks[0].ChunkID, R::kChunkIdTimestamp);
  EXPECT_EQ(be64(chunks[0].ChunkOffset), s.device->BufferInfo<uint64_t>(data.BufferHandle, BUFFER_INFO_TIMESTAMP));
  EXPECT_EQ(chunks[1].ChunkID, R::kChunkIdFrameID);
  EXPECT_EQ(be64(chunks[1].ChunkOffset), s.device->BufferInfo<uint64_t>(data.BufferHandle, BUFFER_INFO_FRAMEID));
  EXPECT_EQ(chunks[2].ChunkID, R::kChunkIdExposureTime);
  const uint64_t bits = be64(chunks[2].ChunkOffset);
  double exposure = 0;
  std::memcpy(&exposure, &bits, 8);
  EXPECT_DOUBLE_EQ(exposure, 1000.0);
  for (const auto& chunk : chunks) {
    EXPECT_EQ(chunk.ChunkLength, 8u);
    EXPECT_GE(chunk.ChunkOffset, static_cast<ptrdiff_t>(imageSize));
  }
}

TEST(SimStream, TheImageFormatIsLockedByTLParamsLockedAndWhileStreaming) {
  SStreaming s;
  ASSERT_TRUE(s.Ok());
  const auto& fn = s.fn();
  EXPECT_EQ(WriteBE32(fn, s.device->port, R::kWidth, 17), GC_ERR_INVALID_VALUE);  // not a multiple of 4
  EXPECT_EQ(WriteBE32(fn, s.device->port, R::kWidth, 36), GC_ERR_INVALID_VALUE);  // beyond WidthMax
  EXPECT_EQ(WriteBE32(fn, s.device->port, R::kWidth, 16), GC_ERR_SUCCESS);
  EXPECT_EQ(ReadBE32(fn, s.device->port, R::kWidth), 16u);
  WriteBE32(fn, s.device->port, R::kTLParamsLocked, 1);
  EXPECT_EQ(WriteBE32(fn, s.device->port, R::kWidth, 32), GC_ERR_ACCESS_DENIED);
  WriteBE32(fn, s.device->port, R::kTLParamsLocked, 0);
  s.device->AnnounceAndQueue(1);
  ASSERT_EQ(s.Start(), GC_ERR_SUCCESS);
  EXPECT_EQ(WriteBE32(fn, s.device->port, R::kPixelFormat, 0x01100005), GC_ERR_RESOURCE_IN_USE);
  fn.DSStopAcquisition(s.device->stream, ACQ_STOP_FLAGS_DEFAULT);
  EXPECT_EQ(WriteBE32(fn, s.device->port, R::kPixelFormat, 0x01100005), GC_ERR_SUCCESS);
  EXPECT_EQ(s.device->PayloadSize(), 16u * 8 * 2);
}

TEST(SimStream, AFrameDueWithoutAQueuedBufferIsCountedAsUnderrun) {
  SStreaming s(SmallCamera(R"(,"frameRate":1000)"));
  ASSERT_TRUE(s.Ok());
  s.device->AnnounceAndQueue(1);
  EVENT_HANDLE event = s.Register();
  ASSERT_EQ(s.Start(), GC_ERR_SUCCESS);
  EVENT_NEW_BUFFER_DATA data{};
  ASSERT_EQ(s.Next(event, data), GC_ERR_SUCCESS);
  std::this_thread::sleep_for(std::chrono::milliseconds(50));  // hold the only buffer across many frame times
  EXPECT_GT(s.device->StreamInfo(STREAM_INFO_NUM_UNDERRUN), 0u);
  const uint64_t held = s.device->BufferInfo<uint64_t>(data.BufferHandle, BUFFER_INFO_FRAMEID);
  s.fn().DSQueueBuffer(s.device->stream, data.BufferHandle);
  ASSERT_EQ(s.Next(event, data), GC_ERR_SUCCESS);
  EXPECT_GT(s.device->BufferInfo<uint64_t>(data.BufferHandle, BUFFER_INFO_FRAMEID),
            held + 1);  // IDs of lost frames skipped
}

TEST(SimStream, FramesFollowTheFrameRate) {
  SStreaming s(SmallCamera(R"(,"frameRate":100)"));
  ASSERT_TRUE(s.Ok());
  s.device->AnnounceAndQueue(8);
  EVENT_HANDLE event = s.Register();
  const auto start = std::chrono::steady_clock::now();
  ASSERT_EQ(s.Start(), GC_ERR_SUCCESS);
  EVENT_NEW_BUFFER_DATA data{};
  for (int i = 0; i < 6; ++i) {
    ASSERT_EQ(s.Next(event, data), GC_ERR_SUCCESS);
    s.fn().DSQueueBuffer(s.device->stream, data.BufferHandle);
  }
  // Six frames at 100 frames/s span at least five periods.
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(45));
}

TEST(SimStream, StreamInformationAnswersEveryCommand) {
  SStreaming s;
  ASSERT_TRUE(s.Ok());
  const auto& fn = s.fn();
  for (STREAM_INFO_CMD command = STREAM_INFO_ID; command <= STREAM_INFO_BUF_ALIGNMENT; ++command) {
    size_t size = 0;
    INFO_DATATYPE type = 0;
    EXPECT_EQ(fn.DSGetInfo(s.device->stream, command, &type, nullptr, &size), GC_ERR_SUCCESS) << command;
    EXPECT_GT(size, 0u) << command;
  }
  size_t size = 8;
  uint64_t value = 0;
  EXPECT_EQ(fn.DSGetInfo(s.device->stream, 999, nullptr, &value, &size), GC_ERR_INVALID_ID);
  size = 1;
  EXPECT_EQ(fn.DSGetInfo(s.device->stream, STREAM_INFO_NUM_ANNOUNCED, nullptr, &value, &size), GC_ERR_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, sizeof(size_t));
  EXPECT_EQ(InfoString([&](INFO_DATATYPE* t, void* b, size_t* sz) {
              return fn.DSGetInfo(s.device->stream, STREAM_INFO_ID, t, b, sz);
            }),
            "Cam-Stream0");
}

TEST(SimStream, BufferInformationAnswersEveryCommandOfAFilledBuffer) {
  SStreaming s(SmallCamera(R"(,"timestampFrequency":1000)"));
  ASSERT_TRUE(s.Ok());
  const auto& fn = s.fn();
  auto buffers = s.device->AnnounceAndQueue(1);
  EVENT_HANDLE event = s.Register();
  ASSERT_EQ(s.Start(1), GC_ERR_SUCCESS);
  EVENT_NEW_BUFFER_DATA data{};
  ASSERT_EQ(s.Next(event, data), GC_ERR_SUCCESS);
  for (BUFFER_INFO_CMD command = BUFFER_INFO_BASE; command <= BUFFER_INFO_IS_COMPOSITE; ++command) {
    size_t size = 0;
    INFO_DATATYPE type = 0;
    const GC_ERROR result = fn.DSGetBufferInfo(s.device->stream, data.BufferHandle, command, &type, nullptr, &size);
    if (command == BUFFER_INFO_FILENAME) {
      EXPECT_EQ(result, GC_ERR_NOT_AVAILABLE);
    } else {
      EXPECT_EQ(result, GC_ERR_SUCCESS) << command;
      EXPECT_GT(size, 0u) << command;
    }
  }
  EXPECT_EQ(s.device->BufferInfo<void*>(data.BufferHandle, BUFFER_INFO_USER_PTR), reinterpret_cast<void*>(1));
  EXPECT_EQ(s.device->BufferInfo<uint8_t>(data.BufferHandle, BUFFER_INFO_NEW_DATA), 1);
  EXPECT_EQ(s.device->BufferInfo<uint8_t>(data.BufferHandle, BUFFER_INFO_IS_QUEUED), 0);
  EXPECT_EQ(s.device->BufferInfo<size_t>(data.BufferHandle, BUFFER_INFO_PAYLOADTYPE), size_t{PAYLOAD_TYPE_IMAGE});
  EXPECT_EQ(s.device->BufferInfo<uint64_t>(data.BufferHandle, BUFFER_INFO_PIXELFORMAT_NAMESPACE),
            uint64_t{PIXELFORMAT_NAMESPACE_PFNC_32BIT});
  // Time stamps in ticks of the configured frequency (1 kHz) and in nanoseconds agree.
  const uint64_t ticks = s.device->BufferInfo<uint64_t>(data.BufferHandle, BUFFER_INFO_TIMESTAMP);
  const uint64_t ns = s.device->BufferInfo<uint64_t>(data.BufferHandle, BUFFER_INFO_TIMESTAMP_NS);
  EXPECT_NEAR(static_cast<double>(ticks), static_cast<double>(ns) / 1e6, 2.0);
  BUFFER_HANDLE unknown = reinterpret_cast<BUFFER_HANDLE>(0x1234);
  size_t size = 8;
  uint64_t value = 0;
  EXPECT_EQ(fn.DSGetBufferInfo(s.device->stream, unknown, BUFFER_INFO_SIZE, nullptr, &value, &size),
            GC_ERR_INVALID_HANDLE);
  EXPECT_EQ(fn.DSGetBufferInfo(s.device->stream, buffers[0], 999, nullptr, &value, &size), GC_ERR_INVALID_ID);
}
