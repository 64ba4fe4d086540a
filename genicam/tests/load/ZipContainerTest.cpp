// Our ZIP container reader: every kind of entry it accepts, every sample description zipped in each way, and
// damaged, truncated, refused and oversized archives, each of which must give a GenICam exception that says why.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <GCBase/GCException.h>

#include "ZipBuilder.h"
#include "load/ZipContainer.h"

using GenApi::Engine::ExtractFirstZipEntry;
using namespace ZipTest;

namespace {

constexpr size_t kLimit = 64u * 1024u * 1024u;

std::string Extract(const std::string& zip, size_t limit = kLimit) {
  return ExtractFirstZipEntry(zip.data(), zip.size(), limit);
}

// The description of the failure, or "" when the archive was read.
std::string ErrorOf(const std::string& zip, size_t limit = kLimit) {
  try {
    Extract(zip, limit);
  } catch (const GenICam::RuntimeException& error) {
    return error.GetDescription();
  }
  return std::string();
}

std::string Sample(size_t size) {
  std::string text;
  for (size_t i = 0; text.size() < size; ++i) text += "<Integer Name='N" + std::to_string(i % 97) + "'/>\n";
  text.resize(size);
  return text;
}

TEST(ZipContainer, StoredAndDeflatedEntries) {
  for (const int method : {0, 8}) {
    for (const size_t size : {size_t(0), size_t(1), size_t(1000), size_t(300000)}) {
      CZipFile file;
      file.method = method;
      file.content = Sample(size);
      EXPECT_EQ(Extract(MakeArchive(file).bytes), file.content) << method << " " << size;
    }
  }
}

TEST(ZipContainer, DataDescriptorsWithAndWithoutSignature) {
  for (const bool signature : {true, false}) {
    CZipFile file;
    file.content = Sample(5000);
    file.dataDescriptor = true;
    file.descriptorSignature = signature;
    EXPECT_EQ(Extract(MakeArchive(file).bytes), file.content);
  }
}

TEST(ZipContainer, FirstOfSeveralFilesWithCommentAndLeadingData) {
  CZipFile first;
  first.content = Sample(2000);
  CZipFile second;
  second.name = "other.xml";
  second.content = "second";
  second.method = 0;
  const CZipArchive archive = MakeArchive({first, second}, "an archive comment", std::string(777, 'S'));
  EXPECT_EQ(Extract(archive.bytes), first.content);
}

TEST(ZipContainer, EverySampleDescriptionZippedEachWay) {
  const std::filesystem::path folder = std::filesystem::path(TALVIR_SHARED_DIR) / "genicam-xml";
  std::vector<std::string> names;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    if (entry.path().extension() == ".xml") names.push_back(entry.path().filename().string());
  }
  if (names.empty()) GTEST_SKIP() << "no sample descriptions in " << folder.string();
  std::sort(names.begin(), names.end());
  for (const std::string& name : names) {
    std::ifstream in(folder / name, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    CZipFile file;
    file.name = name;
    file.content = text.str();
    for (const int method : {0, 8}) {
      for (const bool descriptor : {false, true}) {
        file.method = method;
        file.dataDescriptor = descriptor;
        ASSERT_EQ(Extract(MakeArchive(file).bytes), file.content) << name << " " << method << " " << descriptor;
      }
    }
  }
}

TEST(ZipContainer, EveryTruncationIsAnError) {
  CZipFile file;
  file.content = Sample(3000);
  const std::string zip = MakeArchive(file).bytes;
  for (size_t length = 0; length < zip.size(); ++length) {
    EXPECT_FALSE(ErrorOf(zip.substr(0, length)).empty()) << length;
  }
  EXPECT_THROW(ExtractFirstZipEntry(nullptr, 100, kLimit), GenICam::RuntimeException);
}

// A damaged byte anywhere either gives an error or, where the byte does not matter (times, names), the content
// exactly: the checksum guards the data.
TEST(ZipContainer, EveryDamagedByteGivesAnErrorOrTheExactContent) {
  for (const int method : {0, 8}) {
    CZipFile file;
    file.method = method;
    file.content = Sample(600);
    const std::string zip = MakeArchive(file).bytes;
    for (size_t at = 0; at < zip.size(); ++at) {
      for (const unsigned char mask : {0x01, 0x80, 0xFF}) {
        std::string damaged = zip;
        damaged[at] = static_cast<char>(damaged[at] ^ mask);
        try {
          ASSERT_EQ(Extract(damaged), file.content) << method << " byte " << at;
        } catch (const GenICam::RuntimeException& error) {
          EXPECT_NE(std::string(error.GetDescription()).find("ZIP"), std::string::npos);
        }
      }
    }
  }
}

TEST(ZipContainer, ChecksumMismatch) {
  CZipFile file;
  file.method = 0;
  file.content = Sample(100);
  CZipArchive archive = MakeArchive(file);
  archive.bytes[archive.data[0] + 10] ^= 0x20;
  EXPECT_NE(ErrorOf(archive.bytes).find("checksum"), std::string::npos);
}

TEST(ZipContainer, DeclaredSizeBeyondTheLimitIsRefusedBeforeInflating) {
  CZipFile file;
  file.content = std::string(4u * 1024u * 1024u, '\0');
  const CZipArchive archive = MakeArchive(file);
  EXPECT_LT(archive.bytes.size(), 20000u);
  EXPECT_NE(ErrorOf(archive.bytes, 1024u * 1024u).find("too large"), std::string::npos);
  EXPECT_EQ(Extract(archive.bytes).size(), file.content.size());
}

// A bomb that lies about its size: the output never grows past the declared size.
TEST(ZipContainer, EntryInflatingBeyondItsDeclaredSizeIsStopped) {
  CZipFile file;
  file.content = std::string(8u * 1024u * 1024u, 'z');
  CZipArchive archive = MakeArchive(file);
  Patch32(archive.bytes, archive.central[0] + 24, 1000);
  EXPECT_NE(ErrorOf(archive.bytes).find("beyond its declared 1000 bytes"), std::string::npos) << ErrorOf(archive.bytes);
  Patch32(archive.bytes, archive.central[0] + 24, 9u * 1024u * 1024u);
  EXPECT_NE(ErrorOf(archive.bytes).find("not the declared"), std::string::npos) << ErrorOf(archive.bytes);
}

TEST(ZipContainer, RefusedKinds) {
  CZipFile file;
  file.content = Sample(500);
  const CZipArchive good = MakeArchive(file);
  auto damaged = [&](size_t at, bool wide, uint32_t value) {
    std::string bytes = good.bytes;
    if (wide) Patch32(bytes, at, value);
    else Patch16(bytes, at, value);
    return ErrorOf(bytes);
  };
  EXPECT_NE(damaged(good.central[0] + 8, false, 1).find("encrypted"), std::string::npos);
  EXPECT_NE(damaged(good.central[0] + 10, false, 12).find("method 12"), std::string::npos);
  EXPECT_NE(damaged(good.local[0] + 8, false, 0).find("different methods"), std::string::npos);
  EXPECT_NE(damaged(good.central[0] + 20, true, 0xFFFFFFFF).find("ZIP64"), std::string::npos);
  EXPECT_NE(damaged(good.central[0] + 24, true, 0xFFFFFFFF).find("ZIP64"), std::string::npos);
  EXPECT_NE(damaged(good.end + 10, false, 0xFFFF).find("ZIP64"), std::string::npos);
  EXPECT_NE(damaged(good.end + 16, true, 0xFFFFFFFF).find("ZIP64"), std::string::npos);
  EXPECT_NE(damaged(good.end + 4, false, 1).find("several disks"), std::string::npos);
  EXPECT_NE(damaged(good.end + 8, false, 0).find("several disks"), std::string::npos);
  std::string empty = good.bytes;
  Patch16(empty, good.end + 8, 0);
  Patch16(empty, good.end + 10, 0);
  EXPECT_NE(ErrorOf(empty).find("no file"), std::string::npos);
  EXPECT_NE(damaged(good.end + 16, true, 0x7FFFFFFF).find("beyond"), std::string::npos);
  EXPECT_NE(damaged(good.central[0] + 42, true, 7).find("local header"), std::string::npos);
  EXPECT_NE(damaged(good.central[0] + 20, true, 0x10000000).find("truncated"), std::string::npos);
  // A comment cut short is tolerated: it is not read.
  EXPECT_EQ(damaged(good.end + 20, false, 100), "");
}

TEST(ZipContainer, Zip64EndLocatorIsRefused) {
  CZipFile file;
  file.content = Sample(100);
  const CZipArchive good = MakeArchive(file);
  std::string bytes = good.bytes.substr(0, good.end);
  Put32(bytes, 0x07064b50);
  Put32(bytes, 0);
  Put32(bytes, 0);
  Put32(bytes, 0);
  Put32(bytes, 1);
  bytes += good.bytes.substr(good.end);
  EXPECT_NE(ErrorOf(bytes).find("ZIP64"), std::string::npos) << ErrorOf(bytes);
}

TEST(ZipContainer, StoredEntryWithTwoSizes) {
  CZipFile file;
  file.method = 0;
  file.content = Sample(100);
  CZipArchive archive = MakeArchive(file);
  Patch32(archive.bytes, archive.central[0] + 24, 99);
  EXPECT_NE(ErrorOf(archive.bytes).find("two different sizes"), std::string::npos);
}

}  // namespace
