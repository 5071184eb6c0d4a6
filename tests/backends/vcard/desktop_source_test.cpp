// What becomes of the cards that the desktop's library hands over. With the library itself and the
// real servers: tests/backends/ebook.

#include "backends/vcard/contact_source.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "tests/backends/vcard/read_cards.h"

namespace vcard {
namespace {

using platform::BooksError;
using platform::DesktopBook;
using platform::DesktopBooks;

std::string DesktopPerson(const std::string& name) {
  return WriteCard("UID:" + name + "\nN:" + name + ";;;;\nTEL;TYPE=CELL:1");
}

void ReadTwoBooks(std::uint32_t /*milliseconds*/, DesktopBooks& books) {
  books = std::vector<DesktopBook>{
      {"first", DesktopPerson("Zoe") + "\r\n" + DesktopPerson("Ann") + "\r\n", true},
      {"second", DesktopPerson("Bob"), false}};
}

void ReadBadBooks(std::uint32_t /*milliseconds*/, DesktopBooks& books) {
  books = std::vector<DesktopBook>{
      {"empty", "", true},
      {"torn", DesktopPerson("Ann") + DesktopPerson("Bob").substr(0, 40), true}};
}

void RefuseAndNameTheLimit(std::uint32_t milliseconds, DesktopBooks& books) {
  books = platform::Failure(
      BooksError{.reason = "no answer in " + std::to_string(milliseconds) + " ms"});
}

TEST(DesktopSourceOfALibrary, SortsEachBookByName) {
  DesktopSource source([] { return DesktopSource::Library(ReadTwoBooks); });
  RemarkList remarks;
  const ReadBooks read = source.Read(remarks);
  ASSERT_TRUE(read);
  const std::vector<Book>& books = *read;
  ASSERT_EQ(books.size(), 2U);
  EXPECT_EQ(books[0].name, u"eds:first");
  ASSERT_EQ(books[0].contacts.size(), 2U);
  EXPECT_EQ(books[0].contacts[0].uid, "Ann");
  EXPECT_EQ(NumbersOf(books[0].contacts[0]), "Mobile=1");
  EXPECT_EQ(books[0].contacts[1].uid, "Zoe");
  EXPECT_EQ(books[1].contacts.size(), 1U);
}

TEST(DesktopSourceOfALibrary, OnlyASettledBookIsComplete) {
  DesktopSource source([] { return DesktopSource::Library(ReadTwoBooks); });
  RemarkList remarks;
  const ReadBooks read = source.Read(remarks);
  ASSERT_TRUE(read);
  const std::vector<Book>& books = *read;
  EXPECT_TRUE(books[0].isComplete);
  EXPECT_FALSE(books[1].isComplete);
}

TEST(DesktopSourceOfALibrary, ABookThatIsEmptyOrTornIsNotComplete) {
  DesktopSource source([] { return DesktopSource::Library(ReadBadBooks); });
  RemarkList remarks;
  const ReadBooks read = source.Read(remarks);
  ASSERT_TRUE(read);
  const std::vector<Book>& books = *read;
  EXPECT_FALSE(books[0].isComplete);
  EXPECT_EQ(books[1].contacts.size(), 1U);
  EXPECT_FALSE(books[1].isComplete);
}

TEST(DesktopSourceOfALibrary, GivesTheReasonOfARefusal) {
  DesktopSource source([] { return DesktopSource::Library(RefuseAndNameTheLimit); },
                       std::chrono::milliseconds(7));
  RemarkList remarks;
  const ReadBooks read = source.Read(remarks);
  ASSERT_FALSE(read);
  EXPECT_EQ(read.error().kind, BooksError::Kind::kUnreadable);
  EXPECT_EQ(read.error().reason, "no answer in 7 ms");
}

TEST(DesktopSourceOfALibrary, WithoutTheLibraryNobodyAnswers) {
  DesktopSource source(
      [] { return DesktopSource::Library(platform::Failure<std::string>("it is missing")); });
  RemarkList remarks;
  const ReadBooks read = source.Read(remarks);
  ASSERT_FALSE(read);
  EXPECT_EQ(read.error().kind, BooksError::Kind::kNoAnswer);
  EXPECT_EQ(read.error().reason, "it is missing");
}

TEST(DesktopSourceOfALibrary, IsNotLoadedBeforeItIsRead) {
  int loadings = 0;
  DesktopSource source([&loadings] {
    ++loadings;
    return DesktopSource::Library(ReadTwoBooks);
  });
  EXPECT_EQ(loadings, 0);
  RemarkList remarks;
  ASSERT_TRUE(source.Read(remarks));
  EXPECT_EQ(loadings, 1);
}

}  // namespace
}  // namespace vcard
