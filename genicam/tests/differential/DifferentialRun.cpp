#include "DifferentialRun.h"

#include "FileBytes.h"
#include "InspectNodeMap.h"

#include <algorithm>
#include <cstdio>
#include <dirent.h>
#include <set>
#include <sstream>

namespace TALVIR::Tools {
namespace {
std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

// Runs a shell command and returns its standard output; false when it cannot run or exits with an error.
bool RunAndCapture(const std::string& command, std::string& output) {
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return false;
  char buffer[65536];
  size_t got = 0;
  while ((got = fread(buffer, 1, sizeof buffer, pipe)) > 0) output.append(buffer, got);
  return pclose(pipe) == 0;
}
std::string Text(const nlohmann::json& record, const char* key) {
  const auto it = record.find(key);
  return it != record.end() && it->is_string() ? it->get_ref<const std::string&>() : std::string();
}
}  // namespace

std::string OurDump(const std::string& bytes, uint64_t seed, const Assignments& sets,
                    std::vector<std::string>* failures) {
  CSparseRegisterSpace registers(seed);
  CInspectNodeMap nodeMap(registers);
  nodeMap.Load(bytes);
  for (const auto& [name, value] : sets) {
    const std::string error = nodeMap.SetFromString(name, value);
    if (!error.empty() && failures != nullptr) failures->push_back(name + ": " + error);
  }
  CFeatureDump dump;
  nodeMap.Dump(dump, {});
  std::ostringstream text;
  dump.Print(text);
  return text.str();
}

Assignments PickWrites(const DumpRecords& ours, const DumpRecords& theirs, size_t count) {
  static const std::set<std::string> kIntegerElements = {"Integer", "IntReg", "MaskedIntReg", "StructEntry"};
  std::vector<std::string> candidates;
  for (const auto& [name, our] : ours) {
    const auto theirIt = theirs.find(name);
    if (theirIt == theirs.end()) continue;
    const nlohmann::json& their = theirIt->second;
    bool alike = Text(our, "access") == "RW" && Text(their, "access") == "RW" &&
                 kIntegerElements.count(Text(our, "type")) != 0;
    for (const char* field : {"value", "min", "max", "inc"})
      alike = alike && our.contains(field) && their.contains(field) && our[field] == their[field] &&
              our[field].is_number_integer();
    if (alike && our["min"] != our["value"] && our["min"].get<int64_t>() <= our["max"].get<int64_t>())
      candidates.push_back(name);
  }
  Assignments picked;
  if (candidates.empty() || count == 0) return picked;
  const size_t step = std::max<size_t>(1, candidates.size() / count);
  for (size_t i = 0; i < candidates.size() && picked.size() < count; i += step)
    picked.emplace_back(candidates[i], ours.at(candidates[i])["min"].dump());
  return picked;
}

SFileComparison CompareFile(const std::string& path, uint64_t seed, const std::string& oracleProgram, size_t writes) {
  SFileComparison result;
  result.file = path;
  std::string xml;
  if (!ReadFileBytes(path, xml)) {
    result.problem = "cannot read the file";
    return result;
  }
  try {
    const CDescriptionFacts facts(xml);
    // The comparison engine keeps type registrations for the life of the process; they are not our leaks.
    const std::string oracle = "ASAN_OPTIONS=detect_leaks=0 " + Quoted(oracleProgram) + " --seed " +
                               std::to_string(seed) + " " + Quoted(path);
    DumpRecords ourFirst;
    DumpRecords theirFirst;
    auto compare = [&](const Assignments& sets, DumpRecords& ourRecords, DumpRecords& theirRecords) -> bool {
      std::vector<std::string> ourFailures;
      const std::string ours = OurDump(xml, seed, sets, &ourFailures);
      std::string command = oracle;
      for (const auto& [name, value] : sets) command += " --set " + Quoted(name + "=" + value);
      std::string theirs;
      const bool theirSetsWorked = RunAndCapture(command + " 2>/dev/null", theirs);
      if (theirs.empty()) {
        result.problem = "the comparison engine failed on it (" + command + ")";
        return false;
      }
      if (theirSetsWorked != ourFailures.empty()) {
        result.problem = "the assignments succeeded in only one engine";
        for (const std::string& failure : ourFailures) result.problem += "; ours: " + failure;
        return false;
      }
      ourRecords = ParseDump(ours);
      theirRecords = ParseDump(theirs);
      const SComparison comparison = CompareDumps(ourRecords, theirRecords, facts);
      for (const std::string& line : comparison.disagreements)
        result.comparison.disagreements.push_back(sets.empty() ? line : "after writes: " + line);
      SComparison counts = comparison;
      counts.disagreements.clear();
      result.comparison.Add(counts);
      return true;
    };
    if (!compare({}, ourFirst, theirFirst) || writes == 0) return result;
    Assignments sets = PickWrites(ourFirst, theirFirst, writes);
    // An earlier write can make a later feature unwritable (a selector, an enable flag). Our engine refuses
    // such a write and changes nothing; the comparison engine does not check access on writes, so those
    // assignments are left out for both.
    std::vector<std::string> refused;
    OurDump(xml, seed, sets, &refused);
    Assignments accepted;
    for (const auto& assignment : sets) {
      const bool wasRefused = std::any_of(refused.begin(), refused.end(), [&](const std::string& failure) {
        return failure.compare(0, assignment.first.size() + 1, assignment.first + ":") == 0;
      });
      if (!wasRefused) accepted.push_back(assignment);
    }
    DumpRecords ourAfter;
    DumpRecords theirAfter;
    result.writes = accepted;
    if (!accepted.empty()) compare(accepted, ourAfter, theirAfter);
  } catch (const GenICam::GenericException& e) {
    result.problem = std::string("our engine cannot load it: ") + e.GetDescription();
  } catch (const std::exception& e) {
    result.problem = std::string("cannot compare the dumps: ") + e.what();
  }
  return result;
}

std::vector<std::string> DescriptionFiles(const std::string& folder) {
  std::vector<std::string> files;
  DIR* directory = opendir(folder.c_str());
  if (directory == nullptr) return files;
  while (const dirent* entry = readdir(directory)) {
    const std::string name = entry->d_name;
    if (name.size() > 4 && name.compare(name.size() - 4, 4, ".xml") == 0) files.push_back(folder + "/" + name);
  }
  closedir(directory);
  std::sort(files.begin(), files.end());
  return files;
}
}  // namespace TALVIR::Tools
