#include "GetCommand.h"

#include "CameraSession.h"
#include "FeatureAccess.h"

#include <CLI/CLI.hpp>

namespace TalvirCli {

CLI::App* CGetCommand::Register(CLI::App& app) {
  CLI::App* command = app.add_subcommand("get", "Print the values of features");
  command->add_option("names", m_names, "Feature names")->required();
  m_camera.AddTo(*command, true);
  command->add_flag("--json", m_json, "Print each feature as JSON (value, range, unit, access)");
  return command;
}

int CGetCommand::Run(const SCommandContext& context) {
  CCameraSession session;
  session.Open(m_camera);
  GenApi::INodeMap& map = session.NodeMap(m_camera.module);
  // Every name is checked before anything is printed, so that a typo does not leave half an answer.
  std::vector<SFeatureDescription> features;
  for (const std::string& name : m_names) {
    features.push_back(Describe(FindFeature(map, name, m_camera.module)));
  }
  for (const SFeatureDescription& feature : features) {
    if (!feature.error.empty()) {
      throw CCommandError("cannot read " + feature.name + ": " + feature.error);
    }
    if (feature.type == "Command" || feature.type == "Category") {
      throw CCommandError("cannot read " + feature.name + ": it is a " + feature.type + ", which has no value");
    }
    if (feature.value.empty() && feature.access != "RO" && feature.access != "RW") {
      throw CCommandError("cannot read " + feature.name + ": it is not readable now (access mode " + feature.access +
                          ")");
    }
  }
  if (m_json) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const SFeatureDescription& feature : features) {
      list.push_back(ToJson(feature));
    }
    context.out << nlohmann::ordered_json{{"features", list}}.dump(2, ' ', false,
                                                                   nlohmann::json::error_handler_t::replace)
                << '\n';
  } else {
    for (const SFeatureDescription& feature : features) {
      context.out << feature.name << " = " << feature.value << (feature.unit.empty() ? "" : " " + feature.unit) << '\n';
    }
  }
  return 0;
}

}  // namespace TalvirCli
