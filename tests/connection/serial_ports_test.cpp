#include "connection/serial_ports.h"

#include <gtest/gtest.h>

#include "tests/connection/connection_fixture.h"
#include "tests/support/results.h"
#include "tests/support/watched_registry.h"

namespace {

using connection::ComparePorts;
using connection::IsPortName;
using connection::PortOrder;
using Names = std::vector<std::u16string>;

class ActivePorts : public ConnectionFixture {};

TEST_F(ActivePorts, AreReadInTheOrderOfTheRegistryWithTheirDevices) {
  PutPort(u"8", u"COM8:", u"/dev/ttyUSB0");
  PutPort(u"1", u"COM1:");
  const auto ports = connection::ReadActivePorts(m_registry);
  ASSERT_EQ(ports.size(), 2U);
  EXPECT_EQ(ports[0].name, u"COM8:");
  EXPECT_EQ(ports[0].device, u"/dev/ttyUSB0");
  EXPECT_EQ(ports[1].name, u"COM1:");
  EXPECT_EQ(ports[1].device, u"");
}

TEST_F(ActivePorts, DriversOfOtherDevicesArePassedOver) {
  PutPort(u"1", u"DSK1:");
  PutPort(u"2", u"COM2:");
  ASSERT_TRUE(m_registry.CreateKey(u"Drivers\\Active\\3")) << "One without a name.";
  ASSERT_EQ(
      support::ErrorOf(support::Put(m_registry, u"Drivers\\Active\\4", u"Name",
                                    platform::RegistryType::kDword, std::vector<std::byte>(4))),
      std::nullopt);
  const auto ports = connection::ReadActivePorts(m_registry);
  ASSERT_EQ(ports.size(), 1U);
  EXPECT_EQ(ports[0].name, u"COM2:");
}

TEST_F(ActivePorts, WhatAnotherProgramMadeUnreadableIsPassedOver) {
  PutPort(u"1", u"COM1:");
  PutPort(u"2", u"COM2:");
  support::WatchedRegistry odd(m_registry);
  constexpr std::size_t kFirstName = 2;  // After the key was opened.
  odd.FailCall(kFirstName, support::Failing::kOnce, platform::RegistryError::kInvalid);
  const auto ports = connection::ReadActivePorts(odd);
  EXPECT_TRUE(odd.HasFailed());
  ASSERT_EQ(ports.size(), 1U);
  EXPECT_EQ(ports[0].name, u"COM2:");
}

TEST_F(ActivePorts, WithoutTheKeyThereAreNone) {
  EXPECT_TRUE(connection::ReadActivePorts(m_registry).empty());
}

TEST_F(ActivePorts, AreDescribedByTheirDevicesAndWhatTheseAreCalled) {
  PutPort(u"1", u"COM1:", u"/dev/ttyUSB0");
  ASSERT_EQ(support::ErrorOf(support::PutText(m_registry, u"Drivers\\Active\\1", u"Description",
                                              u"FTDI FT232R")),
            std::nullopt);
  PutPort(u"2", u"COM2:", u"/dev/ttyS0");
  PutPort(u"3", u"COM3:");
  const auto ports = connection::ReadActivePorts(m_registry);
  ASSERT_EQ(ports.size(), 3U);
  EXPECT_EQ(connection::DescribeDevice(ports[0]), u"FTDI FT232R (/dev/ttyUSB0)");
  EXPECT_EQ(connection::DescribeDevice(ports[1]), u"/dev/ttyS0");
  EXPECT_EQ(connection::DescribeDevice(ports[2]), u"");
}

TEST_F(ActivePorts, AreFoundByTheirWholeNamesWithTheColon) {
  PutPort(u"1", u"COM1:", u"/dev/ttyS0");
  PutPort(u"10", u"COM10:", u"/dev/ttyUSB0");
  const auto ports = connection::ReadActivePorts(m_registry);
  ASSERT_NE(connection::FindPort(ports, u"COM10:"), nullptr);
  EXPECT_EQ(connection::FindPort(ports, u"COM10:")->device, u"/dev/ttyUSB0");
  for (const auto* other : {u"COM1", u"COM10", u"COM2:", u"com1:", u" COM1:", u""}) {
    EXPECT_EQ(connection::FindPort(ports, other), nullptr);
  }
}

TEST(PortName, IsComWithOneDigitOrTwoAndAColon) {
  for (const auto* name : {u"COM0:", u"COM9:", u"COM10:", u"COM99:"}) {
    EXPECT_TRUE(IsPortName(name));
  }
  for (const auto* name : {u"", u":", u"COM", u"COM:", u"COM1", u"COM100:", u"COMx:", u"COM1x:",
                           u"com1:", u"DSK1:", u" COM1:", u"COM1: "}) {
    EXPECT_FALSE(IsPortName(name)) << std::string(name, name + std::u16string_view(name).size());
  }
}

Names Sorted(Names names) {
  connection::SortPorts(names);
  return names;
}

TEST(PortOrder, TheFirstCharacterDecidesBeforeAnyNumber) {
  EXPECT_EQ(ComparePorts(u"DOM1:", u"COM9:"), PortOrder::kGreater);
  EXPECT_EQ(ComparePorts(u"COM9:", u"DOM1:"), PortOrder::kLess);
}

TEST(PortOrder, OnlyTheFirstCharacterIsLookedAt) {
  EXPECT_EQ(ComparePorts(u"CZZ1:", u"CAA2:"), PortOrder::kLess);
}

TEST(PortOrder, TheGreaterNumberIsGreater) {
  EXPECT_EQ(ComparePorts(u"COM2:", u"COM1:"), PortOrder::kGreater);
  EXPECT_EQ(ComparePorts(u"COM1:", u"COM2:"), PortOrder::kLess);
  EXPECT_EQ(ComparePorts(u"COM10:", u"COM9:"), PortOrder::kGreater);
  EXPECT_EQ(ComparePorts(u"COM9:", u"COM10:"), PortOrder::kLess);
}

TEST(PortOrder, EqualNamesCountAsLessBothWays) {
  EXPECT_EQ(ComparePorts(u"COM3:", u"COM3:"), PortOrder::kLess);
}

TEST(PortOrder, NoMoreThanTwoDigitsAreRead) {
  EXPECT_EQ(ComparePorts(u"COM109:", u"COM11:"), PortOrder::kLess);
}

TEST(PortOrder, ShortAndOddNamesHaveNoNumberAndAreNotReadBeyondTheirEnd) {
  EXPECT_EQ(ComparePorts(u"", u""), PortOrder::kLess);
  EXPECT_EQ(ComparePorts(u"C", u"COM1:"), PortOrder::kLess);
  EXPECT_EQ(ComparePorts(u"COM1:", u"COM"), PortOrder::kGreater);
  EXPECT_EQ(ComparePorts(u"COMx:", u"COM1:"), PortOrder::kLess);
  EXPECT_EQ(ComparePorts(u"COM1", u"COM0:"), PortOrder::kGreater);
}

TEST(PortOrder, SortsDownwards) {
  EXPECT_EQ(Sorted({u"COM1:", u"COM10:", u"COM2:"}), (Names{u"COM10:", u"COM2:", u"COM1:"}));
  EXPECT_EQ(Sorted({u"COM3:", u"COM2:", u"COM1:"}), (Names{u"COM3:", u"COM2:", u"COM1:"}));
}

TEST(PortOrder, SortingEndsWithEqualNamesToo) {
  EXPECT_EQ(Sorted({u"COM1:", u"COM2:", u"COM1:", u"COM2:"}),
            (Names{u"COM2:", u"COM2:", u"COM1:", u"COM1:"}));
}

TEST(PortOrder, SortsAllNamesThereCanBe) {
  Names names;
  Names downwards;
  for (int number = 0; number < 100; ++number) {
    std::u16string digits;
    for (const char digit : std::to_string(number)) {
      digits += static_cast<char16_t>(digit);
    }
    // 37 has no common divisor with 100, so that every place is met once, out of order.
    names.push_back(u"COM" + digits + u":");
    downwards.insert(downwards.begin(), names.back());
  }
  Names mixed;
  for (std::size_t i = 0; i < names.size(); ++i) {
    mixed.push_back(names[i * 37 % names.size()]);
  }
  EXPECT_EQ(Sorted(mixed), downwards);
}

TEST(PortOrder, NothingAndOneNameAreSorted) {
  EXPECT_EQ(Sorted({}), Names{});
  EXPECT_EQ(Sorted({u"COM2:"}), Names{u"COM2:"});
}

}  // namespace
