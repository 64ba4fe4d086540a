// Our engine against the comparison engine on every sample description file: same seeded registers, same dump,
// every feature's implemented/available/access/value/min/max/inc must agree except for documented deviations of the
// comparison engine from the standard (listed in DumpComparison.cpp with the rule each departs from). Each file is
// compared freshly loaded and again after both engines wrote the same features, which checks writes, cache
// invalidation and the values that depend on the written registers.
#include "DifferentialRun.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

using namespace TALVIR::Tools;

namespace {
const std::string kCorpus = std::string(TALVIR_SHARED_DIR) + "/genicam-xml";
const std::string kOracle = std::string(TALVIR_BIN_DIR) + "/genicam-aravis-dump";

// Under the sanitizers a large file costs seconds, so only every sixth file and one seed are compared there; the
// default build compares every file with two seeds.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr size_t kStride = 6;
const std::vector<uint64_t> kSeeds = {0};
#else
constexpr size_t kStride = 1;
const std::vector<uint64_t> kSeeds = {0, 7};
#endif

std::vector<std::string> SelectedFiles() {
  std::vector<std::string> selected;
  const std::vector<std::string> all = DescriptionFiles(kCorpus);
  for (size_t i = 0; i < all.size(); i += kStride) selected.push_back(all[i]);
  if (selected.empty()) selected.push_back("");  // one test that reports the missing corpus
  return selected;
}

std::string TestName(const testing::TestParamInfo<std::string>& info) {
  if (info.param.empty()) return "NoCorpus";
  std::string name = info.param.substr(info.param.rfind('/') + 1);
  name = name.substr(0, name.size() - 4);
  for (char& c : name)
    if (!isalnum(static_cast<unsigned char>(c))) c = '_';
  return name;
}

class DifferentialTest : public testing::TestWithParam<std::string> {};

TEST_P(DifferentialTest, EveryFeatureAgreesWithTheComparisonEngine) {
  if (GetParam().empty()) GTEST_SKIP() << "no sample description files in " << kCorpus;
  for (uint64_t seed : kSeeds) {
    // The fresh dumps, then the dumps after both engines wrote the same 16 features.
    const SFileComparison result = CompareFile(GetParam(), seed, kOracle, 16);
    ASSERT_TRUE(result.problem.empty()) << result.problem;
    const SComparison& c = result.comparison;
    std::cout << "seed " << seed << ": " << c.features << " features, " << c.agreeing << " agree, " << c.deviating
              << " differ only by documented deviations, " << (c.features - c.agreeing - c.deviating)
              << " disagree; agreement " << 100.0 * c.AgreementRate() << "%\n";
    for (const auto& [kind, count] : c.deviationsByKind) std::cout << "  deviation " << kind << ": " << count << "\n";
    std::string listed;
    for (size_t i = 0; i < c.disagreements.size() && i < 40; ++i) listed += "  " + c.disagreements[i] + "\n";
    EXPECT_TRUE(c.disagreements.empty()) << c.disagreements.size() << " disagreements, the first ones:\n" << listed;
    EXPECT_GT(c.features, 0u);
  }
}

INSTANTIATE_TEST_SUITE_P(Corpus, DifferentialTest, testing::ValuesIn(SelectedFiles()), TestName);

TEST(DifferentialDeviations, EachDocumentedDeviationStatesTheRuleItDepartsFrom) {
  ASSERT_FALSE(DocumentedDeviations().empty());
  for (const auto& [kind, rule] : DocumentedDeviations()) EXPECT_GT(rule.size(), 40u) << kind;
}
}  // namespace
