#include "host/panel/newcomer.h"

#include <gtest/gtest.h>

namespace {

TEST(Equipment, IsReadFromTheCommandLinesAnswer) {
  const auto equipment =
      panel::ParseEquipment(R"({"contacts":{"count":3,"problem":"none"},"microphones":1})");
  ASSERT_TRUE(equipment);
  EXPECT_EQ(equipment->contacts, 3);
  EXPECT_EQ(equipment->contactsProblem, QStringLiteral("none"));
  EXPECT_EQ(equipment->microphones, 1);
}

TEST(Equipment, IsNotGuessedFromAnythingElse) {
  EXPECT_FALSE(panel::ParseEquipment(""));
  EXPECT_FALSE(panel::ParseEquipment("The following argument was not expected: status"));
  EXPECT_FALSE(panel::ParseEquipment("{}"));
  EXPECT_FALSE(panel::ParseEquipment(R"({"contacts":{"count":"x"},"microphones":1})"));
}

TEST(Equipment, ThatIsCompleteNeedsNoWords) {
  EXPECT_TRUE(panel::DescribeMissing({1, {}, 1}).isEmpty());
}

TEST(Equipment, ThatIsMissingIsNamedWithWhatHelps) {
  const QString both = panel::DescribeMissing({0, {}, 0});
  EXPECT_TRUE(both.contains(QStringLiteral("No contacts were found. Add people")));
  EXPECT_TRUE(both.contains(QStringLiteral("No microphone was found. Plug one in")));
  EXPECT_EQ(panel::DescribeMissing({0, QStringLiteral("the file is gone"), 1}),
            QStringLiteral("No contacts could be read: the file is gone."));
  EXPECT_FALSE(panel::DescribeMissing({0, {}, 1}).contains(QStringLiteral("microphone")));
  EXPECT_FALSE(panel::DescribeMissing({1, {}, 0}).contains(QStringLiteral("contacts")));
}

}  // namespace
