// Caching modes, invalidation (pInvalidator, dependencies, explicit), polling and callbacks.
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "MemoryPort.h"

using namespace EngineTest;
using namespace GenApi;

namespace {

std::string Reg(const char* name, int address, const char* caching) {
  return std::string("<IntReg Name='") + name + "'><Address>" + std::to_string(address) +
         "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>" + caching +
         "</Cachable></IntReg>";
}

TEST(Caching, WriteThroughKeepsTheWrittenValue) {
  CTestMap t(Reg("R", 0, "WriteThrough"));
  CIntegerPtr r(t.Node("R"));
  EXPECT_EQ(r->GetValue(), 0);
  EXPECT_EQ(r->GetValue(), 0);
  EXPECT_EQ(t.port.Reads(), 1);
  r->SetValue(5);
  EXPECT_EQ(r->GetValue(), 5);
  EXPECT_EQ(t.port.Reads(), 1);
  EXPECT_TRUE(r->IsValueCacheValid());
  EXPECT_EQ(r->GetCachingMode(), WriteThrough);
}

TEST(Caching, WriteAroundRereadsAfterAWrite) {
  CTestMap t(Reg("R", 0, "WriteAround"));
  CIntegerPtr r(t.Node("R"));
  r->GetValue();
  r->SetValue(5);
  EXPECT_FALSE(r->IsValueCacheValid());
  EXPECT_EQ(r->GetValue(), 5);
  EXPECT_EQ(t.port.Reads(), 2);
}

TEST(Caching, NoCacheAlwaysReadsAndIgnoreCacheBypasses) {
  CTestMap t(Reg("N", 0, "NoCache") + Reg("C", 8, "WriteThrough"));
  CIntegerPtr n(t.Node("N"));
  n->GetValue();
  n->GetValue();
  EXPECT_EQ(t.port.Reads(), 2);
  CIntegerPtr c(t.Node("C"));
  c->GetValue();
  t.port.Poke32LE(8, 3);
  EXPECT_EQ(c->GetValue(), 0) << "cached";
  EXPECT_EQ(c->GetValue(false, true), 3) << "ignore cache reaches the port";
  EXPECT_EQ(c->GetValue(), 3) << "and refreshes the cache";
}

TEST(Caching, InvalidatorsDropTheCache) {
  CTestMap t(Reg("Trigger", 0, "WriteThrough") +
             "<IntReg Name='Status'><Address>8</Address><Length>4</Length><AccessMode>RO</AccessMode>"
             "<pPort>Device</pPort><pInvalidator>Trigger</pInvalidator></IntReg>");
  CIntegerPtr status(t.Node("Status"));
  EXPECT_EQ(status->GetValue(), 0);
  t.port.Poke32LE(8, 1);
  EXPECT_EQ(status->GetValue(), 0);
  CIntegerPtr(t.Node("Trigger"))->SetValue(1);
  EXPECT_EQ(status->GetValue(), 1);
  NodeList_t invalidators;
  t.Node("Status")->GetChildren(invalidators, ctInvalidatingChildren);
  ASSERT_EQ(invalidators.size(), 1u);
  EXPECT_EQ(std::string(invalidators[0]->GetName()), "Trigger");
}

TEST(Caching, InvalidatorThroughAFeatureAboveTheWrittenRegister) {
  CTestMap t("<Integer Name='Gain'><pValue>GainReg</pValue></Integer>" + Reg("GainReg", 0, "WriteThrough") +
             "<IntReg Name='Derived'><Address>8</Address><Length>4</Length><AccessMode>RO</AccessMode>"
             "<pPort>Device</pPort><pInvalidator>Gain</pInvalidator></IntReg>");
  CIntegerPtr derived(t.Node("Derived"));
  derived->GetValue();
  t.port.Poke32LE(8, 4);
  CIntegerPtr(t.Node("Gain"))->SetValue(2);
  EXPECT_EQ(derived->GetValue(), 4);
}

TEST(Caching, OverlappingRegistersSeeEachOthersWrites) {
  CTestMap t("<IntReg Name='Wide'><Address>0</Address><Length>8</Length><AccessMode>RW</AccessMode></IntReg>"
             "<IntReg Name='High'><Address>4</Address><Length>4</Length><AccessMode>RW</AccessMode></IntReg>"
             "<IntReg Name='Apart'><Address>8</Address><Length>4</Length><AccessMode>RW</AccessMode></IntReg>");
  CIntegerPtr wide(t.Node("Wide"));
  CIntegerPtr apart(t.Node("Apart"));
  EXPECT_EQ(wide->GetValue(), 0);
  EXPECT_EQ(apart->GetValue(), 0);
  CIntegerPtr(t.Node("High"))->SetValue(1);
  EXPECT_EQ(wide->GetValue(), 1LL << 32);
  const int reads = t.port.Reads();
  apart->GetValue();
  EXPECT_EQ(t.port.Reads(), reads) << "a register next to them keeps its cache";
}

TEST(Caching, InvalidateNodesAndInvalidateNode) {
  CTestMap t(Reg("R", 0, "WriteThrough"));
  CIntegerPtr r(t.Node("R"));
  r->GetValue();
  t.port.Poke32LE(0, 8);
  t.map._InvalidateNodes();
  EXPECT_EQ(r->GetValue(), 8);
  t.port.Poke32LE(0, 9);
  r->InvalidateNode();
  EXPECT_EQ(r->GetValue(), 9);
  t.port.Poke32LE(0, 10);
  t.port.InvalidateNode();  // the user port drops everything read through it
  EXPECT_EQ(r->GetValue(), 10);
}

TEST(Caching, InvalidatingAFeatureRereadsTheRegistersBelowIt) {
  CTestMap t("<Integer Name='Width'><pValue>WidthReg</pValue></Integer>" + Reg("WidthReg", 0, "WriteThrough"));
  CIntegerPtr width(t.Node("Width"));
  EXPECT_EQ(width->GetValue(), 0);
  t.port.Poke32LE(0, 640);
  EXPECT_EQ(width->GetValue(), 0);
  width->InvalidateNode();
  EXPECT_EQ(width->GetValue(), 640);
}

TEST(Caching, PollingInvalidatesAfterThePollingTime) {
  CTestMap t("<IntReg Name='Temp'><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode>"
             "<pPort>Device</pPort><PollingTime>100</PollingTime></IntReg>");
  CIntegerPtr temp(t.Node("Temp"));
  temp->GetValue();
  t.port.Poke32LE(0, 30);
  t.map._Poll(60);
  EXPECT_EQ(temp->GetValue(), 0);
  t.map._Poll(60);
  EXPECT_EQ(temp->GetValue(), 30);
}

TEST(Callbacks, FireOnWritesOfTheNodeAndOfWhatItDependsOn) {
  CTestMap t("<Integer Name='Width'><pValue>WidthReg</pValue></Integer>" + Reg("WidthReg", 0, "WriteThrough") +
             "<IntSwissKnife Name='Payload'><pVariable Name='W'>Width</pVariable><Formula>W * 2</Formula>"
             "</IntSwissKnife><Integer Name='Other'><Value>0</Value></Integer>");
  int widthCalls = 0;
  int payloadCalls = 0;
  INode* seen = nullptr;
  const CallbackHandleType handle = Register(t.Node("Width"), [&](INode* node) {
    ++widthCalls;
    seen = node;
  });
  Register(t.Node("Payload"), [&](INode*) { ++payloadCalls; });
  CIntegerPtr(t.Node("Width"))->SetValue(10);
  EXPECT_EQ(widthCalls, 1);
  EXPECT_EQ(payloadCalls, 1);
  EXPECT_EQ(seen, t.Node("Width"));
  CIntegerPtr(t.Node("WidthReg"))->SetValue(11);
  EXPECT_EQ(widthCalls, 2);
  CIntegerPtr(t.Node("Other"))->SetValue(1);
  EXPECT_EQ(widthCalls, 2) << "unrelated writes do not fire";
  t.Node("Width")->InvalidateNode();
  EXPECT_EQ(widthCalls, 3);
  EXPECT_TRUE(t.Node("Width")->DeregisterCallback(handle));
  EXPECT_FALSE(t.Node("Width")->DeregisterCallback(handle));
  CIntegerPtr(t.Node("Width"))->SetValue(12);
  EXPECT_EQ(widthCalls, 3);
  EXPECT_EQ(payloadCalls, 4);
}

struct CCallbackClient {
  void OnChange(INode*) { ++calls; }
  int calls = 0;
};

TEST(Callbacks, MemberCallbacksAndOutsideLockCallbacks) {
  CTestMap t("<Integer Name='A'><Value>0</Value></Integer>");
  CCallbackClient client;
  Register(t.Node("A"), client, &CCallbackClient::OnChange);
  bool lockFree = false;
  CLock* lock = &t.map._Ptr->GetLock();
  Register(
      t.Node("A"),
      [&](INode*) {
        // Another thread can take the lock: the callback runs after the node map released it.
        std::thread other([&] {
          lockFree = lock->TryLock();
          if (lockFree) lock->Unlock();
        });
        other.join();
      },
      cbPostOutsideLock);
  CIntegerPtr(t.Node("A"))->SetValue(1);
  EXPECT_EQ(client.calls, 1);
  EXPECT_TRUE(lockFree);
}

TEST(Callbacks, ThrowingCallbackDoesNotBreakTheWrite) {
  CTestMap t("<Integer Name='A'><Value>0</Value></Integer>");
  Register(t.Node("A"), [](INode*) { throw std::runtime_error("application error"); });
  CIntegerPtr(t.Node("A"))->SetValue(3);
  EXPECT_EQ(CIntegerPtr(t.Node("A"))->GetValue(), 3);
}

TEST(Callbacks, ACallbackMayDeregisterAnother) {
  CTestMap t("<Integer Name='A'><Value>0</Value></Integer>");
  INode* node = t.Node("A");
  int secondCalls = 0;
  CallbackHandleType second = 0;
  Register(node, [&](INode* n) { n->DeregisterCallback(second); });
  second = Register(node, [&](INode*) { ++secondCalls; });
  CIntegerPtr(node)->SetValue(1);
  EXPECT_EQ(secondCalls, 0) << "deregistered before its turn";
  CIntegerPtr(node)->SetValue(2);
  EXPECT_EQ(secondCalls, 0);
}

TEST(Selectors, SelectedFeaturesAndInvalidation) {
  CTestMap t("<Integer Name='Sel'><pSelected>Gain</pSelected><Value>0</Value></Integer>"
             "<Integer Name='Gain'><pValue>GainReg</pValue></Integer>"
             "<IntReg Name='GainReg'><Address>0</Address><pIndex Offset='4'>Sel</pIndex><Length>4</Length>"
             "<AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>");
  FeatureList_t selected;
  CSelectorPtr(t.Node("Sel"))->GetSelectedFeatures(selected);
  ASSERT_EQ(selected.size(), 1u);
  EXPECT_EQ(std::string(selected[0]->GetNode()->GetName()), "Gain");
  EXPECT_TRUE(CSelectorPtr(t.Node("Sel"))->IsSelector());
  FeatureList_t selecting;
  CSelectorPtr(t.Node("Gain"))->GetSelectingFeatures(selecting);
  EXPECT_EQ(selecting.size(), 1u);
  t.port.Poke32LE(4, 44);
  CIntegerPtr gain(t.Node("Gain"));
  EXPECT_EQ(gain->GetValue(), 0);
  int calls = 0;
  Register(t.Node("Gain"), [&](INode*) { ++calls; });
  CIntegerPtr(t.Node("Sel"))->SetValue(1);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(gain->GetValue(), 44);
}

}  // namespace
