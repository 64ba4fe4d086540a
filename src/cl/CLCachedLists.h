#pragma once
// Three process-wide lists read once from the CLProtocol layer: the port IDs the prober walks, and the lists behind
// GetCLSerials and GetCLProtocols. A list is filled on first use and then kept for the life of the process; a list
// that came back empty is asked for again on the next call. Not locked: callers use them from one thread at a time.
#include <functional>
#include <list>
#include <string>
#include <vector>

namespace TALVIR {

std::list<std::string> GetCachedPortIDs();
std::list<std::string> GetCachedCLSerials();
std::list<std::string> GetCachedCLProtocols();

// The one algorithm behind the three: return the cache when it holds something, else fill it from `fill` (which
// may throw; what was appended until then stays) and return a copy.
std::list<std::string> CachedList(std::list<std::string>& cache,
                                  const std::function<void(std::vector<std::string>&)>& fill);

}  // namespace TALVIR
