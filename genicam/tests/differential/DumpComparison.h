#pragma once
// Feature-by-feature comparison of two dumps (ours and the comparison engine's) of the same description file over the
// same seeded register space. Differences explained by a documented deviation of the comparison engine from the
// standard are counted per kind and excluded; every other difference is a disagreement.
#include "DescriptionFacts.h"

#include <nlohmann/json.hpp>

#include <map>
#include <string>
#include <vector>

namespace TALVIR::Tools {
using DumpRecords = std::map<std::string, nlohmann::json>;

// Parses JSON lines keyed by "name"; throws nlohmann::json::exception on a malformed line.
DumpRecords ParseDump(const std::string& text);

struct SComparison {
  size_t features = 0;   // features in either dump
  size_t agreeing = 0;   // every compared field equal
  size_t deviating = 0;  // differ only where a documented deviation applies
  std::map<std::string, size_t> deviationsByKind;
  std::vector<std::string> disagreements;  // "Feature.field: ours X, theirs Y"

  double AgreementRate() const { return features == 0 ? 1.0 : double(agreeing + deviating) / double(features); }
  void Add(const SComparison& other);
};

SComparison CompareDumps(const DumpRecords& ours, const DumpRecords& theirs, const CDescriptionFacts& facts);

// One line per documented deviation kind: its name and the standard's rule it departs from.
const std::map<std::string, std::string>& DocumentedDeviations();
}  // namespace TALVIR::Tools
