#include "HostSystem.h"

#include <cstdio>
#include <unistd.h>

namespace TalvirCli {

bool CHostSystem::StandardOutputIsTerminal() { return isatty(fileno(stdout)) == 1; }

const char* CHostSystem::PathSeparators() { return "/"; }

}  // namespace TalvirCli
