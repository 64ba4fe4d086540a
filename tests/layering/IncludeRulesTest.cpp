// The layering of README.md, checked: no area of src/ includes a header of an area above it, genicam/ never includes
// src/, and genicam/src has no include cycle and depends one way between its folders.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "IncludeRules.h"

namespace fs = std::filesystem;
using namespace TalvirLayering;

namespace {

const std::vector<std::string> kGenicamFolders = {"api", "base", "formula", "load", "nodes"};

std::string ViolationOf(const std::string& file, const std::string& target) {
  return Violation(SInclude{file, 7, target}, kGenicamFolders);
}

TEST(IncludeRules, ReadsQuotedAndAngledIncludesWithTheirLines) {
  const auto includes = IncludesOf("src/a/X.cpp", "// x\n#include \"gentl/A.h\"\n  #  include <talvir/B.h>\nint x;\n");
  ASSERT_EQ(includes.size(), 2u);
  EXPECT_EQ(includes[0].target, "gentl/A.h");
  EXPECT_EQ(includes[0].line, 2);
  EXPECT_EQ(includes[1].target, "talvir/B.h");
  EXPECT_EQ(includes[1].line, 3);
}

TEST(IncludeRules, AreasIncludeOnlyAreasBelowThem) {
  EXPECT_EQ(ViolationOf("src/front/F.cpp", "camera/C.h"), "");
  EXPECT_EQ(ViolationOf("src/camera/C.cpp", "gentl/G.h"), "");
  EXPECT_EQ(ViolationOf("src/camera/C.cpp", "image/I.h"), "");
  EXPECT_EQ(ViolationOf("src/gentl/G.cpp", "GenApi/GenApi.h"), "");
  EXPECT_EQ(ViolationOf("src/gentl/G.cpp", "platform/P.h"), "");
  EXPECT_EQ(ViolationOf("src/gentl/G.cpp", "Local.h"), "");
  EXPECT_EQ(ViolationOf("src/gentl/G.cpp", "vector"), "");
  const std::string up = ViolationOf("src/gentl/G.cpp", "camera/C.h");
  EXPECT_NE(up.find("src/gentl/G.cpp:7 includes camera/C.h"), std::string::npos) << up;
  EXPECT_NE(ViolationOf("src/camera/C.cpp", "front/F.h"), "");
  EXPECT_NE(ViolationOf("src/image/I.cpp", "camera/C.h"), "");
  EXPECT_NE(ViolationOf("src/platform/P.cpp", "gentl/G.h"), "");
  EXPECT_NE(ViolationOf("src/platform/P.cpp", "GenApi/GenApi.h"), "");
}

TEST(IncludeRules, GenicamNeverIncludesTheLibrary) {
  EXPECT_EQ(ViolationOf("genicam/src/nodes/N.cpp", "GenApi/Types.h"), "");
  EXPECT_NE(ViolationOf("genicam/src/nodes/N.cpp", "platform/P.h"), "");
  EXPECT_NE(ViolationOf("genicam/tests/engine/T.cpp", "gentl/G.h"), "");
  EXPECT_NE(ViolationOf("genicam/src/api/A.cpp", "talvir/ICamera.h"), "");
}

TEST(IncludeRules, GenicamFoldersDependOneWay) {
  EXPECT_EQ(ViolationOf("genicam/src/api/A.cpp", "load/Loader.h"), "");
  EXPECT_EQ(ViolationOf("genicam/src/nodes/N.cpp", "formula/Formula.h"), "");
  EXPECT_EQ(ViolationOf("genicam/src/formula/F.cpp", "base/NumberParsing.h"), "");
  EXPECT_NE(ViolationOf("genicam/src/formula/F.cpp", "nodes/NodeMap.h"), "");
  EXPECT_NE(ViolationOf("genicam/src/nodes/N.cpp", "load/Loader.h"), "");
  EXPECT_NE(ViolationOf("genicam/src/base/B.cpp", "api/X.h"), "");
}

TEST(IncludeRules, FindsCycles) {
  EXPECT_TRUE(Cycles({{"a.h", {"b.h"}}, {"b.h", {"c.h"}}, {"c.h", {}}}).empty());
  const auto cycles = Cycles({{"a.h", {"b.h"}}, {"b.h", {"c.h"}}, {"c.h", {"a.h"}}});
  ASSERT_EQ(cycles.size(), 1u);
  EXPECT_EQ(cycles[0], "a.h -> b.h -> c.h -> a.h");
}

// ---- the tree itself

bool IsSource(const fs::path& path) {
  const std::string extension = path.extension().string();
  return extension == ".h" || extension == ".hpp" || extension == ".cpp" || extension == ".c" || extension == ".inl";
}

std::string Read(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// Source files under TALVIR_SOURCE_DIR/<folder>, relative to TALVIR_SOURCE_DIR.
std::vector<std::string> SourcesUnder(const std::string& folder) {
  std::vector<std::string> files;
  const fs::path root(TALVIR_SOURCE_DIR);
  if (!fs::is_directory(root / folder)) return files;
  for (const auto& entry : fs::recursive_directory_iterator(root / folder)) {
    if (entry.is_regular_file() && IsSource(entry.path())) {
      files.push_back(fs::relative(entry.path(), root).generic_string());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

TEST(Layering, NoAreaIncludesAnAreaAboveIt) {
  const std::vector<std::string> files = [] {
    std::vector<std::string> all = SourcesUnder("src");
    const std::vector<std::string> genicam = SourcesUnder("genicam");
    all.insert(all.end(), genicam.begin(), genicam.end());
    return all;
  }();
  ASSERT_FALSE(files.empty()) << "no sources under " << TALVIR_SOURCE_DIR;
  std::vector<std::string> folders;
  for (const auto& entry : fs::directory_iterator(fs::path(TALVIR_SOURCE_DIR) / "genicam" / "src")) {
    if (entry.is_directory()) folders.push_back(entry.path().filename().string());
  }
  size_t checked = 0;
  for (const std::string& file : files) {
    for (const SInclude& include : IncludesOf(file, Read(fs::path(TALVIR_SOURCE_DIR) / file))) {
      ++checked;
      const std::string problem = Violation(include, folders);
      EXPECT_EQ(problem, "");
    }
  }
  EXPECT_GT(checked, files.size()) << "the scan found almost no #include lines";
}

TEST(Layering, GenicamSourcesHaveNoIncludeCycle) {
  const fs::path root = fs::path(TALVIR_SOURCE_DIR) / "genicam" / "src";
  std::vector<std::pair<std::string, std::vector<std::string>>> graph;
  for (const std::string& file : SourcesUnder("genicam/src")) {
    const std::string relative = file.substr(std::string("genicam/src/").size());
    std::vector<std::string> targets;
    for (const SInclude& include : IncludesOf(file, Read(fs::path(TALVIR_SOURCE_DIR) / file))) {
      targets.push_back(include.target);
    }
    graph.emplace_back(relative, targets);
  }
  ASSERT_GT(graph.size(), 10u);
  for (const std::string& cycle : Cycles(graph)) ADD_FAILURE() << "include cycle: " << cycle;
}

}  // namespace
