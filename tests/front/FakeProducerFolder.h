#pragma once
// A temporary folder that plays "beside the library" for a manager under test: links to builds of the fake
// producer under any file name, other files, and the discovery configuration.
#include "support/TempDirectory.h"
#include "support/TestSystem.h"

#include "FakeProducerModule.h"

#include <filesystem>
#include <string>

namespace TALVIR::Testing {

class CFakeProducerFolder {
public:
  // A link named `name` to the fake producer build `build`. Links to one build share that build's state: the
  // loader sees one file.
  void LinkProducer(const std::string& name, const std::string& build = "TalvirFake.cti") const {
    LinkFile(CFakeProducerModule::Directory() + build, m_folder.Path() / name);
  }
  void WriteConfig(const std::string& text) const { m_folder.WriteFile("DiscoveryCfg.ini", text); }
  void WriteFile(const std::string& name, const std::string& content) const { m_folder.WriteFile(name, content); }
  // The folder with its trailing separator, as the manager expects it.
  std::string Directory() const { return m_folder.Directory(); }
  const std::filesystem::path& Path() const { return m_folder.Path(); }

private:
  CTempDirectory m_folder;
};

}  // namespace TALVIR::Testing
