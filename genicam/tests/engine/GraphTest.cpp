// Node relations as the application sees them: children and parents, port defaults, replay, access-mode caching.
#include <gtest/gtest.h>

#include <vector>

#include "MemoryPort.h"

using namespace EngineTest;
using namespace GenApi;

namespace {

std::vector<std::string> Names(const NodeList_t& nodes) {
  std::vector<std::string> names;
  for (INode* node : nodes) names.push_back(std::string(node->GetName()));
  return names;
}

TEST(Graph, ReadingWritingChildrenAndParents) {
  CTestMap t("<Integer Name='I'><pValue>R</pValue><pMax>Top</pMax></Integer>"
             "<Integer Name='Top'><Value>9</Value></Integer>"
             "<IntReg Name='R'><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode></IntReg>");
  NodeList_t nodes;
  t.Node("I")->GetChildren(nodes, ctReadingChildren);
  EXPECT_EQ(Names(nodes), (std::vector<std::string>{"R", "Top"}));
  t.Node("I")->GetChildren(nodes, ctWritingChildren);
  EXPECT_EQ(Names(nodes), (std::vector<std::string>{"R"}));
  t.Node("R")->GetParents(nodes);
  EXPECT_EQ(Names(nodes), (std::vector<std::string>{"I"}));
  t.Node("I")->GetChildren(nodes, ctTerminalNodes);
  EXPECT_EQ(Names(nodes), (std::vector<std::string>{"R"}));
}

TEST(Graph, RegistersWithoutPortUseTheDevicePort) {
  CTestMap t("<IntReg Name='R'><Address>4</Address><Length>4</Length><AccessMode>RW</AccessMode></IntReg>");
  t.port.Poke32LE(4, 12);
  EXPECT_EQ(CIntegerPtr(t.Node("R"))->GetValue(), 12);
}

TEST(Graph, IndexedValueDefaultFromANode) {
  CTestMap t("<Integer Name='I'><pIndex>Sel</pIndex><ValueIndexed Index='1'>5</ValueIndexed>"
             "<pValueDefault>Fallback</pValueDefault></Integer>"
             "<Integer Name='Sel'><Value>0</Value></Integer><Integer Name='Fallback'><Value>77</Value></Integer>");
  EXPECT_EQ(CIntegerPtr(t.Node("I"))->GetValue(), 77);
  CTestMap none("<Integer Name='I'><pIndex>Sel</pIndex><ValueIndexed Index='1'>5</ValueIndexed></Integer>"
                "<Integer Name='Sel'><Value>0</Value></Integer>");
  const std::string error = ErrorOf([&] { CIntegerPtr(none.Node("I"))->GetValue(); });
  EXPECT_NE(error.find("index 0"), std::string::npos) << error;
}

struct CRecorder : IPortWriteList {
  void Write(const void* buffer, int64_t address, int64_t length) override {
    const auto* bytes = static_cast<const uint8_t*>(buffer);
    entries.push_back({address, std::vector<uint8_t>(bytes, bytes + length)});
  }
  void Replay(IPort* port) override {
    for (const auto& entry : entries)
      port->Write(entry.second.data(), entry.first, static_cast<int64_t>(entry.second.size()));
  }
  void SetCookie(int64_t value) override { cookie = value; }
  int64_t GetCookie() override { return cookie; }
  std::vector<std::pair<int64_t, std::vector<uint8_t>>> entries;
  int64_t cookie = 0;
};

TEST(Graph, ReplayWritesTheRecordAndDropsCachedValues) {
  CTestMap t("<IntReg Name='R'><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode></IntReg>");
  CIntegerPtr r(t.Node("R"));
  EXPECT_EQ(r->GetValue(), 0);
  CRecorder recorder;
  const uint8_t bytes[4] = {9, 0, 0, 0};
  recorder.Write(bytes, 0, 4);
  t.port.Replay(&recorder);
  EXPECT_EQ(r->GetValue(), 9);
}

TEST(Graph, AccessModesAreRememberedOnlyWhenNothingBelowIsVolatile) {
  CTestMap t("<Integer Name='Stable'><pIsAvailable>Flag</pIsAvailable><Value>1</Value></Integer>"
             "<IntReg Name='Flag'><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode></IntReg>"
             "<Integer Name='Live'><pIsAvailable>LiveFlag</pIsAvailable><Value>1</Value></Integer>"
             "<IntReg Name='LiveFlag'><Address>8</Address><Length>4</Length><AccessMode>RO</AccessMode>"
             "<Cachable>NoCache</Cachable></IntReg>");
  EXPECT_EQ(t.Node("Stable")->IsAccessModeCacheable(), Yes);
  EXPECT_EQ(t.Node("Live")->IsAccessModeCacheable(), No);
  EXPECT_EQ(t.Node("Live")->GetAccessMode(), NA);
  t.port.Poke32LE(8, 1);
  EXPECT_EQ(t.Node("Live")->GetAccessMode(), RW) << "a NoCache register below is read every time";
  EXPECT_EQ(t.Node("Stable")->GetAccessMode(), NA);
  t.port.Poke32LE(0, 1);
  t.Node("Flag")->InvalidateNode();
  EXPECT_EQ(t.Node("Stable")->GetAccessMode(), RW) << "invalidation reaches the remembered access mode";
}

}  // namespace
