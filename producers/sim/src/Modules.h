#pragma once
// The GenTL modules: system, interface, device (with its remote port) and data stream.
#include "DataStream.h"
#include "Device.h"
#include "Interface.h"
#include "NewBufferEvent.h"
#include "RemotePort.h"
#include "System.h"
