// Chunk data: the adapter attaches GenTL chunk records to the Port nodes whose ChunkID matches.
#include <gtest/gtest.h>

#include <cstring>

#include "MemoryPort.h"

using namespace EngineTest;
using namespace GenApi;

namespace {

const std::string kChunks =
    "<Port Name='TimestampPort'><ChunkID>1234ABCD</ChunkID></Port>"
    "<IntReg Name='ChunkTimestamp'><Address>0</Address><Length>8</Length><AccessMode>RO</AccessMode>"
    "<pPort>TimestampPort</pPort><Endianess>LittleEndian</Endianess></IntReg>"
    "<Port Name='GainPort'><ChunkID>0x22</ChunkID></Port>"
    "<IntReg Name='ChunkGain'><Address>4</Address><Length>4</Length><AccessMode>RO</AccessMode>"
    "<pPort>GainPort</pPort></IntReg>";

struct CBuffer {
  CBuffer() {
    std::memset(bytes, 0, sizeof bytes);
    const uint64_t timestamp = 0x1122334455667788ULL;
    std::memcpy(bytes + 16, &timestamp, 8);
    const uint32_t gain = 7;
    std::memcpy(bytes + 32 + 4, &gain, 4);
    records[0] = {0x1234ABCD, 16, 8};
    records[1] = {0x22, 32, 8};
  }
  uint8_t bytes[64];
  GenTL::SINGLE_CHUNK_DATA records[2];
};

TEST(Chunks, FeaturesReadFromTheAttachedBuffer) {
  CTestMap t(kChunks);
  CIntegerPtr timestamp(t.Node("ChunkTimestamp"));
  EXPECT_EQ(timestamp->GetAccessMode(), NA) << "no buffer yet";
  CBuffer buffer;
  CChunkAdapterGenTL adapter(t.map._Ptr);
  EXPECT_TRUE(adapter.CheckBufferLayout(buffer.bytes, buffer.records, 2));
  AttachStatistics_t statistics;
  adapter.AttachBuffer(buffer.bytes, buffer.records, 2, &statistics);
  EXPECT_EQ(statistics.NumChunkPorts, 2);
  EXPECT_EQ(statistics.NumAttachedChunks, 2);
  EXPECT_EQ(timestamp->GetAccessMode(), RO);
  EXPECT_EQ(timestamp->GetValue(), 0x1122334455667788LL);
  EXPECT_EQ(CIntegerPtr(t.Node("ChunkGain"))->GetValue(), 7);
  EXPECT_EQ(t.port.Reads(), 0) << "chunk features never touch the device port";
  adapter.DetachBuffer();
  EXPECT_EQ(timestamp->GetAccessMode(), NA);
  EXPECT_THROW(timestamp->GetValue(), GenICam::AccessException);
}

TEST(Chunks, ANewBufferReplacesCachedValuesAndFiresCallbacks) {
  CTestMap t(kChunks);
  CBuffer first;
  CBuffer second;
  const uint64_t later = 99;
  std::memcpy(second.bytes + 16, &later, 8);
  CChunkAdapterGenTL adapter(t.map._Ptr);
  int calls = 0;
  Register(t.Node("ChunkTimestamp"), [&](INode*) { ++calls; });
  adapter.AttachBuffer(first.bytes, first.records, 2);
  EXPECT_EQ(CIntegerPtr(t.Node("ChunkTimestamp"))->GetValue(), 0x1122334455667788LL);
  adapter.AttachBuffer(second.bytes, second.records, 2);
  EXPECT_EQ(CIntegerPtr(t.Node("ChunkTimestamp"))->GetValue(), 99);
  EXPECT_EQ(calls, 2);
  CBuffer copy = second;
  adapter.UpdateBuffer(copy.bytes);
  const uint64_t moved = 5;
  std::memcpy(copy.bytes + 16, &moved, 8);
  EXPECT_EQ(CIntegerPtr(t.Node("ChunkTimestamp"))->GetValue(), 5);
}

TEST(Chunks, UnmatchedAndOversizedRecordsAreIgnored) {
  CTestMap t(kChunks);
  CBuffer buffer;
  GenTL::SINGLE_CHUNK_DATA other[1] = {{0x99, 0, 8}};
  CChunkAdapterGenTL adapter(t.map._Ptr);
  EXPECT_FALSE(adapter.CheckBufferLayout(buffer.bytes, other, 1));
  adapter.AttachBuffer(buffer.bytes, other, 1);
  EXPECT_EQ(CIntegerPtr(t.Node("ChunkTimestamp"))->GetAccessMode(), NA);
  GenTL::SINGLE_CHUNK_DATA pastTheEnd[1] = {{0x1234ABCD, 60, 8}};
  AttachStatistics_t statistics;
  adapter.AttachBuffer(buffer.bytes, pastTheEnd, 1, &statistics, sizeof buffer.bytes);
  EXPECT_EQ(statistics.NumAttachedChunks, 0);
  GenTL::SINGLE_CHUNK_DATA tooShort[1] = {{0x1234ABCD, 16, 4}};
  adapter.AttachBuffer(buffer.bytes, tooShort, 1);
  EXPECT_THROW(CIntegerPtr(t.Node("ChunkTimestamp"))->GetValue(), GenICam::AccessException)
      << "a register reaching past its chunk";
}

TEST(Chunks, AdapterOutlivingItsNodeMap) {
  CBuffer buffer;
  CChunkAdapterGenTL adapter;
  {
    CTestMap t(kChunks);
    adapter.AttachNodeMap(t.map._Ptr);
    adapter.AttachBuffer(buffer.bytes, buffer.records, 2);
  }
  adapter.DetachBuffer();  // the map is gone: nothing to do, nothing touched
  EXPECT_FALSE(adapter.CheckBufferLayout(buffer.bytes, buffer.records, 2));
}

TEST(Chunks, AdapterWithoutNodeMap) {
  CChunkAdapterGenTL adapter;
  CBuffer buffer;
  EXPECT_FALSE(adapter.CheckBufferLayout(buffer.bytes, buffer.records, 2));
  EXPECT_THROW(adapter.AttachBuffer(buffer.bytes, buffer.records, 2), GenICam::GenericException);
  adapter.DetachBuffer();
}

// ChunkValue is available only while its chunk reports a positive count; ChunkLocked is locked by another chunk.
const std::string kChunkConditions =
    "<Port Name='ChunkPort'><ChunkID>1234</ChunkID></Port>"
    "<IntReg Name='ChunkCountReg'><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode>"
    "<pPort>ChunkPort</pPort><Endianess>LittleEndian</Endianess></IntReg>"
    "<IntSwissKnife Name='ChunkPresent'><pVariable Name='RAW'>ChunkCountReg</pVariable>"
    "<Formula>RAW &gt; 0</Formula></IntSwissKnife>"
    "<FloatReg Name='ChunkValueReg'><Address>4</Address><Length>4</Length><AccessMode>RO</AccessMode>"
    "<pPort>ChunkPort</pPort><Endianess>LittleEndian</Endianess></FloatReg>"
    "<Float Name='ChunkValue'><pIsAvailable>ChunkPresent</pIsAvailable><pValue>ChunkValueReg</pValue></Float>"
    "<Float Name='ChunkImplemented'><pIsImplemented>ChunkPresent</pIsImplemented><pValue>ChunkValueReg</pValue>"
    "</Float>"
    "<Integer Name='Setting'><pIsLocked>ChunkPresent</pIsLocked><Value>3</Value></Integer>"
    "<Category Name='ChunkCategory'><pIsAvailable>ChunkPresent</pIsAvailable><pFeature>ChunkValue</pFeature>"
    "<pFeature>ChunkImplemented</pFeature><pFeature>Setting</pFeature></Category>"
    "<Category Name='Root'><pFeature>ChunkCategory</pFeature></Category>";

struct CConditionBuffer {
  CConditionBuffer() {
    std::memset(bytes, 0, sizeof bytes);
    const uint32_t count = 1;
    std::memcpy(bytes, &count, 4);
    const float value = 2.5f;
    std::memcpy(bytes + 4, &value, 4);
    record = {0x1234, 0, 8};
  }
  uint8_t bytes[8];
  GenTL::SINGLE_CHUNK_DATA record;
};

TEST(Chunks, AvailabilityReadThroughAnUnattachedChunkPortIsNotAvailable) {
  CTestMap t(kChunkConditions);
  CFloatPtr value(t.Node("ChunkValue"));
  CFloatPtr implemented(t.Node("ChunkImplemented"));
  EXPECT_EQ(value->GetAccessMode(), NA);
  EXPECT_EQ(implemented->GetAccessMode(), NA);
  EXPECT_FALSE(IsAvailable(value));
  EXPECT_THROW(value->GetValue(), GenICam::AccessException);
  CConditionBuffer buffer;
  CChunkAdapterGenTL adapter(t.map._Ptr);
  adapter.AttachBuffer(buffer.bytes, &buffer.record, 1);
  EXPECT_EQ(value->GetAccessMode(), RO);
  EXPECT_EQ(implemented->GetAccessMode(), RO);
  EXPECT_EQ(value->GetValue(), 2.5);
  adapter.DetachBuffer();
  EXPECT_EQ(value->GetAccessMode(), NA);
  EXPECT_EQ(implemented->GetAccessMode(), NA);
}

TEST(Chunks, LockReadThroughAnUnattachedChunkPortIsNotLocked) {
  CTestMap t(kChunkConditions);
  CIntegerPtr setting(t.Node("Setting"));
  EXPECT_EQ(setting->GetAccessMode(), RW);
  setting->SetValue(4);
  CConditionBuffer buffer;
  CChunkAdapterGenTL adapter(t.map._Ptr);
  adapter.AttachBuffer(buffer.bytes, &buffer.record, 1);
  EXPECT_EQ(setting->GetAccessMode(), RO) << "the attached chunk locks it";
  EXPECT_THROW(setting->SetValue(5), GenICam::AccessException);
  adapter.DetachBuffer();
  EXPECT_EQ(setting->GetAccessMode(), RW);
  EXPECT_EQ(setting->GetValue(), 4);
}

TEST(Chunks, CategoryOfChunkFeaturesAnswersWithoutChunkData) {
  CTestMap t(kChunkConditions);
  INode* category = t.Node("ChunkCategory");
  ASSERT_NE(category, nullptr);
  EXPECT_EQ(category->GetAccessMode(), NA);
  EXPECT_EQ(t.Node("Root")->GetAccessMode(), RO);
  FeatureList_t features;
  CCategoryPtr(category)->GetFeatures(features);
  ASSERT_EQ(features.size(), 3u);
  for (IValue* feature : features) EXPECT_NO_THROW(feature->GetNode()->GetAccessMode());
  CConditionBuffer buffer;
  CChunkAdapterGenTL adapter(t.map._Ptr);
  adapter.AttachBuffer(buffer.bytes, &buffer.record, 1);
  EXPECT_EQ(category->GetAccessMode(), RO);
}

}  // namespace
