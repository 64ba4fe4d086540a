#include "HostSystem.h"

#include <cstdio>
#include <io.h>

namespace TalvirCli {

// A console counts; a pipe or file does not. The C runtime also says so for other character devices such as NUL,
// where progress lines do no harm.
bool CHostSystem::StandardOutputIsTerminal() { return _isatty(_fileno(stdout)) != 0; }

const char* CHostSystem::PathSeparators() { return "\\/"; }

}  // namespace TalvirCli
