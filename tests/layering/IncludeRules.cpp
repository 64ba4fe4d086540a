// The include rules of the source tree (see IncludeRules.h).
#include "IncludeRules.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <sstream>

namespace TalvirLayering {

namespace {

const char* const kSrcAreas[] = {"front", "camera", "gentl", "image", "cl", "platform"};

// What each area of src/ may include besides itself ("talvir" is the library's public headers, "genicam" the GenICam
// layer's public headers).
const std::map<std::string, std::set<std::string>>& Allowed() {
  static const std::map<std::string, std::set<std::string>> kAllowed = {
      {"front", {"camera", "gentl", "genicam", "image", "cl", "platform", "talvir"}},
      {"camera", {"gentl", "genicam", "image", "platform", "talvir"}},
      {"gentl", {"genicam", "platform", "talvir"}},
      {"image", {"platform", "talvir"}},
      // The Camera Link camera is a camera: cl sits between front and camera.
      {"cl", {"camera", "gentl", "genicam", "image", "platform", "talvir"}},
      {"platform", {}},
  };
  return kAllowed;
}

// Folders of genicam/src, lowest first: each may include only itself and those before it.
int GenicamRank(const std::string& folder) {
  // Saved settings and the Camera Link serial link use the engine as any application does: they sit above it.
  static const char* const kOrder[] = {"base", "formula", "nodes", "load", "api", "persistence", "clprotocol"};
  for (int i = 0; i < 7; ++i) {
    if (folder == kOrder[i]) return i;
  }
  return 0;  // genicam's own platform folder and anything new sit with base
}

std::string FirstSegment(const std::string& path) {
  const size_t slash = path.find('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

bool IsSrcArea(const std::string& name) {
  return std::find(std::begin(kSrcAreas), std::end(kSrcAreas), name) != std::end(kSrcAreas);
}

// "front", "camera", ... for files of src/, "module" for the files directly in src/, "genicam" for genicam/.
std::string AreaOfFile(const std::string& file) {
  if (FirstSegment(file) == "genicam") return "genicam";
  const std::string rest = file.substr(file.find('/') + 1);
  const std::string area = FirstSegment(rest);
  return area.empty() ? "module" : area;
}

// The folder of genicam/src a file lies in, or "" outside genicam/src.
std::string GenicamFolderOfFile(const std::string& file) {
  const std::string prefix = "genicam/src/";
  if (file.compare(0, prefix.size(), prefix) != 0) return std::string();
  return FirstSegment(file.substr(prefix.size()));
}

}  // namespace

std::vector<SInclude> IncludesOf(const std::string& file, const std::string& text) {
  std::vector<SInclude> includes;
  std::istringstream lines(text);
  std::string line;
  int number = 0;
  while (std::getline(lines, line)) {
    ++number;
    size_t at = line.find_first_not_of(" \t");
    if (at == std::string::npos || line[at] != '#') continue;
    at = line.find_first_not_of(" \t", at + 1);
    if (at == std::string::npos || line.compare(at, 7, "include") != 0) continue;
    at = line.find_first_of("\"<", at + 7);
    if (at == std::string::npos) continue;
    const char close = line[at] == '"' ? '"' : '>';
    const size_t end = line.find(close, at + 1);
    if (end == std::string::npos) continue;
    includes.push_back({file, number, line.substr(at + 1, end - at - 1)});
  }
  return includes;
}

std::string Violation(const SInclude& include, const std::vector<std::string>& genicamFolders) {
  const std::string from = AreaOfFile(include.file);
  const std::string segment = FirstSegment(include.target);
  const bool genicamOwn = std::find(genicamFolders.begin(), genicamFolders.end(), segment) != genicamFolders.end();
  std::string to;
  if (segment.empty()) {
    return std::string();  // beside the including file
  } else if (segment == "GenApi" || segment == "GCBase" || segment == "GenTL" || segment == "CLProtocol") {
    to = "genicam";
  } else if (segment == "talvir") {
    to = "talvir";
  } else if (from == "genicam" && genicamOwn) {
    const std::string folder = GenicamFolderOfFile(include.file);
    if (!folder.empty() && GenicamRank(segment) > GenicamRank(folder)) {
      return include.file + ":" + std::to_string(include.line) + " includes " + include.target + ": genicam/src/" +
             folder + " may not include " + segment +
             " (clprotocol -> persistence -> api -> load -> nodes -> formula -> base)";
    }
    return std::string();
  } else if (IsSrcArea(segment)) {
    to = segment;
  } else {
    return std::string();  // a system or third-party header
  }
  if (from == to) return std::string();
  std::string rule;
  if (from == "genicam") {
    rule = "genicam never includes src/ nor the library's public headers";
  } else if (from == "module") {
    return std::string();  // the module's entry point sits above every area
  } else {
    const auto allowed = Allowed().find(from);
    if (allowed != Allowed().end() && allowed->second.count(to) != 0) return std::string();
    rule = from + " may not include " + to + " (front -> camera -> gentl -> genicam -> platform; image below camera)";
  }
  return include.file + ":" + std::to_string(include.line) + " includes " + include.target + ": " + rule;
}

std::vector<std::string> Cycles(const std::vector<std::pair<std::string, std::vector<std::string>>>& graph) {
  std::map<std::string, const std::vector<std::string>*> edges;
  for (const auto& node : graph) edges[node.first] = &node.second;
  std::map<std::string, int> state;  // 0 new, 1 on the current path, 2 done
  std::vector<std::string> path;
  std::vector<std::string> cycles;
  std::function<void(const std::string&)> visit = [&](const std::string& file) {
    state[file] = 1;
    path.push_back(file);
    for (const std::string& next : *edges[file]) {
      if (edges.count(next) == 0) continue;
      if (state[next] == 1) {
        std::string cycle;
        for (auto it = std::find(path.begin(), path.end(), next); it != path.end(); ++it) cycle += *it + " -> ";
        cycles.push_back(cycle + next);
      } else if (state[next] == 0) {
        visit(next);
      }
    }
    path.pop_back();
    state[file] = 2;
  };
  for (const auto& node : graph) {
    if (state[node.first] == 0) visit(node.first);
  }
  return cycles;
}

}  // namespace TalvirLayering
