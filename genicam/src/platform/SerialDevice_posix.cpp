#include "platform/SerialDevice.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace GenICam {
namespace Platform {
namespace {

using Clock = std::chrono::steady_clock;

bool SpeedOf(uint32_t baud, speed_t& speed) {
  switch (baud) {
  case 9600: speed = B9600; return true;
  case 19200: speed = B19200; return true;
  case 38400: speed = B38400; return true;
  case 57600: speed = B57600; return true;
  case 115200: speed = B115200; return true;
  case 230400: speed = B230400; return true;
  case 460800: speed = B460800; return true;
  case 921600: speed = B921600; return true;
  default: return false;
  }
}

int Descriptor(intptr_t device) { return static_cast<int>(device); }

int RemainingMs(Clock::time_point deadline) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
  return left > 0 ? static_cast<int>(left) : 0;
}

}  // namespace

CSerialDevice::~CSerialDevice() { Close(); }

bool CSerialDevice::Open(const std::string& path, std::string& error) {
  Close();
  const int fd = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  m_missing = false;
  if (fd < 0) {
    m_missing = errno == ENOENT || errno == ENODEV || errno == ENXIO;
    error = path + ": " + std::strerror(errno);
    return false;
  }
  termios settings{};
  if (tcgetattr(fd, &settings) != 0) {
    error = path + " is not a serial device: " + std::strerror(errno);
    ::close(fd);
    return false;
  }
  cfmakeraw(&settings);
  settings.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | PARENB | CRTSCTS | CSIZE);
  settings.c_cflag |= CS8 | CLOCAL | CREAD;
  settings.c_iflag &= ~static_cast<tcflag_t>(IXON | IXOFF | IXANY);
  settings.c_cc[VMIN] = 0;
  settings.c_cc[VTIME] = 0;
  cfsetispeed(&settings, B9600);
  cfsetospeed(&settings, B9600);
  if (tcsetattr(fd, TCSANOW, &settings) != 0) {
    error = path + ": cannot set 8N1 at 9600 baud: " + std::strerror(errno);
    ::close(fd);
    return false;
  }
  tcflush(fd, TCIOFLUSH);
  m_device = fd;
  m_pending.clear();
  return true;
}

void CSerialDevice::Close() {
  if (IsOpen()) {
    ::close(Descriptor(m_device));
    m_device = kClosed;
  }
  m_pending.clear();
}

ESerialResult CSerialDevice::Read(void* buffer, size_t size, uint32_t timeoutMs) {
  if (!IsOpen()) {
    return ESerialResult::Failed;
  }
  const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
  char chunk[4096];
  while (m_pending.size() < size) {
    pollfd entry{Descriptor(m_device), POLLIN, 0};
    const int ready = ::poll(&entry, 1, RemainingMs(deadline));
    if (ready < 0) {
      if (errno == EINTR) {
        continue;
      }
      return ESerialResult::Failed;
    }
    if (ready == 0) {
      return ESerialResult::Timeout;
    }
    const ssize_t count = ::read(Descriptor(m_device), chunk, sizeof chunk);
    if (count > 0) {
      m_pending.append(chunk, static_cast<size_t>(count));
    } else if (count == 0 || errno == EIO || (entry.revents & (POLLHUP | POLLERR)) != 0) {
      return ESerialResult::Gone;
    } else if (errno != EAGAIN && errno != EINTR) {
      return ESerialResult::Failed;
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
  const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
  const char* bytes = static_cast<const char*>(buffer);
  size_t written = 0;
  while (written < size) {
    const ssize_t count = ::write(Descriptor(m_device), bytes + written, size - written);
    if (count > 0) {
      written += static_cast<size_t>(count);
      continue;
    }
    if (count < 0 && errno == EIO) {
      return ESerialResult::Gone;
    }
    if (count < 0 && errno != EAGAIN && errno != EINTR) {
      return ESerialResult::Failed;
    }
    pollfd entry{Descriptor(m_device), POLLOUT, 0};
    const int ready = ::poll(&entry, 1, RemainingMs(deadline));
    if (ready == 0) {
      return ESerialResult::Timeout;
    }
    if (ready > 0 && (entry.revents & (POLLHUP | POLLERR)) != 0 && (entry.revents & POLLOUT) == 0) {
      return ESerialResult::Gone;
    }
  }
  return ESerialResult::Ok;
}

size_t CSerialDevice::BytesAvailable() {
  if (!IsOpen()) {
    return 0;
  }
  int queued = 0;
  if (::ioctl(Descriptor(m_device), FIONREAD, &queued) != 0 || queued < 0) {
    queued = 0;
  }
  return m_pending.size() + static_cast<size_t>(queued);
}

void CSerialDevice::Flush() {
  m_pending.clear();
  if (IsOpen()) {
    tcflush(Descriptor(m_device), TCIOFLUSH);
  }
}

bool CSerialDevice::SetBaudRate(uint32_t baud) {
  speed_t speed = B0;
  termios settings{};
  if (!IsOpen() || !SpeedOf(baud, speed) || tcgetattr(Descriptor(m_device), &settings) != 0) {
    return false;
  }
  cfsetispeed(&settings, speed);
  cfsetospeed(&settings, speed);
  return tcsetattr(Descriptor(m_device), TCSADRAIN, &settings) == 0;
}

bool CSerialDevice::IsSupportedBaudRate(uint32_t baud) {
  speed_t speed = B0;
  return SpeedOf(baud, speed);
}

}  // namespace Platform
}  // namespace GenICam
