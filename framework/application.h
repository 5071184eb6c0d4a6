#pragma once

#include "framework/object.h"

namespace framework {

/// An application in the style of the framework: what is done once when its library is loaded.
class CWinApp : public CObject {
 public:
  /// False where the application cannot run.
  virtual bool InitInstance() { return true; }
};

}  // namespace framework
