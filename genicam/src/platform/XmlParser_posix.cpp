// The Linux XML parser: pugixml builds its tree, which is then walked once into the sink. Text in another encoding
// is first converted to UTF-8 here, so that the parser's offsets (from which the line numbers come) count in the
// same text the lines are counted in.
#include "platform/XmlParser.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include <pugixml.hpp>

namespace GenICam {
namespace Platform {
namespace {

enum class EEncoding { Utf8, Utf16Le, Utf16Be, Utf32Le, Utf32Be, Latin1 };

bool StartsWith(const unsigned char* data, size_t size, std::initializer_list<unsigned char> bytes) {
  if (size < bytes.size()) return false;
  return std::equal(bytes.begin(), bytes.end(), data);
}

// The encoding named by an XML declaration, lower-cased; empty without one.
std::string DeclaredEncoding(const char* data, size_t size) {
  const std::string_view head(data, std::min<size_t>(size, 256));
  if (head.substr(0, 5) != "<?xml") return std::string();
  const size_t end = head.find("?>");
  const size_t key = head.find("encoding");
  if (end == std::string_view::npos || key == std::string_view::npos || key > end) return std::string();
  size_t at = key + 8;
  while (at < end && std::isspace(static_cast<unsigned char>(head[at])) != 0) ++at;
  if (at >= end || head[at] != '=') return std::string();
  ++at;
  while (at < end && std::isspace(static_cast<unsigned char>(head[at])) != 0) ++at;
  if (at >= end || (head[at] != '"' && head[at] != '\'')) return std::string();
  const size_t close = head.find(head[at], at + 1);
  if (close == std::string_view::npos || close > end) return std::string();
  std::string name(head.substr(at + 1, close - at - 1));
  for (char& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return name;
}

// Byte-order marks first, then the first characters "<?" in each width, then a declared Latin-1.
EEncoding DetectEncoding(const char* text, size_t size, size_t& markLength) {
  const auto* data = reinterpret_cast<const unsigned char*>(text);
  markLength = 0;
  if (StartsWith(data, size, {0x00, 0x00, 0xFE, 0xFF})) return markLength = 4, EEncoding::Utf32Be;
  if (StartsWith(data, size, {0xFF, 0xFE, 0x00, 0x00})) return markLength = 4, EEncoding::Utf32Le;
  if (StartsWith(data, size, {0xFE, 0xFF})) return markLength = 2, EEncoding::Utf16Be;
  if (StartsWith(data, size, {0xFF, 0xFE})) return markLength = 2, EEncoding::Utf16Le;
  if (StartsWith(data, size, {0xEF, 0xBB, 0xBF})) return EEncoding::Utf8;
  if (StartsWith(data, size, {0x00, 0x00, 0x00, 0x3C})) return EEncoding::Utf32Be;
  if (StartsWith(data, size, {0x3C, 0x00, 0x00, 0x00})) return EEncoding::Utf32Le;
  if (StartsWith(data, size, {0x00, 0x3C})) return EEncoding::Utf16Be;
  if (StartsWith(data, size, {0x3C, 0x00})) return EEncoding::Utf16Le;
  const std::string declared = DeclaredEncoding(text, size);
  if (declared == "iso-8859-1" || declared == "latin1") return EEncoding::Latin1;
  return EEncoding::Utf8;
}

void AppendUtf8(std::string& out, uint32_t code) {
  if (code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) code = 0xFFFD;
  if (code < 0x80) {
    out.push_back(static_cast<char>(code));
  } else if (code < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (code >> 6)));
    out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
  } else if (code < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (code >> 12)));
    out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (code >> 18)));
    out.push_back(static_cast<char>(0x80 | ((code >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
  }
}

// A trailing odd byte is dropped; unpaired surrogates become U+FFFD.
std::string ToUtf8(const unsigned char* data, size_t size, EEncoding encoding) {
  std::string out;
  out.reserve(size + size / 2);
  if (encoding == EEncoding::Latin1) {
    for (size_t i = 0; i < size; ++i) AppendUtf8(out, data[i]);
    return out;
  }
  const bool wide = encoding == EEncoding::Utf32Le || encoding == EEncoding::Utf32Be;
  const bool little = encoding == EEncoding::Utf16Le || encoding == EEncoding::Utf32Le;
  const size_t width = wide ? 4 : 2;
  auto unit = [&](size_t at) -> uint32_t {
    uint32_t value = 0;
    for (size_t i = 0; i < width; ++i) value |= uint32_t(data[at + i]) << (8 * (little ? i : width - 1 - i));
    return value;
  };
  for (size_t at = 0; at + width <= size; at += width) {
    uint32_t code = unit(at);
    if (!wide && code >= 0xD800 && code <= 0xDBFF && at + 2 * width <= size) {
      const uint32_t low = unit(at + width);
      if (low >= 0xDC00 && low <= 0xDFFF) {
        code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
        at += width;
      }
    }
    AppendUtf8(out, code);
  }
  return out;
}

// Counts lines forward through the text: element offsets arrive in increasing order.
class CLineCounter {
public:
  explicit CLineCounter(std::string_view text) : m_text(text) {}
  uint32_t LineAt(size_t offset) {
    offset = std::min(offset, m_text.size());
    if (offset < m_offset) {
      m_offset = 0;
      m_line = 1;
    }
    m_line += static_cast<uint32_t>(std::count(m_text.begin() + m_offset, m_text.begin() + offset, '\n'));
    m_offset = offset;
    return m_line;
  }

private:
  std::string_view m_text;
  size_t m_offset = 0;
  uint32_t m_line = 1;
};

void WalkDocument(const pugi::xml_document& document, std::string_view text, IXmlSink& sink) {
  CLineCounter lines(text);
  pugi::xml_node node = document.first_child();
  while (node) {
    bool descend = false;
    switch (node.type()) {
    case pugi::node_element: {
      const ptrdiff_t offset = node.offset_debug();
      sink.StartElement(node.name(), lines.LineAt(offset < 0 ? 0 : static_cast<size_t>(offset)));
      for (pugi::xml_attribute attribute = node.first_attribute(); attribute; attribute = attribute.next_attribute()) {
        sink.Attribute(attribute.name(), attribute.value());
      }
      descend = static_cast<bool>(node.first_child());
      if (!descend) sink.EndElement();
      break;
    }
    case pugi::node_pcdata:
    case pugi::node_cdata: sink.Text(node.value()); break;
    default: break;
    }
    if (descend) {
      node = node.first_child();
      continue;
    }
    // Climb out of every element whose children are all done.
    while (!node.next_sibling()) {
      node = node.parent();
      if (!node || node.type() == pugi::node_document) return;
      sink.EndElement();
    }
    node = node.next_sibling();
  }
}

}  // namespace

bool ParseXml(const char* data, size_t size, IXmlSink& sink, CXmlParseError& error) {
  size_t markLength = 0;
  const EEncoding encoding = DetectEncoding(data, size, markLength);
  std::string converted;
  std::string_view text(data, size);
  if (encoding != EEncoding::Utf8) {
    converted = ToUtf8(reinterpret_cast<const unsigned char*>(data) + markLength, size - markLength, encoding);
    text = converted;
  }
  // Line ends are kept as written (no parse_eol), attribute values as well (no whitespace conversion): values reach
  // the node map exactly as the description has them.
  pugi::xml_document document;
  const pugi::xml_parse_result parsed =
      document.load_buffer(text.data(), text.size(), pugi::parse_cdata | pugi::parse_escapes, pugi::encoding_utf8);
  if (!parsed) {
    const size_t offset = parsed.offset > 0 ? std::min(static_cast<size_t>(parsed.offset), text.size()) : 0;
    error.line = 1 + static_cast<size_t>(std::count(text.begin(), text.begin() + offset, '\n'));
    const size_t lineStart = offset == 0 ? std::string_view::npos : text.rfind('\n', offset - 1);
    error.column = offset - (lineStart == std::string_view::npos ? 0 : lineStart + 1) + 1;
    error.message = parsed.description();
    return false;
  }
  WalkDocument(document, text, sink);
  return true;
}

}  // namespace Platform
}  // namespace GenICam
