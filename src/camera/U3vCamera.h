#pragma once
// A USB3 Vision camera: the common camera, online for as long as the USB3 Vision producer has not reported the
// device gone since the last open.
#include "camera/Camera.h"

namespace TALVIR {

class CU3VCamera final : public CCamera {
public:
  using CCamera::CCamera;

  // The connection state: true from a successful open until the producer reports the device lost.
  bool IsOnline() override { return IsConnected(); }

protected:
  ~CU3VCamera() override = default;
};

}  // namespace TALVIR
