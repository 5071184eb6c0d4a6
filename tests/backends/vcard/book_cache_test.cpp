#include "backends/vcard/book_cache.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "backends/vcard/contact_keys.h"
#include "backends/vcard/vcard_source.h"
#include "resources/translations.h"
#include "tests/backends/vcard/read_cards.h"
#include "tests/machine/memory_file_system.h"
#include "tests/support/file_bytes.h"
#include "tests/support/watched_file_system.h"

namespace vcard {
namespace {

constexpr std::u16string_view kPath = u"/home/ann/all.vcf";
constexpr std::u16string_view kCopy = u"\\contacts";

/// Cards of that many people, large enough to be kept. Every tenth has a number without a place.
std::string CardsOf(int people, const std::string& name = "Lee") {
  std::string cards;
  for (int i = 0; i < people; ++i) {
    const std::string number = std::to_string(i);
    const std::string more = i % 10 == 0 ? "\nTEL;TYPE=WORK:4\nTEL;TYPE=WORK:5" : "";
    cards += WriteCard("UID:" + number + "\nN:" + name + number + ";Ann;Middle\nORG:Acme" +
                       "\nTEL;TYPE=WORK:1\nTEL;CELL;PREF:2" + number + more);
  }
  while (cards.size() < BookCache::kFewestBytes) {
    cards += WriteCard("N:Filler\nNOTE:" + std::string(2000, 'x'));
  }
  return cards;
}

/// All that a reading gives, as one text.
std::string Describe(const ReadBooks& books, const RemarkList& remarks) {
  if (!books) {
    return "unreadable";
  }
  std::string all;
  for (const Book& book : *books) {
    all += text::ToUtf8(book.name) + (book.isComplete ? " whole\n" : " not whole\n");
    for (const ContactData contact : book.contacts) {
      all += contact.uid + "|" + NamesOf(contact) + "|" + NumbersOf(contact) + "|" +
             contact.formerContent + "\n";
    }
    for (const CardKeys& keys : KeysOf(book)) {
      for (const Digest& digest : {keys.uid, keys.name, keys.content}) {
        all.append(reinterpret_cast<const char*>(digest.data()), digest.size());
      }
      all += keys.isUidUnique ? 'u' : '-';
      all += keys.isNameUnique ? 'n' : '-';
    }
  }
  for (const Remark& remark : remarks.GetAll()) {
    all += text::ToUtf8(remark.place) + ":" + std::to_string(remark.line) + remark.text + "\n";
  }
  return all;
}

/// Changes a file as soon as somebody begins to read it.
class ChangingFiles final : public support::WatchedFileSystem {
 public:
  using WatchedFileSystem::WatchedFileSystem;

  std::function<void()> change;

  platform::Result<std::unique_ptr<platform::File>, platform::FileError> Open(
      std::u16string_view path, const platform::OpenMode& mode) override {
    auto opened = WatchedFileSystem::Open(path, mode);
    if (!opened) {
      return opened;
    }
    return std::make_unique<ChangingFile>(std::move(*opened), change);
  }

 private:
  class ChangingFile final : public platform::File {
   public:
    ChangingFile(std::unique_ptr<platform::File> inner, std::function<void()> change)
        : m_inner(std::move(inner)), m_change(std::move(change)) {}
    platform::Result<std::uint64_t, platform::FileError> GetLength() override {
      return m_inner->GetLength();
    }
    std::optional<platform::FileVersion> GetVersion() override { return m_inner->GetVersion(); }
    platform::Result<void, platform::FileError> Seek(std::uint64_t offset) override {
      return m_inner->Seek(offset);
    }
    platform::Result<std::size_t, platform::FileError> Read(std::span<std::byte> into) override {
      auto read = m_inner->Read(into);
      m_change();
      return read;
    }
    platform::Result<void, platform::FileError> Write(std::span<const std::byte> bytes) override {
      return m_inner->Write(bytes);
    }
    platform::Result<void, platform::FileError> SetLength(std::uint64_t length) override {
      return m_inner->SetLength(length);
    }
    platform::Result<void, platform::FileError> Flush() override { return m_inner->Flush(); }
    platform::Result<void, platform::FileError> Close() override { return m_inner->Close(); }

   private:
    const std::unique_ptr<platform::File> m_inner;
    const std::function<void()> m_change;
  };
};

class BookCacheTest : public testing::Test {
 protected:
  void Put(const std::string& content) {
    EXPECT_TRUE(m_files.PutFile(kPath, support::ToBytes(content)));
  }
  void PutCopy(const std::vector<std::byte>& bytes) { EXPECT_TRUE(m_cache.PutFile(kCopy, bytes)); }
  [[nodiscard]] std::vector<std::byte> GetCopy() const { return m_cache.GetFile(kCopy).value(); }

  std::string ReadFrom(platform::FileSystem& files, platform::FileSystem* cache,
                       std::u16string path = std::u16string(kPath)) {
    RemarkList remarks;
    const ReadBooks books =
        VcardSource(files, std::move(path), [cache] { return cache; }).Read(remarks);
    return Describe(books, remarks);
  }
  /// What a reading without any copy gives.
  std::string Plain() { return ReadFrom(m_files, nullptr); }
  /// What a reading gives that may use the copy. Notes whether it read the file.
  std::string Read() {
    constexpr std::size_t kCallsToOpen = 3;  // A search, its first name, the file.
    support::WatchedFileSystem watched(m_files);
    std::string read = ReadFrom(watched, &m_cache);
    m_hasParsed = watched.CountCalls() > kCallsToOpen;
    return read;
  }

  machine::MemoryFileSystem m_files;
  machine::MemoryFileSystem m_cache;
  bool m_hasParsed = false;
};

TEST_F(BookCacheTest, AFileThatHasNotChangedIsNotReadAgainAndGivesTheSame) {
  Put(CardsOf(300));
  const std::string plain = Plain();
  EXPECT_EQ(Read(), plain);
  EXPECT_TRUE(m_hasParsed);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(Read(), plain);
    EXPECT_FALSE(m_hasParsed);
  }
}

TEST_F(BookCacheTest, AFileThatWasChangedOrReplacedIsReadAgain) {
  Put(CardsOf(300));
  static_cast<void>(Read());
  Put(CardsOf(300, "Ray"));
  EXPECT_EQ(Read(), Plain());
  EXPECT_TRUE(m_hasParsed);
  EXPECT_EQ(Read(), Plain());
  EXPECT_FALSE(m_hasParsed) << "the copy is one of the new file";
}

TEST_F(BookCacheTest, ADamagedFileGivesTheSameRemarksAgain) {
  std::string cards = CardsOf(300);
  cards.insert(cards.find("N:Lee7;"), "TEL no colon\r\n");
  Put(cards + "stray line\r\n");
  const std::string plain = Plain();
  EXPECT_THAT(plain, testing::HasSubstr("not whole"));
  static_cast<void>(Read());
  EXPECT_EQ(Read(), plain);
  EXPECT_FALSE(m_hasParsed);
}

TEST_F(BookCacheTest, WhatCannotBeToldWholeIsReadEachTime) {
  Put(CardsOf(300) + "BEGIN:VCARD\r\nN:Torn\r\n");
  static_cast<void>(Read());
  EXPECT_EQ(Read(), Plain());
  EXPECT_TRUE(m_hasParsed) << "a torn card counts in recognising the others";
  Put(CardsOf(2000));
  static_cast<void>(Read());
  EXPECT_EQ(Read(), Plain());
  EXPECT_TRUE(m_hasParsed) << "there are more remarks than are kept";
}

TEST_F(BookCacheTest, AFileThatChangesWhileItIsReadIsNotKept) {
  Put(CardsOf(300));
  ChangingFiles changing(m_files);
  changing.change = [this] { Put(CardsOf(300, "Ray")); };
  static_cast<void>(ReadFrom(changing, &m_cache));
  EXPECT_FALSE(m_cache.GetFile(kCopy));
  EXPECT_EQ(Read(), Plain());
  EXPECT_TRUE(m_hasParsed);
}

TEST_F(BookCacheTest, AFileThatMayChangeWithinTheStepOfAClockIsNotKept) {
  platform::FileVersion version{.length = BookCache::kFewestBytes, .isSettled = true};
  EXPECT_TRUE(BookCache::CanKeep(version));
  version.isSettled = false;
  EXPECT_FALSE(BookCache::CanKeep(version));
}

TEST_F(BookCacheTest, ASmallFileAndAFolderAreReadEachTime) {
  Put(WriteCard("N:Lee"));
  static_cast<void>(Read());
  EXPECT_FALSE(m_cache.GetFile(kCopy));
  Put(CardsOf(300));
  EXPECT_EQ(ReadFrom(m_files, &m_cache, u"/home/ann"), ReadFrom(m_files, nullptr, u"/home/ann"));
  EXPECT_FALSE(m_cache.GetFile(kCopy));
}

TEST_F(BookCacheTest, AnAddressBookOfAnotherMediumIsNotCopied) {
  BookCache(m_cache).Keep(kPath, {.medium = 7, .isSettled = true}, Book{u"book", {{}}, true}, {});
  EXPECT_FALSE(m_cache.GetFile(kCopy));
  BookCache(m_cache).Keep(kPath, {.isSettled = true}, Book{u"book", {{}}, true}, {});
  EXPECT_TRUE(m_cache.GetFile(kCopy));
}

TEST_F(BookCacheTest, ACopyOfAnotherFileOrInAnotherLanguageDoesNotCount) {
  Put(CardsOf(300));
  static_cast<void>(Read());
  EXPECT_TRUE(m_files.PutFile(u"/other.vcf", support::ToBytes(CardsOf(300))));
  EXPECT_EQ(ReadFrom(m_files, &m_cache, u"/other.vcf"), ReadFrom(m_files, nullptr, u"/other.vcf"));
  static_cast<void>(Read());
  resources::ChooseLanguage("de");
  EXPECT_EQ(Read(), Plain());
  EXPECT_TRUE(m_hasParsed) << "the remarks are in German now";
  resources::ChooseLanguage("");
}

TEST_F(BookCacheTest, ATornOrDamagedCopyDoesNotCountAndIsMadeAgain) {
  Put(CardsOf(300));
  const std::string plain = Plain();
  static_cast<void>(Read());
  const std::vector<std::byte> whole = GetCopy();
  for (std::size_t at = 0; at < whole.size(); at += 1 + whole.size() / 12) {
    PutCopy({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(at)});
    EXPECT_EQ(Read(), plain);
    EXPECT_TRUE(m_hasParsed) << "cut at " << at;
    std::vector<std::byte> flipped = whole;
    flipped[at] ^= std::byte{0x10};
    PutCopy(flipped);
    EXPECT_EQ(Read(), plain);
    EXPECT_TRUE(m_hasParsed) << "flipped at " << at;
    EXPECT_EQ(GetCopy(), whole);
  }
}

TEST_F(BookCacheTest, NoFaultOfTheCacheIsAFaultOfTheReading) {
  Put(CardsOf(300));
  const std::string plain = Plain();
  for (const auto failing : {support::Failing::kOnce, support::Failing::kFromThenOn}) {
    for (std::size_t call = 1; call < 12; ++call) {
      machine::MemoryFileSystem copies;
      support::WatchedFileSystem cache(copies);
      cache.FailCall(call, failing, platform::FileError::kDiskFull);
      EXPECT_EQ(ReadFrom(m_files, &cache), plain) << call;
      EXPECT_EQ(ReadFrom(m_files, &cache), plain) << call;
    }
  }
  m_cache.SetCapacity(100);
  EXPECT_EQ(Read(), plain);
  EXPECT_FALSE(m_cache.GetFile(kCopy)) << "nothing is kept by halves";
}

// If this fails, cards are read otherwise than before, and copies of earlier versions of the
// program are no good any more: raise kVersion in book_cache.cpp, and then the digest here.
TEST_F(BookCacheTest, WhoReadsCardsOtherwiseGivesCopiesAnotherVersion) {
  std::string cards =
      WriteCard(
          "UID:urn:uuid:1\nN:García,Márquez;Ann;M\nORG:Acme;Sales\nFN:x\nTEL;CELL:1\n"
          "item1.TEL:2\nitem1.X-ABLabel:_$!<HomeFAX>!$_\nTEL;VALUE=uri;TYPE=work:tel:+3;ext=5") +
      WriteCard(
          "N;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE:M=FCller;J=F6rg\nTEL;CAR:7\n"
          "TEL;CELL:8\nTEL;CELL:9\nTEL;PAGER:1\nNICKNAME:y\nEMAIL:z",
          "2.1") +
      WriteCard("ORG:Only\\, Company\nTEL;X-CUSTOM(Radio):1\nTEL;TYPE=HOME;PREF=1:2\nTEL:3") +
      WriteCard("EMAIL:a@b\nX-MS-TEL;VOICE;ASSISTANT:1\\n2\nTEL;TYPE=WORK,FAX:2");
  Put(cards);
  const Digest digest = ComputeDigest(Plain());
  std::string shown;
  for (const std::byte byte : digest) {
    shown += "0123456789abcdef"[std::to_integer<unsigned>(byte) >> 4U];
    shown += "0123456789abcdef"[std::to_integer<unsigned>(byte) & 0xFU];
  }
  EXPECT_EQ(shown, "73ac6e806ab4ac417d8ab37bd501569d");
}

}  // namespace
}  // namespace vcard
