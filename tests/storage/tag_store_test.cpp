#include "storage/tag_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "storage/device_paths.h"
#include "storage/registry_keys.h"
#include "tests/machine/memory_file_system.h"
#include "tests/machine/memory_registry.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/watched_file_system.h"
#include "tests/support/watched_registry.h"

namespace storage {

using platform::FileError;
using platform::RegistryError;
using platform::RegistryType;
using support::BytesOf;
using support::Failing;
using support::KeyExists;
using support::Put;
using support::PutText;
using support::Utf16Bytes;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

class TagStoreTest : public testing::Test {
 protected:
  void PutFiles(std::u16string_view tagName) {
    ASSERT_TRUE(m_files.PutFile(WavePath(tagName), {}));
    ASSERT_TRUE(m_files.PutFile(TemplatePath(tagName), {}));
  }

  void PutTag(std::u16string_view tagName, std::int32_t oid = 1,
              std::u16string_view phoneType = u"Mobile") {
    PutFiles(tagName);
    ASSERT_EQ(support::ErrorOf(m_store.WriteEntry(tagName, oid, phoneType)), std::nullopt);
  }

  [[nodiscard]] std::vector<std::u16string> Names() const {
    std::vector<std::u16string> names;
    const auto tags = m_store.OpenNames();
    std::uint32_t index = 0;
    while (const auto name = tags ? tags->Get(index++) : std::nullopt) {
      names.push_back(*name);
    }
    return names;
  }

  [[nodiscard]] TagEntry Read(std::u16string_view tagName) const {
    const auto entry = m_store.ReadEntry(tagName);
    EXPECT_EQ(support::ErrorOf(entry), std::nullopt);
    return entry.value_or(TagEntry{});
  }

  /// Keeps a file open, as another program does.
  [[nodiscard]] std::unique_ptr<platform::File> Hold(std::u16string_view path) {
    return m_files.Open(path, {}).value();
  }

  machine::MemoryFileSystem m_files;
  support::WatchedFileSystem m_failingFiles{m_files};
  machine::MemoryRegistry m_registry;
  support::WatchedRegistry m_failingRegistry{m_registry};
  TagStore m_store{m_failingFiles, m_failingRegistry};
};

}  // namespace

using TagStoreEntries = TagStoreTest;

TEST_F(TagStoreEntries, AnEntryHoldsTwoTextsOfOneHundredBytes) {
  ASSERT_EQ(support::ErrorOf(m_store.WriteEntry(u"4711", -17, u"BusinessFax")), std::nullopt);
  const auto key = m_registry.OpenKey(u"Software\\Zedra\\Zedra Voxtrel\\4711").value();
  ASSERT_NE(key, nullptr);
  EXPECT_THAT(support::ValueNames(*key), ElementsAre(u"contact", u"phone type"));
  for (const auto& [name, text] :
       {std::pair{u"contact", u"-17"}, std::pair{u"phone type", u"BusinessFax"}}) {
    platform::RegistryValue value;
    value = key->Query(name).value();
    auto expected = Utf16Bytes(text);
    expected.resize(100);
    EXPECT_EQ(value.type, RegistryType::kString);
    EXPECT_EQ(value.bytes, expected);
  }
}

TEST_F(TagStoreEntries, EveryOidIsReadBackAsItWasWritten) {
  for (const std::int32_t oid : {1, -1, 0, 2147483647, -2147483647 - 1}) {
    ASSERT_EQ(support::ErrorOf(m_store.WriteEntry(u"4711", oid, u"Car")), std::nullopt);
    EXPECT_EQ(Read(u"4711").oid, oid);
  }
}

TEST_F(TagStoreEntries, ASecondEntryOfTheSameNameOverwritesTheFirst) {
  ASSERT_EQ(support::ErrorOf(m_store.WriteEntry(u"4711", 1, u"BusinessFax")), std::nullopt);
  ASSERT_EQ(support::ErrorOf(m_store.WriteEntry(u"4711", 2, u"Car")), std::nullopt);
  EXPECT_THAT(Names(), ElementsAre(u"4711"));
  EXPECT_EQ(Read(u"4711").oid, 2);
  EXPECT_EQ(BytesOf(m_registry, EntryPath(u"4711"), u"phone type"), ToTagValue(u"Car"))
      << "nothing of the longer word may stay behind the terminator";
}

TEST_F(TagStoreEntries, AnUnknownPhoneTypeIsKeptAndReadBack) {
  ASSERT_EQ(support::ErrorOf(m_store.WriteEntry(u"4711", 1, u"Pager")), std::nullopt);
  EXPECT_EQ(Read(u"4711").phoneType, u"Pager");
}

TEST_F(TagStoreEntries, APhoneTypeLongerThanItsValueIsCut) {
  ASSERT_EQ(support::ErrorOf(m_store.WriteEntry(u"4711", 1, std::u16string(99, u'x'))),
            std::nullopt);
  EXPECT_EQ(Read(u"4711").phoneType, std::u16string(49, u'x'));
}

TEST_F(TagStoreEntries, AnEntryIsWrittenWholeOrNotAtAll) {
  std::size_t call = 1;
  for (;; ++call) {
    SCOPED_TRACE(call);
    m_failingRegistry.FailCall(call, Failing::kOnce, RegistryError::kFull);
    const auto error = support::ErrorOf(m_store.WriteEntry(u"4711", 1, u"Car"));
    if (!m_failingRegistry.HasFailed()) {
      EXPECT_EQ(error, std::nullopt);
      break;
    }
    EXPECT_EQ(error, RegistryError::kFull);
    EXPECT_FALSE(KeyExists(m_registry, EntryPath(u"4711")));
    ASSERT_EQ(support::ErrorOf(m_registry.BeginGroup()), std::nullopt) << "no group may stay open";
    m_registry.CancelGroup();
  }
  EXPECT_GT(call, 4U);
}

TEST_F(TagStoreEntries, AFailedWriteLeavesTheEarlierEntry) {
  ASSERT_EQ(support::ErrorOf(m_store.WriteEntry(u"4711", 1, u"Car")), std::nullopt);
  // The group, the key, the first value: the second one fails.
  m_failingRegistry.FailCall(4, Failing::kOnce, RegistryError::kFull);
  EXPECT_EQ(support::ErrorOf(m_store.WriteEntry(u"4711", 2, u"Home")), RegistryError::kFull);
  EXPECT_EQ(Read(u"4711").oid, 1);
  EXPECT_EQ(Read(u"4711").phoneType, u"Car");
}

TEST_F(TagStoreEntries, ValuesWithoutATerminatorAreReadWhole) {
  const auto put = [&](std::u16string_view name, std::u16string_view text) {
    ASSERT_EQ(support::ErrorOf(
                  Put(m_registry, EntryPath(u"1"), name, RegistryType::kString, Utf16Bytes(text))),
              std::nullopt);
  };
  put(u"contact", u"-2147483648");
  put(u"phone type", u"Assistant");
  EXPECT_EQ(Read(u"1").oid, -2147483647 - 1);
  EXPECT_EQ(Read(u"1").phoneType, u"Assistant");
}

TEST_F(TagStoreEntries, EmptyValuesNameNoContactAndNoType) {
  for (const auto* const name : {u"contact", u"phone type"}) {
    ASSERT_EQ(support::ErrorOf(Put(m_registry, EntryPath(u"1"), name, RegistryType::kString, {})),
              std::nullopt);
  }
  EXPECT_EQ(Read(u"1").oid, std::nullopt);
  EXPECT_EQ(Read(u"1").phoneType, u"");
}

TEST_F(TagStoreEntries, ValuesOfAnotherTypeNameNoContactAndNoType) {
  for (const auto* const name : {u"contact", u"phone type"}) {
    ASSERT_EQ(support::ErrorOf(
                  Put(m_registry, EntryPath(u"1"), name, RegistryType::kDword, Utf16Bytes(u"17"))),
              std::nullopt);
  }
  EXPECT_EQ(Read(u"1").oid, std::nullopt);
  EXPECT_EQ(Read(u"1").phoneType, u"");
}

TEST_F(TagStoreEntries, ASubkeyWithoutValuesNamesNoContactAndNoType) {
  ASSERT_EQ(support::ErrorOf(m_registry.CreateKey(EntryPath(u"1"))), std::nullopt);
  EXPECT_THAT(Names(), ElementsAre(u"1"));
  EXPECT_EQ(Read(u"1").oid, std::nullopt);
  EXPECT_EQ(Read(u"1").phoneType, u"");
}

TEST_F(TagStoreEntries, OneValueThatIsMissingDoesNotHideTheOther) {
  ASSERT_EQ(support::ErrorOf(PutText(m_registry, EntryPath(u"1"), u"contact", u"17")),
            std::nullopt);
  EXPECT_EQ(Read(u"1").oid, 17);
  EXPECT_EQ(Read(u"1").phoneType, u"");
}

TEST_F(TagStoreEntries, AnEntryThatIsNotThereIsNotFound) {
  EXPECT_EQ(support::ErrorOf(m_store.ReadEntry(u"4711")), RegistryError::kNotFound);
}

TEST_F(TagStoreEntries, ARegistryThatCannotBeAskedIsAnErrorAndNotAnEntryWithoutContact) {
  ASSERT_EQ(support::ErrorOf(m_store.WriteEntry(u"4711", 17, u"Car")), std::nullopt);
  for (const std::size_t call : {1U, 2U, 3U}) {
    m_failingRegistry.FailCall(call, Failing::kOnce, RegistryError::kBusy);
    EXPECT_EQ(support::ErrorOf(m_store.ReadEntry(u"4711")), RegistryError::kBusy);
  }
}

TEST_F(TagStoreEntries, AnEmptyTagNameNeverMeansTheWholeKey) {
  PutTag(u"1");
  EXPECT_EQ(support::ErrorOf(m_store.DeleteEntry(u"")), RegistryError::kInvalid);
  EXPECT_EQ(support::ErrorOf(m_store.WriteEntry(u"", 1, u"Car")), RegistryError::kInvalid);
  EXPECT_THAT(Names(), ElementsAre(u"1"));
}

using TagStoreNames = TagStoreTest;

TEST_F(TagStoreNames, WithoutATagKeyThereAreNone) {
  EXPECT_EQ(support::ErrorOf(m_store.OpenNames()), RegistryError::kNotFound);
}

TEST_F(TagStoreNames, WithoutASubkeyThereAreNone) {
  ASSERT_EQ(support::ErrorOf(m_registry.CreateKey(kTagKey)), std::nullopt);
  ASSERT_TRUE(m_store.OpenNames());
  EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(TagStoreNames, ComeInTheOrderInWhichTheTagsWereMade) {
  for (const auto* const name : {u"300", u"-100", u"200"}) {
    PutTag(name);
  }
  EXPECT_THAT(Names(), ElementsAre(u"300", u"-100", u"200"));
}

TEST_F(TagStoreNames, WhileTagsAreDeletedTheNextOneMovesIntoTheirIndex) {
  for (const auto* const name : {u"1", u"2", u"3"}) {
    PutTag(name);
  }
  const auto tags = m_store.OpenNames();
  ASSERT_TRUE(tags);
  ASSERT_EQ(tags->Get(0), u"1");
  ASSERT_TRUE(m_store.Delete(u"1"));
  EXPECT_EQ(tags->Get(0), u"2");
  EXPECT_EQ(tags->Get(1), u"3");
  EXPECT_EQ(tags->Get(2), std::nullopt);
}

TEST_F(TagStoreNames, OfThirtyCharactersAreAccepted) {
  const std::u16string longest(30, u'1');
  PutTag(longest);
  PutTag(u"2");
  EXPECT_THAT(Names(), ElementsAre(longest, u"2"));
}

TEST_F(TagStoreNames, OfThirtyOneCharactersEndTheEnumeration) {
  PutTag(u"1");
  PutTag(std::u16string(31, u'1'));
  PutTag(u"2");
  EXPECT_THAT(Names(), ElementsAre(u"1"));
}

TEST_F(TagStoreNames, AFailureEndsTheEnumeration) {
  for (const auto* const name : {u"1", u"2"}) {
    PutTag(name);
  }
  m_failingRegistry.FailCall(3, Failing::kOnce, RegistryError::kBusy);
  EXPECT_THAT(Names(), ElementsAre(u"1"));
}

using TagStoreDeletion = TagStoreTest;

TEST_F(TagStoreDeletion, TakesTheRecordingTheTemplateAndTheEntry) {
  PutTag(u"1");
  PutTag(u"2");
  ASSERT_TRUE(m_store.Delete(u"1"));
  EXPECT_THAT(Names(), ElementsAre(u"2"));
  EXPECT_THAT(m_files.ListFiles(), UnorderedElementsAre(WavePath(u"2"), TemplatePath(u"2")));
}

TEST_F(TagStoreDeletion, ARecordingInUseKeepsEverything) {
  PutTag(u"1");
  const auto held = Hold(WavePath(u"1"));
  EXPECT_EQ(support::ErrorOf(m_store.Delete(u"1")), TagPart::kWave);
  EXPECT_EQ(support::ErrorOf(m_store.DeleteWaveFile(u"1")), FileError::kSharingViolation);
  EXPECT_THAT(Names(), ElementsAre(u"1"));
  EXPECT_THAT(m_files.ListFiles(), UnorderedElementsAre(WavePath(u"1"), TemplatePath(u"1")));
}

TEST_F(TagStoreDeletion, ATemplateInUseIsFoundOutWhenTheRecordingIsGone) {
  PutTag(u"1");
  const auto held = Hold(TemplatePath(u"1"));
  EXPECT_EQ(support::ErrorOf(m_store.Delete(u"1")), TagPart::kTemplate);
  EXPECT_THAT(Names(), ElementsAre(u"1"));
  EXPECT_THAT(m_files.ListFiles(), ElementsAre(TemplatePath(u"1")));
}

TEST_F(TagStoreDeletion, AnEntryThatCannotBeDeletedStays) {
  PutTag(u"1");
  m_failingRegistry.FailCall(1, Failing::kOnce, RegistryError::kBusy);
  EXPECT_EQ(support::ErrorOf(m_store.Delete(u"1")), TagPart::kEntry);
  EXPECT_THAT(Names(), ElementsAre(u"1"));
  EXPECT_THAT(m_files.ListFiles(), IsEmpty());
}

TEST_F(TagStoreDeletion, WhatIsMissingCountsAsDeleted) {
  PutTag(u"1");
  ASSERT_TRUE(m_files.Delete(WavePath(u"1")));
  ASSERT_TRUE(m_files.Delete(TemplatePath(u"1")));
  EXPECT_TRUE(m_store.Delete(u"1"));
  EXPECT_THAT(Names(), IsEmpty());
  EXPECT_TRUE(m_store.Delete(u"1"));
  EXPECT_TRUE(m_store.DeleteWaveFile(u"1"));
  EXPECT_EQ(support::ErrorOf(m_store.DeleteAllEntries()), std::nullopt);
  EXPECT_EQ(support::ErrorOf(m_store.DeleteAllEntries()), std::nullopt);
}

TEST_F(TagStoreDeletion, NamesOfAnotherHandReachNoOtherFile) {
  PutTag(u"1");
  ASSERT_TRUE(m_files.PutFile(u"\\secret.wav", {}));
  for (const auto* const name : {u"*", u"?", u"../../../../secret", u"x/1", u"..", u""}) {
    static_cast<void>(m_store.Delete(name));
  }
  EXPECT_EQ(m_files.ListFiles().size(), 3U);
  EXPECT_THAT(Names(), ElementsAre(u"1"));
}

TEST_F(TagStoreEntries, AreListedWhateverTheLengthOfTheirNames) {
  const std::u16string longName(200, u'n');
  PutTag(u"2");
  PutTag(longName);
  PutTag(u"1");
  const auto list = m_store.ListNames();
  ASSERT_EQ(support::ErrorOf(list), std::nullopt);
  EXPECT_THAT(list->names, ElementsAre(u"2", longName, u"1"));
}

TEST_F(TagStoreEntries, AListThatCannotBeReadIsNoEmptyOne) {
  PutTag(u"1");
  for (const std::size_t call : {1U, 2U, 3U}) {
    m_failingRegistry.FailCall(call, Failing::kOnce, RegistryError::kBusy);
    EXPECT_EQ(support::ErrorOf(m_store.ListNames()), RegistryError::kBusy) << call;
  }
}

using TagStoreRecordings = TagStoreTest;

TEST_F(TagStoreRecordings, AreFoundWithAndWithoutAnEntryAndWithoutFolders) {
  PutTag(u"1");
  PutFiles(u"2");
  ASSERT_TRUE(m_files.PutFile(std::u16string(kWaveFolder) + u"\\notes.txt", {}));
  for (const auto* const folder : {u"\\0.wav", u"\\3.wav"}) {
    ASSERT_TRUE(m_files.CreateFolder(std::u16string(kWaveFolder) + folder));
  }
  const auto search = m_store.FindRecordings();
  ASSERT_TRUE(search);
  std::vector<std::u16string> names;
  for (auto found = (*search)->Next(); found && *found; found = (*search)->Next()) {
    names.push_back((*found)->name);
  }
  EXPECT_THAT(names, UnorderedElementsAre(u"1.wav", u"2.wav"));
}

TEST_F(TagStoreRecordings, AreNotFoundWhereThereAreNone) {
  EXPECT_EQ(support::ErrorOf(m_store.FindRecordings()), FileError::kNotFound);
  ASSERT_TRUE(m_files.PutFile(std::u16string(kWaveFolder) + u"\\folder.wav\\file", {}));
  EXPECT_EQ(support::ErrorOf(m_store.FindRecordings()), FileError::kNotFound);
}

TEST_F(TagStoreRecordings, TellWhereTheSearchFails) {
  PutFiles(u"1");
  PutFiles(u"2");
  for (const std::size_t call : {1U, 2U}) {
    m_failingFiles.FailCall(call, Failing::kOnce);
    EXPECT_EQ(support::ErrorOf(m_store.FindRecordings()), FileError::kOther) << call;
  }
  m_failingFiles.FailCall(3, Failing::kOnce);
  const auto search = m_store.FindRecordings();
  ASSERT_TRUE(search);
  EXPECT_TRUE((*search)->Next());
  EXPECT_EQ(support::ErrorOf((*search)->Next()), FileError::kOther);
}

}  // namespace storage
