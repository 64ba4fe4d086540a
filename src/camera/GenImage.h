#pragma once
// CGenImage: one filled buffer of a camera's data stream as the application sees it, with its chunk records and
// a converted copy for display made on demand.
#include "camera/BufferMemory.h"
#include "camera/Chunk.h"

#include <talvir/IImage.h>

#include <chrono>
#include <cstdint>
#include <list>
#include <memory>

namespace TALVIR {

class CCamera;
class CCameraLink;
class CCti;

// Fill results; the camera turns them into its own codes (Status::Image...).
namespace FillResult {
constexpr int32_t Ok = 0;
constexpr int32_t Invalid = -1;
constexpr int32_t QueryFailed = -2;
constexpr int32_t Incomplete = -3;
constexpr int32_t NoBase = -4;
constexpr int32_t UnknownPixelFormat = -5;
constexpr int32_t BufferTooSmall = -6;
constexpr int32_t NoGeometry = -7;
}  // namespace FillResult

class CGenImage final : public IImage {
public:
  // `camera` describes buffers without geometry and converts; `link` brings the buffer back to it on release;
  // `memory` keeps the buffer readable for as long as the image lives.
  // `acquisition` names the acquisition the buffer belongs to.
  CGenImage(CCamera* camera, std::shared_ptr<CCameraLink> link, std::shared_ptr<CBufferMemory> memory,
            uint64_t acquisition);
  CGenImage(const CGenImage&) = delete;
  CGenImage& operator=(const CGenImage&) = delete;

  // Describes `buffer` from the producer's buffer information and chunk list: a FillResult.
  int32_t Fill(CCti* producer, void* stream, void* buffer, bool fillFlag);

  // Zeroes what the producer left unfilled up to `size` bytes (at most the buffer's size), and reports the
  // buffer filled up to there.
  void ZeroFillTo(uint64_t size);
  // Whether the buffer holds chunk data, and the fill flag the camera passed.
  bool HasChunks() const { return m_hasChunks; }
  bool FillFlag() const { return m_fillFlag; }

  bool IsComplete() const override { return !m_incomplete; }
  uint64_t GetPayloadType() const override { return m_payloadType; }
  const uint8_t* GetBuffer() const override { return static_cast<const uint8_t*>(m_pBase); }
  uint64_t GetBufferSize() const override { return m_size; }
  bool IsImagePresent() const override { return m_imagePresent; }
  uint64_t GetFrameId() const override { return m_frameId; }
  uint64_t GetImageOffset() const override { return m_imageOffset; }
  uint64_t GetWidth() const override { return m_width; }
  uint64_t GetHeight() const override { return m_height; }
  uint64_t GetPixelFormat() const override { return m_pixelFormat; }
  uint64_t GetOffsetX() const override { return m_offsetX; }
  uint64_t GetOffsetY() const override { return m_offsetY; }
  uint64_t GetPaddingX() const override { return m_paddingX; }
  uint64_t GetPaddingY() const override { return m_paddingY; }
  std::list<IChunk*> GetChunks() const override;
  uint64_t GetTimestamp() const override { return m_timestamp; }
  uint64_t GetCustomInfo1() const override { return m_custom1; }
  uint64_t GetCustomInfo2() const override { return m_custom2; }
  uint64_t GetCustomInfo3() const override { return m_custom3; }
  uint64_t GetPixelBits() const override { return m_pixelBits; }
  uint64_t GetPixelFactor() const override { return m_pixelFactor; }
  uint64_t GetLinePitch() const override;
  const uint8_t* GetConvertedImage() override;
  void SetUserData(uint64_t value) override { m_userData = value; }
  uint64_t GetUserData() const override { return m_userData; }
  void Release() override;
  uint64_t GetFilledSize() const override { return m_sizeFilled; }

  // When the producer handed the buffer over (the fetch's wait ended): what decides whether an image is fresh.
  void SetDeliveredAt(std::chrono::steady_clock::time_point when) { m_deliveredAt = when; }
  std::chrono::steady_clock::time_point DeliveredAt() const { return m_deliveredAt; }

  // The buffer handle; the camera looks it up when the image is released.
  void* BufferHandle() const { return m_hBuffer; }

private:
  ~CGenImage() override;

  // One buffer information query: what to ask, where the answer goes, and whether it came.
  struct SInfoQuery {
    int32_t command;
    void* value;
    size_t size;
    bool ok = false;
  };
  static constexpr size_t kMaxStackedQueries = 32;

  // Answers every query: in one call where the producer offers stacked queries, else one call each.
  void QueryAll(CCti* producer, void* stream, SInfoQuery* queries, size_t count) const;
  // True when the producer answered with at most `size` bytes; `error` (when given) receives the producer's code.
  bool QueryInfo(CCti* producer, void* stream, int32_t command, void* value, size_t size,
                 int32_t* error = nullptr) const;
  void ReadCustomInfo(CCti* producer, void* stream);
  void ReadChunks(CCti* producer, void* stream);
  void ReadCxpHeight();

  CCamera* m_pCamera;
  void* m_hBuffer = nullptr;
  bool m_incomplete = false;
  uint64_t m_width = 0;
  uint64_t m_height = 0;
  void* m_pBase = nullptr;
  uint64_t m_size = 0;
  uint64_t m_sizeFilled = 0;
  uint64_t m_frameId = 0;
  uint64_t m_pixelFormat = 0;
  uint64_t m_offsetX = 0;
  uint64_t m_offsetY = 0;
  uint64_t m_paddingX = 0;
  uint64_t m_paddingY = 0;
  uint64_t m_timestamp = 0;
  bool m_imagePresent = false;
  uint64_t m_imageOffset = 0;
  uint64_t m_payloadType = 0;
  uint64_t m_custom1 = 0;
  uint64_t m_custom2 = 0;
  uint64_t m_custom3 = 0;
  bool m_hasChunks = false;
  std::list<std::unique_ptr<CChunk>> m_chunks;
  uint64_t m_pixelBits = 8;
  uint64_t m_pixelFactor = 1;
  const uint8_t* m_pConverted = nullptr;
  bool m_fillFlag = true;
  uint64_t m_userData = 0;
  std::shared_ptr<CCameraLink> m_link;
  std::shared_ptr<CBufferMemory> m_memory;
  uint64_t m_acquisition;
  std::chrono::steady_clock::time_point m_deliveredAt;
};

}  // namespace TALVIR
