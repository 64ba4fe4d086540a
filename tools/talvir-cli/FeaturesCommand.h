#pragma once
// "talvir-cli features [camera options] [--module M] [--filter TEXT] [--json]": the feature tree of a module, by
// category, with type, access mode, value, range and unit.
#include "CameraOptions.h"
#include "Command.h"
#include "FeatureAccess.h"

namespace TalvirCli {

class CFeaturesCommand final : public CCommand {
public:
  CLI::App* Register(CLI::App& app) override;
  int Run(const SCommandContext& context) override;

private:
  struct SRow {
    int depth;
    SFeatureDescription feature;
  };
  // Adds the category's features (depth-first); returns whether any of them passed the filter.
  bool Collect(GenApi::INode* category, int depth, std::vector<SRow>& rows, std::vector<GenApi::INode*>& path) const;
  bool Matches(const std::string& name) const;
  static void PrintText(std::ostream& out, const std::vector<SRow>& rows);
  static void PrintJson(std::ostream& out, const std::vector<SRow>& rows);

  SCameraOptions m_camera;
  std::string m_filter;
  bool m_json = false;
};

}  // namespace TalvirCli
