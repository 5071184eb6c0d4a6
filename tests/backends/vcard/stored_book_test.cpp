#include "backends/vcard/stored_book.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/machine/memory_registry.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"

namespace vcard {
namespace {

constexpr std::u16string_view kBookKey = u"Book";

Person Known(std::int32_t oid, std::uint8_t mark) {
  Person person;
  person.oid = oid;
  person.uid.fill(std::byte{mark});
  person.name.fill(std::byte{0x22});
  person.content.fill(std::byte{0x33});
  person.isPresent = true;
  return person;
}

class StoredBookTest : public testing::Test {
 protected:
  StoredBook Load() {
    StoredBook book;
    OidIndex taken;
    const auto fail = [](const std::u16string&, const std::string& what) { ADD_FAILURE() << what; };
    EXPECT_EQ(support::ErrorOf(book.Load(*m_registry.CreateKey(kBookKey).value(), fail, taken)),
              std::nullopt);
    return book;
  }
  void Save(const StoredBook& book) {
    EXPECT_EQ(support::ErrorOf(book.Save(*m_registry.CreateKey(kBookKey).value())), std::nullopt);
  }

  machine::MemoryRegistry m_registry;
};

TEST_F(StoredBookTest, AnEntryIsNumberPresenceAndThreeDigests) {
  StoredBook book;
  book.Add(Known(-2, 0x11));
  Save(book);
  std::vector<std::byte> wanted = {std::byte{0xFE}, std::byte{0xFF}, std::byte{0xFF},
                                   std::byte{0xFF}, std::byte{1},    std::byte{0},
                                   std::byte{0},    std::byte{0}};
  for (const int mark : {0x11, 0x22, 0x33}) {
    wanted.insert(wanted.end(), 16, static_cast<std::byte>(mark));
  }
  EXPECT_EQ(support::BytesOf(m_registry, kBookKey, u"people0"), wanted);
}

TEST_F(StoredBookTest, WhatIsWrittenIsReadAgain) {
  StoredBook book;
  book.Add(Known(5, 0x11));
  Person gone = Known(6, 0x44);
  gone.isPresent = false;
  book.Add(gone);
  Save(book);
  const StoredBook again = Load();
  ASSERT_EQ(again.GetPeople().size(), 2U);
  EXPECT_EQ(again.GetPeople()[0].oid, 5);
  EXPECT_TRUE(again.GetPeople()[0].isPresent);
  EXPECT_EQ(again.GetPeople()[1].uid, gone.uid);
  EXPECT_FALSE(again.GetPeople()[1].isPresent);
  EXPECT_TRUE(again.Holds(6));
  EXPECT_FALSE(again.Holds(7));
  EXPECT_FALSE(again.HasChanged());
}

TEST_F(StoredBookTest, LearningWhatIsKnownChangesNothing) {
  StoredBook book;
  book.Add(Known(5, 0x11));
  book.SetSaved();
  book.Update(0, Known(5, 0x11));
  EXPECT_FALSE(book.HasChanged());
  book.Update(0, Known(5, 0x12));
  EXPECT_TRUE(book.HasChanged());
}

TEST_F(StoredBookTest, OfTwoEntriesOfANumberTheLaterCounts) {
  StoredBook book;
  book.Add(Known(5, 0x11));
  book.Add(Known(5, 0x12));
  Save(book);
  const StoredBook again = Load();
  ASSERT_EQ(again.GetPeople().size(), 1U);
  EXPECT_EQ(again.GetPeople()[0].uid, Known(5, 0x12).uid);
}

}  // namespace
}  // namespace vcard
