#include "host/applet/qt_presentation.h"

#include <list>
#include <string>
#include <utility>

#include "backends/qt/host/host_application.h"
#include "backends/qt/qt_ui.h"
#include "backends/qt/ui_thread.h"
#include "host/applet/no_window.h"
#include "resources/pictures.h"
#include "resources/strings.h"

namespace applet {
namespace {

std::span<const std::byte> GetPicture(int number) {
  const resources::Picture* const picture = resources::FindPicture(number);
  return picture == nullptr ? std::span<const std::byte>() : picture->svg;
}

class QtPresentation final : public Presentation {
 public:
  QtPresentation(platform::Clock& clock, platform::Threads& threads)
      : m_ui(m_thread, resources::kAppletName, {GetPicture}),
        m_clock(m_thread, clock),
        m_threads(m_thread, threads) {}

  [[nodiscard]] platform::Ui& GetUi() override { return m_ui; }
  [[nodiscard]] platform::Clock& GetClock() override { return m_clock; }
  [[nodiscard]] platform::Threads& GetThreads() override { return m_threads; }

  void Watch(int descriptor, std::function<void()> onReadable) override {
    m_watches.emplace_back(descriptor, std::move(onReadable));
  }
  void BringForward(std::string_view activationToken) override {
    qt::BringWindowsForward(std::string(activationToken));
  }

 private:
  qt::UiThread m_thread;
  qt::QtUi m_ui;
  qt::QtClock m_clock;
  qt::QtThreads m_threads;
  std::list<qt::DescriptorWatch> m_watches;
};

}  // namespace

std::unique_ptr<Presentation> MakeDesktopPresentation(platform::Clock& clock,
                                                      platform::Threads& threads) {
  if (!qt::EnsureApplication()) {
    return std::make_unique<NoWindow>(clock, threads);
  }
  return std::make_unique<QtPresentation>(clock, threads);
}

}  // namespace applet
