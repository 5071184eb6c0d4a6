#include "backends/desktop/xdg_shell.h"

#include <memory>
#include <mutex>

#include "backends/posix/posix_threads.h"
#include "backends/text/utf.h"
#include "tests/backends/desktop/fake_desktop.h"

namespace {

using Words = std::vector<std::string>;

constexpr std::u16string_view kHelp = u"file:ZedraVoxtrelPE_help.htm";
constexpr std::u16string_view kHelpOnTest = u"file:ZedraVoxtrelPE_help.htm#test";

class XdgShell : public FakeDesktop {
 protected:
  /// Has a shell do something, and returns when it is done.
  template <typename Use>
  void With(Use use) {
    xdg::XdgShell::Options options;
    options.environment = m_environment;
    options.helpFolders = {Path("help")};
    options.tell = [this](std::u16string_view text) {
      const std::lock_guard lock(m_mutex);
      m_told.push_back(text::ToUtf8(text));
    };
    // As long as a loaded machine could take for a small program; a test never waits for its end.
    options.patience = std::chrono::minutes(1);
    xdg::XdgShell shell(m_threads, std::move(options));
    use(shell);
  }
  void Help(std::u16string_view commandLine) {
    With([&](platform::Shell& shell) { shell.StartProgram(u"peghelp.exe", commandLine); });
  }
  void OpenSite(std::u16string_view site) {
    With([&](platform::Shell& shell) { shell.Execute(u"open", u"iexplore.exe", site); });
  }

  [[nodiscard]] std::string PageUrl(const std::string& rest = "") const {
    return "file://" + Path("help/ZedraVoxtrelPE_help.htm") + rest;
  }

  void PutDefaultBrowser() {
    PutAnswer("xdg-settings", "fox.desktop");
    PutEntry("fox.desktop", "Exec=fox --new %u\n");
    PutProgram("fox");
  }

  posix::PosixThreads m_threads;
  std::mutex m_mutex;
  Words m_told;
};

TEST_F(XdgShell, OpensTheHelpPageInTheDefaultBrowserItself) {
  PutDefaultBrowser();
  PutProgram("xdg-open");
  Write("help/ZedraVoxtrelPE_help.htm", "");
  Help(kHelp);
  EXPECT_EQ(CallOf("fox"), (Words{"--new", PageUrl()}));
  EXPECT_EQ(CallOf("xdg-settings"), (Words{"get", "default-web-browser"}));
  EXPECT_FALSE(WasCalled("xdg-open"));
  EXPECT_TRUE(m_told.empty());
}

TEST_F(XdgShell, KeepsThePlaceWithinThePage) {
  PutDefaultBrowser();
  Write("help/ZedraVoxtrelPE_help.htm", "");
  Help(kHelpOnTest);
  EXPECT_EQ(CallOf("fox"), (Words{"--new", PageUrl("#test")}));
}

TEST_F(XdgShell, PrefersThePageInTheLanguageOfTheUser) {
  PutDefaultBrowser();
  Write("help/ZedraVoxtrelPE_help.htm", "");
  Write("help/de/ZedraVoxtrelPE_help.htm", "");
  m_environment.languages = {"de_AT", "de"};
  Help(kHelpOnTest);
  EXPECT_EQ(CallOf("fox"),
            (Words{"--new", "file://" + Path("help/de/ZedraVoxtrelPE_help.htm") + "#test"}));
}

TEST_F(XdgShell, StartsTheBrowserAlsoWhereThePageIsMissingAndSaysNothing) {
  PutDefaultBrowser();
  Help(kHelp);
  EXPECT_EQ(CallOf("fox"), (Words{"--new", PageUrl()}));
  EXPECT_TRUE(m_told.empty());
}

TEST_F(XdgShell, AsksForTheBrowserInASecondWay) {
  PutProgram("xdg-settings", "exit 1");
  PutAnswer("xdg-mime", "fox.desktop");
  PutEntry("fox.desktop", "Exec=fox %u\n");
  PutProgram("fox");
  OpenSite(u"https://site.example/");
  EXPECT_EQ(CallOf("xdg-mime"), (Words{"query", "default", "x-scheme-handler/https"}));
  EXPECT_EQ(CallOf("fox"), Words{"https://site.example/"});
}

TEST_F(XdgShell, FallsBackToXdgOpen) {
  PutProgram("xdg-open");
  OpenSite(u"https://site.example/");
  EXPECT_EQ(CallOf("xdg-open"), Words{"https://site.example/"});
  EXPECT_TRUE(m_told.empty());
}

TEST_F(XdgShell, FallsBackToXdgOpenWhereTheDefaultBrowserFails) {
  PutDefaultBrowser();
  PutProgram("fox", "exit 3");
  PutProgram("xdg-open");
  OpenSite(u"https://site.example/");
  EXPECT_TRUE(WasCalled("fox"));
  EXPECT_EQ(CallOf("xdg-open"), Words{"https://site.example/"});
}

TEST_F(XdgShell, DoesNotStartABrowserThatNeedsATerminal) {
  PutDefaultBrowser();
  PutEntry("fox.desktop", "Exec=fox %u\nTerminal=true\n");
  PutProgram("xdg-open");
  OpenSite(u"https://site.example/");
  EXPECT_FALSE(WasCalled("fox"));
  EXPECT_TRUE(WasCalled("xdg-open"));
}

TEST_F(XdgShell, FallsBackToTheVariableInTheEnd) {
  PutProgram("xdg-open", "exit 3");
  PutProgram("second");
  m_environment.browsers = "missing:second -x %s -y:third";
  OpenSite(u"https://site.example/");
  EXPECT_EQ(CallOf("second"), (Words{"-x", "https://site.example/", "-y"}));
}

TEST_F(XdgShell, ACommandOfTheVariableWithoutAPlaceGetsTheAddressLast) {
  PutProgram("plain");
  m_environment.browsers = "plain --flag";
  OpenSite(u"https://site.example/");
  EXPECT_EQ(CallOf("plain"), (Words{"--flag", "https://site.example/"}));
}

TEST_F(XdgShell, WithoutABrowserNamesThePage) {
  Write("help/ZedraVoxtrelPE_help.htm", "");
  Help(kHelpOnTest);
  EXPECT_EQ(m_told, Words{"There is no web browser to show this with: " +
                          Path("help/ZedraVoxtrelPE_help.htm")});
}

TEST_F(XdgShell, WithoutABrowserNamesTheSite) {
  OpenSite(u"https://site.example/");
  EXPECT_EQ(m_told, Words{"There is no web browser to show this with: https://site.example/"});
}

TEST_F(XdgShell, OpensNothingButSites) {
  PutDefaultBrowser();
  OpenSite(u"--profile=/tmp/x");
  With([](platform::Shell& shell) {
    shell.Execute(u"print", u"iexplore.exe", u"https://site.example/");
    shell.Execute(u"open", u"other.exe", u"https://site.example/");
  });
  EXPECT_FALSE(WasCalled("fox"));
  EXPECT_EQ(m_told.size(), 3U);
}

TEST_F(XdgShell, StartsNoOtherProgram) {
  PutProgram("other.exe");
  With([](platform::Shell& shell) { shell.StartProgram(u"other.exe", u"x"); });
  EXPECT_FALSE(WasCalled("other.exe"));
  EXPECT_EQ(m_told, Words{"There is no such program here: other.exe"});
}

TEST_F(XdgShell, TwoRequestsAreBothDone) {
  PutDefaultBrowser();
  PutProgram("xdg-open");
  With([](platform::Shell& shell) {
    shell.StartProgram(u"peghelp.exe", kHelp);
    shell.Execute(u"open", u"iexplore.exe", u"https://site.example/");
  });
  EXPECT_TRUE(WasCalled("fox"));
  EXPECT_TRUE(m_told.empty());
}

}  // namespace
