#pragma once
// Why discovery found nothing: the library reports no reasons, so the command line looks for itself. It finds the
// library's folder, lists the producers there and tries to load each one the way the library does, to name the
// one that is broken and what is wrong with it.
#include <string>
#include <vector>

namespace TalvirCli {

struct SProducerProblem {
  std::string file;    // producer file name
  std::string reason;  // what is wrong, in words
};

class CProducerCheck {
public:
  CProducerCheck();
  // The folder of the loaded libTalvir (with a trailing separator); empty if it cannot be told.
  const std::string& LibraryFolder() const { return m_folder; }
  // The producer files (*.cti) in the library's folder.
  std::vector<std::string> ProducerFiles() const;
  // Whether a DiscoveryCfg.ini beside the library chooses the producers.
  bool HasConfiguration() const;
  // Empty when the producer loads and has every required GenTL function; else why not.
  std::string Problem(const std::string& file) const;
  // The problems of every producer file (or of the one named).
  std::vector<SProducerProblem> Problems(const std::string& onlyFile = std::string()) const;
  // One sentence for "no device found": no producers at all, or which producers failed to load.
  std::string ExplainNothingFound(const std::string& onlyFile = std::string()) const;

private:
  std::string m_folder;
};

}  // namespace TalvirCli
