#pragma once
// The options that choose a camera (--serial, --index, --producer) and a module of it (--module), shared by the
// commands that open one.
#include <string>

namespace CLI {
class App;
}

namespace TalvirCli {

struct SCameraOptions {
  std::string serial;    // exact serial number; empty: use the index
  int index = 0;         // position in the discovery list (all producers, or the one of --producer)
  std::string producer;  // only this producer file
  std::string module = "remote";

  // Adds --serial, --index, --producer and, when `withModule`, --module.
  void AddTo(CLI::App& command, bool withModule);
};

}  // namespace TalvirCli
