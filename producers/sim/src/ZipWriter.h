#pragma once
// A one-file ZIP archive built in memory, for descriptions served zipped through a local: URL.
#include <string>
#include <vector>

namespace TalvirSim {

// The archive holding `content` under `fileName`, compressed with DEFLATE (or stored when deflating does not help).
std::vector<char> ZipOneFile(const std::string& fileName, const std::string& content);

}  // namespace TalvirSim
