#include "host/panel/applet_talk.h"

#include <gtest/gtest.h>

#include "tests/host/panel/panel_fixture.h"
#include "tests/support/results.h"

namespace {

using panel::AppletLibrary;
using panel::AppletTalk;
using panel_test::Applet;
using panel_test::AppletTrace;
using support::ErrorOf;

platform::Result<AppletLibrary, QString> Load(const char* fault) {
  auto library = AppletLibrary::Load(Applet(fault).toStdString());
  EXPECT_EQ(ErrorOf(library), std::nullopt);
  return library;
}

std::string LoadingProblem(const QString& path) {
  return ErrorOf(AppletLibrary::Load(path.toStdString())).value_or(QString()).toStdString();
}

TEST(AppletLibrary, IsNoneWithoutTheEntryFunction) {
  EXPECT_EQ(LoadingProblem(Applet("no-entry")), "is no applet: it has no CPlApplet");
}

TEST(AppletLibrary, SaysWhyAFileCannotBeLoaded) {
  EXPECT_TRUE(LoadingProblem(QStringLiteral(__FILE__)).starts_with("cannot be loaded: "));
  EXPECT_TRUE(LoadingProblem(Applet("not-there")).starts_with("cannot be loaded: "));
}

TEST(AppletTalk, HoldsTheMessagesInTheOrderOfAControlPanel) {
  const AppletTrace trace;
  const auto library = Load("good");
  {
    const auto talk = AppletTalk::Begin(*library);
    ASSERT_EQ(ErrorOf(talk), std::nullopt);
    (*talk)->Open(1);
  }
  // The number of the message, the applet's number, its data.
  EXPECT_EQ(trace.Lines(), QStringList({"1 0 0", "2 0 0", "8 0 record", "8 1 record", "5 1 101",
                                        "6 0 100", "6 1 101", "7 0 0"}));
}

TEST(AppletTalk, GivesNameIconAndDataOfEveryApplet) {
  const auto library = Load("good");
  const auto talk = AppletTalk::Begin(*library);
  ASSERT_EQ(ErrorOf(talk), std::nullopt);
  ASSERT_EQ((*talk)->GetAnswers().size(), 2U);
  EXPECT_EQ((*talk)->GetAnswers()[0].name, u"Beta");
  EXPECT_EQ((*talk)->GetAnswers()[1].name, u"Alpha");
  EXPECT_TRUE((*talk)->GetAnswers()[1].icon.starts_with("<svg"));
  EXPECT_EQ((*talk)->GetAnswers()[1].data, 101);
}

TEST(AppletTalk, SaysNothingMoreToALibraryThatDoesNotWantToStart) {
  const AppletTrace trace;
  const auto library = Load("refuses");
  EXPECT_EQ(ErrorOf(AppletTalk::Begin(*library)), QStringLiteral("refuses to start"));
  EXPECT_EQ(trace.Lines(), QStringList({"1 0 0"}));
}

TEST(AppletTalk, EndsAfterACountThatMakesNoSense) {
  const AppletTrace trace;
  const auto library = Load("odd-count");
  EXPECT_EQ(ErrorOf(AppletTalk::Begin(*library)), QStringLiteral("says that it has -5 applets"));
  EXPECT_EQ(trace.Lines(), QStringList({"1 0 0", "2 0 0", "7 0 0"}));
}

TEST(AppletTalk, ReadsANameThatFillsItsField) {
  const auto library = Load("odd-texts");
  const auto talk = AppletTalk::Begin(*library);
  ASSERT_EQ(ErrorOf(talk), std::nullopt);
  const std::u16string& name = (*talk)->GetAnswers()[0].name;
  ASSERT_EQ(name.size(), 32U);
  EXPECT_EQ(name.front(), u'Q');
  EXPECT_EQ(name.back(), u'Z');
}

TEST(AppletTalk, TakesNothingFromARecordOfAnotherSize) {
  const auto library = Load("other-record");
  const auto talk = AppletTalk::Begin(*library);
  ASSERT_EQ(ErrorOf(talk), std::nullopt);
  EXPECT_TRUE((*talk)->GetAnswers()[0].name.empty());
  EXPECT_TRUE((*talk)->GetAnswers()[0].icon.empty());
}

TEST(AppletTalk, HasNoIconIfItsHandleIsOfNothing) {
  const auto library = Load("no-icon");
  const auto talk = AppletTalk::Begin(*library);
  ASSERT_EQ(ErrorOf(talk), std::nullopt);
  EXPECT_EQ((*talk)->GetAnswers()[0].name, u"Beta");
  EXPECT_TRUE((*talk)->GetAnswers()[0].icon.empty());
}

}  // namespace
