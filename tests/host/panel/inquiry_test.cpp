#include "host/panel/inquiry.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "tests/host/panel/panel_fixture.h"
#include "tests/support/results.h"

namespace {

using panel::FromBytes;
using panel::ReportError;
using panel::ToBytes;
using panel_test::Applet;
using std::chrono::milliseconds;
using support::ErrorOf;

std::vector<panel::AppletReport> MakeApplets() {
  return {{QStringLiteral("Ångström"), QByteArray("<svg/>")}, {QString(), QByteArray()}};
}

panel::LibraryReport MakeProblem() { return platform::Failure(QStringLiteral("a problem")); }

TEST(LibraryReport, ComesBackFromItsBytes) {
  const auto report = FromBytes(ToBytes(MakeApplets()));
  ASSERT_TRUE(report && *report);
  const std::vector<panel::AppletReport>& applets = **report;
  ASSERT_EQ(applets.size(), 2U);
  EXPECT_EQ(applets[0].name, QStringLiteral("Ångström"));
  EXPECT_EQ(applets[0].icon, QByteArray("<svg/>"));
  EXPECT_TRUE(applets[1].name.isEmpty());
  const auto problem = FromBytes(ToBytes(MakeProblem()));
  ASSERT_TRUE(problem);
  EXPECT_EQ(ErrorOf(*problem), QStringLiteral("a problem"));
}

TEST(LibraryReport, IsNoneAtWhateverPlaceItIsCutOff) {
  for (const QByteArray& bytes : {ToBytes(MakeApplets()), ToBytes(MakeProblem())}) {
    for (qsizetype count = 0; count < bytes.size(); ++count) {
      EXPECT_EQ(ErrorOf(FromBytes(bytes.left(count))), ReportError::kCutShort) << count;
    }
  }
}

TEST(LibraryReport, IsNoneWithMoreAfterIt) {
  EXPECT_EQ(ErrorOf(FromBytes(ToBytes(MakeApplets()) + 'x')), ReportError::kForeign);
  EXPECT_EQ(ErrorOf(FromBytes(ToBytes(MakeProblem()) + 'x')), ReportError::kForeign);
}

TEST(LibraryReport, IsNoneOfAnythingElse) {
  EXPECT_EQ(ErrorOf(FromBytes("noise on standard output\n")), ReportError::kForeign);
  EXPECT_EQ(ErrorOf(FromBytes(QByteArray(64, '\xff'))), ReportError::kForeign);
}

TEST(LibraryReport, HasNoControlCharactersInItsTexts) {
  const QString unsafe = QStringLiteral("A\a\nB\u202e");
  const auto report = FromBytes(ToBytes(std::vector<panel::AppletReport>{{unsafe, {}}}));
  ASSERT_TRUE(report && *report);
  EXPECT_EQ((**report)[0].name, QStringLiteral("A B"));
  const auto problem = FromBytes(ToBytes(platform::Failure(unsafe)));
  ASSERT_TRUE(problem);
  EXPECT_EQ(ErrorOf(*problem), QStringLiteral("A B"));
}

panel::LibraryReport Ask(const QString& library, const QString& program = panel_test::Program(),
                         milliseconds limit = std::chrono::minutes(1)) {
  std::optional<panel::LibraryReport> report;
  const panel::Inquiry inquiry(program, library, limit,
                               [&](const panel::LibraryReport& answer) { report = answer; });
  EXPECT_TRUE(panel_test::Until([&] { return report.has_value(); }));
  return report.value_or(platform::Failure(QStringLiteral("no report")));
}

TEST(Inquiry, ReportsTheAppletsOfALibraryWhateverItPrints) {
  const panel::LibraryReport report = Ask(Applet("good"));
  ASSERT_EQ(ErrorOf(report), std::nullopt);
  ASSERT_EQ(report->size(), 2U);
  EXPECT_EQ((*report)[0].name, QStringLiteral("Beta"));
  EXPECT_TRUE((*report)[0].icon.startsWith("<svg"));
}

TEST(Inquiry, SurvivesALibraryThatCrashes) {
  EXPECT_EQ(ErrorOf(Ask(Applet("crash-at-inquire"))), QStringLiteral("crashes when it is asked"));
}

TEST(Inquiry, SurvivesALibraryThatEndsItsProcess) {
  EXPECT_EQ(ErrorOf(Ask(Applet("ends-at-inquire"))), QStringLiteral("ends when it is asked"));
}

TEST(Inquiry, GivesUpOnALibraryThatHangs) {
  EXPECT_EQ(ErrorOf(Ask(Applet("hang-at-inquire"), panel_test::Program(), milliseconds(1))),
            QStringLiteral("does not answer"));
}

TEST(Inquiry, SaysWhyAFileIsNoApplet) {
  EXPECT_EQ(ErrorOf(Ask(Applet("no-entry"))), QStringLiteral("is no applet: it has no CPlApplet"));
}

TEST(Inquiry, ReportsThatItCannotBeMade) {
  const panel::LibraryReport report = Ask(Applet("good"), QStringLiteral("/no/such/program"));
  ASSERT_FALSE(report);
  EXPECT_TRUE(report.error().startsWith(QStringLiteral("cannot be asked: ")));
}

TEST(Inquiry, CanBeGivenUpWhileTheLibraryHangs) {
  bool isAnswered = false;
  {
    const panel::Inquiry inquiry(panel_test::Program(), Applet("hang-at-inquire"),
                                 std::chrono::minutes(1),
                                 [&](const panel::LibraryReport&) { isAnswered = true; });
  }
  EXPECT_FALSE(isAnswered);
}

}  // namespace
