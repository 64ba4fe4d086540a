// Zipped descriptions: STORE and DEFLATE archives from memory and from files, and corrupt archives.
#include <gtest/gtest.h>

#include <zlib.h>

#include <cstdio>
#include <fstream>

#include "MemoryPort.h"

using namespace EngineTest;

namespace {

void Put16(std::string& out, uint32_t value) {
  out.push_back(static_cast<char>(value & 0xFF));
  out.push_back(static_cast<char>((value >> 8) & 0xFF));
}
void Put32(std::string& out, uint32_t value) {
  Put16(out, value & 0xFFFF);
  Put16(out, value >> 16);
}

// A one-file archive; method 0 stores, method 8 deflates. With a data descriptor (as streaming writers make it), the
// local header carries no sizes and the central directory is the only reliable source.
std::string MakeZip(const std::string& content, int method, const std::string& name = "camera.xml",
                    bool dataDescriptor = false) {
  std::string data = content;
  if (method == 8) {
    z_stream stream{};
    deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY);
    std::string out(deflateBound(&stream, static_cast<uLong>(content.size())) + 16, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data()));
    stream.avail_in = static_cast<uInt>(content.size());
    stream.next_out = reinterpret_cast<Bytef*>(&out[0]);
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    data = out;
  }
  const uint32_t crc = static_cast<uint32_t>(
      crc32(0, reinterpret_cast<const Bytef*>(content.data()), static_cast<uInt>(content.size())));
  const uint32_t flags = dataDescriptor ? 8 : 0;
  std::string zip;
  Put32(zip, 0x04034b50);
  Put16(zip, 20);
  Put16(zip, flags);
  Put16(zip, static_cast<uint32_t>(method));
  Put16(zip, 0);
  Put16(zip, 0);
  Put32(zip, dataDescriptor ? 0 : crc);
  Put32(zip, dataDescriptor ? 0 : static_cast<uint32_t>(data.size()));
  Put32(zip, dataDescriptor ? 0 : static_cast<uint32_t>(content.size()));
  Put16(zip, static_cast<uint32_t>(name.size()));
  Put16(zip, 0);
  zip += name;
  zip += data;
  if (dataDescriptor) {
    Put32(zip, 0x08074b50);
    Put32(zip, crc);
    Put32(zip, static_cast<uint32_t>(data.size()));
    Put32(zip, static_cast<uint32_t>(content.size()));
  }
  const uint32_t centralOffset = static_cast<uint32_t>(zip.size());
  Put32(zip, 0x02014b50);
  Put16(zip, 20);
  Put16(zip, 20);
  Put16(zip, flags);
  Put16(zip, static_cast<uint32_t>(method));
  Put16(zip, 0);
  Put16(zip, 0);
  Put32(zip, crc);
  Put32(zip, static_cast<uint32_t>(data.size()));
  Put32(zip, static_cast<uint32_t>(content.size()));
  Put16(zip, static_cast<uint32_t>(name.size()));
  Put16(zip, 0);
  Put16(zip, 0);
  Put16(zip, 0);
  Put16(zip, 0);
  Put32(zip, 0);
  Put32(zip, 0);
  zip += name;
  const uint32_t centralSize = static_cast<uint32_t>(zip.size()) - centralOffset;
  Put32(zip, 0x06054b50);
  Put16(zip, 0);
  Put16(zip, 0);
  Put16(zip, 1);
  Put16(zip, 1);
  Put32(zip, centralSize);
  Put32(zip, centralOffset);
  Put16(zip, 0);
  return zip;
}

const std::string kXml = Describe("<Integer Name='Zipped'><Value>42</Value></Integer>");

TEST(Zip, StoredAndDeflatedArchivesLoadFromMemory) {
  for (int method : {0, 8}) {
    SCOPED_TRACE(method);
    const std::string zip = MakeZip(kXml, method);
    GenApi::CNodeMapRef map;
    map._LoadXMLFromZIPData(zip.data(), zip.size());
    EXPECT_EQ(GenApi::CIntegerPtr(map._GetNode("Zipped"))->GetValue(), 42);
  }
}

TEST(Zip, ArchivesWithDataDescriptorsLoad) {
  const std::string zip = MakeZip(kXml, 8, "camera.xml", true);
  GenApi::CNodeMapRef map;
  map._LoadXMLFromZIPData(zip.data(), zip.size());
  EXPECT_EQ(GenApi::CIntegerPtr(map._GetNode("Zipped"))->GetValue(), 42);
}

TEST(Zip, FactoryRecognisesZipDataByItself) {
  const std::string zip = MakeZip(kXml, 8);
  GenApi::CNodeMapFactory factory(GenApi::ContentType_Auto, zip.data(), zip.size());
  GenApi::CNodeMapRef map(factory.CreateNodeMap("Cam"), "Cam");
  EXPECT_NE(map._GetNode("Zipped"), nullptr);
  EXPECT_EQ(std::string(map._Ptr->GetDeviceName()), "Cam");
}

TEST(Zip, ArchiveFileOnDisk) {
  const std::string path = ::testing::TempDir() + "/genicam_zip_test.zip";
  {
    std::ofstream file(path, std::ios::binary);
    const std::string zip = MakeZip(kXml, 8);
    file.write(zip.data(), static_cast<std::streamsize>(zip.size()));
  }
  GenApi::CNodeMapRef map;
  map._LoadXMLFromZIPFile(path.c_str());
  EXPECT_NE(map._GetNode("Zipped"), nullptr);
  std::remove(path.c_str());
}

TEST(Zip, CorruptArchivesRaiseGenICamExceptions) {
  const std::string good = MakeZip(kXml, 8);
  std::string badCrc = good;
  badCrc[14] = static_cast<char>(badCrc[14] ^ 0x55);   // local header CRC
  badCrc[good.find("PK\x01\x02", 0, 4) + 16] ^= 0x55;  // central directory CRC
  std::string badData = good;
  badData[30 + 10 + 5] = static_cast<char>(badData[30 + 10 + 5] ^ 0xFF);
  const std::string cases[] = {
      std::string(),        std::string("PK\x03\x04garbage", 11), good.substr(0, good.size() / 2), badCrc, badData,
      std::string(200, 'x')};
  for (const std::string& zip : cases) {
    GenApi::CNodeMapRef map;
    EXPECT_THROW(map._LoadXMLFromZIPData(zip.data(), zip.size()), GenICam::GenericException);
  }
}

TEST(Zip, ArchiveWithoutADescriptionInside) {
  const std::string zip = MakeZip("not xml at all", 0);
  GenApi::CNodeMapRef map;
  EXPECT_THROW(map._LoadXMLFromZIPData(zip.data(), zip.size()), GenICam::GenericException);
}

}  // namespace
