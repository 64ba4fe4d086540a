#pragma once
// Pixel format codes (PFNC): bit 31 marks a custom code, bits 30-24 the component layout, bits 23-16 the bits
// per pixel including padding, bits 15-0 the format id. Cameras report these codes in buffer information and in
// the "PixelFormat" feature; conversion produces Mono8 or BGR8.
#include <cstdint>

namespace TALVIR::PixelFormat {

// Monochrome.
constexpr uint32_t Mono8 = 0x01080001;
constexpr uint32_t Mono8s = 0x01080002;
constexpr uint32_t Mono10 = 0x01100003;
constexpr uint32_t Mono12 = 0x01100005;
constexpr uint32_t Mono14 = 0x01100025;
constexpr uint32_t Mono16 = 0x01100007;
constexpr uint32_t Mono10Packed = 0x010C0004;  // two pixels in three bytes, high bytes outside
constexpr uint32_t Mono12Packed = 0x010C0006;
constexpr uint32_t Mono10p = 0x010A0046;  // LSB-first bit stream
constexpr uint32_t Mono12p = 0x010C0047;
constexpr uint32_t Mono14p = 0x010E0104;

// Bayer, 8 bits.
constexpr uint32_t BayerGR8 = 0x01080008;
constexpr uint32_t BayerRG8 = 0x01080009;
constexpr uint32_t BayerGB8 = 0x0108000A;
constexpr uint32_t BayerBG8 = 0x0108000B;
// Bayer in 16-bit containers.
constexpr uint32_t BayerGR10 = 0x0110000C;
constexpr uint32_t BayerRG10 = 0x0110000D;
constexpr uint32_t BayerGB10 = 0x0110000E;
constexpr uint32_t BayerBG10 = 0x0110000F;
constexpr uint32_t BayerGR12 = 0x01100010;
constexpr uint32_t BayerRG12 = 0x01100011;
constexpr uint32_t BayerGB12 = 0x01100012;
constexpr uint32_t BayerBG12 = 0x01100013;
constexpr uint32_t BayerGR14 = 0x01100109;
constexpr uint32_t BayerRG14 = 0x0110010A;
constexpr uint32_t BayerGB14 = 0x0110010B;
constexpr uint32_t BayerBG14 = 0x0110010C;
constexpr uint32_t BayerGR16 = 0x0110002E;
constexpr uint32_t BayerRG16 = 0x0110002F;
constexpr uint32_t BayerGB16 = 0x01100030;
constexpr uint32_t BayerBG16 = 0x01100031;
// Bayer, two pixels in three bytes.
constexpr uint32_t BayerGR10Packed = 0x010C0026;
constexpr uint32_t BayerRG10Packed = 0x010C0027;
constexpr uint32_t BayerGB10Packed = 0x010C0028;
constexpr uint32_t BayerBG10Packed = 0x010C0029;
constexpr uint32_t BayerGR12Packed = 0x010C002A;
constexpr uint32_t BayerRG12Packed = 0x010C002B;
constexpr uint32_t BayerGB12Packed = 0x010C002C;
constexpr uint32_t BayerBG12Packed = 0x010C002D;
// Bayer, LSB-first bit stream.
constexpr uint32_t BayerBG10p = 0x010A0052;
constexpr uint32_t BayerGB10p = 0x010A0054;
constexpr uint32_t BayerGR10p = 0x010A0056;
constexpr uint32_t BayerRG10p = 0x010A0058;
constexpr uint32_t BayerBG12p = 0x010C0053;
constexpr uint32_t BayerGB12p = 0x010C0055;
constexpr uint32_t BayerGR12p = 0x010C0057;
constexpr uint32_t BayerRG12p = 0x010C0059;
constexpr uint32_t BayerGR14p = 0x010E0105;
constexpr uint32_t BayerRG14p = 0x010E0106;
constexpr uint32_t BayerGB14p = 0x010E0107;
constexpr uint32_t BayerBG14p = 0x010E0108;

// Colour.
constexpr uint32_t RGB8 = 0x02180014;
constexpr uint32_t BGR8 = 0x02180015;
constexpr uint32_t RGB10 = 0x02300018;  // 16-bit containers
constexpr uint32_t RGB12 = 0x0230001A;
constexpr uint32_t RGB10p = 0x021E005C;  // 30 bits per pixel, LSB-first bit stream
constexpr uint32_t RGB565p = 0x02100035;
constexpr uint32_t BGR565p = 0x02100036;

// Luma and chroma.
constexpr uint32_t YUV422_8 = 0x02100032;       // Y0 U Y1 V
constexpr uint32_t YUV422_8_UYVY = 0x0210001F;  // U Y0 V Y1
constexpr uint32_t YUV411_8_UYYVYY = 0x020C001E;
constexpr uint32_t YUV8_UYV = 0x02180020;
constexpr uint32_t YCbCr422_8 = 0x0210003B;
constexpr uint32_t YCbCr709_422_8 = 0x02100041;
constexpr uint32_t YCbCr709_8_CbYCr = 0x02180040;

// Bits per pixel including padding, as encoded in bits 23-16 of every code.
constexpr uint32_t EncodedBitsPerPixel(uint32_t pfnc) { return (pfnc >> 16) & 0xFFu; }

}  // namespace TALVIR::PixelFormat
