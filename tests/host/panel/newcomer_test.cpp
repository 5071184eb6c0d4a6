#include "host/panel/newcomer.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace {

TEST(Equipment, IsReadFromTheCommandLinesAnswer) {
  const auto equipment =
      panel::ParseEquipment(R"({"contacts":{"count":3,"problem":"none"},"microphones":1})");
  ASSERT_TRUE(equipment);
  EXPECT_EQ(equipment->contacts, 3);
  EXPECT_EQ(equipment->contactsProblem, QStringLiteral("none"));
  EXPECT_EQ(equipment->microphones, 1);
}

TEST(Equipment, IsMissingForAReasonWithoutTheOptionsOfTheCommandLine) {
  const auto equipment = panel::ParseEquipment(
      R"({"contacts":{"count":0,"problem":"it is away; choose one with --contacts FILE",)"
      R"("reason":"it is away"},"microphones":1})");
  ASSERT_TRUE(equipment);
  EXPECT_EQ(equipment->contactsProblem, QStringLiteral("it is away"));
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
            QStringLiteral("No contacts could be read: the file is gone. You can choose other "
                           "contacts in Voice tags, on the page Set-up."));
  EXPECT_FALSE(panel::DescribeMissing({0, {}, 1}).contains(QStringLiteral("microphone")));
  EXPECT_FALSE(panel::DescribeMissing({1, {}, 0}).contains(QStringLiteral("contacts")));
}

TEST(SampleEnvironment, KnowsTheSampleContactsByAPlaceThatOutlivesTheProgramsOwn) {
  const QTemporaryDir cache;
  qputenv("XDG_CACHE_HOME", cache.path().toUtf8());
  const QString copy = cache.filePath(QStringLiteral("voxtrel/samples/contacts.vcf"));
  for (int start = 0; start < 2; ++start) {
    const QStringList environment = panel::SampleEnvironment(QStringLiteral("/a.wav"));
    EXPECT_TRUE(environment.contains(QStringLiteral("VOXTREL_CONTACTS=\\contacts.vcf")));
    QFile file(copy);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << "start " << start;
    EXPECT_TRUE(file.readAll().startsWith("BEGIN:VCARD"));
    ASSERT_TRUE(file.remove()) << "It is made again.";
  }
  qunsetenv("XDG_CACHE_HOME");
}

}  // namespace
