// talvir-cli's failure paths: every one gives exit status 1 (or 2 for a wrong command line), exactly one line on
// standard error that starts with "talvir-cli: " and says what and why, and nothing on standard output.
#include "CliApp.h"

#include "support/TestSystem.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace TalvirCli {
namespace {

struct SResult {
  int status;
  std::string out;
  std::string errors;
};

SResult RunLine(const std::vector<std::string>& arguments) {
  std::ostringstream out;
  std::ostringstream errors;
  const int status = RunCli(arguments, out, errors);
  return {status, out.str(), errors.str()};
}

// One line, our prefix, and the words that say what went wrong.
void ExpectOneLine(const SResult& result, int status, const std::string& words) {
  EXPECT_EQ(result.status, status) << result.errors;
  EXPECT_TRUE(result.out.empty()) << result.out;
  EXPECT_EQ(result.errors.rfind("talvir-cli: ", 0), 0u) << result.errors;
  ASSERT_FALSE(result.errors.empty());
  EXPECT_EQ(result.errors.find('\n'), result.errors.size() - 1) << "more than one line: " << result.errors;
  EXPECT_NE(result.errors.find(words), std::string::npos) << result.errors;
}

TEST(TalvirCliErrors, UnknownSerial) {
  for (const char* command : {"features", "get", "grab", "bench"}) {
    std::vector<std::string> line{command, "--serial", "NO-SUCH-SERIAL"};
    if (std::string(command) == "get") {
      line.push_back("Width");
    }
    ExpectOneLine(RunLine(line), 1, "no camera with serial 'NO-SUCH-SERIAL' (found: ");
  }
  // The path in this platform's own form: on Windows an argument that starts with '/' reads as an option.
  const std::string readme = std::filesystem::absolute(TALVIR_SOURCE_DIR "/README.md").make_preferred().string();
  ExpectOneLine(RunLine({"settings", "load", readme, "--serial", "NO-SUCH-SERIAL"}), 1, "no camera with serial");
}

TEST(TalvirCliErrors, IndexPastTheEnd) {
  ExpectOneLine(RunLine({"features", "--index", "999"}), 1, "no camera at index 999: discovery found ");
}

TEST(TalvirCliErrors, ProducerThatFailsToLoad) {
  ExpectOneLine(RunLine({"discover", "--producer", "TalvirSimNoQueue.cti"}), 1,
                "producer TalvirSimNoQueue.cti failed: it is not a GenTL producer: it lacks the function");
  ExpectOneLine(RunLine({"features", "--producer", "TalvirSimNoQueue.cti"}), 1,
                "no camera found: producer TalvirSimNoQueue.cti failed: it is not a GenTL producer");
  // A shared library that is no producer, and a file that cannot be loaded at all (a program).
  const std::string genicam = TALVIR::Testing::ModuleFileName("genicam");
  ExpectOneLine(RunLine({"discover", "--producer", genicam}), 1,
                "producer " + genicam + " failed: it is not a GenTL producer: it lacks the function GCInitLib");
  // Windows loads a program as a module (it then lacks the producer's functions); Linux cannot load one.
  const std::string program = TALVIR::Testing::ProgramFileName("talvir-cli");
  ExpectOneLine(RunLine({"get", "Width", "--producer", program}), 1,
                "no camera found: producer " + program +
                    (TALVIR::Testing::kWindows ? " failed: it is not a GenTL producer: it lacks the function GCInitLib"
                                               : " failed: it cannot be loaded ("));
  // A file that is no module on any platform: the build's cache, in the folder above the programs.
  ExpectOneLine(RunLine({"get", "Width", "--producer", "../CMakeCache.txt"}), 1,
                "no camera found: producer ../CMakeCache.txt failed: it cannot be loaded (");
  ExpectOneLine(RunLine({"grab", "--producer", "NotThere.cti"}), 1,
                "producer NotThere.cti failed: there is no such file");
}

TEST(TalvirCliErrors, UnwritableAndUnreadableFiles) {
  const std::string missingFolder =
      (std::filesystem::temp_directory_path() / "nonexistent-talvir-folder" / "settings.txt").string();
  ExpectOneLine(RunLine({"settings", "save", missingFolder}), 1, "cannot write " + missingFolder + ": ");
  ExpectOneLine(RunLine({"settings", "load", missingFolder}), 1, "cannot read " + missingFolder + ": ");
  EXPECT_FALSE(std::filesystem::exists(missingFolder));
}

TEST(TalvirCliErrors, SavingSettingsOfAMissingCameraLeavesAnExistingFileAlone) {
  const std::filesystem::path file = std::filesystem::temp_directory_path() / "talvir-cli-settings-kept.txt";
  { std::ofstream(file) << "Width\t64\n"; }
  ExpectOneLine(RunLine({"settings", "save", file.string(), "--serial", "NO-SUCH-SERIAL"}), 1, "no camera with serial");
  std::ostringstream kept;
  {
    // Closed before the file is removed: Windows removes no file that is open.
    std::ifstream in(file);
    kept << in.rdbuf();
  }
  EXPECT_EQ(kept.str(), "Width\t64\n");
  std::filesystem::remove(file);
  ExpectOneLine(RunLine({"settings", "save", file.string(), "--serial", "NO-SUCH-SERIAL"}), 1, "no camera with serial");
  EXPECT_FALSE(std::filesystem::exists(file)) << "a file made only to check the path is removed again";
}

TEST(TalvirCliErrors, WrongCommandLinesAreUsageErrors) {
  const std::vector<std::vector<std::string>> lines = {
      {},
      {"nonsense"},
      {"discover", "--type", "GEV"},
      {"discover", "--bogus"},
      {"features", "--module", "camera"},
      {"features", "--serial", "A", "--index", "1"},
      {"grab", "--mode", "sideways"},
      {"grab", "--count", "0"},
      {"grab", "--count", "many"},
      {"grab", "--timeout", "-5"},
      {"grab", "--save", "picture.jpg"},
      {"grab", "--set", "Width"},
      {"bench", "--set", "=3"},
      {"get"},
      {"set"},
      {"set", "=5"},
      {"settings"},
      {"settings", "save"},
      {"settings", "frobnicate", "x"},
  };
  for (const std::vector<std::string>& line : lines) {
    SCOPED_TRACE(::testing::PrintToString(line));
    const SResult result = RunLine(line);
    EXPECT_EQ(result.status, 2) << result.errors;
    EXPECT_TRUE(result.out.empty());
    EXPECT_EQ(result.errors.rfind("talvir-cli: ", 0), 0u) << result.errors;
    EXPECT_EQ(result.errors.find('\n'), result.errors.size() - 1) << result.errors;
  }
}

TEST(TalvirCliErrors, EveryCommandHasHelp) {
  for (const std::vector<std::string>& line : std::vector<std::vector<std::string>>{{"--help"},
                                                                                    {"discover", "--help"},
                                                                                    {"features", "--help"},
                                                                                    {"get", "--help"},
                                                                                    {"set", "--help"},
                                                                                    {"grab", "--help"},
                                                                                    {"bench", "--help"},
                                                                                    {"settings", "--help"},
                                                                                    {"settings", "save", "--help"},
                                                                                    {"settings", "load", "--help"}}) {
    const SResult result = RunLine(line);
    EXPECT_EQ(result.status, 0) << ::testing::PrintToString(line) << result.errors;
    EXPECT_NE(result.out.find("Usage:"), std::string::npos) << result.out;
    EXPECT_TRUE(result.errors.empty());
  }
  const SResult grab = RunLine({"grab", "--help"});
  for (const char* option : {"--serial", "--index", "--mode", "--count", "--timeout", "--set", "--save"}) {
    EXPECT_NE(grab.out.find(option), std::string::npos) << option;
  }
}

}  // namespace
}  // namespace TalvirCli
