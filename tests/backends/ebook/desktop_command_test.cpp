// The command line before the real servers of a desktop: it finds and loads what knows them.

#include <gtest/gtest.h>

#include <string>

#include "tests/backends/ebook/desktop_book.h"
#include "tests/backends/vcard/read_cards.h"
#include "tests/support/run_program.h"
#include "tests/support/temp_folder.h"

namespace {

TEST(DesktopCommand, ListsTheContactsOfTheDesktop) {
  ebook_test::DesktopBook().Add({WriteCard("UID:a\nN:Lee;Ann;;;\nTEL;TYPE=CELL:5551234"),
                                 WriteCard("UID:b\nN:Ray;Bob;;;\nTEL;TYPE=WORK:71")});
  const support::TempFolder root;
  for (const std::string choice : {"eds", ""}) {
    const auto run = support::RunProgram(
        {VOXTREL_PROGRAM, "--root", root.Path(), "--contacts", choice, "contacts", "list"},
        {"LC_ALL=C.UTF-8"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out,
              "   1  Lee Ann\n        5551234 Mobile\n   2  Ray Bob\n        71 Business\n");
  }
}

}  // namespace
