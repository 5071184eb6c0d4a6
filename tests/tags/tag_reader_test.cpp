#include "tags/tag_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/machine/memory_file_system.h"
#include "tests/machine/memory_registry.h"
#include "tests/machine/simulated_contacts.h"
#include "tests/support/half_written.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/watched_registry.h"

namespace tags {
namespace {

using platform::RegistryError;
using testing::ElementsAre;

class TagReader : public testing::Test {
 protected:
  TagReader() {
    machine::SimulatedContact ann{.oid = 17, .firstName = u"Ann", .lastName = u"Lee"};
    ann.Number(platform::PhoneKind::kMobile) = u"555";
    m_ann = &m_contacts.Add(ann);
    EXPECT_TRUE(m_contacts.Initialize() && m_contacts.Connect() && m_contacts.Logon());
  }

  void Write(std::u16string_view tagName, std::int32_t oid, std::u16string_view kind = u"Mobile") {
    EXPECT_EQ(support::ErrorOf(m_store.WriteEntry(tagName, oid, kind)), std::nullopt);
  }
  [[nodiscard]] std::vector<ListedTag> Read(platform::ContactsStore* contacts) const {
    return ReadTags(m_store, contacts).value();
  }

  machine::MemoryFileSystem m_files;
  machine::MemoryRegistry m_memory;
  support::WatchedRegistry m_registry{m_memory};
  storage::TagStore m_store{m_files, m_registry};
  machine::SimulatedContacts m_contacts;
  machine::SimulatedContact* m_ann = nullptr;
};

TEST_F(TagReader, FindsNoTagsBeforeTheFirst) { EXPECT_TRUE(Read(&m_contacts).empty()); }

TEST_F(TagReader, ReadsTagsInTheOrderAndWithTheTextsOfThePage) {
  Write(u"300", 17);
  Write(u"100", 17, u"Radio2");
  const std::vector<ListedTag> tags = Read(&m_contacts);
  ASSERT_EQ(tags.size(), 2U);
  EXPECT_EQ(tags[0].name, u"300");
  EXPECT_EQ(tags[0].text, u"Ann Lee 555 M");
  EXPECT_TRUE(tags[0].hasNumber);
  EXPECT_EQ(tags[1].text, u"Ann Lee");
  EXPECT_FALSE(tags[1].hasNumber) << "The entry names no kind.";
}

TEST_F(TagReader, ATagWhoseContactIsGoneIsStaleAndStays) {
  Write(u"100", 18);
  Write(u"200", 17);
  m_contacts.SetLookup(18, platform::ContactsError::kAbsent);
  const std::vector<ListedTag> tags = Read(&m_contacts);
  ASSERT_EQ(tags.size(), 2U);
  EXPECT_TRUE(tags[0].isStale);
  EXPECT_EQ(tags[0].text, u"100");
  EXPECT_FALSE(tags[1].isStale);
  EXPECT_EQ(Read(&m_contacts).size(), 2U);
  const storage::TagTable table = ToTable(tags);
  EXPECT_EQ(table.tagCount, 1);
  EXPECT_EQ(table.GetRecord(0)->GetTagName(), u"200");
}

TEST_F(TagReader, WithoutContactsTagsHaveTheirOwnNamesAndNoneIsStale) {
  Write(u"100", 18);
  m_contacts.SetLookup(18, platform::ContactsError::kAbsent);
  const std::vector<ListedTag> tags = Read(nullptr);
  ASSERT_EQ(tags.size(), 1U);
  EXPECT_FALSE(tags[0].isStale);
  EXPECT_EQ(tags[0].text, u"100");
  EXPECT_EQ(tags[0].entry.oid, 18);
}

TEST_F(TagReader, AContactThatCannotBeReadIsSaidAndHidesNoOtherTag) {
  Write(u"100", 17);
  Write(u"200", 17, u"?");
  m_ann->FailNumber(platform::PhoneKind::kMobile);
  const std::vector<ListedTag> tags = Read(&m_contacts);
  ASSERT_EQ(tags.size(), 2U);
  EXPECT_TRUE(tags[0].failure);
  EXPECT_EQ(tags[0].text, u"100");
  EXPECT_FALSE(tags[1].failure);
}

TEST_F(TagReader, ALongTextIsCutAsInTheRecord) {
  m_ann->firstName = std::u16string(100, u'a');
  m_ann->Number(platform::PhoneKind::kMobile) = std::u16string(100, u'5');
  Write(u"100", 17);
  EXPECT_EQ(Read(&m_contacts)[0].text.size(), 127U);
}

TEST_F(TagReader, AFailureOfTheStoreIsNeverAShorterListNorAnotherTagsText) {
  Write(u"100", 17);
  Write(u"200", 17);
  bool hasFailed = true;
  for (std::size_t call = 1; hasFailed; ++call) {
    m_registry.FailCall(call, support::Failing::kOnce, RegistryError::kBusy);
    const auto tags = ReadTags(m_store, &m_contacts);
    hasFailed = m_registry.HasFailed();
    if (!tags) {
      EXPECT_EQ(tags.error(), RegistryError::kBusy);
      continue;
    }
    ASSERT_EQ(tags->size(), 2U) << call;
    EXPECT_EQ((*tags)[0].error || (*tags)[1].error, hasFailed);
    for (const ListedTag& tag : *tags) {
      EXPECT_EQ(tag.text, tag.error ? tag.name : u"Ann Lee 555 M");
    }
  }
}

TEST_F(TagReader, AHalfWrittenEntryIsHalfATagWithALineAndHidesNoOther) {
  for (const support::HalfWritten& entry : support::HalfWrittenEntries()) {
    machine::MemoryRegistry registry;
    const storage::TagStore store(m_files, registry);
    ASSERT_EQ(support::ErrorOf(store.WriteEntry(u"100", 17, u"Mobile")), std::nullopt);
    entry.write(registry, u"200");
    ASSERT_EQ(support::ErrorOf(store.WriteEntry(u"300", 17, u"Mobile")), std::nullopt);
    const auto tags = ReadTags(store, &m_contacts).value();
    ASSERT_EQ(tags.size(), entry.isThere ? 3U : 2U) << entry.what;
    EXPECT_EQ(tags.front().text, u"Ann Lee 555 M");
    EXPECT_EQ(tags.back().text, u"Ann Lee 555 M");
    if (entry.isThere) {
      const ListedTag& half = tags[1];
      EXPECT_FALSE(half.isStale) << entry.what << ": the page deletes stale tags.";
      EXPECT_FALSE(half.error || half.failure) << entry.what;
      EXPECT_EQ(half.text, !entry.namesContact ? u"200"
                           : entry.namesKind   ? u"Ann Lee 555 M"
                                               : u"Ann Lee")
          << entry.what;
    }
    EXPECT_EQ(FindOidsInUse(store).value().size(), entry.namesContact ? 3U : 2U) << entry.what;
  }
}

TEST_F(TagReader, TagsBeyondTheTableAreCountedAsOnThePage) {
  for (int i = 0; i < 101; ++i) {
    const std::string name = std::to_string(1000 + i);
    Write(std::u16string(name.begin(), name.end()), 17);
  }
  EXPECT_EQ(ToTable(Read(&m_contacts)).tagCount, 101);
}

class OidsInUse : public testing::Test {
 protected:
  void Write(std::u16string_view tagName, std::int32_t oid) {
    EXPECT_EQ(support::ErrorOf(m_store.WriteEntry(tagName, oid, u"Mobile")), std::nullopt);
  }

  machine::MemoryFileSystem m_files;
  machine::MemoryRegistry m_memory;
  support::WatchedRegistry m_registry{m_memory};
  storage::TagStore m_store{m_files, m_registry};
};

TEST_F(OidsInUse, AreNoneBeforeTheFirstTag) {
  EXPECT_THAT(FindOidsInUse(m_store).value(), testing::IsEmpty());
}

TEST_F(OidsInUse, AreThoseOfEveryTag) {
  Write(u"100", 17);
  Write(u"200", -5);
  EXPECT_THAT(FindOidsInUse(m_store).value(), ElementsAre(17, -5));
}

TEST_F(OidsInUse, LeaveOutATagThatNamesNoContact) {
  Write(u"100", 17);
  ASSERT_EQ(support::ErrorOf(support::PutText(m_memory, u"Software\\Zedra\\Zedra Voxtrel\\200",
                                              u"contact", u"?")),
            std::nullopt);
  EXPECT_THAT(FindOidsInUse(m_store).value(), ElementsAre(17));
}

TEST_F(OidsInUse, AreNotKnownIfTheStoreFails) {
  Write(u"100", 17);
  Write(u"200", 18);
  bool hasFailed = true;
  for (std::size_t call = 1; hasFailed; ++call) {
    m_registry.FailCall(call, support::Failing::kOnce, RegistryError::kBusy);
    const auto oids = FindOidsInUse(m_store);
    hasFailed = m_registry.HasFailed();
    EXPECT_EQ(oids.has_value(), !hasFailed) << call;
  }
}

}  // namespace
}  // namespace tags
