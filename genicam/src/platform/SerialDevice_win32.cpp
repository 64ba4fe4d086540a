#include "platform/SerialDevice.h"

#include "platform/SystemError.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <chrono>
#include <cstring>

namespace GenICam {
namespace Platform {
namespace {

using Clock = std::chrono::steady_clock;

// The rates offered on every platform, so that a setting that works on one works on the other.
bool IsOfferedRate(uint32_t baud) {
  switch (baud) {
  case 9600:
  case 19200:
  case 38400:
  case 57600:
  case 115200:
  case 230400:
  case 460800:
  case 921600: return true;
  default: return false;
  }
}

DWORD RemainingMs(Clock::time_point deadline) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
  return left > 0 ? static_cast<DWORD>(left) : 0;
}

HANDLE AsHandle(intptr_t device) { return reinterpret_cast<HANDLE>(device); }

// "COM10" and above can only be opened through the device namespace; the short names can too, so every bare
// port name gets the prefix.
std::string DevicePath(const std::string& path) {
  if (path.rfind("\\\\.\\", 0) == 0 || path.find_first_of("\\/") != std::string::npos) {
    return path;
  }
  return "\\\\.\\" + path;
}

// An unplugged adapter or a port whose driver went away.
bool IsGoneError(DWORD error) {
  return error == ERROR_DEVICE_REMOVED || error == ERROR_BAD_COMMAND || error == ERROR_DEVICE_NOT_CONNECTED ||
         error == ERROR_GEN_FAILURE || error == ERROR_FILE_NOT_FOUND || error == ERROR_OPERATION_ABORTED;
}

// Reads return as soon as any byte is there, or after `waitMs` with nothing; a wait of zero returns at once.
bool SetReadWait(HANDLE device, DWORD waitMs) {
  COMMTIMEOUTS timeouts{};
  timeouts.ReadIntervalTimeout = MAXDWORD;
  if (waitMs > 0) {
    timeouts.ReadTotalTimeoutMultiplier = MAXDWORD;
    timeouts.ReadTotalTimeoutConstant = waitMs < MAXDWORD ? waitMs : MAXDWORD - 1;
  }
  return SetCommTimeouts(device, &timeouts) != 0;
}

bool SetWriteWait(HANDLE device, DWORD waitMs) {
  COMMTIMEOUTS timeouts{};
  timeouts.ReadIntervalTimeout = MAXDWORD;
  // A write constant of zero means "no limit": a write with no time left gets the shortest wait instead.
  timeouts.WriteTotalTimeoutConstant = waitMs > 0 ? waitMs : 1;
  return SetCommTimeouts(device, &timeouts) != 0;
}

}  // namespace

CSerialDevice::~CSerialDevice() { Close(); }

bool CSerialDevice::Open(const std::string& path, std::string& error) {
  Close();
  m_missing = false;
  const std::string devicePath = DevicePath(path);
  HANDLE device = CreateFileA(devicePath.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  if (device == INVALID_HANDLE_VALUE) {
    const DWORD code = GetLastError();
    m_missing = code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND;
    error = path + ": " + SystemErrorText(code);
    return false;
  }
  DCB settings{};
  settings.DCBlength = sizeof settings;
  if (!GetCommState(device, &settings)) {
    error = path + " is not a serial device: " + SystemErrorText(GetLastError());
    CloseHandle(device);
    return false;
  }
  // Raw 8N1 at 9600 baud without flow control; the modem lines stay raised for adapters that need them.
  settings.BaudRate = CBR_9600;
  settings.ByteSize = 8;
  settings.Parity = NOPARITY;
  settings.StopBits = ONESTOPBIT;
  settings.fBinary = TRUE;
  settings.fParity = FALSE;
  settings.fOutxCtsFlow = FALSE;
  settings.fOutxDsrFlow = FALSE;
  settings.fDtrControl = DTR_CONTROL_ENABLE;
  settings.fDsrSensitivity = FALSE;
  settings.fOutX = FALSE;
  settings.fInX = FALSE;
  settings.fErrorChar = FALSE;
  settings.fNull = FALSE;
  settings.fRtsControl = RTS_CONTROL_ENABLE;
  settings.fAbortOnError = FALSE;
  if (!SetCommState(device, &settings) || !SetReadWait(device, 0)) {
    error = path + ": cannot set 8N1 at 9600 baud: " + SystemErrorText(GetLastError());
    CloseHandle(device);
    return false;
  }
  PurgeComm(device, PURGE_RXCLEAR | PURGE_TXCLEAR);
  m_device = reinterpret_cast<intptr_t>(device);
  m_pending.clear();
  return true;
}

void CSerialDevice::Close() {
  if (IsOpen()) {
    CloseHandle(AsHandle(m_device));
    m_device = kClosed;
  }
  m_pending.clear();
}

ESerialResult CSerialDevice::Read(void* buffer, size_t size, uint32_t timeoutMs) {
  if (!IsOpen()) {
    return ESerialResult::Failed;
  }
  HANDLE device = AsHandle(m_device);
  const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
  char chunk[4096];
  while (m_pending.size() < size) {
    const DWORD waitMs = RemainingMs(deadline);
    if (!SetReadWait(device, waitMs)) {
      return IsGoneError(GetLastError()) ? ESerialResult::Gone : ESerialResult::Failed;
    }
    DWORD count = 0;
    if (!ReadFile(device, chunk, sizeof chunk, &count, nullptr)) {
      return IsGoneError(GetLastError()) ? ESerialResult::Gone : ESerialResult::Failed;
    }
    if (count > 0) {
      m_pending.append(chunk, count);
    } else if (waitMs == 0) {
      return ESerialResult::Timeout;
    }
  }
  std::memcpy(buffer, m_pending.data(), size);
  m_pending.erase(0, size);
  return ESerialResult::Ok;
}

ESerialResult CSerialDevice::Write(const void* buffer, size_t size, uint32_t timeoutMs) {
  if (!IsOpen()) {
    return ESerialResult::Failed;
  }
  HANDLE device = AsHandle(m_device);
  const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
  const char* bytes = static_cast<const char*>(buffer);
  size_t written = 0;
  while (written < size) {
    const DWORD waitMs = RemainingMs(deadline);
    if (!SetWriteWait(device, waitMs)) {
      return IsGoneError(GetLastError()) ? ESerialResult::Gone : ESerialResult::Failed;
    }
    const size_t left = size - written;
    const DWORD portion = left > 65536 ? 65536 : static_cast<DWORD>(left);
    DWORD count = 0;
    if (!WriteFile(device, bytes + written, portion, &count, nullptr)) {
      return IsGoneError(GetLastError()) ? ESerialResult::Gone : ESerialResult::Failed;
    }
    written += count;
    if (count < portion && RemainingMs(deadline) == 0) {
      return ESerialResult::Timeout;
    }
  }
  return ESerialResult::Ok;
}

size_t CSerialDevice::BytesAvailable() {
  if (!IsOpen()) {
    return 0;
  }
  DWORD errors = 0;
  COMSTAT status{};
  if (!ClearCommError(AsHandle(m_device), &errors, &status)) {
    return m_pending.size();
  }
  return m_pending.size() + status.cbInQue;
}

void CSerialDevice::Flush() {
  m_pending.clear();
  if (IsOpen()) {
    PurgeComm(AsHandle(m_device), PURGE_RXABORT | PURGE_TXABORT | PURGE_RXCLEAR | PURGE_TXCLEAR);
  }
}

bool CSerialDevice::SetBaudRate(uint32_t baud) {
  if (!IsOpen() || !IsOfferedRate(baud)) {
    return false;
  }
  HANDLE device = AsHandle(m_device);
  // The new rate applies once queued output has left, as it was sent at the old rate.
  FlushFileBuffers(device);
  DCB settings{};
  settings.DCBlength = sizeof settings;
  if (!GetCommState(device, &settings)) {
    return false;
  }
  settings.BaudRate = baud;
  return SetCommState(device, &settings) != 0;
}

bool CSerialDevice::IsSupportedBaudRate(uint32_t baud) { return IsOfferedRate(baud); }

}  // namespace Platform
}  // namespace GenICam
