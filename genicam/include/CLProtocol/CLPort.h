#pragma once
// CCLPort: the register port of a Camera Link camera over its serial link.
//
// It lists the serial ports of every Camera Link serial library and the device ID templates of every CLProtocol
// driver, probes a port with a template, connects to a camera through the driver its device ID names, downloads the
// camera's description file and serves register reads and writes to a node map (connect it with
// CNodeMapRef::_Connect). Failures are raised as GenICam exceptions whose text names the status code and its cause:
// TimeoutException when the camera does not answer, AccessException for a port that is not connected or a register
// the camera refuses, RuntimeException otherwise.
#include <cstdint>
#include <memory>
#include <mutex>

#include <CLProtocol/CLProtocolDriverApi.h>
#include <CLProtocol/CLProtocolExport.h>
#include <GCBase/GCString.h>
#include <GenApi/Interfaces.h>

namespace CLProtocol {

class CConnection;

class CLPROTOCOL_API CCLPort : public GenApi::IPort {
public:
  CCLPort();
  ~CCLPort() override;
  CCLPort(const CCLPort&) = delete;
  CCLPort& operator=(const CCLPort&) = delete;

  // Port IDs "<manufacturer>#<port name>" of every serial library found, in library order then port order.
  static void GetPortIDs(GenICam::gcstring_vector& portIds);
  // Device ID templates "<directory>#<driver file>#<short template>" of every driver found.
  static void GetDeviceIDTemplates(GenICam::gcstring_vector& templates);
  // Probes a port with a template (or a full device ID) through the driver it names and returns the driver's
  // answer. The port is opened for the probe and closed again.
  static GenICam::gcstring ProbeDevice(const GenICam::gcstring& portId, const GenICam::gcstring& deviceIdTemplate,
                                       unsigned timeoutMs = 500);

  // Opens the port, probes with the device ID and keeps the connection. The link then runs at the fastest baud rate
  // that camera and port share (falling back to 9600 when the switch fails). Raises when already connected.
  void Connect(const GenICam::gcstring& deviceId, const GenICam::gcstring& portId);
  // Ends the connection and closes the port; nothing happens when not connected.
  void Disconnect();
  bool IsConnected() const;

  // The camera's first description file: plain text, unzipped when stored zipped if `inflate` is true; else the
  // bytes as stored.
  GenICam::gcstring GetXML(bool inflate = true);

  // The link's current baud-rate bit, the bits camera and port share, and switching (raises on failure; the link then
  // keeps its previous rate).
  uint32_t GetBaudRate();
  uint32_t GetSupportedBaudRates();
  void SetBaudRate(uint32_t rateBit);
  // Register time-out for later reads and writes (default 500 ms).
  void SetRegisterTimeout(uint32_t timeoutMs);

  // RW while connected, NA otherwise.
  GenApi::EAccessMode GetAccessMode() const override;
  void Read(void* pBuffer, int64_t Address, int64_t Length) override;
  void Write(const void* pBuffer, int64_t Address, int64_t Length) override;

private:
  mutable std::mutex m_lock;  // one command at a time on the link
  std::unique_ptr<CConnection> m_connection;
  uint32_t m_registerTimeoutMs = 500;
};

}  // namespace CLProtocol
