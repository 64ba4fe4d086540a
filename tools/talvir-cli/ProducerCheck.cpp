#include "ProducerCheck.h"

#include "HostSystem.h"

#include "gentl/GenTLFunctionTable.h"
#include "platform/DirectoryListing.h"
#include "platform/DynamicModule.h"
#include "platform/FileStatus.h"
#include "platform/ModuleOfAddress.h"

#include <talvir/Talvir.h>

namespace TalvirCli {

CProducerCheck::CProducerCheck() {
  const std::string library = TALVIR::Platform::ModulePathOf(reinterpret_cast<const void*>(&TALVIR::Init));
  const size_t separator = library.find_last_of(CHostSystem::PathSeparators());
  if (separator != std::string::npos) {
    m_folder = library.substr(0, separator + 1);
  }
}

std::vector<std::string> CProducerCheck::ProducerFiles() const {
  return m_folder.empty() ? std::vector<std::string>() : TALVIR::Platform::ListFilesWithExtension(m_folder, "cti");
}

bool CProducerCheck::HasConfiguration() const {
  return !m_folder.empty() && TALVIR::Platform::PathExists(m_folder + "DiscoveryCfg.ini");
}

std::string CProducerCheck::Problem(const std::string& file) const {
  if (!TALVIR::Platform::PathExists(m_folder + file)) {
    return "there is no such file in " + m_folder;
  }
  TALVIR::Platform::CDynamicModule module(m_folder + file);
  if (!module.IsLoaded()) {
    return "it cannot be loaded (" + TALVIR::Platform::LastModuleError() + ")";
  }
  for (size_t index = 0; index < TALVIR::kGenTLFunctionCount; ++index) {
    if (TALVIR::IsRequiredGenTLFunction(index) &&
        TALVIR::Platform::FindSymbol(module.Handle(), TALVIR::GenTLFunctionName(index)) == nullptr) {
      return std::string("it is not a GenTL producer: it lacks the function ") + TALVIR::GenTLFunctionName(index);
    }
  }
  return std::string();
}

std::vector<SProducerProblem> CProducerCheck::Problems(const std::string& onlyFile) const {
  std::vector<SProducerProblem> problems;
  const std::vector<std::string> files = onlyFile.empty() ? ProducerFiles() : std::vector<std::string>{onlyFile};
  for (const std::string& file : files) {
    std::string reason = Problem(file);
    if (!reason.empty()) {
      problems.push_back({file, std::move(reason)});
    }
  }
  return problems;
}

std::string CProducerCheck::ExplainNothingFound(const std::string& onlyFile) const {
  if (m_folder.empty()) {
    return "the library's folder cannot be found, so neither can its producers";
  }
  if (onlyFile.empty() && ProducerFiles().empty() && !HasConfiguration()) {
    return "no producers: there is no .cti file beside the library in " + m_folder;
  }
  const std::vector<SProducerProblem> problems = Problems(onlyFile);
  if (problems.size() == 1) {
    return "producer " + problems[0].file + " failed: " + problems[0].reason;
  }
  if (!problems.empty()) {
    std::string text = "no device found; producers that failed to load:";
    for (const SProducerProblem& problem : problems) {
      text += " " + problem.file + " (" + problem.reason + ")";
      text += &problem == &problems.back() ? "" : ";";
    }
    return text;
  }
  return "the producers in " + m_folder + " found no device";
}

}  // namespace TalvirCli
