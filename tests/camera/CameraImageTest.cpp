// What images say about their buffers: chunk data, geometry from old and frame-grabber producers, size checks,
// conversion for display.
#include "SimRig.h"

#include "camera/GenImage.h"
#include "image/PixelLayout.h"

#include <talvirsim/TestPattern.h>

#include <gtest/gtest.h>

#include <cstring>

namespace TALVIR {
namespace {

using Testing::CSimRig;
using Testing::SImageGuard;

constexpr uint64_t kChunkFrameID = 0x5A000002;
constexpr uint64_t kChunkTimestamp = 0x5A000001;

uint64_t BigEndian64(const uint8_t* data) {
  uint64_t value = 0;
  for (int i = 0; i < 8; ++i) {
    value = (value << 8) | data[i];
  }
  return value;
}

void EnableFrameIDChunk(ICamera& camera) {
  CSimRig::SetBool(camera, "ChunkModeActive", true);
  CSimRig::SetEnum(camera, "ChunkSelector", "FrameID");
  CSimRig::SetBool(camera, "ChunkEnable", true);
}

TEST(CameraImage, ChunkDataBecomesChunksThatPointIntoTheBuffer) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  EnableFrameIDChunk(*camera);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  SImageGuard image;
  ASSERT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
  const std::list<IChunk*> chunks = image.image->GetChunks();
  ASSERT_EQ(chunks.size(), 1u);
  IChunk* chunk = chunks.front();
  EXPECT_EQ(chunk->GetChunkId(), kChunkFrameID);
  ASSERT_EQ(chunk->GetChunkSize(), 8u);
  EXPECT_GE(chunk->GetChunkData(), image.image->GetBuffer());
  EXPECT_LE(chunk->GetChunkData() + chunk->GetChunkSize(), image.image->GetBuffer() + image.image->GetBufferSize());
  EXPECT_EQ(BigEndian64(chunk->GetChunkData()), image.image->GetFrameId());
  EXPECT_EQ(image.image->GetImageOffset(), 0u);
  EXPECT_GT(camera->PayloadSize(), ImageSizeBytes(0x01080001, 640, 480)) << "the payload holds the chunks too";
}

TEST(CameraImage, WithoutChunkModeThereAreNoChunks) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Newest, 0), Status::Ok);
  SImageGuard image;
  ASSERT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
  EXPECT_TRUE(image.image->GetChunks().empty());
  EXPECT_EQ(camera->PayloadSize(), ImageSizeBytes(0x01080001, 640, 480));
}

TEST(CameraImage, SeveralChunksInEveryGrabMode) {
  for (uint32_t mode : {GrabMode::Direct, GrabMode::Newest, GrabMode::Fresh}) {
    CSimRig rig;
    CCamera* camera = rig.Camera(1);
    ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
    CSimRig::SetBool(*camera, "ChunkModeActive", true);
    for (const char* selector : {"Timestamp", "FrameID", "ExposureTime"}) {
      CSimRig::SetEnum(*camera, "ChunkSelector", selector);
      CSimRig::SetBool(*camera, "ChunkEnable", true);
    }
    ASSERT_EQ(camera->StartGrabbing(mode, 0), Status::Ok);
    SImageGuard image;
    ASSERT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
    EXPECT_EQ(image.image->GetChunks().size(), 3u);
    bool sawTimestamp = false;
    for (IChunk* chunk : image.image->GetChunks()) {
      if (chunk->GetChunkId() == kChunkTimestamp) {
        sawTimestamp = true;
        EXPECT_EQ(BigEndian64(chunk->GetChunkData()), image.image->GetTimestamp());
      }
    }
    EXPECT_TRUE(sawTimestamp);
  }
}

TEST(CameraImage, ZippedDescriptionsServeTheSameCamera) {
  CSimRig rig("TalvirSim.cti",
              R"({ "interfaces": [ { "devices": [ { "xmlZipped": true, "urlScheme": "Local:" } ] } ] })");
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  EXPECT_EQ(camera->GetRemoteXml()->GetXmlFileExtension(), "ZIP");
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  SImageGuard image;
  ASSERT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
  EXPECT_EQ(image.image->GetWidth(), 640u);
}

TEST(CameraImage, OldChunkPayloadsTakeTheirGeometryFromTheCamera) {
  CSimRig rig("TalvirSim.cti", R"({ "interfaces": [ { "devices": [ { "legacyChunkPayload": true,
      "width": 320, "height": 200, "pixelFormats": ["Mono8", "Mono16"], "pixelFormat": "Mono16" } ] } ] })");
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  SImageGuard image;
  ASSERT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
  EXPECT_EQ(image.image->GetPayloadType(), 4u);
  EXPECT_EQ(image.image->GetWidth(), 320u);
  EXPECT_EQ(image.image->GetPixelFormat(), 0x01100007u) << "Mono16, as the camera is set";
  // The producer reported the byte count as height: divided by the bytes of a line.
  EXPECT_EQ(image.image->GetHeight(), 200u);
  EXPECT_EQ(image.image->GetLinePitch(), 640u);
}

TEST(CameraImage, FrameGrabbersWithoutBufferHeightUseTheStreamsBufferHeight) {
  CSimRig rig("TalvirSimCXP.cti", R"({ "interfaces": [ { "devices": [ { "width": 128, "height": 96 } ] } ] })");
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  SImageGuard image;
  ASSERT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
  EXPECT_EQ(image.image->GetHeight(), 96u);
  EXPECT_EQ(image.image->GetWidth(), 128u);
  EXPECT_EQ(camera->PayloadSize(), 128u * 96u) << "the payload comes from the stream's own features";
}

TEST(CameraImage, SizeCheckOneRejectsAnImageOfAnotherSizeWithoutLosingItsBuffer) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  EnableFrameIDChunk(*camera);
  camera->SetSizeCheckMode(1);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  for (int i = 0; i < 10; ++i) {
    IImage* image = nullptr;
    EXPECT_EQ(camera->GetImage(&image, 2000), Status::Timeout) << "the chunks make the payload larger";
    EXPECT_EQ(image, nullptr);
  }
  camera->SetSizeCheckMode(0);
  SImageGuard image;
  EXPECT_EQ(camera->GetImage(&image.image, 2000), Status::Ok) << "the rejected buffers went back";
}

TEST(CameraImage, SizeCheckOneAcceptsAnImageOfThePayloadSize) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  camera->SetSizeCheckMode(1);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  SImageGuard image;
  EXPECT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
}

TEST(CameraImage, SizeCheckTwoReportsTheImageFilledToThePayloadAndKeepsTheChunks) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  EnableFrameIDChunk(*camera);
  camera->SetSizeCheckMode(2);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  SImageGuard image;
  ASSERT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
  EXPECT_EQ(image.image->GetFilledSize(), camera->PayloadSize());
  ASSERT_EQ(image.image->GetChunks().size(), 1u);
  EXPECT_EQ(BigEndian64(image.image->GetChunks().front()->GetChunkData()), image.image->GetFrameId());
}

TEST(CameraImage, ConvertedImagesForMonoAndColour) {
  CSimRig rig("TalvirSim.cti", R"({ "interfaces": [ { "devices": [
      { "width": 64, "height": 32, "pixelFormat": "Mono12" }, { "width": 64, "height": 32 } ] } ] })");
  for (size_t index : {0u, 1u}) {
    CCamera* camera = rig.Camera(index);
    ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
    ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
    SImageGuard image;
    ASSERT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
    const uint8_t* converted = image.image->GetConvertedImage();
    ASSERT_NE(converted, nullptr);
    EXPECT_EQ(image.image->GetConvertedImage(), converted) << "made once";
    const uint32_t output = ConvertedPixelFormat(static_cast<uint32_t>(image.image->GetPixelFormat()));
    if (index == 0) {
      EXPECT_EQ(output, 0x01080001u);
      // Mono12 to Mono8 keeps the top 8 of 12 bits.
      const auto* pixels = reinterpret_cast<const uint16_t*>(image.image->GetBuffer());
      EXPECT_EQ(converted[5], static_cast<uint8_t>(pixels[5] >> 4));
    } else {
      EXPECT_EQ(output, 0x02180015u);
    }
  }
}

TEST(CameraImage, IncompleteImagesAreHandedOutWithTheirCodeAndConvertNothing) {
  CSimRig rig("TalvirSim.cti", R"({ "interfaces": [ { "devices": [ { "faults": { "incompleteEveryN": 1 } } ] } ] })");
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  SImageGuard image;
  EXPECT_EQ(camera->GetImage(&image.image, 2000), Status::ImageIncomplete);
  ASSERT_NE(image.image, nullptr);
  EXPECT_FALSE(image.image->IsComplete());
  EXPECT_EQ(image.image->GetConvertedImage(), nullptr);
  image.image->SetUserData(42);
  EXPECT_EQ(image.image->GetUserData(), 42u);
}

TEST(CameraImage, ReleasingTheCameraBeforeItsImagesIsSafe) {
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
  IImage* image = nullptr;
  ASSERT_EQ(camera->GetImage(&image, 2000), Status::Ok);
  camera->Release();
  EXPECT_EQ(image->GetWidth(), 640u);
  EXPECT_EQ(image->GetConvertedImage(), nullptr) << "the conversion tool went with the camera";
  image->Release();
}

TEST(CameraImage, LinePitchFollowsThePixelLayout) {
  CSimRig rig("TalvirSim.cti", R"({ "interfaces": [ { "devices": [
      { "width": 64, "height": 8, "pixelFormat": "Mono12Packed" }, { "width": 64, "height": 8, "pixelFormat": "RGB8" } ] } ] })");
  for (size_t index : {0u, 1u}) {
    CCamera* camera = rig.Camera(index);
    ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
    ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
    SImageGuard image;
    ASSERT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
    EXPECT_EQ(image.image->GetLinePitch(), index == 0 ? 96u : 192u);
  }
}

TEST(CameraImage, EveryImageOfAnAcquisitionCarriesTheProducersOwnFigures) {
  // The GigE flavour answers buffer information 1001..1003 with packet counts: complete, resent, missing.
  CSimRig rig("TalvirSimGEVTL.cti");
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  GenApi::CIntegerPtr packetSize(CSimRig::Features(*camera).GetNode("GevSCPSPacketSize"));
  ASSERT_TRUE(packetSize.IsValid());
  const auto perPacket = static_cast<uint64_t>(packetSize->GetValue()) - 36;
  for (int acquisition = 0; acquisition < 2; ++acquisition) {
    ASSERT_EQ(camera->StartGrabbing(GrabMode::Direct, 0), Status::Ok);
    const uint64_t packets = (camera->PayloadSize() + perPacket - 1) / perPacket;
    for (int i = 0; i < 3; ++i) {
      SImageGuard image;
      ASSERT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
      EXPECT_EQ(image.image->GetCustomInfo1(), packets) << "image " << i;
      EXPECT_EQ(image.image->GetCustomInfo2(), 0u);
      EXPECT_EQ(image.image->GetCustomInfo3(), 0u);
    }
    camera->StopGrabbing();
  }
}

TEST(CameraImage, AProducerWithoutItsOwnFiguresGivesZeroAndCompleteImages) {
  // The default flavour refuses buffer information 1001..1003 as unknown commands; images stay fully described.
  CSimRig rig;
  CCamera* camera = rig.Camera(0);
  ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
  for (uint32_t mode : {GrabMode::Direct, GrabMode::Newest}) {
    ASSERT_EQ(camera->StartGrabbing(mode, 0), Status::Ok);
    uint64_t lastFrame = 0;
    for (int i = 0; i < 3; ++i) {
      SImageGuard image;
      ASSERT_EQ(camera->GetImage(&image.image, 2000), Status::Ok);
      EXPECT_EQ(image.image->GetCustomInfo1(), 0u);
      EXPECT_EQ(image.image->GetCustomInfo2(), 0u);
      EXPECT_EQ(image.image->GetCustomInfo3(), 0u);
      EXPECT_EQ(image.image->GetWidth(), 640u);
      EXPECT_GT(image.image->GetFrameId(), lastFrame);
      EXPECT_NE(image.image->GetTimestamp(), 0u);
      lastFrame = image.image->GetFrameId();
    }
    camera->StopGrabbing();
  }
}

}  // namespace
}  // namespace TALVIR
