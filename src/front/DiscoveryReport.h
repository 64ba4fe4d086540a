#pragma once
// The report behind GetDiscoveryReport: what the last discovery did with each producer, from the manager's records.
#include <talvir/Diagnostics.h>

namespace TALVIR {

class CCtiManager;

DiscoveryReport BuildDiscoveryReport(CCtiManager& manager);

}  // namespace TALVIR
