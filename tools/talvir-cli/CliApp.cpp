#include "CliApp.h"

#include "BenchCommand.h"
#include "ClSubcommand.h"
#include "DiscoverCommand.h"
#include "FeaturesCommand.h"
#include "GetCommand.h"
#include "GrabCommand.h"
#include "SetCommand.h"
#include "SettingsCommand.h"
#include "WatchCommand.h"

#include <CLI/CLI.hpp>
#include <GCBase/GCException.h>

#include <algorithm>
#include <memory>

namespace TalvirCli {

int RunCli(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& errors, bool terminal) {
  CLI::App app("talvir-cli: find cameras, read and set their features, grab and save images, measure streaming, "
               "save and load settings.",
               "talvir-cli");
  app.require_subcommand(1);
  // The same command lines on every system: on Windows a path such as /data/camera.txt stays a path instead of
  // reading as a "/option". Subcommands take this setting from the app when they are added.
  app.allow_windows_style_options(false);
  app.set_help_all_flag("--help-all", "Print the help of every command");
  std::vector<std::unique_ptr<CCommand>> commands;
  commands.push_back(std::make_unique<CDiscoverCommand>());
  commands.push_back(std::make_unique<CFeaturesCommand>());
  commands.push_back(std::make_unique<CGetCommand>());
  commands.push_back(std::make_unique<CSetCommand>());
  commands.push_back(std::make_unique<CGrabCommand>());
  commands.push_back(std::make_unique<CBenchCommand>());
  commands.push_back(std::make_unique<CSettingsCommand>());
  commands.push_back(std::make_unique<CWatchCommand>());
  commands.push_back(std::make_unique<CClSubcommand>());
  std::vector<CLI::App*> subcommands;
  for (const auto& command : commands) {
    subcommands.push_back(command->Register(app));
  }

  std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());  // the parser takes them last first
  try {
    app.parse(reversed);
  } catch (const CLI::CallForHelp& help) {
    return app.exit(help, out, errors);
  } catch (const CLI::CallForAllHelp& help) {
    return app.exit(help, out, errors);
  } catch (const CLI::ParseError& error) {
    std::string message = error.what();
    std::replace(message.begin(), message.end(), '\n', ' ');
    errors << "talvir-cli: " << message << " (see talvir-cli --help)\n";
    return 2;
  }

  const SCommandContext context{out, errors, terminal};
  for (size_t index = 0; index < commands.size(); ++index) {
    if (!subcommands[index]->parsed()) {
      continue;
    }
    try {
      return commands[index]->Run(context);
    } catch (const CUsageError& error) {
      errors << "talvir-cli: " << error.what() << "\n";
      return 2;
    } catch (const CCommandError& error) {
      errors << "talvir-cli: " << error.what() << "\n";
      return 1;
    } catch (const GenICam::GenericException& error) {
      errors << "talvir-cli: " << error.GetDescription() << "\n";
      return 1;
    } catch (const std::exception& error) {
      errors << "talvir-cli: " << error.what() << "\n";
      return 1;
    }
  }
  errors << "talvir-cli: no command given (see talvir-cli --help)\n";
  return 2;
}

}  // namespace TalvirCli
