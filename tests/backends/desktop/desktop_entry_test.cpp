#include "backends/desktop/desktop_entry.h"

#include "tests/backends/desktop/fake_desktop.h"

namespace {

using Words = std::vector<std::string>;

constexpr const char* kUrl = "file:///a%20b#test";

[[nodiscard]] Words CommandOf(const std::string& exec) { return xdg::MakeCommand({exec}, kUrl); }

TEST(DesktopEntry, PutsTheAddressWhereTheCodeStands) {
  EXPECT_EQ(CommandOf("fox %u"), (Words{"fox", kUrl}));
  EXPECT_EQ(CommandOf("fox %U --last"), (Words{"fox", kUrl, "--last"}));
  EXPECT_EQ(CommandOf("fox --url=%f"), (Words{"fox", std::string("--url=") + kUrl}));
  EXPECT_EQ(CommandOf("run @@u %F @@"), (Words{"run", "@@u", kUrl, "@@"}));
}

TEST(DesktopEntry, PutsTheAddressLastWhereThereIsNoCode) {
  EXPECT_EQ(CommandOf("fox --new"), (Words{"fox", "--new", kUrl}));
}

TEST(DesktopEntry, LeavesOutTheOtherCodes) {
  EXPECT_EQ(CommandOf("fox %i %c %k %u 100%%"), (Words{"fox", kUrl, "100%"}));
}

TEST(DesktopEntry, KnowsQuotesAndEscapes) {
  EXPECT_EQ(CommandOf(R"("/opt/a b/fox" "x\"y\\z\$" "" %u)"),
            (Words{"/opt/a b/fox", R"(x"y\z$)", "", kUrl}));
}

TEST(DesktopEntry, AnOpenQuoteMakesNoCommand) {
  EXPECT_TRUE(CommandOf("fox \"x").empty());
  EXPECT_TRUE(CommandOf("").empty());
}

TEST(DesktopEntry, ReadsTheMainGroupAlone) {
  const auto entry = xdg::ParseDesktopEntry(
      "# comment\n[Desktop Entry]\nName=Fox\nExec = fox\\s%u \r\nTerminal=true\n\n"
      "[Desktop Action private]\nExec=fox --private\n");
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->exec, "fox %u");
  EXPECT_TRUE(entry->needsTerminal);
  EXPECT_FALSE(xdg::ParseDesktopEntry("[Other]\nExec=fox\n"));
  EXPECT_FALSE(xdg::ParseDesktopEntry(""));
}

class FindDesktopEntry : public FakeDesktop {};

TEST_F(FindDesktopEntry, LooksThroughTheDataFolders) {
  PutEntry("fox.desktop", "Exec=fox\n");
  Write("mine/applications/fox.desktop", "[Desktop Entry]\nExec=mine\n");
  EXPECT_EQ(xdg::FindDesktopEntry(m_environment, "fox.desktop")->exec, "fox");
  m_environment.dataFolders.insert(m_environment.dataFolders.begin(), Path("mine"));
  EXPECT_EQ(xdg::FindDesktopEntry(m_environment, "fox.desktop")->exec, "mine");
  EXPECT_FALSE(xdg::FindDesktopEntry(m_environment, "other.desktop"));
}

TEST_F(FindDesktopEntry, ADashCanBeAFolder) {
  PutEntry("kde/fox.desktop", "Exec=fox\n");
  EXPECT_TRUE(xdg::FindDesktopEntry(m_environment, "kde-fox.desktop"));
}

TEST_F(FindDesktopEntry, ANameLeadsNowhereElse) {
  Write("fox.desktop", "[Desktop Entry]\nExec=fox\n");
  EXPECT_FALSE(xdg::FindDesktopEntry(m_environment, "../../fox.desktop"));
  EXPECT_FALSE(xdg::FindDesktopEntry(m_environment, "fox"));
}

}  // namespace
