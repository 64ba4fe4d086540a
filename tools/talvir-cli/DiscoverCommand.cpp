#include "DiscoverCommand.h"

#include "CliApp.h"
#include "DeviceTable.h"
#include "DiagnosticLines.h"
#include "DiscoveryReportPrinter.h"
#include "ProducerCheck.h"

#include <talvir/Talvir.h>

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstdlib>
#include <optional>

namespace TalvirCli {
namespace {

// Decimal or 0x-prefixed hexadecimal; nothing for anything else.
std::optional<uint64_t> ParseMask(const std::string& text) {
  if (text.empty() || text[0] == '-') {
    return std::nullopt;
  }
  errno = 0;
  char* end = nullptr;
  const unsigned long long value = std::strtoull(text.c_str(), &end, 0);
  if (errno != 0 || end == nullptr || *end != '\0') {
    return std::nullopt;
  }
  return static_cast<uint64_t>(value);
}

}  // namespace

CLI::App* CDiscoverCommand::Register(CLI::App& app) {
  CLI::App* command = app.add_subcommand("discover",
                                         "List the devices of the producers (.cti files) beside the library");
  CLI::Option* type =
      command
          ->add_option("--type,-t", m_type,
                       "Only producers of these transport-layer types: GEV 1, U3V 2, CL 4, CXP 8, IIDC 16, UVC 32, "
                       "CLHS 64, Ethernet 128, PCI 256 (511: every producer); decimal or 0x hexadecimal")
          ->check([](const std::string& text) {
            return ParseMask(text) ? std::string() : "needs a number (decimal or 0x hexadecimal), not '" + text + "'";
          });
  command->add_option("--producer,-p", m_producer, "Only the producer file NAME")->excludes(type);
  command->add_flag("--json", m_json, "Print the devices as JSON");
  command->add_flag("--verbose,-v", m_verbose,
                    "Also say why devices are missing: each producer, its interfaces, the rules applied and every "
                    "GenTL call that failed");
  return command;
}

int CDiscoverCommand::Run(const SCommandContext& context) {
  CDiagnosticLines failedCalls(m_verbose);
  TALVIR::Init();
  const std::optional<uint64_t> mask = m_type.empty() ? std::nullopt : ParseMask(m_type);
  std::list<TALVIR::ICameraInfo*> records = mask ? TALVIR::DiscoveryByTLType(*mask)
                                                 : TALVIR::Discovery(m_producer.empty() ? nullptr : m_producer.c_str());
  std::string problem;
  if (records.empty()) {
    // Finding nothing is an answer, unless there is nothing to ask or the producer asked for is broken.
    CProducerCheck check;
    if (!m_producer.empty()) {
      const std::string reason = check.Problem(m_producer);
      problem = reason.empty() ? std::string() : "producer " + m_producer + " failed: " + reason;
    } else if (!mask && check.ProducerFiles().empty() && !check.HasConfiguration()) {
      problem = check.ExplainNothingFound();
    }
  }
  // The report explains a failing producer too, so it is printed before the failure is.
  if (problem.empty() || m_verbose) {
    if (m_json) {
      PrintDeviceJson(context.out, records);
    } else {
      PrintDeviceTable(context.out, records);
      context.out << records.size() << (records.size() == 1 ? " device\n" : " devices\n");
    }
  }
  if (m_verbose) {
    PrintDiscoveryReport(context.out, TALVIR::GetDiscoveryReport(), failedCalls.Lines());
  }
  for (TALVIR::ICameraInfo* record : records) {
    record->Destroy();
  }
  TALVIR::UnInit();
  if (!problem.empty()) {
    throw CCommandError(problem);
  }
  return 0;
}

int RunDiscover(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& errors) {
  std::vector<std::string> line{"discover"};
  line.insert(line.end(), arguments.begin(), arguments.end());
  return RunCli(line, out, errors);
}

}  // namespace TalvirCli
