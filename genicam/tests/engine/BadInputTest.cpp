// Bad descriptions: every error is a GenICam exception that names the position or the node; nothing crashes or hangs.
#include <gtest/gtest.h>

#include "MemoryPort.h"

using namespace EngineTest;

namespace {

std::string LoadError(const std::string& xml) {
  return ErrorOf([&] {
    GenApi::CNodeMapRef map;
    map._LoadXMLFromString(xml);
  });
}

TEST(BadInput, MalformedXmlNamesLineAndColumn) {
  const std::string error = LoadError(Describe("<Integer Name='A'><Value>1</Value>\n</Intger>"));
  EXPECT_NE(error.find("line 5"), std::string::npos) << error;
  EXPECT_NE(error.find("column"), std::string::npos) << error;
}

// UTF-16 descriptions (with byte-order mark) load, and errors name the line in the text as written.
TEST(BadInput, Utf16DescriptionsLoadAndErrorsNameTheLine) {
  auto utf16 = [](const std::string& text) {
    std::string out("\xFF\xFE", 2);
    for (const char c : text) {
      out.push_back(c);
      out.push_back('\0');
    }
    return out;
  };
  auto load = [](const std::string& bytes) {
    GenApi::CNodeMapFactory factory(GenApi::ContentType_Xml, bytes.data(), bytes.size());
    return GenApi::CNodeMapRef(factory.CreateNodeMap("Cam"), "Cam");
  };
  GenApi::CNodeMapRef map = load(utf16(Describe("<Integer Name='A'><Value>7</Value></Integer>")));
  EXPECT_EQ(GenApi::CIntegerPtr(map._GetNode("A"))->GetValue(), 7);
  const std::string error =
      ErrorOf([&] { load(utf16(Describe("<Integer Name='A'>\n<pValue>Missing</pValue></Integer>"))); });
  EXPECT_NE(error.find("line 5"), std::string::npos) << error;
  const std::string parseError =
      ErrorOf([&] { load(utf16(Describe("<Integer Name='A'><Value>1</Value>\n</Intger>"))); });
  EXPECT_NE(parseError.find("line 5"), std::string::npos) << parseError;
}

TEST(BadInput, EmptyTextAndWrongRoot) {
  EXPECT_FALSE(LoadError("").empty());
  EXPECT_NE(LoadError("<Other/>").find("RegisterDescription"), std::string::npos);
}

TEST(BadInput, UnknownReferenceNamesNodeNameAndLine) {
  const std::string error = LoadError(Describe("<Integer Name='A'>\n<pValue>Missing</pValue></Integer>"));
  EXPECT_NE(error.find("'A'"), std::string::npos) << error;
  EXPECT_NE(error.find("Missing"), std::string::npos) << error;
  EXPECT_NE(error.find("line 5"), std::string::npos) << error;
}

TEST(BadInput, ReferenceCyclesAreRejected) {
  const std::string error =
      LoadError(Describe("<Integer Name='A'><pValue>B</pValue></Integer><Integer Name='B'><pValue>C</pValue></Integer>"
                         "<Integer Name='C'><pValue>A</pValue></Integer>"));
  EXPECT_NE(error.find("cycle"), std::string::npos) << error;
  EXPECT_NE(error.find("A"), std::string::npos) << error;
  EXPECT_FALSE(LoadError(Describe("<Integer Name='A'><pValue>A</pValue></Integer>")).empty());
  EXPECT_FALSE(LoadError(Describe("<IntSwissKnife Name='K'><pVariable Name='K'>K</pVariable><Formula>K</Formula>"
                                  "</IntSwissKnife>"))
                   .empty());
}

TEST(BadInput, ElementErrorsNameTheNodeAndTheElement) {
  const char* const bad[] = {
      "<IntReg Name='R'><Address>12z</Address><Length>4</Length></IntReg>",
      "<IntReg Name='R'><Address>0</Address><Length>4</Length><AccessMode>XX</AccessMode></IntReg>",
      "<IntReg Name='R'><Address>0</Address><Length>4</Length><pPort>R</pPort></IntReg>",
      "<Integer Name='R'><Visibility>Everyone</Visibility><Value>1</Value></Integer>",
      "<Integer Name='R'><pIndex>R2</pIndex><ValueIndexed>1</ValueIndexed></Integer><Integer Name='R2'>"
      "<Value>0</Value></Integer>",
      "<Integer Name='R'></Integer>",
      "<IntSwissKnife Name='R'><pVariable>R2</pVariable><Formula>1</Formula></IntSwissKnife>"
      "<Integer Name='R2'><Value>0</Value></Integer>",
      "<IntSwissKnife Name='R'></IntSwissKnife>",
      "<Converter Name='R'><FormulaTo>FROM</FormulaTo></Converter>",
      "<Port Name='R'><ChunkID>xyz</ChunkID></Port>",
      "<IntReg Name='R'><Address>0</Address><Length>-4</Length></IntReg>"};
  for (const char* nodes : bad) {
    SCOPED_TRACE(nodes);
    const std::string error = LoadError(Describe(nodes));
    EXPECT_NE(error.find("'R'"), std::string::npos) << error;
  }
}

TEST(BadInput, DuplicateAndNamelessNodes) {
  EXPECT_NE(LoadError(Describe("<Integer Name='A'><Value>1</Value></Integer><Integer Name='A'><Value>1</Value>"
                               "</Integer>"))
                .find("duplicate"),
            std::string::npos);
  EXPECT_NE(LoadError(Describe("<Integer><Value>1</Value></Integer>")).find("Name"), std::string::npos);
}

TEST(BadInput, DeepNestingIsBoundedNotRecursedWithoutLimit) {
  std::string groups;
  for (int i = 0; i < 100; ++i) groups += "<Group>";
  groups += "<Integer Name='A'><Value>1</Value></Integer>";
  for (int i = 0; i < 100; ++i) groups += "</Group>";
  EXPECT_NE(LoadError(Describe(groups)).find("nested"), std::string::npos);

  std::string formula;
  for (int i = 0; i < 5000; ++i) formula += "(";
  formula += "1";
  for (int i = 0; i < 5000; ++i) formula += ")";
  const std::string error =
      LoadError(Describe("<IntSwissKnife Name='K'><Formula>" + formula + "</Formula></IntSwissKnife>"));
  EXPECT_NE(error.find("'K'"), std::string::npos) << error;

  std::string unary = "<IntSwissKnife Name='K'><Formula>";
  for (int i = 0; i < 5000; ++i) unary += "-";
  unary += "1</Formula></IntSwissKnife>";
  EXPECT_FALSE(LoadError(Describe(unary)).empty());
}

TEST(BadInput, LongReferenceChainsLoadButDeepEvaluationIsRefused) {
  std::string nodes = "<Integer Name='N0'><Value>1</Value></Integer>";
  for (int i = 1; i <= 5000; ++i) {
    nodes += "<Integer Name='N" + std::to_string(i) + "'><pValue>N" + std::to_string(i - 1) + "</pValue></Integer>";
  }
  CTestMap t(nodes);
  EXPECT_EQ(GenApi::CIntegerPtr(t.Node("N10"))->GetValue(), 1);
  const std::string error = ErrorOf([&] { GenApi::CIntegerPtr(t.Node("N5000"))->GetValue(); });
  EXPECT_NE(error.find("nested too deeply"), std::string::npos) << error;
}

TEST(BadInput, ManyRepeatedLinksAndVariablesStayLinear) {
  // Hostile sizes that a quadratic loader would take minutes over.
  std::string nodes = "<Integer Name='A'><Value>1</Value></Integer><Integer Name='B'>";
  for (int i = 0; i < 20000; ++i) nodes += "<pInvalidator>A</pInvalidator>";
  nodes += "<Value>2</Value></Integer><IntSwissKnife Name='K'>";
  std::string formula = "0";
  for (int i = 0; i < 3000; ++i) {
    nodes += "<pVariable Name='V" + std::to_string(i) + "'>A</pVariable>";
    formula += "+V" + std::to_string(i);
  }
  nodes += "<Formula>" + formula + "</Formula></IntSwissKnife>";
  CTestMap t(nodes);
  GenApi::NodeList_t invalidators;
  t.Node("B")->GetChildren(invalidators, GenApi::ctInvalidatingChildren);
  EXPECT_EQ(invalidators.size(), 1u) << "repeated links are kept once";
  EXPECT_EQ(GenApi::CIntegerPtr(t.Node("K"))->GetValue(), 3000);
}

TEST(BadInput, SecondLoadIsRefused) {
  GenApi::CNodeMapRef map;
  map._LoadXMLFromString(Describe(""));
  EXPECT_NE(ErrorOf([&] { map._LoadXMLFromString(Describe("")); }).find("Node map already created"), std::string::npos);
  map._Destroy();
  map._LoadXMLFromString(Describe(""));
  EXPECT_NE(map._GetNode("Device"), nullptr);
}

TEST(BadInput, MissingFile) {
  GenApi::CNodeMapRef map;
  EXPECT_NE(ErrorOf([&] { map._LoadXMLFromFile("/nonexistent/file.xml"); }).find("/nonexistent/file.xml"),
            std::string::npos);
}

}  // namespace
