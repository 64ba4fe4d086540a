// The ZIP archives of zipped descriptions, read back with an independent ZIP reader.
#include "ZipWriter.h"

#include <gtest/gtest.h>
#include <minizip/unzip.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

using namespace TalvirSim;

TEST(SimConfig, ZippedDescriptionsUnzipToTheOriginal) {
  std::string xml = "<?xml version=\"1.0\"?><RegisterDescription>";
  for (int i = 0; i < 200; ++i) {
    xml += "<IntReg Name=\"R" + std::to_string(i) + "\"/>";
  }
  xml += "</RegisterDescription>";
  for (const std::string& content : {xml, std::string("x")}) {  // deflated, and too short to deflate (stored)
    const std::vector<char> zip = ZipOneFile("camera.xml", content);
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "talvir-sim-zip-test.zip";
    std::ofstream(path, std::ios::binary).write(zip.data(), static_cast<std::streamsize>(zip.size()));
    unzFile file = unzOpen64(path.string().c_str());
    ASSERT_NE(file, nullptr);
    ASSERT_EQ(unzGoToFirstFile(file), UNZ_OK);
    char name[64];
    unz_file_info64 info{};
    ASSERT_EQ(unzGetCurrentFileInfo64(file, &info, name, sizeof name, nullptr, 0, nullptr, 0), UNZ_OK);
    EXPECT_STREQ(name, "camera.xml");
    ASSERT_EQ(unzOpenCurrentFile(file), UNZ_OK);
    std::string text(content.size() + 10, '\0');
    const int got = unzReadCurrentFile(file, text.data(), static_cast<unsigned>(text.size()));
    EXPECT_EQ(unzCloseCurrentFile(file), UNZ_OK);  // also checks the CRC
    unzClose(file);
    std::filesystem::remove(path);
    ASSERT_EQ(got, static_cast<int>(content.size()));
    text.resize(static_cast<size_t>(got));
    EXPECT_EQ(text, content);
    if (content.size() > 1000) {
      EXPECT_LT(zip.size(), content.size() / 2);
    }
  }
}
