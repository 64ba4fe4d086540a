#include "platform/ModuleOfAddress.h"
#include "platform/DynamicModule.h"
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

using AnswerFunction = int (*)();

// Whether a module of that Windows name is still loaded, checked without loading it.
bool StillLoaded(const std::string& windowsName) {
  const ModuleHandle found = FindLoadedModule(NativeModuleName(windowsName));
  FreeModule(found);
  return found != nullptr;
}

TEST(KeepModuleLoaded, AModuleStaysLoadedAfterItsLastUserFreesIt) {
  {
    CDynamicModule module("talvir_kept_module.dll");
    const auto answer = module.Symbol<AnswerFunction>("TalvirTestModuleAnswer");
    ASSERT_NE(answer, nullptr);
    ASSERT_TRUE(KeepModuleLoaded(reinterpret_cast<const void*>(answer)));
  }
  EXPECT_TRUE(StillLoaded("talvir_kept_module.dll"));
  // Loading it again finds the same module, still working.
  CDynamicModule again("talvir_kept_module.dll");
  const auto answer = again.Symbol<AnswerFunction>("TalvirTestModuleAnswer");
  ASSERT_NE(answer, nullptr);
  EXPECT_EQ(answer(), 42);
}

TEST(KeepModuleLoaded, WithoutItTheLastFreeUnloadsTheModule) {
  {
    CDynamicModule module("talvir_test_module.dll");
    ASSERT_TRUE(module.IsLoaded());
    EXPECT_TRUE(StillLoaded("talvir_test_module.dll"));
  }
  EXPECT_FALSE(StillLoaded("talvir_test_module.dll"));
}

TEST(KeepModuleLoaded, FailsForNoAddress) { EXPECT_FALSE(KeepModuleLoaded(nullptr)); }

}  // namespace
}  // namespace TALVIR::Platform
