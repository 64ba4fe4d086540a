#pragma once
// A GigE Vision camera: the common camera, plus what only GigE devices need. After opening it tunes the producer
// for the device (packet sizes, resend, filter driver, image time-out); before each start it pushes the camera's
// scan type, trigger state, frame rate, exposure and packet delay to the helper library, keyed by the device's
// address; at start it reads the geometry, pixel format, partial-image policy and pixel byte order; and it keeps
// transfer statistics over the images fetched.
#include "camera/Camera.h"

#include <GenApi/GenApi.h>

#include <atomic>
#include <cstdint>

namespace TALVIR {

// PartialImageOutputMode as a code.
namespace PartialImageMode {
constexpr uint32_t Output = 0;
constexpr uint32_t Discard = 1;
constexpr uint32_t Filled = 2;
}  // namespace PartialImageMode

class CGevCamera final : public CCamera {
public:
  // Parses the record's IPv4 address (custom item 1); an address that does not parse stays 0.
  CGevCamera(CCameraInfo* info, CCameraRegistry* registry);

  // The connection state: true from a successful open until the helper library reports the device lost (closing
  // does not clear it).
  bool IsOnline() override { return IsConnected(); }
  STransportInfo GetTransportInfo() override;

  int32_t OpenDevice(uint32_t accessMode) override;
  int32_t StartAcquisition(uint64_t count) override;
  int32_t WaitImage(IImage** out, uint64_t timeoutMs) override;
  // Whether pixels are big-endian: the camera's pgrPixelBigEndian where it has one, else true.
  bool GetImageFillFlag() override;

  uint32_t Address() const { return m_address; }
  uint32_t StoredPartialImageMode() const { return PartialImageMode(); }

protected:
  ~CGevCamera() override;

private:
  void SetUpProducer();
  void PushToHelper();
  void ReadStartState(GenApi::INodeMap& features);
  void ClearStatistics();

  GenApi::CBooleanPtr m_pBigEndianNode;
  std::atomic<bool> m_pixelBigEndian{true};
  uint32_t m_address = 0;
  std::atomic<uint64_t> m_bytesTotal{0};
  std::atomic<uint32_t> m_timeouts{0};
  std::atomic<uint64_t> m_frames{0};
  std::atomic<uint64_t> m_packetCounter1{0};
  std::atomic<uint64_t> m_packetCounter2{0};
  std::atomic<uint64_t> m_packetCounter3{0};
};

}  // namespace TALVIR
