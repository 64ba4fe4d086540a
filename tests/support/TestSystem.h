#pragma once
// What the test programs ask of the operating system, written once for every platform: environment variables,
// the file names the build gives modules and programs, the separators of paths, links between files and running
// a program. TestSystem_posix.cpp and TestSystem_win32.cpp implement the calls that differ.
#include <filesystem>
#include <optional>
#include <string>

namespace TALVIR::Testing {

#ifdef _WIN32
constexpr bool kWindows = true;
// Separator of the folders in paths that the library builds, and between the folders of a search-path variable.
constexpr char kPathSeparator = '\\';
constexpr char kPathListSeparator = ';';
#else
constexpr bool kWindows = false;
constexpr char kPathSeparator = '/';
constexpr char kPathListSeparator = ':';
#endif

// The simulated serial camera is served over a pseudo-terminal, which POSIX systems have and Windows has not; the
// tests that need one skip elsewhere with this reason.
constexpr bool kHasPseudoTerminals = !kWindows;
constexpr const char* kNoPseudoTerminals =
    "the simulated serial camera is served over a pseudo-terminal, which this system does not have";

// The file name the build gives the shared library `base`: "libTalvir.so" on Linux, "Talvir.dll" on Windows (the
// Windows build drops the "lib" prefix). Producers keep their ".cti" name on every platform and need no mapping.
std::string ModuleFileName(const std::string& base);

// The file name of the program `base`: "talvir-cli" on Linux, "talvir-cli.exe" on Windows.
std::string ProgramFileName(const std::string& base);

// The folder that holds the CLProtocol drivers of this platform ("Linux64_x64", "Win64_x64"), and the folder of the
// other platform, which this platform must ignore.
const char* CLProtocolPlatformFolder();
const char* OtherCLProtocolPlatformFolder();

// Sets, reads and removes a variable of this process's environment. Setting throws std::runtime_error on failure.
void SetEnvironmentValue(const std::string& name, const std::string& value);
std::optional<std::string> EnvironmentValue(const std::string& name);
void UnsetEnvironmentValue(const std::string& name);

// The full path of this test program, asked of the system rather than of the library under test.
std::filesystem::path ThisProgramPath();

// Makes `link` name the same file as `target`, so that a module loader sees one module and the two share its state:
// a symbolic link where the system allows one, a hard link otherwise (Windows without the right to make symbolic
// links). Throws std::runtime_error when neither can be made.
void LinkFile(const std::filesystem::path& target, const std::filesystem::path& link);

// Whether this system lets the tests make symbolic links (Windows asks for a privilege, Wine may not offer them).
bool CanMakeSymbolicLinks();

// Runs a command line through the system's shell and gives its exit status and standard output.
struct SProgramRun {
  int status = -1;
  std::string output;
};
SProgramRun RunProgram(const std::string& commandLine);

}  // namespace TALVIR::Testing
