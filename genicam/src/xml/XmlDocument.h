#pragma once
// A read-only XML document: elements with their names, attributes, first text and line, in flat arrays filled by
// the platform's parser and walked through CXmlElement (XmlElement.h). Strings are offsets into the parser's own
// text when the parser keeps it (Linux), else into one copy the document holds.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/XmlParser.h"

namespace GenApi {
namespace Engine {

class CXmlElement;

constexpr uint32_t kNoXmlElement = UINT32_MAX;

// A string of the document: offset (its top bit set when it is in the document's own copy) and length.
struct CXmlString {
  uint32_t offset = 0;
  uint32_t length = 0;
};

struct CXmlAttributeRecord {
  CXmlString name;
  CXmlString value;
};

struct CXmlElementRecord {
  CXmlString name;
  CXmlString text;  // the first run of character data or CDATA directly inside, entities decoded, not trimmed
  uint32_t firstAttribute = 0;
  uint32_t attributeCount = 0;
  uint32_t firstChild = kNoXmlElement;
  uint32_t nextSibling = kNoXmlElement;
  uint32_t line = 0;  // 1-based line of the start tag
};

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

  // For CXmlElement.
  const CXmlElementRecord& Element(uint32_t index) const { return m_elements[index]; }
  const CXmlAttributeRecord& Attribute(uint32_t index) const { return m_attributes[index]; }
  std::string_view String(CXmlString text) const {
    if (text.length == 0) return std::string_view();
    const char* base = (text.offset & kOwnCopy) != 0 ? m_copy.data() : m_parserText;
    return std::string_view(base + (text.offset & ~kOwnCopy), text.length);
  }

private:
  class CBuilder;
  static constexpr uint32_t kOwnCopy = 0x80000000u;

  void Clear();
  // False when the text no longer fits the offsets.
  bool Store(std::string_view text, CXmlString& stored);

  std::vector<CXmlElementRecord> m_elements;
  std::vector<CXmlAttributeRecord> m_attributes;
  std::string m_copy;
  std::shared_ptr<const void> m_parserStorage;  // keeps m_parserText valid (see IXmlSink::KeepStorage)
  const char* m_parserText = nullptr;
  size_t m_parserSize = 0;
  uint32_t m_root = kNoXmlElement;
  GenICam::Platform::CXmlParseError m_error;
};

}  // namespace Engine
}  // namespace GenApi
