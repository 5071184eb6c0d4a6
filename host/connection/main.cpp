// voxtrel-connection ROOT: the connection settings in a window of their own.
//
// The command line starts this program with the root folder that it uses. So `voxtrel` itself is
// not linked with the window library.

#include <QApplication>
#include <filesystem>
#include <string>
#include <variant>

#include "backends/posix/posix_file_system.h"
#include "backends/posix/posix_threads.h"
#include "backends/qt/application.h"
#include "backends/qt/icons.h"
#include "backends/qt/qt_ui.h"
#include "backends/qt/strings.h"
#include "backends/qt/ui_thread.h"
#include "backends/text/utf.h"
#include "backends/udev/serial_ports.h"
#include "backends/udev/udev_serial_devices.h"
#include "connection/connection_page.h"
#include "connection/serial_ports.h"
#include "host/connection/arguments.h"
#include "host/machine/system.h"
#include "language/texts.h"
#include "resources/desktop_strings.h"
#include "resources/dialogs.h"
#include "resources/strings.h"
#include "storage/device_paths.h"

namespace {

constexpr std::u16string_view kApplicationName = u"Zedra Voxtrel";

/// Says which device a port is, or that it is not there. The page shows a port as it is stored, so
/// that it stays chosen while it is unplugged.
QString RemarkOnPort(platform::Registry& registry, const QString& name) {
  const auto ports = connection::ReadActivePorts(registry);
  const connection::ActivePort* const port = connection::FindPort(ports, qt::ToText(name));
  if (port == nullptr) {
    return name.isEmpty() ? QString() : qt::Say(resources::kPortNotConnected).arg(name);
  }
  const QString device = qt::ToQString(connection::DescribeDevice(*port));
  return device.isEmpty() ? QString() : qt::Say(resources::kPortIs).arg(name, device);
}

void Run(const std::filesystem::path& root) {
  const auto settings = machine::MakeRegistry(root, machine::RegistryUse::kChange);
  platform::Registry& registry = *settings;
  posix::PosixFileSystem files(text::FromHostName(root.native()));
  posix::PosixClock clock;
  udev_ports::UdevSerialDevices devices;
  // If that fails, the ports are those of last time.
  static_cast<void>(udev_ports::PublishSerialPorts(registry, devices));

  qt::UiThread thread;
  qt::QtUi ui(thread, kApplicationName,
              {.getBytes = [](int /*picture*/) { return std::span<const std::byte>(); }});
  ui.OfferCancel();
  ui.SetRemark(resources::kPortComboId,
               [&registry](const QString& port) { return RemarkOnPort(registry, port); });
  connection::RunConnectionSheet(
      ui, registry,
      language::LoadTexts(files, storage::kLanguageFile, clock)(resources::kSheetCaption));
}

}  // namespace

int main(int argc, char** argv) {
  // Before the window library looks for a screen: the help needs none.
  const auto parsed = connection::ParseArguments(argc, argv);
  if (const int* exitCode = std::get_if<int>(&parsed)) {
    return *exitCode;
  }
  const QApplication application(argc, argv);
  qt::FollowDesktopLanguage();
  QApplication::setWindowIcon(qt::OwnIcon());
  Run(std::get<std::string>(parsed));
  return 0;
}
