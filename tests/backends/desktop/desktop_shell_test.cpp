#include "backends/desktop/desktop_shell.h"

#include <memory>
#include <mutex>

#include "backends/posix/posix_threads.h"
#include "backends/text/utf.h"
#include "tests/backends/desktop/fake_desktop.h"

namespace {

using Words = std::vector<std::string>;

class HelpPages : public FakeDesktop {
 protected:
  [[nodiscard]] std::string Find(const std::string& address) const {
    return desktop::HelpFolders{{Path("a"), Path("b")}, {"pt_BR", "pt"}}.Find(address).GetUrl();
  }
  [[nodiscard]] std::string Url(const std::string& rest) const { return "file://" + Path(rest); }
};

TEST_F(HelpPages, AreFoundInTheFirstFolderThatHasThem) {
  Write("b/page.htm", "");
  EXPECT_EQ(Find("file:page.htm"), Url("b/page.htm"));
  Write("a/page.htm", "");
  EXPECT_EQ(Find("file:page.htm"), Url("a/page.htm"));
}

TEST_F(HelpPages, AreFoundInTheBestLanguage) {
  Write("a/page.htm", "");
  Write("a/pt/page.htm", "");
  EXPECT_EQ(Find("file:page.htm#test"), Url("a/pt/page.htm#test"));
  Write("a/pt_BR/page.htm", "");
  EXPECT_EQ(Find("file:page.htm#test"), Url("a/pt_BR/page.htm#test"));
}

TEST_F(HelpPages, ThatAreMissingHaveAnAddressNevertheless) {
  EXPECT_EQ(Find("file:page.htm#test"), Url("a/page.htm#test"));
  EXPECT_EQ(desktop::HelpFolders{}.Find("file:page.htm").GetUrl(), "file:///page.htm");
}

TEST(HelpPage, EscapesWhatAnAddressGivesAMeaningTo) {
  EXPECT_EQ((desktop::HelpPage{"/a b/100%#?\xC3\xA4.htm", ""}.GetUrl()),
            "file:///a%20b/100%25%23%3F%C3%A4.htm");
}

constexpr std::u16string_view kHelp = u"file:ZedraVoxtrelPE_help.htm";
constexpr std::u16string_view kHelpOnTest = u"file:ZedraVoxtrelPE_help.htm#test";

class DesktopShell : public FakeDesktop {
 protected:
  /// Has a shell do something, and returns when it is done.
  template <typename Use>
  void With(Use use) {
    EXPECT_TRUE(InDesktop([&] {
      std::mutex mutex;
      std::ofstream told(Path("told"), std::ios::app);
      desktop::DesktopShell::Options options;
      options.environment = desktop::ReadEnvironment();
      options.helpFolders = {Path("help")};
      options.report = [&](std::u16string_view text) {
        const std::lock_guard lock(mutex);
        told << text::ToUtf8(text) << std::endl;
      };
      // As long as a loaded machine could take for a small program; a test never waits for its end.
      options.patience = std::chrono::minutes(1);
      posix::PosixThreads threads;
      desktop::DesktopShell shell(threads, std::move(options));
      use(shell);
      return true;
    }));
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
  /// The messages that the user saw.
  [[nodiscard]] Words Told() const { return LinesOf("told"); }
};

TEST_F(DesktopShell, OpensTheHelpPageInTheDefaultBrowserItself) {
  PutDefaultBrowser();
  PutProgram("xdg-open");
  Write("help/ZedraVoxtrelPE_help.htm", "");
  Help(kHelp);
  EXPECT_EQ(CallOf("fox"), (Words{"--new", PageUrl()}));
  EXPECT_FALSE(WasCalled("xdg-open"));
  EXPECT_TRUE(Told().empty());
}

TEST_F(DesktopShell, KeepsThePlaceWithinThePage) {
  PutDefaultBrowser();
  Write("help/ZedraVoxtrelPE_help.htm", "");
  Help(kHelpOnTest);
  EXPECT_EQ(CallOf("fox"), (Words{"--new", PageUrl("#test")}));
}

TEST_F(DesktopShell, PrefersThePageInTheLanguageOfTheUser) {
  PutDefaultBrowser();
  Write("help/ZedraVoxtrelPE_help.htm", "");
  Write("help/de/ZedraVoxtrelPE_help.htm", "");
  m_variables["LANG"] = "de_AT.UTF-8";
  Help(kHelpOnTest);
  EXPECT_EQ(CallOf("fox"),
            (Words{"--new", "file://" + Path("help/de/ZedraVoxtrelPE_help.htm") + "#test"}));
}

TEST_F(DesktopShell, StartsTheBrowserEvenIfThePageIsMissingAndSaysNothing) {
  PutDefaultBrowser();
  Help(kHelp);
  EXPECT_EQ(CallOf("fox"), (Words{"--new", PageUrl()}));
  EXPECT_TRUE(Told().empty());
}

TEST_F(DesktopShell, WithoutABrowserNamesThePage) {
  Write("help/ZedraVoxtrelPE_help.htm", "");
  Help(kHelpOnTest);
  EXPECT_EQ(Told(), Words{"There is no web browser to show this with: " +
                          Path("help/ZedraVoxtrelPE_help.htm")});
}

TEST_F(DesktopShell, WithoutABrowserNamesTheSite) {
  OpenSite(u"https://site.org/");
  EXPECT_EQ(Told(), Words{"There is no web browser to show this with: https://site.org/"});
}

TEST_F(DesktopShell, OpensNothingButSites) {
  PutDefaultBrowser();
  OpenSite(u"--profile=/tmp/x");
  With([](platform::Shell& shell) {
    shell.Execute(u"print", u"iexplore.exe", u"https://site.org/");
    shell.Execute(u"open", u"other.exe", u"https://site.org/");
  });
  EXPECT_FALSE(WasCalled("fox"));
  EXPECT_EQ(Told().size(), 3U);
}

TEST_F(DesktopShell, OpensNoBrowserOnASiteThatCannotBeThere) {
  PutDefaultBrowser();
  OpenSite(u"https://site.example/");
  OpenSite(u"http://site.example");
  EXPECT_FALSE(WasCalled("fox"));
  EXPECT_EQ(Told(), (Words{"This cannot be opened here: https://site.example/",
                           "This cannot be opened here: http://site.example"}));
}

TEST_F(DesktopShell, StartsNoOtherProgram) {
  PutProgram("other.exe");
  With([](platform::Shell& shell) { shell.StartProgram(u"other.exe", u"x"); });
  EXPECT_FALSE(WasCalled("other.exe"));
  EXPECT_EQ(Told(), Words{"There is no such program here: other.exe"});
}

TEST_F(DesktopShell, TwoRequestsAreBothDone) {
  PutDefaultBrowser();
  // Each call leaves a note of its own.
  PutProgram("fox", "/bin/mktemp '" + Path("done.XXXXXX") + "'");
  With([](platform::Shell& shell) {
    shell.StartProgram(u"peghelp.exe", kHelp);
    shell.Execute(u"open", u"iexplore.exe", u"https://site.org/");
  });
  const auto files = std::filesystem::directory_iterator(m_folder.Path());
  EXPECT_EQ(std::count_if(begin(files), end(files),
                          [](const auto& file) {
                            return file.path().filename().string().starts_with("done.");
                          }),
            2);
  EXPECT_TRUE(Told().empty());
}

}  // namespace
