#include "platform/SelfPath.h"

#include "support/TestSystem.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace TALVIR::Platform {
namespace {

TEST(SelfPath, IsThisProgramWhenLinkedStatically) {
  // The platform layer is linked into this test program, so "our own module" is the program itself.
  EXPECT_EQ(std::filesystem::path(OwnModulePath()).filename().string(), Testing::ProgramFileName("platform_tests"))
      << OwnModulePath();
  const std::filesystem::path program = Testing::ThisProgramPath();
  ASSERT_FALSE(program.empty());
  EXPECT_EQ(std::filesystem::canonical(OwnModulePath()), std::filesystem::canonical(program));
  EXPECT_TRUE(std::filesystem::is_regular_file(OwnModulePath()));
}

TEST(SelfPath, DirectoryKeepsItsTrailingSeparator) {
  const std::string directory = OwnModuleDirectory();
  ASSERT_FALSE(directory.empty());
  EXPECT_EQ(directory.back(), kPathSeparator);
  EXPECT_EQ(OwnModulePath().rfind(directory, 0), 0u) << "the directory is a prefix of the path";
  EXPECT_EQ(OwnModulePath().find(kPathSeparator, directory.size()), std::string::npos)
      << "nothing but the file name follows the directory";
  EXPECT_TRUE(std::filesystem::is_directory(directory));
}

TEST(SelfPath, WindowsPathsUseBackslashes) {
#ifndef _WIN32
  GTEST_SKIP() << "backslashes separate folders on Windows only";
#else
  EXPECT_EQ(kPathSeparator, '\\');
  const std::string path = OwnModulePath();
  // The loader names the program "X:\...\platform_tests.exe": a drive, backslashes, no forward slash.
  ASSERT_GE(path.size(), 3u);
  EXPECT_EQ(path.substr(1, 2), ":\\") << path;
  EXPECT_EQ(path.find('/'), std::string::npos) << path;
  EXPECT_EQ(OwnModuleDirectory(), path.substr(0, path.find_last_of('\\') + 1));
#endif
}

}  // namespace
}  // namespace TALVIR::Platform
