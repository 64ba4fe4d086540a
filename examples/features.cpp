// Opens a camera and reads, sets and saves its features.
//   features [SERIAL]     (default: the first camera found)
#include <talvir/Talvir.h>

#include <GenApi/GenApi.h>

#include <cstdio>

namespace {

TALVIR::ICamera* OpenCamera(const char* serial) {
  if (serial != nullptr) {
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

}  // namespace

int main(int argc, char** argv) {
  TALVIR::Init();
  int result = 1;
  TALVIR::ICamera* camera = OpenCamera(argc > 1 ? argv[1] : nullptr);
  if (camera == nullptr || camera->Open(TALVIR::AccessMode::Control) != TALVIR::Status::Ok) {
    std::fprintf(stderr, "features: no camera to open\n");
  } else {
    GenApi::INodeMap* features = camera->GetRemoteXml()->GetNodeMap();
    try {
      GenApi::CIntegerPtr width(features->GetNode("Width"));
      GenApi::CEnumerationPtr pixelFormat(features->GetNode("PixelFormat"));
      std::printf("%s %s: Width %lld (%lld..%lld step %lld), PixelFormat %s\n", features->GetVendorName().c_str(),
                  features->GetModelName().c_str(), static_cast<long long>(width->GetValue()),
                  static_cast<long long>(width->GetMin()), static_cast<long long>(width->GetMax()),
                  static_cast<long long>(width->GetInc()), pixelFormat->ToString().c_str());
      if (GenApi::IsWritable(width)) {
        width->SetValue(width->GetMax() / 2 / width->GetInc() * width->GetInc());  // checked against Min, Max, Inc
      }
      GenApi::StringList_t formats;
      pixelFormat->GetSymbolics(formats);
      std::printf("Width now %lld; %zu pixel formats offered\n", static_cast<long long>(width->GetValue()),
                  formats.size());
      // Saved settings: every streamable feature as "Name<TAB>Value" lines, loadable with GenApi::LoadFeatures.
      const GenICam::gcstring settings = GenApi::SaveFeatures(*features);
      const GenApi::CFeatureLoadResult loaded = GenApi::LoadFeatures(*features, settings);
      std::printf("settings: %zu bytes saved, %zu lines loaded back, %zu refused\n", settings.size(), loaded.Applied,
                  loaded.Failures.size());
      result = loaded.Failures.empty() ? 0 : 1;
    } catch (const GenICam::GenericException& error) {  // a missing feature, a refused value, a lost device
      std::fprintf(stderr, "features: %s\n", error.GetDescription());
    }
  }
  if (camera != nullptr) {
    camera->Release();
  }
  TALVIR::UnInit();
  return result;
}
