#pragma once
// A scriptable GenTL producer for the library's tests. The test loads the module, reaches its state through the
// exported TalvirFakeProducerState(), describes interfaces, devices, module memory and failures, and reads back the
// calls the consumer made. Built several times: with every function, without DSQueueBuffer, and without GCGetInfo and
// GCGetLastError.
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace TALVIR::Testing {

// The step of opening the producer that fails on request.
enum class EFakeFailure {
  None,
  InitLib,
  TLOpen,
  UpdateInterfaceList,
  GetNumInterfaces,
  GetInterfaceID,
  OpenInterface,
};

// An information answer of a given INFO_DATATYPE with exactly these bytes.
struct CFakeAnswer {
  int32_t type = 0;
  std::string bytes;
};

struct CFakeDevice {
  std::string id;
  std::string vendor = "FakeVendor";
  std::string model = "FakeModel";
  std::string tlType = "GEV";
  std::string displayName = "Fake display";
  std::string userDefinedName = "user";
  std::string serial = "SN0";
  std::string version = "1.0";
  int32_t accessStatus = 1;
  uint64_t timestampFrequency = 1000000000;
  // Producer-specific commands answered with text or with an 8-byte number.
  std::map<int32_t, std::string> textInfo;
  std::map<int32_t, uint64_t> numberInfo;
  // Producer-specific commands answered with a type and bytes of the test's choosing.
  std::map<int32_t, CFakeAnswer> typedInfo;
  // Commands that fail for this device even though they have a value.
  std::vector<int32_t> failingCommands;
  // Claims an ID size of this many bytes (0: the true size).
  size_t claimedIDSize = 0;
  bool failID = false;
};

struct CFakeInterface {
  std::string id;
  std::string tlType = "GEV";
  std::vector<CFakeDevice> devices;
  bool failUpdate = false;
  bool failCount = false;
};

// What a module handle exposes through its port: a URL and memory at one address.
struct CFakePort {
  std::string url;
  uint64_t address = 0;
  std::string memory;
  bool failURL = false;
  // Reads touching this address fail.
  std::vector<uint64_t> failingAddresses;
  // Reads report and write this many bytes fewer than asked (a short read).
  size_t shortReadBy = 0;
  // Reads report every byte asked but leave this many at the end unwritten.
  size_t unwrittenTail = 0;
};

struct CFakeProducerState {
  std::recursive_mutex mutex;
  EFakeFailure failure = EFakeFailure::None;
  std::vector<CFakeInterface> interfaces;
  // Port contents by handle; handles are SystemHandle() and InterfaceHandle(index).
  std::map<void*, CFakePort> ports;
  // Every GenTL call that changes state or lists, in order: "GCInitLib", "TLOpen", "IFClose 0", ...
  std::vector<std::string> calls;
  // Sleep in every IFUpdateDeviceList, in milliseconds.
  int updateDelayMs = 0;
  // Bytes written through GCWritePort: address -> bytes.
  std::map<uint64_t, std::string> writes;
  // What GCGetLastError answers; empty: GC_ERR_NOT_IMPLEMENTED.
  std::string lastErrorText;
  int32_t lastErrorCode = 0;

  // Back to an empty producer that opens without failure and has no interface.
  void Reset() {
    std::lock_guard<std::recursive_mutex> lock(mutex);
    failure = EFakeFailure::None;
    interfaces.clear();
    ports.clear();
    calls.clear();
    updateDelayMs = 0;
    writes.clear();
    lastErrorText.clear();
    lastErrorCode = 0;
  }

  size_t CountCalls(const std::string& call) {
    std::lock_guard<std::recursive_mutex> lock(mutex);
    size_t count = 0;
    for (const std::string& made : calls) {
      count += made == call ? 1 : 0;
    }
    return count;
  }
};

inline void* FakeSystemHandle() { return reinterpret_cast<void*>(uintptr_t{0x5000}); }
inline void* FakeInterfaceHandle(size_t index) { return reinterpret_cast<void*>(uintptr_t{0x6000} + index); }

// Exported by the module.
using PFN_TalvirFakeProducerState = CFakeProducerState* (*)();
constexpr const char* kFakeProducerStateSymbol = "TalvirFakeProducerState";

}  // namespace TALVIR::Testing
