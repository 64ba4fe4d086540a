#pragma once
// Prints device records as an aligned text table or as JSON.
#include <talvir/ICameraInfo.h>

#include <list>
#include <ostream>
#include <string>
#include <vector>

namespace TalvirCli {

// The name of a TL type bit ("GEV", ...), "-" for a type the library does not know, or the number in hexadecimal.
std::string TLTypeText(uint32_t tlType);

// One row per record: vendor, model, serial, TL type, access status, device ID, producer file.
void PrintDeviceTable(std::ostream& out, const std::list<TALVIR::ICameraInfo*>& records);

// {"devices":[{"vendor":..,"model":..,"serial":..,"tlType":"U3V","access":"ReadWrite","deviceId":..,"producer":..,
// "displayName":..,"userDefinedName":..,"version":..,"timestampFrequency":N}, ...]}
void PrintDeviceJson(std::ostream& out, const std::list<TALVIR::ICameraInfo*>& records);

}  // namespace TalvirCli
