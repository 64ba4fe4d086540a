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
  EXPECT_NE(std::filesystem::path(path).filename().string().find("libstdc++"), std::string::npos) << path;
  EXPECT_NE(path, OwnModulePath());
}

TEST(ModuleOfAddress, IsEmptyForNoAddress) { EXPECT_TRUE(ModulePathOf(nullptr).empty()); }

}  // namespace
}  // namespace TALVIR::Platform
