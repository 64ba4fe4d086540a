#pragma once
// The ports of the PC's serial library: the system's serial ports and the pseudo-terminals named in the setting
// TALVIR_SERIAL_PORTS (device paths separated by ':'), and the ports opened through it.
#include <cstdint>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "platform/SerialDevice.h"

namespace CLProtocol {

class CPcSerialPorts {
public:
  // One opened port.
  struct SOpenPort {
    std::string path;
    std::mutex lock;  // calls on one port are serialised
    GenICam::Platform::CSerialDevice device;
  };

  static CPcSerialPorts& Instance();

  // Lists the ports afresh; indexes of later calls refer to this list.
  uint32_t Refresh();
  // The path of a port of the last list; false for an index out of range.
  bool PathOf(uint32_t index, std::string& path);
  // Opens a port of the last list. Status codes of the serial interface.
  int32_t Open(uint32_t index, SOpenPort*& port, std::string& error);
  // Whether `port` is an open port of this library.
  bool IsOpen(const SOpenPort* port);
  void Close(SOpenPort* port);

private:
  CPcSerialPorts() = default;

  std::mutex m_lock;
  std::vector<std::string> m_paths;
  std::set<std::unique_ptr<SOpenPort>> m_open;
};

}  // namespace CLProtocol
