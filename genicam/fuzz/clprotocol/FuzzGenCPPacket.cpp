// Fuzz target: the GenCP-over-serial packet parser and the host's packet reader. Arbitrary bytes are parsed as a
// stream (every complete packet must encode back to exactly its bytes) and fed as a device's answers to a memory
// read, which must end with a status and never read past its buffer.
#include "GenCPLink.h"
#include "GenCPPacket.h"

#include <cstdint>
#include <cstring>
#include <vector>

#ifdef TALVIR_FUZZ_AS_FUNCTIONS
#define TALVIR_FUZZ_ENTRY FuzzGenCPPacket
#else
#define TALVIR_FUZZ_ENTRY LLVMFuzzerTestOneInput
#endif

namespace {

using namespace CLProtocol;

struct SMemorySerial {
  const uint8_t* data;
  size_t size;
  size_t offset;
};

int32_t MemoryRead(void* context, char* buffer, uint32_t* size, uint32_t) {
  auto* memory = static_cast<SMemorySerial*>(context);
  if (memory->size - memory->offset < *size) {
    return CL_ERR_TIMEOUT;
  }
  std::memcpy(buffer, memory->data + memory->offset, *size);
  memory->offset += *size;
  return CL_ERR_NO_ERR;
}

int32_t MemoryWrite(void*, const char*, uint32_t*, uint32_t) { return CL_ERR_NO_ERR; }
int32_t MemoryFlush(void* context) {
  auto* memory = static_cast<SMemorySerial*>(context);
  memory->offset = memory->size;
  return CL_ERR_NO_ERR;
}
int32_t MemoryRates(void*, uint32_t* rates) {
  *rates = CL_BAUDRATE_9600;
  return CL_ERR_NO_ERR;
}
int32_t MemorySetRate(void*, uint32_t) { return CL_ERR_NO_ERR; }

}  // namespace

extern "C" int TALVIR_FUZZ_ENTRY(const uint8_t* data, size_t size) {
  size_t offset = 0;
  while (offset < size) {
    GenCP::SPacket packet;
    size_t consumed = 0;
    const GenCP::EParse result = GenCP::Parse(data + offset, size - offset, packet, consumed);
    if (result == GenCP::EParse::NeedMore) {
      break;
    }
    if (consumed == 0 || consumed > size - offset) {
      __builtin_trap();
    }
    if (result == GenCP::EParse::Complete) {
      const std::vector<uint8_t> again = GenCP::Encode(packet);
      if (again.size() != consumed || std::memcmp(again.data(), data + offset, consumed) != 0) {
        __builtin_trap();
      }
    }
    offset += consumed;
  }

  // The first answer's request id is 1; reading four bytes must end with a status whatever came back.
  SMemorySerial memory{data, size, 0};
  const CLPSerial serial{&memory, &MemoryRead, &MemoryWrite, &MemoryFlush, &MemoryRates, &MemorySetRate};
  GenCP::CGenCPLink link;
  uint8_t buffer[16] = {};
  const int32_t status = link.ReadMem(serial, 0, buffer, 4, 10);
  if (status == CL_ERR_PENDING_WRITE) {
    __builtin_trap();  // reads never stay pending
  }
  return 0;
}
