// The binary interface: the order of the operations of ICamera, IImage, IChunk and of the camera's own operations
// (applications and the transport cameras call through it), and the layout of the records handed out.
#include "camera/Camera.h"

#include <talvir/Talvir.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

namespace TALVIR {
namespace {

// Offsets of the records, checked at compile time.
static_assert(sizeof(STransportInfo) == 48);
static_assert(offsetof(STransportInfo, bytesTotal) == 0);
static_assert(offsetof(STransportInfo, timeouts) == 8);
static_assert(offsetof(STransportInfo, frames) == 16);
static_assert(offsetof(STransportInfo, packetCounter1) == 24);
static_assert(offsetof(STransportInfo, packetCounter2) == 32);
static_assert(offsetof(STransportInfo, packetCounter3) == 40);
static_assert(sizeof(SDeviceEventRecord) == 24);
static_assert(offsetof(SDeviceEventRecord, eventId) == 0);
static_assert(offsetof(SDeviceEventRecord, streamChannel) == 2);
static_assert(offsetof(SDeviceEventRecord, blockId) == 4);
static_assert(offsetof(SDeviceEventRecord, blockId64) == 8);
static_assert(offsetof(SDeviceEventRecord, timestampHigh) == 16);
static_assert(offsetof(SDeviceEventRecord, timestampLow) == 20);

#if defined(__GNUC__) && !defined(_WIN32)
// In the Itanium C++ ABI a pointer to a virtual member function holds 1 + the byte offset of its table entry, and a
// virtual destructor takes two entries (complete and deleting).
constexpr size_t kDestructorEntries = 2;

template <typename TMember>
size_t SlotOf(TMember member) {
  static_assert(sizeof(TMember) == 2 * sizeof(ptrdiff_t));
  ptrdiff_t words[2];
  std::memcpy(words, &member, sizeof words);
  EXPECT_EQ(words[0] % static_cast<ptrdiff_t>(sizeof(void*)), 1) << "not a virtual function";
  return static_cast<size_t>(words[0] - 1) / sizeof(void*);
}

TEST(InterfaceLayout, CameraOperationsKeepTheirSlots) {
  EXPECT_EQ(SlotOf(&ICamera::Open), 0u);
  EXPECT_EQ(SlotOf(&ICamera::Close), 1u);
  EXPECT_EQ(SlotOf(&ICamera::IsOpen), 2u);
  EXPECT_EQ(SlotOf(&ICamera::IsOnline), 3u);
  EXPECT_EQ(SlotOf(&ICamera::SetBufferCount), 4u);
  EXPECT_EQ(SlotOf(&ICamera::GetBufferCount), 5u);
  EXPECT_EQ(SlotOf(&ICamera::StartGrabbing), 6u);
  EXPECT_EQ(SlotOf(&ICamera::StopGrabbing), 7u);
  EXPECT_EQ(SlotOf(&ICamera::IsGrabbing), 8u);
  EXPECT_EQ(SlotOf(&ICamera::GetImage), 9u);
  EXPECT_EQ(SlotOf(&ICamera::DiscardOutputQueue), 10u);
  EXPECT_EQ(SlotOf(&ICamera::GetCameraInfo), 11u);
  EXPECT_EQ(SlotOf(&ICamera::GetSystemXml), 12u);
  EXPECT_EQ(SlotOf(&ICamera::GetInterfaceXml), 13u);
  EXPECT_EQ(SlotOf(&ICamera::GetDeviceXml), 14u);
  EXPECT_EQ(SlotOf(&ICamera::GetRemoteXml), 15u);
  EXPECT_EQ(SlotOf(&ICamera::GetStreamXml), 16u);
  EXPECT_EQ(SlotOf(&ICamera::GetTransportInfo), 17u);
  EXPECT_EQ(SlotOf(&ICamera::IsSerialOnline), 18u);
  EXPECT_EQ(SlotOf(&ICamera::OpenSerial), 19u);
  EXPECT_EQ(SlotOf(&ICamera::SetEventCallback), 20u);
  EXPECT_EQ(SlotOf(&ICamera::SetHandler), 21u);
  EXPECT_EQ(SlotOf(&ICamera::Release), 22u);
}

TEST(InterfaceLayout, TheCamerasOwnOperationsFollowTheDestructor) {
  // Slot 23 is the destructor; the camera's own operations are slots 24 to 40.
  const size_t first = 23 + kDestructorEntries;
  EXPECT_EQ(SlotOf(&CCamera::OpenDevice), first + 0);
  EXPECT_EQ(SlotOf(&CCamera::CloseDevice), first + 1);
  EXPECT_EQ(SlotOf(&CCamera::StartAcquisition), first + 2);
  EXPECT_EQ(SlotOf(&CCamera::StopAcquisition), first + 3);
  EXPECT_EQ(SlotOf(&CCamera::FlushBuffers), first + 4);
  EXPECT_EQ(SlotOf(&CCamera::GetAnnounceCount), first + 5);
  EXPECT_EQ(SlotOf(&CCamera::WaitImage), first + 6);
  EXPECT_EQ(SlotOf(&CCamera::RevokeBuffers), first + 7);
  EXPECT_EQ(SlotOf(&CCamera::CreateEventListener), first + 8);
  EXPECT_EQ(SlotOf(&CCamera::DestroyEventListener), first + 9);
  EXPECT_EQ(SlotOf(&CCamera::ComputePayloadSize), first + 10);
  EXPECT_EQ(SlotOf(&CCamera::GetImageFillFlag), first + 11);
  EXPECT_EQ(SlotOf(&CCamera::Notify), first + 12);
  EXPECT_EQ(SlotOf(&CCamera::CheckOnline), first + 13);
  EXPECT_EQ(SlotOf(&CCamera::GetProbeAddress), first + 14);
  EXPECT_EQ(SlotOf(&CCamera::ProbeDevice), first + 15);
  EXPECT_EQ(SlotOf(&CCamera::SetOnline), first + 16);
}

TEST(InterfaceLayout, ImageOperationsKeepTheirSlots) {
  EXPECT_EQ(SlotOf(&IImage::IsComplete), 0u);
  EXPECT_EQ(SlotOf(&IImage::GetPayloadType), 1u);
  EXPECT_EQ(SlotOf(&IImage::GetBuffer), 2u);
  EXPECT_EQ(SlotOf(&IImage::GetBufferSize), 3u);
  EXPECT_EQ(SlotOf(&IImage::IsImagePresent), 4u);
  EXPECT_EQ(SlotOf(&IImage::GetFrameId), 5u);
  EXPECT_EQ(SlotOf(&IImage::GetImageOffset), 6u);
  EXPECT_EQ(SlotOf(&IImage::GetWidth), 7u);
  EXPECT_EQ(SlotOf(&IImage::GetHeight), 8u);
  EXPECT_EQ(SlotOf(&IImage::GetPixelFormat), 9u);
  EXPECT_EQ(SlotOf(&IImage::GetOffsetX), 10u);
  EXPECT_EQ(SlotOf(&IImage::GetOffsetY), 11u);
  EXPECT_EQ(SlotOf(&IImage::GetPaddingX), 12u);
  EXPECT_EQ(SlotOf(&IImage::GetPaddingY), 13u);
  EXPECT_EQ(SlotOf(&IImage::GetChunks), 14u);
  EXPECT_EQ(SlotOf(&IImage::GetTimestamp), 15u);
  EXPECT_EQ(SlotOf(&IImage::GetCustomInfo1), 16u);
  EXPECT_EQ(SlotOf(&IImage::GetCustomInfo2), 17u);
  EXPECT_EQ(SlotOf(&IImage::GetCustomInfo3), 18u);
  EXPECT_EQ(SlotOf(&IImage::GetPixelBits), 19u);
  EXPECT_EQ(SlotOf(&IImage::GetPixelFactor), 20u);
  EXPECT_EQ(SlotOf(&IImage::GetLinePitch), 21u);
  EXPECT_EQ(SlotOf(&IImage::GetConvertedImage), 22u);
  EXPECT_EQ(SlotOf(&IImage::SetUserData), 23u);
  EXPECT_EQ(SlotOf(&IImage::GetUserData), 24u);
  EXPECT_EQ(SlotOf(&IImage::Release), 25u);
  // Slot 26 is the destructor; GetFilledSize comes after it.
  EXPECT_EQ(SlotOf(&IImage::GetFilledSize), 26u + kDestructorEntries);
}

TEST(InterfaceLayout, ChunkOperationsKeepTheirSlots) {
  EXPECT_EQ(SlotOf(&IChunk::GetChunkId), 0u);
  EXPECT_EQ(SlotOf(&IChunk::GetChunkData), 1u);
  EXPECT_EQ(SlotOf(&IChunk::GetChunkSize), 2u);
}

TEST(InterfaceLayout, HandlerAndCallbackCarryTheirMainOperationFirst) {
  EXPECT_EQ(SlotOf(&ICameraHandler::OnNotify), 0u);
  EXPECT_EQ(SlotOf(&IEventCallback::OnEvent), 0u);
}
#endif

}  // namespace
}  // namespace TALVIR
