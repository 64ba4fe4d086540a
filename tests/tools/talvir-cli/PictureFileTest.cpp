// The PNG and TIFF files talvir-cli writes, read back sample by sample: grey and colour, 8 and 16 bits, padded rows,
// pictures large enough for several strips and data chunks, and the failures that must leave files as they were.
#include "PictureFile.h"
#include "Command.h"
#include "PictureReader.h"
#include "TiffWriter.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <random>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

namespace TalvirCli {
namespace {

// A picture with pseudo-random samples (fixed seed) and `padding` unused bytes at the end of each row.
struct STestPicture {
  std::vector<uint8_t> bytes;
  SPicture picture;

  STestPicture(uint32_t width, uint32_t height, int channels, int bitDepth, size_t padding, int significantBits) {
    const size_t bytesPerSample = static_cast<size_t>(bitDepth / 8);
    picture.width = width;
    picture.height = height;
    picture.channels = channels;
    picture.bitDepth = bitDepth;
    picture.significantBits = significantBits;
    picture.stride = width * static_cast<size_t>(channels) * bytesPerSample + padding;
    bytes.resize(picture.stride * height);
    std::mt19937 random(width * 31 + height * 7 + static_cast<uint32_t>(channels * bitDepth));
    for (uint8_t& byte : bytes) {
      byte = static_cast<uint8_t>(random());
    }
    picture.pixels = bytes.data();
  }

  // The samples a reader must find: rows without padding, colour as R, G, B.
  std::vector<uint16_t> Expected() const {
    std::vector<uint16_t> samples;
    const size_t channels = static_cast<size_t>(picture.channels);
    for (uint32_t y = 0; y < picture.height; ++y) {
      const uint8_t* row = picture.pixels + y * picture.stride;
      for (uint32_t x = 0; x < picture.width; ++x) {
        for (size_t channel = 0; channel < channels; ++channel) {
          const size_t index = x * channels + (channels == 3 ? 2 - channel : channel);
          uint16_t value = row[index];
          if (picture.bitDepth == 16) {
            std::memcpy(&value, row + index * 2, 2);
          }
          samples.push_back(value);
        }
      }
    }
    return samples;
  }
};

std::string ReadAll(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

enum class EWriter { Png, Tiff, PlainTiff };

struct SCase {
  const char* name;
  uint32_t width;
  uint32_t height;
  int channels;
  int bitDepth;
  size_t padding;
  int significantBits;
};

class PictureFolder : public ::testing::Test {
protected:
  void SetUp() override {
    const ::testing::TestInfo* test = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string("talvir-picture-test-") + test->name();
    for (char& c : name) {
      c = std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '-';
    }
    m_folder = std::filesystem::temp_directory_path() / name;
    std::filesystem::create_directories(m_folder);
  }
  void TearDown() override { std::filesystem::remove_all(m_folder); }

  std::filesystem::path m_folder;
};

class PictureFile : public PictureFolder, public ::testing::WithParamInterface<std::tuple<EWriter, SCase>> {};

TEST_P(PictureFile, ReadsBackEverySample) {
  const auto& [writer, test] = GetParam();
  const STestPicture source(test.width, test.height, test.channels, test.bitDepth, test.padding, test.significantBits);
  const std::string path = (m_folder / (writer == EWriter::Png ? "picture.png" : "picture.tif")).string();
  SDecodedPicture read;
  if (writer == EWriter::Png) {
    CPictureFile::WritePng(path, source.picture);
    read = CPictureReader::ReadPng(ReadAll(path));
  } else if (writer == EWriter::Tiff) {
    CPictureFile::WriteTiff(path, source.picture);
    read = CPictureReader::ReadTiff(ReadAll(path));
  } else {
    const std::vector<uint8_t> bytes = CTiffWriter::Encode(source.picture);
    read = CPictureReader::ReadTiff(std::string(bytes.begin(), bytes.end()));
  }
  EXPECT_EQ(read.width, test.width);
  EXPECT_EQ(read.height, test.height);
  EXPECT_EQ(read.channels, test.channels);
  EXPECT_EQ(read.bitDepth, test.bitDepth);
  const std::vector<uint16_t> expected = source.Expected();
  ASSERT_EQ(read.samples.size(), expected.size());
  size_t first = 0;
  while (first < expected.size() && read.samples[first] == expected[first]) {
    ++first;
  }
  EXPECT_EQ(first, expected.size()) << "first differing sample " << first;
  if (writer == EWriter::Png) {
    // Fewer significant bits than stored are recorded for grey; libpng records none for colour.
    const bool recorded = test.channels == 1 && test.bitDepth == 16 && test.significantBits < 16;
    EXPECT_EQ(read.significantBits, recorded ? test.significantBits : 0);
  }
}

const SCase kCases[] = {
    {"Grey8", 37, 11, 1, 8, 3, 8},         {"Colour8", 29, 13, 3, 8, 5, 8},        {"Grey16Of12", 23, 9, 1, 16, 2, 12},
    {"Grey16", 17, 5, 1, 16, 0, 16},       {"Colour16", 7, 6, 3, 16, 4, 16},       {"OnePixel", 1, 1, 1, 8, 0, 8},
    {"LargeGrey8", 1000, 301, 1, 8, 0, 8}, {"LargeColour8", 640, 200, 3, 8, 1, 8},
};

// Short names in test listings instead of the bytes of each parameter.
void PrintTo(EWriter writer, std::ostream* out) {
  *out << (writer == EWriter::Png ? "PNG" : writer == EWriter::Tiff ? "TIFF" : "plain TIFF");
}

void PrintTo(const SCase& test, std::ostream* out) { *out << test.name; }

std::string CaseName(const ::testing::TestParamInfo<std::tuple<EWriter, SCase>>& info) {
  const EWriter writer = std::get<0>(info.param);
  return std::string(writer == EWriter::Png    ? "Png"
                     : writer == EWriter::Tiff ? "Tiff"
                                               : "PlainTiff") +
         std::get<1>(info.param).name;
}

INSTANTIATE_TEST_SUITE_P(Writers, PictureFile,
                         ::testing::Combine(::testing::Values(EWriter::Png, EWriter::Tiff, EWriter::PlainTiff),
                                            ::testing::ValuesIn(kCases)),
                         CaseName);

TEST_F(PictureFolder, BadPicturesLeaveAnExistingFileAsItWas) {
  const std::filesystem::path path = m_folder / "kept.png";
  { std::ofstream(path, std::ios::binary) << "earlier picture"; }
  STestPicture good(4, 3, 1, 8, 0, 8);
  SPicture noPixels = good.picture;
  noPixels.pixels = nullptr;
  SPicture twoChannels = good.picture;
  twoChannels.channels = 2;
  SPicture twelveBits = good.picture;
  twelveBits.bitDepth = 12;
  SPicture shortRows = good.picture;
  shortRows.stride = 3;
  SPicture noWidth = good.picture;
  noWidth.width = 0;
  for (const SPicture& bad : {noPixels, twoChannels, twelveBits, shortRows, noWidth}) {
    for (bool png : {true, false}) {
      try {
        png ? CPictureFile::WritePng(path.string(), bad) : CPictureFile::WriteTiff(path.string(), bad);
        ADD_FAILURE() << "a bad picture was written";
      } catch (const CCommandError& error) {
        EXPECT_EQ(std::string(error.what()).rfind("cannot write " + path.string() + ": ", 0), 0u) << error.what();
      }
      EXPECT_EQ(ReadAll(path), "earlier picture");
    }
  }
}

TEST_F(PictureFolder, AFolderThatDoesNotExistIsNamed) {
  const STestPicture good(4, 3, 3, 8, 0, 8);
  const std::string path = (m_folder / "missing" / "picture.tif").string();
  for (bool png : {true, false}) {
    try {
      png ? CPictureFile::WritePng(path, good.picture) : CPictureFile::WriteTiff(path, good.picture);
      ADD_FAILURE() << "wrote into a missing folder";
    } catch (const CCommandError& error) {
      const std::string message = error.what();
      EXPECT_EQ(message.rfind("cannot write " + path + ": ", 0), 0u) << message;
      EXPECT_GT(message.size(), ("cannot write " + path + ": ").size()) << "the reason is missing";
    }
  }
  EXPECT_FALSE(std::filesystem::exists(m_folder / "missing"));
}

}  // namespace
}  // namespace TalvirCli
