// Serial-port probing: the port filters with Windows-shaped port IDs and friendly names, the probe answers, and the
// cached lists.
#include "cl/CLProber.h"
#include "cl/CLCachedLists.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace TALVIR {
namespace {

const std::string kTemplate = "/opt/talvir/./CLProtocol/Linux64_x64#libTavCLProtocolGenCP.so#KORIX#GENCP02";

TEST(CLProber, OwnAdapterFriendlyNameExcludesItsComNumberOnly) {
  std::list<CLProbeRecord> results;
  CCLProber prober(kTemplate, &results, {"Tav Serial Port (COM12)", "Other USB Serial (COM3)"});
  EXPECT_TRUE(prober.IsExcludedPort("COM12"));
  EXPECT_TRUE(prober.IsExcludedPort("COM012"));
  EXPECT_TRUE(prober.IsExcludedPort("COM_Port#COM12"));
  EXPECT_TRUE(prober.IsExcludedPort("COM12 "));
  EXPECT_FALSE(prober.IsExcludedPort("COM1"));
  EXPECT_FALSE(prober.IsExcludedPort("COM120"));
  EXPECT_FALSE(prober.IsExcludedPort("COM3"));
}

TEST(CLProber, FriendlyNamesAreComparedInLowerCaseButPortIdsInUpperCase) {
  std::list<CLProbeRecord> results;
  CCLProber prober(kTemplate, &results, {"TAV USB Serial (com7)"});
  EXPECT_TRUE(prober.IsExcludedPort("COM7"));
  EXPECT_TRUE(prober.IsExcludedPort("COM07"));
  EXPECT_FALSE(prober.IsExcludedPort("com7"));
}

TEST(CLProber, LinuxFriendlyNamesExcludeNothing) {
  std::list<CLProbeRecord> results;
  CCLProber prober(kTemplate, &results, {"FT232R USB UART (/dev/ttyUSB0)", "ttyS0 (/dev/ttyS0)"});
  EXPECT_FALSE(prober.IsExcludedPort("COM_Port#/dev/ttyUSB0"));
  EXPECT_FALSE(prober.IsExcludedPort("COM_Port#/dev/ttyS0"));
}

TEST(CLProber, GrabberSerialChannelsAreExcludedAsAWholeString) {
  std::list<CLProbeRecord> results;
  CCLProber prober(kTemplate, &results, {});
  EXPECT_TRUE(prober.IsExcludedPort("KORIX#CL_GRABBER#SERIAL0.1"));
  EXPECT_TRUE(prober.IsExcludedPort("KORIX#CL_GRABBER#SERIAL12.3"));
  EXPECT_FALSE(prober.IsExcludedPort("KORIX#CL_GRABBER#SERIAL0.1x"));
  EXPECT_FALSE(prober.IsExcludedPort("xKORIX#CL_GRABBER#SERIAL0.1"));
}

TEST(CLProber, ADuplicateComNumberIsSkippedEvenWhenTheFirstProbeFailed) {
  std::list<CLProbeRecord> results;
  CCLProber prober(kTemplate, &results, {});
  std::vector<std::string> probed;
  prober.ProbeAll(
      {"COM_Port#COM3", "COM_Port#COM03", "COM_Port#/dev/ttyS0", "COM_Port#/dev/ttyS0", "KORIX#CL_GRABBER#SERIAL0.0"},
      [&](const std::string& port, const std::string& deviceIdTemplate, unsigned timeoutMs) -> std::string {
        probed.push_back(port);
        EXPECT_EQ(deviceIdTemplate, kTemplate);
        EXPECT_EQ(timeoutMs, 500u);
        throw std::runtime_error("no camera");
      });
  // Ports without a COM number are never duplicates: both /dev/ttyS0 entries are probed.
  EXPECT_EQ(probed, (std::vector<std::string>{"COM_Port#COM3", "COM_Port#/dev/ttyS0", "COM_Port#/dev/ttyS0"}));
  EXPECT_TRUE(results.empty());
}

TEST(CLProber, AnswerBecomesARecord) {
  std::list<CLProbeRecord> results;
  CCLProber prober(kTemplate, &results, {});
  prober.AddProbeResult("COM1", "C:\\drv\\TavCLProtocolGenCP.dll#Mfr#Fam#Mod#1.0#SN1");
  prober.AddProbeResult("COM2", "C:\\drv\\TavCLProtocolGenCP.dll#Mfr#Fam#Mod#1.0#SN1#X");
  prober.AddProbeResult("COM_Port#/dev/pts/3", "/opt/t/CLProtocol/Linux64_x64/libTavCLProtocolGenCP.so#K#F#M#2#S");
  ASSERT_EQ(results.size(), 3u);
  const CLProbeRecord& first = results.front();
  EXPECT_STREQ(first.portId, "COM1");
  EXPECT_STREQ(first.deviceId, "C:\\drv#TavCLProtocolGenCP.dll#KORIX#GENCP02");
  EXPECT_STREQ(first.manufacturer, "Mfr");
  EXPECT_STREQ(first.family, "Fam");
  EXPECT_STREQ(first.model, "Mod");
  EXPECT_STREQ(first.version, "1.0");
  EXPECT_STREQ(first.serialNumber, "SN1");
  EXPECT_STREQ(first.extra, "");
  EXPECT_STREQ((++results.begin())->extra, "X");
  EXPECT_STREQ(results.back().deviceId, "/opt/t/CLProtocol/Linux64_x64#libTavCLProtocolGenCP.so#KORIX#GENCP02");
}

TEST(CLProber, ShortOrLongAnswersArePrintedAndAddNothing) {
  std::list<CLProbeRecord> results;
  CCLProber prober(kTemplate, &results, {});
  testing::internal::CaptureStdout();
  prober.AddProbeResult("COM1", "a#b#c#d#e");
  prober.AddProbeResult("COM2", "a#b#c#d#e#f#g#h");
  const std::string printed = testing::internal::GetCapturedStdout();
  EXPECT_EQ(printed, "ERR-->: COM1: a#b#c#d#e\nERR-->: COM2: a#b#c#d#e#f#g#h\n");
  EXPECT_TRUE(results.empty());
}

TEST(CLProber, AnswerWithoutManufacturerAndModelAddsNothingSilently) {
  std::list<CLProbeRecord> results;
  CCLProber prober(kTemplate, &results, {});
  testing::internal::CaptureStdout();
  prober.AddProbeResult("COM1", "p##f###s");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_TRUE(results.empty());
}

TEST(CLProber, AFieldLongerThan255BytesIsLeftEmptyNotCut) {
  std::list<CLProbeRecord> results;
  CCLProber prober(kTemplate, &results, {});
  const std::string longModel(256, 'M');
  prober.AddProbeResult("COM1", ("d\\x.dll#Mfr#Fam#" + longModel + "#1#S").c_str());
  ASSERT_EQ(results.size(), 1u);
  EXPECT_STREQ(results.front().model, "");
  EXPECT_STREQ(results.front().manufacturer, "Mfr");
  prober.AddProbeResult("COM2", ("d\\x.dll#Mfr#Fam#" + std::string(255, 'M') + "#1#S").c_str());
  EXPECT_EQ(std::string(results.back().model), std::string(255, 'M'));
}

TEST(CLCachedLists, AnEmptyResultIsAskedForAgainAndAFullOneIsKept) {
  std::list<std::string> cache;
  int calls = 0;
  std::vector<std::string> next;
  const auto fill = [&](std::vector<std::string>& out) {
    ++calls;
    out = next;
  };
  EXPECT_TRUE(CachedList(cache, fill).empty());
  next = {"COM_Port#/dev/ttyS0", "KORIX#CL_GRABBER#SERIAL0.0"};
  EXPECT_EQ(CachedList(cache, fill), (std::list<std::string>{"COM_Port#/dev/ttyS0", "KORIX#CL_GRABBER#SERIAL0.0"}));
  next = {"other"};
  EXPECT_EQ(CachedList(cache, fill).size(), 2u);
  EXPECT_EQ(calls, 2);
}

TEST(CLCachedLists, AFailingFillKeepsWhatItGaveBefore) {
  std::list<std::string> cache;
  const auto failing = [](std::vector<std::string>&) { throw std::runtime_error("library failed"); };
  EXPECT_TRUE(CachedList(cache, failing).empty());
}

}  // namespace
}  // namespace TALVIR
