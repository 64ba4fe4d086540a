#include "platform/ModuleOfAddress.h"
#include "platform/SelfPath.h"

#include <gtest/gtest.h>

#include <exception>
#include <filesystem>

namespace TALVIR::Platform {
namespace {

TEST(ModuleOfAddress, FindsThisProgramForItsOwnCode) {
  EXPECT_EQ(ModulePathOf(reinterpret_cast<const void*>(&ModulePathOf)), OwnModulePath());
}

TEST(ModuleOfAddress, FindsASharedLibraryForItsCode) {
  // A function of the C++ runtime library (the sanitizers intercept many C functions, so not one of those).
  const std::string path = ModulePathOf(reinterpret_cast<const void*>(&std::terminate));
  ASSERT_FALSE(path.empty());
#ifdef _WIN32
  // The runtime is linked into the program on Windows, or comes as libstdc++-6.dll.
  const std::string name = std::filesystem::path(path).filename().string();
  EXPECT_TRUE(path == OwnModulePath() || name.find("libstdc++") != std::string::npos) << path;
#else
  EXPECT_NE(std::filesystem::path(path).filename().string().find("libstdc++"), std::string::npos) << path;
  EXPECT_NE(path, OwnModulePath());
#endif
}

TEST(ModuleOfAddress, IsEmptyForNoAddress) { EXPECT_TRUE(ModulePathOf(nullptr).empty()); }

}  // namespace
}  // namespace TALVIR::Platform
