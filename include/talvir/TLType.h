#pragma once
// Transport-layer type bits. Device records carry one of them; discovery masks combine several.
#include <cstdint>

namespace TALVIR {
namespace TLType {

constexpr uint32_t GEV = 1;         // GigE Vision
constexpr uint32_t U3V = 2;         // USB3 Vision
constexpr uint32_t CL = 4;          // Camera Link frame grabber
constexpr uint32_t CXP = 8;         // CoaXPress
constexpr uint32_t IIDC = 16;       // IEEE 1394 IIDC
constexpr uint32_t UVC = 32;        // USB video class
constexpr uint32_t CLHS = 64;       // Camera Link HS
constexpr uint32_t Ethernet = 128;  // generic Ethernet
constexpr uint32_t PCI = 256;       // generic PCI
// A Camera Link camera known only by the serial port it answers on; no producer reports it. As a discovery mask it
// asks for the serial-port probe instead of the producers.
constexpr uint32_t CLSerialOnly = 0x8000;

// Every producer type bit; a discovery mask holding all of them selects every producer, whatever it reports.
constexpr uint64_t AllProducers = 0x1FF;

}  // namespace TLType
}  // namespace TALVIR
