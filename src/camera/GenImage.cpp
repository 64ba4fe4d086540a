#include "camera/GenImage.h"

#include "camera/Camera.h"
#include "camera/CameraLink.h"
#include "gentl/Cti.h"
#include "image/PixelLayout.h"

#include <talvir/TLType.h>

#include <GenApi/GenApi.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

namespace TALVIR {
namespace {

// Producer-specific buffer information with figures of the transport (GigE producers: packet counts).
constexpr int32_t kCustomInfo1 = 1001;
constexpr int32_t kCustomInfo2 = 1002;
constexpr int32_t kCustomInfo3 = 1003;

// Old producers deliver chunk-mode buffers as payload type 4 with this width and the byte count as height.
constexpr uint64_t kLegacyChunkPayloadType = 4;
constexpr uint64_t kNoGeometryWidth = 0xFFFFFFFFu;

}  // namespace

CGenImage::CGenImage(CCamera* camera, std::shared_ptr<CCameraLink> link, std::shared_ptr<CBufferMemory> memory,
                     uint64_t acquisition)
    : m_pCamera(camera), m_link(std::move(link)), m_memory(std::move(memory)), m_acquisition(acquisition) {}

CGenImage::~CGenImage() {
  m_chunks.clear();
  if (m_link != nullptr && m_hBuffer != nullptr) {
    void* const buffer = m_hBuffer;
    const uint64_t acquisition = m_acquisition;
    m_link->WithCamera([buffer, acquisition](CCamera& camera) { camera.RequeueBuffer(buffer, acquisition); });
  }
}

void CGenImage::Release() { delete this; }

bool CGenImage::QueryInfo(CCti* producer, void* stream, int32_t command, void* value, size_t size,
                          int32_t* error) const {
  const auto query = producer->Api().DSGetBufferInfo;
  if (query == nullptr) {
    return false;
  }
  GenTL::INFO_DATATYPE type = GenTL::INFO_DATATYPE_UNKNOWN;
  size_t returned = size;
  const GenTL::GC_ERROR result = query(stream, m_hBuffer, command, &type, value, &returned);
  if (error != nullptr) {
    *error = result;
  }
  return result == GenTL::GC_ERR_SUCCESS && returned <= size;
}

void CGenImage::ReadCustomInfo(CCti* producer, void* stream) {
  // Optional figures: a producer without them leaves 0. A producer that does not know such a command says so for
  // every buffer, and saying so can cost it far more than an answer (an error record with its text): the camera
  // remembers the refusal until the acquisition ends and the later images of the acquisition do not ask again.
  const int32_t commands[3] = {kCustomInfo1, kCustomInfo2, kCustomInfo3};
  uint64_t* const values[3] = {&m_custom1, &m_custom2, &m_custom3};
  for (uint32_t i = 0; i < 3; ++i) {
    const uint32_t bit = 1u << i;
    if (m_pCamera != nullptr && (m_pCamera->UnknownCustomInfo() & bit) != 0) {
      continue;
    }
    uint64_t value = 0;
    int32_t error = GenTL::GC_ERR_SUCCESS;
    const bool ok = QueryInfo(producer, stream, commands[i], &value, sizeof value, &error);
    *values[i] = ok ? value : 0;
    if (!ok && m_pCamera != nullptr && (error == GenTL::GC_ERR_INVALID_ID || error == GenTL::GC_ERR_NOT_IMPLEMENTED)) {
      m_pCamera->MarkCustomInfoUnknown(bit);
    }
  }
}

void CGenImage::QueryAll(CCti* producer, void* stream, SInfoQuery* queries, size_t count) const {
  const GenTL::PFN_DSGetBufferInfoStacked stacked = producer->BufferInfoStacked();
  if (stacked != nullptr && count <= kMaxStackedQueries) {
    GenTL::DS_BUFFER_INFO_STACKED entries[kMaxStackedQueries] = {};
    for (size_t i = 0; i < count; ++i) {
      entries[i].iInfoCmd = queries[i].command;
      entries[i].pBuffer = queries[i].value;
      entries[i].iSize = queries[i].size;
      entries[i].iResult = GenTL::GC_ERR_NOT_IMPLEMENTED;
    }
    const GenTL::GC_ERROR result = stacked(stream, m_hBuffer, entries, count);
    // A producer that exports the function without implementing it answers every entry as before the call.
    if (result != GenTL::GC_ERR_NOT_IMPLEMENTED) {
      for (size_t i = 0; i < count; ++i) {
        queries[i].ok = entries[i].iResult == GenTL::GC_ERR_SUCCESS && entries[i].iSize <= queries[i].size;
      }
      return;
    }
  }
  for (size_t i = 0; i < count; ++i) {
    queries[i].ok = QueryInfo(producer, stream, queries[i].command, queries[i].value, queries[i].size);
  }
}

int32_t CGenImage::Fill(CCti* producer, void* stream, void* buffer, bool fillFlag) {
  m_fillFlag = fillFlag;
  m_hBuffer = buffer;
  if (producer == nullptr || stream == nullptr || buffer == nullptr) {
    return FillResult::Invalid;
  }
  // Every standard figure in one pass (one call where the producer offers stacked queries). Flags are one byte,
  // every other figure at most eight; each starts at zero so that a producer answering with fewer bytes leaves a
  // defined value.
  uint8_t incomplete = 0;
  uint8_t imagePresent = 0;
  uint8_t hasChunks = 0;
  void* base = nullptr;
  SInfoQuery queries[] = {
      {GenTL::BUFFER_INFO_IS_INCOMPLETE, &incomplete, sizeof incomplete},
      {GenTL::BUFFER_INFO_WIDTH, &m_width, sizeof m_width},
      {GenTL::BUFFER_INFO_HEIGHT, &m_height, sizeof m_height},
      {GenTL::BUFFER_INFO_BASE, &base, sizeof base},
      {GenTL::BUFFER_INFO_SIZE, &m_size, sizeof m_size},
      {GenTL::BUFFER_INFO_SIZE_FILLED, &m_sizeFilled, sizeof m_sizeFilled},
      {GenTL::BUFFER_INFO_FRAMEID, &m_frameId, sizeof m_frameId},
      {GenTL::BUFFER_INFO_PIXELFORMAT, &m_pixelFormat, sizeof m_pixelFormat},
      {GenTL::BUFFER_INFO_XOFFSET, &m_offsetX, sizeof m_offsetX},
      {GenTL::BUFFER_INFO_YOFFSET, &m_offsetY, sizeof m_offsetY},
      {GenTL::BUFFER_INFO_XPADDING, &m_paddingX, sizeof m_paddingX},
      {GenTL::BUFFER_INFO_YPADDING, &m_paddingY, sizeof m_paddingY},
      {GenTL::BUFFER_INFO_TIMESTAMP, &m_timestamp, sizeof m_timestamp},
      {GenTL::BUFFER_INFO_IMAGEPRESENT, &imagePresent, sizeof imagePresent},
      {GenTL::BUFFER_INFO_IMAGEOFFSET, &m_imageOffset, sizeof m_imageOffset},
      {GenTL::BUFFER_INFO_PAYLOADTYPE, &m_payloadType, sizeof m_payloadType},
      {GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA, &hasChunks, sizeof hasChunks},
  };
  constexpr size_t kGeometryQueries = 3;  // incomplete, width, height
  constexpr size_t kBaseQuery = 3;
  constexpr size_t kRequiredQueries = 16;  // all but contains-chunk-data
  QueryAll(producer, stream, queries, sizeof queries / sizeof queries[0]);
  m_incomplete = incomplete != 0;
  m_imagePresent = imagePresent != 0;
  m_hasChunks = queries[kRequiredQueries].ok && hasChunks != 0;
  for (size_t i = 0; i < kGeometryQueries; ++i) {
    if (!queries[i].ok) {
      return FillResult::QueryFailed;
    }
  }
  if (!queries[kBaseQuery].ok) {
    return FillResult::QueryFailed;
  }
  if (base == nullptr) {
    return FillResult::NoBase;
  }
  m_pBase = base;
  for (size_t i = kBaseQuery + 1; i < kRequiredQueries; ++i) {
    if (!queries[i].ok) {
      return FillResult::QueryFailed;
    }
  }
  ReadCustomInfo(producer, stream);

  if (m_payloadType == kLegacyChunkPayloadType && m_width == kNoGeometryWidth) {
    // The producer knows no geometry: the camera's own width applies, and the height it reported is a byte count.
    const uint64_t width = m_pCamera != nullptr ? m_pCamera->StoredWidth() : 0;
    if (width == 0) {
      return FillResult::NoGeometry;
    }
    m_width = width;
    m_pixelFormat = m_pCamera->StoredPixelFormat();
    // Lines are counted in bytes of a line, so that formats of more than 8 bits get their true height too.
    const uint64_t lineBytes = ImageSizeBytes(static_cast<uint32_t>(m_pixelFormat), width, 1);
    m_height /= lineBytes != 0 ? lineBytes : width;
  }
  if (m_hasChunks) {
    m_imageOffset = 0;
  }
  if (m_height == 0 && m_pCamera != nullptr && (m_pCamera->TLType() & TLType::CXP) != 0) {
    ReadCxpHeight();
  }
  if (m_hasChunks) {
    ReadChunks(producer, stream);
  }
  if (m_incomplete) {
    return FillResult::Incomplete;
  }
  const SPixelLayout layout = PixelLayoutOf(static_cast<uint32_t>(m_pixelFormat));
  if (layout.bits == 0 || layout.factor == 0 || m_pixelFormat > std::numeric_limits<uint32_t>::max()) {
    return FillResult::UnknownPixelFormat;
  }
  m_pixelBits = layout.bits;
  m_pixelFactor = layout.factor;
  const uint64_t imageSize = ImageSizeBytes(static_cast<uint32_t>(m_pixelFormat), m_width, m_height);
  if (m_imageOffset > m_size || m_size - m_imageOffset < imageSize) {
    return FillResult::BufferTooSmall;
  }
  return FillResult::Ok;
}

void CGenImage::ReadCxpHeight() {
  // Frame grabbers that learn the height only from the frame report it in the stream's BufferHeight.
  try {
    IXml* const xml = m_pCamera->GetStreamXml();
    GenApi::INodeMap* const nodeMap = xml != nullptr ? xml->GetNodeMap() : nullptr;
    if (nodeMap == nullptr) {
      return;
    }
    GenApi::CIntegerPtr height(nodeMap->GetNode("BufferHeight"));
    if (height.IsValid()) {
      const int64_t value = height->GetValue(true, true);
      m_height = value > 0 ? static_cast<uint64_t>(value) : 0;
    }
  } catch (const GenICam::GenericException&) {
    // The height stays 0; the size checks below then see an empty image.
  }
}

void CGenImage::ReadChunks(CCti* producer, void* stream) {
  const auto chunkData = producer->Api().DSGetBufferChunkData;
  if (chunkData == nullptr) {
    return;
  }
  size_t count = 0;
  if (chunkData(stream, m_hBuffer, nullptr, &count) != GenTL::GC_ERR_SUCCESS || count == 0) {
    return;
  }
  std::vector<GenTL::SINGLE_CHUNK_DATA> records(count);
  if (chunkData(stream, m_hBuffer, records.data(), &count) != GenTL::GC_ERR_SUCCESS) {
    return;
  }
  count = std::min(count, records.size());
  auto* const base = static_cast<const uint8_t*>(m_pBase);
  for (size_t i = 0; i < count; ++i) {
    const GenTL::SINGLE_CHUNK_DATA& record = records[i];
    if (record.ChunkOffset < 0) {
      continue;
    }
    const auto offset = static_cast<uint64_t>(record.ChunkOffset);
    // A record reaching past the buffer's end is skipped rather than handed out as a pointer into foreign memory.
    if (offset > m_size || record.ChunkLength > m_size - offset) {
      continue;
    }
    m_chunks.push_back(std::make_unique<CChunk>(record.ChunkID, base + offset, record.ChunkLength));
  }
}

std::list<IChunk*> CGenImage::GetChunks() const {
  std::list<IChunk*> chunks;
  for (const std::unique_ptr<CChunk>& chunk : m_chunks) {
    chunks.push_back(chunk.get());
  }
  return chunks;
}

void CGenImage::ZeroFillTo(uint64_t size) {
  if (m_pBase == nullptr) {
    return;
  }
  // Only bytes the producer did not write: chunk data after a short image stays as delivered.
  const uint64_t end = std::min(size, m_size);
  const uint64_t imageEnd = m_imageOffset + ImageSizeBytes(static_cast<uint32_t>(m_pixelFormat), m_width, m_height);
  const uint64_t begin = std::max(std::min(imageEnd, end), std::min(m_sizeFilled, end));
  if (begin < end) {
    std::memset(static_cast<uint8_t*>(m_pBase) + begin, 0, static_cast<size_t>(end - begin));
  }
  m_sizeFilled = std::max(m_sizeFilled, end);
}

uint64_t CGenImage::GetLinePitch() const { return GetPixelFactor() * GetPixelBits() * GetWidth() / 8; }

const uint8_t* CGenImage::GetConvertedImage() {
  if (m_pConverted != nullptr || m_incomplete || m_pBase == nullptr || m_link == nullptr) {
    return m_pConverted;
  }
  // Only an image whose pixels lie wholly inside its buffer is converted.
  const uint64_t imageSize = ImageSizeBytes(static_cast<uint32_t>(m_pixelFormat), m_width, m_height);
  if (imageSize == 0 || m_imageOffset > m_size || m_size - m_imageOffset < imageSize ||
      m_pixelFormat > std::numeric_limits<uint32_t>::max()) {
    return nullptr;
  }
  const uint8_t* const pixels = static_cast<const uint8_t*>(m_pBase) + m_imageOffset;
  const uint8_t* converted = nullptr;
  m_link->WithCamera(
      [&](CCamera& camera) { converted = camera.ConvertPixels(pixels, m_width, m_height, m_pixelFormat); });
  m_pConverted = converted;
  return m_pConverted;
}

}  // namespace TALVIR
