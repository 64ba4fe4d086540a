/* A register-only device for the comparison engine: every memory access goes to callbacks supplied by the caller,
 * so that the comparison engine and ours read the same seeded register space. */
#ifndef TALVIR_ARV_MEMORY_DEVICE_H
#define TALVIR_ARV_MEMORY_DEVICE_H

#include <arv.h>

G_BEGIN_DECLS

typedef gboolean (*TalvirMemoryRead)(void* context, guint64 address, guint32 size, void* buffer);
typedef gboolean (*TalvirMemoryWrite)(void* context, guint64 address, guint32 size, const void* buffer);

#define TALVIR_TYPE_ARV_MEMORY_DEVICE (talvir_arv_memory_device_get_type())
G_DECLARE_FINAL_TYPE(TalvirArvMemoryDevice, talvir_arv_memory_device, TALVIR, ARV_MEMORY_DEVICE, ArvDevice)

/* The callbacks must outlive the device. */
ArvDevice* talvir_arv_memory_device_new(TalvirMemoryRead read, TalvirMemoryWrite write, void* context);

G_END_DECLS

#endif
