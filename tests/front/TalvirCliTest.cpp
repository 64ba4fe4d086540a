// talvir-cli's table and its discover command, run in-process against the library and producers in build/bin.
#include "DeviceTable.h"
#include "DiscoverCommand.h"

#include <talvir/CustomInfo.h>
#include <talvir/TLType.h>

#include <gtest/gtest.h>

#include <sstream>

namespace TalvirCli {
namespace {

class CInfo final : public TALVIR::ICameraInfo {
public:
  CInfo(uint32_t tlType, uint32_t access, std::string serial, const char* producer)
      : m_tlType(tlType), m_access(access), m_serial(std::move(serial)), m_producer(producer) {}
  uint32_t GetTLType() const override { return m_tlType; }
  uint32_t GetAccessStatus() const override { return m_access; }
  const char* GetDeviceID() const override { return "id"; }
  const char* GetSerialNumber() const override { return m_serial.c_str(); }
  const char* GetVendor() const override { return "V"; }
  const char* GetModel() const override { return "Model"; }
  const char* GetDisplayName() const override { return ""; }
  const char* GetUserDefinedName() const override { return ""; }
  const char* GetVersion() const override { return ""; }
  uint64_t GetTimestampFrequency() const override { return 0; }
  const char* GetCustomInfo(uint32_t item) const override {
    return item == TALVIR::CustomInfo::ProducerFile ? m_producer : nullptr;
  }
  void Destroy() override {}

private:
  uint32_t m_tlType;
  uint32_t m_access;
  std::string m_serial;
  const char* m_producer;
};

TEST(TalvirCli, NamesTransportTypes) {
  EXPECT_EQ(TLTypeText(TALVIR::TLType::GEV), "GEV");
  EXPECT_EQ(TLTypeText(TALVIR::TLType::CLHS), "CLHS");
  EXPECT_EQ(TLTypeText(TALVIR::TLType::CLSerialOnly), "CL-serial");
  EXPECT_EQ(TLTypeText(0), "-");
  EXPECT_EQ(TLTypeText(3), "0x3");
}

TEST(TalvirCli, PrintsAnAlignedTable) {
  CInfo first(TALVIR::TLType::U3V, 1, "SERIAL-LONG", "U3VTLTAV.cti");
  CInfo second(0, 9, "S", nullptr);
  std::ostringstream out;
  PrintDeviceTable(out, {&first, &second});
  const std::string expected = "VENDOR  MODEL  SERIAL       TL   ACCESS      DEVICE ID  PRODUCER\n"
                               "V       Model  SERIAL-LONG  U3V  ReadWrite   id         U3VTLTAV.cti\n"
                               "V       Model  S            -    Unknown(9)  id         \n";
  EXPECT_EQ(out.str(), expected);
}

TEST(TalvirCli, RefusesBadArguments) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--type", "GEV"},
                                                    {"--type", "-1"},
                                                    {"--type"},
                                                    {"--bogus"},
                                                    {"--type", "1", "--producer", "x.cti"}}) {
    std::ostringstream out;
    std::ostringstream errors;
    EXPECT_EQ(RunDiscover(arguments, out, errors), 2);
    EXPECT_TRUE(out.str().empty());
    EXPECT_EQ(errors.str().rfind("talvir-cli: ", 0), 0u) << errors.str();
  }
}

TEST(TalvirCli, ListsTheDevicesOfOneProducer) {
  std::ostringstream out;
  std::ostringstream errors;
  EXPECT_EQ(RunDiscover({"--producer", "TalvirSimCXP.cti"}, out, errors), 0);
  EXPECT_NE(out.str().find("CXP00001"), std::string::npos) << out.str();
  EXPECT_NE(out.str().find("CXP00002"), std::string::npos);
  EXPECT_NE(out.str().find("TalvirSimCXP.cti"), std::string::npos);
  EXPECT_NE(out.str().find("\n2 devices\n"), std::string::npos);
}

TEST(TalvirCli, SelectsProducersByType) {
  std::ostringstream out;
  std::ostringstream errors;
  EXPECT_EQ(RunDiscover({"--type", "0x2"}, out, errors), 0);
  EXPECT_NE(out.str().find("U3V00001"), std::string::npos) << out.str();
  EXPECT_EQ(out.str().find("GEV00001"), std::string::npos);
  std::ostringstream none;
  EXPECT_EQ(RunDiscover({"--type", "512"}, none, errors), 0);
  EXPECT_NE(none.str().find("\n0 devices\n"), std::string::npos) << none.str();
}

} // namespace
} // namespace TalvirCli
