#include "host/home/store_work.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <ctime>
#include <limits>
#include <optional>
#include <thread>

#include "host/home/page_tasks.h"
#include "platform/threads.h"
#include "tags/page_one.h"
#include "tests/host/home/work_fixture.h"
#include "tests/support/half_written.h"

namespace home {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

using Names = std::vector<std::u16string>;

bool IsSentence(const std::u16string& text) {
  return text.size() > 1 && text.back() == u'.' && text.find(u"--") == std::u16string::npos;
}

TEST_F(StoreWorkTest, PeopleHaveTheirCompanyAndTheirNumbersByKind) {
  Begin();
  EXPECT_EQ(m_shelf->peopleProblem, u"");
  ASSERT_THAT(m_shelf->people, SizeIs(2));
  const Person& bob = m_shelf->people[1];
  EXPECT_EQ(bob.name, u"Bob Ray");
  EXPECT_EQ(bob.company, u"Firm of b");
  ASSERT_THAT(bob.numbers, SizeIs(1));
  EXPECT_EQ(bob.numbers[0].kind, u"Home");
  EXPECT_EQ(bob.numbers[0].text, u"+972 50 555 0144");
  EXPECT_EQ(m_shelf->peopleProblem, u"");
  EXPECT_EQ(m_shelf->tagsProblem, u"");
  EXPECT_THAT(m_shelf->tags, IsEmpty());
}

TEST_F(StoreWorkTest, ALoadChangesNothingAndMakesNoFolder) {
  Begin();
  EXPECT_FALSE(std::filesystem::exists(m_options.root));
}

TEST_F(StoreWorkTest, ALessonBecomesATagThatTheShelfHasBeforeItsAnswerComes) {
  Begin();
  bool hadTag = false;
  std::u16string made;
  m_work->Teach({Oid(u"Bob Ray"), u"Home", Sample("robert_1.wav"), {}},
                [&](const Outcome& outcome, const std::u16string& tag, const Names& trashed) {
                  EXPECT_TRUE(outcome.isDone);
                  EXPECT_EQ(outcome.message, u"");
                  EXPECT_THAT(trashed, IsEmpty());
                  hadTag = Find(tag) != nullptr;
                  made = tag;
                });
  Await([&made] { return !made.empty(); });
  ASSERT_TRUE(hadTag);
  const Tag& tag = *Find(made);
  EXPECT_EQ(tag.contact, u"Bob Ray");
  EXPECT_EQ(tag.number, u"+972 50 555 0144");
  EXPECT_EQ(tag.kind, u"Home");
  EXPECT_EQ(tag.oid, Oid(u"Bob Ray"));
  EXPECT_GT(tag.seconds.value_or(0), 0.2);
  EXPECT_LT(tag.seconds.value_or(9), 3.0) << "cut to the name";
  EXPECT_NEAR(static_cast<double>(tag.taughtAt.value_or(0)), static_cast<double>(std::time({})),
              600);
  EXPECT_TRUE(tag.quality.take.has_value());
  EXPECT_TRUE(HasFiles(made));
  EXPECT_FALSE(std::filesystem::exists(m_options.speaker)) << "nothing was played";
}

TEST_F(StoreWorkTest, WhatIsWrongWithSomebodyElseIsNotSaidOfALesson) {
  WriteContacts(CardOf("a", "Lee;Ann", "CELL", "5551234") +
                CardOf("b", "Ray;Bob", "HOME", std::string(200, '5')));
  Begin();
  std::optional<Outcome> taught;
  m_work->Teach({Oid(u"Ann Lee"), u"Mobile", Sample("robert_1.wav"), {}},
                [&taught](const Outcome& outcome, const std::u16string& /*tag*/,
                          const Names& /*trashed*/) { taught = outcome; });
  Await([&taught] { return taught.has_value(); });
  EXPECT_TRUE(taught->isDone);
  EXPECT_EQ(taught->message, u"");
}

TEST_F(StoreWorkTest, ATagKnowsTheMostAlikeTagOfAnotherNumber) {
  Begin();
  const std::u16string ann = TeachAnn();
  EXPECT_FALSE(Find(ann)->quality.nearest) << "there is no other";
  const std::u16string bob = TeachBob("anna_2.wav");
  ASSERT_TRUE(Find(ann)->quality.nearest);
  EXPECT_EQ(m_shelf->tags.at(Find(ann)->quality.nearest->index).name, bob);
  EXPECT_GT(Find(ann)->quality.nearest->distance, 0.0F);
}

TEST_F(StoreWorkTest, ALessonIsComparedWithTheTagsThatStay) {
  Begin();
  const std::u16string ann = TeachAnn("anna_1.wav");
  const auto compare = [this](const Lesson& lesson) {
    std::optional<Names> found;
    m_work->Compare(lesson, [&found](const Names& alike) { found = alike; });
    Await([&found] { return found.has_value(); });
    return found.value_or(Names{u"no answer"});
  };
  Lesson lesson{Oid(u"Bob Ray"), u"Home", Sample("anna_1.wav"), {}};
  EXPECT_THAT(compare(lesson), ElementsAre(ann));
  lesson.replaced = ann;
  EXPECT_THAT(compare(lesson), IsEmpty());
  EXPECT_THAT(m_shelf->tags, SizeIs(1));
}

TEST_F(StoreWorkTest, ATagThatIsTaughtAgainGoesToTheTrashAndCanComeBack) {
  Begin();
  const std::u16string before = TeachAnn("anna_1.wav");
  const Taught again = Teach({Oid(u"Ann Lee"), u"Mobile", Sample("anna_2.wav"), before});
  ASSERT_TRUE(again.outcome.isDone);
  EXPECT_NE(again.tag, before);
  EXPECT_EQ(Find(before), nullptr);
  EXPECT_NE(Find(again.tag), nullptr);
  ASSERT_THAT(again.trashed, SizeIs(1));
  EXPECT_TRUE(Restore(again.trashed).isDone);
  EXPECT_NE(Find(before), nullptr);
  EXPECT_TRUE(HasFiles(before));
}

TEST_F(StoreWorkTest, IfTeachingAgainFailsTheEarlierTagStays) {
  Begin();
  const std::u16string before = TeachAnn();
  for (const Lesson& lesson :
       {Lesson{4711, u"Mobile", Sample("anna_2.wav"), before},
        Lesson{Oid(u"Ann Lee"), u"Home2", Sample("anna_2.wav"), before},
        Lesson{Oid(u"Ann Lee"), u"Mobile", std::vector<std::byte>(10), before}}) {
    const Taught again = Teach(lesson);
    EXPECT_FALSE(again.outcome.isDone);
    EXPECT_TRUE(IsSentence(again.outcome.message));
    EXPECT_EQ(again.tag, u"");
    EXPECT_THAT(again.trashed, IsEmpty());
    ASSERT_THAT(m_shelf->tags, SizeIs(1));
    EXPECT_TRUE(HasFiles(before));
  }
}

/// The store has as many tags as there can be.
class FullStoreWorkTest : public StoreWorkTest {
 protected:
  FullStoreWorkTest() {
    Begin();
    m_first = TeachAnn();
    for (int i = 1; i < storage::kMaxTags; ++i) {
      const std::string number = std::to_string(i);
      const std::u16string name(number.begin(), number.end());
      copy_file(Wave(m_first), Wave(name));
      copy_file(HostPath(storage::TemplatePath(m_first)), HostPath(storage::TemplatePath(name)));
      PutEntry(name, Oid(u"Bob Ray"), u"Home");
    }
  }
  std::u16string m_first;
};

TEST_F(FullStoreWorkTest, ATagCanBeTaughtAgain) {
  const Taught again = Teach({Oid(u"Ann Lee"), u"Mobile", Sample("anna_2.wav"), m_first});
  EXPECT_TRUE(again.outcome.isDone);
  EXPECT_THAT(m_shelf->tags, SizeIs(storage::kMaxTags));
  EXPECT_EQ(Find(m_first), nullptr);
  EXPECT_THAT(again.trashed, SizeIs(1));
}

TEST_F(FullStoreWorkTest, ATagThatCannotBeTaughtAgainIsPutBack) {
  const Taught again = Teach({Oid(u"Ann Lee"), u"Mobile", std::vector<std::byte>(10), m_first});
  EXPECT_FALSE(again.outcome.isDone);
  EXPECT_THAT(m_shelf->tags, SizeIs(storage::kMaxTags));
  EXPECT_NE(Find(m_first), nullptr);
  EXPECT_TRUE(HasFiles(m_first));
  EXPECT_THAT(again.trashed, IsEmpty()) << "there is nothing to undo";
}

TEST_F(FullStoreWorkTest, ANewTagIsRefusedInTheWordsOfThePage) {
  const Taught one = Teach({Oid(u"Ann Lee"), u"Mobile", Sample("anna_2.wav"), {}});
  EXPECT_FALSE(one.outcome.isDone);
  EXPECT_NE(one.outcome.message.find(u"100"), std::u16string::npos);
}

TEST_F(StoreWorkTest, SeveralTagsGoTogetherAndComeBackAsTheyWere) {
  Begin();
  const Names tags{TeachAnn(), TeachBob(), TeachAnn("anna_3.wav")};
  const auto lastWeek =
      std::filesystem::last_write_time(Wave(tags[0])) - std::chrono::hours(24 * 7);
  std::filesystem::last_write_time(Wave(tags[0]), lastWeek);
  const auto [outcome, trashed] = Delete({tags[0], tags[1]});
  EXPECT_TRUE(outcome.isDone);
  EXPECT_EQ(outcome.message, u"");
  EXPECT_THAT(trashed, SizeIs(2));
  ASSERT_THAT(m_shelf->tags, SizeIs(1));
  EXPECT_EQ(m_shelf->tags[0].name, tags[2]);
  const Outcome restored = Restore(trashed);
  EXPECT_TRUE(restored.isDone);
  EXPECT_EQ(restored.message, u"");
  EXPECT_THAT(m_shelf->tags, SizeIs(3));
  EXPECT_TRUE(std::filesystem::last_write_time(Wave(tags[0])) == lastWeek)
      << "it was taught when it was taught";
}

TEST_F(StoreWorkTest, IfTheDiskHasNoRoomForTheirCopiesNoTagIsDeletedOrTaughtAgain) {
  Begin();
  const Names tags{TeachAnn(), TeachBob()};
  PageTasks tasks(m_options, std::numeric_limits<std::uintmax_t>::max() / 2);
  const DeletedTags deleted = tasks.Delete(tags);
  EXPECT_FALSE(deleted.outcome.isDone);
  EXPECT_EQ(deleted.outcome.message, u"The disk is full. Nothing was changed.");
  EXPECT_THAT(deleted.trashed, IsEmpty());
  const TaughtTag taught = tasks.Teach({Oid(u"Ann Lee"), u"Mobile", Sample("anna_2.wav"), tags[0]});
  EXPECT_FALSE(taught.outcome.isDone);
  EXPECT_EQ(taught.outcome.message, u"The disk is full. Nothing was changed.");
  m_work->Load();
  Await([this] { return m_loads > 3; });
  EXPECT_THAT(m_shelf->tags, SizeIs(2));
  EXPECT_TRUE(HasFiles(tags[0]));
  EXPECT_TRUE(HasFiles(tags[1]));
}

TEST_F(StoreWorkTest, ANameCannotTurnTheOrderOfTheWordsAfterIt) {
  WriteContacts(CardOf("a", "Lee\u202E;\u2067Ann", "CELL", "5551234"));
  Begin();
  ASSERT_THAT(m_shelf->people, SizeIs(1));
  EXPECT_EQ(m_shelf->people[0].name, u"Ann Lee");
  static_cast<void>(TeachAnn());
  EXPECT_EQ(m_shelf->tags.at(0).contact, u"Ann Lee");
}

TEST_F(StoreWorkTest, TheTrashIsListedWithTheLatestDeletionFirst) {
  Begin();
  const Names tags{TeachAnn(), TeachBob()};
  EXPECT_THAT(ListTrash(), IsEmpty());
  const auto first = Delete({tags[0]}).second;
  const std::int32_t ann = Oid(u"Ann Lee");
  const auto second = Delete({tags[1]}).second;
  const std::vector<DeletedTag> listed = ListTrash();
  ASSERT_THAT(listed, SizeIs(2));
  EXPECT_EQ(Names({listed[0].file, listed[1].file}), Names({second[0], first[0]}));
  EXPECT_EQ(listed[1].oid, ann);
  EXPECT_EQ(listed[1].kind, u"Mobile");
  EXPECT_EQ(listed[1].text, u"Ann Lee 5551234 M");
  EXPECT_GT(listed[1].deletedAt, 0);
  EXPECT_EQ(listed[1].obstacle, u"");
  EXPECT_TRUE(Restore({listed[1].file}).isDone);
  EXPECT_THAT(ListTrash(), SizeIs(1));
}

TEST_F(FullStoreWorkTest, WhatTheTrashHoldsSaysThatThereIsNoRoomForIt) {
  ASSERT_TRUE(Delete({m_first}).first.isDone);
  TeachBob();
  const std::vector<DeletedTag> listed = ListTrash();
  ASSERT_THAT(listed, SizeIs(1));
  EXPECT_NE(listed[0].obstacle.find(u"100 tags already"), std::u16string::npos);
}

TEST_F(StoreWorkTest, ATagWhosePersonIsInAnotherAddressBookStaysInTheTrash) {
  Begin();
  const auto trashed = Delete({TeachAnn()}).second;
  std::ofstream(Path("others.vcf"), std::ios::binary) << CardOf("z", "Poe;Zoe", "HOME", "5550001");
  m_options.contacts = Path("others.vcf");
  const Outcome restored = Restore(trashed);
  EXPECT_FALSE(restored.isDone);
  EXPECT_EQ(restored.message,
            u"Ann Lee 5551234 M was not restored: its person is in another address book.");
  EXPECT_THAT(m_shelf->tags, IsEmpty());
  EXPECT_EQ(m_shelf->peopleProblem, u"") << "the other book can still be used";
  EXPECT_EQ(ListTrash().at(0).obstacle, u"Its person is in another address book.");
  m_options.contacts = Path("all.vcf");
  EXPECT_EQ(ListTrash().at(0).obstacle, u"");
  EXPECT_TRUE(Restore(trashed).isDone);
  EXPECT_THAT(m_shelf->tags, SizeIs(1));
}

TEST_F(StoreWorkTest, TheTrashSaysIfAPersonHasGoneFromTheAddressBook) {
  Begin();
  static_cast<void>(Delete({TeachAnn()}));
  WriteContacts(CardOf("b", "Ray;Bob", "HOME", "+972 50 555 0144"));
  EXPECT_EQ(ListTrash().at(0).obstacle, u"Its person is no longer in the address book.");
}

TEST_F(StoreWorkTest, ATagIsRestoredIfNobodyKnowsWhetherItsPersonIsThere) {
  Begin();
  const auto trashed = Delete({TeachAnn()}).second;
  std::filesystem::remove(Path("all.vcf"));
  EXPECT_EQ(ListTrash().at(0).obstacle, u"");
  EXPECT_TRUE(Restore(trashed).isDone);
}

TEST_F(StoreWorkTest, WhatIsNotInTheTrashAnyMoreIsNotRestored) {
  Begin();
  const auto [outcome, trashed] = Delete({TeachAnn()});
  ASSERT_TRUE(Restore(trashed).isDone);
  const Outcome again = Restore(trashed);
  EXPECT_FALSE(again.isDone);
  EXPECT_TRUE(IsSentence(again.message));
  EXPECT_THAT(m_shelf->tags, SizeIs(1));
}

TEST_F(StoreWorkTest, ATagThatIsGoneAlreadyCountsAsDeleted) {
  Begin();
  const std::u16string ann = TeachAnn();
  EXPECT_TRUE(Delete({ann}).first.isDone);
  const auto [outcome, trashed] = Delete({ann});
  EXPECT_TRUE(outcome.isDone);
  EXPECT_THAT(trashed, IsEmpty());
}

TEST_F(StoreWorkTest, TagsThatAnotherProgramHasStayAsTheyAreAndASentenceSaysSo) {
  Begin();
  const std::u16string ann = TeachAnn();
  const std::u16string bob = TeachBob();
  const auto trashed = Delete({bob}).second;
  {
    machine::Backends other(m_options);
    const auto held = other.GetThreads().CreateNamedMutex(tags::kInstanceMutex);
    ASSERT_TRUE(held.has_value());
    const auto [deleted, none] = Delete({ann});
    const Taught taught = Teach({Oid(u"Bob Ray"), u"Home", Sample("robert_2.wav"), ann});
    for (const Outcome& outcome : {deleted, taught.outcome, Restore(trashed)}) {
      EXPECT_FALSE(outcome.isDone);
      EXPECT_EQ(outcome.message,
                u"The tags are in use by another Voxtrel; close it and try again.");
    }
    EXPECT_THAT(none, IsEmpty());
  }
  ASSERT_THAT(m_shelf->tags, SizeIs(1));
  EXPECT_TRUE(HasFiles(ann));
  EXPECT_TRUE(Restore(trashed).isDone);
}

TEST_F(StoreWorkTest, AfterEachRequestTheTagsAreFreeForOthers) {
  Begin();
  static_cast<void>(TeachAnn());
  machine::Backends other(m_options);
  EXPECT_TRUE(other.GetThreads().CreateNamedMutex(tags::kInstanceMutex).has_value());
}

TEST_F(StoreWorkTest, RequestsAreDoneInTheirOrder) {
  Begin();
  const std::u16string ann = TeachAnn();
  std::vector<int> order;
  m_work->Delete({ann}, [&order](const Outcome& outcome, const Names&) {
    EXPECT_TRUE(outcome.isDone);
    order.push_back(1);
  });
  m_work->Teach({Oid(u"Ann Lee"), u"Mobile", Sample("anna_2.wav"), {}},
                [&order](const Outcome& outcome, const std::u16string&, const Names&) {
                  EXPECT_TRUE(outcome.isDone);
                  order.push_back(2);
                });
  EXPECT_THAT(order, IsEmpty()) << "no answer comes before the request has returned";
  Await([&order] { return order.size() == 2; });
  EXPECT_THAT(order, ElementsAre(1, 2));
}

TEST_F(StoreWorkTest, NamesComeBeforePeopleAndVerdictsButOnlyTheFirstTime) {
  Begin();
  const std::u16string ann = TeachAnn();
  m_work = std::make_unique<StoreWork>(m_options);
  std::vector<std::shared_ptr<const Shelf>> shelves;
  m_work->OnLoaded(
      [&shelves](const std::shared_ptr<const Shelf>& shelf) { shelves.push_back(shelf); });
  m_work->Load();
  Await([&shelves] { return shelves.size() == 2; });
  EXPECT_FALSE(shelves[0]->areJudged);
  EXPECT_THAT(shelves[0]->people, IsEmpty());
  EXPECT_EQ(shelves[0]->tags.at(0).contact, u"Ann Lee");
  EXPECT_TRUE(shelves[1]->areJudged);
  EXPECT_THAT(shelves[1]->people, Not(IsEmpty()));
  EXPECT_EQ(shelves[0]->tags.at(0).number, shelves[1]->tags.at(0).number);
  EXPECT_TRUE(shelves[1]->tags.at(0).quality.take.has_value());
  m_work->Load();
  Await([&shelves] { return shelves.size() == 3; });
  EXPECT_TRUE(shelves[2]->areJudged);
}

TEST_F(StoreWorkTest, AnswersComeOnTheThreadThatAsked) {
  Begin();
  const auto here = std::this_thread::get_id();
  std::vector<std::thread::id> threads;
  m_work->OnLoaded([&threads](const std::shared_ptr<const Shelf>&) {
    threads.push_back(std::this_thread::get_id());
  });
  m_work->Play(u"4711",
               [&threads](const Outcome&) { threads.push_back(std::this_thread::get_id()); });
  m_work->Delete({u"4711"}, [&threads](const Outcome&, const Names&) {
    threads.push_back(std::this_thread::get_id());
  });
  Await([&threads] { return threads.size() == 3; });
  EXPECT_THAT(threads, testing::Each(here));
}

TEST_F(StoreWorkTest, AfterItsEndItCallsNobody) {
  Begin();
  const std::u16string ann = TeachAnn();
  const auto fail = [](const auto&...) { FAIL() << "called after the end"; };
  m_work->OnLoaded(fail);
  m_work->Load();
  m_work->Play(ann, fail);
  m_work->Delete({ann}, fail);
  m_work->Compare({}, fail);
  m_work.reset();
  QCoreApplication::processEvents();
  QCoreApplication::sendPostedEvents();
}

TEST_F(StoreWorkTest, WhoShowsTheShelfMayEndTheWork) {
  Begin();
  bool isAnswered = false;
  bool isEnded = false;
  m_work->OnLoaded([this, &isEnded](const std::shared_ptr<const Shelf>&) {
    m_work.reset();
    isEnded = true;
  });
  m_work->Delete({u"4711"}, [&isAnswered](const Outcome&, const Names&) { isAnswered = true; });
  Await([&isEnded] { return isEnded; });
  QCoreApplication::processEvents();
  EXPECT_FALSE(isAnswered);
}

TEST_F(StoreWorkTest, ARecordingIsHeardAsItIs) {
  Begin();
  const std::u16string ann = TeachAnn();
  EXPECT_TRUE(Play(ann).isDone);
  EXPECT_EQ(std::filesystem::file_size(m_options.speaker), std::filesystem::file_size(Wave(ann)));
}

TEST_F(StoreWorkTest, ARecordingThatIsMissingIsReportedInASentence) {
  Begin();
  const Outcome outcome = Play(u"4711");
  EXPECT_FALSE(outcome.isDone);
  EXPECT_TRUE(IsSentence(outcome.message));
  EXPECT_TRUE(QChar(outcome.message.front()).isUpper());
}

/// The number of loads after everything that was asked for is done.
int CountLoads(StoreWork& work, const int& loads, const std::function<void(bool&)>& await) {
  bool isAnswered = false;
  work.Compare({}, [&isAnswered](const Names&) { isAnswered = true; });
  await(isAnswered);
  return loads;
}

TEST_F(StoreWorkTest, WhatAnotherProgramChangedIsLoadedWhenSomebodyLooksAndNothingElseIs) {
  Begin();
  const std::u16string ann = TeachAnn();
  const auto count = [this] {
    return CountLoads(*m_work, m_loads,
                      [](bool& isAnswered) { Await([&isAnswered] { return isAnswered; }); });
  };
  const int before = count();
  m_work->LoadIfChanged();
  EXPECT_EQ(count(), before) << "nothing has changed";
  {
    StoreWork other(m_options);
    bool isDeleted = false;
    other.Delete({ann}, [&isDeleted](const Outcome&, const Names&) { isDeleted = true; });
    Await([&isDeleted] { return isDeleted; });
  }
  m_work->LoadIfChanged();
  EXPECT_EQ(count(), before + 1);
  EXPECT_THAT(m_shelf->tags, IsEmpty());
  WriteContacts(CardOf("a", "Lee;Ann", "CELL", "5551234"));
  m_work->LoadIfChanged();
  EXPECT_EQ(count(), before + 2);
  EXPECT_THAT(m_shelf->people, SizeIs(1));
  m_work->LoadIfChanged();
  EXPECT_EQ(count(), before + 2);
}

TEST_F(StoreWorkTest, LoadsThatWaitAreOne) {
  Begin();
  const int before = m_loads;
  bool isAnswered = false;
  m_work->Compare({}, [](const Names&) {});
  for (int i = 0; i < 5; ++i) {
    m_work->Load();
  }
  m_work->Compare({}, [&isAnswered](const Names&) { isAnswered = true; });
  Await([&isAnswered] { return isAnswered; });
  EXPECT_LE(m_loads, before + 2) << "one may have begun before the next was asked for";
}

TEST_F(StoreWorkTest, ATagWithoutItsContactIsStaleAndKeepsItsPlace) {
  Begin();
  const std::u16string ann = TeachAnn();
  WriteContacts(CardOf("b", "Ray;Bob", "HOME", "5550001"));
  m_work->LoadIfChanged();
  const int before = m_loads;
  Await([this, before] { return m_loads > before; });
  ASSERT_THAT(m_shelf->tags, SizeIs(1));
  EXPECT_TRUE(m_shelf->tags[0].isStale);
  EXPECT_EQ(m_shelf->tags[0].contact, ann);
}

TEST_F(StoreWorkTest, AHalfWrittenTagHasItsPlaceAndHidesNoOther) {
  std::filesystem::create_directory(m_options.root);
  Begin();
  const std::int32_t ann = Oid(u"Ann Lee");
  for (const support::HalfWritten& entry : support::HalfWrittenEntries(ann)) {
    static_cast<void>(Registry().DeleteKey(storage::kTagKey));
    PutEntry(u"100", Oid(u"Bob Ray"), u"Home");
    {
      auto registry = Registry();
      entry.write(registry, u"200");
    }
    const int before = m_loads;
    m_work->Load();
    Await([&] { return m_loads > before; });
    ASSERT_NE(Find(u"100"), nullptr) << entry.what;
    EXPECT_EQ(Find(u"100")->contact, u"Bob Ray");
    const Tag* const half = Find(u"200");
    ASSERT_EQ(half != nullptr, entry.isThere) << entry.what;
    if (half != nullptr) {
      EXPECT_EQ(half->contact, entry.namesContact ? u"Ann Lee" : u"200") << entry.what;
      EXPECT_EQ(half->number, entry.namesContact && entry.namesKind ? u"5551234" : u"")
          << entry.what;
      EXPECT_FALSE(half->isStale) << entry.what;
    }
  }
}

TEST_F(StoreWorkTest, AStaleTagThatIsDeletedCanComeBack) {
  Begin();
  const std::u16string ann = TeachAnn();
  const std::string both = CardOf("a", "Lee;Ann", "CELL", "5551234");
  WriteContacts(CardOf("b", "Ray;Bob", "HOME", "5550001"));
  const auto [outcome, trashed] = Delete({ann});
  EXPECT_TRUE(outcome.isDone);
  ASSERT_THAT(trashed, SizeIs(1));
  EXPECT_TRUE(Restore(trashed).isDone);
  EXPECT_THAT(m_shelf->tags, SizeIs(1));
}

TEST_F(StoreWorkTest, ContactsThatCannotBeReadAreASentenceAndTheTagsKeepTheirOwnNames) {
  Begin();
  const std::u16string ann = TeachAnn();
  std::filesystem::remove(Path("all.vcf"));
  m_work->LoadIfChanged();
  const int before = m_loads;
  Await([this, before] { return m_loads > before; });
  EXPECT_THAT(m_shelf->people, IsEmpty());
  EXPECT_TRUE(IsSentence(m_shelf->peopleProblem));
  ASSERT_THAT(m_shelf->tags, SizeIs(1));
  EXPECT_EQ(m_shelf->tags[0].contact, ann);
  EXPECT_FALSE(m_shelf->tags[0].isStale);
}

TEST_F(StoreWorkTest, ContactsWithoutANumberAreASentence) {
  WriteContacts("BEGIN:VCARD\r\nVERSION:3.0\r\nUID:a\r\nN:Lee;Ann;;;\r\nEND:VCARD\r\n");
  Begin();
  EXPECT_THAT(m_shelf->people, IsEmpty());
  EXPECT_TRUE(IsSentence(m_shelf->peopleProblem));
}

TEST_F(StoreWorkTest, ANewcomerIsToldOfSetUpAndNotOfAnOption) {
  m_options.contacts.clear();
  Begin();
  EXPECT_THAT(m_shelf->people, IsEmpty());
  EXPECT_TRUE(IsSentence(m_shelf->peopleProblem));
  EXPECT_NE(m_shelf->peopleProblem.find(u"Set-up"), std::u16string::npos);
}

TEST_F(StoreWorkTest, ARootThatIsNoFolderIsASentence) {
  std::ofstream(m_options.root) << "a file";
  Begin();
  EXPECT_TRUE(IsSentence(m_shelf->tagsProblem));
}

TEST_F(StoreWorkTest, TemplatesOfAnEarlierMathematicsAreMadeAgainAndTheRequestIsDoneAllTheSame) {
  Begin();
  const std::u16string ann = TeachAnn();
  const std::u16string bob = TeachBob();
  {
    auto registry = Registry();
    ASSERT_EQ(support::ErrorOf(
                  support::PutText(registry, storage::kSetupKey, storage::kMathVersionValue, u"1")),
              std::nullopt);
  }
  const auto [outcome, trashed] = Delete({ann});
  EXPECT_TRUE(outcome.isDone);
  EXPECT_EQ(outcome.message, u"");
  EXPECT_THAT(trashed, SizeIs(1));
  ASSERT_THAT(m_shelf->tags, SizeIs(1));
  EXPECT_EQ(m_shelf->tags[0].name, bob);
}

}  // namespace
}  // namespace home
