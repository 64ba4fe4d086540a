// Access-mode arithmetic and names shared by the engine and applications.
#include <GenApi/Pointer.h>

namespace GenApi {

EAccessMode Combine(EAccessMode first, EAccessMode second) {
  if (first == NI || second == NI) return NI;
  if (first == NA || second == NA) return NA;
  if (first == _UndefinedAccesMode || second == _UndefinedAccesMode) return _UndefinedAccesMode;
  if (first == _CycleDetectAccesMode || second == _CycleDetectAccesMode) return _CycleDetectAccesMode;
  // Both are WO, RO or RW: a read-only and a write-only side leave nothing usable.
  if ((first == WO && second == RO) || (first == RO && second == WO)) return NA;
  if (first == WO || second == WO) return WO;
  if (first == RO || second == RO) return RO;
  return RW;
}

const char* AccessModeName(EAccessMode mode) {
  switch (mode) {
  case NI: return "NI";
  case NA: return "NA";
  case WO: return "WO";
  case RO: return "RO";
  case RW: return "RW";
  case _CycleDetectAccesMode: return "CycleDetect";
  case _UndefinedAccesMode: break;
  }
  return "Undefined";
}

const char* InterfaceTypeName(EInterfaceType type) {
  switch (type) {
  case intfIValue: return "IValue";
  case intfIBase: return "IBase";
  case intfIInteger: return "IInteger";
  case intfIBoolean: return "IBoolean";
  case intfICommand: return "ICommand";
  case intfIFloat: return "IFloat";
  case intfIString: return "IString";
  case intfIRegister: return "IRegister";
  case intfICategory: return "ICategory";
  case intfIEnumeration: return "IEnumeration";
  case intfIEnumEntry: return "IEnumEntry";
  case intfIPort: return "IPort";
  }
  return "Unknown";
}

}  // namespace GenApi
