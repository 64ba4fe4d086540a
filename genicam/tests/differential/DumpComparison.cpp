#include "DumpComparison.h"

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <set>
#include <sstream>

namespace TALVIR::Tools {
namespace {
const char* const kFields[] = {"implemented", "available", "access", "value", "min", "max", "inc"};

bool SameNumber(const nlohmann::json& a, const nlohmann::json& b) {
  if (a.is_number_integer() && b.is_number_integer()) {
    // long double holds every 64-bit integer exactly, signed or not.
    const long double x = a.is_number_unsigned() ? static_cast<long double>(a.get<uint64_t>())
                                                 : static_cast<long double>(a.get<int64_t>());
    const long double y = b.is_number_unsigned() ? static_cast<long double>(b.get<uint64_t>())
                                                 : static_cast<long double>(b.get<int64_t>());
    return x == y;
  }
  const double x = a.get<double>();
  const double y = b.get<double>();
  // Both engines evaluate float formulas in double, but not necessarily in the same order of operations.
  return x == y || std::fabs(x - y) <= 1e-9 * std::max(std::fabs(x), std::fabs(y));
}

bool SameValue(const nlohmann::json& a, const nlohmann::json& b) {
  if (a.is_number() && b.is_number()) return SameNumber(a, b);
  return a == b;
}

std::string TextField(const nlohmann::json& record, const char* key) {
  const auto it = record.find(key);
  return it != record.end() && it->is_string() ? it->get_ref<const std::string&>() : std::string();
}

bool IsTrue(const nlohmann::json& record, const char* key) {
  const auto it = record.find(key);
  return it != record.end() && it->is_boolean() && it->get<bool>();
}

std::string Show(const nlohmann::json* value) { return value == nullptr ? std::string("(none)") : value->dump(); }

const nlohmann::json* Field(const nlohmann::json& record, const char* field) {
  const auto it = record.find(field);
  return it == record.end() ? nullptr : &*it;
}

std::string TheirFieldError(const nlohmann::json& theirs, const std::string& field) {
  const auto errors = theirs.find("field_errors");
  if (errors == theirs.end()) return {};
  return TextField(*errors, field.c_str());
}

bool IsFloatKind(const std::string& element) {
  return element == "Float" || element == "FloatReg" || element == "SwissKnife" || element == "Converter";
}

// One difference between the dumps of a feature.
struct SDifference {
  const std::string& name;
  const std::string& element;
  std::string field;
  const nlohmann::json* ours;
  const nlohmann::json* theirs;
  const nlohmann::json& ourRecord;
  const nlohmann::json& theirRecord;
  const DumpRecords& ourDump;
  const DumpRecords& theirDump;
  const CDescriptionFacts& facts;
};

// The stricter of two access modes, as a feature taking its value from another node gets.
std::string CombineAccess(const std::string& a, const std::string& b) {
  for (const char* dominant : {"NI", "NA"})
    if (a == dominant || b == dominant) return dominant;
  if ((a == "RO" && b == "WO") || (a == "WO" && b == "RO")) return "NA";
  if (a == "RW") return b;
  return a;
}

// Their access mode of a node with the access of its pValue chain folded in, by the standard's rule.
std::string TheirPropagatedAccess(const std::string& name, const DumpRecords& theirs, const CDescriptionFacts& facts,
                                  int depth = 0) {
  const auto it = theirs.find(name);
  if (it == theirs.end() || depth > 32) return {};
  std::string access = TextField(it->second, "access");
  const std::string target = facts.ElementText(name, "pValue");
  if (!target.empty()) {
    const std::string targetAccess = TheirPropagatedAccess(target, theirs, facts, depth + 1);
    if (!targetAccess.empty()) access = CombineAccess(access, targetAccess);
  }
  return access;
}

// The extreme of a number's type: the 64-bit integer limits or the largest finite double.
bool IsExtreme(const nlohmann::json& v) {
  if (v.is_number_integer())
    return v.is_number_unsigned() ? v.get<uint64_t>() == uint64_t(INT64_MAX)
                                  : (v.get<int64_t>() == INT64_MAX || v.get<int64_t>() == INT64_MIN);
  return v.is_number() && std::fabs(v.get<double>()) == DBL_MAX;
}

// A SwissKnife or Converter whose inputs are all integer nodes, one of which (value or limit, in our dump) is large
// enough that the product of two such inputs passes 2^63.
bool OverflowProneFormula(const std::string& node, const DumpRecords& ours, const CDescriptionFacts& facts) {
  const std::string element = facts.ElementOf(node);
  if ((element != "SwissKnife" && element != "Converter") || !facts.InputsAreIntegers(node)) return false;
  for (const std::string& input : facts.Inputs(node)) {
    const auto it = ours.find(input);
    if (it == ours.end()) continue;
    for (const char* field : {"value", "min", "max"}) {
      const auto value = it->second.find(field);
      if (value != it->second.end() && value->is_number() && std::fabs(value->get<double>()) >= 3.037e9) return true;
    }
  }
  return false;
}

bool DependsOnOverflowProneFormula(const std::string& node, const DumpRecords& ours, const CDescriptionFacts& facts) {
  std::set<std::string> seen;
  std::vector<std::string> pending{node};
  while (!pending.empty()) {
    const std::string current = pending.back();
    pending.pop_back();
    if (!seen.insert(current).second) continue;
    if (OverflowProneFormula(current, ours, facts)) return true;
    for (const std::string& reference : facts.References(current)) pending.push_back(reference);
  }
  return false;
}

int64_t IntegerText(const std::string& text, int64_t fallback) {
  try {
    return text.empty() ? fallback : static_cast<int64_t>(std::stoll(text, nullptr, 0));
  } catch (const std::exception&) {
    return fallback;
  }
}

struct SDeviation {
  const char* kind;
  const char* rule;
  std::function<bool(const SDifference&)> applies;
};

// Each kind of documented deviation of the comparison engine from the standard, with the rule it departs from and the
// exact shape of difference it produces. Only differences of that shape are excluded.
const std::vector<SDeviation>& Deviations() {
  static const std::vector<SDeviation> deviations = {
      {"MissingMinMaxIncDefault",
       "Min, Max and Inc are optional: an absent Min/Max is the type's lowest/highest value (for floats, the "
       "largest finite magnitude) and an absent integer Inc is 1; the comparison engine reports an error instead.",
       [](const SDifference& d) {
         if (d.theirs != nullptr || d.ours == nullptr || !(d.field == "min" || d.field == "max" || d.field == "inc"))
           return false;
         std::string capital = d.field;
         capital[0] = static_cast<char>(capital[0] - 'a' + 'A');
         if (TheirFieldError(d.theirRecord, d.field).find("<" + capital + ">") == std::string::npos) return false;
         if (d.facts.HasElement(d.name, capital) || d.facts.HasElement(d.name, "p" + capital)) return false;
         if (IsFloatKind(d.element)) {
           const double v = d.ours->is_number() ? d.ours->get<double>() : 0.0;
           return (d.field == "min" && (v == -DBL_MAX || std::isinf(v) || *d.ours == "-inf")) ||
                  (d.field == "max" && (v == DBL_MAX || std::isinf(v) || *d.ours == "inf"));
         }
         if (!d.ours->is_number_integer()) return false;
         if (d.field == "inc") return *d.ours == 1;
         if (d.field == "min") return d.ours->get<int64_t>() == std::numeric_limits<int64_t>::min();
         return d.ours->is_number_unsigned() ? d.ours->get<uint64_t>() == uint64_t(INT64_MAX)
                                             : d.ours->get<int64_t>() == INT64_MAX;
       }},
      {"FloatIncrementWithoutInc",
       "A Float without Inc or pInc has no increment; the comparison engine reports the smallest normal double.",
       [](const SDifference& d) {
         return d.field == "inc" && d.ours == nullptr && d.theirs != nullptr && d.theirs->is_number() &&
                d.theirs->get<double>() == DBL_MIN && !d.facts.HasElement(d.name, "Inc") &&
                !d.facts.HasElement(d.name, "pInc");
       }},
      {"EnumerationWithoutMatchingEntry",
       "Reading an Enumeration whose value matches none of its entries is an error; the comparison engine "
       "returns an empty symbolic.",
       [](const SDifference& d) {
         return d.field == "value" && d.element == "Enumeration" && d.ours == nullptr && d.theirs != nullptr &&
                *d.theirs == "";
       }},
      {"CLikeFormulaOperators",
       "Formulas accept == and != as synonyms of = and <>, and ! as logical not; the comparison engine rejects them, "
       "so features that depend on such a formula differ in any field.",
       [](const SDifference& d) { return d.facts.DependsOnCLikeOperators(d.name); }},
      {"UnattachedEventOrChunkPort",
       "A Port with an EventID or ChunkID serves nothing until an event or a buffer is attached, so features read "
       "through it are not available; the comparison engine reports them available and fails on reading.",
       [](const SDifference& d) { return d.facts.DependsOnEventOrChunkPort(d.name); }},
      {"AccessNotPropagatedThroughPValue",
       "A node that takes its value from another node (pValue) is no more accessible than that node: NI, NA, RO and "
       "WO of the target carry over. The comparison engine reports the node's own mode only; the difference is "
       "excluded when folding the target's mode (as the comparison engine reports it) into the node's gives ours.",
       [](const SDifference& d) {
         if (d.facts.ElementText(d.name, "pValue").empty()) return false;
         const std::string propagated = TheirPropagatedAccess(d.name, d.theirDump, d.facts);
         const std::string ourAccess = TextField(d.ourRecord, "access");
         if (propagated.empty() || propagated == TextField(d.theirRecord, "access") || propagated != ourAccess)
           return false;
         if (d.field == "access") return true;
         if (d.field == "implemented") return d.ours != nullptr && *d.ours == (propagated != "NI");
         if (d.field == "available") return d.ours != nullptr && *d.ours == (propagated != "NI" && propagated != "NA");
         // Fields we do not query at that access mode.
         return d.ours == nullptr &&
                (propagated == "NI" || propagated == "NA" || (propagated == "WO" && d.field == "value"));
       }},
      {"BooleanFormulaVariable",
       "A formula variable (pVariable) that is a Boolean node has the value 1 when true and 0 when false; the "
       "comparison engine reads every Boolean variable as 0 (its whole formula then evaluates wrongly), so features "
       "that depend on such a formula differ in any field.",
       [](const SDifference& d) { return d.facts.DependsOn(d.name, CDescriptionFacts::BooleanVariable); }},
      {"BooleanNeitherOnNorOff",
       "Reading a Boolean whose underlying value is neither its OnValue (default 1) nor its OffValue (default 0) is "
       "an error; the comparison engine reads any value other than OnValue as false.",
       [](const SDifference& d) {
         if (d.element != "Boolean" || d.field != "value" || d.ours != nullptr || d.theirs == nullptr ||
             *d.theirs != false)
           return false;
         const auto target = d.ourDump.find(d.facts.ElementText(d.name, "pValue"));
         if (target == d.ourDump.end() || !target->second.contains("value") ||
             !target->second["value"].is_number_integer())
           return false;
         const int64_t raw = target->second["value"].get<int64_t>();
         return raw != IntegerText(d.facts.ElementText(d.name, "OnValue"), 1) &&
                raw != IntegerText(d.facts.ElementText(d.name, "OffValue"), 0);
       }},
      {"FloatDivisionByZero",
       "A division by zero makes a formula's value undefined and reading it is an error; the comparison engine "
       "returns 0 for a floating-point division by zero, so the node and the features computed from it differ.",
       [](const SDifference& d) {
         return d.ours == nullptr && d.theirs != nullptr &&
                TextField(d.ourRecord, "error").find("division by zero") != std::string::npos;
       }},
      {"VariableNamedLikeFunction",
       "Formula variables, constants and expressions are named by their Name attribute, and a name such as EXP "
       "denotes that variable; the comparison engine takes it for the function of the same name, so features that "
       "depend on such a formula differ in any field.",
       [](const SDifference& d) { return d.facts.DependsOn(d.name, CDescriptionFacts::FunctionNamedVariable); }},
      {"FloatFunctionInIntegerFormula",
       "ABS, SQRT, ROUND and the other floating-point functions belong to SwissKnife formulas; real files also call "
       "them in IntSwissKnife and IntConverter formulas, which we evaluate (on the 64-bit value) while the "
       "comparison engine yields 0, so features that depend on such a formula differ in any field.",
       [](const SDifference& d) {
         return d.facts.DependsOn(d.name, CDescriptionFacts::FloatFunctionInIntegerFormula);
       }},
      {"IntegerFormulaInDouble",
       "IntSwissKnife and IntConverter formulas are evaluated in 64-bit integers; the comparison engine goes "
       "through doubles, so integers beyond 2^53 lose their low bits there. Excluded when both values round to "
       "the same double.",
       [](const SDifference& d) {
         if (d.ours == nullptr || d.theirs == nullptr || !d.ours->is_number_integer() || !d.theirs->is_number_integer())
           return false;
         const double a = d.ours->is_number_unsigned() ? double(d.ours->get<uint64_t>())
                                                       : double(d.ours->get<int64_t>());
         const double b = d.theirs->is_number_unsigned() ? double(d.theirs->get<uint64_t>())
                                                         : double(d.theirs->get<int64_t>());
         return std::fabs(a) >= 9007199254740992.0 && std::fabs(a - b) <= std::fabs(a) * 4 * DBL_EPSILON;
       }},
      {"UnboundedTargetLimitNotConverted",
       "A converter's Min and Max are its FormulaFrom applied to its target's Min and Max (swapped for a decreasing "
       "slope), whatever those are; when the target's limit is the extreme of its type (the whole 64-bit range of "
       "an Integer with a plain Value, say), the comparison engine passes the extreme through unconverted, and so "
       "do the nodes that take their range from that converter through pValue.",
       [](const SDifference& d) {
         if ((d.field != "min" && d.field != "max") || d.theirs == nullptr || !IsExtreme(*d.theirs)) return false;
         // Follow the pValue chain while the comparison engine shows the extreme, down to a converter.
         std::string node = d.name;
         for (int hop = 0; hop < 32 && !node.empty(); ++hop) {
           const std::string element = d.facts.ElementOf(node);
           const std::string target = d.facts.ElementText(node, "pValue");
           if (element == "Converter" || element == "IntConverter") {
             // The target's limit is extreme on our side, or on theirs when they passed it along a chain.
             for (const DumpRecords* dump : {&d.ourDump, &d.theirDump}) {
               const auto it = dump->find(target);
               if (it == dump->end()) continue;
               for (const char* limit : {"min", "max"})
                 if (it->second.contains(limit) && IsExtreme(it->second[limit])) return true;
             }
           }
           const auto theirTarget = d.theirDump.find(target);
           if (theirTarget == d.theirDump.end() || !theirTarget->second.contains(d.field) ||
               !IsExtreme(theirTarget->second[d.field]))
             return false;
           node = target;
         }
         return false;
       }},
      {"IntegerArithmeticInFloatFormula",
       "SwissKnife and Converter formulas are evaluated in double. The comparison engine evaluates subexpressions "
       "whose operands are all integers in 64-bit integers, which wrap past 2^63: with integer inputs of 2^31.5 "
       "(3.04e9) or more in magnitude a product can wrap. Excluded for features that depend on such a formula whose "
       "integer inputs (as our dump shows them) reach that size.",
       [](const SDifference& d) { return DependsOnOverflowProneFormula(d.name, d.ourDump, d.facts); }},
      {"NonPositiveIncrement",
       "An increment is a positive number: reading one that is zero or negative is an error, and an integer node "
       "without Inc has 1. The comparison engine passes on whatever its source yields (0 for an integer taking its "
       "value from a float).",
       [](const SDifference& d) {
         if (d.field != "inc" || d.theirs == nullptr || !d.theirs->is_number() || d.theirs->get<double>() > 0)
           return false;
         // Ours refuses the increment, or keeps the default of 1 when the node declares none.
         return d.ours == nullptr ||
                (*d.ours == 1 && !d.facts.HasElement(d.name, "Inc") && !d.facts.HasElement(d.name, "pInc"));
       }},
      {"StructRegAccessElementsNotShared",
       "Every element of a StructReg, pIsImplemented, pIsAvailable and pIsLocked included, applies to each of its "
       "StructEntry children; the comparison engine ignores them for the entries. Not excluded here: the oracle "
       "copies them into each entry before loading, so that the comparison engine follows the rule.",
       [](const SDifference&) { return false; }},
  };
  return deviations;
}
}  // namespace

DumpRecords ParseDump(const std::string& text) {
  DumpRecords records;
  std::istringstream lines(text);
  std::string line;
  while (std::getline(lines, line)) {
    if (line.empty()) continue;
    nlohmann::json record = nlohmann::json::parse(line);
    const std::string name = record.at("name").get<std::string>();
    records[name] = std::move(record);
  }
  return records;
}

void SComparison::Add(const SComparison& other) {
  features += other.features;
  agreeing += other.agreeing;
  deviating += other.deviating;
  for (const auto& [kind, count] : other.deviationsByKind) deviationsByKind[kind] += count;
  disagreements.insert(disagreements.end(), other.disagreements.begin(), other.disagreements.end());
}

SComparison CompareDumps(const DumpRecords& ours, const DumpRecords& theirs, const CDescriptionFacts& facts) {
  static const nlohmann::json kEmpty = nlohmann::json::object();
  SComparison result;
  std::map<std::string, bool> names;
  for (const auto& entry : ours) names[entry.first] = true;
  for (const auto& entry : theirs) names[entry.first] = true;

  for (const auto& entry : names) {
    const std::string& name = entry.first;
    ++result.features;
    const auto ourIt = ours.find(name);
    const auto theirIt = theirs.find(name);
    if (ourIt == ours.end() || theirIt == theirs.end()) {
      result.disagreements.push_back(name + ": only in " + (ourIt == ours.end() ? "theirs" : "ours"));
      continue;
    }
    const nlohmann::json& our = ourIt->second;
    const nlohmann::json& their = theirIt->second;
    const std::string element = TextField(our, "type");
    const bool bothImplemented = IsTrue(our, "implemented") && IsTrue(their, "implemented");

    std::vector<std::string> unexplained;
    std::map<std::string, bool> kinds;
    for (const char* field : kFields) {
      if (std::string(field) == "available" && !bothImplemented) continue;
      const nlohmann::json* a = Field(our, field);
      const nlohmann::json* b = Field(their, field);
      if ((a == nullptr && b == nullptr) || (a != nullptr && b != nullptr && SameValue(*a, *b))) continue;
      const SDifference difference{name, element, field, a, b, our, their, ours, theirs, facts};
      const SDeviation* explained = nullptr;
      for (const SDeviation& deviation : Deviations())
        if (deviation.applies(difference)) {
          explained = &deviation;
          break;
        }
      if (explained != nullptr) kinds[explained->kind] = true;
      else {
        std::string line = name + " (" + element + ")." + field + ": ours " + Show(a) + ", theirs " + Show(b);
        if (our.contains("error")) line += "; our error: " + TextField(our, "error");
        if (their.contains("error")) line += "; their error: " + TextField(their, "error");
        unexplained.push_back(line);
      }
    }
    if (!unexplained.empty())
      result.disagreements.insert(result.disagreements.end(), unexplained.begin(), unexplained.end());
    else if (!kinds.empty()) {
      ++result.deviating;
      for (const auto& kind : kinds) ++result.deviationsByKind[kind.first];
    } else ++result.agreeing;
  }
  return result;
}

const std::map<std::string, std::string>& DocumentedDeviations() {
  static const std::map<std::string, std::string> list = [] {
    std::map<std::string, std::string> m;
    for (const SDeviation& deviation : Deviations()) m[deviation.kind] = deviation.rule;
    return m;
  }();
  return list;
}
}  // namespace TALVIR::Tools
