#pragma once
// One use of the library by a command: Init on construction, the chosen camera opened, everything released and
// UnInit on destruction. Failures become CCommandError with what went wrong and why.
#include "CameraOptions.h"

#include <talvir/Talvir.h>

#include <list>
#include <string>

namespace GenApi {
struct INodeMap;
}

namespace TalvirCli {

class CCameraSession {
public:
  CCameraSession();
  ~CCameraSession();
  CCameraSession(const CCameraSession&) = delete;
  CCameraSession& operator=(const CCameraSession&) = delete;

  // Discovers, picks the camera the options name, creates and opens it.
  TALVIR::ICamera& Open(const SCameraOptions& options);
  // The node map of a module of the open camera ("system", "interface", "device", "remote", "stream").
  GenApi::INodeMap& NodeMap(const std::string& module);
  // "serial SIM00001" or "index 0", for messages.
  static std::string Describe(const SCameraOptions& options);

private:
  TALVIR::ICameraInfo* Choose(const SCameraOptions& options);

  std::list<TALVIR::ICameraInfo*> m_records;
  TALVIR::ICamera* m_camera = nullptr;
};

}  // namespace TalvirCli
