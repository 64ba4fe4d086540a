#include "platform/DynamicModule.h"
#include "platform/SelfPath.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace TALVIR::Platform {
namespace {

using AnswerFunction = int (*)();

TEST(NativeModuleName, MapsWindowsLibraryNamesToSharedObjects) {
#ifdef _WIN32
  GTEST_SKIP() << "Windows module names are native names on Windows";
#endif
  EXPECT_EQ(NativeModuleName("ImvexImgConvert.dll"), "libImvexImgConvert.so");
  EXPECT_EQ(NativeModuleName("VendraLib.DLL"), "libVendraLib.so");
  EXPECT_EQ(NativeModuleName("drivers/TavCLProtocolGenCP.dll"), "drivers/libTavCLProtocolGenCP.so");
}

TEST(NativeModuleName, KeepsEveryNameOnWindows) {
#ifndef _WIN32
  GTEST_SKIP() << "names are mapped to shared objects on Linux";
#else
  EXPECT_EQ(NativeModuleName("ImvexImgConvert.dll"), "ImvexImgConvert.dll");
  EXPECT_EQ(NativeModuleName("drivers\\TavCLProtocolGenCP.dll"), "drivers\\TavCLProtocolGenCP.dll");
#endif
}

TEST(NativeModuleName, LeavesProducersAndOtherNamesAlone) {
  EXPECT_EQ(NativeModuleName("TalvirSim.cti"), "TalvirSim.cti");
  EXPECT_EQ(NativeModuleName("libz.so.1"), "libz.so.1");
  EXPECT_EQ(NativeModuleName("dll"), "dll");
  EXPECT_EQ(NativeModuleName(".dllx"), ".dllx");
}

TEST(LoadModule, FindsABareNameInOurOwnFolderFirst) {
  // The test module is built into the same folder as this program, which is not on the system search path.
  CDynamicModule module("talvir_test_module.dll");
  ASSERT_TRUE(module.IsLoaded()) << LastModuleError();
  const auto answer = module.Symbol<AnswerFunction>("TalvirTestModuleAnswer");
  ASSERT_NE(answer, nullptr);
  EXPECT_EQ(answer(), 42);
}

TEST(LoadModule, LoadsByFullPath) {
  const std::string path = OwnModuleDirectory() + NativeModuleName("talvir_test_module.dll");
  CDynamicModule module(path);
  ASSERT_TRUE(module.IsLoaded()) << LastModuleError();
  EXPECT_NE(module.Symbol<AnswerFunction>("TalvirTestModuleAnswer"), nullptr);
}

TEST(LoadModule, AcceptsForwardSlashesInAWindowsPath) {
#ifndef _WIN32
  GTEST_SKIP() << "only Windows paths have two separators";
#else
  std::string path = OwnModuleDirectory() + "talvir_test_module.dll";
  for (char& c : path) {
    c = c == '\\' ? '/' : c;
  }
  CDynamicModule module(path);
  ASSERT_TRUE(module.IsLoaded()) << LastModuleError();
  EXPECT_NE(module.Symbol<AnswerFunction>("TalvirTestModuleAnswer"), nullptr);
#endif
}

TEST(LoadModule, FallsBackToTheSystemLoaderForBareNames) {
#ifdef _WIN32
  CDynamicModule module("kernel32.dll");
  ASSERT_TRUE(module.IsLoaded()) << LastModuleError();
  EXPECT_NE(module.Symbol<void*>("GetTickCount64"), nullptr);
#else
  CDynamicModule module("libm.so.6");
  ASSERT_TRUE(module.IsLoaded()) << LastModuleError();
  EXPECT_NE(module.Symbol<void*>("cos"), nullptr);
#endif
}

TEST(LoadModule, MissingModuleGivesNullAndAReason) {
  CDynamicModule module("no_such_module_anywhere.dll");
  EXPECT_FALSE(module.IsLoaded());
  EXPECT_NE(LastModuleError().find("no_such_module_anywhere"), std::string::npos) << LastModuleError();

  CDynamicModule missingPath("/nonexistent/folder/x.cti");
  EXPECT_FALSE(missingPath.IsLoaded());
  EXPECT_EQ(LoadModule(""), nullptr);
  EXPECT_FALSE(LastModuleError().empty());
}

TEST(FindSymbol, UnknownSymbolAndNullHandleGiveNull) {
  CDynamicModule module("talvir_test_module.dll");
  ASSERT_TRUE(module.IsLoaded());
  EXPECT_EQ(FindSymbol(module.Handle(), "NoSuchSymbol"), nullptr);
  EXPECT_EQ(FindSymbol(nullptr, "TalvirTestModuleAnswer"), nullptr);
  EXPECT_EQ(FindSymbol(module.Handle(), nullptr), nullptr);
  FreeModule(nullptr);  // must be harmless
}

TEST(FindLoadedModule, FindsALoadedModuleAndTakesAReference) {
  CDynamicModule module("talvir_test_module.dll");
  ASSERT_TRUE(module.IsLoaded()) << LastModuleError();
  const ModuleHandle found = FindLoadedModule(NativeModuleName("talvir_test_module.dll"));
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found, module.Handle());
  // Giving back the reference FindLoadedModule took leaves the module loaded for its owner.
  FreeModule(found);
  const auto answer = module.Symbol<AnswerFunction>("TalvirTestModuleAnswer");
  ASSERT_NE(answer, nullptr);
  EXPECT_EQ(answer(), 42);
  EXPECT_EQ(FindLoadedModule(""), nullptr);
  EXPECT_EQ(FindLoadedModule(NativeModuleName("never_loaded_module.dll")), nullptr);
}

TEST(CDynamicModule, MoveTransfersOwnership) {
  CDynamicModule first("talvir_test_module.dll");
  ASSERT_TRUE(first.IsLoaded());
  const ModuleHandle handle = first.Handle();
  CDynamicModule second(std::move(first));
  EXPECT_FALSE(first.IsLoaded());  // NOLINT(bugprone-use-after-move): checking the moved-from state on purpose
  EXPECT_EQ(second.Handle(), handle);
  CDynamicModule third;
  third = std::move(second);
  EXPECT_EQ(third.Handle(), handle);
  EXPECT_NE(third.Symbol<AnswerFunction>("TalvirTestModuleAnswer"), nullptr);
}

}  // namespace
}  // namespace TALVIR::Platform
