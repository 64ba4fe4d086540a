#pragma once
// The round trip that every description must pass: save the settings of one device, load them into a second device
// whose registers start elsewhere, save again. Every line of the first text must come back, unless loading reported
// that feature as failed.
#include "PersistenceFixture.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace PersistenceTest {

struct SRoundTrip {
  size_t Lines = 0;               // settings lines of the first text
  size_t Failed = 0;              // lines loading reported as failed
  std::vector<std::string> Lost;  // lines neither found again nor reported
  bool Repeatable = false;        // a second save of the first device gave the same text (selectors restored)
};

inline std::vector<std::string> SettingLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line[0] != '#') {
      lines.push_back(line);
    }
  }
  return lines;
}

// `prepare` runs on both devices before anything is saved or loaded (to unlock what seeded registers locked).
// The second device's registers start from `secondSeed` (the first device's seed is 1).
template <class Prepare>
SRoundTrip RoundTrip(const std::string& description, GenApi::EFeatureSelection selection, Prepare prepare,
                     uint64_t secondSeed = 2) {
  SRoundTrip trip;
  CDevice first(description, 1);
  prepare(first);
  const std::string saved = GenApi::SaveFeatures(first.Map(), selection);
  trip.Repeatable = std::string(GenApi::SaveFeatures(first.Map(), selection)) == saved;
  CDevice second(description, secondSeed);
  prepare(second);
  const GenApi::CFeatureLoadResult result = GenApi::LoadFeatures(second.Map(), saved);
  const std::string again = GenApi::SaveFeatures(second.Map(), selection);
  std::set<std::string> failedNames;
  for (const GenApi::SFeatureIssue& failure : result.Failures) {
    failedNames.insert(failure.Name);
  }
  const std::vector<std::string> before = SettingLines(saved);
  const std::vector<std::string> after = SettingLines(again);
  const std::multiset<std::string> found(after.begin(), after.end());
  trip.Lines = before.size();
  trip.Failed = result.Failures.size();
  for (const std::string& line : before) {
    if (found.count(line) == 0 && failedNames.count(line.substr(0, line.find('\t'))) == 0) {
      trip.Lost.push_back(line);
    }
  }
  return trip;
}

}  // namespace PersistenceTest
