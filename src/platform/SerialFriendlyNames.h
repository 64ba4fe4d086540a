#pragma once
// Descriptions of the PC's serial ports, for telling ports of particular adapters apart.
#include <string>
#include <vector>

namespace TALVIR::Platform {

// One text per serial port the system lists (/dev/ttyS*, /dev/ttyUSB*, /dev/ttyACM*), in the shape
// "<description> (<port name>)", for example "FT232R USB UART (/dev/ttyUSB0)"; the description is the adapter's
// product name where the system knows it, else the device name. Empty when the system lists none.
std::vector<std::string> ListSerialPortFriendlyNames();

}  // namespace TALVIR::Platform
