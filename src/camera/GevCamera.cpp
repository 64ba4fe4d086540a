#include "camera/GevCamera.h"

#include "camera/CtiPort.h"
#include "camera/GenImage.h"
#include "camera/GevFeatures.h"
#include "camera/HelperLibrary.h"
#include "gentl/CameraInfo.h"
#include "gentl/Cti.h"
#include "platform/Network.h"

#include <talvir/CustomInfo.h>

#include <string>

namespace TALVIR {
namespace {

// Producer registers of the GigE device module: stream packet size limits and the producer's own settings word.
constexpr uint64_t kPacketSizeMinRegister = 0x228;
constexpr uint64_t kPacketSizeMaxRegister = 0x22C;
constexpr uint64_t kPacketSizeIncRegister = 0x230;
constexpr uint64_t kSettingsRegister = 0x24;
constexpr uint32_t kSettingsValue = 0x430;
constexpr int64_t kImageTimeoutMs = 2000;
// The fetch result that counts as a packet time-out: an image delivered incomplete.
constexpr int32_t kPacketTimeoutResult = Status::ImageIncomplete;

template <typename TNode>
GenApi::CPointer<TNode> NodeOf(GenApi::INodeMap& features, const char* name) {
  GenApi::INode* const node = features.GetNode(name);
  GenApi::CPointer<TNode> typed(node);
  if (node != nullptr && !typed.IsValid()) {
    throw LOGICAL_ERROR_EXCEPTION("%s is not of the expected node type", name);
  }
  return typed;
}

}  // namespace

CGevCamera::CGevCamera(CCameraInfo* info, CCameraRegistry* registry) : CCamera(info, registry) {
  const char* const text = info != nullptr ? info->GetCustomInfo(CustomInfo::GevIPAddress) : nullptr;
  uint32_t address = 0;
  if (text != nullptr && Platform::ParseIPv4(text, address)) {
    m_address = address;
  }
}

CGevCamera::~CGevCamera() { m_pBigEndianNode.Release(); }

STransportInfo CGevCamera::GetTransportInfo() {
  STransportInfo info{};
  info.bytesTotal = m_bytesTotal;
  info.timeouts = m_timeouts;
  info.frames = m_frames;
  info.packetCounter1 = m_packetCounter1;
  info.packetCounter2 = m_packetCounter2;
  info.packetCounter3 = m_packetCounter3;
  return info;
}

bool CGevCamera::GetImageFillFlag() { return m_pixelBigEndian.load(); }

int32_t CGevCamera::OpenDevice(uint32_t accessMode) {
  const int32_t result = CCamera::OpenDevice(accessMode);
  if (result != Status::Ok) {
    return result;
  }
  SetUpProducer();
  ExchangeConnected(true);
  return Status::Ok;
}

void CGevCamera::SetUpProducer() {
  CCti* const producer = Producer();
  CCtiPort* const remote = RemotePortLocked();
  CCtiPort* const device = DevicePortLocked();
  if (producer == nullptr || remote == nullptr || device == nullptr || device->Handle() == nullptr ||
      producer->Api().GCWritePort == nullptr || remote->GetNodeMap() == nullptr) {
    return;
  }
  const auto writeRegister = [&](uint64_t address, const void* value, size_t size) {
    producer->Api().GCWritePort(device->Handle(), address, value, &size);
  };
  try {
    SPacketSizeLimits limits;
    if (CGevFeatures::ReadPacketSizeLimits(*remote->GetNodeMap(), limits)) {
      writeRegister(kPacketSizeMinRegister, &limits.minimum, sizeof limits.minimum);
      writeRegister(kPacketSizeMaxRegister, &limits.maximum, sizeof limits.maximum);
      writeRegister(kPacketSizeIncRegister, &limits.increment, sizeof limits.increment);
      const uint32_t settings = kSettingsValue;
      writeRegister(kSettingsRegister, &settings, sizeof settings);
    }
    GenApi::INodeMap* const producerFeatures = device->GetNodeMap();
    if (producerFeatures == nullptr) {
      return;
    }
    GenApi::CBooleanPtr resend = NodeOf<GenApi::IBoolean>(*producerFeatures, "EnablePacketResend");
    if (resend.IsValid()) {
      resend->SetValue(true, true);
    }
    GenApi::CBooleanPtr filter = NodeOf<GenApi::IBoolean>(*producerFeatures, "EnableFilterDriver");
    if (filter.IsValid()) {
      filter->SetValue(true, true);
      filter->GetValue(true, true);
    }
    GenApi::CIntegerPtr timeout = NodeOf<GenApi::IInteger>(*producerFeatures, "ImageTimeout");
    if (timeout.IsValid()) {
      timeout->SetValue(kImageTimeoutMs, true);
    }
  } catch (const GenICam::GenericException&) {
    // The set-up is a tuning: a producer that refuses part of it still streams, so opening succeeds.
  }
}

void CGevCamera::PushToHelper() {
  CHelperLibrary& helper = CHelperLibrary::Process();
  CCtiPort* const remote = RemotePortLocked();
  GenApi::INodeMap* const features = remote != nullptr ? remote->GetNodeMap() : nullptr;
  if (features == nullptr || !helper.HasSetFunctions()) {
    return;
  }
  const SHelperSettings settings = CGevFeatures::ReadHelperSettings(*features);
  helper.SetCameraScanType.load()(m_address, settings.lineScan);
  helper.SetCameraTriggerSelector.load()(m_address, settings.lineStartTrigger);
  helper.SetCameraFrameRate.load()(m_address, settings.frameRate);
  helper.SetCameraExposureTime.load()(m_address, settings.exposure);
  helper.SetCameraSCPD.load()(m_address, settings.packetDelay);
}

int32_t CGevCamera::StartAcquisition(uint64_t count) {
  PushToHelper();
  int32_t result = CCamera::StartAcquisition(count);
  try {
    if (result == Status::Ok) {
      CCtiPort* const remote = RemotePortLocked();
      GenApi::INodeMap* const features = remote != nullptr ? remote->GetNodeMap() : nullptr;
      if (features == nullptr) {
        return Status::Ok;
      }
      ReadStartState(*features);
    }
  } catch (const GenICam::GenericException&) {
    result = -1;
  }
  ClearStatistics();
  return result;
}

void CGevCamera::ReadStartState(GenApi::INodeMap& features) {
  m_pBigEndianNode.Release();
  GenApi::CBooleanPtr bigEndian(features.GetNode("pgrPixelBigEndian"));
  if (bigEndian.IsValid() && GenApi::IsReadable(bigEndian)) {
    m_pBigEndianNode = bigEndian;
    m_pBigEndianNode->SetValue(true, true);
    m_pixelBigEndian = m_pBigEndianNode->GetValue(true, true);
  }
  GenApi::CIntegerPtr width(features.GetNode("Width"));
  GenApi::CIntegerPtr height(features.GetNode("Height"));
  const int64_t w = GenApi::IsReadable(width) ? width->GetValue() : 0;
  const int64_t h = GenApi::IsReadable(height) ? height->GetValue() : 0;
  uint32_t pixelFormat = StoredPixelFormat();
  GenApi::CEnumerationPtr format(features.GetNode("PixelFormat"));
  if (GenApi::IsReadable(format)) {
    pixelFormat = static_cast<uint32_t>(format->GetIntValue());
  }
  StoreGeometry(w > 0 ? static_cast<uint64_t>(w) : StoredWidth(), h > 0 ? static_cast<uint64_t>(h) : StoredHeight(),
                pixelFormat);
  GenApi::CEnumerationPtr partial(features.GetNode("PartialImageOutputMode"));
  uint32_t code = 0;
  if (GenApi::IsReadable(partial) && CGevFeatures::PartialImageModeOf(partial->ToString().c_str(), code)) {
    StorePartialImageMode(code);
  }
}

void CGevCamera::ClearStatistics() {
  m_bytesTotal = 0;
  m_timeouts = 0;
  m_frames = 0;
  m_packetCounter1 = 0;
  m_packetCounter2 = 0;
  m_packetCounter3 = 0;
}

int32_t CGevCamera::WaitImage(IImage** out, uint64_t timeoutMs) {
  const int32_t result = CCamera::WaitImage(out, timeoutMs);
  if (out != nullptr && *out != nullptr) {
    IImage* const image = *out;
    m_bytesTotal += image->GetBufferSize();
    m_packetCounter1 += image->GetCustomInfo1();
    m_packetCounter2 += image->GetCustomInfo2();
    m_packetCounter3 += image->GetCustomInfo3();
  }
  if (result == kPacketTimeoutResult) {
    ++m_timeouts;
  } else if (result == Status::Ok) {
    ++m_frames;
  }
  return result;
}

}  // namespace TALVIR
