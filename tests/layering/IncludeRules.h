#pragma once
// The include rules of the source tree. Areas of src/ depend downwards only: front -> camera -> gentl -> genicam ->
// platform, with image used by camera and cl by front; genicam/ never includes src/ nor the library's public headers,
// and inside genicam/src the folders depend one way: api -> load -> nodes -> formula -> base.
#include <string>
#include <vector>

namespace TalvirLayering {

struct SInclude {
  std::string file;  // relative to the source tree, e.g. "src/camera/CtiPort.cpp"
  int line = 0;
  std::string target;  // the text between the quotes or angle brackets
};

// Every #include of a file's text.
std::vector<SInclude> IncludesOf(const std::string& file, const std::string& text);

// Empty when the include is allowed, else why it is not. genicamFolders lists the folders of genicam/src (an include of
// "<folder>/..." from genicam/ names genicam's own file when the folder is one of them).
std::string Violation(const SInclude& include, const std::vector<std::string>& genicamFolders);

// Include cycles among the given files (each file with the files it includes, both relative to one folder); each
// cycle is listed as "a -> b -> a".
std::vector<std::string> Cycles(const std::vector<std::pair<std::string, std::vector<std::string>>>& graph);

}  // namespace TalvirLayering
