// Lists every camera the installed producers can see.
#include <talvir/Talvir.h>

#include <cstdio>

int main() {
  TALVIR::Init();  // reads DiscoveryCfg.ini beside the library, if there is one
  const std::list<TALVIR::ICameraInfo*> cameras = TALVIR::Discovery(nullptr);
  for (TALVIR::ICameraInfo* info : cameras) {
    std::printf("%-8s %-10s serial %-10s producer %s\n", info->GetVendor(), info->GetModel(), info->GetSerialNumber(),
                info->GetCustomInfo(TALVIR::CustomInfo::ProducerFile));
    info->Destroy();  // every record handed out carries one reference for the caller
  }
  std::printf("%zu cameras\n", cameras.size());
  TALVIR::UnInit();
  return cameras.empty() ? 1 : 0;
}
