#include "host/panel/inquiry.h"

#include <gtest/gtest.h>

#include <optional>

#include "tests/host/panel/panel_fixture.h"

namespace {

using std::chrono::milliseconds;

panel::LibraryReport Ask(const QString& library, const QString& program = panel_test::Program(),
                         milliseconds limit = std::chrono::minutes(1)) {
  std::optional<panel::LibraryReport> report;
  const panel::Inquiry inquiry(program, library, limit,
                               [&](const panel::LibraryReport& answer) { report = answer; });
  EXPECT_TRUE(panel_test::Until([&] { return report.has_value(); }));
  return report.value_or(panel::LibraryReport{});
}

TEST(Inquiry, TellsTheAppletsOfALibraryWhateverItPrints) {
  const panel::LibraryReport report = Ask(panel_test::Applet("good"));
  EXPECT_TRUE(report.problem.isEmpty());
  ASSERT_EQ(report.applets.size(), 2U);
  EXPECT_EQ(report.applets[0].name, QStringLiteral("Beta"));
  EXPECT_TRUE(report.applets[0].icon.startsWith("<svg"));
}

TEST(Inquiry, SurvivesALibraryThatCrashes) {
  EXPECT_EQ(Ask(panel_test::Applet("crash-at-inquire")).problem,
            QStringLiteral("crashes when it is asked"));
}

TEST(Inquiry, SurvivesALibraryThatEndsItsProcess) {
  EXPECT_EQ(Ask(panel_test::Applet("ends-at-inquire")).problem,
            QStringLiteral("ends when it is asked"));
}

TEST(Inquiry, GivesUpOnALibraryThatHangs) {
  EXPECT_EQ(
      Ask(panel_test::Applet("hang-at-inquire"), panel_test::Program(), milliseconds(1)).problem,
      QStringLiteral("does not answer"));
}

TEST(Inquiry, TellsWhyAFileIsNoApplet) {
  EXPECT_EQ(Ask(panel_test::Applet("no-entry")).problem,
            QStringLiteral("is no applet: it has no CPlApplet"));
}

TEST(Inquiry, TellsThatItCannotBeMade) {
  EXPECT_TRUE(Ask(panel_test::Applet("good"), QStringLiteral("/no/such/program"))
                  .problem.startsWith(QStringLiteral("cannot be asked: ")));
}

TEST(Inquiry, CanBeGivenUpWhileTheLibraryHangs) {
  bool isAnswered = false;
  {
    const panel::Inquiry inquiry(panel_test::Program(), panel_test::Applet("hang-at-inquire"),
                                 std::chrono::minutes(1),
                                 [&](const panel::LibraryReport&) { isAnswered = true; });
  }
  EXPECT_FALSE(isAnswered);
}

}  // namespace
