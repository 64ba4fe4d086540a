#pragma once
// Everything of GCBase in one include.
#include <GCBase/GCException.h>
#include <GCBase/GCString.h>
#include <GCBase/GCTypes.h>
