// The serial library of the simulated Camera Link frame grabber (clserkrx.so): one board with two serial channels,
// ports "KORIX#CL_GRABBER#SERIAL0.0" and "...SERIAL0.1", each with a simulated camera behind it (serial numbers
// CLG00001 and CLG00002, like the grabber's cameras).
#include <CLProtocol/CLModuleExport.h>
#include <CLProtocol/CLSerialApi.h>

#include "GrabberChannel.h"

#include <cstring>
#include <memory>
#include <string>

#define CL_EXPORT CL_MODULE_EXPORT

using namespace CLProtocol;
using TalvirSerialCam::CGrabberChannel;

namespace {

constexpr uint32_t kChannels = 2;
constexpr uint32_t kAllRates = 0xFF;

CGrabberChannel& Channel(uint32_t index) {
  static std::unique_ptr<CGrabberChannel> channels[kChannels];
  static std::once_flag made;
  std::call_once(made, [] {
    for (uint32_t i = 0; i < kChannels; ++i) {
      TalvirSerialCam::SCameraConfig config;
      config.serialNumber = "CLG0000" + std::to_string(i + 1);
      channels[i] = std::make_unique<CGrabberChannel>(config);
    }
  });
  return *channels[index];
}

CGrabberChannel* ChannelOf(void* reference) {
  for (uint32_t i = 0; i < kChannels; ++i) {
    if (reference == &Channel(i)) {
      return &Channel(i);
    }
  }
  return nullptr;
}

int32_t CopyText(const std::string& text, char* buffer, uint32_t* size) {
  if (size == nullptr) {
    return CL_ERR_INVALID_PTR;
  }
  const uint32_t needed = static_cast<uint32_t>(text.size() + 1);
  if (buffer == nullptr || *size < needed) {
    *size = needed;
    return CL_ERR_BUFFER_TOO_SMALL;
  }
  std::memcpy(buffer, text.c_str(), needed);
  *size = needed;
  return CL_ERR_NO_ERR;
}

}  // namespace

CL_EXPORT int32_t clGetNumSerialPorts(uint32_t* count) {
  if (count == nullptr) {
    return CL_ERR_INVALID_PTR;
  }
  *count = kChannels;
  return CL_ERR_NO_ERR;
}

CL_EXPORT int32_t clGetSerialPortIdentifier(uint32_t index, char* identifier, uint32_t* size) {
  if (index >= kChannels) {
    return CL_ERR_INVALID_INDEX;
  }
  return CopyText("CL_GRABBER#SERIAL0." + std::to_string(index), identifier, size);
}

CL_EXPORT int32_t clGetManufacturerInfo(char* name, uint32_t* size, uint32_t* version) {
  if (version != nullptr) {
    *version = 0x00020000;
  }
  return CopyText("KORIX", name, size);
}

CL_EXPORT int32_t clSerialInit(uint32_t index, void** reference) {
  if (reference == nullptr) {
    return CL_ERR_INVALID_PTR;
  }
  if (index >= kChannels) {
    return CL_ERR_INVALID_INDEX;
  }
  const int32_t status = Channel(index).Open();
  if (status == CL_ERR_NO_ERR) {
    *reference = &Channel(index);
  }
  return status;
}

CL_EXPORT int32_t clSerialRead(void* reference, char* buffer, uint32_t* size, uint32_t timeoutMs) {
  CGrabberChannel* channel = ChannelOf(reference);
  if (channel == nullptr) {
    return CL_ERR_INVALID_REFERENCE;
  }
  if (size == nullptr || (buffer == nullptr && *size > 0)) {
    return CL_ERR_INVALID_PTR;
  }
  const int32_t status = channel->Read(buffer, *size, timeoutMs);
  if (status != CL_ERR_NO_ERR) {
    *size = 0;
  }
  return status;
}

CL_EXPORT int32_t clSerialWrite(void* reference, char* buffer, uint32_t* size, uint32_t) {
  CGrabberChannel* channel = ChannelOf(reference);
  if (channel == nullptr) {
    return CL_ERR_INVALID_REFERENCE;
  }
  if (size == nullptr || (buffer == nullptr && *size > 0)) {
    return CL_ERR_INVALID_PTR;
  }
  return channel->Write(buffer, *size);
}

CL_EXPORT int32_t clGetNumBytesAvail(void* reference, uint32_t* count) {
  CGrabberChannel* channel = ChannelOf(reference);
  if (channel == nullptr) {
    return CL_ERR_INVALID_REFERENCE;
  }
  if (count == nullptr) {
    return CL_ERR_INVALID_PTR;
  }
  *count = channel->BytesAvailable();
  return CL_ERR_NO_ERR;
}

CL_EXPORT int32_t clFlushPort(void* reference) {
  CGrabberChannel* channel = ChannelOf(reference);
  if (channel == nullptr) {
    return CL_ERR_INVALID_REFERENCE;
  }
  channel->Flush();
  return CL_ERR_NO_ERR;
}

CL_EXPORT int32_t clGetSupportedBaudRates(void* reference, uint32_t* rates) {
  if (ChannelOf(reference) == nullptr) {
    return CL_ERR_INVALID_REFERENCE;
  }
  if (rates == nullptr) {
    return CL_ERR_INVALID_PTR;
  }
  *rates = kAllRates;
  return CL_ERR_NO_ERR;
}

CL_EXPORT int32_t clSetBaudRate(void* reference, uint32_t rate) {
  CGrabberChannel* channel = ChannelOf(reference);
  if (channel == nullptr) {
    return CL_ERR_INVALID_REFERENCE;
  }
  if (BaudRateOfBit(rate) == 0) {
    return CL_ERR_BAUD_RATE_NOT_SUPPORTED;
  }
  channel->SetHostRate(rate);
  return CL_ERR_NO_ERR;
}

CL_EXPORT void clSerialClose(void* reference) {
  if (CGrabberChannel* channel = ChannelOf(reference)) {
    channel->Close();
  }
}

CL_EXPORT int32_t clGetErrorText(int32_t status, char* text, uint32_t* size) {
  return CopyText(StatusText(status), text, size);
}
