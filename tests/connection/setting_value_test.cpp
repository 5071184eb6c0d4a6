#include "connection/setting_value.h"

#include <gtest/gtest.h>

#include "tests/support/registry_access.h"

namespace {

using connection::ToSettingValue;

TEST(SettingValue, IsAlwaysAsLongAsItsField) {
  auto expected = support::Utf16Bytes(u"9600");
  expected.resize(32);
  EXPECT_EQ(ToSettingValue(u"9600", 32), expected);
  EXPECT_EQ(ToSettingValue(u"", 4), std::vector<std::byte>(4));
}

TEST(SettingValue, ATextAsLongAsItsFieldHasNoTerminator) {
  EXPECT_EQ(ToSettingValue(u"0123456789abcdef", 32), support::Utf16Bytes(u"0123456789abcdef"));
  EXPECT_EQ(ToSettingValue(u"0123456789abcdefgh", 32), support::Utf16Bytes(u"0123456789abcdef"));
}

TEST(SettingValue, EndsAtAZero) {
  EXPECT_EQ(ToSettingValue(std::u16string_view(u"1\0"
                                               u"2",
                                               3),
                           8),
            ToSettingValue(u"1", 8));
}

TEST(SettingValue, NeverEndsWithHalfACharacter) {
  EXPECT_EQ(ToSettingValue(u"1\U0001F600", 4), ToSettingValue(u"1", 4));
}

}  // namespace
