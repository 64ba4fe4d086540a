#include "camera/CtiPort.h"

#include "gentl/Cti.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace TALVIR {
namespace {

// Source position recorded in the port's exceptions.
constexpr const char* kSourceName = "CtiPort";
constexpr unsigned kReadFailureLine = 51;
constexpr unsigned kWriteFailureLine = 67;

// Descriptions are a few hundred kilobytes at most; a larger length in a URL is a corrupt URL, not a request to
// allocate that much.
constexpr uint64_t kMaxDescriptionSize = 256ull * 1024 * 1024;

enum class EAccess { Read, Write };

// The address is reported cut to 32 bits.
[[noreturn]] void ThrowAccessFailure(EAccess access, int64_t address) {
  const auto address32 = static_cast<unsigned>(static_cast<uint64_t>(address) & 0xFFFFFFFFu);
  char text[255];
  if (access == EAccess::Read) {
    std::snprintf(text, sizeof text, "Read address %#x failure", address32);
    throw GenICam::GenericException(text, kSourceName, kReadFailureLine);
  }
  std::snprintf(text, sizeof text, "Write address %#x failure", address32);
  throw GenICam::GenericException(text, kSourceName, kWriteFailureLine);
}

std::string UpperCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

uint64_t HexNumber(const std::string& text) { return std::strtoull(text.c_str(), nullptr, 16); }

// Zero bytes, control characters and anything beyond ASCII that a module leaves after the XML text.
bool IsTrailingJunk(unsigned char c) { return c < 10 || c > 126; }

}  // namespace

CCtiPort::CCtiPort(CCti* producer, void* handle) : m_pCti(producer), m_hPort(handle) {}

CCtiPort::~CCtiPort() = default;

void CCtiPort::Read(void* buffer, int64_t address, int64_t length) {
  if (m_pCti == nullptr || m_hPort == nullptr) {
    return;
  }
  size_t size = static_cast<size_t>(length);
  const auto& readPort = m_pCti->Api().GCReadPort;
  if (readPort == nullptr ||
      readPort(m_hPort, static_cast<uint64_t>(address), buffer, &size) != GenTL::GC_ERR_SUCCESS) {
    ThrowAccessFailure(EAccess::Read, address);
  }
  // A producer that reads fewer bytes than asked leaves the rest of the buffer as it was: a failed read, not a
  // value made of whatever the buffer held.
  if (size < static_cast<size_t>(length)) {
    ThrowAccessFailure(EAccess::Read, address);
  }
}

void CCtiPort::Write(const void* buffer, int64_t address, int64_t length) {
  if (m_pCti == nullptr || m_hPort == nullptr) {
    return;
  }
  size_t size = static_cast<size_t>(length);
  const auto& writePort = m_pCti->Api().GCWritePort;
  if (writePort == nullptr ||
      writePort(m_hPort, static_cast<uint64_t>(address), buffer, &size) != GenTL::GC_ERR_SUCCESS) {
    ThrowAccessFailure(EAccess::Write, address);
  }
}

std::string CCtiPort::GetXmlFileName() {
  LoadOnce();
  return m_fileName;
}

std::string CCtiPort::GetXmlFileExtension() {
  LoadOnce();
  return m_fileExtension;
}

std::string CCtiPort::GetXmlData() {
  LoadOnce();
  return m_xmlData;
}

GenApi::INodeMap* CCtiPort::GetNodeMap() {
  LoadOnce();
  return m_xmlData.empty() ? nullptr : static_cast<GenApi::INodeMap*>(m_nodeMap);
}

void CCtiPort::LoadOnce() {
  std::lock_guard<std::mutex> lock(m_loadMutex);
  if (m_xmlLoaded) {
    return;
  }
  // Marked before the attempt: a description that cannot be loaded is not asked for again.
  m_xmlLoaded = true;
  try {
    LoadDescription();
  } catch (...) {
    // A module without a usable description simply has no node map.
  }
}

void CCtiPort::LoadDescription() {
  if (m_pCti == nullptr || m_hPort == nullptr) {
    return;
  }
  const CGenTLFunctionTable& api = m_pCti->Api();
  if (api.GCGetPortURL == nullptr || api.GCReadPort == nullptr) {
    return;
  }
  size_t urlSize = 0;
  if (api.GCGetPortURL(m_hPort, nullptr, &urlSize) != GenTL::GC_ERR_SUCCESS) {
    return;
  }
  std::string url(urlSize, '\0');
  if (api.GCGetPortURL(m_hPort, url.data(), &urlSize) != GenTL::GC_ERR_SUCCESS) {
    return;
  }
  url.resize(std::min(url.find('\0'), url.size()));

  // Only descriptions stored in the module itself: "local:name.ext;address;length" with the scheme in any case.
  if (UpperCase(url.substr(0, 5)) != "LOCAL") {
    return;
  }
  const size_t nameEnd = url.find(';', 6);
  if (nameEnd == std::string::npos) {
    return;
  }
  const size_t addressEnd = url.find(';', nameEnd + 1);
  if (addressEnd == std::string::npos) {
    return;
  }
  const std::string fileName = url.substr(6, nameEnd - 6);
  std::string stem;
  std::string extension;
  const size_t dot = fileName.rfind('.');
  if (dot != std::string::npos) {
    stem = fileName.substr(0, dot);
    extension = UpperCase(fileName.substr(dot + 1));
  }
  // Parsing stops at the first character that is not a hexadecimal digit, so "?SchemaVersion=..." is ignored.
  const uint64_t address = HexNumber(url.substr(nameEnd + 1, addressEnd - nameEnd - 1));
  const uint64_t length = HexNumber(url.substr(addressEnd + 1));
  if (length > kMaxDescriptionSize) {
    return;
  }

  std::vector<char> data(static_cast<size_t>(length) + 1, '\0');
  size_t readSize = static_cast<size_t>(length);
  if (api.GCReadPort(m_hPort, address, data.data(), &readSize) != GenTL::GC_ERR_SUCCESS) {
    return;
  }
  readSize = std::min(readSize, static_cast<size_t>(length));
  data.resize(readSize);

  if (extension == "ZIP") {
    GenApi::CNodeMapFactory factory(GenApi::ContentType_ZippedXml, data.data(), data.size());
    m_nodeMap._Attach(factory.CreateNodeMap("Device"));
  } else {
    size_t textEnd = data.size();
    while (textEnd > 0 && IsTrailingJunk(static_cast<unsigned char>(data[textEnd - 1]))) {
      --textEnd;
    }
    m_nodeMap._LoadXMLFromString(GenICam::gcstring(std::string(data.data(), textEnd)));
  }
  m_fileName = stem;
  m_fileExtension = extension;
  m_xmlData.assign(data.data(), data.size());

  // Every port node of the description is served by this module.
  GenApi::NodeList_t nodes;
  m_nodeMap._GetNodes(nodes);
  for (GenApi::INode* node : nodes) {
    if (node != nullptr && node->GetPrincipalInterfaceType() == GenApi::intfIPort) {
      m_nodeMap._Connect(this, node->GetName());
    }
  }
}

std::unique_ptr<IGenTLModule> MakeCtiPort(CCti& producer, void* handle) {
  return std::make_unique<CCtiPort>(&producer, handle);
}

}  // namespace TALVIR
