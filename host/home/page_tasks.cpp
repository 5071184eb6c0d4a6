#include "host/home/page_tasks.h"

#include <algorithm>
#include <optional>
#include <system_error>
#include <utility>

#include "audio/samples.h"
#include "audio/wave_header.h"
#include "backends/text/say.h"
#include "backends/text/utf.h"
#include "backends/wave_file/file_sound.h"
#include "host/home/trash_reading.h"
#include "host/session/explanations.h"
#include "host/session/held_tags.h"
#include "maintenance/tag_quality.h"
#include "resources/dialogs.h"
#include "resources/translations.h"
#include "resources/work_strings.h"
#include "storage/device_paths.h"
#include "storage/tag_store.h"
#include "storage/trash_names.h"
#include "tags/phone_kind.h"

namespace home {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::u16string>;

/// No such file can be made, so the page has no loudspeaker: the user has heard the take already.
constexpr const char* kNoSpeaker = "/dev/null/speaker";

/// Enough for the copy of a tag in the trash.
constexpr std::uintmax_t kRoomForCopy = 100'000;

std::u16string InWords(std::u16string_view english) {
  return std::u16string(resources::Say(english));
}

/// Returns a message, and after it what else there is to say.
std::u16string Join(std::u16string first, const std::u16string& second) {
  return second.empty() ? first : std::move(first) + u" " + second;
}

/// Opens the page and does `task`. A page that has just computed every template again ends. Then it
/// is opened once more. `microphone` is null for that of the options.
void OpenPage(const machine::Options& options, Gathering& gathering, session::Contacts contacts,
              const std::function<void(session::Session&, session::PageRun&)>& task,
              platform::WaveIn* microphone = nullptr) {
  // Twice at most: a page that ends again has a reason that no third try would change.
  bool isToBeOpened = true;
  for (int i = 0; isToBeOpened && i < 2; ++i) {
    isToBeOpened = false;
    gathering.Clear();
    session::Session session(options, gathering);
    if (microphone != nullptr) {
      session.UseMicrophone(*microphone);
    }
    session::RunPage(
        session, contacts, [&](session::PageRun& run) { task(session, run); },
        [&](const tags::Page_one&) { isToBeOpened = true; });
  }
}

/// Deletes a tag of the list. Returns whether it has gone.
bool DeleteLine(session::Session& session, session::PageRun& run, const std::u16string& tag) {
  const auto line = session::FindLine(run, tag);
  if (!line) {
    // The page that opened moves a tag whose contact has gone to the trash.
    const auto entry = storage::TagStore(session.GetFiles(), session.GetRegistry()).ReadEntry(tag);
    return entry == platform::Failure(platform::RegistryError::kNotFound);
  }
  run.dialog.Choose(resources::kTagListId, *line);
  return session::PressDelete(session, run, resources::kDeleteButtonId) !=
         session::DeletePress::kNothing;
}

std::vector<storage::TrashedTag> ListTrash(const machine::Options& options) {
  Gathering ignored;
  session::Session session(options, ignored);
  if (!session.OpenForReading()) {
    return {};
  }
  return session::OpenTrash(session).List().value_or(std::vector<storage::TrashedTag>());
}

/// Looks at the trash before and after a deletion.
class TrashWatch {
 public:
  explicit TrashWatch(const machine::Options& options)
      : m_options(options), m_before(ListTrash(options)) {}

  /// Returns what has come since then of the tags of these names.
  [[nodiscard]] std::vector<storage::TrashedTag> FindNew(const Names& tags) const {
    std::vector<storage::TrashedTag> found = ListTrash(m_options);
    std::erase_if(found, [&](const storage::TrashedTag& tag) {
      return std::ranges::find(tags, tag.item.parts.name) == tags.end() ||
             std::ranges::find(m_before, tag.file, &storage::TrashedTag::file) != m_before.end();
    });
    return found;
  }

 private:
  const machine::Options& m_options;
  const std::vector<storage::TrashedTag> m_before;
};

Names FilesOf(const std::vector<storage::TrashedTag>& trashed) {
  Names files;
  std::ranges::transform(trashed, std::back_inserter(files), &storage::TrashedTag::file);
  return files;
}

fs::path FindRecording(const machine::Options& options, const std::u16string& tag) {
  return machine::Backends(options).ToHostPath(storage::WavePath(tag));
}

/// Chooses the contact and the number of a lesson. Returns whether the page has them.
bool Choose(session::PageRun& run, const Lesson& lesson) {
  const tags::ContactList& contacts = run.page.GetPicker().GetContacts();
  for (int i = 0; i < contacts.GetCount(); ++i) {
    if (contacts.Find(i)->oid != lesson.oid) {
      continue;
    }
    run.dialog.Choose(resources::kContactComboId, i);
    const Names numbers = run.dialog.GetItems(resources::kNumberComboId);
    const auto number = std::ranges::find_if(numbers, [&lesson](const std::u16string& item) {
      return tags::PhoneTypeWord(item) == lesson.kind;
    });
    if (number == numbers.end()) {
      return false;
    }
    run.dialog.Choose(resources::kNumberComboId, static_cast<int>(number - numbers.begin()));
    return true;
  }
  return false;
}

Names ListNames(session::Session& session) {
  auto list = storage::TagStore(session.GetFiles(), session.GetRegistry()).ListNames();
  return list ? std::move(list->names) : Names();
}

/// Presses Record, whose microphone hears the lesson. Returns the name of the new tag, or an empty
/// text if none was made. The page may have a new tag that it could not list.
std::u16string Record(session::Session& session, session::PageRun& run) {
  // The page names the tag by the clock and reports the name to nobody, so it is the one that is
  // new.
  const Names before = ListNames(session);
  {
    const session::QuickScope quick(session.GetClock(), true);
    run.dialog.Press(resources::kRecordButtonId);
  }
  for (std::u16string& name : ListNames(session)) {
    if (std::ranges::find(before, name) == before.end()) {
      return std::move(name);
    }
  }
  return {};
}

/// Without room for copies, the page would first empty the trash, which may hold what was deleted a
/// moment ago, and then destroy what it is to delete. Nobody could undo that.
bool HasRoom(const session::Session& session, std::uintmax_t room, std::size_t copies) {
  std::error_code error;
  const auto space = fs::space(session.GetRoot(), error);
  return !error && space.available >= room + copies * kRoomForCopy;
}

/// Puts back a tag that had to go before the lesson, which failed. The page has the mutex.
void PutBack(session::Session& session, const std::u16string& tag) {
  const storage::TagTrash trash = session::OpenTrash(session);
  const auto list = trash.List();
  const auto found = list ? std::ranges::find_if(*list,
                                                 [&tag](const storage::TrashedTag& each) {
                                                   return each.item.parts.name == tag;
                                                 })
                          : std::vector<storage::TrashedTag>::const_iterator();
  if (!list || found == list->end() || !trash.Restore(*found)) {
    session.Fail(text::Say(resources::kEarlierTagInTrash));
  }
}

/// Restores a tag, unless its person is in another address book: the next log-on would refuse the
/// one that was chosen. Returns why it was not restored. Returns an empty text if it was.
std::string RestoreTag(session::Session& session, const storage::TagTrash& trash,
                       const storage::TrashedTag& tag, const KnownPeople& people) {
  const auto entry =
      storage::ReadItemEntry(session.GetFiles(), storage::InTrash(tag.file), tag.item.parts);
  // An entry that cannot be read hinders nothing: the trash gives back what it has.
  if (entry && people.Find(*entry) == KnownPeople::Presence::kElsewhere) {
    return text::Say(resources::kPersonElsewhere);
  }
  const auto restored = trash.Restore(tag);
  return restored ? std::string() : session::ExplainRestoreError(restored.error());
}

/// Teaches on the open page. The earlier tag goes after the new one has come, so that nothing is
/// lost if that fails. With as many tags as there can be it has to go before, and comes back.
void TeachOnPage(session::Session& session, session::PageRun& run, const Lesson& lesson,
                 std::uintmax_t room, TaughtTag& taught) {
  if (!Choose(run, lesson)) {
    taught.outcome.message = InWords(resources::kContactNotFound);
    return;
  }
  const bool isFull = !lesson.replaced.empty() && run.page.GetTags().tagCount >= storage::kMaxTags;
  if (!lesson.replaced.empty() && !HasRoom(session, room, 1)) {
    taught.outcome.message = InWords(resources::kDiskTooFull);
    return;
  }
  if (isFull && !DeleteLine(session, run, lesson.replaced)) {
    taught.outcome.message = InWords(resources::kTagNotLearned);
    return;
  }
  taught.tag = Record(session, run);
  taught.outcome.isDone = !taught.tag.empty();
  if (!taught.outcome.isDone) {
    if (const std::string reason = session::ExplainNoTag(session, run.page); !reason.empty()) {
      session.Fail(reason);
    }
    taught.outcome.message = InWords(resources::kTagNotLearned);
    if (isFull) {
      PutBack(session, lesson.replaced);
    }
  } else if (!isFull && !lesson.replaced.empty() && !DeleteLine(session, run, lesson.replaced)) {
    taught.outcome.message = InWords(resources::kOldTagRemains);
  }
}

std::vector<std::int16_t> SamplesOf(std::span<const std::byte> wave) {
  return audio::ToSamples(wave.subspan(std::min(audio::kWaveHeaderBytes, wave.size())));
}

}  // namespace

DeletedTags PageTasks::Delete(const Names& tags) {
  DeletedTags deleted;
  const TrashWatch watch(m_options);
  // The list shows when a tag was taught, which is the time of its recording. A tag that comes back
  // out of the trash is written again, so its time is kept here.
  std::map<std::u16string, fs::file_time_type> times;
  for (const std::u16string& tag : tags) {
    std::error_code error;
    const auto time = fs::last_write_time(FindRecording(m_options, tag), error);
    if (!error) {
      times.emplace(tag, time);
    }
  }
  Gathering gathering;
  OpenPage(m_options, gathering, session::Contacts::kOptional,
           [&](session::Session& session, session::PageRun& run) {
             if (!HasRoom(session, m_room, tags.size())) {
               deleted.outcome.message = InWords(resources::kDiskTooFull);
               return;
             }
             deleted.outcome.isDone = true;
             for (const std::u16string& tag : tags) {
               deleted.outcome.isDone &= DeleteLine(session, run, tag);
             }
             if (!deleted.outcome.isDone) {
               deleted.outcome.message = InWords(resources::kNotAllDeleted);
             }
           });
  deleted.outcome.message = deleted.outcome.message.empty()
                                ? gathering.GetText()
                                : Join(deleted.outcome.message, gathering.GetText());
  for (const storage::TrashedTag& tag : watch.FindNew(tags)) {
    deleted.trashed.push_back(tag.file);
    if (const auto time = times.find(tag.item.parts.name); time != times.end()) {
      m_writingTimes[tag.file] = time->second;
    }
  }
  return deleted;
}

Outcome PageTasks::Restore(const Names& trashed) {
  Gathering gathering;
  session::Session session(m_options, gathering);
  if (!session.OpenForChanging()) {
    return {false, gathering.GetText()};
  }
  const session::HeldTags held(session);
  if (!held.IsHeld()) {
    return {false, gathering.GetText()};
  }
  const storage::TagTrash trash = session::OpenTrash(session);
  const KnownPeople people(session);
  const auto list = trash.List();
  Outcome outcome{true, {}};
  for (const std::u16string& file : trashed) {
    const auto found = list ? std::ranges::find(*list, file, &storage::TrashedTag::file)
                            : std::vector<storage::TrashedTag>::const_iterator();
    if (!list || found == list->end()) {
      outcome = {false, InWords(resources::kNotInTrash)};
      continue;
    }
    if (const std::string obstacle = RestoreTag(session, trash, *found, people);
        !obstacle.empty()) {
      outcome.isDone = false;
      session.Fail(text::Say(resources::kNotRestored, {text::ToUtf8(found->item.text), obstacle}));
      continue;
    }
    if (const auto time = m_writingTimes.find(file); time != m_writingTimes.end()) {
      std::error_code ignored;
      fs::last_write_time(FindRecording(m_options, found->item.parts.name), time->second, ignored);
    }
  }
  outcome.message =
      outcome.message.empty() ? gathering.GetText() : Join(outcome.message, gathering.GetText());
  return outcome;
}

TaughtTag PageTasks::Teach(const Lesson& lesson) {
  TaughtTag taught;
  machine::Options options = m_options;
  options.speaker = kNoSpeaker;
  wave_file::FileWaveIn microphone(lesson.wave);
  const TrashWatch watch(m_options);
  Gathering gathering;
  // What the page says while it opens, such as of a number of somebody else, is none of this
  // lesson's, unless nothing comes of it.
  std::u16string ofOpening;
  OpenPage(
      options, gathering, session::Contacts::kNeeded,
      [&](session::Session& session, session::PageRun& run) {
        ofOpening = gathering.GetText();
        gathering.Clear();
        TeachOnPage(session, run, lesson, m_room, taught);
      },
      &microphone);
  for (const std::u16string& said :
       {taught.outcome.isDone ? std::u16string() : ofOpening, gathering.GetText()}) {
    taught.outcome.message =
        taught.outcome.message.empty() ? said : Join(taught.outcome.message, said);
  }
  if (!lesson.replaced.empty()) {
    taught.trashed = FilesOf(watch.FindNew({lesson.replaced}));
  }
  return taught;
}

Names FindAlike(const machine::Options& options, const Lesson& lesson) {
  Gathering ignored;
  session::Session session(options, ignored);
  if (!session.OpenForReading()) {
    return {};
  }
  const storage::TagStore store(session.GetFiles(), session.GetRegistry());
  std::vector<maintenance::JudgedTag> tags;
  for (const std::u16string& name : ListNames(session)) {
    if (auto entry = store.ReadEntry(name); entry && name != lesson.replaced) {
      tags.push_back({name, std::move(*entry)});
    }
  }
  Names alike;
  for (const maintenance::AlikeTag& tag : maintenance::FindTooAlike(
           session.GetPlatform(), tags, SamplesOf(lesson.wave), {lesson.oid, lesson.kind})) {
    alike.push_back(tags[tag.index].name);
  }
  return alike;
}

}  // namespace home
