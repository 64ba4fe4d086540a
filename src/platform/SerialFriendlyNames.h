#pragma once
// Descriptions of the PC's serial ports, for telling ports of particular adapters apart.
#include <string>
#include <vector>

namespace TALVIR::Platform {

// One text per serial port the system lists, in the shape "<description> (<port name>)". On Linux the ports are
// /dev/ttyS*, /dev/ttyUSB* and /dev/ttyACM*, sorted, for example "FT232R USB UART (/dev/ttyUSB0)", the description
// being the adapter's product name where the system knows it, else the device name. On Windows they are the
// friendly names of every device of the Ports class, present or not, in the system's order, for example
// "USB Serial Port (COM3)". Empty when the system lists none.
std::vector<std::string> ListSerialPortFriendlyNames();

}  // namespace TALVIR::Platform
