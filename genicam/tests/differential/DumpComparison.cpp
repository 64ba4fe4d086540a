#include "DumpComparison.h"

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <sstream>

namespace TALVIR::Tools
{
namespace
{
const char* const kFields[] = {"implemented", "available", "access", "value", "min", "max", "inc"};

bool SameNumber(const nlohmann::json& a, const nlohmann::json& b)
{
    if (a.is_number_integer() && b.is_number_integer())
    {
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

bool SameValue(const nlohmann::json& a, const nlohmann::json& b)
{
    if (a.is_number() && b.is_number())
        return SameNumber(a, b);
    return a == b;
}

std::string Show(const nlohmann::json* value)
{
    return value == nullptr ? std::string("(none)") : value->dump();
}

const nlohmann::json* Field(const nlohmann::json& record, const char* field)
{
    const auto it = record.find(field);
    return it == record.end() ? nullptr : &*it;
}

std::string TheirFieldError(const nlohmann::json& theirs, const std::string& field)
{
    const auto errors = theirs.find("field_errors");
    if (errors == theirs.end())
        return {};
    const auto it = errors->find(field);
    return it == errors->end() ? std::string() : it->get<std::string>();
}

bool IsFloatKind(const std::string& element)
{
    return element == "Float" || element == "FloatReg" || element == "SwissKnife" || element == "Converter";
}

// One difference between the dumps of a feature.
struct SDifference
{
    const std::string& name;
    const std::string& element;
    std::string field;
    const nlohmann::json* ours;
    const nlohmann::json* theirs;
    const nlohmann::json& theirRecord;
    const CDescriptionFacts& facts;
};

struct SDeviation
{
    const char* kind;
    const char* rule;
    std::function<bool(const SDifference&)> applies;
};

// Each kind of documented deviation of the comparison engine from the standard, with the rule it departs from and the
// exact shape of difference it produces. Only differences of that shape are excluded.
const std::vector<SDeviation>& Deviations()
{
    static const std::vector<SDeviation> deviations = {
        {"MissingMinMaxIncDefault",
         "Min, Max and Inc are optional: an absent Min/Max is the type's lowest/highest value (for floats, the "
         "largest finite magnitude) and an absent integer Inc is 1; the comparison engine reports an error instead.",
         [](const SDifference& d) {
             if (d.theirs != nullptr || d.ours == nullptr || !(d.field == "min" || d.field == "max" || d.field == "inc"))
                 return false;
             std::string capital = d.field;
             capital[0] = static_cast<char>(capital[0] - 'a' + 'A');
             if (TheirFieldError(d.theirRecord, d.field).find("<" + capital + ">") == std::string::npos)
                 return false;
             if (d.facts.HasElement(d.name, capital) || d.facts.HasElement(d.name, "p" + capital))
                 return false;
             if (IsFloatKind(d.element))
             {
                 const double v = d.ours->is_number() ? d.ours->get<double>() : 0.0;
                 return (d.field == "min" && (v == -DBL_MAX || std::isinf(v) || *d.ours == "-inf")) ||
                        (d.field == "max" && (v == DBL_MAX || std::isinf(v) || *d.ours == "inf"));
             }
             if (!d.ours->is_number_integer())
                 return false;
             if (d.field == "inc")
                 return *d.ours == 1;
             if (d.field == "min")
                 return d.ours->get<int64_t>() == std::numeric_limits<int64_t>::min();
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
    };
    return deviations;
}
} // namespace

DumpRecords ParseDump(const std::string& text)
{
    DumpRecords records;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line))
    {
        if (line.empty())
            continue;
        nlohmann::json record = nlohmann::json::parse(line);
        const std::string name = record.at("name").get<std::string>();
        records[name] = std::move(record);
    }
    return records;
}

void SComparison::Add(const SComparison& other)
{
    features += other.features;
    agreeing += other.agreeing;
    deviating += other.deviating;
    for (const auto& [kind, count] : other.deviationsByKind)
        deviationsByKind[kind] += count;
    disagreements.insert(disagreements.end(), other.disagreements.begin(), other.disagreements.end());
}

SComparison CompareDumps(const DumpRecords& ours, const DumpRecords& theirs, const CDescriptionFacts& facts)
{
    static const nlohmann::json kEmpty = nlohmann::json::object();
    SComparison result;
    std::map<std::string, bool> names;
    for (const auto& entry : ours)
        names[entry.first] = true;
    for (const auto& entry : theirs)
        names[entry.first] = true;

    for (const auto& entry : names)
    {
        const std::string& name = entry.first;
        ++result.features;
        const auto ourIt = ours.find(name);
        const auto theirIt = theirs.find(name);
        if (ourIt == ours.end() || theirIt == theirs.end())
        {
            result.disagreements.push_back(name + ": only in " + (ourIt == ours.end() ? "theirs" : "ours"));
            continue;
        }
        const nlohmann::json& our = ourIt->second;
        const nlohmann::json& their = theirIt->second;
        const std::string element = our.value("type", std::string());
        const bool bothImplemented = our.value("implemented", false) && their.value("implemented", false);

        std::vector<std::string> unexplained;
        std::map<std::string, bool> kinds;
        for (const char* field : kFields)
        {
            if (std::string(field) == "available" && !bothImplemented)
                continue;
            const nlohmann::json* a = Field(our, field);
            const nlohmann::json* b = Field(their, field);
            if ((a == nullptr && b == nullptr) || (a != nullptr && b != nullptr && SameValue(*a, *b)))
                continue;
            const SDifference difference{name, element, field, a, b, their, facts};
            const SDeviation* explained = nullptr;
            for (const SDeviation& deviation : Deviations())
                if (deviation.applies(difference))
                {
                    explained = &deviation;
                    break;
                }
            if (explained != nullptr)
                kinds[explained->kind] = true;
            else
            {
                std::string line = name + " (" + element + ")." + field + ": ours " + Show(a) + ", theirs " + Show(b);
                if (our.contains("error"))
                    line += "; our error: " + our["error"].get<std::string>();
                if (their.contains("error"))
                    line += "; their error: " + their["error"].get<std::string>();
                unexplained.push_back(line);
            }
        }
        if (!unexplained.empty())
            result.disagreements.insert(result.disagreements.end(), unexplained.begin(), unexplained.end());
        else if (!kinds.empty())
        {
            ++result.deviating;
            for (const auto& kind : kinds)
                ++result.deviationsByKind[kind.first];
        }
        else
            ++result.agreeing;
    }
    return result;
}

const std::map<std::string, std::string>& DocumentedDeviations()
{
    static const std::map<std::string, std::string> list = [] {
        std::map<std::string, std::string> m;
        for (const SDeviation& deviation : Deviations())
            m[deviation.kind] = deviation.rule;
        return m;
    }();
    return list;
}
} // namespace TALVIR::Tools
