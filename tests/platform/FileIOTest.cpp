#include "platform/FileIO.h"

#include "support/TempDirectory.h"

#include <gtest/gtest.h>

namespace TALVIR::Platform {
namespace {

TEST(ReadWholeFile, ReturnsEveryByteIncludingZeros) {
  Testing::CTempDirectory folder;
  std::string content(200000, '\0');  // larger than one read chunk, with embedded zero bytes
  for (size_t i = 0; i < content.size(); ++i) {
    content[i] = static_cast<char>(i * 7);
  }
  const auto file = folder.WriteFile("data.bin", content);
  const auto read = ReadWholeFile(file.string());
  ASSERT_TRUE(read.has_value());
  EXPECT_EQ(std::string(read->begin(), read->end()), content);
}

TEST(ReadWholeFile, EmptyFileIsEmptyNotMissing) {
  Testing::CTempDirectory folder;
  const auto read = ReadWholeFile(folder.WriteFile("empty", "").string());
  ASSERT_TRUE(read.has_value());
  EXPECT_TRUE(read->empty());
}

TEST(ReadWholeFile, MissingFileOrFolderGivesNothing) {
  Testing::CTempDirectory folder;
  EXPECT_FALSE(ReadWholeFile((folder.Path() / "missing").string()).has_value());
  EXPECT_FALSE(ReadWholeFile(folder.Path().string()).has_value());
}

}  // namespace
}  // namespace TALVIR::Platform
