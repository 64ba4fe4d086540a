#include "platform/PseudoTerminal.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace GenICam {
namespace Platform {

CPseudoTerminal::~CPseudoTerminal() {
  Close();
  if (m_wakeRead >= 0) {
    ::close(m_wakeRead);
    ::close(m_wakeWrite);
  }
}

bool CPseudoTerminal::Open(std::string& error) {
  int master = -1;
  int slave = -1;
  if (openpty(&master, &slave, nullptr, nullptr, nullptr) != 0) {
    error = std::string("openpty: ") + std::strerror(errno);
    return false;
  }
  termios settings{};
  tcgetattr(slave, &settings);
  cfmakeraw(&settings);
  tcsetattr(slave, TCSANOW, &settings);
  char* name = ttyname(slave);
  if (name == nullptr) {
    error = std::string("ttyname: ") + std::strerror(errno);
    ::close(master);
    ::close(slave);
    return false;
  }
  int pipeEnds[2] = {-1, -1};
  if (m_wakeRead < 0) {
    if (pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0) {
      error = std::string("pipe: ") + std::strerror(errno);
      ::close(master);
      ::close(slave);
      return false;
    }
    m_wakeRead = pipeEnds[0];
    m_wakeWrite = pipeEnds[1];
  }
  fcntl(master, F_SETFL, fcntl(master, F_GETFL) | O_NONBLOCK);
  fcntl(master, F_SETFD, FD_CLOEXEC);
  fcntl(slave, F_SETFD, FD_CLOEXEC);
  m_slaveName = name;
  m_master = master;
  m_slave = slave;
  return true;
}

ESerialResult CPseudoTerminal::ReadSome(std::string& out, uint32_t timeoutMs) {
  if (m_master < 0) {
    return ESerialResult::Gone;
  }
  pollfd entries[2] = {{m_master, POLLIN, 0}, {m_wakeRead, POLLIN, 0}};
  const int ready = ::poll(entries, 2, static_cast<int>(timeoutMs));
  if (ready < 0) {
    return errno == EINTR ? ESerialResult::Timeout : ESerialResult::Failed;
  }
  if (ready == 0) {
    return ESerialResult::Timeout;
  }
  if ((entries[1].revents & POLLIN) != 0) {
    char drained[16];
    while (::read(m_wakeRead, drained, sizeof drained) > 0) {
    }
    return ESerialResult::Failed;
  }
  char chunk[4096];
  const ssize_t count = ::read(m_master, chunk, sizeof chunk);
  if (count > 0) {
    out.append(chunk, static_cast<size_t>(count));
    return ESerialResult::Ok;
  }
  return (count < 0 && (errno == EAGAIN || errno == EINTR)) ? ESerialResult::Timeout : ESerialResult::Gone;
}

bool CPseudoTerminal::Write(const void* buffer, size_t size) {
  const char* bytes = static_cast<const char*>(buffer);
  size_t written = 0;
  while (written < size && m_master >= 0) {
    const ssize_t count = ::write(m_master, bytes + written, size - written);
    if (count > 0) {
      written += static_cast<size_t>(count);
    } else if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
      pollfd entry{m_master, POLLOUT, 0};
      if (::poll(&entry, 1, 1000) <= 0) {
        return false;
      }
    } else {
      return false;
    }
  }
  return written == size;
}

uint32_t CPseudoTerminal::ClientBaudRate() const {
  termios settings{};
  if (m_master < 0 || tcgetattr(m_master, &settings) != 0) {
    return 0;
  }
  switch (cfgetospeed(&settings)) {
  case B9600: return 9600;
  case B19200: return 19200;
  case B38400: return 38400;
  case B57600: return 57600;
  case B115200: return 115200;
  case B230400: return 230400;
  case B460800: return 460800;
  case B921600: return 921600;
  default: return 0;
  }
}

void CPseudoTerminal::Interrupt() {
  if (m_wakeWrite >= 0) {
    const char wake = 1;
    [[maybe_unused]] const ssize_t ignored = ::write(m_wakeWrite, &wake, 1);
  }
}

void CPseudoTerminal::Close() {
  if (m_master >= 0) {
    ::close(m_master);
    m_master = -1;
  }
  if (m_slave >= 0) {
    ::close(m_slave);
    m_slave = -1;
  }
}

}  // namespace Platform
}  // namespace GenICam
