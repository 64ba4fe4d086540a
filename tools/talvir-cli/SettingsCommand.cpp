#include "SettingsCommand.h"

#include "CameraSession.h"

#include <GenApi/GenApi.h>

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>

namespace TalvirCli {

CLI::App* CSettingsCommand::Register(CLI::App& app) {
  CLI::App* command = app.add_subcommand("settings", "Save a camera's settings to a file, or load them back");
  command->require_subcommand(1);
  m_save = command->add_subcommand("save", "Write every streamable, readable and writable feature to FILE");
  m_save->add_option("file", m_file, "Settings file to write")->required();
  m_save->add_flag("--all", m_all, "Every readable and writable feature, also those not marked streamable");
  m_camera.AddTo(*m_save, true);
  m_load = command->add_subcommand("load", "Set the features named in FILE; report those that cannot be set");
  m_load->add_option("file", m_file, "Settings file to read")->required();
  m_camera.AddTo(*m_load, true);
  return command;
}

int CSettingsCommand::Run(const SCommandContext& context) { return m_save->parsed() ? Save(context) : Load(context); }

int CSettingsCommand::Save(const SCommandContext& context) {
  // Check that the file can be written before the camera is touched, without truncating a file that is there: if
  // the camera then fails, an earlier settings file stays as it was.
  const bool existed = std::ifstream(m_file).good();
  if (!std::ofstream(m_file, std::ios::app)) {
    throw CCommandError("cannot write " + m_file + ": " + std::strerror(errno));
  }
  std::string text;
  std::vector<GenApi::SFeatureIssue> skipped;
  try {
    CCameraSession session;
    session.Open(m_camera);
    text = GenApi::SaveFeatures(session.NodeMap(m_camera.module), m_all ? GenApi::fsAllWritable : GenApi::fsStreamable,
                                &skipped);
  } catch (...) {
    if (!existed) {
      std::remove(m_file.c_str());
    }
    throw;
  }
  std::ofstream file(m_file, std::ios::trunc);
  file << text;
  file.close();
  if (!file) {
    throw CCommandError("cannot write " + m_file + ": " + std::strerror(errno));
  }
  for (const GenApi::SFeatureIssue& issue : skipped) {
    context.errors << "talvir-cli: warning: " << issue.Name << " not saved: " << issue.Reason << '\n';
  }
  size_t lines = 0;
  for (char c : text) {
    lines += c == '\n' ? 1 : 0;
  }
  context.out << "saved " << (lines > 0 ? lines - 1 : 0) << " settings lines to " << m_file << '\n';
  return 0;
}

int CSettingsCommand::Load(const SCommandContext& context) {
  std::ifstream file(m_file);
  if (!file) {
    throw CCommandError("cannot read " + m_file + ": " + std::strerror(errno));
  }
  std::ostringstream text;
  text << file.rdbuf();
  if (file.bad()) {
    throw CCommandError("cannot read " + m_file + ": " + std::strerror(errno));
  }
  CCameraSession session;
  session.Open(m_camera);
  const GenApi::CFeatureLoadResult result = GenApi::LoadFeatures(session.NodeMap(m_camera.module), text.str());
  for (const GenApi::SFeatureIssue& failure : result.Failures) {
    context.errors << "talvir-cli: " << m_file << ":" << failure.Line << ": cannot set " << failure.Name << " to '"
                   << failure.Value << "': " << failure.Reason << '\n';
  }
  context.out << "loaded " << result.Applied << " settings from " << m_file;
  if (!result.Failures.empty()) {
    context.out << ", " << result.Failures.size() << " could not be set";
  }
  context.out << '\n';
  return result.Failures.empty() ? 0 : 1;
}

}  // namespace TalvirCli
