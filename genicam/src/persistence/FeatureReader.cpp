#include "persistence/FeatureReader.h"

#include <algorithm>

#include <GCBase/GCException.h>
#include <GenApi/Pointer.h>

namespace GenApi {
namespace {

constexpr int kMaxPasses = 4;

}  // namespace

CFeatureReader::CFeatureReader(INodeMap& nodeMap) : m_nodeMap(nodeMap) {}

CFeatureLoadResult CFeatureReader::Load(const gcstring& text) {
  CFeatureLoadResult result;
  std::vector<SFeatureIssue> malformed;
  const std::vector<SLine> lines = Parse(text, malformed);
  CAutoLock lock(m_nodeMap.GetLock());
  std::vector<SFeatureIssue> failures = Pass(lines, result.Applied);
  for (int pass = 1; pass < kMaxPasses && !failures.empty(); ++pass) {
    size_t applied = 0;
    std::vector<SFeatureIssue> again = Pass(lines, applied);
    if (again.size() >= failures.size()) {
      break;  // no progress: a further pass would fail the same way
    }
    failures = std::move(again);
    result.Applied = applied;
  }
  result.Failures = std::move(malformed);
  result.Failures.insert(result.Failures.end(), failures.begin(), failures.end());
  std::stable_sort(result.Failures.begin(), result.Failures.end(),
                   [](const SFeatureIssue& a, const SFeatureIssue& b) { return a.Line < b.Line; });
  return result;
}

std::vector<CFeatureReader::SLine> CFeatureReader::Parse(const gcstring& text,
                                                         std::vector<SFeatureIssue>& failures) const {
  std::vector<SLine> lines;
  size_t number = 0;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == gcstring::npos) {
      end = text.size();
    }
    std::string line = text.substr(start, end - start);
    start = end + 1;
    ++number;
    if (!line.empty() && line.back() == '\r') {
      line.pop_back();
    }
    if (line.empty() || line[0] == '#') {
      continue;
    }
    const size_t tab = line.find('\t');
    if (tab == std::string::npos || tab == 0) {
      failures.push_back({number, gcstring(line.substr(0, tab)), gcstring(),
                          gcstring(tab == 0 ? "no feature name before the TAB" : "no TAB between name and value")});
      continue;
    }
    SLine parsed{number, gcstring(line.substr(0, tab)), gcstring(), gcstring(line.substr(tab + 1))};
    if (!UnescapeFeatureValue(parsed.Written, parsed.Value)) {
      failures.push_back({number, parsed.Name, parsed.Written,
                          gcstring("bad escape in the value (only \\\\, \\t, \\n and \\r are known)")});
      continue;
    }
    lines.push_back(std::move(parsed));
  }
  return lines;
}

std::vector<SFeatureIssue> CFeatureReader::Pass(const std::vector<SLine>& lines, size_t& applied) {
  std::vector<SFeatureIssue> failures;
  applied = 0;
  for (const SLine& line : lines) {
    const gcstring reason = Set(line);
    if (reason.empty()) {
      ++applied;
    } else {
      failures.push_back({line.Number, line.Name, line.Written, reason});
    }
  }
  return failures;
}

gcstring CFeatureReader::Set(const SLine& line) {
  try {
    INode* node = m_nodeMap.GetNode(line.Name);
    if (node == nullptr) {
      return "no such feature";
    }
    CValuePtr value(node);
    const EInterfaceType type = node->GetPrincipalInterfaceType();
    if (!value.IsValid() || type == intfICommand || type == intfICategory || type == intfIEnumEntry) {
      return "not a feature with a value";
    }
    if (!IsWritable(node)) {
      return gcstring(std::string("not writable now (access mode ") + AccessModeName(node->GetAccessMode()) + ")");
    }
    value->FromString(line.Value);
    return gcstring();
  } catch (const GenICam::GenericException& error) {
    return gcstring(error.GetDescription());
  } catch (const std::exception& error) {
    return gcstring(error.what());  // a user port's own exception
  }
}

}  // namespace GenApi
