// Grabs images from a camera and saves the last one as a PGM (monochrome) or PPM (colour) file.
//   grab_and_save [SERIAL] [FILE]     (default: the first camera found, last.pnm)
#include <talvir/Talvir.h>

#include <cstdio>
#include <string>

namespace {

TALVIR::ICamera* OpenCamera(const char* serial) {
  if (serial != nullptr && *serial != '\0') {
    return TALVIR::CreateCameraBySN(serial);
  }
  TALVIR::ICamera* camera = nullptr;
  for (TALVIR::ICameraInfo* info : TALVIR::Discovery(nullptr)) {
    if (camera == nullptr) {
      camera = TALVIR::CreateCamera(info);
    }
    info->Destroy();
  }
  return camera;
}

// The converted image is Mono8 (PGM) or BGR8 (PPM, which wants R, G, B).
bool SavePnm(const std::string& path, TALVIR::IImage& image) {
  const uint8_t* pixels = image.GetConvertedImage();
  if (pixels == nullptr) {
    return false;
  }
  const bool colour = TALVIR::ConvertedPixelFormat(static_cast<uint32_t>(image.GetPixelFormat())) == 0x02180015;
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) {
    return false;
  }
  std::fprintf(file, "P%c\n%llu %llu\n255\n", colour ? '6' : '5', static_cast<unsigned long long>(image.GetWidth()),
               static_cast<unsigned long long>(image.GetHeight()));
  const size_t count = static_cast<size_t>(image.GetWidth() * image.GetHeight());
  for (size_t index = 0; index < count; ++index) {
    if (colour) {
      const uint8_t rgb[3] = {pixels[3 * index + 2], pixels[3 * index + 1], pixels[3 * index]};
      std::fwrite(rgb, 1, 3, file);
    } else {
      std::fputc(pixels[index], file);
    }
  }
  return std::fclose(file) == 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string path = argc > 2 ? argv[2] : "last.pnm";
  TALVIR::Init();
  int result = 1;
  TALVIR::ICamera* camera = OpenCamera(argc > 1 ? argv[1] : nullptr);
  if (camera != nullptr && camera->Open(TALVIR::AccessMode::Control) == TALVIR::Status::Ok &&
      camera->StartGrabbing(TALVIR::GrabMode::Direct, 0) == TALVIR::Status::Ok) {
    int frames = 0;
    for (int attempt = 0; attempt < 20 && frames < 10; ++attempt) {
      TALVIR::IImage* image = nullptr;
      const int32_t status = camera->GetImage(&image, 1000);
      if (image == nullptr) {
        std::fprintf(stderr, "grab_and_save: no image (status %d)\n", status);
        continue;
      }
      if (status == TALVIR::Status::Ok && ++frames == 10) {
        const bool saved = SavePnm(path, *image);
        std::printf("frame %llu, %llux%llu: %s %s\n", static_cast<unsigned long long>(image->GetFrameId()),
                    static_cast<unsigned long long>(image->GetWidth()),
                    static_cast<unsigned long long>(image->GetHeight()), saved ? "saved as" : "could not save",
                    path.c_str());
        result = saved ? 0 : 1;
      }
      image->Release();  // gives the buffer back to the stream
    }
    camera->StopGrabbing();
  } else {
    std::fprintf(stderr, "grab_and_save: no camera to grab from\n");
  }
  if (camera != nullptr) {
    camera->Release();
  }
  TALVIR::UnInit();
  return result;
}
