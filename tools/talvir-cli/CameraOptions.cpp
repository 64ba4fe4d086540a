#include "CameraOptions.h"

#include <CLI/CLI.hpp>

namespace TalvirCli {

void SCameraOptions::AddTo(CLI::App& command, bool withModule) {
  CLI::Option* bySerial = command.add_option("--serial,-s", serial, "Serial number of the camera (exactly)");
  CLI::Option* byIndex = command.add_option("--index,-i", index, "Position of the camera in the discovery list")
                             ->check(CLI::NonNegativeNumber);
  bySerial->excludes(byIndex);
  command.add_option("--producer,-p", producer, "Use only this producer file (.cti beside the library)");
  if (withModule) {
    command.add_option("--module,-m", module, "Module whose features to use")
        ->check(CLI::IsMember({"system", "interface", "device", "remote", "stream"}))
        ->capture_default_str();
  }
}

}  // namespace TalvirCli
