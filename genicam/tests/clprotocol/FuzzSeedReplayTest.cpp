// Replays the seeds of the CLProtocol fuzz targets as ordinary tests, so that every seed keeps passing the targets'
// own checks in every build.
#include <CLProtocol/ProbeAnswer.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

extern "C" int FuzzGenCPPacket(const uint8_t* data, size_t size);
extern "C" int FuzzProbeAnswer(const uint8_t* data, size_t size);

namespace {

std::vector<std::string> SeedsOf(const std::string& folder) {
  std::vector<std::string> seeds;
  for (const auto& entry : std::filesystem::directory_iterator(std::string(TALVIR_CLP_SEEDS) + "/" + folder)) {
    std::ifstream file(entry.path(), std::ios::binary);
    std::string seed(static_cast<size_t>(std::filesystem::file_size(entry.path())), '\0');
    file.read(&seed[0], static_cast<std::streamsize>(seed.size()));
    seeds.push_back(seed);
  }
  return seeds;
}

}  // namespace

TEST(ClProtocolFuzzSeeds, GenCPSeedsPass) {
  const std::vector<std::string> seeds = SeedsOf("gencp");
  ASSERT_FALSE(seeds.empty());
  for (const std::string& seed : seeds) {
    EXPECT_EQ(FuzzGenCPPacket(reinterpret_cast<const uint8_t*>(seed.data()), seed.size()), 0);
  }
}

TEST(ClProtocolFuzzSeeds, ProbeAnswerSeedsPass) {
  const std::vector<std::string> seeds = SeedsOf("probe");
  ASSERT_FALSE(seeds.empty());
  for (const std::string& seed : seeds) {
    EXPECT_EQ(FuzzProbeAnswer(reinterpret_cast<const uint8_t*>(seed.data()), seed.size()), 0);
  }
}

TEST(ProbeAnswer, SplitsSixOrSevenFields) {
  CLProtocol::SProbeAnswer parsed;
  ASSERT_TRUE(CLProtocol::ParseProbeAnswer("C:\\drv\\TavCLProtocolGenCP.dll#Mfr#Fam#Mod#1.0#SN1", parsed));
  EXPECT_EQ(parsed.driverPath, "C:\\drv\\TavCLProtocolGenCP.dll");
  EXPECT_EQ(parsed.manufacturer, "Mfr");
  EXPECT_EQ(parsed.serialNumber, "SN1");
  EXPECT_FALSE(parsed.hasExtra);
  ASSERT_TRUE(CLProtocol::ParseProbeAnswer("p#m#f#mod#v#s#X", parsed));
  EXPECT_TRUE(parsed.hasExtra);
  EXPECT_EQ(parsed.extra, "X");
  EXPECT_FALSE(CLProtocol::ParseProbeAnswer("a#b#c#d#e", parsed));
  EXPECT_FALSE(CLProtocol::ParseProbeAnswer("a#b#c#d#e#f#g#h", parsed));
}

TEST(ProbeAnswer, TurnsTheLastPathSeparatorIntoAHash) {
  EXPECT_EQ(CLProtocol::DeviceIdPartOfDriverPath("C:\\drv\\TavCLProtocolGenCP.dll"), "C:\\drv#TavCLProtocolGenCP.dll");
  EXPECT_EQ(CLProtocol::DeviceIdPartOfDriverPath("/opt/a/libX.so"), "/opt/a#libX.so");
  EXPECT_EQ(CLProtocol::DeviceIdPartOfDriverPath("libX.so"), "libX.so");
}
