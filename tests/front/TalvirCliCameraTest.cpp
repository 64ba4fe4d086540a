// talvir-cli's camera commands against the simulated cameras in build/bin: features, get, set, grab with every
// file format, bench, settings, and the failures that need an open camera.
#include "CliApp.h"

#include <talvir/Talvir.h>

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace TalvirCli {
namespace {

struct SResult {
  int status;
  std::string out;
  std::string errors;
};

SResult RunLine(const std::vector<std::string>& arguments) {
  std::ostringstream out;
  std::ostringstream errors;
  const int status = RunCli(arguments, out, errors);
  return {status, out.str(), errors.str()};
}

std::string ReadAll(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

class TalvirCliCamera : public ::testing::Test {
protected:
  void SetUp() override {
    TALVIR::Init();
    TALVIR::ICamera* camera = TALVIR::CreateCameraBySN("U3V00001");
    if (camera != nullptr) {
      camera->Release();
    }
    TALVIR::UnInit();
    ASSERT_NE(camera, nullptr) << "the library creates no camera for the simulated U3V00001";
    m_folder = std::filesystem::temp_directory_path() /
               ("talvir-cli-test-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "-" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::create_directories(m_folder);
  }
  void TearDown() override {
    if (!m_folder.empty()) {
      std::filesystem::remove_all(m_folder);
    }
  }
  std::string File(const char* name) const { return (m_folder / name).string(); }

  std::filesystem::path m_folder;
};

TEST_F(TalvirCliCamera, FeaturesShowTheTreeWithTypesAccessValuesAndRanges) {
  const SResult all = RunLine({"features", "--serial", "U3V00001"});
  ASSERT_EQ(all.status, 0) << all.errors;
  EXPECT_NE(all.out.find("ImageFormatControl"), std::string::npos);
  EXPECT_NE(all.out.find("  Width"), std::string::npos) << "features are indented under their category";
  const SResult filtered = RunLine({"features", "--serial", "U3V00001", "--filter", "pixelformat", "--json"});
  ASSERT_EQ(filtered.status, 0) << filtered.errors;
  const nlohmann::json json = nlohmann::json::parse(filtered.out);
  ASSERT_EQ(json["features"].size(), 1u) << filtered.out;
  const nlohmann::json& category = json["features"][0];
  EXPECT_EQ(category["name"], "ImageFormatControl");
  ASSERT_EQ(category["features"].size(), 1u);
  EXPECT_EQ(category["features"][0]["name"], "PixelFormat");
  EXPECT_EQ(category["features"][0]["type"], "Enumeration");
  EXPECT_EQ(category["features"][0]["access"], "RW");
  EXPECT_FALSE(category["features"][0]["entries"].empty());
  const SResult stream = RunLine({"features", "--serial", "U3V00001", "--module", "stream"});
  EXPECT_EQ(stream.status, 0) << stream.errors;
  EXPECT_NE(stream.out.find("Stream"), std::string::npos) << stream.out;
}

TEST_F(TalvirCliCamera, SetReportsTheValueReadBackAndGetTheUnit) {
  const SResult set = RunLine({"set", "--serial", "U3V00001", "Width=320", "PixelFormat=Mono12", "ReverseX=true"});
  ASSERT_EQ(set.status, 0) << set.errors;
  EXPECT_NE(set.out.find("Width = 320"), std::string::npos) << set.out;
  EXPECT_NE(set.out.find("PixelFormat = Mono12"), std::string::npos) << set.out;
  const SResult get = RunLine({"get", "--serial", "U3V00001", "Width", "ExposureTime"});
  ASSERT_EQ(get.status, 0) << get.errors;
  EXPECT_NE(get.out.find("ExposureTime = "), std::string::npos);
  EXPECT_NE(get.out.find(" us\n"), std::string::npos) << "the unit follows the value: " << get.out;
}

TEST_F(TalvirCliCamera, RefusalsCarryTheEnginesMessage) {
  const SResult range = RunLine({"set", "--serial", "U3V00001", "Width=999999"});
  EXPECT_EQ(range.status, 1);
  EXPECT_NE(range.errors.find("cannot set Width to '999999': "), std::string::npos) << range.errors;
  EXPECT_NE(range.errors.find("maximum"), std::string::npos) << range.errors;
  const SResult entry = RunLine({"set", "--serial", "U3V00001", "PixelFormat=Purple"});
  EXPECT_EQ(entry.status, 1);
  EXPECT_NE(entry.errors.find("(one of: Mono8"), std::string::npos) << entry.errors;
  const SResult name = RunLine({"get", "--serial", "U3V00001", "Widht"});
  EXPECT_EQ(name.status, 1);
  EXPECT_NE(name.errors.find("no feature 'Widht' in the remote module"), std::string::npos) << name.errors;
  const SResult readOnly = RunLine({"set", "--serial", "U3V00001", "DeviceVendorName=Other"});
  EXPECT_EQ(readOnly.status, 1);
  EXPECT_NE(readOnly.errors.find("not writable"), std::string::npos) << readOnly.errors;
  const SResult missingValue = RunLine({"set", "--serial", "U3V00001", "Width"});
  EXPECT_EQ(missingValue.status, 2) << missingValue.errors;
  for (const SResult* result : {&range, &entry, &name, &readOnly, &missingValue}) {
    EXPECT_EQ(result->errors.find('\n'), result->errors.size() - 1) << result->errors;
  }
}

TEST_F(TalvirCliCamera, GrabsInEveryModeAndSavesEachFileFormat) {
  for (const char* mode : {"direct", "newest", "fresh"}) {
    const SResult grab = RunLine({"grab", "--serial", "U3V00002", "--mode", mode, "--count", "5"});
    ASSERT_EQ(grab.status, 0) << mode << ": " << grab.errors;
    EXPECT_NE(grab.out.find("5 frames in "), std::string::npos) << grab.out;
    EXPECT_NE(grab.out.find(std::string("(") + mode + " mode)"), std::string::npos) << grab.out;
    EXPECT_NE(grab.out.find(" 0 time-outs, 0 incomplete"), std::string::npos) << grab.out;
    EXPECT_EQ(grab.out.find('\r'), std::string::npos) << "no progress line when the output is not a terminal";
  }
  const SResult png = RunLine({"grab", "--serial", "U3V00002", "--count", "3", "--set", "PixelFormat=BayerRG8", "--set",
                               "Width=320", "--save", File("colour.png")});
  ASSERT_EQ(png.status, 0) << png.errors;
  const std::string pngBytes = ReadAll(File("colour.png"));
  ASSERT_GT(pngBytes.size(), 33u);
  EXPECT_EQ(pngBytes.substr(1, 3), "PNG");
  EXPECT_EQ(static_cast<unsigned char>(pngBytes[24]), 8u) << "bit depth";
  EXPECT_EQ(static_cast<unsigned char>(pngBytes[25]), 2u) << "colour type RGB";
  EXPECT_EQ(static_cast<unsigned char>(pngBytes[18]) * 256 + static_cast<unsigned char>(pngBytes[19]), 320);

  const SResult deep = RunLine(
      {"grab", "--serial", "U3V00001", "--count", "2", "--set", "PixelFormat=Mono12", "--save", File("deep.png")});
  ASSERT_EQ(deep.status, 0) << deep.errors;
  const std::string deepBytes = ReadAll(File("deep.png"));
  ASSERT_GT(deepBytes.size(), 33u);
  EXPECT_EQ(static_cast<unsigned char>(deepBytes[24]), 16u) << "Mono12 data is kept in a 16-bit PNG";
  EXPECT_EQ(static_cast<unsigned char>(deepBytes[25]), 0u) << "grey";

  const SResult tiff = RunLine({"grab", "--serial", "U3V00001", "--count", "2", "--save", File("mono.tif")});
  ASSERT_EQ(tiff.status, 0) << tiff.errors;
  const std::string tiffBytes = ReadAll(File("mono.tif"));
  ASSERT_GT(tiffBytes.size(), 8u);
  EXPECT_TRUE(tiffBytes.substr(0, 4) == std::string("II*\0", 4) || tiffBytes.substr(0, 4) == std::string("MM\0*", 4));

  const SResult raw = RunLine(
      {"grab", "--serial", "U3V00001", "--count", "2", "--set", "PixelFormat=Mono8", "--save", File("frame.raw")});
  ASSERT_EQ(raw.status, 0) << raw.errors;
  const nlohmann::json side = nlohmann::json::parse(ReadAll(File("frame.raw.json")));
  EXPECT_EQ(side["pixelFormat"], "0x01080001");
  EXPECT_GT(side["width"].get<uint64_t>(), 0u);
  EXPECT_TRUE(side.contains("frameId"));
  EXPECT_TRUE(side.contains("timestamp"));
  EXPECT_EQ(std::filesystem::file_size(File("frame.raw")),
            side["width"].get<uint64_t>() * side["height"].get<uint64_t>());
}

TEST_F(TalvirCliCamera, GrabFailuresEndTheCommandWithOneLine) {
  const SResult unwritable =
      RunLine({"grab", "--serial", "U3V00001", "--count", "1", "--save", "/nonexistent-talvir-folder/x.png"});
  EXPECT_EQ(unwritable.status, 1);
  EXPECT_NE(unwritable.errors.find("cannot write /nonexistent-talvir-folder/x.png: "), std::string::npos)
      << unwritable.errors;
  const SResult badSetting = RunLine({"grab", "--serial", "U3V00001", "--set", "Gain=1000"});
  EXPECT_EQ(badSetting.status, 1);
  EXPECT_NE(badSetting.errors.find("cannot set Gain"), std::string::npos) << badSetting.errors;
  // The camera goes away after a few frames: the command ends with the reason, it does not wait forever.
  const SResult lost =
      RunLine({"grab", "--serial", "U3V00001", "--count", "50", "--timeout", "300", "--set", "SimLoseAfterFrames=3"});
  EXPECT_EQ(lost.status, 1) << lost.out;
  EXPECT_EQ(lost.errors.rfind("talvir-cli: ", 0), 0u) << lost.errors;
  EXPECT_EQ(lost.errors.find('\n'), lost.errors.size() - 1) << lost.errors;
}

TEST_F(TalvirCliCamera, BenchPrintsOneRowPerGrabMode) {
  const SResult bench = RunLine({"bench", "--serial", "U3V00001", "--count", "5"});
  ASSERT_EQ(bench.status, 0) << bench.errors;
  EXPECT_EQ(bench.out.rfind("MODE", 0), 0u) << bench.out;
  for (const char* mode : {"\ndirect ", "\nnewest ", "\nfresh "}) {
    EXPECT_NE(bench.out.find(mode), std::string::npos) << bench.out;
  }
}

// Each command is one session: the simulated camera starts from its defaults every time (a real camera keeps its
// settings while powered), so the loaded values themselves are checked by the node-map round-trip tests.
TEST_F(TalvirCliCamera, SettingsSaveAndLoadBack) {
  const SResult save = RunLine({"settings", "save", File("camera.txt"), "--serial", "U3V00001"});
  ASSERT_EQ(save.status, 0) << save.errors;
  std::string text = ReadAll(File("camera.txt"));
  const size_t width = text.find("\nWidth\t");
  ASSERT_NE(width, std::string::npos) << text;
  EXPECT_NE(text.find("\nExposureTime\t"), std::string::npos) << text;
  EXPECT_LT(text.find("\nTriggerSelector\t"), text.find("\nTriggerMode\t")) << "selectors come first";
  EXPECT_NE(save.out.find("saved "), std::string::npos);
  text.replace(width + 7, text.find('\n', width + 1) - width - 7, "320");
  std::ofstream(File("camera.txt"), std::ios::trunc) << text;
  const SResult load = RunLine({"settings", "load", File("camera.txt"), "--serial", "U3V00001"});
  ASSERT_EQ(load.status, 0) << load.errors;
  EXPECT_NE(load.out.find("loaded "), std::string::npos) << load.out;
  EXPECT_EQ(load.out.find("could not be set"), std::string::npos) << load.out;

  std::ofstream(File("bad.txt")) << "Width\t999999\nNoSuchFeature\t1\nExposureTime\t2000\n";
  const SResult bad = RunLine({"settings", "load", File("bad.txt"), "--serial", "U3V00001"});
  EXPECT_EQ(bad.status, 1);
  EXPECT_NE(bad.errors.find(":1: cannot set Width to '999999': "), std::string::npos) << bad.errors;
  EXPECT_NE(bad.errors.find(":2: cannot set NoSuchFeature to '1': no such feature"), std::string::npos) << bad.errors;
  EXPECT_NE(bad.out.find("loaded 1 settings"), std::string::npos) << "the good line was still set: " << bad.out;
}

}  // namespace
}  // namespace TalvirCli

namespace TalvirCli {
namespace {

TEST(TalvirCliGigE, GrabPrintsTheGigETransferFigures) {
  const SResult result = RunLine({"grab", "--serial", "GEV00001", "--count", "5"});
  ASSERT_EQ(result.status, 0) << result.errors;
  EXPECT_NE(result.out.find("GigE transfer: "), std::string::npos) << result.out;
  EXPECT_NE(result.out.find(", 5 frames,"), std::string::npos) << result.out;
  // Other transports have no such figures.
  const SResult other = RunLine({"grab", "--serial", "U3V00001", "--count", "2"});
  ASSERT_EQ(other.status, 0) << other.errors;
  EXPECT_EQ(other.out.find("GigE transfer"), std::string::npos);
}

TEST(TalvirCliGigE, WatchReportsADeviceThatGoesAway) {
  const SResult result =
      RunLine({"watch", "--serial", "GEV00002", "--losses", "1", "--seconds", "120", "--set", "SimLoseAfterFrames=10"});
  ASSERT_EQ(result.status, 0) << result.errors;
  EXPECT_NE(result.out.find("watching GEV00002"), std::string::npos) << result.out;
  // The camera sends 10 frames, then goes away. Grabbing the newest frame, a watcher that falls behind skips frames,
  // so it counts at most 10; and at least one, because the newest frame stays for the watcher after the loss.
  std::smatch lost;
  ASSERT_TRUE(std::regex_search(
      result.out, lost, std::regex("GEV00002 went away \\(device lost, notification 1001\\) after ([0-9]+) frames")))
      << result.out;
  const int frames = std::stoi(lost[1].str());
  EXPECT_GE(frames, 1) << result.out;
  EXPECT_LE(frames, 10) << result.out;
  // Nothing is grabbed while the device is away.
  EXPECT_NE(result.out.find(" " + lost[1].str() + " frames, 1 loss, device still away"), std::string::npos)
      << result.out;
}

TEST(TalvirCliGigE, WatchWithoutALossReportsNone) {
  const SResult result = RunLine({"watch", "--serial", "U3V00001", "--seconds", "0.3"});
  ASSERT_EQ(result.status, 0) << result.errors;
  EXPECT_NE(result.out.find(" 0 losses"), std::string::npos) << result.out;
  EXPECT_EQ(RunLine({"watch", "--serial", "NOPE"}).status, 1);
}

}  // namespace
}  // namespace TalvirCli
