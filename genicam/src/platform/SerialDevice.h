#pragma once
// One serial device opened for raw 8N1 byte transfer with time-outs (the PC's own ports and pseudo-terminals).
#include <cstddef>
#include <cstdint>
#include <string>

namespace GenICam {
namespace Platform {

enum class ESerialResult {
  Ok,
  Timeout,  // not everything arrived (or left) in time
  Gone,     // the device hung up: unplugged adapter, closed pseudo-terminal
  Failed    // any other failure of the operating system
};

class CSerialDevice {
public:
  CSerialDevice() = default;
  ~CSerialDevice();
  CSerialDevice(const CSerialDevice&) = delete;
  CSerialDevice& operator=(const CSerialDevice&) = delete;

  // Opens the device (a device file, or a port name such as "COM3" on Windows) raw at 9600 baud, 8 data bits, no parity, one stop bit, no flow control. On failure returns
  // false and says why in `error`.
  bool Open(const std::string& path, std::string& error);
  // After a failed Open: whether the device does not exist (rather than being busy or refused).
  bool OpenFailedForMissingDevice() const { return m_missing; }
  void Close();
  bool IsOpen() const { return m_device != kClosed; }

  // Reads exactly `size` bytes, waiting at most `timeoutMs`. On a time-out nothing is copied: the bytes that did
  // arrive stay queued for the next read.
  ESerialResult Read(void* buffer, size_t size, uint32_t timeoutMs);
  // Writes all bytes, waiting at most `timeoutMs` for the device to take them.
  ESerialResult Write(const void* buffer, size_t size, uint32_t timeoutMs);
  // Bytes that a read could take at once.
  size_t BytesAvailable();
  // Drops queued input and output.
  void Flush();
  // Sets both directions to `baud` (bits per second) once queued output has left. False for a rate the system
  // does not offer.
  bool SetBaudRate(uint32_t baud);

  // Whether the system offers this rate.
  static bool IsSupportedBaudRate(uint32_t baud);

private:
  // The open device: a file descriptor on Linux, a handle on Windows; kClosed when none is open.
  static constexpr intptr_t kClosed = -1;
  intptr_t m_device = kClosed;
  bool m_missing = false;
  std::string m_pending;
};

}  // namespace Platform
}  // namespace GenICam
