// Flavour selection by file name and the configuration file: defaults, keys, and the messages of bad files.
#include "Config.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

using namespace TalvirSim;

namespace {

std::string ErrorOf(const std::string& json) {
  try {
    ParseConfig(json, EFlavour::Custom, "/x/TalvirSim.cti");
  } catch (const std::exception& error) {
    return error.what();
  }
  return "(accepted)";
}

}  // namespace

TEST(SimConfig, TheFileNameChoosesTheFlavour) {
  EXPECT_EQ(FlavourFromFileName("/a/b/TalvirSimGEVTL.cti"), EFlavour::GEV);
  EXPECT_EQ(FlavourFromFileName("OtherGEVTLx.cti"), EFlavour::GEV);
  EXPECT_EQ(FlavourFromFileName("/a/U3VTLTAV.cti"), EFlavour::U3V);
  EXPECT_EQ(FlavourFromFileName("TalvirSimCXP.cti"), EFlavour::CXP);
  EXPECT_EQ(FlavourFromFileName("TalvirSimCL.cti"), EFlavour::CL);
  EXPECT_EQ(FlavourFromFileName("grabbercl.cti"), EFlavour::CL);
  EXPECT_EQ(FlavourFromFileName("TalvirSim.cti"), EFlavour::Custom);
  EXPECT_EQ(FlavourFromFileName("CLOCK.cti"), EFlavour::Custom);             // "CL" must end the name
  EXPECT_EQ(FlavourFromFileName("/gevtl/TalvirSim.cti"), EFlavour::Custom);  // only the file name counts
  EXPECT_STREQ(FlavourTLType(EFlavour::GEV), "GEV");
  EXPECT_STREQ(FlavourTLType(EFlavour::Custom), "Custom");
}

TEST(SimConfig, DefaultsGiveAMonoAndAColourCameraPerFlavour) {
  const SConfig config = DefaultConfig(EFlavour::U3V, "/x/U3VTLTAV.cti");
  EXPECT_EQ(config.tlType, "U3V");
  EXPECT_EQ(config.moduleName, "U3VTLTAV.cti");
  ASSERT_EQ(config.interfaces.size(), 1u);
  ASSERT_EQ(config.interfaces[0].devices.size(), 2u);
  const SDeviceConfig& mono = config.interfaces[0].devices[0];
  EXPECT_EQ(mono.id, "SimMono U3V00001");
  EXPECT_EQ(mono.serial.size(), 8u);
  EXPECT_EQ(mono.pixelFormat, 0x01080001u);
  EXPECT_EQ(mono.width, 640u);
  EXPECT_EQ(mono.customInfo.count(1101), 1u);
  EXPECT_EQ(config.interfaces[0].devices[1].pixelFormats.size(), 65u);
  const SConfig cl = DefaultConfig(EFlavour::CL, "TalvirSimCL.cti");
  EXPECT_FALSE(cl.interfaces[0].devices[0].requireAcquisitionStart);
  EXPECT_TRUE(cl.interfaces[0].devices[0].customInfo.at(1201).numeric);
}

TEST(SimConfig, KeysOverrideTheDefaults) {
  const SConfig config = ParseConfig(
      R"({"tlType":"GEV","interfaces":[{"id":"A","enumerationDelayMs":5,"devices":[
          {"id":"D","width":64,"height":2,"pixelFormats":["Mono8","Mono12p"],"pixelFormat":"Mono12p",
           "accessStatus":"ReadOnly","customInfo":{"1500":"text","1501":7},"faults":{"incompleteEveryN":3}}]}]})",
      EFlavour::Custom, "/x/TalvirSim.cti");
  EXPECT_EQ(config.tlType, "GEV");
  const SDeviceConfig& device = config.interfaces.at(0).devices.at(0);
  EXPECT_EQ(device.id, "D");
  EXPECT_EQ(device.serial, "SIM00001");  // untouched keys keep the default
  EXPECT_EQ(device.width, 64u);
  EXPECT_EQ(device.pixelFormat, 0x010C0047u);
  EXPECT_EQ(device.accessStatus, 2);
  EXPECT_EQ(device.customInfo.at(1500).text, "text");
  EXPECT_EQ(device.customInfo.at(1501).number, 7u);
  EXPECT_EQ(device.faults.incompleteEveryN, 3u);
  EXPECT_EQ(config.interfaces[0].enumerationDelayMs, 5u);
}

TEST(SimConfig, TypedAnswersCarryTheirTypeAndExactBytes) {
  const SConfig config = ParseConfig(
      R"({"interfaces":[{"devices":[{"customInfo":{"1001":{"type":"PTR","value":4660},
                                                   "1002":{"type":"BUFFER","hex":"00ff10"}}}]}]})",
      EFlavour::GEV, "/x/TalvirSimGEVTL.cti");
  const SDeviceConfig& device = config.interfaces.at(0).devices.at(0);
  const SCustomInfo& pointer = device.customInfo.at(1001);
  EXPECT_TRUE(pointer.typed);
  EXPECT_EQ(pointer.type, 10);
  EXPECT_EQ(pointer.bytes, (std::vector<uint8_t>{0x34, 0x12, 0, 0, 0, 0, 0, 0}));
  const SCustomInfo& buffer = device.customInfo.at(1002);
  EXPECT_EQ(buffer.type, 13);
  EXPECT_EQ(buffer.bytes, (std::vector<uint8_t>{0x00, 0xFF, 0x10}));
  EXPECT_NE(ErrorOf(R"({"interfaces":[{"devices":[{"customInfo":{"1001":{"type":"POINTER","value":1}}}]}]})")
                .find("INFO_DATATYPE"),
            std::string::npos);
  EXPECT_NE(ErrorOf(R"({"interfaces":[{"devices":[{"customInfo":{"1001":{"type":"BUFFER","hex":"abc"}}}]}]})")
                .find("customInfo.1001.hex"),
            std::string::npos);
  EXPECT_NE(ErrorOf(R"({"interfaces":[{"devices":[{"customInfo":{"1001":{"type":"PTR"}}}]}]})").find("either"),
            std::string::npos);
}

TEST(SimConfig, BadFilesAreRejectedWithTheOffendingKey) {
  EXPECT_NE(ErrorOf("[1,2").find("not valid JSON"), std::string::npos);
  EXPECT_NE(ErrorOf(R"({"vendr":"x"})").find("config.vendr: unknown key"), std::string::npos);
  EXPECT_NE(ErrorOf(R"({"interfaces":{}})").find("config.interfaces: expected a list"), std::string::npos);
  EXPECT_NE(ErrorOf(R"({"interfaces":[{"devices":[{"width":"wide"}]}]})").find("devices[0].width"), std::string::npos);
  EXPECT_NE(ErrorOf(R"({"interfaces":[{"devices":[{"width":-4}]}]})").find("non-negative"), std::string::npos);
  EXPECT_NE(ErrorOf(R"({"interfaces":[{"devices":[{"width":66}]}]})").find("multiple of 4"), std::string::npos);
  EXPECT_NE(ErrorOf(R"({"interfaces":[{"devices":[{"width":1024}]}]})").find("exceed"), std::string::npos);
  EXPECT_NE(ErrorOf(R"({"interfaces":[{"devices":[{"id":"A"},{"id":"A"}]}]})").find("used twice"), std::string::npos);
  EXPECT_NE(
      ErrorOf(R"({"interfaces":[{"devices":[{"pixelFormats":["Mono8"],"pixelFormat":"Mono16"}]}]})").find("not among"),
      std::string::npos);
  EXPECT_NE(ErrorOf(R"({"interfaces":[{"devices":[{"urlScheme":"file:"}]}]})").find("urlScheme"), std::string::npos);
  EXPECT_NE(ErrorOf(R"({"interfaces":[{"devices":[{"customInfo":{"12":"x"}}]}]})").find("start at 1000"),
            std::string::npos);
  EXPECT_NE(ErrorOf(R"({"interfaces":[{"devices":[{"faults":{"loseAfter":1}}]}]})").find("faults.loseAfter"),
            std::string::npos);
  EXPECT_NE(ErrorOf(R"({"interfaces":[{"devices":[{"frameRate":-1}]}]})").find("at least"), std::string::npos);
}
