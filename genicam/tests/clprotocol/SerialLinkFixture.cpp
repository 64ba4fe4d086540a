#include "SerialLinkFixture.h"

#include "platform/Environment.h"

#include "support/Skips.h"
#include "support/TestSystem.h"

void SerialLinkTest::StartCamera(const TalvirSerialCam::SCameraConfig& config) {
  m_camera.reset();
  m_camera = std::make_unique<TalvirSerialCam::CSerialCameraServer>(config);
  std::string error;
  ASSERT_TRUE(m_camera->Start(error)) << error;
  GenICam::Platform::SetEnvironmentVariable("TALVIR_SERIAL_PORTS", m_camera->PortPath());
}

void SerialLinkTest::SetUp() {
  TALVIR_SKIP_WITHOUT_PSEUDO_TERMINALS();
  StartCamera(TalvirSerialCam::SCameraConfig());
}

void SerialLinkTest::TearDown() {
  m_camera.reset();
  GenICam::Platform::SetEnvironmentVariable("TALVIR_SERIAL_PORTS", "");
}

std::string SerialLinkTest::PortId() const { return "COM_Port#" + m_camera->PortPath(); }

std::string SerialLinkTest::DriverTemplate() {
  GenICam::gcstring_vector templates;
  CLProtocol::CCLPort::GetDeviceIDTemplates(templates);
  for (const GenICam::gcstring& entry : templates) {
    const std::string suffix = "#" + TALVIR::Testing::ModuleFileName("TavCLProtocolGenCP") + "#KORIX#GENCP02";
    if (entry.size() > suffix.size() && entry.compare(entry.size() - suffix.size(), suffix.size(), suffix) == 0) {
      return entry;
    }
  }
  return {};
}

std::unique_ptr<CLProtocol::CCLPort> SerialLinkTest::Connect(uint32_t registerTimeoutMs) {
  auto port = std::make_unique<CLProtocol::CCLPort>();
  port->Connect(DriverTemplate(), PortId());
  port->SetRegisterTimeout(registerTimeoutMs);
  return port;
}
