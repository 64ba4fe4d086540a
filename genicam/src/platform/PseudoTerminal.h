#pragma once
// The device side of a pseudo-terminal pair: a simulated serial device serves the master side, a client opens the
// port named by SlaveName() like any serial port. Windows has no such pair: there Open fails and says so.
#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/SerialDevice.h"

namespace GenICam {
namespace Platform {

class CPseudoTerminal {
public:
  CPseudoTerminal() = default;
  ~CPseudoTerminal();
  CPseudoTerminal(const CPseudoTerminal&) = delete;
  CPseudoTerminal& operator=(const CPseudoTerminal&) = delete;

  // Creates the pair with the client side in raw mode. The client side stays open here as well, so that the
  // device side sees no hang-up while no client has the port open.
  bool Open(std::string& error);
  const std::string& SlaveName() const { return m_slaveName; }

  // Waits at most `timeoutMs` for bytes from the client and appends those that came. Timeout when none came,
  // Failed when Interrupt() was called (the request is consumed), Gone after Close().
  ESerialResult ReadSome(std::string& out, uint32_t timeoutMs);
  bool Write(const void* buffer, size_t size);
  // The rate the client set on its side, in bits per second (0 when it cannot be told).
  uint32_t ClientBaudRate() const;
  // Wakes a ReadSome waiting in another thread. Safe from any thread.
  void Interrupt();
  // Closes both sides: a client then sees a hang-up, as with a cable pulled out.
  void Close();

private:
  int m_master = -1;
  int m_slave = -1;
  int m_wakeRead = -1;
  int m_wakeWrite = -1;
  std::string m_slaveName;
};

}  // namespace Platform
}  // namespace GenICam
