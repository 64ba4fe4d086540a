#include "Device.h"

#include "DataStream.h"
#include "Interface.h"
#include "Library.h"
#include "talvirsim/SimRegisters.h"

namespace TalvirSim {
namespace {

std::string PixelFormatEntries() {
  std::string entries;
  for (const SPixelFormat& format : AllPixelFormats()) {
    char entry[160];
    std::snprintf(entry, sizeof entry,
                  "    <EnumEntry Name=\"%s\" NameSpace=\"Standard\"><Value>0x%08X</Value></EnumEntry>\n", format.name,
                  format.code);
    entries += entry;
  }
  return entries;
}

}  // namespace

CDevice::CDevice(std::shared_ptr<CInterface> parent, std::shared_ptr<CSimCamera> camera,
                 GenTL::DEVICE_ACCESS_FLAGS flags)
    : m_interface(std::move(parent)), m_camera(std::move(camera)), m_writable(flags != GenTL::DEVICE_ACCESS_READONLY) {
  const EFlavour flavour = Lib().Config().flavour;
  std::string xml = EmbeddedXml("device.xml");
  std::string features;
  std::string nodes;
  if (flavour == EFlavour::GEV) {
    features = "<pFeature>GigEVisionStreamTuning</pFeature>";
    nodes = EmbeddedXml("device_gev.xml");
  } else if (flavour == EFlavour::CL) {
    features = "<pFeature>GrabberImageFormat</pFeature>";
    nodes = ReplaceMarker(EmbeddedXml("device_cl.xml"), "<!--@PIXEL_FORMAT_ENTRIES@-->", PixelFormatEntries());
  }
  xml = ReplaceMarker(xml, "<!--@EXTRA_FEATURES@-->", features);
  xml = ReplaceMarker(xml, "<!--@EXTRA_NODES@-->", nodes);
  m_description = ModuleDescription("TalvirSimDevice", xml);

  CSimCamera* cam = m_camera.get();
  m_bank.AddString(0x1000, 256, [cam](size_t) { return cam->Config().id; });
  m_bank.AddString(0x1100, 256, [cam](size_t) { return cam->Config().vendor; });
  m_bank.AddString(0x1200, 256, [cam](size_t) { return cam->Config().model; });
  m_bank.AddString(0x1300, 256, [cam](size_t) { return cam->Config().serial; });
  m_bank.AddInt(0x0000, 8, [](size_t) { return TransportTypeCode(Lib().Config().tlType, false); });
  m_bank.AddStored(0x0008, 8, 0);
  m_bank.AddInt(0x0018, 8, [cam](size_t) { return static_cast<uint64_t>(cam->AccessStatus()); });
  m_bank.AddString(0x10000, 256, [cam](size_t) { return cam->Config().id + "-Stream0"; });
  if (flavour == EFlavour::GEV) {
    // What a GigE consumer writes after opening: tuning word and packet-size limits, read back by tests.
    m_bank.AddStored(DeviceModule::kStreamTuning, 4, 0);
    m_bank.AddStored(DeviceModule::kPacketSizeMin, 2, 0);
    m_bank.AddStored(DeviceModule::kPacketSizeMax, 2, 0);
    m_bank.AddStored(DeviceModule::kPacketSizeInc, 2, 0);
    m_bank.AddStored(0x0040, 8, 0);
    m_bank.AddStored(0x0048, 8, 0);
    m_bank.AddStored(0x0050, 8, 1000);
  }
  if (flavour == EFlavour::CL) {
    auto grabber = [cam](uint64_t remote) {
      return std::make_pair([cam, remote](size_t) { return cam->GrabberRegister(remote); },
                            [cam, remote](size_t, uint64_t value) { cam->SetGrabberRegister(remote, value); });
    };
    auto width = grabber(Remote::kWidth);
    m_bank.AddInt(0x0100, 8, width.first, width.second);
    auto height = grabber(Remote::kHeight);
    m_bank.AddInt(0x0108, 8, height.first, height.second);
    auto format = grabber(Remote::kPixelFormat);
    m_bank.AddInt(0x0110, 8, format.first, format.second);
    auto locked = grabber(Remote::kTLParamsLocked);
    m_bank.AddInt(0x0118, 8, locked.first, locked.second);
    m_bank.AddInt(0x0120, 8, [cam](size_t) { return cam->GrabberRegister(Remote::kPayloadSize); });
    m_bank.AddInt(0x0128, 8, [cam](size_t) { return cam->GrabberRegister(Remote::kWidthMax); });
    m_bank.AddInt(0x0130, 8, [cam](size_t) { return cam->GrabberRegister(Remote::kHeightMax); });
  }
}

void CDevice::Init() {
  m_remote = std::make_shared<CRemotePort>(m_camera, m_writable);
  Lib().AddHandle(shared_from_this());
  Lib().AddHandle(m_remote);
}

void CDevice::ReadPort(uint64_t address, void* buffer, size_t length) {
  if (m_camera->IsLost()) {
    Fail(GenTL::GC_ERR_IO, "the device " + m_camera->Config().id + " is lost");
  }
  CBankPort::ReadPort(address, buffer, length);
}

void CDevice::WritePort(uint64_t address, const void* buffer, size_t length) {
  if (m_camera->IsLost()) {
    Fail(GenTL::GC_ERR_IO, "the device " + m_camera->Config().id + " is lost");
  }
  CBankPort::WritePort(address, buffer, length);
}

void CDevice::GetInfo(GenTL::DEVICE_INFO_CMD command, const SInfoOut& out) { CameraInfo(*m_camera, command, out); }

std::string CDevice::StreamId(uint32_t index) {
  if (index >= NumStreams()) {
    Fail(GenTL::GC_ERR_INVALID_INDEX, "stream index " + std::to_string(index) + " of 1");
  }
  return m_camera->Config().id + "-Stream0";
}

std::shared_ptr<CDataStream> CDevice::OpenStream(const std::string& id) {
  if (id != StreamId(0)) {
    Fail(GenTL::GC_ERR_INVALID_ID, "no data stream '" + id + "'");
  }
  if (m_camera->IsLost()) {
    Fail(GenTL::GC_ERR_IO, "the device " + m_camera->Config().id + " is lost");
  }
  std::lock_guard<std::mutex> lock(m_mutex);
  if (!m_stream.expired()) {
    Fail(GenTL::GC_ERR_RESOURCE_IN_USE, "the data stream '" + id + "' is already open");
  }
  auto stream = std::make_shared<CDataStream>(std::dynamic_pointer_cast<CDevice>(shared_from_this()), id);
  stream->Init();
  m_stream = stream;
  return stream;
}

void CDevice::StreamClosed() {
  std::lock_guard<std::mutex> lock(m_mutex);
  m_stream.reset();
}

void CDevice::Close() {
  std::shared_ptr<CDataStream> stream;
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_closed) {
      return;
    }
    m_closed = true;
    stream = m_stream.lock();
  }
  if (stream) {
    stream->Close();
  }
  m_camera->UnregisterAll();
  m_camera->Close();
  Lib().RemoveHandle(m_remote->Handle());
  Lib().RemoveHandle(Handle());
  m_interface->DeviceClosed(m_camera->Config().id);
}

}  // namespace TalvirSim
