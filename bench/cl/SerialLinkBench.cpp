// A Camera Link camera's serial link over a pseudo-terminal, with the simulated camera pacing its bytes at the line
// rate (10 bits a byte) as a real serial line would:
// - a register read's round trip against the wire time of the bytes sent and received;
//   counters: wire_ms (that wire time), goal_ms (1.2 x wire time + 1 ms), ratio (measured / wire time);
// - the download of the camera's description file (plain, about 7 KB) on a fresh connection against the line's byte
//   rate; counters: bytes, efficiency (description bytes a second / line bytes a second).
// "--pace=0" turns the pacing off (a pseudo-terminal alone has no wire delay), to see the software's own cost.
#include "GenCPPacket.h"
#include "SerialCameraServer.h"

#include <CLProtocol/CLPort.h>
#include <CLProtocol/CLSerialApi.h>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstring>
#include <map>
#include <memory>
#include <stdexcept>

#include <stdlib.h>

namespace {

using TalvirSerialCam::CSerialCameraServer;
using TalvirSerialCam::SCameraConfig;

bool g_pace = true;
constexpr uint64_t kWidthAddress = 0x10000;
constexpr double kBitsPerByte = 10.0;

// A camera offering 9600 baud and `baud`, paced or not, and a port connected to it (which switches to `baud`).
class CLink {
public:
  explicit CLink(uint32_t baud) {
    SCameraConfig config;
    config.paceAtLineRate = g_pace;
    config.zippedFirst = false;
    config.supportedRates = CLProtocol::CL_BAUDRATE_9600 | CLProtocol::BitOfBaudRate(baud);
    m_server = std::make_unique<CSerialCameraServer>(config);
    std::string error;
    if (!m_server->Start(error)) {
      throw std::runtime_error(error);
    }
    // Every camera made so far stays listed: each link connects again for each download.
    static std::string ports;
    ports += (ports.empty() ? "" : ":") + m_server->PortPath();
    setenv("TALVIR_SERIAL_PORTS", ports.c_str(), 1);
    GenICam::gcstring_vector templates;
    CLProtocol::CCLPort::GetDeviceIDTemplates(templates);
    for (const GenICam::gcstring& entry : templates) {
      if (entry.find("#libTavCLProtocolGenCP.so#KORIX#GENCP02") != std::string::npos) {
        m_driver = entry;
      }
    }
    m_port.Connect(m_driver, "COM_Port#" + m_server->PortPath());
  }
  // A new connection: the driver keeps a description it downloaded for the rest of a connection.
  void Reconnect() {
    m_port.Disconnect();
    m_port.Connect(m_driver, "COM_Port#" + m_server->PortPath());
  }
  CLProtocol::CCLPort& Port() { return m_port; }
  // The rate the camera ended up at (the switch at connection may fall back).
  uint32_t CameraBaud() const { return CLProtocol::BaudRateOfBit(m_server->Statistics().rateBit); }

private:
  std::unique_ptr<CSerialCameraServer> m_server;
  std::string m_driver;
  CLProtocol::CCLPort m_port;
};

// Closed by main before exit: the serial libraries' own static state goes at exit, before a static of ours would.
std::map<uint32_t, std::unique_ptr<CLink>> g_links;

CLink& LinkAt(uint32_t baud) {
  auto& link = g_links[baud];
  if (!link) {
    link = std::make_unique<CLink>(baud);
  }
  return *link;
}

double WireMs(size_t bytes, uint32_t baud) { return static_cast<double>(bytes) * kBitsPerByte * 1000.0 / baud; }

void BM_RegisterRead(benchmark::State& state) {
  const auto baud = static_cast<uint32_t>(state.range(0));
  CLink& link = LinkAt(baud);
  using namespace CLProtocol::GenCP;
  SPacket command;
  command.scd = ReadMemScd(kWidthAddress, 4);
  const size_t sent = Encode(command).size();
  const size_t received = kHeaderSize + 4;
  double totalMs = 0;
  for (auto _ : state) {
    uint32_t value = 0;
    const auto start = std::chrono::steady_clock::now();
    link.Port().Read(&value, kWidthAddress, sizeof value);
    totalMs += std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    benchmark::DoNotOptimize(value);
  }
  const double wire = WireMs(sent + received, baud);
  const double measured = totalMs / static_cast<double>(state.iterations());
  state.counters["camera_baud"] = link.CameraBaud();
  state.counters["wire_ms"] = wire;
  state.counters["goal_ms"] = 1.2 * wire + 1.0;
  state.counters["round_trip_ms"] = measured;
  state.counters["ratio"] = measured / wire;
  state.counters["bytes_on_line"] = static_cast<double>(sent + received);
}

void BM_DescriptionDownload(benchmark::State& state) {
  const auto baud = static_cast<uint32_t>(state.range(0));
  CLink& link = LinkAt(baud);
  size_t bytes = 0;
  double totalSeconds = 0;
  for (auto _ : state) {
    state.PauseTiming();
    link.Reconnect();
    state.ResumeTiming();
    const auto start = std::chrono::steady_clock::now();
    const GenICam::gcstring description = link.Port().GetXML(false);
    totalSeconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    bytes = description.size();
  }
  const double rate = static_cast<double>(bytes) * static_cast<double>(state.iterations()) / totalSeconds;
  state.counters["bytes"] = static_cast<double>(bytes);
  state.counters["camera_baud"] = link.CameraBaud();
  state.counters["bytes_per_s"] = rate;
  state.counters["line_bytes_per_s"] = baud / kBitsPerByte;
  state.counters["efficiency"] = rate / (baud / kBitsPerByte);
}

BENCHMARK(BM_RegisterRead)->Arg(9600)->Arg(115200)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);
BENCHMARK(BM_DescriptionDownload)->Arg(115200)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);
BENCHMARK(BM_DescriptionDownload)->Arg(9600)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);

}  // namespace

int main(int argc, char** argv) {
  // Our own option first: --pace=0 serves without line pacing.
  int kept = 1;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--pace=0") == 0) {
      g_pace = false;
    } else if (std::strcmp(argv[i], "--pace=1") == 0) {
      g_pace = true;
    } else {
      argv[kept++] = argv[i];
    }
  }
  argc = kept;
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 1;
  }
  benchmark::RunSpecifiedBenchmarks();
  g_links.clear();
  benchmark::Shutdown();
  return 0;
}
