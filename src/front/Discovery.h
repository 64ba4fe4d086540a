#pragma once
// Device discovery over the loaded producers.
#include <cstdint>
#include <list>
#include <vector>

namespace TALVIR {

class CCti;
class CCtiManager;
class ICameraInfo;

// Runs every producer's enumeration, one thread per producer when there are several, and joins the records in
// producer order. Each record carries one reference for the caller. A device seen by two producers is listed twice.
std::list<ICameraInfo*> DiscoverWithProducers(const std::vector<CCti*>& producers);

// Whether a producer of transport-layer type `producerType` takes part in a discovery restricted to `mask`: every
// producer when the mask holds all nine producer type bits, else those sharing a bit with it.
bool ProducerSelectedByMask(uint32_t producerType, uint64_t mask);

// Discovery over the producer file `name`, or over every configured or found producer when `name` is null or empty.
std::list<ICameraInfo*> DiscoverByName(CCtiManager& manager, const char* name);

// Discovery over the producers selected by `mask`. The serial-port-only Camera Link mask (exactly) probes the serial
// ports instead and lists the Camera Link cameras that answer.
std::list<ICameraInfo*> DiscoverByTLType(CCtiManager& manager, uint64_t mask);

}  // namespace TALVIR
