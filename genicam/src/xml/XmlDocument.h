#pragma once
// A read-only XML document: elements with their names, attributes, first text and line, in flat arrays filled by
// the platform's parser. Walking it touches only these arrays (see CXmlElement).
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/XmlParser.h"
#include "xml/XmlElement.h"

namespace GenApi {
namespace Engine {

class CXmlDocument {
public:
  CXmlDocument() = default;
  CXmlDocument(const CXmlDocument&) = delete;
  CXmlDocument& operator=(const CXmlDocument&) = delete;

  // Parses the text (UTF-8 or UTF-16 with byte-order mark). False on malformed text: Error() says where and why,
  // and the document is left empty.
  bool Load(const char* data, size_t size);
  const GenICam::Platform::CXmlParseError& Error() const { return m_error; }

  // The first top-level element; null before a successful Load.
  CXmlElement Root() const;
  size_t ElementCount() const { return m_elements.size(); }
  size_t AttributeCount() const { return m_attributes.size(); }

private:
  class CBuilder;

  void Clear();
  std::string_view Store(std::string_view text);

  std::vector<CXmlElementRecord> m_elements;
  std::vector<CXmlAttributeRecord> m_attributes;
  std::vector<std::unique_ptr<char[]>> m_blocks;
  char* m_free = nullptr;
  size_t m_left = 0;
  size_t m_blockSize = 0;
  uint32_t m_root = kNoXmlElement;
  GenICam::Platform::CXmlParseError m_error;
};

}  // namespace Engine
}  // namespace GenApi
