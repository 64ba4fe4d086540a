#pragma once
// A simulated serial camera on a pseudo-terminal that the PC's serial library lists (through TALVIR_SERIAL_PORTS),
// and the device ID template of our driver.
#include <CLProtocol/CLPort.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "SerialCameraServer.h"

class SerialLinkTest : public ::testing::Test {
protected:
  // Starts a camera with this configuration (the fixture starts one with the defaults first).
  void StartCamera(const TalvirSerialCam::SCameraConfig& config);
  void SetUp() override;
  void TearDown() override;

  // "COM_Port#<pseudo-terminal>".
  std::string PortId() const;
  // Our driver's template, found through CCLPort::GetDeviceIDTemplates.
  static std::string DriverTemplate();
  // Connects a port to the camera with the register time-out given.
  std::unique_ptr<CLProtocol::CCLPort> Connect(uint32_t registerTimeoutMs = 500);

  std::unique_ptr<TalvirSerialCam::CSerialCameraServer> m_camera;
};
