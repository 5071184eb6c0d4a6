#include "backends/desktop/help_pages.h"

#include "tests/backends/desktop/fake_desktop.h"

namespace {

class HelpPages : public FakeDesktop {
 protected:
  [[nodiscard]] std::string Find(const std::string& address) const {
    return xdg::HelpFolders{{Path("a"), Path("b")}, {"pt_BR", "pt"}}.Find(address).GetUrl();
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
  EXPECT_EQ(xdg::HelpFolders{}.Find("file:page.htm").GetUrl(), "file:///page.htm");
}

TEST(HelpPage, EscapesWhatAnAddressGivesAMeaningTo) {
  EXPECT_EQ((xdg::HelpPage{"/a b/100%#?\xC3\xA4.htm", ""}.GetUrl()),
            "file:///a%20b/100%25%23%3F%C3%A4.htm");
}

}  // namespace
