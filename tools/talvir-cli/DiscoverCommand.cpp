#include "DiscoverCommand.h"

#include "DeviceTable.h"
#include "DiagnosticLines.h"
#include "DiscoveryReportPrinter.h"

#include <talvir/Talvir.h>

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

} // namespace

int RunDiscover(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& errors) {
  std::optional<uint64_t> mask;
  std::optional<std::string> producer;
  bool verbose = false;
  for (size_t index = 0; index < arguments.size(); ++index) {
    const std::string& argument = arguments[index];
    const bool hasValue = index + 1 < arguments.size();
    if (argument == "--type" && hasValue) {
      mask = ParseMask(arguments[++index]);
      if (!mask) {
        errors << "talvir-cli: --type needs a number (decimal or 0x hexadecimal), not '" << arguments[index] << "'\n";
        return 2;
      }
    } else if (argument == "--producer" && hasValue) {
      producer = arguments[++index];
    } else if (argument == "--verbose") {
      verbose = true;
    } else {
      errors << "talvir-cli: unexpected argument '" << argument << "'\n";
      return 2;
    }
  }
  if (mask && producer) {
    errors << "talvir-cli: give either --type or --producer, not both\n";
    return 2;
  }

  CDiagnosticLines failedCalls(verbose);
  TALVIR::Init();
  std::list<TALVIR::ICameraInfo*> records =
      mask ? TALVIR::DiscoveryByTLType(*mask) : TALVIR::Discovery(producer ? producer->c_str() : nullptr);
  PrintDeviceTable(out, records);
  out << records.size() << (records.size() == 1 ? " device\n" : " devices\n");
  if (verbose) {
    PrintDiscoveryReport(out, TALVIR::GetDiscoveryReport(), failedCalls.Lines());
  }
  for (TALVIR::ICameraInfo* record : records) {
    record->Destroy();
  }
  TALVIR::UnInit();
  return 0;
}

} // namespace TalvirCli
