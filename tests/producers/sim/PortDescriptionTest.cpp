// Description files behind the ports: downloads (plain and zipped) and the structure of every description, read
// with an independent ZIP and XML reader.
#include "PortAccess.h"
#include "SimModule.h"

#include <gtest/gtest.h>
#include <minizip/unzip.h>
#include <pugixml.hpp>

#include <cctype>
#include <fstream>
#include <functional>
#include <set>
#include <vector>

using namespace TalvirSimTest;

namespace {

std::string Unzip(const std::string& zipBytes, const std::filesystem::path& scratch) {
  { std::ofstream(scratch, std::ios::binary) << zipBytes; }
  unzFile zip = unzOpen64(scratch.string().c_str());
  if (zip == nullptr || unzGoToFirstFile(zip) != UNZ_OK || unzOpenCurrentFile(zip) != UNZ_OK) {
    return {};
  }
  std::string text;
  char chunk[4096];
  int got = 0;
  while ((got = unzReadCurrentFile(zip, chunk, sizeof chunk)) > 0) {
    text.append(chunk, static_cast<size_t>(got));
  }
  unzCloseCurrentFile(zip);
  unzClose(zip);
  return text;
}

// The description behind a port, unzipped when it is a ZIP archive.
std::string Download(const SGenTL& fn, PORT_HANDLE port, const std::filesystem::path& scratch) {
  const SUrl url = ParseUrl(PortUrl(fn, port));
  std::string data(url.length, '\0');
  size_t size = data.size();
  if (fn.GCReadPort(port, url.address, data.data(), &size) != GC_ERR_SUCCESS) {
    return {};
  }
  if (url.fileName.size() > 4 && url.fileName.substr(url.fileName.size() - 4) == ".zip") {
    return Unzip(data, scratch);
  }
  return data;
}

// Every node that another node points at (pFeature, pValue, pIndex, ...) exists, names are unique, and the root
// category is there.
void ExpectWellFormedDescription(const std::string& xml, const std::string& what) {
  pugi::xml_document document;
  const pugi::xml_parse_result parsed = document.load_string(xml.c_str());
  ASSERT_TRUE(parsed) << what << ": " << parsed.description();
  const pugi::xml_node root = document.child("RegisterDescription");
  ASSERT_TRUE(root) << what;
  std::set<std::string> names;
  std::vector<std::pair<std::string, std::string>> references;
  std::function<void(pugi::xml_node)> walk = [&](pugi::xml_node node) {
    for (pugi::xml_node child : node.children()) {
      if (child.type() != pugi::node_element) {
        continue;
      }
      const std::string element = child.name();
      // Entry and formula-variable names are local to their node; every other name is a node of the map.
      if (child.attribute("Name") && element != "EnumEntry" && element != "pVariable" && element != "Constant" &&
          element != "Expression") {
        EXPECT_TRUE(names.insert(child.attribute("Name").value()).second)
            << what << ": duplicate node " << child.attribute("Name").value();
      }
      if (element.size() > 1 && element[0] == 'p' && std::isupper(static_cast<unsigned char>(element[1]))) {
        references.emplace_back(element, child.text().get());
      }
      walk(child);
    }
  };
  walk(root);
  EXPECT_EQ(names.count("Root"), 1u) << what;
  for (const auto& reference : references) {
    EXPECT_EQ(names.count(reference.second), 1u)
        << what << ": " << reference.first << " names missing node '" << reference.second << "'";
  }
}

}  // namespace

TEST(SimPorts, EveryModuleOfEveryFlavourServesAWellFormedDescription) {
  for (const char* name :
       {"TalvirSim.cti", "TalvirSimGEVTL.cti", "U3VTLTAV.cti", "TalvirSimCL.cti", "TalvirSimCXP.cti"}) {
    SOpened o(name);
    ASSERT_TRUE(o.Ok()) << name;
    const auto& fn = o.module.fn;
    const PORT_HANDLE ports[] = {o.device->system, o.device->iface, o.device->device, o.device->stream, o.device->port};
    const char* modules[] = {"TLSystem", "TLInterface", "TLDevice", "TLDataStream", "Device"};
    for (int i = 0; i < 5; ++i) {
      const std::string what = std::string(name) + " " + modules[i];
      const std::string url = PortUrl(fn, ports[i]);
      EXPECT_EQ(url.rfind("local:", 0), 0u) << what << ": " << url;
      EXPECT_NE(url.find("?SchemaVersion=1.1.0"), std::string::npos) << what;
      const std::string xml = Download(fn, ports[i], o.module.Path().string() + ".zip");
      ExpectWellFormedDescription(xml, what);
      EXPECT_EQ(InfoString([&](INFO_DATATYPE* t, void* b, size_t* s) {
                  return fn.GCGetPortInfo(ports[i], PORT_INFO_MODULE, t, b, s);
                }),
                modules[i]);
    }
  }
}

TEST(SimPorts, FlavourFeaturesAppearOnlyInTheirFlavour) {
  auto deviceXml = [](const char* name) {
    SOpened o(name);
    return o.Ok() ? Download(o.module.fn, o.device->device, o.module.Path().string() + ".zip") : std::string();
  };
  auto streamXml = [](const char* name) {
    SOpened o(name);
    return o.Ok() ? Download(o.module.fn, o.device->stream, o.module.Path().string() + ".zip") : std::string();
  };
  EXPECT_NE(deviceXml("TalvirSimGEVTL.cti").find("\"EnablePacketResend\""), std::string::npos);
  EXPECT_EQ(deviceXml("TalvirSim.cti").find("\"EnablePacketResend\""), std::string::npos);
  EXPECT_NE(deviceXml("TalvirSimCL.cti").find("<Enumeration Name=\"PixelFormat\""), std::string::npos);
  EXPECT_EQ(deviceXml("TalvirSimCXP.cti").find("<Enumeration Name=\"PixelFormat\""), std::string::npos);
  EXPECT_NE(streamXml("TalvirSimCXP.cti").find("\"BufferHeight\""), std::string::npos);
  EXPECT_EQ(streamXml("TalvirSimCL.cti").find("\"BufferHeight\""), std::string::npos);
}

TEST(SimPorts, TheCameraDescriptionCanBeServedZippedUnderAnyUrlCase) {
  SOpened o("TalvirSim.cti", R"({"interfaces":[{"devices":[{"xmlZipped":true,"urlScheme":"Local:"}]}]})");
  ASSERT_TRUE(o.Ok());
  const std::string url = PortUrl(o.module.fn, o.device->port);
  EXPECT_EQ(url.rfind("Local:TalvirSimSimMono.zip;100000;", 0), 0u) << url;
  const std::string xml = Download(o.module.fn, o.device->port, o.module.Path().string() + ".zip");
  ExpectWellFormedDescription(xml, "zipped camera description");
  EXPECT_NE(xml.find("<Enumeration Name=\"PixelFormat\""), std::string::npos);
}
