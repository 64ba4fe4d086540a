// The Windows XML parser: the system's pull reader (xmllite.dll) over the text in memory, its UTF-16 strings
// converted to UTF-8 for the sink. The reader detects the encoding itself (byte-order mark or declaration) and
// reports the line of each element and of the first error.
//
// xmllite.dll is loaded from the system folder at the first parse rather than linked: the MinGW toolchain ships
// the reader's header but no import library, and loading by path from the system folder alone also keeps a
// stray xmllite.dll beside an application from being picked up.
#define NOMINMAX
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <ole2.h>
#include <xmllite.h>

#include <cstring>

#include "platform/XmlParser.h"

namespace GenICam {
namespace Platform {
namespace {

using CreateReaderFunction = HRESULT(WINAPI*)(REFIID, void**, IMalloc*);

// Loaded once for the life of the process: every later description is parsed by the same module.
CreateReaderFunction ReaderFactory() {
  static const CreateReaderFunction factory = []() -> CreateReaderFunction {
    HMODULE module = LoadLibraryExW(L"xmllite.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (module == nullptr) return nullptr;
    FARPROC address = GetProcAddress(module, "CreateXmlReader");
    return reinterpret_cast<CreateReaderFunction>(reinterpret_cast<void (*)()>(address));
  }();
  return factory;
}

// The text in memory as a sequential stream. It lives on the parser's stack and outlives the reader, which is
// released first, so the reference count is kept only to answer the calls. COM interfaces have no virtual
// destructor: objects are ended through Release, never deleted through the interface.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
class CMemoryStream final : public ISequentialStream {
public:
  CMemoryStream(const char* data, size_t size) : m_data(data), m_size(size) {}
  ~CMemoryStream() = default;
  CMemoryStream(const CMemoryStream&) = delete;
  CMemoryStream& operator=(const CMemoryStream&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    if (object == nullptr) return E_POINTER;
    if (id == __uuidof(IUnknown) || id == __uuidof(ISequentialStream)) {
      *object = static_cast<ISequentialStream*>(this);
      AddRef();
      return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
  ULONG STDMETHODCALLTYPE Release() override { return --m_references; }

  HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG size, ULONG* read) override {
    const size_t left = m_size - m_position;
    const ULONG count = static_cast<ULONG>(size < left ? size : left);
    if (count > 0) std::memcpy(buffer, m_data + m_position, count);
    m_position += count;
    if (read != nullptr) *read = count;
    return count < size ? S_FALSE : S_OK;
  }
  HRESULT STDMETHODCALLTYPE Write(const void*, ULONG, ULONG* written) override {
    if (written != nullptr) *written = 0;
    return STG_E_ACCESSDENIED;
  }

private:
  const char* m_data;
  size_t m_size;
  size_t m_position = 0;
  ULONG m_references = 1;
};
#pragma GCC diagnostic pop

class CReader {
public:
  CReader() = default;
  ~CReader() {
    if (m_reader != nullptr) m_reader->Release();
  }
  CReader(const CReader&) = delete;
  CReader& operator=(const CReader&) = delete;
  IXmlReader** Address() { return &m_reader; }
  IXmlReader* Get() const { return m_reader; }
  IXmlReader* operator->() const { return m_reader; }
  explicit operator bool() const { return m_reader != nullptr; }

private:
  IXmlReader* m_reader = nullptr;
};

// UTF-16 from the reader into a reused UTF-8 buffer.
std::string_view ToUtf8(const WCHAR* text, UINT length, std::string& buffer) {
  if (text == nullptr || length == 0) return std::string_view();
  buffer.resize(static_cast<size_t>(length) * 3);
  const int written = WideCharToMultiByte(CP_UTF8, 0, text, static_cast<int>(length), &buffer[0],
                                          static_cast<int>(buffer.size()), nullptr, nullptr);
  return std::string_view(buffer.data(), written > 0 ? static_cast<size_t>(written) : 0);
}

std::string ErrorText(HRESULT result) {
  switch (static_cast<unsigned long>(result)) {
  case MX_E_INPUTEND: return "unexpected end of the text";
  case MX_E_ENCODING:
  case MX_E_ENCODINGSWITCH:
  case MX_E_ENCODINGSIGNATURE: return "unreadable character encoding";
  case WC_E_ELEMENTMATCH: return "start-end tags mismatch";
  case WC_E_GREATERTHAN: return "expected '>'";
  case WC_E_LESSTHAN: return "unexpected '<'";
  case WC_E_QUOTE: return "expected a quote";
  case WC_E_EQUAL: return "expected '='";
  case WC_E_NAME:
  case WC_E_NAMECHARACTER: return "bad name";
  case WC_E_SEMICOLON:
  case WC_E_ENTITYCONTENT:
  case WC_E_UNDECLAREDENTITY: return "bad entity reference";
  case WC_E_XMLCHARACTER: return "character not allowed in XML";
  case WC_E_ROOTELEMENT:
  case WC_E_MOREDATA: return "text outside the document element";
  default: break;
  }
  char text[64];
  wsprintfA(text, "malformed XML (error 0x%08lX)", static_cast<unsigned long>(result));
  return text;
}

void FillError(IXmlReader* reader, HRESULT result, CXmlParseError& error) {
  UINT line = 0;
  UINT column = 0;
  if (reader != nullptr) {
    reader->GetLineNumber(&line);
    reader->GetLinePosition(&column);
  }
  error.line = line;
  error.column = column;
  error.message = ErrorText(result);
}

}  // namespace

bool ParseXml(const char* data, size_t size, IXmlSink& sink, CXmlParseError& error) {
  const CreateReaderFunction create = ReaderFactory();
  if (create == nullptr) {
    error = {0, 0, "the system's XML reader (xmllite.dll) is not available"};
    return false;
  }
  CReader reader;
  HRESULT result = create(__uuidof(IXmlReader), reinterpret_cast<void**>(reader.Address()), nullptr);
  if (FAILED(result) || !reader) {
    error = {0, 0, "the system's XML reader could not be created"};
    return false;
  }
  // A document type declaration is read and skipped, as the Linux parser does; entity expansion keeps the
  // reader's own limit.
  reader->SetProperty(XmlReaderProperty_DtdProcessing, DtdProcessing_Parse);
  // No depth limit of its own, as on Linux: the document is built and walked without recursion.
  reader->SetProperty(XmlReaderProperty_MaxElementDepth, 0);
  CMemoryStream stream(data, size);
  result = reader->SetInput(&stream);
  std::string name;
  std::string value;
  XmlNodeType type = XmlNodeType_None;
  while (SUCCEEDED(result) && (result = reader->Read(&type)) == S_OK) {
    const WCHAR* text = nullptr;
    UINT length = 0;
    switch (type) {
    case XmlNodeType_Element: {
      UINT line = 0;
      reader->GetLineNumber(&line);
      const bool empty = reader->IsEmptyElement() != FALSE;
      reader->GetQualifiedName(&text, &length);
      sink.StartElement(ToUtf8(text, length, name), line);
      for (result = reader->MoveToFirstAttribute(); result == S_OK; result = reader->MoveToNextAttribute()) {
        reader->GetQualifiedName(&text, &length);
        const std::string_view attributeName = ToUtf8(text, length, name);
        reader->GetValue(&text, &length);
        sink.Attribute(attributeName, ToUtf8(text, length, value));
      }
      if (FAILED(result)) break;
      result = S_OK;
      if (empty) sink.EndElement();
      break;
    }
    case XmlNodeType_EndElement: sink.EndElement(); break;
    case XmlNodeType_Text:
    case XmlNodeType_CDATA:
      reader->GetValue(&text, &length);
      sink.Text(ToUtf8(text, length, value));
      break;
    default: break;
    }
  }
  if (FAILED(result)) {
    FillError(reader.Get(), result, error);
    return false;
  }
  return true;
}

}  // namespace Platform
}  // namespace GenICam
