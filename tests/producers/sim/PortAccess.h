#pragma once
// Port helpers of the conformance suite: a port's description URL and its parts, and a module opened down to its
// data stream under a flavour's file name.
#include "SimModule.h"

#include <memory>
#include <string>

namespace TalvirSimTest {

struct SUrl {
  std::string scheme;
  std::string fileName;
  uint64_t address = 0;
  uint64_t length = 0;
};

inline std::string PortUrl(const SGenTL& fn, PORT_HANDLE port) {
  size_t size = 0;
  if (fn.GCGetPortURL(port, nullptr, &size) != GC_ERR_SUCCESS) {
    return {};
  }
  std::string url(size, '\0');
  fn.GCGetPortURL(port, url.data(), &size);
  url.resize(size - 1);
  return url;
}

inline SUrl ParseUrl(const std::string& url) {
  SUrl parsed;
  const size_t colon = url.find(':');
  const size_t first = url.find(';');
  const size_t second = url.find(';', first + 1);
  parsed.scheme = url.substr(0, colon + 1);
  parsed.fileName = url.substr(colon + 1, first - colon - 1);
  parsed.address = std::stoull(url.substr(first + 1, second - first - 1), nullptr, 16);
  parsed.length = std::stoull(url.substr(second + 1), nullptr, 16);  // stops at "?SchemaVersion"
  return parsed;
}

struct SOpened {
  SOpened(const std::string& name, const std::string& json = "") : module("TalvirSim.cti", name, json) {
    if (module.Init() == GC_ERR_SUCCESS) {
      device = std::make_unique<SOpenDevice>(module.fn);
    }
  }
  bool Ok() const { return device && device->ok; }
  CSimModule module;
  std::unique_ptr<SOpenDevice> device;
};


}  // namespace TalvirSimTest
