#pragma once
// Everything an application needs to use a node map.
#include <GCBase/GCBase.h>
#include <GenApi/ChunkAdapter.h>
#include <GenApi/INodeMap.h>
#include <GenApi/Interfaces.h>
#include <GenApi/Lock.h>
#include <GenApi/NodeCallback.h>
#include <GenApi/NodeMapFactory.h>
#include <GenApi/NodeMapRef.h>
#include <GenApi/Persistence.h>
#include <GenApi/Pointer.h>
#include <GenApi/PortImpl.h>
#include <GenApi/Types.h>
