#include "connection/port_order.h"

#include <gtest/gtest.h>

namespace {

using connection::ComparePorts;
using connection::PortOrder;
using Names = std::vector<std::u16string>;

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
