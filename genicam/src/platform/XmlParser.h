#pragma once
// Reading XML text: the parser reports elements, attributes and character data, in document order, to a sink.
// The Linux parser is XmlParser_posix.cpp; the Windows one, over the system's XML reader, is XmlParser_win32.cpp.
// Both accept UTF-8 (with or without byte-order mark) and UTF-16 (with byte-order mark), decode the predefined and
// numeric entities and CDATA sections, skip comments, processing instructions and the document type declaration.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace GenICam {
namespace Platform {

// Receives the document. Every string is UTF-8 and valid only during the call.
class IXmlSink {
public:
  // line: 1-based line of the element's start tag.
  virtual void StartElement(std::string_view name, uint32_t line) = 0;
  // Attributes of the element just started, each once, before anything inside it.
  virtual void Attribute(std::string_view name, std::string_view value) = 0;
  // A run of character data inside the current element (whitespace-only runs between tags are not reported), or
  // the content of a CDATA section (always reported). Runs separated by markup arrive as separate calls.
  virtual void Text(std::string_view text) = 0;
  virtual void EndElement() = 0;

protected:
  ~IXmlSink() = default;
};

struct CXmlParseError {
  size_t line = 0;    // 1-based; 0 when unknown
  size_t column = 0;  // 1-based; 0 when unknown
  std::string message;
};

// Parses size bytes at data into the sink. False on malformed text, with error filled; the sink may then have
// received part of the document. Exceptions thrown by the sink pass through and release the parser.
bool ParseXml(const char* data, size_t size, IXmlSink& sink, CXmlParseError& error);

}  // namespace Platform
}  // namespace GenICam
