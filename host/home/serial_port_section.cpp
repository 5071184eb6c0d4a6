#include "host/home/serial_port_section.h"

#include <QEvent>
#include <QFile>
#include <QLabel>

#include "backends/text/registry_text.h"
#include "backends/udev/serial_ports.h"
#include "backends/udev/udev_serial_devices.h"
#include "connection/connection_page.h"
#include "host/home/say.h"
#include "resources/setup_strings.h"
#include "resources/tags_window_strings.h"
#include "storage/registry_keys.h"

namespace home {
namespace {

std::u16string ReadValue(const platform::OpenedKey& key, std::u16string_view name,
                         std::u16string_view otherwise) {
  std::u16string text = text::ReadText(key, name);
  return text.empty() ? std::u16string(otherwise) : text;
}

QString DescribePort(const std::u16string& name, const std::vector<connection::ActivePort>& ports) {
  const connection::ActivePort* const port = connection::FindPort(ports, name);
  QString shown = qt::ToQString(name);
  if (shown.endsWith(u':')) {
    shown.chop(1);  // The colon belongs to the stored name and to no sentence.
  }
  if (port == nullptr) {
    return Say(resources::kPortInUseAway).arg(shown);
  }
  const QString device = qt::ToQString(connection::DescribeDevice(*port));
  return device.isEmpty() ? Say(resources::kPortInUseOnly).arg(shown)
                          : Say(resources::kPortInUse).arg(shown, device);
}

}  // namespace

SerialPortSection::SerialPortSection(const SetupTools& tools, Errands& errands, QWidget* parent)
    : SetupSection(resources::kSerialPort, parent),
      m_tools(tools),
      m_errands(errands),
      m_port(AddText({})),
      m_line(AddText({})),
      m_ports(AddText({})),
      m_news(AddNews()) {
  m_port->setObjectName(QStringLiteral("portInUse"));
  m_line->setObjectName(QStringLiteral("lineSettings"));
  m_ports->setObjectName(QStringLiteral("portsHere"));
  m_news->setObjectName(QStringLiteral("portNews"));
  QPushButton* const change = AddButton(resources::kChangePort, "changePort", [this] {
    // That program has no options but the folder, in which it keeps what is chosen.
    const machine::Backends backends(m_tools.options);
    backends.MakeRoot();
    const QString root = QFile::decodeName(QByteArray::fromStdString(backends.GetRoot().native()));
    if (!m_tools.start(machine::kConnectionWindow, {root})) {
      ShowNews(*m_news,
               Say(resources::kNotStarted).arg(QLatin1String(machine::kConnectionWindow.name)));
    }
  });
  ShowButtons({change});
}

bool SerialPortSection::event(QEvent* event) {
  if (event->type() == QEvent::WindowActivate && isVisible()) {
    Look();
  }
  return SetupSection::event(event);
}

// The ports are published, as the window of the settings does it, if there is a store to do it in.
SerialPortSection::Line SerialPortSection::ReadLine(const machine::Options& options) {
  machine::Backends backends(options);
  std::error_code ignored;
  if (backends.HasRoot() && std::filesystem::is_directory(backends.GetRoot(), ignored)) {
    udev_ports::UdevSerialDevices devices;
    static_cast<void>(udev_ports::PublishSerialPorts(backends.GetRegistry(), devices));
  } else {
    backends.ChangeNothing();
  }
  const platform::OpenedKey key = backends.GetRegistry().OpenKey(storage::kDialerKey);
  return {ReadValue(key, storage::kComPortValue, connection::kDefaultPort),
          ReadValue(key, storage::kBaudRateValue, connection::kDefaultBaudRate),
          ReadValue(key, storage::kDataBitsValue, connection::kDefaultDataBits),
          ReadValue(key, storage::kStopBitsValue, connection::kDefaultStopBits),
          ReadValue(key, storage::kFlowControlValue, connection::kDefaultFlowControl),
          connection::ReadActivePorts(backends.GetRegistry())};
}

void SerialPortSection::Look() {
  m_errands.Do([&options = m_tools.options] { return ReadLine(options); },
               [this](const Line& line) { Show(line); });
}

void SerialPortSection::Show(const Line& line) {
  ShowText(*m_port, DescribePort(line.port, line.ports));
  ShowText(*m_line, Say(resources::kLineSettings)
                        .arg(qt::ToQString(line.rate), qt::ToQString(line.dataBits),
                             qt::ToQString(line.stopBits), qt::ToQString(line.flowControl)));
  QString ports = Say(line.ports.empty() ? resources::kNoPortsHere : resources::kPortsHere);
  for (const connection::ActivePort& port : line.ports) {
    ports +=
        u'\n' + Say(resources::kPortHere)
                    .arg(qt::ToQString(port.name), qt::ToQString(connection::DescribeDevice(port)));
  }
  ShowText(*m_ports, ports);
}

}  // namespace home
