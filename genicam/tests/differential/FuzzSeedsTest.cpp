// The fuzz harnesses' seeds, replayed in the ordinary test builds (gcc, sanitizers) so that the harness code and the
// seeds stay valid even where the fuzzers themselves are not built.
#include "FormulaDescription.h"
#include "FuzzNodeMap.h"

#include <gtest/gtest.h>

#include <dirent.h>

#include <algorithm>
#include <fstream>
#include <sstream>

namespace {
const std::string kSeeds = std::string(TALVIR_SOURCE_DIR) + "/genicam/fuzz/seeds/";

std::vector<std::string> SeedFiles(const std::string& folder) {
  std::vector<std::string> files;
  if (DIR* directory = opendir((kSeeds + folder).c_str())) {
    while (const dirent* entry = readdir(directory))
      if (entry->d_name[0] != '.') files.push_back(kSeeds + folder + "/" + entry->d_name);
    closedir(directory);
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string Bytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}
}  // namespace

TEST(FuzzSeeds, DescriptionSeedsLoadOrFailWithAGenICamException) {
  const auto files = SeedFiles("xml");
  ASSERT_GE(files.size(), 2u);
  size_t loaded = 0;
  for (const std::string& file : files) {
    TALVIR::Tools::CSparseRegisterSpace registers;
    TALVIR::Tools::CMemoryPort port(registers);
    GenApi::CNodeMapRef nodeMap;
    try {
      nodeMap._LoadXMLFromString(Bytes(file));
    } catch (const GenICam::GenericException& e) {
      EXPECT_NE(std::string(e.GetDescription()), "") << file;
      continue;
    }
    ++loaded;
    TALVIR::Fuzz::ExerciseNodeMap(nodeMap, port);
    EXPECT_GT(registers.ReadCount(), 0u) << file;
  }
  EXPECT_GE(loaded, 1u);  // the register seed is a valid description
}

TEST(FuzzSeeds, ZipSeedsHoldTheDescriptionSeeds) {
  const auto files = SeedFiles("zip");
  ASSERT_GE(files.size(), 2u);
  size_t withWidth = 0;
  for (const std::string& file : files) {
    const std::string bytes = Bytes(file);
    GenApi::CNodeMapRef nodeMap;
    try {
      nodeMap._LoadXMLFromZIPData(bytes.data(), bytes.size());
    } catch (const GenICam::GenericException& e) {
      // The archive itself must be readable; only its description may be refused.
      EXPECT_EQ(std::string(e.GetDescription()).find("ZIP"), std::string::npos) << file << ": " << e.what();
      continue;
    }
    withWidth += nodeMap._GetNode("Width") != nullptr ? 1 : 0;
  }
  EXPECT_GE(withWidth, 2u);  // the register seed, stored and deflated
}

TEST(FuzzSeeds, FormulaSeedsEvaluateInEveryFormulaNode) {
  const auto files = SeedFiles("formula");
  ASSERT_GE(files.size(), 4u);
  for (const std::string& file : files) {
    const std::string formula = Bytes(file);
    TALVIR::Tools::CSparseRegisterSpace registers;
    TALVIR::Tools::CMemoryPort port(registers);
    GenApi::CNodeMapRef nodeMap;
    ASSERT_NO_THROW(nodeMap._LoadXMLFromString(TALVIR::Fuzz::FormulaDescription(formula))) << file;
    TALVIR::Fuzz::ExerciseNodeMap(nodeMap, port);
  }
  // (A + 3) * 2 - B / 4 with A = -7 and B = 2.5, in doubles.
  GenApi::CNodeMapRef nodeMap;
  nodeMap._LoadXMLFromString(TALVIR::Fuzz::FormulaDescription("(A + 3) * 2 - B / 4"));
  GenApi::CFloatPtr value(nodeMap._GetNode("FloatFormula"));
  ASSERT_TRUE(value.IsValid());
  EXPECT_DOUBLE_EQ(value->GetValue(), -8.625);
}
