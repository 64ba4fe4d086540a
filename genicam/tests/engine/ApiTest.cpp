// Smart pointers, node-map references, exceptions and strings of the public interface.
#include <gtest/gtest.h>

#include "MemoryPort.h"

using namespace EngineTest;
using namespace GenApi;

namespace {

TEST(Pointers, CheckedCastsAndNullUse) {
  CTestMap t("<Integer Name='I'><Value>1</Value></Integer>");
  CIntegerPtr integer(t.Node("I"));
  CFloatPtr floating(t.Node("I"));
  EXPECT_TRUE(integer.IsValid());
  EXPECT_FALSE(floating.IsValid()) << "an Integer is no IFloat";
  CValuePtr value(integer);
  EXPECT_TRUE(value.IsValid());
  EXPECT_EQ(value->GetNode(), t.Node("I"));
  CIntegerPtr missing(t.Node("Nope"));
  EXPECT_FALSE(missing.IsValid());
  EXPECT_FALSE(IsReadable(missing));
  EXPECT_FALSE(IsAvailable(missing));
  EXPECT_THROW(missing->GetValue(), GenICam::LogicalErrorException) << "a null pointer is a logical error";
  CNodePtr node = t.Node("I");
  EXPECT_EQ(node->GetPrincipalInterfaceType(), intfIInteger);
  EXPECT_TRUE(node == t.Node("I"));
}

TEST(NodeMapRef, CopiesShareOneNodeMap) {
  CNodeMapRef copy;
  {
    CTestMap t("<Integer Name='I'><Value>1</Value></Integer>");
    copy = t.map;
    CIntegerPtr(t.Node("I"))->SetValue(3);
  }
  EXPECT_EQ(CIntegerPtr(copy._GetNode("I"))->GetValue(), 3) << "the copy keeps the map alive";
  NodeList_t nodes;
  copy._GetNodes(nodes);
  EXPECT_EQ(nodes.size(), 2u);  // Device and I
  EXPECT_EQ(copy._Ptr->GetNumNodes(), 2u);
  copy._Destroy();
  EXPECT_EQ(copy._GetNode("I"), nullptr);
  EXPECT_FALSE(copy._Connect(nullptr, "Device"));
  copy._GetNodes(nodes);
  EXPECT_TRUE(nodes.empty());
}

TEST(NodeMapRef, DeviceNameReachesNodes) {
  CNodeMapRef map("Stream");
  map._LoadXMLFromString(Describe("<Integer Name='I'><Value>1</Value></Integer>"));
  EXPECT_EQ(std::string(map._GetDeviceName()), "Stream");
  EXPECT_EQ(std::string(map._GetNode("I")->GetDeviceName()), "Stream");
}

TEST(Exceptions, DescriptionSourceAndType) {
  try {
    throw RUNTIME_EXCEPTION("value %d of '%s'", 5, "Node");
  } catch (const GenICam::GenericException& error) {
    EXPECT_STREQ(error.GetDescription(), "value 5 of 'Node'");
    EXPECT_NE(std::string(error.GetSourceFileName()).find("ApiTest.cpp"), std::string::npos);
    EXPECT_GT(error.GetSourceLine(), 0u);
    EXPECT_STREQ(error.GetExceptionType(), "RuntimeException");
    EXPECT_NE(std::string(error.what()).find("value 5"), std::string::npos);
  }
  GenICam::GenericException plain("Read address 0x10 failure", "CtiPort", 51);
  EXPECT_STREQ(plain.GetSourceFileName(), "CtiPort");
  EXPECT_EQ(plain.GetSourceLine(), 51u);
  EXPECT_THROW(throw ACCESS_EXCEPTION("x"), GenICam::AccessException);
  EXPECT_THROW(throw TIMEOUT_EXCEPTION("x"), GenICam::GenericException);
  std::string longText(100000, 'a');
  const GenICam::RuntimeException longError = RUNTIME_EXCEPTION("%s", longText.c_str());
  EXPECT_LE(std::string(longError.GetDescription()).size(), 65536u);
}

TEST(Strings, ConversionsBothWays) {
  GenICam::gcstring text = std::string("abc");
  std::string back = text;
  EXPECT_EQ(back, "abc");
  EXPECT_STREQ(text.c_str(), "abc");
  EXPECT_TRUE(text == "abc");
  GenICam::gcstring_vector list;
  list.push_back("x");
  EXPECT_EQ(list.size(), 1u);
  EXPECT_EQ(std::string(list.at(0)), "x");
}

}  // namespace
