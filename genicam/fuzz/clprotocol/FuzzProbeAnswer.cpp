// Fuzz target: the probe-answer parser. A parsed answer must join back to exactly the input.
#include <CLProtocol/ProbeAnswer.h>

#include <cstdint>
#include <string>

#ifdef TALVIR_FUZZ_AS_FUNCTIONS
#define TALVIR_FUZZ_ENTRY FuzzProbeAnswer
#else
#define TALVIR_FUZZ_ENTRY LLVMFuzzerTestOneInput
#endif

extern "C" int TALVIR_FUZZ_ENTRY(const uint8_t* data, size_t size) {
  const std::string answer(reinterpret_cast<const char*>(data), size);
  CLProtocol::SProbeAnswer parsed;
  if (CLProtocol::ParseProbeAnswer(answer, parsed)) {
    std::string joined = parsed.driverPath + "#" + parsed.manufacturer + "#" + parsed.family + "#" + parsed.model +
                         "#" + parsed.version + "#" + parsed.serialNumber;
    if (parsed.hasExtra) {
      joined += "#" + parsed.extra;
    }
    if (joined != answer) {
      __builtin_trap();
    }
  }
  const std::string deviceId = CLProtocol::DeviceIdPartOfDriverPath(answer);
  if (deviceId.size() != answer.size()) {
    __builtin_trap();
  }
  return 0;
}
