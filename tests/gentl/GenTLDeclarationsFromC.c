/* The GenTL declarations must stay usable from C: producers are often written in C. */
#include <GenTL/GenTL.h>

_Static_assert(sizeof(SINGLE_CHUNK_DATA) == 24, "chunk record layout");
_Static_assert(sizeof(EVENT_NEW_BUFFER_DATA) == 16, "new-buffer event layout");

/* Reports the sizes seen by the C compiler, so the C++ test can compare both views. */
size_t TalvirGenTLSizeSeenFromC(int which) {
  switch (which) {
  case 0: return sizeof(SINGLE_CHUNK_DATA);
  case 1: return sizeof(EVENT_NEW_BUFFER_DATA);
  case 2: return sizeof(PORT_REGISTER_STACK_ENTRY);
  case 3: return sizeof(DS_BUFFER_INFO_STACKED);
  default: return 0;
  }
}

/* Taking the address of every declared function through its pointer type checks that the two agree. */
PFN_GCInitLib talvirInitLibPointerType(void) { return (PFN_GCInitLib)0; }
