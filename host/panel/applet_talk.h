#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "applet/control_panel.h"
#include "host/panel/applet_library.h"

namespace panel {

/// What an applet told of itself.
struct AppletAnswer {
  std::u16string name;  ///< Empty where it gave none.
  std::string icon;     ///< SVG; empty where it gave none that can be read.
  std::int32_t data = 0;
};

/// One conversation with a library, in the order in which a control panel holds it: begins it and
/// asks for every applet when made, ends it when destroyed.
class AppletTalk {
 public:
  explicit AppletTalk(const AppletLibrary& library);
  AppletTalk(const AppletTalk&) = delete;
  AppletTalk& operator=(const AppletTalk&) = delete;
  ~AppletTalk();

  /// Why the applets cannot be used; empty where they can.
  [[nodiscard]] const std::string& GetProblem() const { return m_problem; }

  /// One for each applet of the library.
  [[nodiscard]] const std::vector<AppletAnswer>& GetAnswers() const { return m_answers; }

  /// Shows an applet's window and returns when it was closed. `number` is below the count of
  /// answers.
  void Open(int number) const;

 private:
  [[nodiscard]] AppletAnswer Ask(int number) const;

  const AppletLibrary& m_library;
  std::string m_problem;
  bool m_hasBegun = false;
  std::vector<AppletAnswer> m_answers;
};

}  // namespace panel
