#pragma once
// Register addresses of the simulated producer, for tests that drive it through GCReadPort / GCWritePort.
// The remote device's description (remote.xml) names the same addresses; keep both in step.
#include <cstdint>

namespace TalvirSim::Remote {

// Four bytes; byte 0 is the layout version of remote-device event data (1 or 2), the rest is zero.
constexpr uint64_t kEventLayoutVersion = 0x0000;

// Identification strings (zero-terminated within their field).
constexpr uint64_t kDeviceVendorName = 0x0010;        // 32 bytes
constexpr uint64_t kDeviceModelName = 0x0030;         // 32 bytes
constexpr uint64_t kDeviceVersion = 0x0050;           // 32 bytes
constexpr uint64_t kDeviceSerialNumber = 0x0070;      // 16 bytes
constexpr uint64_t kDeviceUserID = 0x0080;            // 16 bytes, writable
constexpr uint64_t kDeviceManufacturerInfo = 0x0090;  // 48 bytes
constexpr uint64_t kDeviceFirmwareVersion = 0x00C0;   // 32 bytes

// Image format; 32-bit big-endian unless noted.
constexpr uint64_t kSensorWidth = 0x0100;
constexpr uint64_t kSensorHeight = 0x0104;
constexpr uint64_t kWidthMax = 0x0108;
constexpr uint64_t kHeightMax = 0x010C;
constexpr uint64_t kWidth = 0x0110;
constexpr uint64_t kHeight = 0x0114;
constexpr uint64_t kOffsetX = 0x0118;
constexpr uint64_t kOffsetY = 0x011C;
constexpr uint64_t kPixelFormat = 0x0120;
constexpr uint64_t kPayloadSize = 0x0124;  // read-only, computed
constexpr uint64_t kTLParamsLocked = 0x0128;
constexpr uint64_t kImageControl = 0x0130;    // little-endian: bit 0 ReverseX, bit 1 ReverseY (stored only)
constexpr uint64_t kPixelBigEndian = 0x0134;  // pixel byte-order flag (stored only; present with pixelBigEndianNode)

// Acquisition.
constexpr uint64_t kAcquisitionMode = 0x0200;   // 0 Continuous, 1 SingleFrame, 2 MultiFrame
constexpr uint64_t kAcquisitionStart = 0x0204;  // write 1
constexpr uint64_t kAcquisitionStop = 0x0208;   // write 1
constexpr uint64_t kAcquisitionFrameCount = 0x020C;
constexpr uint64_t kAcquisitionFrameRate = 0x0210;  // 8-byte big-endian double, frames per second
constexpr uint64_t kExposureTime = 0x0218;          // 8-byte little-endian double, microseconds
constexpr uint64_t kAcquisitionLineRate = 0x0220;   // 8-byte big-endian double, lines per second (line-scan only)
constexpr uint64_t kGainRaw = 0x0228;               // tenths of a dB
constexpr uint64_t kBlackLevelRaw = 0x022C;
constexpr uint64_t kTriggerModeBase = 0x0230;    // + 4 * selector (0 FrameStart, 1 LineStart): 0 Off, 1 On
constexpr uint64_t kTriggerSourceBase = 0x0240;  // + 4 * selector: 0 Software, 1 Line0
constexpr uint64_t kTriggerSelector = 0x0250;
constexpr uint64_t kTriggerSoftware = 0x0254;  // write 1: one trigger for the selected selector
constexpr uint64_t kChunkModeActive = 0x0258;
constexpr uint64_t kChunkSelector = 0x025C;          // 0 Timestamp, 1 FrameID, 2 ExposureTime
constexpr uint64_t kChunkEnableBase = 0x0260;        // + 4 * chunk selector
constexpr uint64_t kEventSelector = 0x0270;          // 0 ExposureEnd
constexpr uint64_t kEventNotificationBase = 0x0274;  // + 4 * event selector: 0 Off, 1 On
constexpr uint64_t kTimestampLatch = 0x0280;         // write 1 latches the device clock
constexpr uint64_t kTimestampLatchValue = 0x0288;    // 8 bytes big-endian

// Transport (GigE flavour).
constexpr uint64_t kGevSCPSPacketSize = 0x02A0;
constexpr uint64_t kGevSCPSPacketSizeMin = 0x02A4;
constexpr uint64_t kGevSCPSPacketSizeMax = 0x02A8;
constexpr uint64_t kGevSCPSPacketSizeInc = 0x02AC;
constexpr uint64_t kGevSCPD = 0x02B0;
constexpr uint64_t kPartialImageOutputMode =
    0x02B4;  // 0 PartialImageOutput, 1 PartialImageDiscard, 2 PartialImageFilled

// Test control.
constexpr uint64_t kSimDeviceLost = 0x0F00;        // write 1: the device is lost at once
constexpr uint64_t kSimLoseAfterFrames = 0x0F04;   // the device is lost after this many frames (0: never)
constexpr uint64_t kSimIncompleteEveryN = 0x0F08;  // every Nth frame is delivered incomplete (0: never)
constexpr uint64_t kSimLateFrameId = 0x0F0C;       // the frame with this ID comes late (0: none)
constexpr uint64_t kSimLateByMs = 0x0F10;
constexpr uint64_t kSimReadFailAddress = 0x0F14;  // reads covering this address fail (0xFFFFFFFF: none)
constexpr uint64_t kSimFireEvent = 0x0F18;        // write 1: one exposure-end event now
constexpr uint64_t kSimFreeRun = 0x0F1C;          // 1: frames as fast as buffers allow, ignoring the frame rate
constexpr uint64_t kSimFrameCounter = 0x0F20;     // frames produced since the device was opened
constexpr uint64_t kSimLineScan = 0x0F24;         // 1 for a line-scan camera
constexpr uint64_t kSimFlavour = 0x0F28;          // 0 Custom, 1 GEV, 2 U3V, 3 CL, 4 CXP
constexpr uint64_t kSimOfferedFormats = 0x0F40;   // 3 little-endian 32-bit words: bit i = AllPixelFormats()[i]

// Where the description file lives in the remote device's register space.
constexpr uint64_t kDescriptionAddress = 0x100000;

// Chunk IDs.
constexpr uint32_t kChunkIdImage = 0x00000001;
constexpr uint32_t kChunkIdTimestamp = 0x5A000001;
constexpr uint32_t kChunkIdFrameID = 0x5A000002;
constexpr uint32_t kChunkIdExposureTime = 0x5A000003;

// Remote-device event IDs.
constexpr uint16_t kEventIdExposureEnd = 0x9001;

}  // namespace TalvirSim::Remote

namespace TalvirSim::DeviceModule {
// Registers of the GenTL device module that a GigE consumer writes to tune the stream.
constexpr uint64_t kStreamTuning = 0x24;    // 32-bit
constexpr uint64_t kPacketSizeMin = 0x228;  // 16-bit
constexpr uint64_t kPacketSizeMax = 0x22C;  // 16-bit
constexpr uint64_t kPacketSizeInc = 0x230;  // 16-bit
}  // namespace TalvirSim::DeviceModule
