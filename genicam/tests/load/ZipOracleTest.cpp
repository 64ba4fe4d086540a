// Our ZIP container reader against minizip, on every sample description zipped by four independent writers
// (minizip's own, the `zip` program when installed, the simulated producer's and the tests' builder), and on
// truncated and damaged archives.
#include <gtest/gtest.h>

#include <zip.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <GCBase/GCException.h>

#include "ZipBuilder.h"
#include "ZipWriter.h"
#include "load/ZipContainer.h"
#include "load/ZipReader.h"

using namespace ZipTest;
namespace fs = std::filesystem;

namespace {

constexpr size_t kLimit = 64u * 1024u * 1024u;

struct COutcome {
  bool read = false;
  std::string text;  // content when read, the error otherwise
};

COutcome Ours(const std::string& zip) {
  try {
    return {true, GenApi::Engine::ExtractFirstZipEntry(zip.data(), zip.size(), kLimit)};
  } catch (const GenICam::RuntimeException& error) {
    return {false, error.GetDescription()};
  }
}

COutcome Minizip(const std::string& zip) {
  try {
    return {true, GenApi::Engine::ExtractFirstFile(zip.data(), zip.size(), kLimit)};
  } catch (const GenICam::RuntimeException& error) {
    return {false, error.GetDescription()};
  }
}

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

std::vector<fs::path> SampleFiles() {
  std::vector<fs::path> files;
  const fs::path folder = fs::path(TALVIR_SHARED_DIR) / "genicam-xml";
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    if (entry.path().extension() == ".xml") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string MinizipWrite(const fs::path& folder, const std::string& name, const std::string& content, int level) {
  const fs::path path = folder / "minizip.zip";
  zipFile archive = zipOpen64(path.string().c_str(), APPEND_STATUS_CREATE);
  EXPECT_NE(archive, nullptr);
  if (archive == nullptr) return std::string();
  zip_fileinfo info{};
  zipOpenNewFileInZip64(archive, name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, level == 0 ? 0 : Z_DEFLATED,
                        level, 0);
  zipWriteInFileInZip(archive, content.data(), static_cast<unsigned>(content.size()));
  zipCloseFileInZip(archive);
  zipClose(archive, "written by minizip");
  return ReadFile(path);
}

class ZipOracle : public testing::Test {
protected:
  void SetUp() override {
    m_folder = fs::path(testing::TempDir()) / ("zip_oracle_" + std::to_string(std::rand()));
    fs::create_directories(m_folder);
  }
  void TearDown() override {
    std::error_code error;
    fs::remove_all(m_folder, error);
  }

  // Both readers give the content.
  void ExpectBothRead(const std::string& zip, const std::string& content, const std::string& what) {
    const COutcome ours = Ours(zip);
    const COutcome theirs = Minizip(zip);
    ASSERT_TRUE(theirs.read) << what << ": " << theirs.text;
    ASSERT_TRUE(ours.read) << what << ": " << ours.text;
    ASSERT_EQ(ours.text, content) << what;
  }

  fs::path m_folder;
};

TEST_F(ZipOracle, SampleDescriptionsFromEveryWriter) {
  const std::vector<fs::path> files = SampleFiles();
  if (files.empty()) GTEST_SKIP() << "no sample descriptions in " << TALVIR_SHARED_DIR << "/genicam-xml";
  const bool haveZip = std::system("zip -v > /dev/null 2>&1") == 0;
  if (!haveZip) std::printf("the zip program is not installed: its archives are left out\n");
  for (const fs::path& path : files) {
    const std::string name = path.filename().string();
    const std::string content = ReadFile(path);
    for (const int level : {0, 1, 9}) {
      ExpectBothRead(MinizipWrite(m_folder, name, content, level), content, name + " minizip " + std::to_string(level));
    }
    const std::vector<char> served = TalvirSim::ZipOneFile(name, content);
    ExpectBothRead(std::string(served.begin(), served.end()), content, name + " simulated producer");
    for (const int method : {0, 8}) {
      for (const bool descriptor : {false, true}) {
        CZipFile file;
        file.name = name;
        file.content = content;
        file.method = method;
        file.dataDescriptor = descriptor;
        ExpectBothRead(MakeArchive(file).bytes, content, name + " builder");
      }
    }
    if (!haveZip) continue;
    // Deflated, stored, and streamed to standard output (sizes then follow the data in a descriptor).
    const fs::path out = m_folder / "out.zip";
    const std::string quoted = "'" + path.string() + "'";
    const std::string commands[] = {"zip -q -X -j -9 '" + out.string() + "' " + quoted,
                                    "zip -q -X -j -0 '" + out.string() + "' " + quoted,
                                    "zip -q -X -j - " + quoted + " > '" + out.string() + "'"};
    for (const std::string& command : commands) {
      fs::remove(out);
      ASSERT_EQ(std::system(command.c_str()), 0) << command;
      ExpectBothRead(ReadFile(out), content, name + " " + command);
    }
  }
}

// Cut inside the archive comment, both still read the file. Cut anywhere before, ours fails; minizip also fails
// except when only the last bytes of the end record are missing (it reads them as zeros).
TEST_F(ZipOracle, TruncatedArchives) {
  const std::string content = std::string(2000, 'a') + "<RegisterDescription/>";
  const std::string comment = "written by minizip";
  for (const int level : {0, 9}) {
    const std::string zip = MinizipWrite(m_folder, "camera.xml", content, level);
    ASSERT_EQ(zip.substr(zip.size() - comment.size()), comment);
    const size_t endRecord = zip.size() - comment.size() - 22;
    for (size_t length = 0; length < zip.size(); ++length) {
      const std::string part = zip.substr(0, length);
      const COutcome ours = Ours(part);
      const COutcome theirs = Minizip(part);
      EXPECT_EQ(ours.read, length >= endRecord + 22) << length << ": " << ours.text;
      if (length < endRecord + 16) {
        EXPECT_FALSE(theirs.read) << length;
      }
      if (ours.read) {
        EXPECT_TRUE(theirs.read) << length;
        EXPECT_EQ(ours.text, content);
      }
    }
  }
}

// Where both read a damaged archive they agree on the content; ours never reads content that minizip rejects as
// failing its checksum.
TEST_F(ZipOracle, DamagedArchivesNeverGiveDifferentContent) {
  std::string content;
  for (int i = 0; i < 60; ++i) content += "<Integer Name='I" + std::to_string(i) + "'><Value>1</Value></Integer>\n";
  size_t agreed = 0;
  for (const int level : {0, 9}) {
    const std::string zip = MinizipWrite(m_folder, "camera.xml", content, level);
    for (size_t at = 0; at < zip.size(); ++at) {
      for (const unsigned char mask : {0x01, 0x10, 0xFF}) {
        std::string damaged = zip;
        damaged[at] = static_cast<char>(damaged[at] ^ mask);
        const COutcome ours = Ours(damaged);
        const COutcome theirs = Minizip(damaged);
        if (ours.read) {
          EXPECT_EQ(ours.text, content) << "byte " << at;
        }
        if (ours.read && theirs.read) {
          EXPECT_EQ(ours.text, theirs.text) << "byte " << at;
        }
        agreed += ours.read == theirs.read ? 1 : 0;
      }
    }
  }
  std::printf("damaged archives on which both readers agree (read or refused): %zu\n", agreed);
}

}  // namespace
