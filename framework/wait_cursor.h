#pragma once

#include "platform/ui.h"

namespace framework {

/// The cursor that says "wait", for as long as this lives. Belongs to the user-interface thread.
class WaitCursor {
 public:
  explicit WaitCursor(platform::Ui& ui) : m_ui(ui) { m_ui.SetCursor(platform::Cursor::kWait); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;
  ~WaitCursor() { m_ui.SetCursor(platform::Cursor::kNormal); }

 private:
  platform::Ui& m_ui;
};

}  // namespace framework
