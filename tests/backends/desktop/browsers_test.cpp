#include "backends/desktop/default_program.h"
#include "backends/desktop/desktop_shell.h"

#include "tests/backends/desktop/fake_desktop.h"
#include "tests/support/results.h"

namespace {

using support::ErrorOf;
using Words = std::vector<std::string>;

constexpr const char* kUrl = "file:///a%20b#test";

[[nodiscard]] Words CommandOf(const std::string& exec) {
  return desktop::MakeCommand(exec, kUrl).value_or(Words{});
}

TEST(BrowserCommand, PutsTheAddressWhereTheCodeStands) {
  EXPECT_EQ(CommandOf("fox %u"), (Words{"fox", kUrl}));
  EXPECT_EQ(CommandOf("fox %U --last"), (Words{"fox", kUrl, "--last"}));
  EXPECT_EQ(CommandOf("fox --url=%f"), (Words{"fox", std::string("--url=") + kUrl}));
  EXPECT_EQ(CommandOf("run @@u %F @@"), (Words{"run", "@@u", kUrl, "@@"}));
}

TEST(BrowserCommand, PutsTheAddressLastIfThereIsNoCode) {
  EXPECT_EQ(CommandOf("fox --new"), (Words{"fox", "--new", kUrl}));
}

TEST(BrowserCommand, LeavesOutTheOtherCodes) {
  EXPECT_EQ(CommandOf("fox %i %c %k %u 100%%"), (Words{"fox", kUrl, "100%"}));
}

TEST(BrowserCommand, KnowsQuotesAndEscapes) {
  EXPECT_EQ(CommandOf(R"("/opt/a b/fox" "x\"y\\z\$" "" %u)"),
            (Words{"/opt/a b/fox", R"(x"y\z$)", "", kUrl}));
}

TEST(BrowserCommand, AnOpenQuoteMakesNoCommand) {
  EXPECT_EQ(ErrorOf(desktop::MakeCommand("fox \"x", kUrl)), desktop::ExecError::kBadQuotes);
  EXPECT_EQ(ErrorOf(desktop::MakeCommand("fox \\", kUrl)), desktop::ExecError::kBadQuotes);
}

TEST(BrowserCommand, AKeyWithoutAProgramMakesNoCommand) {
  for (const char* exec : {"", " ", "%i"}) {
    EXPECT_EQ(ErrorOf(desktop::MakeCommand(exec, kUrl)), desktop::ExecError::kNoProgram) << exec;
  }
}

TEST(BrowserCommand, NoLetterOfTheAddressEndsAnArgumentOrIsReadAsACode) {
  const std::string hostile = "file:///a b\"'$(c);%u%%\\\n--x #";
  EXPECT_EQ(desktop::MakeCommand("fox --a=%u \"b %U\" %f", hostile),
            (Words{"fox", "--a=" + hostile, "b " + hostile, hostile}));
}

constexpr const char* kSite = "https://site.example/";

class Browsers : public FakeDesktop {
 protected:
  [[nodiscard]] bool Open(const std::string& url) const {
    return InDesktop([&] {
      // As long as a loaded machine could take for a small program; a test never waits for its end.
      return desktop::OpenInBrowser(desktop::ReadEnvironment(), url, std::chrono::minutes(1))
          .has_value();
    });
  }
};

TEST_F(Browsers, ABrowserIsFoundByItsNameIfNothingElseNamesOne) {
  PutProgram("firefox-esr");
  EXPECT_TRUE(Open(kSite));
  EXPECT_EQ(CallOf("firefox-esr"), Words{kSite});
}

TEST_F(Browsers, TheUsersChoiceIsStartedByItsOwnCommand) {
  PutDefaultBrowser();
  PutProgram("xdg-open");
  EXPECT_TRUE(Open(kSite));
  EXPECT_EQ(CallOf("fox"), (Words{"--new", kSite}));
  EXPECT_FALSE(WasCalled("xdg-open"));
}

TEST_F(Browsers, ThePlaceWithinAPageIsKeptWhateverPlaceTheEntryHasForIt) {
  PutDefaultBrowser();
  for (const char* exec : {"fox %u", "fox %U", "fox %f", "fox %F", "fox"}) {
    PutEntry("fox.desktop", std::string("Exec=") + exec + "\n");
    EXPECT_TRUE(Open(kUrl));
    EXPECT_EQ(CallOf("fox"), Words{kUrl}) << exec;
  }
}

TEST_F(Browsers, AProgramForPagesServesIfNoneIsForSites) {
  PutDefaultBrowser();
  Choose("fox.desktop", "text/html");
  EXPECT_TRUE(Open(kSite));
  EXPECT_EQ(CallOf("fox"), (Words{"--new", kSite}));
}

TEST_F(Browsers, TheUsersOwnEntryComesBeforeTheMachines) {
  PutDefaultBrowser();
  Write("mine/applications/fox.desktop", Entry("Exec=fox --mine %u\n"));
  EXPECT_TRUE(Open(kSite));
  EXPECT_EQ(CallOf("fox"), (Words{"--mine", kSite}));
}

TEST_F(Browsers, ADashInTheNameOfAnEntryCanBeAFolder) {
  PutDefaultBrowser();
  PutEntry("kde/fox.desktop", "Exec=fox --kde %u\n");
  Choose("kde-fox.desktop");
  EXPECT_TRUE(Open(kSite));
  EXPECT_EQ(CallOf("fox"), (Words{"--kde", kSite}));
}

TEST_F(Browsers, OnlyTheMainGroupOfAnEntryCounts) {
  PutDefaultBrowser();
  PutEntry("fox.desktop",
           "# comment\nExec = fox\\s%u \n\n[Desktop Action private]\nExec=fox --private\n");
  EXPECT_TRUE(Open(kSite));
  EXPECT_EQ(CallOf("fox"), Words{kSite});
}

TEST_F(Browsers, AnEntryWhoseProgramIsMissingIsNone) {
  PutDefaultBrowser();
  PutEntry("fox.desktop", "Exec=fox %u\nTryExec=missing\n");
  PutProgram("xdg-open");
  EXPECT_TRUE(Open(kSite));
  EXPECT_FALSE(WasCalled("fox"));
  EXPECT_EQ(CallOf("xdg-open"), Words{kSite});
}

TEST_F(Browsers, AnEntryThatTheSessionsBusCouldStartIsStartedWithoutOne) {
  PutDefaultBrowser();
  PutEntry("fox.desktop", "Exec=fox %u\nDBusActivatable=true\n");
  EXPECT_TRUE(Open(kSite));
  EXPECT_EQ(CallOf("fox"), Words{kSite});
}

TEST_F(Browsers, ABrowserThatNeedsATerminalIsNotStarted) {
  PutDefaultBrowser();
  PutEntry("fox.desktop", "Exec=fox %u\nTerminal=true\n");
  PutProgram("xterm");
  PutProgram("xdg-open");
  EXPECT_TRUE(Open(kSite));
  EXPECT_FALSE(WasCalled("fox"));
  EXPECT_FALSE(WasCalled("xterm"));
  EXPECT_TRUE(WasCalled("xdg-open"));
}

TEST_F(Browsers, WithoutADefaultXdgOpenIsStarted) {
  PutProgram("xdg-open");
  EXPECT_TRUE(Open(kSite));
  EXPECT_EQ(CallOf("xdg-open"), Words{kSite});
}

TEST_F(Browsers, AfterADefaultThatFailsXdgOpenIsStarted) {
  PutDefaultBrowser();
  PutProgram("fox", "exit 3");
  PutProgram("xdg-open");
  EXPECT_TRUE(Open(kSite));
  EXPECT_TRUE(WasCalled("fox"));
  EXPECT_EQ(CallOf("xdg-open"), Words{kSite});
}

TEST_F(Browsers, TheVariableComesLast) {
  PutProgram("xdg-open", "exit 3");
  PutProgram("second");
  m_variables["BROWSER"] = "missing:second -x %s -y:third";
  EXPECT_TRUE(Open(kSite));
  EXPECT_TRUE(WasCalled("xdg-open"));
  EXPECT_EQ(CallOf("second"), (Words{"-x", kSite, "-y"}));
}

TEST_F(Browsers, ACommandOfTheVariableWithoutAPlaceGetsTheAddressLast) {
  PutProgram("plain");
  m_variables["BROWSER"] = "plain --flag";
  EXPECT_TRUE(Open(kSite));
  EXPECT_EQ(CallOf("plain"), (Words{"--flag", kSite}));
}

TEST_F(Browsers, IfNoneTakesTheAddressThatIsReported) {
  EXPECT_FALSE(Open(kSite));
  m_variables["BROWSER"] = "missing";
  EXPECT_FALSE(Open(kSite));
}

}  // namespace
