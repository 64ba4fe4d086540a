#pragma once
// One element of a parsed XML document (CXmlDocument): a small handle, cheap to copy, valid while its document
// lives. A default-constructed element is null: it converts to false and answers empty names, texts and children.
#include <cstdint>
#include <string_view>

#include "xml/XmlDocument.h"

namespace GenApi {
namespace Engine {

class CXmlElement {
public:
  CXmlElement() = default;
  CXmlElement(const CXmlDocument* document, uint32_t index) : m_document(document), m_index(index) {}

  explicit operator bool() const { return m_document != nullptr; }
  bool operator==(const CXmlElement& other) const {
    return m_document == other.m_document && (m_document == nullptr || m_index == other.m_index);
  }
  bool operator!=(const CXmlElement& other) const { return !(*this == other); }

  std::string_view Name() const { return m_document ? m_document->String(Record().name) : std::string_view(); }
  std::string_view Text() const { return m_document ? m_document->String(Record().text) : std::string_view(); }
  uint32_t Line() const { return m_document ? Record().line : 0; }

  // True when the attribute is present (its value may be empty).
  bool FindAttribute(std::string_view name, std::string_view& value) const {
    if (m_document == nullptr) return false;
    const CXmlElementRecord& record = Record();
    for (uint32_t i = 0; i < record.attributeCount; ++i) {
      const CXmlAttributeRecord& attribute = m_document->Attribute(record.firstAttribute + i);
      if (m_document->String(attribute.name) == name) {
        value = m_document->String(attribute.value);
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
  uint32_t AttributeCount() const { return m_document ? Record().attributeCount : 0; }
  // Name and value of the i-th attribute in document order (i < AttributeCount()).
  std::string_view AttributeName(uint32_t i) const {
    return m_document->String(m_document->Attribute(Record().firstAttribute + i).name);
  }
  std::string_view AttributeValue(uint32_t i) const {
    return m_document->String(m_document->Attribute(Record().firstAttribute + i).value);
  }

  CXmlElement FirstChild() const { return m_document ? At(Record().firstChild) : CXmlElement(); }
  CXmlElement NextSibling() const { return m_document ? At(Record().nextSibling) : CXmlElement(); }
  // The first child, or the next sibling, with this name.
  CXmlElement Child(std::string_view name) const {
    CXmlElement child = FirstChild();
    while (child && child.Name() != name) child = child.NextSibling();
    return child;
  }
  CXmlElement NextSibling(std::string_view name) const {
    CXmlElement sibling = NextSibling();
    while (sibling && sibling.Name() != name) sibling = sibling.NextSibling();
    return sibling;
  }

private:
  const CXmlElementRecord& Record() const { return m_document->Element(m_index); }
  CXmlElement At(uint32_t index) const {
    return index == kNoXmlElement ? CXmlElement() : CXmlElement(m_document, index);
  }

  const CXmlDocument* m_document = nullptr;
  uint32_t m_index = 0;
};

inline CXmlElement CXmlDocument::Root() const {
  return m_root == kNoXmlElement ? CXmlElement() : CXmlElement(this, m_root);
}

}  // namespace Engine
}  // namespace GenApi
