// talvir-sim-serial: serves the simulated Camera Link camera on a pseudo-terminal, prints the port it serves and
// runs until stopped (Ctrl-C).
//   talvir-sim-serial [--serial SN] [--plain-first] [--rates BITS] [--slow-ms MS] [--pace]
#include "SerialCameraServer.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

int main(int argc, char** argv) {
  TalvirSerialCam::SCameraConfig config;
  for (int i = 1; i < argc; ++i) {
    const std::string option = argv[i];
    const bool hasValue = i + 1 < argc;
    if (option == "--serial" && hasValue) {
      config.serialNumber = argv[++i];
    } else if (option == "--plain-first") {
      config.zippedFirst = false;
    } else if (option == "--rates" && hasValue) {
      config.supportedRates = static_cast<uint32_t>(std::strtoul(argv[++i], nullptr, 0));
    } else if (option == "--slow-ms" && hasValue) {
      config.slowWriteMs = static_cast<uint32_t>(std::strtoul(argv[++i], nullptr, 0));
    } else if (option == "--pace") {
      config.paceAtLineRate = true;
    } else {
      std::fprintf(stderr, "usage: %s [--serial SN] [--plain-first] [--rates BITS] [--slow-ms MS] [--pace]\n", argv[0]);
      return 2;
    }
  }
  TalvirSerialCam::CSerialCameraServer server(config);
  std::string error;
  if (!server.Start(error)) {
    std::fprintf(stderr, "talvir-sim-serial: %s\n", error.c_str());
    return 1;
  }
  std::printf("%s\n", server.PortPath().c_str());
  std::fflush(stdout);
  server.WaitUntilStopped();
  return 0;
}
