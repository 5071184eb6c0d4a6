#include "backends/vcard/vcard_source.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/backends/vcard/read_cards.h"
#include "tests/machine/memory_file_system.h"
#include "tests/support/briefly.h"
#include "tests/support/file_bytes.h"
#include "tests/support/watched_file_system.h"

namespace vcard {
namespace {

std::string Named(const std::string& name) {
  return WriteCard("N:" + name + ";;;;\nTEL;TYPE=CELL:1");
}

/// Finds files in the order opposite to that of another one: systems promise none.
class BackwardsFileSystem final : public support::WatchedFileSystem {
 public:
  using WatchedFileSystem::WatchedFileSystem;

  platform::Result<std::unique_ptr<platform::FileSearch>, platform::FileError> Find(
      std::u16string_view pattern) override {
    auto forwards = WatchedFileSystem::Find(pattern);
    if (!forwards) {
      return forwards;
    }
    auto search = std::make_unique<Search>();
    for (auto found = (*forwards)->Next(); found && *found; found = (*forwards)->Next()) {
      search->found.push_back(std::move(**found));
    }
    return search;
  }

 private:
  struct Search final : platform::FileSearch {
    platform::Result<std::optional<platform::FoundFile>, platform::FileError> Next() override {
      if (found.empty()) {
        return std::nullopt;
      }
      platform::FoundFile file = found.back();
      found.pop_back();
      return file;
    }
    std::vector<platform::FoundFile> found;
  };
};

class VcardSourceTest : public testing::Test {
 protected:
  void Put(std::u16string_view path, const std::string& content) {
    EXPECT_TRUE(m_files.PutFile(path, support::ToBytes(content)));
  }

  /// The books of a file or folder; the remarks go to m_remarks.
  ReadBooks ReadFrom(platform::FileSystem& files, std::u16string path) {
    RemarkList remarks;
    auto read = VcardSource(files, std::move(path)).Read(remarks);
    m_remarks = remarks.GetAll();
    return read;
  }

  /// Last names in order; a text that says why not if the source gives no book.
  std::string Read(std::u16string path) {
    const ReadBooks books = ReadFrom(m_files, std::move(path));
    if (!books) {
      EXPECT_EQ(books.error().kind, platform::BooksError::Kind::kUnreadable);
      return "unreadable";
    }
    EXPECT_EQ(books->size(), 1U);
    m_book = books->front();
    std::string names;
    for (const ContactData& contact : m_book.contacts) {
      names += text::ToUtf8(contact.lastName) + ".";
    }
    return names;
  }

  machine::MemoryFileSystem m_files;
  Book m_book;
  std::vector<Remark> m_remarks;
};

TEST_F(VcardSourceTest, ReadsAFileInTheOrderInWhichItIsWritten) {
  Put(u"/home/ann/all.vcf", Named("C") + Named("A") + Named("B"));
  EXPECT_EQ(Read(u"/home/ann/all.vcf"), "C.A.B.");
  EXPECT_TRUE(m_book.isComplete);
  EXPECT_EQ(m_book.name, u"vcard:/home/ann/all.vcf");
}

TEST_F(VcardSourceTest, ReadsAFileOfTheDevice) {
  Put(u"\\contacts.vcf", Named("A"));
  EXPECT_EQ(Read(u"\\contacts.vcf"), "A.");
  EXPECT_EQ(m_book.name, u"vcard:\\contacts.vcf");
}

TEST_F(VcardSourceTest, ReadsTheFilesOfAFolderInTheOrderOfTheirNames) {
  Put(u"/cards/b.vcf", Named("B") + Named("C"));
  Put(u"/cards/a.vcf", Named("A"));
  Put(u"/cards/d.VCF", Named("D"));
  Put(u"/cards/notes.txt", "not a card");
  Put(u"/cards/deeper/e.vcf", Named("E"));
  EXPECT_EQ(Read(u"/cards"), "A.B.C.D.");
  EXPECT_TRUE(m_book.isComplete);
}

TEST_F(VcardSourceTest, TheOrderOfAFolderIsThatOfTheNamesHoweverTheyAreFound) {
  Put(u"/cards/a.vcf", Named("A"));
  Put(u"/cards/b.vcf", Named("B"));
  Put(u"/cards/c.vcf", Named("C"));
  BackwardsFileSystem backwards(m_files);
  const ReadBooks books = ReadFrom(backwards, u"/cards");
  ASSERT_TRUE(books);
  ASSERT_EQ(books->front().contacts.size(), 3U);
  EXPECT_EQ(books->front().contacts[0].lastName, u"A");
  EXPECT_EQ(books->front().contacts[2].lastName, u"C");
}

TEST_F(VcardSourceTest, AFolderNamedAsACardIsPassedOver) {
  Put(u"/cards/a.vcf", Named("A"));
  Put(u"/cards/deeper.vcf/b.vcf", Named("B"));
  EXPECT_EQ(Read(u"/cards"), "A.");
  EXPECT_TRUE(m_book.isComplete);
}

TEST_F(VcardSourceTest, AFileThatAnotherProgramReadsIsReadToo) {
  Put(u"/all.vcf", Named("A"));
  const auto other =
      m_files.Open(u"/all.vcf", {platform::FileAccess::kRead, platform::FileShare::kRead,
                                 platform::FileCreation::kOpenExisting});
  ASSERT_TRUE(other);
  EXPECT_EQ(Read(u"/all.vcf"), "A.");
}

TEST_F(VcardSourceTest, AFolderIsTheSameBookWithASlashAtItsEnd) {
  Put(u"/cards/a.vcf", Named("A"));
  EXPECT_EQ(Read(u"/cards/"), "A.");
  EXPECT_EQ(m_book.name, u"vcard:/cards");
}

TEST_F(VcardSourceTest, WhatIsMissingIsUnreadable) {
  EXPECT_EQ(Read(u"/nobody.vcf"), "unreadable");
  EXPECT_EQ(Read(u"\\contacts.vcf"), "unreadable");
}

TEST_F(VcardSourceTest, WhatHoldsNoCardIsUnreadable) {
  Put(u"/empty.vcf", "");
  EXPECT_EQ(Read(u"/empty.vcf"), "unreadable");
  Put(u"/blank.vcf", "\r\n\r\n");
  EXPECT_EQ(Read(u"/blank.vcf"), "unreadable");
  Put(u"/picture.vcf", std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16));
  EXPECT_EQ(Read(u"/picture.vcf"), "unreadable");
  Put(u"/torn.vcf", "BEGIN:VCARD\nN:A;;;;\n");
  EXPECT_EQ(Read(u"/torn.vcf"), "unreadable");
}

TEST_F(VcardSourceTest, AnEmptyFolderIsUnreadable) {
  EXPECT_TRUE(m_files.CreateFolder(u"/cards"));
  EXPECT_EQ(Read(u"/cards"), "unreadable");
}

TEST_F(VcardSourceTest, ATornFileGivesWhatItHoldsAndIsNotComplete) {
  Put(u"/torn.vcf", Named("A") + Named("B").substr(0, 40));
  EXPECT_EQ(Read(u"/torn.vcf"), "A.");
  EXPECT_FALSE(m_book.isComplete);
}

TEST_F(VcardSourceTest, AFolderWithAnEmptiedCardIsNotComplete) {
  Put(u"/cards/a.vcf", Named("A"));
  Put(u"/cards/b.vcf", "");
  EXPECT_EQ(Read(u"/cards"), "A.");
  EXPECT_FALSE(m_book.isComplete);
}

/// Another file system in which one file cannot be opened.
class RefusingFileSystem final : public support::WatchedFileSystem {
 public:
  RefusingFileSystem(platform::FileSystem& files, std::u16string path, platform::FileError error)
      : WatchedFileSystem(files), m_path(std::move(path)), m_error(error) {}

  platform::Result<std::unique_ptr<platform::File>, platform::FileError> Open(
      std::u16string_view path, const platform::OpenMode& mode) override {
    return path == m_path ? platform::Failure(m_error) : WatchedFileSystem::Open(path, mode);
  }

 private:
  const std::u16string m_path;
  const platform::FileError m_error;
};

TEST_F(VcardSourceTest, AFileOfAFolderThatCannotBeOpenedCostsItselfAloneAndIsNamed) {
  Put(u"/cards/a.vcf", Named("A"));
  Put(u"/cards/b.vcf", Named("B"));
  Put(u"/cards/c.vcf", Named("C"));
  const std::pair<platform::FileError, std::string> cases[] = {
      {platform::FileError::kNotFound, "the file leads nowhere and is passed over"},
      {platform::FileError::kAccessDenied, "the file cannot be opened and is passed over"}};
  for (const auto& [error, sentence] : cases) {
    RefusingFileSystem files(m_files, u"/cards/b.vcf", error);
    const ReadBooks read = ReadFrom(files, u"/cards");
    ASSERT_TRUE(read);
    const std::vector<Book>& books = *read;
    ASSERT_EQ(books[0].contacts.size(), 2U);
    EXPECT_EQ(books[0].contacts[1].lastName, u"C");
    EXPECT_FALSE(books[0].isComplete) << "nobody is absent for it";
    EXPECT_EQ(m_remarks, (std::vector<Remark>{{u"/cards/b.vcf", 0, sentence}}));
  }
}

/// Another file system in which one name is a link that cannot be followed.
class CircleFileSystem final : public support::WatchedFileSystem {
 public:
  CircleFileSystem(platform::FileSystem& files, std::u16string link)
      : WatchedFileSystem(files), m_link(std::move(link)) {}

  platform::Result<std::unique_ptr<platform::File>, platform::FileError> Open(
      std::u16string_view path, const platform::OpenMode& mode) override {
    const bool follows = mode.access == platform::FileAccess::kRead;
    return path != m_link ? WatchedFileSystem::Open(path, mode)
                          : platform::Failure(follows ? platform::FileError::kOther
                                                      : platform::FileError::kLink);
  }

 private:
  const std::u16string m_link;
};

TEST_F(VcardSourceTest, ALinkThatCannotBeFollowedCostsItselfAloneAndIsNamed) {
  Put(u"/cards/a.vcf", Named("A"));
  Put(u"/cards/b.vcf", Named("B"));
  CircleFileSystem files(m_files, u"/cards/b.vcf");
  const ReadBooks books = ReadFrom(files, u"/cards");
  ASSERT_TRUE(books);
  ASSERT_EQ(books->front().contacts.size(), 1U);
  EXPECT_FALSE(books->front().isComplete) << "nobody is absent for it";
  EXPECT_EQ(m_remarks, (std::vector<Remark>{{u"/cards/b.vcf", 0,
                                             "the link cannot be followed and is passed over"}}));
  EXPECT_FALSE(ReadFrom(files, u"/cards/b.vcf"));
}

TEST_F(VcardSourceTest, DamageIsNamedByFileAndLine) {
  Put(u"/cards/a.vcf", Named("A") + "stray\r\n");
  Put(u"/cards/b.vcf", "\r\nBEGIN:VCARD\r\nN:B;;;;\r\n");
  const ReadBooks books = ReadFrom(m_files, u"/cards");
  ASSERT_TRUE(books);
  EXPECT_EQ(m_remarks,
            (std::vector<Remark>{
                {u"/cards/a.vcf", 6, "the line belongs to no card"},
                {u"/cards/b.vcf", 2, "the card that begins here has no end and is passed over"},
                {u"/cards/b.vcf", 0, "the file holds no whole card"}}));
  ASSERT_EQ(books->front().torn.size(), 1U);
  EXPECT_EQ(books->front().torn[0].lastName, u"B");
  EXPECT_FALSE(books->front().isComplete);
}

TEST_F(VcardSourceTest, ATornFileThatHoldsNothingElseIsNamedToo) {
  Put(u"/torn.vcf", "BEGIN:VCARD\nN:A;;;;\n");
  EXPECT_FALSE(ReadFrom(m_files, u"/torn.vcf"));
  ASSERT_EQ(m_remarks.size(), 1U);
  EXPECT_EQ(m_remarks[0].line, 1U);
}

TEST_F(VcardSourceTest, ANumberWithoutAPlaceIsNamedAndLosesNobody) {
  Put(u"/all.vcf", WriteCard("N:Lee;Ann;;;\nTEL;CAR:1\nTEL;CAR:2"));
  const ReadBooks books = ReadFrom(m_files, u"/all.vcf");
  ASSERT_TRUE(books);
  EXPECT_EQ(m_remarks,
            (std::vector<Remark>{
                {u"/all.vcf", 5, "the number 2 of Ann Lee finds no kind that is free"}}));
  EXPECT_TRUE(books->front().isComplete);
}

TEST_F(VcardSourceTest, ThousandsOfRemarksAreCounted) {
  std::string cards = Named("A");
  for (int i = 0; i < 5000; ++i) {
    cards += "BEGIN:VCARD\n";
  }
  Put(u"/all.vcf", cards);
  const ReadBooks books = ReadFrom(m_files, u"/all.vcf");
  ASSERT_TRUE(books);
  ASSERT_EQ(m_remarks.size(), 101U);
  EXPECT_EQ(m_remarks.back().text, "there are 4900 more such remarks");
}

TEST_F(VcardSourceTest, MoreContactsThanAnybodyHasAreUnreadable) {
  std::string cards;
  for (std::size_t i = 0; i <= VcardSource::kMaxContacts; ++i) {
    cards += "BEGIN:VCARD\nEND:VCARD\n";
  }
  Put(u"/many.vcf", cards);
  EXPECT_EQ(Read(u"/many.vcf"), "unreadable");
}

TEST_F(VcardSourceTest, AHundredMegabytesOfAnythingEnd) {
  SKIP_IF_BRIEF();
  std::string stream;
  while (stream.size() < 100'000'000) {
    stream += "TEL;TYPE=\"=,;:\\\r\n\tBEGIN:VCARD\n";
  }
  Put(u"/huge.vcf", stream + Named("A"));
  EXPECT_EQ(Read(u"/huge.vcf"), "A.");
  EXPECT_FALSE(m_book.isComplete);
}

TEST_F(VcardSourceTest, EveryFailureOfTheFilesMakesTheSourceUnreadable) {
  Put(u"/cards/a.vcf", Named("A"));
  Put(u"/cards/b.vcf", Named("B"));
  support::WatchedFileSystem failing(m_files);
  bool hasFailed = true;
  for (std::size_t call = 1; hasFailed; ++call) {
    failing.FailCall(call, support::Failing::kOnce);
    const ReadBooks books = ReadFrom(failing, u"/cards");
    hasFailed = failing.HasFailed();
    EXPECT_EQ(books.has_value(), !hasFailed) << call;
  }
}

TEST_F(VcardSourceTest, ReadsEachFileOnceFromItsStartToItsEnd) {
  std::string cards;
  for (int i = 0; i < 2000; ++i) {
    cards += Named("Name" + std::to_string(i));
  }
  Put(u"/all.vcf", cards);
  support::WatchedFileSystem counting(m_files);
  counting.FailCall(100'000, support::Failing::kOnce);
  const ReadBooks books = ReadFrom(counting, u"/all.vcf");
  ASSERT_TRUE(books);
  // One search and its name, one opening, and a read for each 64 KiB begun.
  EXPECT_LE(counting.CountCalls(), 3 + cards.size() / 65536 + 1);
  EXPECT_EQ(m_files.CountOpenHandles(), 0U);
}

}  // namespace
}  // namespace vcard
