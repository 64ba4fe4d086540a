#include "SetCommand.h"

#include "CameraSession.h"
#include "FeatureAccess.h"

#include <CLI/CLI.hpp>

namespace TalvirCli {

CLI::App* CSetCommand::Register(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "set", "Set features (NAME=VALUE; enumerations by name; a command NAME alone is executed), in order");
  command->add_option("assignments", m_assignments, "NAME=VALUE pairs, or command names")->required();
  m_camera.AddTo(*command, true);
  return command;
}

int CSetCommand::Run(const SCommandContext& context) {
  std::vector<std::pair<std::string, std::string>> assignments;
  std::vector<bool> hasValue;
  for (const std::string& assignment : m_assignments) {
    assignments.push_back(SplitAssignment(assignment, true));
    hasValue.push_back(assignment.find('=') != std::string::npos);
  }
  CCameraSession session;
  session.Open(m_camera);
  GenApi::INodeMap& map = session.NodeMap(m_camera.module);
  for (size_t index = 0; index < assignments.size(); ++index) {
    const auto& [name, value] = assignments[index];
    GenApi::INode* node = FindFeature(map, name, m_camera.module);
    const bool command = node->GetPrincipalInterfaceType() == GenApi::intfICommand;
    if (!hasValue[index] && !command) {
      throw CUsageError("'" + name + "' needs a value (NAME=VALUE); only commands are given alone");
    }
    SetFeature(map, name, value, m_camera.module);
    if (command) {
      context.out << name << " executed\n";
    } else if (!GenApi::IsReadable(node)) {
      context.out << name << " set\n";  // write-only: nothing to read back
    } else {
      context.out << name << " = " << std::string(GenApi::CValuePtr(node)->ToString()) << '\n';
    }
  }
  return 0;
}

}  // namespace TalvirCli
