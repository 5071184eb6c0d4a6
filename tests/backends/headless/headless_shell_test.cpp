#include "backends/headless/headless_system.h"

#include <gtest/gtest.h>

#include <vector>

namespace headless {
namespace {

TEST(HeadlessShell, RemembersWhatWasAskedInItsOrder) {
  HeadlessShell shell;
  shell.StartProgram(u"viewer.exe", u"file:page.htm#place");
  shell.Execute(u"open", u"browser.exe", u"https://example.org");
  const std::vector<ShellRequest> expected = {{u"", u"viewer.exe", u"file:page.htm#place"},
                                              {u"open", u"browser.exe", u"https://example.org"}};
  EXPECT_EQ(shell.GetRequests(), expected);
}

}  // namespace
}  // namespace headless
