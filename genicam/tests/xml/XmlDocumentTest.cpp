// The XML document as the engine walks it: structure, attributes, first text, entities and CDATA, line numbers,
// encodings, and malformed text reported with a line.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "xml/XmlDocument.h"

using GenApi::Engine::CXmlDocument;
using GenApi::Engine::CXmlElement;

namespace {

std::vector<std::string> ChildNames(const CXmlElement& element) {
  std::vector<std::string> names;
  for (CXmlElement child = element.FirstChild(); child; child = child.NextSibling()) names.emplace_back(child.Name());
  return names;
}

// UTF-16 code units of a UTF-8 text (the test texts stay in the Basic Multilingual Plane), with a byte-order mark.
std::string Utf16(const std::string& utf8, bool bigEndian) {
  std::string out = bigEndian ? std::string("\xFE\xFF") : std::string("\xFF\xFE");
  for (size_t i = 0; i < utf8.size();) {
    const auto c = static_cast<unsigned char>(utf8[i]);
    uint32_t code = c;
    size_t length = 1;
    if (c >= 0xE0) {
      code = c & 0x0F;
      length = 3;
    } else if (c >= 0xC0) {
      code = c & 0x1F;
      length = 2;
    }
    for (size_t k = 1; k < length; ++k) code = (code << 6) | (static_cast<unsigned char>(utf8[i + k]) & 0x3F);
    i += length;
    const char high = static_cast<char>(code >> 8);
    const char low = static_cast<char>(code & 0xFF);
    out.push_back(bigEndian ? high : low);
    out.push_back(bigEndian ? low : high);
  }
  return out;
}

class XmlDocument : public testing::Test {
protected:
  CXmlElement Load(const std::string& text) {
    const bool loaded = m_document.Load(text.data(), text.size());
    EXPECT_TRUE(loaded) << m_document.Error().message << " at line " << m_document.Error().line;
    return m_document.Root();
  }
  // The parse must fail; returns the line it names.
  size_t FailingLine(const std::string& text) {
    EXPECT_FALSE(m_document.Load(text.data(), text.size())) << text;
    EXPECT_FALSE(m_document.Error().message.empty());
    EXPECT_FALSE(m_document.Root());
    return m_document.Error().line;
  }

  CXmlDocument m_document;
};

TEST_F(XmlDocument, ChildrenAndSiblingsInDocumentOrder) {
  const CXmlElement root = Load("<a><b n='1'/><c><d/><e/></c><b n='2'/>tail<f/></a>");
  EXPECT_EQ(root.Name(), "a");
  EXPECT_EQ(ChildNames(root), (std::vector<std::string>{"b", "c", "b", "f"}));
  EXPECT_EQ(ChildNames(root.Child("c")), (std::vector<std::string>{"d", "e"}));
  const CXmlElement firstB = root.Child("b");
  EXPECT_EQ(firstB.Attribute("n"), "1");
  EXPECT_EQ(firstB.NextSibling("b").Attribute("n"), "2");
  EXPECT_FALSE(firstB.NextSibling("b").NextSibling("b"));
  EXPECT_FALSE(root.Child("missing"));
  EXPECT_FALSE(root.Child("c").Child("d").FirstChild());
  EXPECT_FALSE(root.NextSibling());
  EXPECT_EQ(m_document.ElementCount(), 7u);
}

TEST_F(XmlDocument, NullElementAnswersEmpty) {
  const CXmlElement none;
  EXPECT_FALSE(none);
  EXPECT_TRUE(none.Name().empty());
  EXPECT_TRUE(none.Text().empty());
  EXPECT_EQ(none.Line(), 0u);
  EXPECT_FALSE(none.FirstChild());
  EXPECT_FALSE(none.HasAttribute("Name"));
  EXPECT_FALSE(m_document.Root());
}

TEST_F(XmlDocument, AttributesByNamePresentEmptyOrAbsent) {
  const CXmlElement root =
      Load("<r Name=\"  Gain \" Empty=\"\" xmlns:xsi=\"urn:x\" xsi:type='t' Esc=\"a&lt;b&amp;&quot;&#x41;\"/>");
  EXPECT_EQ(root.Attribute("Name"), "  Gain ");
  std::string_view value = "unchanged";
  EXPECT_TRUE(root.FindAttribute("Empty", value));
  EXPECT_TRUE(value.empty());
  EXPECT_FALSE(root.FindAttribute("Missing", value));
  EXPECT_TRUE(root.Attribute("Missing").empty());
  EXPECT_EQ(root.Attribute("xsi:type"), "t");
  EXPECT_EQ(root.Attribute("Esc"), "a<b&\"A");
  ASSERT_EQ(root.AttributeCount(), 5u);
  EXPECT_EQ(root.AttributeAt(0).name, "Name");
  EXPECT_EQ(root.AttributeAt(4).name, "Esc");
}

TEST_F(XmlDocument, TextDecodesEntitiesAndKeepsSpaces) {
  const CXmlElement root = Load("<r><t>  a &lt;b&gt; &amp; &quot;&apos; &#65;&#x42;&#xB5;  </t></r>");
  EXPECT_EQ(root.Child("t").Text(), "  a <b> & \"' AB\xC2\xB5  ");
}

TEST_F(XmlDocument, CDataIsTextAsWritten) {
  const CXmlElement root = Load("<r><t><![CDATA[x < y && z > 0 &amp;]]></t><u>\n  <![CDATA[ v ]]>\n</u></r>");
  EXPECT_EQ(root.Child("t").Text(), "x < y && z > 0 &amp;");
  EXPECT_EQ(root.Child("u").Text(), " v ");
}

TEST_F(XmlDocument, TextIsTheFirstRunInsideTheElement) {
  const CXmlElement root =
      Load("<r><t>first<u>inner</u>second</t><v>\n  <w/>\n  after</v><x><y>only inner</y></x></r>");
  EXPECT_EQ(root.Child("t").Text(), "first");
  EXPECT_EQ(root.Child("t").Child("u").Text(), "inner");
  EXPECT_EQ(root.Child("v").Text(), "\n  after");
  EXPECT_TRUE(root.Child("x").Text().empty());
}

TEST_F(XmlDocument, CommentsProcessingInstructionsAndDoctypeAreSkipped) {
  const CXmlElement root = Load("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<!DOCTYPE r>\n<!-- before -->\n"
                                "<r><!-- inside --><?pi data?><a>x<!-- c -->y</a></r>\n<!-- after -->\n");
  EXPECT_EQ(root.Name(), "r");
  EXPECT_EQ(ChildNames(root), std::vector<std::string>{"a"});
  EXPECT_EQ(root.Child("a").Text(), "x");
  EXPECT_EQ(root.Line(), 4u);
}

TEST_F(XmlDocument, EmptyElementsInBothForms) {
  const CXmlElement root = Load("<r><a/><b></b><c x='1' /></r>");
  for (const char* name : {"a", "b", "c"}) {
    const CXmlElement element = root.Child(name);
    ASSERT_TRUE(element) << name;
    EXPECT_TRUE(element.Text().empty()) << name;
    EXPECT_FALSE(element.FirstChild()) << name;
  }
  EXPECT_EQ(ChildNames(root), (std::vector<std::string>{"a", "b", "c"}));
  EXPECT_EQ(root.Child("c").Attribute("x"), "1");
}

TEST_F(XmlDocument, LinesOfStartTags) {
  const CXmlElement root =
      Load("<?xml version=\"1.0\"?>\n<r>\n  <a>\n    <b/>\n  </a>\n\n  <c\n     x='1'/>\r\n<d/></r>");
  EXPECT_EQ(root.Line(), 2u);
  EXPECT_EQ(root.Child("a").Line(), 3u);
  EXPECT_EQ(root.Child("a").Child("b").Line(), 4u);
  EXPECT_EQ(root.Child("c").Line(), 7u);
  EXPECT_EQ(root.Child("d").Line(), 9u);
}

TEST_F(XmlDocument, Utf8WithByteOrderMark) {
  const CXmlElement root =
      Load("\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<r u='\xC2\xB5m'>\xE2\x82\xAC</r>");
  EXPECT_EQ(root.Name(), "r");
  EXPECT_EQ(root.Attribute("u"), "\xC2\xB5m");
  EXPECT_EQ(root.Text(), "\xE2\x82\xAC");
  EXPECT_EQ(root.Line(), 2u);
}

TEST_F(XmlDocument, Utf16WithByteOrderMarkInBothByteOrders) {
  const std::string utf8 = "<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n<r>\n<Unit u='\xC2\xB5s'>\xE2\x82\xAC &amp; "
                           "<![CDATA[<x>]]></Unit>\n<b/></r>";
  for (const bool bigEndian : {false, true}) {
    const std::string text = Utf16(utf8, bigEndian);
    const CXmlElement root = Load(text);
    ASSERT_TRUE(root) << bigEndian;
    const CXmlElement unit = root.Child("Unit");
    EXPECT_EQ(unit.Attribute("u"), "\xC2\xB5s");
    EXPECT_EQ(unit.Text(), "\xE2\x82\xAC & ");
    EXPECT_EQ(unit.Line(), 3u);
    EXPECT_EQ(root.Child("b").Line(), 4u);
  }
}

TEST_F(XmlDocument, Utf16ErrorNamesTheLine) {
  const std::string text = Utf16("<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n<r>\n<a>\n</b>\n</r>", false);
  EXPECT_EQ(FailingLine(text), 4u);
}

TEST_F(XmlDocument, MalformedTextNamesTheLine) {
  EXPECT_EQ(FailingLine("<r>\n<a>\n</b>\n</r>"), 3u);
  EXPECT_EQ(FailingLine("<r>\n<a x='1' x2=>\n</a></r>"), 2u);
  EXPECT_GE(FailingLine("<r>\n<a>\n"), 2u);
  EXPECT_EQ(FailingLine("<r>\n\n<a>x</a>\n<b><1/></b>\n</r>"), 4u);
}

TEST_F(XmlDocument, TextWithoutElementIsRefused) {
  FailingLine("");
  FailingLine("   \n  ");
  FailingLine("<?xml version=\"1.0\"?>\n<!-- nothing -->\n");
  FailingLine("just text");
}

TEST_F(XmlDocument, DeepNestingIsWalkedWithoutRecursion) {
  constexpr int kDepth = 5000;
  std::string text;
  for (int i = 0; i < kDepth; ++i) text += "<e>\n";
  text += "<leaf>x</leaf>";
  for (int i = 0; i < kDepth; ++i) text += "</e>";
  CXmlElement element = Load(text);
  int depth = 0;
  while (element.Name() == "e") {
    element = element.FirstChild();
    ++depth;
  }
  EXPECT_EQ(depth, kDepth);
  EXPECT_EQ(element.Name(), "leaf");
  EXPECT_EQ(element.Text(), "x");
  EXPECT_EQ(element.Line(), static_cast<uint32_t>(kDepth + 1));
}

TEST_F(XmlDocument, ReloadReplacesTheDocumentAndAFailureEmptiesIt) {
  Load("<first><a/></first>");
  EXPECT_EQ(Load("<second/>").Name(), "second");
  EXPECT_EQ(m_document.ElementCount(), 1u);
  FailingLine("<broken>");
  EXPECT_EQ(m_document.ElementCount(), 0u);
  EXPECT_EQ(Load("<third x='1'/>").Attribute("x"), "1");
}

TEST_F(XmlDocument, LongTextsAndManyElements) {
  const std::string longText(200000, 'q');
  std::string text = "<r><big>" + longText + "</big>";
  for (int i = 0; i < 20000; ++i) text += "<i n='" + std::to_string(i) + "'>" + std::to_string(i * 3) + "</i>";
  text += "</r>";
  const CXmlElement root = Load(text);
  EXPECT_EQ(root.Child("big").Text(), longText);
  int count = 0;
  for (CXmlElement item = root.Child("i"); item; item = item.NextSibling("i"), ++count) {
    ASSERT_EQ(item.Attribute("n"), std::to_string(count));
    ASSERT_EQ(item.Text(), std::to_string(count * 3));
  }
  EXPECT_EQ(count, 20000);
}

}  // namespace
