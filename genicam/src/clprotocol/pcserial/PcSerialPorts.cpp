#include "PcSerialPorts.h"

#include <CLProtocol/CLSerialApi.h>

#include "platform/Environment.h"
#include "platform/SerialPortList.h"

#include <algorithm>

namespace CLProtocol {

CPcSerialPorts& CPcSerialPorts::Instance() {
  static CPcSerialPorts ports;
  return ports;
}

uint32_t CPcSerialPorts::Refresh() {
  std::vector<std::string> paths;
  for (const GenICam::Platform::SSerialPortInfo& port : GenICam::Platform::ListSystemSerialPorts()) {
    paths.push_back(port.path);
  }
  for (const std::string& path : GenICam::Platform::EnvironmentPathList("TALVIR_SERIAL_PORTS")) {
    if (GenICam::Platform::IsTerminalDevice(path) && std::find(paths.begin(), paths.end(), path) == paths.end()) {
      paths.push_back(path);
    }
  }
  const std::lock_guard<std::mutex> guard(m_lock);
  m_paths = std::move(paths);
  return static_cast<uint32_t>(m_paths.size());
}

bool CPcSerialPorts::PathOf(uint32_t index, std::string& path) {
  const std::lock_guard<std::mutex> guard(m_lock);
  if (index >= m_paths.size()) {
    return false;
  }
  path = m_paths[index];
  return true;
}

int32_t CPcSerialPorts::Open(uint32_t index, SOpenPort*& port, std::string& error) {
  std::string path;
  if (!PathOf(index, path)) {
    return CL_ERR_INVALID_INDEX;
  }
  const std::lock_guard<std::mutex> guard(m_lock);
  for (const auto& open : m_open) {
    if (open->path == path) {
      return CL_ERR_PORT_IN_USE;
    }
  }
  auto opened = std::make_unique<SOpenPort>();
  opened->path = path;
  if (!opened->device.Open(path, error)) {
    // A port that went away since it was listed, or one that is busy or refused to us.
    return opened->device.OpenFailedForMissingDevice() ? CL_ERR_ERROR_NOT_FOUND : CL_ERR_PORT_IN_USE;
  }
  port = opened.get();
  m_open.insert(std::move(opened));
  return CL_ERR_NO_ERR;
}

bool CPcSerialPorts::IsOpen(const SOpenPort* port) {
  const std::lock_guard<std::mutex> guard(m_lock);
  for (const auto& open : m_open) {
    if (open.get() == port) {
      return true;
    }
  }
  return false;
}

void CPcSerialPorts::Close(SOpenPort* port) {
  const std::lock_guard<std::mutex> guard(m_lock);
  for (auto it = m_open.begin(); it != m_open.end(); ++it) {
    if (it->get() == port) {
      m_open.erase(it);
      return;
    }
  }
}

}  // namespace CLProtocol
