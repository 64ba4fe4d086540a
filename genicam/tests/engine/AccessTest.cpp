// Access modes: implemented, available, locked, imposed, register and port modes, and port failures.
#include <gtest/gtest.h>

#include "MemoryPort.h"

using namespace EngineTest;
using GenApi::CIntegerPtr;

namespace {

const std::string kReg =
    "<IntReg Name='R'><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>";

TEST(Access, ImplementedAvailableAndLocked) {
  CTestMap t("<Integer Name='I'><pIsImplemented>Impl</pIsImplemented><pIsAvailable>Avail</pIsAvailable>"
             "<pIsLocked>Lock</pIsLocked><pValue>R</pValue></Integer>"
             "<Integer Name='Impl'><Value>1</Value></Integer><Integer Name='Avail'><Value>1</Value></Integer>"
             "<Integer Name='Lock'><Value>0</Value></Integer>" +
             kReg);
  CIntegerPtr i(t.Node("I"));
  EXPECT_EQ(i->GetAccessMode(), GenApi::RW);
  CIntegerPtr(t.Node("Lock"))->SetValue(1);
  EXPECT_EQ(i->GetAccessMode(), GenApi::RO) << "a locked feature becomes read-only";
  EXPECT_THROW(i->SetValue(1), GenICam::AccessException);
  CIntegerPtr(t.Node("Avail"))->SetValue(0);
  EXPECT_EQ(i->GetAccessMode(), GenApi::NA);
  EXPECT_FALSE(GenApi::IsReadable(i));
  EXPECT_TRUE(GenApi::IsImplemented(i));
  CIntegerPtr(t.Node("Impl"))->SetValue(0);
  EXPECT_EQ(i->GetAccessMode(), GenApi::NI);
  const std::string error = ErrorOf([&] { i->GetValue(); });
  EXPECT_NE(error.find("'I'"), std::string::npos) << error;
}

TEST(Access, ImposedAccessModeAndReadOnlyRegisters) {
  CTestMap t("<Integer Name='I'><ImposedAccessMode>RO</ImposedAccessMode><pValue>R</pValue></Integer>"
             "<Integer Name='J'><pValue>RoReg</pValue></Integer>" +
             kReg +
             "<IntReg Name='RoReg'><Address>8</Address><Length>4</Length><AccessMode>RO</AccessMode>"
             "<pPort>Device</pPort></IntReg>");
  EXPECT_EQ(CIntegerPtr(t.Node("I"))->GetAccessMode(), GenApi::RO);
  EXPECT_EQ(CIntegerPtr(t.Node("J"))->GetAccessMode(), GenApi::RO);
  const std::string error = ErrorOf([&] { CIntegerPtr(t.Node("J"))->SetValue(17); });
  EXPECT_NE(error.find("'J'"), std::string::npos) << error;
  EXPECT_NE(error.find("not writable"), std::string::npos) << error;
  EXPECT_NE(error.find("value 17"), std::string::npos) << error;
}

TEST(Access, TheTargetsModeReachesTheFeature) {
  CTestMap t("<Integer Name='I'><pValue>Hidden</pValue></Integer>"
             "<Integer Name='Hidden'><pIsImplemented>Zero</pIsImplemented><Value>1</Value></Integer>"
             "<Integer Name='Zero'><Value>0</Value></Integer>");
  EXPECT_EQ(CIntegerPtr(t.Node("I"))->GetAccessMode(), GenApi::NI);
}

TEST(Access, PortModeAndUnconnectedPorts) {
  CTestMap t(kReg + "<Port Name='Other'/><IntReg Name='O'><Address>0</Address><Length>4</Length>"
                    "<AccessMode>RW</AccessMode><pPort>Other</pPort></IntReg>");
  EXPECT_EQ(CIntegerPtr(t.Node("O"))->GetAccessMode(), GenApi::NA) << "no port connected";
  t.port.SetAccessMode(GenApi::RO);
  t.map._InvalidateNodes();
  EXPECT_EQ(CIntegerPtr(t.Node("R"))->GetAccessMode(), GenApi::RO);
  EXPECT_TRUE(t.map._Connect(&t.port, "Other"));
  EXPECT_EQ(CIntegerPtr(t.Node("O"))->GetAccessMode(), GenApi::RO);
  EXPECT_FALSE(t.map._Connect(&t.port, "NoSuchPort"));
}

TEST(Access, PortReadFailuresReachTheCallerAndLeaveTheMapUsable) {
  CTestMap t(kReg);
  CIntegerPtr r(t.Node("R"));
  t.port.FailReads(true);
  try {
    r->GetValue();
    FAIL() << "no exception";
  } catch (const GenICam::GenericException& error) {
    EXPECT_NE(std::string(error.GetDescription()).find("Read address"), std::string::npos);
  }
  t.port.FailReads(false);
  t.port.Poke32LE(0, 9);
  EXPECT_EQ(r->GetValue(), 9);
}

TEST(Access, FailedWriteDoesNotLeaveTheNewValueInTheCache) {
  CTestMap t(kReg);
  CIntegerPtr r(t.Node("R"));
  t.port.Poke32LE(0, 3);
  EXPECT_EQ(r->GetValue(), 3);
  t.port.FailWrites(true);
  EXPECT_THROW(r->SetValue(4), GenICam::GenericException);
  t.port.FailWrites(false);
  EXPECT_EQ(r->GetValue(), 3);
}

TEST(Access, CombineKeepsTheStricterMode) {
  using namespace GenApi;
  EXPECT_EQ(Combine(RW, RO), RO);
  EXPECT_EQ(Combine(RW, WO), WO);
  EXPECT_EQ(Combine(RO, WO), NA);
  EXPECT_EQ(Combine(NA, RW), NA);
  EXPECT_EQ(Combine(RW, NI), NI);
  EXPECT_EQ(Combine(RW, RW), RW);
}

}  // namespace
