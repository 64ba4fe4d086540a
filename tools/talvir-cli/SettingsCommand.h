#pragma once
// "talvir-cli settings save FILE [--all]" and "talvir-cli settings load FILE": a camera's settings as a text file
// of "Name<TAB>Value" lines (see GenApi/Persistence.h).
#include "CameraOptions.h"
#include "Command.h"

#include <string>

namespace TalvirCli {

class CSettingsCommand final : public CCommand {
public:
  CLI::App* Register(CLI::App& app) override;
  int Run(const SCommandContext& context) override;

private:
  int Save(const SCommandContext& context);
  int Load(const SCommandContext& context);

  CLI::App* m_save = nullptr;
  CLI::App* m_load = nullptr;
  SCameraOptions m_camera;
  std::string m_file;
  bool m_all = false;
};

}  // namespace TalvirCli
