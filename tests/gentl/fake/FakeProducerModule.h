#pragma once
// Holds one build of the fake producer loaded for the length of a test, so that its state survives the library's
// own load and unload of the same file, and starts the test from an empty state.
#include "FakeProducerState.h"

#include "platform/DynamicModule.h"

#include <stdexcept>
#include <string>

namespace TALVIR::Testing {

class CFakeProducerModule {
public:
  explicit CFakeProducerModule(const std::string& fileName = "TalvirFake.cti")
      : m_module(std::string(TALVIR_FAKE_PRODUCER_DIR) + fileName) {
    const auto stateOf = m_module.Symbol<PFN_TalvirFakeProducerState>(kFakeProducerStateSymbol);
    if (stateOf == nullptr) {
      throw std::runtime_error("fake producer " + fileName + " not loadable: " + Platform::LastModuleError());
    }
    m_state = stateOf();
    m_state->Reset();
  }

  CFakeProducerState& State() { return *m_state; }

  // The folder the library loads the fake producers from.
  static std::string Directory() { return TALVIR_FAKE_PRODUCER_DIR; }

private:
  Platform::CDynamicModule m_module;
  CFakeProducerState* m_state = nullptr;
};

// A device with every standard field distinct, so that a test sees which query filled which field.
inline CFakeDevice MakeFakeDevice(const std::string& id, const std::string& serial) {
  CFakeDevice device;
  device.id = id;
  device.serial = serial;
  device.vendor = "Vendor of " + id;
  device.model = "Model of " + id;
  device.displayName = "Display of " + id;
  device.userDefinedName = "User of " + id;
  device.version = "Version of " + id;
  device.accessStatus = 5;
  device.timestampFrequency = 125000000;
  return device;
}

inline CFakeInterface MakeFakeInterface(const std::string& id, const std::string& tlType,
                                        std::vector<CFakeDevice> devices) {
  CFakeInterface fakeInterface;
  fakeInterface.id = id;
  fakeInterface.tlType = tlType;
  for (CFakeDevice& device : devices) {
    device.tlType = tlType;
  }
  fakeInterface.devices = std::move(devices);
  return fakeInterface;
}

}  // namespace TALVIR::Testing
