#include "backends/udev/serial_ports.h"

#include <gtest/gtest.h>

#include <map>

#include "backends/sqlite/sqlite_registry.h"
#include "tests/backends/udev/fake_serial_devices.h"
#include "tests/machine/memory_registry.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/temp_folder.h"
#include "tests/support/watched_registry.h"

namespace {

using platform::RegistryError;
using platform::SerialDevice;
using udev_ports::PublishSerialPorts;

/// Devices by the names of their ports.
using Ports = std::map<std::u16string, std::u16string>;

SerialDevice Adapter(std::u16string node, std::u16string serial) {
  return {.node = std::move(node),
          .description = {},
          .serial = std::move(serial),
          .path = {},
          .part = {}};
}

std::u16string TextOf(platform::Registry& registry, const std::u16string& path,
                      std::u16string_view name) {
  std::u16string text;
  const auto bytes = support::BytesOf(registry, path, name);
  for (std::size_t i = 0; i + 3 < bytes.size(); i += 2) {
    text += static_cast<char16_t>(std::to_integer<unsigned>(bytes[i]) |
                                  std::to_integer<unsigned>(bytes[i + 1]) << 8U);
  }
  return text;
}

Ports ActivePorts(platform::Registry& registry) {
  Ports ports;
  for (const std::u16string& subkey : support::SubkeyNames(registry, u"Drivers\\Active")) {
    const std::u16string path = u"Drivers\\Active\\" + subkey;
    ports[TextOf(registry, path, u"Name")] = TextOf(registry, path, u"Device");
  }
  return ports;
}

class SerialPorts : public testing::Test {
 protected:
  Ports Publish(std::vector<SerialDevice> devices) {
    m_devices.Set(std::move(devices));
    EXPECT_EQ(support::ErrorOf(PublishSerialPorts(m_registry, m_devices)), std::nullopt);
    return ActivePorts(m_registry);
  }

  FakeSerialDevices m_devices;
  machine::MemoryRegistry m_registry;
};

TEST_F(SerialPorts, EachDeviceIsAnActiveDriverWithItsNameAndNode) {
  EXPECT_EQ(Publish({Adapter(u"/dev/ttyUSB0", u"A"), Adapter(u"/dev/ttyS0", u"")}),
            (Ports{{u"COM1:", u"/dev/ttyS0"}, {u"COM2:", u"/dev/ttyUSB0"}}));
  EXPECT_EQ(support::SubkeyNames(m_registry, u"Drivers\\Active").size(), 2U);
}

TEST_F(SerialPorts, ADeviceThatHasANameOfItsOwnIsAnActiveDriverWithIt) {
  SerialDevice named = Adapter(u"/dev/ttyUSB0", u"A");
  named.description = u"FTDI FT232R USB UART";
  Publish({named, Adapter(u"/dev/ttyUSB1", u"B")});
  EXPECT_EQ(TextOf(m_registry, u"Drivers\\Active\\1", u"Description"), u"FTDI FT232R USB UART");
  EXPECT_TRUE(support::BytesOf(m_registry, u"Drivers\\Active\\2", u"Description").empty());
}

TEST_F(SerialPorts, TheSameDeviceHasTheSameNameAtAnotherNode) {
  Publish({Adapter(u"/dev/ttyUSB0", u"A"), Adapter(u"/dev/ttyUSB1", u"B")});
  EXPECT_EQ(Publish({Adapter(u"/dev/ttyUSB0", u"B"), Adapter(u"/dev/ttyUSB1", u"A")}),
            (Ports{{u"COM1:", u"/dev/ttyUSB1"}, {u"COM2:", u"/dev/ttyUSB0"}}));
}

TEST_F(SerialPorts, AnUnpluggedDeviceIsNotActiveAndKeepsItsName) {
  Publish({Adapter(u"/dev/ttyUSB0", u"A"), Adapter(u"/dev/ttyUSB1", u"B")});
  EXPECT_EQ(Publish({Adapter(u"/dev/ttyUSB1", u"B")}), (Ports{{u"COM2:", u"/dev/ttyUSB1"}}));
  EXPECT_EQ(Publish({Adapter(u"/dev/ttyUSB0", u"C"), Adapter(u"/dev/ttyUSB1", u"B")}),
            (Ports{{u"COM2:", u"/dev/ttyUSB1"}, {u"COM3:", u"/dev/ttyUSB0"}}));
  EXPECT_EQ(Publish({Adapter(u"/dev/ttyUSB5", u"A")}), (Ports{{u"COM1:", u"/dev/ttyUSB5"}}));
}

TEST_F(SerialPorts, WithoutDevicesTheListIsThereAndEmpty) {
  EXPECT_EQ(Publish({}), Ports{});
  EXPECT_TRUE(support::KeyExists(m_registry, u"Drivers\\Active"));
}

TEST_F(SerialPorts, WhereThePortsCannotBeToldTheListStaysAsItWas) {
  const Ports before = Publish({Adapter(u"/dev/ttyUSB0", u"A")});
  m_devices.Set(platform::Failure(platform::SerialDevicesError::kUnreadable));
  EXPECT_EQ(support::ErrorOf(PublishSerialPorts(m_registry, m_devices)), RegistryError::kNotFound);
  EXPECT_EQ(ActivePorts(m_registry), before);
}

TEST_F(SerialPorts, ValuesThatAreNoPortsAreLeftAlone) {
  for (const auto* name : {u"COM0:", u"COM01:", u"COM100:", u"COM:", u"x", u"M2:"}) {
    ASSERT_EQ(support::ErrorOf(
                  support::PutText(m_registry, udev_ports::kKnownPortsKey, name, u"serial A")),
              std::nullopt);
  }
  ASSERT_EQ(
      support::ErrorOf(support::Put(m_registry, udev_ports::kKnownPortsKey, u"COM1:",
                                    platform::RegistryType::kDword, std::vector<std::byte>(4))),
      std::nullopt);
  EXPECT_EQ(Publish({Adapter(u"/dev/ttyUSB0", u"A")}), (Ports{{u"COM1:", u"/dev/ttyUSB0"}}));
  EXPECT_EQ(TextOf(m_registry, std::u16string(udev_ports::kKnownPortsKey), u"COM100:"),
            u"serial A");
}

TEST_F(SerialPorts, WhatAnotherProgramMadeUnreadableIsPassedOver) {
  const std::vector devices{Adapter(u"/dev/ttyUSB0", u"A"), Adapter(u"/dev/ttyUSB1", u"B")};
  const Ports before = Publish(devices);
  support::WatchedRegistry odd(m_registry);
  // After the group was begun and the key opened: the name of the first port, and its value.
  for (const std::size_t call : {3U, 4U}) {
    odd.FailCall(call, support::Failing::kOnce, RegistryError::kInvalid);
    EXPECT_EQ(support::ErrorOf(PublishSerialPorts(odd, m_devices)), std::nullopt) << call;
    EXPECT_TRUE(odd.HasFailed());
    EXPECT_EQ(ActivePorts(m_registry).at(u"COM2:"), before.at(u"COM2:")) << call;
  }
}

TEST_F(SerialPorts, OfMoreDevicesThanNamesTheLastHaveNone) {
  std::vector<SerialDevice> devices;
  for (int i = 0; i < 120; ++i) {
    std::u16string node = u"/dev/ttyUSB";
    for (const char digit : std::to_string(i)) {
      node += static_cast<char16_t>(digit);
    }
    devices.push_back(Adapter(node, u""));
  }
  const Ports ports = Publish(devices);
  EXPECT_EQ(ports.size(), 99U);
  EXPECT_EQ(ports.at(u"COM99:"), u"/dev/ttyUSB98");
}

TEST_F(SerialPorts, AStoreThatFailsKeepsTheListAsItWas) {
  const Ports before = Publish({Adapter(u"/dev/ttyUSB0", u"A"), Adapter(u"/dev/ttyUSB1", u"B")});
  support::WatchedRegistry failing(m_registry);
  m_devices.Set(std::vector{Adapter(u"/dev/ttyUSB0", u"C"), Adapter(u"/dev/ttyUSB1", u"B")});
  std::size_t call = 1;
  for (;; ++call) {
    failing.FailCall(call, support::Failing::kOnce, RegistryError::kFull);
    const auto error = support::ErrorOf(PublishSerialPorts(failing, m_devices));
    if (!failing.HasFailed()) {
      EXPECT_EQ(error, std::nullopt);
      break;
    }
    EXPECT_EQ(error, RegistryError::kFull) << call;
    EXPECT_EQ(ActivePorts(m_registry), before) << call;
    EXPECT_EQ(TextOf(m_registry, std::u16string(udev_ports::kKnownPortsKey), u"COM3:"), u"")
        << call;
  }
  EXPECT_GT(call, 10U);
  EXPECT_EQ(ActivePorts(m_registry),
            (Ports{{u"COM2:", u"/dev/ttyUSB1"}, {u"COM3:", u"/dev/ttyUSB0"}}));
}

TEST(SerialPortsDatabase, NamesSurviveARestart) {
  const support::TempFolder folder;
  FakeSerialDevices devices({Adapter(u"/dev/ttyUSB0", u"A"), Adapter(u"/dev/ttyUSB1", u"B")});
  {
    sqlite::SqliteRegistry registry(folder.Path() / "registry.db");
    ASSERT_EQ(support::ErrorOf(PublishSerialPorts(registry, devices)), std::nullopt);
  }
  devices.Set(std::vector{Adapter(u"/dev/ttyUSB0", u"B")});
  sqlite::SqliteRegistry registry(folder.Path() / "registry.db");
  ASSERT_EQ(support::ErrorOf(PublishSerialPorts(registry, devices)), std::nullopt);
  EXPECT_EQ(ActivePorts(registry), (Ports{{u"COM2:", u"/dev/ttyUSB0"}}));
}

TEST_F(SerialPorts, APortIsFoundAgainWhereItIsNowAndNothingIsWritten) {
  Publish({Adapter(u"/dev/ttyUSB0", u"A"), Adapter(u"/dev/ttyUSB1", u"B")});
  m_devices.Set(std::vector{Adapter(u"/dev/ttyUSB0", u"B"), Adapter(u"/dev/ttyUSB1", u"C")});
  EXPECT_EQ(udev_ports::FindDevice(m_registry, m_devices, u"COM2:"), u"/dev/ttyUSB0");
  EXPECT_EQ(udev_ports::FindDevice(m_registry, m_devices, u"COM1:"), u"");
  EXPECT_EQ(ActivePorts(m_registry)[u"COM1:"], u"/dev/ttyUSB0");
}

TEST_F(SerialPorts, APortIsNotFoundIfNoPortWasEverSeen) {
  m_devices.Set(std::vector{Adapter(u"/dev/ttyUSB0", u"A")});
  EXPECT_EQ(udev_ports::FindDevice(m_registry, m_devices, u"COM1:"), u"");
}

}  // namespace
