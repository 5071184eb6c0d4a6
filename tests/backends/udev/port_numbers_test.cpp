#include "backends/udev/serial_ports.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using platform::SerialDevice;
using Texts = std::vector<std::u16string>;
using Numbers = std::vector<std::optional<int>>;
using udev_ports::AssignNumbers;
using udev_ports::PortNumbers;

Texts NodesInOrder(const Texts& nodes) {
  std::vector<SerialDevice> devices;
  for (const std::u16string& node : nodes) {
    devices.push_back({.node = node, .serial = {}, .path = {}, .part = {}});
  }
  udev_ports::SortByNode(devices);
  Texts sorted;
  for (const SerialDevice& device : devices) {
    sorted.push_back(device.node);
  }
  return sorted;
}

std::u16string Digits(int number) {
  std::u16string digits;
  for (const char digit : std::to_string(number)) {
    digits += static_cast<char16_t>(digit);
  }
  return digits;
}

TEST(PortNumbers, BuiltInPortsComeFirstAndTenAfterNine) {
  EXPECT_EQ(NodesInOrder({u"/dev/rfcomm0", u"/dev/ttyUSB10", u"/dev/ttyACM0", u"/dev/ttyUSB9",
                          u"/dev/ttyS4", u"/dev/ttyS0"}),
            (Texts{u"/dev/ttyS0", u"/dev/ttyS4", u"/dev/ttyUSB9", u"/dev/ttyUSB10", u"/dev/ttyACM0",
                   u"/dev/rfcomm0"}));
}

TEST(PortNumbers, OddNodesHaveAnOrderToo) {
  EXPECT_EQ(NodesInOrder({u"", u"/dev/x1", u"/dev/ttyS", u"7"}),
            (Texts{u"/dev/ttyS", u"", u"7", u"/dev/x1"}));
}

TEST(PortNumbers, APortIsKnownByItsSerialNumberBeforeItsSocketBeforeItsNode) {
  const std::vector<SerialDevice> devices{
      {.node = u"/dev/ttyUSB0", .serial = u"FTDI_A1", .path = u"usb-1", .part = u"00"},
      {.node = u"/dev/ttyUSB1", .serial = {}, .path = u"usb-2", .part = u"00-1"},
      {.node = u"/dev/ttyS0", .serial = {}, .path = {}, .part = {}}};
  PortNumbers numbers;
  EXPECT_EQ(udev_ports::IdentitiesOf(devices, numbers),
            (Texts{u"serial FTDI_A1 00", u"path usb-2 00-1", u"node /dev/ttyS0"}));
}

TEST(PortNumbers, PortsThatCannotBeKeptApartAreCounted) {
  const SerialDevice clone{.node = u"/dev/ttyUSB0", .serial = u"X_1", .path = {}, .part = {}};
  PortNumbers numbers;
  EXPECT_EQ(udev_ports::IdentitiesOf({clone, clone, clone}, numbers),
            (Texts{u"serial X_1", u"serial X_1 #2", u"serial X_1 #3"}));
}

TEST(PortNumbers, DevicesOfOneSerialNumberAreKeptApartByTheirSockets) {
  const SerialDevice left{.node = u"/dev/ttyUSB0", .serial = u"X_1", .path = u"a", .part = u"00"};
  const SerialDevice right{.node = u"/dev/ttyUSB1", .serial = u"X_1", .path = u"b", .part = u"00"};
  PortNumbers numbers;
  EXPECT_EQ(udev_ports::IdentitiesOf({left, right}, numbers),
            (Texts{u"serial X_1 path a 00", u"serial X_1 path b 00"}));
  EXPECT_EQ(udev_ports::IdentitiesOf({right}, numbers), Texts{u"serial X_1 00"})
      << "Alone, and never seen beside another.";
  numbers = {{4, u"serial X_1 path b 00"}};
  EXPECT_EQ(udev_ports::IdentitiesOf({right}, numbers), Texts{u"serial X_1 path b 00"});
}

TEST(PortNumbers, NumbersNotedBeforeTheSecondDeviceOfASerialNumberCameAreKept) {
  const SerialDevice left{.node = u"/dev/ttyUSB0", .serial = u"X_1", .path = u"a", .part = {}};
  const SerialDevice right{.node = u"/dev/ttyUSB1", .serial = u"X_1", .path = u"b", .part = {}};
  PortNumbers numbers{{3, u"serial X_1"}, {7, u"serial X_1 #2"}};
  static_cast<void>(udev_ports::IdentitiesOf({left, right}, numbers));
  EXPECT_EQ(numbers, (PortNumbers{{3, u"serial X_1 path a"}, {7, u"serial X_1 path b"}}));
}

TEST(PortNumbers, NewPortsTakeTheLowestFreeNumbers) {
  PortNumbers numbers{{2, u"old"}};
  EXPECT_EQ(AssignNumbers({u"a", u"b"}, numbers), (Numbers{1, 3}));
  EXPECT_EQ(numbers, (PortNumbers{{1, u"a"}, {2, u"old"}, {3, u"b"}}));
}

TEST(PortNumbers, APortThatWasSeenBeforeHasItsNumberAgain) {
  PortNumbers numbers;
  ASSERT_EQ(AssignNumbers({u"a", u"b", u"c"}, numbers), (Numbers{1, 2, 3}));
  EXPECT_EQ(AssignNumbers({u"c", u"a"}, numbers), (Numbers{3, 1}));
  EXPECT_EQ(AssignNumbers({u"new", u"c"}, numbers), (Numbers{4, 3})) << "b's number stays its own.";
  EXPECT_EQ(AssignNumbers({u"b"}, numbers), Numbers{2});
}

TEST(PortNumbers, OnlyWhenNoneIsFreeAnAbsentPortLosesItsNumber) {
  PortNumbers numbers;
  Texts all;
  for (int i = 1; i <= 99; ++i) {
    all.push_back(u"port " + Digits(i));
  }
  ASSERT_EQ(AssignNumbers(all, numbers).back(), 99);
  EXPECT_EQ(AssignNumbers({u"port 1", u"port 3", u"new", u"port 2"}, numbers),
            (Numbers{1, 3, 4, 2}));
  EXPECT_EQ(numbers[4], u"new");
}

TEST(PortNumbers, APortBeyondTheLastNumberHasNone) {
  PortNumbers numbers;
  Texts all;
  for (int i = 1; i <= 100; ++i) {
    all.push_back(u"port " + Digits(i));
  }
  const Numbers assigned = AssignNumbers(all, numbers);
  EXPECT_EQ(assigned[98], 99);
  EXPECT_EQ(assigned[99], std::nullopt);
  EXPECT_EQ(numbers.size(), 99U);
}

}  // namespace
