#include "platform/ModuleOfAddress.h"
#include "platform/SelfPath.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

namespace TALVIR::Platform {
namespace {

TEST(ModuleOfAddress, FindsThisProgramForItsOwnCode) {
  EXPECT_EQ(ModulePathOf(reinterpret_cast<const void*>(&ModulePathOf)), OwnModulePath());
}

TEST(ModuleOfAddress, FindsASharedLibraryForItsCode) {
  const std::string path = ModulePathOf(reinterpret_cast<const void*>(&std::fopen));
  ASSERT_FALSE(path.empty());
  EXPECT_NE(std::filesystem::path(path).filename().string().find("libc"), std::string::npos) << path;
  EXPECT_NE(path, OwnModulePath());
}

TEST(ModuleOfAddress, IsEmptyForNoAddress) {
  EXPECT_TRUE(ModulePathOf(nullptr).empty());
}

} // namespace
} // namespace TALVIR::Platform
