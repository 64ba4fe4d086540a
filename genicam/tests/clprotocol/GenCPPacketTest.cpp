#include "GenCPPacket.h"

#include <gtest/gtest.h>

#include <vector>

using namespace CLProtocol::GenCP;

namespace {

std::vector<uint8_t> Bytes(std::initializer_list<int> values) {
  std::vector<uint8_t> bytes;
  for (const int value : values) {
    bytes.push_back(static_cast<uint8_t>(value));
  }
  return bytes;
}

const std::vector<uint8_t> kReadMemVector =
    Bytes({0x01, 0x00, 0xb7, 0xf2, 0xb7, 0xee, 0x00, 0x00, 0x40, 0x00, 0x08, 0x00, 0x00, 0x0c,
           0x00, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x04});
const std::vector<uint8_t> kReadMemAckVector = Bytes({0x01, 0x00, 0xf7, 0xf9, 0xf7, 0xf5, 0x00, 0x00, 0x00, 0x00,
                                                      0x08, 0x01, 0x00, 0x04, 0x00, 0x01, 0x00, 0x01, 0x00, 0x03});

}  // namespace

TEST(GenCPPacket, EncodesTheReadMemTestVector) {
  SPacket command;
  command.flagsOrStatus = kFlagRequestAck;
  command.commandId = READMEM_CMD;
  command.requestId = 1;
  command.scd = ReadMemScd(0, 4);
  EXPECT_EQ(HexText(Encode(command).data(), Encode(command).size()),
            HexText(kReadMemVector.data(), kReadMemVector.size()));
}

TEST(GenCPPacket, EncodesTheAcknowledgeTestVector) {
  SPacket ack;
  ack.flagsOrStatus = STATUS_SUCCESS;
  ack.commandId = READMEM_ACK;
  ack.requestId = 1;
  ack.scd = Bytes({0x00, 0x01, 0x00, 0x03});
  const std::vector<uint8_t> bytes = Encode(ack);
  EXPECT_EQ(HexText(bytes.data(), bytes.size()), HexText(kReadMemAckVector.data(), kReadMemAckVector.size()));
}

TEST(GenCPPacket, ParsesTheTestVectors) {
  SPacket packet;
  size_t consumed = 0;
  ASSERT_EQ(Parse(kReadMemVector.data(), kReadMemVector.size(), packet, consumed), EParse::Complete);
  EXPECT_EQ(consumed, kReadMemVector.size());
  EXPECT_EQ(packet.flagsOrStatus, kFlagRequestAck);
  EXPECT_EQ(packet.commandId, READMEM_CMD);
  EXPECT_EQ(packet.requestId, 1);
  uint64_t address = 99;
  uint16_t length = 0;
  ASSERT_TRUE(ParseReadMemScd(packet.scd, address, length));
  EXPECT_EQ(address, 0u);
  EXPECT_EQ(length, 4u);

  ASSERT_EQ(Parse(kReadMemAckVector.data(), kReadMemAckVector.size(), packet, consumed), EParse::Complete);
  EXPECT_EQ(packet.commandId, READMEM_ACK);
  EXPECT_EQ(GetU32(packet.scd.data()), 0x00010003u);
}

TEST(GenCPPacket, ChecksumTakesAnOddLastByteAsTheHighByte) {
  const std::vector<uint8_t> odd = Bytes({0x12, 0x34, 0x56});
  const std::vector<uint8_t> padded = Bytes({0x12, 0x34, 0x56, 0x00});
  EXPECT_EQ(Checksum(odd.data(), odd.size()), Checksum(padded.data(), padded.size()));
  EXPECT_EQ(Checksum(odd.data(), odd.size()), static_cast<uint16_t>(~(0x1234 + 0x5600)));
}

TEST(GenCPPacket, ChecksumFoldsTheCarry) {
  const std::vector<uint8_t> words = Bytes({0xff, 0xff, 0x00, 0x02});
  // 0xffff + 0x0002 = 0x10001, folded to 0x0002; complement 0xfffd.
  EXPECT_EQ(Checksum(words.data(), words.size()), 0xfffd);
}

TEST(GenCPPacket, NeedsMoreForPartialPackets) {
  SPacket packet;
  size_t consumed = 5;
  for (size_t size = 0; size < kReadMemVector.size(); ++size) {
    EXPECT_EQ(Parse(kReadMemVector.data(), size, packet, consumed), EParse::NeedMore) << size;
    EXPECT_EQ(consumed, 0u);
  }
}

TEST(GenCPPacket, DropsDamagedPackets) {
  SPacket packet;
  size_t consumed = 0;
  std::vector<uint8_t> bytes = kReadMemVector;
  bytes[2] ^= 0x01;
  EXPECT_EQ(Parse(bytes.data(), bytes.size(), packet, consumed), EParse::BadCcdChecksum);
  EXPECT_EQ(consumed, kHeaderSize);

  bytes = kReadMemVector;
  bytes.back() ^= 0x80;
  EXPECT_EQ(Parse(bytes.data(), bytes.size(), packet, consumed), EParse::BadScdChecksum);
  EXPECT_EQ(consumed, bytes.size());

  bytes = kReadMemVector;
  bytes[0] = 0x02;
  EXPECT_EQ(Parse(bytes.data(), bytes.size(), packet, consumed), EParse::BadPreamble);
  EXPECT_EQ(consumed, 1u);
}

TEST(GenCPPacket, RejectsLengthsBeyondOnePacket) {
  SPacket big;
  big.commandId = WRITEMEM_CMD;
  big.scd.assign(kMaxScdSize, 0xAA);
  std::vector<uint8_t> bytes = Encode(big);
  ASSERT_EQ(bytes.size(), kMaxPacketSize);
  SPacket packet;
  size_t consumed = 0;
  EXPECT_EQ(Parse(bytes.data(), bytes.size(), packet, consumed), EParse::Complete);
  // Announce one byte more and fix the header checksum: the header is refused as too long.
  bytes[13] = static_cast<uint8_t>(bytes[13] + 1);
  const uint16_t ccd = Checksum(bytes.data() + 6, 10);
  bytes[2] = static_cast<uint8_t>(ccd >> 8);
  bytes[3] = static_cast<uint8_t>(ccd);
  EXPECT_EQ(Parse(bytes.data(), bytes.size(), packet, consumed), EParse::TooLong);
}

TEST(GenCPPacket, RequestIdsStartAtOneAndWrapToOne) {
  CRequestIds ids;
  EXPECT_EQ(ids.Next(), 1);
  EXPECT_EQ(ids.Next(), 2);
  ids.SetLast(0xFFFE);
  EXPECT_EQ(ids.Next(), 0xFFFF);
  EXPECT_EQ(ids.Next(), 1);
}

TEST(GenCPPacket, PendingAcknowledgeCarriesItsTimeout) {
  uint16_t timeout = 0;
  EXPECT_TRUE(ParsePendingScd(Bytes({0, 0, 0x01, 0x2c}), timeout));
  EXPECT_EQ(timeout, 300);
  EXPECT_FALSE(ParsePendingScd(Bytes({0, 0, 1}), timeout));
}

TEST(GenCPPacket, NamesStatuses) {
  EXPECT_STREQ(StatusName(STATUS_INVALID_ADDRESS), "INVALID_ADDRESS");
  EXPECT_STREQ(StatusName(STATUS_GENCP_ERROR), "GENCP_ERROR");
  EXPECT_STREQ(StatusName(0x1234), "UNKNOWN");
}
