#pragma once

#include <QString>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "applet/control_panel.h"
#include "platform/result.h"

namespace panel {

/// A loaded library of applets. The library is released, and its code is gone, with the object.
class AppletLibrary {
 public:
  /// Loads the library at `path`. The error completes a sentence that begins with "This applet". It
  /// says why the library cannot be loaded or is no applet, or that `path` is not a full path.
  [[nodiscard]] static platform::Result<AppletLibrary, QString> Load(const std::string& path);

  [[nodiscard]] std::int32_t Send(applet::CplMessage message, std::intptr_t lParam1 = 0,
                                  std::intptr_t lParam2 = 0) const;

 private:
  struct Release {
    void operator()(void* library) const;
  };
  using Handle = std::unique_ptr<void, Release>;

  AppletLibrary(Handle handle, applet::CplAppletFunction function);

  Handle m_handle;
  applet::CplAppletFunction m_function;
};

/// What an applet says about itself.
struct AppletAnswer {
  std::u16string name;  ///< Empty if it gave none.
  std::string icon;     ///< SVG; empty if it gave none that can be read.
  std::int32_t data = 0;
};

/// One conversation with a library, in the order in which a control panel holds it. The object asks
/// each applet when the conversation begins, and ends the conversation when it is destroyed.
class AppletTalk {
 public:
  /// Begins a conversation. `library` must live as long as it. The error says why the applets
  /// cannot be used, in the form of AppletLibrary::Load.
  [[nodiscard]] static platform::Result<std::unique_ptr<AppletTalk>, QString> Begin(
      const AppletLibrary& library);

  AppletTalk(const AppletTalk&) = delete;
  AppletTalk& operator=(const AppletTalk&) = delete;
  ~AppletTalk();

  /// Returns one answer for each applet of the library, at least one.
  [[nodiscard]] const std::vector<AppletAnswer>& GetAnswers() const { return m_answers; }

  /// Shows an applet's window. Returns when the window is closed. `number` is an index of the
  /// answers.
  void Open(int number) const;

 private:
  explicit AppletTalk(const AppletLibrary& library) : m_library(library) {}

  [[nodiscard]] AppletAnswer Ask(int number) const;

  const AppletLibrary& m_library;
  std::vector<AppletAnswer> m_answers;
};

}  // namespace panel
