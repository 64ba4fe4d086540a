// Pixel conversion speed against reference implementations, one thread.
//
//   convert_bench                 Google Benchmark output for every routine and reference
//   convert_bench --summary       one line per comparison:
//                                 <routine> <width>x<height> ratio=<reference time / our time> reference=<name>
//
// Both sides of a comparison run in the same process, interleaved call by call, on the same input and output
// buffers; the summary compares each side's fastest call, the one least disturbed by other work on the machine.
#include "image/Demosaic.h"
#include "image/ImgTool.h"
#include "image/PixelFormats.h"
#include "image/PixelLayout.h"
#include "image/RgbSwap.h"
#include "image/Shift.h"
#include "image/Unpack.h"
#include "image/YCbCr.h"

#include <benchmark/benchmark.h>
#include <libyuv.h>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace TALVIR;
using Pixel::EBayer;

struct SSize {
  uint32_t width;
  uint32_t height;
};
constexpr SSize kSizes[] = {{2448, 2048}, {640, 480}};

std::vector<uint8_t> RandomBytes(uint64_t count) {
  std::mt19937 generator(12345);
  std::vector<uint8_t> bytes(count);
  for (auto& b : bytes) {
    b = static_cast<uint8_t>(generator());
  }
  return bytes;
}

// 16-bit samples with the given significant bits, so that references that saturate see in-range data.
std::vector<uint8_t> RandomSamples(uint64_t count, uint32_t bits) {
  std::vector<uint8_t> bytes = RandomBytes(2 * count);
  for (uint64_t i = 0; i < count; ++i) {
    bytes[2 * i + 1] = static_cast<uint8_t>(bytes[2 * i + 1] & ((1u << (bits - 8)) - 1));
  }
  return bytes;
}

// OpenCV names a Bayer pattern by the colours of the second row's second and third pixels.
int OpenCvBayerToBgr(EBayer pattern) {
  switch (pattern) {
  case EBayer::RG: return cv::COLOR_BayerBG2BGR;
  case EBayer::GR: return cv::COLOR_BayerGB2BGR;
  case EBayer::GB: return cv::COLOR_BayerGR2BGR;
  case EBayer::BG: return cv::COLOR_BayerRG2BGR;
  }
  return cv::COLOR_BayerBG2BGR;
}

const char* PatternName(EBayer pattern) {
  switch (pattern) {
  case EBayer::RG: return "RG";
  case EBayer::GR: return "GR";
  case EBayer::GB: return "GB";
  case EBayer::BG: return "BG";
  }
  return "?";
}

// One comparison: our routine and the reference, each a closure over prepared buffers.
struct SComparison {
  std::string routine;
  std::string reference;
  SSize size;
  std::function<void()> ours;
  std::function<void()> theirs;
};

// Buffers live as long as the closures that use them.
struct SBuffers {
  std::vector<uint8_t> input;
  std::vector<uint8_t> output;
  std::vector<uint8_t> scratch;
  cv::Mat matIn;
  cv::Mat matOut;
  cv::Mat matScratch;
};

std::vector<SComparison> MakeComparisons(std::vector<std::unique_ptr<SBuffers>>& keep) {
  std::vector<SComparison> list;
  for (const SSize size : kSizes) {
    const uint32_t w = size.width;
    const uint32_t h = size.height;
    const uint64_t pixels = uint64_t{w} * h;
    const int cw = static_cast<int>(w);
    const int ch = static_cast<int>(h);

    for (EBayer pattern : {EBayer::RG, EBayer::GR, EBayer::GB, EBayer::BG}) {
      auto& b = *keep.emplace_back(std::make_unique<SBuffers>());
      b.input = RandomBytes(pixels);
      b.output.resize(3 * pixels);
      b.matIn = cv::Mat(ch, cw, CV_8UC1, b.input.data());
      b.matOut = cv::Mat(ch, cw, CV_8UC3);
      const int code = OpenCvBayerToBgr(pattern);
      list.push_back({std::string("Bayer") + PatternName(pattern) + "8_to_BGR8", "opencv_cvtColor_bilinear", size,
                      [&b, w, h, pattern] { Pixel::Demosaic(b.input.data(), b.output.data(), w, h, pattern); },
                      [&b, code] { cv::cvtColor(b.matIn, b.matOut, code); }});
    }

    for (auto [format, name, bits] :
         {std::tuple{PixelFormat::BayerRG10, "BayerRG10", 10u}, std::tuple{PixelFormat::BayerGR12, "BayerGR12", 12u},
          std::tuple{PixelFormat::BayerRG12, "BayerRG12", 12u}, std::tuple{PixelFormat::BayerBG14, "BayerBG14", 14u},
          std::tuple{PixelFormat::BayerGB16, "BayerGB16", 16u}}) {
      auto& b = *keep.emplace_back(std::make_unique<SBuffers>());
      b.input = RandomSamples(pixels, bits);
      b.matIn = cv::Mat(ch, cw, CV_16UC1, b.input.data());
      b.matScratch = cv::Mat(ch, cw, CV_16UC3);
      b.matOut = cv::Mat(ch, cw, CV_8UC3);
      const EBayer pattern = format == PixelFormat::BayerRG10 || format == PixelFormat::BayerRG12 ? EBayer::RG
                             : format == PixelFormat::BayerGR12                                   ? EBayer::GR
                             : format == PixelFormat::BayerBG14                                   ? EBayer::BG
                                                                                                  : EBayer::GB;
      const int code = OpenCvBayerToBgr(pattern);
      const double scale = 1.0 / double(1u << (bits - 8));
      auto tool = std::make_shared<CImgTool>();
      const uint32_t f = format;
      list.push_back({std::string(name) + "_to_BGR8", "opencv_cvtColor16_then_convertTo8", size,
                      [&b, tool, w, h, f] { benchmark::DoNotOptimize(tool->Convert(b.input.data(), w, h, f)); },
                      [&b, code, scale] {
                        cv::cvtColor(b.matIn, b.matScratch, code);
                        b.matScratch.convertTo(b.matOut, CV_8U, scale);
                      }});
    }
    for (auto [format, name] :
         {std::pair{PixelFormat::BayerRG12p, "BayerRG12p"}, std::pair{PixelFormat::BayerRG12Packed, "BayerRG12Packed"},
          std::pair{PixelFormat::BayerRG10p, "BayerRG10p"}}) {
      // The reference gets the same pixels unpacked to 16 bits, which only favours it.
      auto& b = *keep.emplace_back(std::make_unique<SBuffers>());
      b.input = RandomBytes(ImageSizeBytes(format, w, h));
      b.scratch = RandomSamples(pixels, 12);
      b.matIn = cv::Mat(ch, cw, CV_16UC1, b.scratch.data());
      b.matScratch = cv::Mat(ch, cw, CV_16UC3);
      b.matOut = cv::Mat(ch, cw, CV_8UC3);
      auto tool = std::make_shared<CImgTool>();
      const uint32_t f = format;
      list.push_back({std::string(name) + "_to_BGR8", "opencv_cvtColor16_then_convertTo8", size,
                      [&b, tool, w, h, f] { benchmark::DoNotOptimize(tool->Convert(b.input.data(), w, h, f)); },
                      [&b] {
                        cv::cvtColor(b.matIn, b.matScratch, cv::COLOR_BayerBG2BGR);
                        b.matScratch.convertTo(b.matOut, CV_8U, 1.0 / 16);
                      }});
    }

    for (auto order : {Pixel::EYuv422Order::YUYV, Pixel::EYuv422Order::UYVY}) {
      auto& b = *keep.emplace_back(std::make_unique<SBuffers>());
      b.input = RandomBytes(2 * pixels);
      b.output.resize(3 * pixels);
      b.scratch.resize(4 * pixels);
      const bool yuyv = order == Pixel::EYuv422Order::YUYV;
      list.push_back({yuyv ? "YUV422_8_to_BGR8" : "YUV422_8_UYVY_to_BGR8",
                      yuyv ? "libyuv_YUY2ToARGB+ARGBToRGB24" : "libyuv_UYVYToARGB+ARGBToRGB24", size,
                      [&b, w, h, order] { Pixel::Yuv422ToBgr(b.input.data(), b.output.data(), w, h, order); },
                      [&b, cw, ch, yuyv] {
                        if (yuyv) {
                          libyuv::YUY2ToARGB(b.input.data(), 2 * cw, b.scratch.data(), 4 * cw, cw, ch);
                        } else {
                          libyuv::UYVYToARGB(b.input.data(), 2 * cw, b.scratch.data(), 4 * cw, cw, ch);
                        }
                        libyuv::ARGBToRGB24(b.scratch.data(), 4 * cw, b.output.data(), 3 * cw, cw, ch);
                      }});
    }
    {
      auto& b = *keep.emplace_back(std::make_unique<SBuffers>());
      b.input = RandomBytes(2 * pixels);
      b.output.resize(3 * pixels);
      b.scratch.resize(4 * pixels);
      list.push_back({"YCbCr422_8_to_BGR8", "libyuv_YUY2ToARGB+ARGBToRGB24", size,
                      [&b, w, h] { Pixel::YCbCr422ToBgr709(b.input.data(), b.output.data(), w, h); },
                      [&b, cw, ch] {
                        libyuv::YUY2ToARGB(b.input.data(), 2 * cw, b.scratch.data(), 4 * cw, cw, ch);
                        libyuv::ARGBToRGB24(b.scratch.data(), 4 * cw, b.output.data(), 3 * cw, cw, ch);
                      }});
    }
    {
      auto& b = *keep.emplace_back(std::make_unique<SBuffers>());
      b.input = RandomBytes(3 * pixels);
      b.output.resize(3 * pixels + 4096);
      list.push_back(
          {"RGB8_to_BGR8", "libyuv_RAWToRGB24", size,
           [&b, w, h] { Pixel::SwapRedBlue(b.input.data(), b.output.data() + 1024, w, h); },
           [&b, cw, ch] { libyuv::RAWToRGB24(b.input.data(), 3 * cw, b.output.data() + 1024, 3 * cw, cw, ch); }});
    }
    for (auto [name, bits] :
         {std::pair{"Mono10_to_Mono8", 10u}, std::pair{"Mono12_to_Mono8", 12u}, std::pair{"Mono16_to_Mono8", 16u}}) {
      auto& b = *keep.emplace_back(std::make_unique<SBuffers>());
      b.input = RandomSamples(pixels, bits);
      b.output.resize(pixels);
      const int scale = 1 << (16 - (bits - 8));  // libyuv: out = in x scale >> 16
      list.push_back({name, "libyuv_Convert16To8Plane", size,
                      [&b, w, h, bits = bits] { Pixel::ShiftTo8(b.input.data(), b.output.data(), w, h, bits); },
                      [&b, cw, ch, scale] {
                        libyuv::Convert16To8Plane(reinterpret_cast<const uint16_t*>(b.input.data()), cw,
                                                  b.output.data(), cw, scale, cw, ch);
                      }});
    }
    for (auto [name, format, bits] : {std::tuple{"Mono12Packed_to_Mono8", PixelFormat::Mono12Packed, 0u},
                                      std::tuple{"Mono10p_to_Mono8", PixelFormat::Mono10p, 10u},
                                      std::tuple{"Mono12p_to_Mono8", PixelFormat::Mono12p, 12u},
                                      std::tuple{"Mono14p_to_Mono8", PixelFormat::Mono14p, 14u}}) {
      auto& b = *keep.emplace_back(std::make_unique<SBuffers>());
      const uint64_t inputBytes = ImageSizeBytes(format, w, h);
      b.input = RandomBytes(inputBytes);
      b.output.resize(pixels);
      b.scratch.resize(inputBytes);
      std::function<void()> ours;
      if (bits == 0) {
        ours = [&b, w, h] { Pixel::KeepHighBytes(b.input.data(), b.output.data(), w, h); };
      } else {
        ours = [&b, w, h, bits = bits] { Pixel::UnpackLsbFirst(b.input.data(), b.output.data(), w, h, bits); };
      }
      // The target is half the memcpy rate of the input, so the ratio must be at least 0.5.
      list.push_back({name, "memcpy_of_input_size", size, ours, [&b, inputBytes] {
                        std::memcpy(b.scratch.data(), b.input.data(), inputBytes);
                        benchmark::ClobberMemory();
                      }});
    }
  }
  return list;
}

double SecondsOfOneCall(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  benchmark::ClobberMemory();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

int RunSummary() {
  std::vector<std::unique_ptr<SBuffers>> keep;
  const auto comparisons = MakeComparisons(keep);
  for (const auto& comparison : comparisons) {
    for (int warmUp = 0; warmUp < 3; ++warmUp) {
      comparison.ours();
      comparison.theirs();
    }
    // Single calls, alternating the two sides, for about half a second; each side's fastest call counts.
    // A single call is rarely interrupted, so on a machine shared with other work the fastest call is
    // still an undisturbed one, where the average of a batch would not be.
    double ours = 1e9;
    double theirs = 1e9;
    double spent = 0;
    for (int pair = 0; pair < 3000 && (pair < 15 || spent < 0.5); ++pair) {
      const double oursNow = SecondsOfOneCall(comparison.ours);
      const double theirsNow = SecondsOfOneCall(comparison.theirs);
      ours = std::min(ours, oursNow);
      theirs = std::min(theirs, theirsNow);
      spent += oursNow + theirsNow;
    }
    std::printf("%s %ux%u ratio=%.2f reference=%s ours_ms=%.4f reference_ms=%.4f\n", comparison.routine.c_str(),
                comparison.size.width, comparison.size.height, theirs / ours, comparison.reference.c_str(), ours * 1e3,
                theirs * 1e3);
    std::fflush(stdout);
  }
  return 0;
}

void RegisterBenchmarks(std::vector<std::unique_ptr<SBuffers>>& keep, const std::vector<SComparison>& comparisons) {
  (void)keep;
  for (const auto& comparison : comparisons) {
    const std::string size = std::to_string(comparison.size.width) + "x" + std::to_string(comparison.size.height);
    const uint64_t pixels = uint64_t{comparison.size.width} * comparison.size.height;
    auto ours = comparison.ours;
    auto theirs = comparison.theirs;
    benchmark::RegisterBenchmark((comparison.routine + "/ours/" + size).c_str(),
                                 [ours, pixels](benchmark::State& state) {
                                   for (auto _ : state) {
                                     ours();
                                   }
                                   state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * pixels));
                                 });
    benchmark::RegisterBenchmark((comparison.routine + "/" + comparison.reference + "/" + size).c_str(),
                                 [theirs, pixels](benchmark::State& state) {
                                   for (auto _ : state) {
                                     theirs();
                                   }
                                   state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * pixels));
                                 });
  }
}

}  // namespace

int main(int argc, char** argv) {
  cv::setNumThreads(1);
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--summary") == 0) {
      return RunSummary();
    }
  }
  std::vector<std::unique_ptr<SBuffers>> keep;
  const auto comparisons = MakeComparisons(keep);
  RegisterBenchmarks(keep, comparisons);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
