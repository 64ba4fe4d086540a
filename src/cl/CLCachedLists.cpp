#include "cl/CLCachedLists.h"

#include <CLProtocol/CLPort.h>

namespace TALVIR {
namespace {

void FillPortIds(std::vector<std::string>& out) {
  GenICam::gcstring_vector ids;
  CLProtocol::CCLPort::GetPortIDs(ids);
  out.assign(ids.begin(), ids.end());
}

void FillTemplates(std::vector<std::string>& out) {
  GenICam::gcstring_vector templates;
  CLProtocol::CCLPort::GetDeviceIDTemplates(templates);
  out.assign(templates.begin(), templates.end());
}

}  // namespace

std::list<std::string> CachedList(std::list<std::string>& cache,
                                  const std::function<void(std::vector<std::string>&)>& fill) {
  if (!cache.empty()) {
    return cache;
  }
  try {
    std::vector<std::string> entries;
    fill(entries);
    for (const std::string& entry : entries) {
      cache.push_back(entry.c_str());
    }
  } catch (...) {
    // What the library gave before failing stays; the call returns it.
  }
  return cache;
}

std::list<std::string> GetCachedPortIDs() {
  static std::list<std::string> cache;
  return CachedList(cache, &FillPortIds);
}

std::list<std::string> GetCachedCLSerials() {
  static std::list<std::string> cache;
  return CachedList(cache, &FillPortIds);
}

std::list<std::string> GetCachedCLProtocols() {
  static std::list<std::string> cache;
  return CachedList(cache, &FillTemplates);
}

}  // namespace TALVIR
