// The record that the device-event listeners write over the start of delivered event data.
#include "camera/EventListener.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace TALVIR {
namespace {

template <typename T>
void Put(std::vector<uint8_t>& data, size_t offset, T value) {
  std::memcpy(data.data() + offset, &value, sizeof value);
}

SDeviceEventRecord RecordOf(const std::vector<uint8_t>& data) {
  SDeviceEventRecord record;
  std::memcpy(&record, data.data(), sizeof record);
  return record;
}

TEST(EventRecord, LayoutOneTakesTheTimeStampAfterTheHeader) {
  std::vector<uint8_t> data(CEventListener::kDataSize, 0xEE);
  Put<uint16_t>(data, 10, 0x9001);
  Put<uint16_t>(data, 12, 3);
  Put<uint16_t>(data, 14, 0x1234);
  Put<uint32_t>(data, 16, 0xAABBCCDD);
  Put<uint32_t>(data, 20, 0x11223344);
  data[25] = 0x77;
  CEventListener::RewriteRecord(data.data(), 40, 1);
  const SDeviceEventRecord record = RecordOf(data);
  EXPECT_EQ(record.eventId, 0x9001);
  EXPECT_EQ(record.streamChannel, 3);
  EXPECT_EQ(record.blockId, 0x1234);
  EXPECT_EQ(record.reserved, 0);
  EXPECT_EQ(record.blockId64, 0u);
  EXPECT_EQ(record.timestampHigh, 0xAABBCCDDu);
  EXPECT_EQ(record.timestampLow, 0x11223344u);
  EXPECT_EQ(data[24], 0) << "byte 24 is cleared";
  EXPECT_EQ(data[25], 0x77) << "the bytes after the record stay as delivered";
}

TEST(EventRecord, LayoutTwoTakesTheBlockIDAndThenTheTimeStamp) {
  std::vector<uint8_t> data(CEventListener::kDataSize, 0);
  Put<uint16_t>(data, 10, 0x9001);
  Put<uint16_t>(data, 14, 0x5678);
  Put<uint64_t>(data, 16, 0x0102030405060708ull);
  Put<uint32_t>(data, 24, 0x0A0B0C0D);
  Put<uint32_t>(data, 28, 0x10203040);
  CEventListener::RewriteRecord(data.data(), 48, 2);
  const SDeviceEventRecord record = RecordOf(data);
  EXPECT_EQ(record.eventId, 0x9001);
  EXPECT_EQ(record.blockId, 0x5678);
  EXPECT_EQ(record.blockId64, 0x0102030405060708ull);
  EXPECT_EQ(record.timestampHigh, 0x0A0B0C0Du);
  EXPECT_EQ(record.timestampLow, 0x10203040u);
}

TEST(EventRecord, ShortEventsNeverShowTheBytesOfAnEarlierOne) {
  std::vector<uint8_t> data(CEventListener::kDataSize, 0xEE);
  Put<uint16_t>(data, 10, 0x4321);
  CEventListener::RewriteRecord(data.data(), 12, 2);
  const SDeviceEventRecord record = RecordOf(data);
  EXPECT_EQ(record.eventId, 0x4321);
  EXPECT_EQ(record.streamChannel, 0);
  EXPECT_EQ(record.blockId64, 0u);
  EXPECT_EQ(record.timestampHigh, 0u);
  EXPECT_EQ(record.timestampLow, 0u);
}

TEST(EventRecord, AnEmptyEventGivesAnAllZeroRecord) {
  std::vector<uint8_t> data(CEventListener::kDataSize, 0xEE);
  CEventListener::RewriteRecord(data.data(), 0, 1);
  const SDeviceEventRecord record = RecordOf(data);
  EXPECT_EQ(record.eventId, 0);
  EXPECT_EQ(record.timestampLow, 0u);
}

}  // namespace
}  // namespace TALVIR
