#pragma once
// One element of a parsed XML document (CXmlDocument): a small handle, cheap to copy, valid while its document
// lives. A default-constructed element is null: it converts to false and answers empty names, texts and children.
#include <cstdint>
#include <string_view>

namespace GenApi {
namespace Engine {

// The document's storage: flat arrays, the strings pointing into blocks the document owns.
struct CXmlAttributeRecord {
  std::string_view name;
  std::string_view value;
};

constexpr uint32_t kNoXmlElement = UINT32_MAX;

struct CXmlElementRecord {
  std::string_view name;
  std::string_view text;  // the first run of character data or CDATA directly inside, entities decoded, not trimmed
  uint32_t firstAttribute = 0;
  uint32_t attributeCount = 0;
  uint32_t firstChild = kNoXmlElement;
  uint32_t nextSibling = kNoXmlElement;
  uint32_t line = 0;  // 1-based line of the start tag
};

class CXmlElement {
public:
  CXmlElement() = default;
  CXmlElement(const CXmlElementRecord* elements, const CXmlAttributeRecord* attributes, uint32_t index)
      : m_elements(elements), m_attributes(attributes), m_index(index) {}

  explicit operator bool() const { return m_elements != nullptr; }
  bool operator==(const CXmlElement& other) const {
    return m_elements == other.m_elements && (m_elements == nullptr || m_index == other.m_index);
  }
  bool operator!=(const CXmlElement& other) const { return !(*this == other); }

  std::string_view Name() const { return m_elements ? Record().name : std::string_view(); }
  std::string_view Text() const { return m_elements ? Record().text : std::string_view(); }
  uint32_t Line() const { return m_elements ? Record().line : 0; }

  // True when the attribute is present (its value may be empty).
  bool FindAttribute(std::string_view name, std::string_view& value) const {
    if (m_elements == nullptr) return false;
    const CXmlElementRecord& record = Record();
    for (uint32_t i = 0; i < record.attributeCount; ++i) {
      const CXmlAttributeRecord& attribute = m_attributes[record.firstAttribute + i];
      if (attribute.name == name) {
        value = attribute.value;
        return true;
      }
    }
    return false;
  }
  bool HasAttribute(std::string_view name) const {
    std::string_view value;
    return FindAttribute(name, value);
  }
  // The attribute's value; empty when absent.
  std::string_view Attribute(std::string_view name) const {
    std::string_view value;
    FindAttribute(name, value);
    return value;
  }
  uint32_t AttributeCount() const { return m_elements ? Record().attributeCount : 0; }
  const CXmlAttributeRecord& AttributeAt(uint32_t i) const { return m_attributes[Record().firstAttribute + i]; }

  CXmlElement FirstChild() const { return m_elements ? At(Record().firstChild) : CXmlElement(); }
  CXmlElement NextSibling() const { return m_elements ? At(Record().nextSibling) : CXmlElement(); }
  // The first child, or the next sibling, with this name.
  CXmlElement Child(std::string_view name) const {
    CXmlElement child = FirstChild();
    while (child && child.Record().name != name) child = child.NextSibling();
    return child;
  }
  CXmlElement NextSibling(std::string_view name) const {
    CXmlElement sibling = NextSibling();
    while (sibling && sibling.Record().name != name) sibling = sibling.NextSibling();
    return sibling;
  }

private:
  const CXmlElementRecord& Record() const { return m_elements[m_index]; }
  CXmlElement At(uint32_t index) const {
    return index == kNoXmlElement ? CXmlElement() : CXmlElement(m_elements, m_attributes, index);
  }

  const CXmlElementRecord* m_elements = nullptr;
  const CXmlAttributeRecord* m_attributes = nullptr;
  uint32_t m_index = 0;
};

}  // namespace Engine
}  // namespace GenApi
