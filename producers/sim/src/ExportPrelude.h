#pragma once
// What every file of exported GenTL functions starts with: the export guard, the library and its modules, and the
// names those files use unqualified (the exported functions themselves live in the global namespace).
#include "ExportGuard.h"
#include "Library.h"
#include "Modules.h"

using namespace GenTL;
using TalvirSim::CDataStream;
using TalvirSim::CDevice;
using TalvirSim::CEvent;
using TalvirSim::CEventSource;
using TalvirSim::CGenTLError;
using TalvirSim::CInterface;
using TalvirSim::CPortModule;
using TalvirSim::CRemotePort;
using TalvirSim::CSystem;
using TalvirSim::Fail;
using TalvirSim::Guarded;
using TalvirSim::Lib;
using TalvirSim::RequireId;
using TalvirSim::RequireOut;
using TalvirSim::RequireSize;
using TalvirSim::SInfoOut;
