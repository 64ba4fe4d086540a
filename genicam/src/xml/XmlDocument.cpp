// The document and the sink that fills it from the platform's parser.
#include "xml/XmlDocument.h"

#include <algorithm>

#include "xml/XmlElement.h"

namespace GenApi {
namespace Engine {

// Links each new element to its parent's last child; the bottom entry of the stack stands for the document itself,
// whose children are the top-level elements.
class CXmlDocument::CBuilder final : public GenICam::Platform::IXmlSink {
public:
  explicit CBuilder(CXmlDocument& document) : m_document(document) { m_open.push_back({kNoXmlElement, kNoXmlElement}); }

  void KeepStorage(std::shared_ptr<const void> storage, const char* text, size_t size) override {
    m_document.m_parserStorage = std::move(storage);
    m_document.m_parserText = text;
    m_document.m_parserSize = size;
  }

  void StartElement(std::string_view name, uint32_t line) override {
    auto& elements = m_document.m_elements;
    if (m_tooLarge || elements.size() >= kNoXmlElement - 1) {
      m_tooLarge = true;
      return;
    }
    const auto index = static_cast<uint32_t>(elements.size());
    CXmlElementRecord record;
    m_tooLarge = !m_document.Store(name, record.name);
    record.firstAttribute = static_cast<uint32_t>(m_document.m_attributes.size());
    record.line = line;
    elements.push_back(record);
    COpen& parent = m_open.back();
    if (parent.lastChild != kNoXmlElement) {
      elements[parent.lastChild].nextSibling = index;
    } else if (parent.element != kNoXmlElement) {
      elements[parent.element].firstChild = index;
    } else if (m_document.m_root == kNoXmlElement) {
      m_document.m_root = index;
    }
    parent.lastChild = index;
    m_open.push_back({index, kNoXmlElement});
  }

  void Attribute(std::string_view name, std::string_view value) override {
    const uint32_t element = m_open.back().element;
    if (element == kNoXmlElement || m_tooLarge) return;
    CXmlAttributeRecord attribute;
    m_tooLarge = !m_document.Store(name, attribute.name) || !m_document.Store(value, attribute.value);
    m_document.m_attributes.push_back(attribute);
    ++m_document.m_elements[element].attributeCount;
  }

  void Text(std::string_view text) override {
    COpen& open = m_open.back();
    if (open.element == kNoXmlElement || open.hasText || m_tooLarge) return;
    open.hasText = true;
    m_tooLarge = !m_document.Store(text, m_document.m_elements[open.element].text);
  }

  void EndElement() override {
    if (m_open.size() > 1) m_open.pop_back();
  }

  bool TooLarge() const { return m_tooLarge; }

private:
  struct COpen {
    uint32_t element;
    uint32_t lastChild;
    bool hasText = false;
  };

  CXmlDocument& m_document;
  std::vector<COpen> m_open;
  bool m_tooLarge = false;
};

bool CXmlDocument::Load(const char* data, size_t size) {
  Clear();
  // The densest sample descriptions have one element per 35 bytes and one attribute per 150 (pages reserved but not
  // written cost nothing).
  m_elements.reserve(size / 32 + 16);
  m_attributes.reserve(size / 128 + 16);
  CBuilder builder(*this);
  if (data == nullptr) size = 0;
  const char* text = data != nullptr ? data : "";
  bool parsed = GenICam::Platform::ParseXml(text, size, builder, m_error);
  if (parsed && builder.TooLarge()) {
    m_error = {0, 0, "document too large"};
    parsed = false;
  }
  if (parsed && m_root == kNoXmlElement) {
    m_error = {1, 1, "no document element"};
    parsed = false;
  }
  if (!parsed) {
    const GenICam::Platform::CXmlParseError error = m_error;
    Clear();
    m_error = error;
  }
  return parsed;
}

void CXmlDocument::Clear() {
  m_elements.clear();
  m_attributes.clear();
  m_copy.clear();
  m_parserStorage.reset();
  m_parserText = nullptr;
  m_parserSize = 0;
  m_root = kNoXmlElement;
  m_error = GenICam::Platform::CXmlParseError();
}

bool CXmlDocument::Store(std::string_view text, CXmlString& stored) {
  stored = CXmlString();
  if (text.empty()) return true;
  if (text.size() >= kOwnCopy) return false;
  stored.length = static_cast<uint32_t>(text.size());
  // Inside the parser's kept text: its offset there (the text is shorter than 2 GiB, see IXmlSink::KeepStorage).
  if (m_parserText != nullptr && text.data() >= m_parserText && text.size() <= m_parserSize &&
      static_cast<size_t>(text.data() - m_parserText) <= m_parserSize - text.size()) {
    stored.offset = static_cast<uint32_t>(text.data() - m_parserText);
    return true;
  }
  if (m_copy.size() + text.size() >= kOwnCopy) return false;
  stored.offset = kOwnCopy | static_cast<uint32_t>(m_copy.size());
  m_copy.append(text.data(), text.size());
  return true;
}

}  // namespace Engine
}  // namespace GenApi
