#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "backends/sqlite/sqlite_registry.h"
#include "backends/udev/serial_ports.h"
#include "tests/support/registry_access.h"
#include "tests/support/run_program.h"
#include "tests/support/temp_folder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The real library with the real program, on a machine that a tool makes up: what the kernel and
// udev say of each device.

std::string BuiltIn(const std::string& node, const std::string& type) {
  return "P: /devices/platform/serial8250/tty/" + node + "\nN: " + node +
         "\nE: SUBSYSTEM=tty\nE: DEVNAME=/dev/" + node + "\nA: type=" + type + "\n\n";
}

/// One port of an adapter in a socket; `serial` may be empty, as for many cheap ones.
std::string Adapter(const std::string& node, const std::string& socket, const std::string& serial,
                    const std::string& port = "0") {
  const std::string parent = "/devices/pci0/usb1/" + socket + "/" + node;
  return "P: " + parent + "\nE: SUBSYSTEM=usb-serial\nA: port_number=" + port + "\n\nP: " + parent +
         "/tty/" + node + "\nN: " + node + "\nE: SUBSYSTEM=tty\nE: DEVNAME=/dev/" + node +
         "\nE: ID_SERIAL=Maker_Model" + (serial.empty() ? "" : "_" + serial) +
         (serial.empty() ? "" : "\nE: ID_SERIAL_SHORT=" + serial) + "\nE: ID_PATH=pci-" + socket +
         "\nE: ID_USB_INTERFACE_NUM=00\n\n";
}

std::string BluetoothLink(const std::string& node, const std::string& address) {
  return "P: /devices/virtual/tty/" + node + "\nN: " + node +
         "\nE: SUBSYSTEM=tty\nE: DEVNAME=/dev/" + node + "\nA: address=" + address +
         "\nA: channel=1\n\n";
}

class UdevMachine : public testing::Test {
 protected:
  /// The numbers of ports are remembered only in a root folder that is there.
  UdevMachine() { std::filesystem::create_directory(Root()); }

  /// The ports that the program shows on a machine with these devices, as "COM1: /dev/ttyS0".
  [[nodiscard]] std::vector<std::string> PortsOn(const std::string& devices) const {
    std::vector<std::string> ports;
    for (const auto& port : ShowOn(devices)) {
      ports.push_back(port["name"].get<std::string>() + " " + port["device"].get<std::string>());
    }
    return ports;
  }
  [[nodiscard]] std::vector<std::string> DescriptionsOn(const std::string& devices) const {
    std::vector<std::string> descriptions;
    for (const auto& port : ShowOn(devices)) {
      descriptions.push_back(port.value("description", ""));
    }
    return descriptions;
  }

  [[nodiscard]] nlohmann::json ShowOn(const std::string& devices) const {
    const std::string file = (m_folder.Path() / "devices").string();
    std::ofstream(file) << devices;
    // The tool's library is loaded before the sanitizer's, which asks to be the first otherwise.
    const auto run = support::RunProgram({"umockdev-run", "-d", file, "--", VOXTREL_PROGRAM,
                                          "--root", Root(), "--json", "connection", "show"},
                                         {"ASAN_OPTIONS=verify_asan_link_order=0"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    const auto json = nlohmann::json::parse(run.out, nullptr, false);
    if (!json.is_object()) {
      ADD_FAILURE() << run.out << run.err;
      return nlohmann::json::array();
    }
    return json["ports"];
  }
  [[nodiscard]] std::string Root() const { return (m_folder.Path() / "root").string(); }

 private:
  support::TempFolder m_folder;
};

TEST_F(UdevMachine, HasThePortsWithHardwareBehindThemAndNoOtherTerminals) {
  const std::string console =
      "P: /devices/virtual/tty/tty1\nN: tty1\nE: SUBSYSTEM=tty\nE: DEVNAME=/dev/tty1\n\n";
  EXPECT_THAT(PortsOn(console + BuiltIn("ttyS0", "4") + BuiltIn("ttyS1", "0") +
                      BluetoothLink("rfcomm0", "00:11:22:33:44:55") +
                      Adapter("ttyACM0", "1-3", "Z") + Adapter("ttyUSB0", "1-2", "A")),
              ElementsAre("COM1: /dev/ttyS0", "COM2: /dev/ttyUSB0", "COM3: /dev/ttyACM0",
                          "COM4: /dev/rfcomm0"));
}

TEST_F(UdevMachine, ADeviceIsCalledByItsMakerAndModel) {
  const auto named = [](const std::string& node, const std::string& names) {
    std::string device = Adapter(node, "1-" + node, node);
    return device.insert(device.size() - 1, names);
  };
  const std::vector<std::string> expected{"FTDI FT232R USB UART", "Prolific PL2303", "Acme"};
  EXPECT_EQ(DescriptionsOn(named("ttyUSB0",
                                 "E: ID_VENDOR_ENC=FTDI\nE: "
                                 "ID_MODEL_ENC=FT232R\\x20USB\\x20UART\\x20\n") +
                           named("ttyUSB1",
                                 "E: ID_VENDOR_FROM_DATABASE=Prolific\nE: "
                                 "ID_MODEL_FROM_DATABASE=Prolific PL2303\n") +
                           named("ttyUSB2", "E: ID_VENDOR_ENC=Acme\n")),
            expected);
}

TEST_F(UdevMachine, WithoutSerialPortsThereIsNone) { EXPECT_THAT(PortsOn(""), IsEmpty()); }

TEST_F(UdevMachine, AnAdapterWithASerialNumberIsTheSameInEverySocket) {
  ASSERT_THAT(PortsOn(Adapter("ttyUSB0", "1-1", "A") + Adapter("ttyUSB1", "1-2", "B")),
              ElementsAre("COM1: /dev/ttyUSB0", "COM2: /dev/ttyUSB1"));
  EXPECT_THAT(PortsOn(Adapter("ttyUSB0", "1-7", "B")), ElementsAre("COM2: /dev/ttyUSB0"));
}

TEST_F(UdevMachine, AnAdapterWithoutASerialNumberIsKnownByItsSocket) {
  ASSERT_THAT(PortsOn(Adapter("ttyUSB0", "1-1", "") + Adapter("ttyUSB1", "1-2", "")),
              ElementsAre("COM1: /dev/ttyUSB0", "COM2: /dev/ttyUSB1"));
  EXPECT_THAT(PortsOn(Adapter("ttyUSB0", "1-2", "")), ElementsAre("COM2: /dev/ttyUSB0"));
  EXPECT_THAT(PortsOn(Adapter("ttyUSB0", "1-3", "")), ElementsAre("COM3: /dev/ttyUSB0"));
}

TEST_F(UdevMachine, ThePortsOfOneAdapterAreKeptApart) {
  const std::string first = Adapter("ttyUSB0", "1-1", "A", "0");
  ASSERT_THAT(PortsOn(first + Adapter("ttyUSB1", "1-1", "A", "1")),
              ElementsAre("COM1: /dev/ttyUSB0", "COM2: /dev/ttyUSB1"));
  EXPECT_THAT(PortsOn(Adapter("ttyUSB0", "1-1", "A", "1") + Adapter("ttyUSB1", "1-1", "A", "0")),
              ElementsAre("COM2: /dev/ttyUSB0", "COM1: /dev/ttyUSB1"));
}

TEST_F(UdevMachine, TwoAdaptersWithOneSerialNumberKeepTheirNumbers) {
  ASSERT_THAT(PortsOn(Adapter("ttyUSB0", "1-1", "0001") + Adapter("ttyUSB1", "1-2", "0001")),
              ElementsAre("COM1: /dev/ttyUSB0", "COM2: /dev/ttyUSB1"));
  EXPECT_THAT(PortsOn(Adapter("ttyUSB0", "1-2", "0001") + Adapter("ttyUSB1", "1-1", "0001")),
              ElementsAre("COM2: /dev/ttyUSB0", "COM1: /dev/ttyUSB1"));
  EXPECT_THAT(PortsOn(Adapter("ttyUSB0", "1-2", "0001")), ElementsAre("COM2: /dev/ttyUSB0"));
  EXPECT_THAT(PortsOn(Adapter("ttyUSB0", "1-1", "0001")), ElementsAre("COM1: /dev/ttyUSB0"));
}

TEST_F(UdevMachine, AnAdapterKeepsItsNumberWhenASecondOfItsSerialNumberComes) {
  ASSERT_THAT(PortsOn(Adapter("ttyUSB0", "1-1", "0001")), ElementsAre("COM1: /dev/ttyUSB0"));
  EXPECT_THAT(PortsOn(Adapter("ttyUSB0", "1-1", "0001") + Adapter("ttyUSB1", "1-2", "0001")),
              ElementsAre("COM1: /dev/ttyUSB0", "COM2: /dev/ttyUSB1"));
  EXPECT_THAT(PortsOn(Adapter("ttyUSB0", "1-2", "0001") + Adapter("ttyUSB1", "1-1", "0001")),
              ElementsAre("COM2: /dev/ttyUSB0", "COM1: /dev/ttyUSB1"));
}

TEST_F(UdevMachine, ABluetoothLinkIsKnownByTheOtherEnd) {
  ASSERT_THAT(PortsOn(BluetoothLink("rfcomm0", "00:00:00:00:00:01") +
                      BluetoothLink("rfcomm1", "00:00:00:00:00:02")),
              ElementsAre("COM1: /dev/rfcomm0", "COM2: /dev/rfcomm1"));
  EXPECT_THAT(PortsOn(BluetoothLink("rfcomm0", "00:00:00:00:00:02")),
              ElementsAre("COM2: /dev/rfcomm0"));
}

}  // namespace
