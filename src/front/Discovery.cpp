#include "front/Discovery.h"

#include "front/CtiManager.h"
#include "gentl/Cti.h"

#include <talvir/ICameraInfo.h>
#include <talvir/TLType.h>

#include <string>
#include <thread>

namespace TALVIR {
namespace {

std::vector<CCti*> LoadProducers(CCtiManager& manager, const std::vector<std::string>& names) {
  std::vector<CCti*> producers;
  for (const std::string& name : names) {
    if (CCti* producer = manager.GetOrLoadProducer(name)) {
      producers.push_back(producer);
    }
  }
  return producers;
}

} // namespace

std::list<ICameraInfo*> DiscoverWithProducers(const std::vector<CCti*>& producers) {
  std::list<ICameraInfo*> result;
  if (producers.empty()) {
    return result;
  }
  if (producers.size() == 1) {
    producers.front()->Discover(&result);
    return result;
  }
  // Producers can take long to enumerate (network time-outs); they run side by side. Each thread touches only its
  // producer and its own list.
  std::vector<std::list<ICameraInfo*>> lists(producers.size());
  std::vector<std::thread> threads;
  threads.reserve(producers.size());
  for (size_t index = 0; index < producers.size(); ++index) {
    threads.emplace_back([producer = producers[index], list = &lists[index]] { producer->Discover(list); });
  }
  for (size_t index = 0; index < producers.size(); ++index) {
    threads[index].join();
    result.splice(result.end(), lists[index]);
  }
  return result;
}

bool ProducerSelectedByMask(uint32_t producerType, uint64_t mask) {
  return (mask & TLType::AllProducers) == TLType::AllProducers || (mask & producerType) != 0;
}

std::list<ICameraInfo*> DiscoverByName(CCtiManager& manager, const char* name) {
  std::vector<std::string> names;
  if (name != nullptr && name[0] != '\0') {
    names.emplace_back(name);
  } else {
    names = manager.ProducerNames();
  }
  return DiscoverWithProducers(LoadProducers(manager, names));
}

std::list<ICameraInfo*> DiscoverByTLType(CCtiManager& manager, uint64_t mask) {
  if (mask == TLType::CLSerialOnly) {
    return {};
  }
  std::vector<CCti*> selected;
  for (CCti* producer : LoadProducers(manager, manager.ProducerNames())) {
    if (ProducerSelectedByMask(producer->ProducerTLType(), mask)) {
      selected.push_back(producer);
    }
  }
  return DiscoverWithProducers(selected);
}

} // namespace TALVIR
