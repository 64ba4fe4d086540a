#pragma once
// A GigE Vision producer: every device record also carries the producer's GigE device record.
#include "gentl/Cti.h"

namespace TALVIR {

class CGevCti final : public CCti {
public:
  using CCti::CCti;
  ~CGevCti() override;

  void FillCameraInfo(CCameraInfo& record, const std::string& deviceID) override;

  // A further module that the GigE camera code may load through this producer; freed with the producer.
  void SetExtraModule(Platform::ModuleHandle module) { m_extraModule = module; }
  Platform::ModuleHandle ExtraModule() const { return m_extraModule; }
  void SetExtraPointer(void* pointer) { m_extraPointer = pointer; }
  void* ExtraPointer() const { return m_extraPointer; }

private:
  Platform::ModuleHandle m_extraModule = nullptr;
  void* m_extraPointer = nullptr;
};

}  // namespace TALVIR
