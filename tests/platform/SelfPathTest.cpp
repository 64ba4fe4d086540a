#include "platform/SelfPath.h"

#include "support/TestSystem.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace TALVIR::Platform {
namespace {

TEST(SelfPath, IsThisProgramWhenLinkedStatically) {
  // The platform layer is linked into this test program, so "our own module" is the program itself.
  const std::filesystem::path program = Testing::ThisProgramPath();
  ASSERT_FALSE(program.empty());
  EXPECT_EQ(std::filesystem::canonical(OwnModulePath()), std::filesystem::canonical(program));
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

}  // namespace
}  // namespace TALVIR::Platform
