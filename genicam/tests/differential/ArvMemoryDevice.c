#include "ArvMemoryDevice.h"

struct _TalvirArvMemoryDevice {
  ArvDevice parent_instance;
  TalvirMemoryRead read;
  TalvirMemoryWrite write;
  void* context;
};

G_DEFINE_TYPE(TalvirArvMemoryDevice, talvir_arv_memory_device, ARV_TYPE_DEVICE)

static gboolean memory_device_read_memory(ArvDevice* device, guint64 address, guint32 size, void* buffer,
                                          GError** error) {
  TalvirArvMemoryDevice* self = TALVIR_ARV_MEMORY_DEVICE(device);
  if (!self->read(self->context, address, size, buffer)) {
    g_set_error(error, ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_TRANSFER_ERROR,
                "read of %u bytes at 0x%" G_GINT64_MODIFIER "x failed", size, address);
    return FALSE;
  }
  return TRUE;
}

static gboolean memory_device_write_memory(ArvDevice* device, guint64 address, guint32 size, void* buffer,
                                           GError** error) {
  TalvirArvMemoryDevice* self = TALVIR_ARV_MEMORY_DEVICE(device);
  if (!self->write(self->context, address, size, buffer)) {
    g_set_error(error, ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_TRANSFER_ERROR,
                "write of %u bytes at 0x%" G_GINT64_MODIFIER "x failed", size, address);
    return FALSE;
  }
  return TRUE;
}

/* 32-bit registers are big-endian words, as on the wire of the network cameras most description files come from. */
static gboolean memory_device_read_register(ArvDevice* device, guint64 address, guint32* value, GError** error) {
  guint8 bytes[4];
  if (!memory_device_read_memory(device, address, 4, bytes, error)) return FALSE;
  *value = ((guint32)bytes[0] << 24) | ((guint32)bytes[1] << 16) | ((guint32)bytes[2] << 8) | bytes[3];
  return TRUE;
}

static gboolean memory_device_write_register(ArvDevice* device, guint64 address, guint32 value, GError** error) {
  guint8 bytes[4] = {(guint8)(value >> 24), (guint8)(value >> 16), (guint8)(value >> 8), (guint8)value};
  return memory_device_write_memory(device, address, 4, bytes, error);
}

static void talvir_arv_memory_device_init(TalvirArvMemoryDevice* self) {
  self->read = NULL;
  self->write = NULL;
  self->context = NULL;
}

static void talvir_arv_memory_device_class_init(TalvirArvMemoryDeviceClass* klass) {
  ArvDeviceClass* device_class = ARV_DEVICE_CLASS(klass);
  device_class->read_memory = memory_device_read_memory;
  device_class->write_memory = memory_device_write_memory;
  device_class->read_register = memory_device_read_register;
  device_class->write_register = memory_device_write_register;
}

ArvDevice* talvir_arv_memory_device_new(TalvirMemoryRead read, TalvirMemoryWrite write, void* context) {
  TalvirArvMemoryDevice* self = g_object_new(TALVIR_TYPE_ARV_MEMORY_DEVICE, NULL);
  self->read = read;
  self->write = write;
  self->context = context;
  return ARV_DEVICE(self);
}
