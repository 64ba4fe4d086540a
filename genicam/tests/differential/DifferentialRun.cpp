#include "DifferentialRun.h"

#include "FileBytes.h"
#include "InspectNodeMap.h"

#include <algorithm>
#include <cstdio>
#include <dirent.h>
#include <sstream>

namespace TALVIR::Tools
{
namespace
{
std::string Quoted(const std::string& text)
{
    std::string quoted = "'";
    for (char c : text)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

// Runs a shell command and returns its standard output; false when it cannot run or exits with an error.
bool RunAndCapture(const std::string& command, std::string& output)
{
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        return false;
    char buffer[65536];
    size_t got = 0;
    while ((got = fread(buffer, 1, sizeof buffer, pipe)) > 0)
        output.append(buffer, got);
    return pclose(pipe) == 0;
}
} // namespace

std::string OurDump(const std::string& bytes, uint64_t seed)
{
    CSparseRegisterSpace registers(seed);
    CInspectNodeMap nodeMap(registers);
    nodeMap.Load(bytes);
    CFeatureDump dump;
    nodeMap.Dump(dump, {});
    std::ostringstream text;
    dump.Print(text);
    return text.str();
}

SFileComparison CompareFile(const std::string& path, uint64_t seed, const std::string& oracleProgram)
{
    SFileComparison result;
    result.file = path;
    std::string xml;
    if (!ReadFileBytes(path, xml))
    {
        result.problem = "cannot read the file";
        return result;
    }
    std::string ours;
    try
    {
        ours = OurDump(xml, seed);
    }
    catch (const GenICam::GenericException& e)
    {
        result.problem = std::string("our engine cannot load it: ") + e.GetDescription();
        return result;
    }
    catch (const std::exception& e)
    {
        result.problem = std::string("our engine cannot load it: ") + e.what();
        return result;
    }
    // The comparison engine keeps type registrations for the life of the process; they are not our leaks.
    const std::string command = "ASAN_OPTIONS=detect_leaks=0 " + Quoted(oracleProgram) + " --seed " +
                                std::to_string(seed) + " " + Quoted(path) + " 2>/dev/null";
    std::string theirs;
    if (!RunAndCapture(command, theirs))
    {
        result.problem = "the comparison engine failed on it (" + command + ")";
        return result;
    }
    try
    {
        const CDescriptionFacts facts(xml);
        result.comparison = CompareDumps(ParseDump(ours), ParseDump(theirs), facts);
    }
    catch (const std::exception& e)
    {
        result.problem = std::string("cannot compare the dumps: ") + e.what();
    }
    return result;
}

std::vector<std::string> DescriptionFiles(const std::string& folder)
{
    std::vector<std::string> files;
    DIR* directory = opendir(folder.c_str());
    if (directory == nullptr)
        return files;
    while (const dirent* entry = readdir(directory))
    {
        const std::string name = entry->d_name;
        if (name.size() > 4 && name.compare(name.size() - 4, 4, ".xml") == 0)
            files.push_back(folder + "/" + name);
    }
    closedir(directory);
    std::sort(files.begin(), files.end());
    return files;
}
} // namespace TALVIR::Tools
