#include "connection/active_ports.h"

#include "tests/connection/connection_fixture.h"
#include "tests/support/failing_registry.h"
#include "tests/support/results.h"

namespace {

using connection::IsPortName;

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
  support::FailingRegistry odd(m_registry);
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

TEST(PortName, IsComWithOneDigitOrTwoAndAColon) {
  for (const auto* name : {u"COM0:", u"COM9:", u"COM10:", u"COM99:"}) {
    EXPECT_TRUE(IsPortName(name));
  }
  for (const auto* name : {u"", u":", u"COM", u"COM:", u"COM1", u"COM100:", u"COMx:", u"COM1x:",
                           u"com1:", u"DSK1:", u" COM1:", u"COM1: "}) {
    EXPECT_FALSE(IsPortName(name)) << std::string(name, name + std::u16string_view(name).size());
  }
}

}  // namespace
