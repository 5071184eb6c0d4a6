#pragma once

#include <optional>
#include <string>
#include <vector>

#include "connection/serial_ports.h"
#include "host/home/setup_section.h"
#include "host/home/setup_tools.h"

namespace home {

/// The serial port of the dialer: what is stored, the ports of this machine, and the window in
/// which both are changed.
class SerialPortSection final : public SetupSection {
 public:
  /// Both outlive this.
  SerialPortSection(const SetupTools& tools, Errands& errands, QWidget* parent);

  void OnShown() override { Look(); }

 protected:
  /// Looks again when the user comes back from the window of the settings.
  bool event(QEvent* event) override;

 private:
  /// The settings as they are stored, or what the page shows if nothing is.
  struct Line {
    std::u16string port;
    std::u16string rate;
    std::u16string dataBits;
    std::u16string stopBits;
    std::u16string flowControl;
    std::vector<connection::ActivePort> ports;
  };

  [[nodiscard]] static Line ReadLine(const machine::Options& options);
  void Look();
  void Show(const Line& line);

  const SetupTools& m_tools;
  Errands& m_errands;
  // Owned by the widget.
  QLabel* m_port;
  QLabel* m_line;
  QLabel* m_ports;
  LiveLabel* m_news;
};

}  // namespace home
