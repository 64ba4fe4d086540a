#pragma once
// Enumerations and container types shared by every GenApi interface.
#include <cstdint>
#include <vector>

#include <GCBase/GCBase.h>

namespace GenApi {

using GenICam::gcstring;
using GenICam::gcstring_vector;

// How a feature may be accessed: not implemented, not available, write only, read only, read/write.
enum EAccessMode { NI, NA, WO, RO, RW, _UndefinedAccesMode, _CycleDetectAccesMode };

enum EVisibility { Beginner = 0, Expert = 1, Guru = 2, Invisible = 3, _UndefinedVisibility = 99 };

enum ECachingMode { NoCache, WriteThrough, WriteAround, _UndefinedCachingMode };

enum ERepresentation {
  Linear,
  Logarithmic,
  Boolean,
  PureNumber,
  HexNumber,
  IPV4Address,
  MACAddress,
  _UndefinedRepresentation
};

enum EDisplayNotation { fnAutomatic, fnFixed, fnScientific, _UndefinedEDisplayNotation };

enum EEndianess { BigEndian, LittleEndian, _UndefinedEndian };

enum ESign { Signed, Unsigned, _UndefinedSign };

enum ENameSpace { Custom, Standard, _UndefinedNameSpace };

enum EStandardNameSpace { None, IIDC, GEV, CL, USB, _UndefinedStandardNameSpace };

enum ESlope { Increasing, Decreasing, Varying, Automatic, _UndefinedESlope };

enum EYesNo { Yes = 1, No = 0, _UndefinedYesNo = 2 };

enum EIncMode { noIncrement, fixedIncrement, listIncrement };

enum ECallbackType { cbPostInsideLock = 1, cbPostOutsideLock = 2 };

// Which relation GetChildren follows.
enum ELinkType {
  ctParentNodes,
  ctReadingChildren,
  ctWritingChildren,
  ctInvalidatingChildren,
  ctDependingNodes,
  ctTerminalNodes,
  ctValueChangingChildren
};

// The principal interface of a node, as returned by INode::GetPrincipalInterfaceType.
enum EInterfaceType {
  intfIValue,
  intfIBase,
  intfIInteger,
  intfIBoolean,
  intfICommand,
  intfIFloat,
  intfIString,
  intfIRegister,
  intfICategory,
  intfIEnumeration,
  intfIEnumEntry,
  intfIPort
};

struct INode;
struct IValue;
struct IEnumEntry;

using node_vector = std::vector<INode*>;
using NodeList_t = node_vector;
using value_vector = std::vector<IValue*>;
using FeatureList_t = value_vector;
using StringList_t = gcstring_vector;
using EnumEntryList_t = std::vector<IEnumEntry*>;
using int64_autovector_t = std::vector<int64_t>;
using double_autovector_t = std::vector<double>;

// Handle of a registered node callback (0 is never a valid handle).
using CallbackHandleType = std::intptr_t;

}  // namespace GenApi
