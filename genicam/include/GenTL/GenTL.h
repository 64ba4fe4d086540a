#ifndef TALVIR_GENTL_H
#define TALVIR_GENTL_H
/* The GenTL C interface: types, structures, and the functions a producer (.cti module) exports. */
#include "GenTLFunctions.h"
#include "GenTLPlatform.h"
#include "GenTLTypes.h"
#endif
