// Out-of-line destructor so that the callback class's type information lives in the library.
#include <GenApi/NodeCallback.h>

namespace GenApi {
CNodeCallback::~CNodeCallback() = default;
}  // namespace GenApi
