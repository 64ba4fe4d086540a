#include "support/TestSystem.h"

#include <random>
#include <stdexcept>
#include <system_error>

namespace TALVIR::Testing {

std::string ModuleFileName(const std::string& base) { return kWindows ? base + ".dll" : "lib" + base + ".so"; }

std::string ProgramFileName(const std::string& base) { return kWindows ? base + ".exe" : base; }

const char* CLProtocolPlatformFolder() { return kWindows ? "Win64_x64" : "Linux64_x64"; }

const char* OtherCLProtocolPlatformFolder() { return kWindows ? "Linux64_x64" : "Win64_x64"; }

void LinkFile(const std::filesystem::path& target, const std::filesystem::path& link) {
  std::error_code symbolic;
  std::filesystem::create_symlink(target, link, symbolic);
  if (!symbolic) {
    return;
  }
  std::error_code hard;
  std::filesystem::create_hard_link(target, link, hard);
  if (hard) {
    throw std::runtime_error("cannot link " + link.string() + " to " + target.string() +
                             ": symbolic link: " + symbolic.message() + "; hard link: " + hard.message());
  }
}

bool CanMakeSymbolicLinks() {
  static const bool allowed = [] {
    std::error_code error;
    const std::filesystem::path probe = std::filesystem::temp_directory_path(error) /
                                        ("talvir-link-probe-" + std::to_string(std::random_device()()));
    if (error) {
      return false;
    }
    std::filesystem::create_symlink("absent-target", probe, error);
    const bool made = !error;
    std::filesystem::remove(probe, error);
    return made;
  }();
  return allowed;
}

}  // namespace TALVIR::Testing
