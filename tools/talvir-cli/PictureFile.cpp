#include "PictureFile.h"

#include "Command.h"
#include "PictureCodec.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>
#include <string>
#include <vector>

namespace TalvirCli {
namespace {

// Why the picture cannot be encoded; empty when it can.
std::string Problem(const SPicture& picture) {
  if (picture.pixels == nullptr || picture.width == 0 || picture.height == 0) {
    return "the picture is empty";
  }
  if (picture.channels != 1 && picture.channels != 3) {
    return "pictures have 1 or 3 channels, not " + std::to_string(picture.channels);
  }
  if (picture.bitDepth != 8 && picture.bitDepth != 16) {
    return "pictures have 8 or 16 bits per sample, not " + std::to_string(picture.bitDepth);
  }
  const size_t rowBytes = static_cast<size_t>(picture.width) * static_cast<size_t>(picture.channels) *
                          static_cast<size_t>(picture.bitDepth / 8);
  if (picture.stride < rowBytes) {
    return "a row of " + std::to_string(picture.stride) + " bytes cannot hold " + std::to_string(rowBytes);
  }
  return std::string();
}

}  // namespace

void CPictureFile::WritePng(const std::string& path, const SPicture& picture) { Write(path, picture, true); }

void CPictureFile::WriteTiff(const std::string& path, const SPicture& picture) { Write(path, picture, false); }

void CPictureFile::Write(const std::string& path, const SPicture& picture, bool png) {
  const std::string problem = Problem(picture);
  if (!problem.empty()) {
    throw CCommandError("cannot write " + path + ": " + problem);
  }
  std::vector<uint8_t> bytes;
  try {
    bytes = png ? CPictureCodec::EncodePng(picture) : CPictureCodec::EncodeTiff(picture);
  } catch (const std::bad_alloc&) {
    throw CCommandError("cannot write " + path + ": out of memory");
  } catch (const std::exception& error) {
    throw CCommandError("cannot write " + path + ": " + error.what());
  }
  errno = 0;
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) {
    throw CCommandError("cannot write " + path + ": " + (errno != 0 ? std::strerror(errno) : "cannot create it"));
  }
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  int error = errno;
  const bool closed = std::fclose(file) == 0;
  if (written && !closed) {
    error = errno;
  }
  if (!written || !closed) {
    std::remove(path.c_str());  // a cut-off picture would pass for a whole one
    throw CCommandError("cannot write " + path + ": " +
                        (error != 0 ? std::strerror(error) : "writing the file failed (disk full?)"));
  }
}

}  // namespace TalvirCli
