#include "front/Discovery.h"

#include "cl/CLSerialDiscovery.h"
#include "front/CtiManager.h"
#include "gentl/Cti.h"

#include <talvir/ICameraInfo.h>
#include <talvir/TLType.h>

#include <cstdio>
#include <string>
#include <thread>

namespace TALVIR {
namespace {

// Loads every named producer; `record` learns the names, each taking part when it loaded.
std::vector<CCti*> LoadProducers(CCtiManager& manager, const std::vector<std::string>& names,
                                 CDiscoveryRecord& record) {
  std::vector<CCti*> producers;
  for (const std::string& name : names) {
    CCti* const producer = manager.GetOrLoadProducer(name);
    record.considered.emplace_back(name, producer != nullptr);
    if (producer != nullptr) {
      producers.push_back(producer);
    }
  }
  return producers;
}

}  // namespace

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
  CDiscoveryRecord record;
  if (name != nullptr && name[0] != '\0') {
    names.emplace_back(name);
    record.request = std::string("Discovery(\"") + name + "\")";
  } else {
    names = manager.ProducerNames();
    record.request = "Discovery(every producer)";
  }
  const std::vector<CCti*> producers = LoadProducers(manager, names, record);
  // Recorded before the enumeration: a device ID too long for its buffer ends the enumeration with an exception,
  // and the report should still say which discovery that was.
  manager.RecordDiscovery(record);
  return DiscoverWithProducers(producers);
}

std::list<ICameraInfo*> DiscoverByTLType(CCtiManager& manager, uint64_t mask) {
  char maskText[32];
  std::snprintf(maskText, sizeof maskText, "0x%llx", static_cast<unsigned long long>(mask));
  CDiscoveryRecord record;
  record.request = std::string("DiscoveryByTLType(") + maskText + ")";
  record.byType = true;
  record.mask = mask;
  if (mask == TLType::CLSerialOnly) {
    manager.RecordDiscovery(record);
    return DiscoverCLSerialCameras();
  }
  std::vector<CCti*> selected;
  const std::vector<CCti*> loaded = LoadProducers(manager, manager.ProducerNames(), record);
  size_t next = 0;
  for (std::pair<std::string, bool>& considered : record.considered) {
    if (!considered.second) {
      continue;
    }
    CCti* const producer = loaded.at(next++);
    considered.second = ProducerSelectedByMask(producer->ProducerTLType(), mask);
    if (considered.second) {
      selected.push_back(producer);
    }
  }
  manager.RecordDiscovery(record);
  return DiscoverWithProducers(selected);
}

}  // namespace TALVIR
