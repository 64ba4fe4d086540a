#pragma once
// IPv4 addresses as the GigE Vision parts of the library use them.
#include <cstdint>
#include <string>

namespace TALVIR::Platform {

// Parses dotted IPv4 text ("192.168.1.10") into the 32-bit value in network byte order (the first number in the
// lowest-addressed byte). False, leaving `address` alone, for anything that is not exactly such an address.
bool ParseIPv4(const std::string& text, uint32_t& address);

// The dotted text of an address in network byte order.
std::string FormatIPv4(uint32_t address);

}  // namespace TALVIR::Platform
