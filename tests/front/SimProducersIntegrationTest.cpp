// The exported functions of the real library against the simulated producer's flavours and fault variants, each
// copied beside a copy of the library under the file name the test needs.
#include "LibraryUnderTest.h"

#include <GenApi/GenApi.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <set>

namespace TALVIR {
namespace {

using Testing::CLibraryUnderTest;

struct CDeviceRow {
  uint32_t tlType;
  std::string serial;
  std::string deviceID;
  std::string producer;
};

std::vector<CDeviceRow> RowsAndGiveBack(std::list<ICameraInfo*> records) {
  std::vector<CDeviceRow> rows;
  for (ICameraInfo* record : records) {
    const char* producer = record->GetCustomInfo(CustomInfo::ProducerFile);
    rows.push_back({record->GetTLType(), record->GetSerialNumber(), record->GetDeviceID(), producer ? producer : ""});
    record->Destroy();
  }
  return rows;
}

bool IsDecimal(const std::string& text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
}

bool IsUpperHexByte(const std::string& text) {
  return text.size() == 2 && std::all_of(text.begin(), text.end(), [](unsigned char c) {
           return std::isdigit(c) != 0 || (c >= 'A' && c <= 'F');
         });
}

// Pieces of `text` between `separator`s.
std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> pieces(1);
  for (char c : text) {
    if (c == separator) {
      pieces.emplace_back();
    } else {
      pieces.back() += c;
    }
  }
  return pieces;
}

bool IsDottedAddress(const std::string& text) {
  const std::vector<std::string> parts = Split(text, '.');
  return parts.size() == 4 && std::all_of(parts.begin(), parts.end(), [](const std::string& part) {
           return IsDecimal(part) && part.size() <= 3 && std::stoi(part) <= 255;
         });
}

bool IsMac(const std::string& text, char separator) {
  const std::vector<std::string> parts = Split(text, separator);
  return parts.size() == 6 && std::all_of(parts.begin(), parts.end(), IsUpperHexByte);
}

// model@MA-C0-00-00-00-00[serial]##decimal##
bool IsLibraryGevDeviceID(const std::string& id, const std::string& model, const std::string& serial) {
  const std::string head = model + "@";
  if (id.rfind(head, 0) != 0 || id.size() < head.size() + 17) {
    return false;
  }
  const std::string tail = id.substr(head.size() + 17);
  const std::string serialPart = "[" + serial + "]##";
  if (!IsMac(id.substr(head.size(), 17), '-') || tail.rfind(serialPart, 0) != 0 ||
      tail.size() < serialPart.size() + 3 || tail.compare(tail.size() - 2, 2, "##") != 0) {
    return false;
  }
  return IsDecimal(tail.substr(serialPart.size(), tail.size() - serialPart.size() - 2));
}

class SimProducersTest : public ::testing::Test {
protected:
  CLibraryUnderTest m_library;
};

TEST_F(SimProducersTest, EveryFlavourListsItsDevicesWithItsType) {
  const std::pair<const char*, uint32_t> flavours[] = {{"TalvirSim.cti", 0},
                                                       {"TalvirSimGEVTL.cti", TLType::GEV},
                                                       {"U3VTLTAV.cti", TLType::U3V},
                                                       {"TalvirSimCL.cti", TLType::CL},
                                                       {"TalvirSimCXP.cti", TLType::CXP}};
  for (const auto& [file, tlType] : flavours) {
    m_library.CopyFromBin(file);
  }
  m_library.Load();
  m_library.Init();
  for (const auto& [file, tlType] : flavours) {
    const std::vector<CDeviceRow> rows = RowsAndGiveBack(m_library.Discovery(file));
    ASSERT_FALSE(rows.empty()) << file;
    std::set<std::string> serials;
    for (const CDeviceRow& row : rows) {
      EXPECT_EQ(row.tlType, tlType) << file;
      EXPECT_EQ(row.producer, file);
      EXPECT_FALSE(row.serial.empty()) << file;
      serials.insert(row.serial);
    }
    EXPECT_EQ(serials.size(), rows.size()) << file << ": serial numbers are unique";
  }
  // All at once: every flavour's devices, in the order the folder lists the files.
  size_t total = 0;
  for (const auto& [file, tlType] : flavours) {
    total += RowsAndGiveBack(m_library.Discovery(file)).size();
  }
  EXPECT_EQ(RowsAndGiveBack(m_library.Discovery(nullptr)).size(), total);
}

TEST_F(SimProducersTest, GigEDevicesCarryAddressesAndTheLibrarysDeviceID) {
  m_library.CopyFromBin("TalvirSimGEVTL.cti");
  m_library.Load();
  m_library.Init();
  std::list<ICameraInfo*> records = m_library.DiscoveryByTLType(TLType::GEV);
  ASSERT_FALSE(records.empty());
  for (ICameraInfo* record : records) {
    EXPECT_TRUE(IsLibraryGevDeviceID(record->GetDeviceID(), record->GetModel(), record->GetSerialNumber()))
        << record->GetDeviceID();
    for (uint32_t item : {1u, 3u, 4u, 6u, 7u}) {
      ASSERT_NE(record->GetCustomInfo(item), nullptr) << item;
      EXPECT_TRUE(IsDottedAddress(record->GetCustomInfo(item))) << record->GetCustomInfo(item);
    }
    ASSERT_NE(record->GetCustomInfo(2), nullptr);
    EXPECT_TRUE(IsMac(record->GetCustomInfo(2), ':')) << record->GetCustomInfo(2);
    ASSERT_NE(record->GetCustomInfo(5), nullptr);
    record->Destroy();
  }
}

TEST_F(SimProducersTest, AGigEDeviceWithoutItsRecordKeepsTheStandardFields) {
  m_library.CopyFromBin("TalvirSimGEVTL.cti");
  m_library.WriteFile("TalvirSimGEVTL.cti.json", R"({"interfaces": [{"devices": [
      {"id": "plain-gev", "model": "PlainModel", "serial": "PLAIN1", "faults": {"failDeviceRecord": true}}]}]})");
  m_library.Load();
  m_library.Init();
  std::list<ICameraInfo*> records = m_library.Discovery(nullptr);
  ASSERT_EQ(records.size(), 1u);
  EXPECT_STREQ(records.front()->GetDeviceID(), "plain-gev");
  EXPECT_STREQ(records.front()->GetSerialNumber(), "PLAIN1");
  for (uint32_t item = 1; item <= 7; ++item) {
    EXPECT_EQ(records.front()->GetCustomInfo(item), nullptr) << item;
  }
  records.front()->Destroy();
}

TEST_F(SimProducersTest, GEVTLInTheFileNameGetsTheGigEProducerClass) {
  m_library.CopyFromBin("TalvirSimGEVTL.cti", "OtherGEVTLProducer.cti");
  m_library.Load();
  m_library.Init();
  std::list<ICameraInfo*> records = m_library.Discovery(nullptr);
  ASSERT_FALSE(records.empty());
  EXPECT_NE(records.front()->GetCustomInfo(CustomInfo::GevIPAddress), nullptr);
  EXPECT_NE(std::string(records.front()->GetDeviceID()).find('@'), std::string::npos);
  for (ICameraInfo* record : records) {
    record->Destroy();
  }
}

TEST_F(SimProducersTest, Usb3VisionDevicesCarryTheirProducerTexts) {
  m_library.CopyFromBin("U3VTLTAV.cti");
  m_library.Load();
  m_library.Init();
  std::list<ICameraInfo*> records = m_library.Discovery(nullptr);
  ASSERT_FALSE(records.empty());
  for (ICameraInfo* record : records) {
    const std::string id = record->GetDeviceID();
    const size_t blank = id.find(' ');
    if (blank != std::string::npos) {
      ASSERT_NE(record->GetCustomInfo(CustomInfo::U3VDeviceIDTail), nullptr);
      EXPECT_EQ(record->GetCustomInfo(CustomInfo::U3VDeviceIDTail), id.substr(blank + 1));
    }
    EXPECT_NE(record->GetCustomInfo(CustomInfo::U3VInfo1100), nullptr);
    EXPECT_NE(record->GetCustomInfo(CustomInfo::U3VInfo1101), nullptr);
    EXPECT_NE(record->GetCustomInfo(CustomInfo::U3VInfo1102), nullptr);
    record->Destroy();
  }
}

TEST_F(SimProducersTest, CameraLinkGrabbersCarryOurProtocolDriver) {
  m_library.CopyFromBin("TalvirSimCL.cti");
  m_library.Load();
  m_library.Init();
  std::list<ICameraInfo*> records = m_library.Discovery(nullptr);
  ASSERT_FALSE(records.empty());
  for (ICameraInfo* record : records) {
    ASSERT_NE(record->GetCustomInfo(CustomInfo::CLProtocolDescriptor), nullptr);
    // The tests run from build/bin, which holds the driver folder once our driver is built: the folder beside the
    // library is named then, else the one in its parent folder.
    const std::string platformFolder = Testing::CLProtocolPlatformFolder();
    const std::string driver = Testing::ModuleFileName("TavCLProtocolGenCP");
    const bool driverBeside = std::filesystem::exists("./CLProtocol/" + platformFolder + "/" + driver);
    EXPECT_EQ(std::string(record->GetCustomInfo(CustomInfo::CLProtocolDescriptor)),
              m_library.Directory() + (driverBeside ? "./" : "../") + "CLProtocol/" + platformFolder + "#" + driver +
                  "#KORIX#GENCP02");
    ASSERT_NE(record->GetCustomInfo(CustomInfo::CLGrabberSerialPort), nullptr);
    EXPECT_EQ(std::string(record->GetCustomInfo(CustomInfo::CLGrabberSerialPort)).rfind("KORIX#CL_GRABBER#SERIAL", 0),
              0u);
    ASSERT_NE(record->GetCustomInfo(CustomInfo::CLInfo1201), nullptr);
    EXPECT_TRUE(IsDecimal(record->GetCustomInfo(CustomInfo::CLInfo1201)));
    record->Destroy();
  }
}

TEST_F(SimProducersTest, AMissingQueueFunctionFailsTheLoadButMissingInformationDoesNot) {
  m_library.CopyFromBin("TalvirSimNoQueue.cti");
  m_library.CopyFromBin("TalvirSimNoInfo.cti");
  m_library.Load();
  m_library.Init();
  EXPECT_TRUE(m_library.Discovery("TalvirSimNoQueue.cti").empty());
  EXPECT_FALSE(RowsAndGiveBack(m_library.Discovery("TalvirSimNoInfo.cti")).empty());
  for (const CDeviceRow& row : RowsAndGiveBack(m_library.Discovery(nullptr))) {
    EXPECT_EQ(row.producer, "TalvirSimNoInfo.cti");
  }
}

TEST_F(SimProducersTest, TheSameDeviceThroughTwoProducersIsListedTwice) {
  m_library.CopyFromBin("TalvirSim.cti", "A.cti");
  m_library.CopyFromBin("TalvirSim.cti", "B.cti");
  m_library.WriteConfig("A.cti;B.cti");
  m_library.Load();
  m_library.Init();
  const std::vector<CDeviceRow> rows = RowsAndGiveBack(m_library.Discovery(nullptr));
  ASSERT_EQ(rows.size() % 2, 0u);
  ASSERT_FALSE(rows.empty());
  const size_t half = rows.size() / 2;
  for (size_t index = 0; index < half; ++index) {
    EXPECT_EQ(rows[index].serial, rows[index + half].serial);
    EXPECT_EQ(rows[index].producer, "A.cti");
    EXPECT_EQ(rows[index + half].producer, "B.cti");
  }
}

TEST_F(SimProducersTest, MaskOf511SelectsEveryProducerAnd512None) {
  m_library.CopyFromBin("TalvirSim.cti");
  m_library.CopyFromBin("U3VTLTAV.cti");
  m_library.Load();
  m_library.Init();
  const size_t all = RowsAndGiveBack(m_library.Discovery(nullptr)).size();
  ASSERT_GT(all, 0u);
  // The default flavour reports a type outside the table: only the full mask selects it.
  EXPECT_EQ(RowsAndGiveBack(m_library.DiscoveryByTLType(511)).size(), all);
  EXPECT_TRUE(m_library.DiscoveryByTLType(512).empty());
  for (const CDeviceRow& row : RowsAndGiveBack(m_library.DiscoveryByTLType(TLType::U3V))) {
    EXPECT_EQ(row.producer, "U3VTLTAV.cti");
  }
}

TEST_F(SimProducersTest, AnInterfaceWithoutDevicesEmptiesItsProducer) {
  const std::string device = R"({"id": "only", "model": "M", "serial": "S1"})";
  m_library.CopyFromBin("TalvirSim.cti", "WithEmpty.cti");
  m_library.WriteFile("WithEmpty.cti.json",
                      R"({"interfaces": [{"devices": [)" + device + R"(]}, {"id": "second", "devices": []}]})");
  m_library.CopyFromBin("TalvirSim.cti", "Valid.cti");
  m_library.WriteFile("Valid.cti.json", R"({"interfaces": [{"devices": [)" + device + R"(]}]})");
  m_library.WriteConfig("WithEmpty.cti;Valid.cti");
  m_library.Load();
  m_library.Init();
  const std::vector<CDeviceRow> rows = RowsAndGiveBack(m_library.Discovery(nullptr));
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].producer, "Valid.cti");
  EXPECT_EQ(rows[0].serial, "S1");
}

TEST_F(SimProducersTest, AProducerThatFailsToInitialiseIsSkipped) {
  m_library.CopyFromBin("TalvirSim.cti", "Failing.cti");
  m_library.WriteFile("Failing.cti.json", R"({"failInitLib": true})");
  m_library.CopyFromBin("TalvirSimCXP.cti");
  m_library.Load();
  m_library.Init();
  for (const CDeviceRow& row : RowsAndGiveBack(m_library.Discovery(nullptr))) {
    EXPECT_EQ(row.producer, "TalvirSimCXP.cti");
  }
  EXPECT_TRUE(m_library.Discovery("Failing.cti").empty());
}

}  // namespace
}  // namespace TALVIR

namespace TALVIR {
namespace {

// The whole path an application takes: discovery, a camera by serial number, its features, images in every grab
// mode, and UnInit with the camera still alive.
TEST(SimProducersApplication, OpensConfiguresAndGrabsThroughTheExportedFunctions) {
  for (const char* producer : {"TalvirSim.cti", "TalvirSimGEVTL.cti", "U3VTLTAV.cti"}) {
    SCOPED_TRACE(producer);
    CLibraryUnderTest library;
    library.CopyFromBin(producer);
    library.Load();
    library.Init();
    std::string serial;
    for (ICameraInfo* record : library.DiscoveryByTLType(TLType::AllProducers)) {
      if (std::string(record->GetModel()) == "SimColor") {
        serial = record->GetSerialNumber();
      }
      record->Destroy();
    }
    ASSERT_FALSE(serial.empty());
    ICamera* camera = library.CreateCameraBySN(serial.c_str());
    ASSERT_NE(camera, nullptr);
    ASSERT_EQ(camera->Open(AccessMode::Control), Status::Ok);
    GenApi::INodeMap* features = camera->GetRemoteXml()->GetNodeMap();
    ASSERT_NE(features, nullptr);
    GenApi::CIntegerPtr width(features->GetNode("Width"));
    width->SetValue(320);
    GenApi::CEnumerationPtr format(features->GetNode("PixelFormat"));
    format->FromString("BayerRG8");
    for (uint32_t mode : {GrabMode::Direct, GrabMode::Newest, GrabMode::Fresh}) {
      ASSERT_EQ(camera->StartGrabbing(mode, 0), Status::Ok);
      IImage* image = nullptr;
      ASSERT_EQ(camera->GetImage(&image, 2000), Status::Ok);
      EXPECT_EQ(image->GetWidth(), 320u);
      EXPECT_NE(image->GetConvertedImage(), nullptr) << "BayerRG8 converts to BGR8 for display";
      image->Release();
      camera->StopGrabbing();
    }
    ASSERT_EQ(camera->StartGrabbing(GrabMode::Newest, 0), Status::Ok);
    // UnInit releases the camera while it grabs.
    library.UnInit();
  }
}

}  // namespace
}  // namespace TALVIR
