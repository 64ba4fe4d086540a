// The document and the sink that fills it from the platform's parser.
#include "xml/XmlDocument.h"

#include <algorithm>
#include <cstring>

namespace GenApi {
namespace Engine {

// Links each new element to its parent's last child; the bottom entry of the stack stands for the document itself,
// whose children are the top-level elements.
class CXmlDocument::CBuilder final : public GenICam::Platform::IXmlSink {
public:
  explicit CBuilder(CXmlDocument& document) : m_document(document) { m_open.push_back({kNoXmlElement, kNoXmlElement}); }

  void StartElement(std::string_view name, uint32_t line) override {
    auto& elements = m_document.m_elements;
    if (elements.size() >= kNoXmlElement - 1) {
      m_tooLarge = true;
      return;
    }
    const auto index = static_cast<uint32_t>(elements.size());
    CXmlElementRecord record;
    record.name = m_document.Store(name);
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
    m_document.m_attributes.push_back({m_document.Store(name), m_document.Store(value)});
    ++m_document.m_elements[element].attributeCount;
  }

  void Text(std::string_view text) override {
    COpen& open = m_open.back();
    if (open.element == kNoXmlElement || open.hasText || m_tooLarge) return;
    open.hasText = true;
    m_document.m_elements[open.element].text = m_document.Store(text);
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
  // Decoded UTF-8 text is never longer than the UTF-8 input, so one block usually holds every string.
  m_blockSize = std::max<size_t>(size + 64, 4096);
  m_elements.reserve(size / 96 + 16);
  m_attributes.reserve(size / 96 + 16);
  CBuilder builder(*this);
  if (data == nullptr) size = 0;
  const char* text = data != nullptr ? data : "";
  bool parsed = GenICam::Platform::ParseXml(text, size, builder, m_error);
  if (parsed && builder.TooLarge()) {
    m_error = {0, 0, "too many elements"};
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

CXmlElement CXmlDocument::Root() const {
  if (m_root == kNoXmlElement) return CXmlElement();
  return CXmlElement(m_elements.data(), m_attributes.data(), m_root);
}

void CXmlDocument::Clear() {
  m_elements.clear();
  m_attributes.clear();
  m_blocks.clear();
  m_free = nullptr;
  m_left = 0;
  m_root = kNoXmlElement;
  m_error = GenICam::Platform::CXmlParseError();
}

std::string_view CXmlDocument::Store(std::string_view text) {
  if (text.empty()) return std::string_view();
  if (text.size() > m_left) {
    const size_t size = std::max(text.size(), m_blockSize);
    m_blocks.push_back(std::unique_ptr<char[]>(new char[size]));
    m_free = m_blocks.back().get();
    m_left = size;
    m_blockSize = std::max<size_t>(m_blockSize / 4, 65536);
  }
  std::memcpy(m_free, text.data(), text.size());
  const std::string_view stored(m_free, text.size());
  m_free += text.size();
  m_left -= text.size();
  return stored;
}

}  // namespace Engine
}  // namespace GenApi
