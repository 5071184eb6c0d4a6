#include "host/session/backups.h"

#include <algorithm>
#include <map>
#include <utility>

#include "backends/text/host_path.h"
#include "backends/text/say.h"
#include "backends/text/utf.h"
#include "backends/vcard/contact_source.h"
#include "backends/vcard/oid_map.h"
#include "backends/vcard/vcard_source.h"
#include "host/session/explanations.h"
#include "host/session/held_tags.h"
#include "host/session/tag_reading.h"
#include "resources/translations.h"
#include "storage/registry_file.h"
#include "storage/registry_keys.h"
#include "tags/contact_reading.h"
#include "tags/tag_reader.h"

// Backups as a user makes them: this holds the tags, asks what must be asked, and says in words
// what went wrong. The archive itself and the plan are in storage/. What is decided here is who the
// contacts of a backup are on this machine.
namespace session {

using platform::Failure;
using platform::RegistryError;
using platform::Result;
using storage::BackupFailure;
using storage::BackupSettings;

static_assert(storage::kContactNumbersKey == vcard::kContactsKey);

namespace {

std::string Explain(Session& session, const BackupFailure& failure, const NamedFile& file) {
  switch (failure.kind) {
    case BackupFailure::Kind::kTag:
      return text::Say(resources::kTagFilesNotRead, {text::ToUtf8(failure.tag)});
    case BackupFailure::Kind::kLanguage:
      return text::Say(resources::kLanguageFileNotRead);
    case BackupFailure::Kind::kSettings:
      return session.ExplainStore(failure.store);
    case BackupFailure::Kind::kTarget:
      break;
  }
  const std::string link = Session::ExplainLink(file.path);
  return !link.empty() ? link : file.name + ": " + ExplainFileError(failure.file);
}

std::string Explain(storage::BackupFault fault) {
  switch (fault) {
    case storage::BackupFault::kUnread:
      return text::Say(resources::kFileNotRead);
    case storage::BackupFault::kForeign:
      return text::Say(resources::kNoBackup);
    case storage::BackupFault::kNewer:
      return text::Say(resources::kBackupOfLaterVersion);
    case storage::BackupFault::kDamaged:
      break;
  }
  return text::Say(resources::kBackupDamaged);
}

/// A backup among the tags would be restored with them, or deleted as somebody else's file.
bool IsBelowRoot(const Session& session, const std::string& path) {
  namespace fs = std::filesystem;
  std::error_code error;
  fs::path place = fs::weakly_canonical(text::ToHostPath(path), error);
  // Compared as folders and not by names, in which letter case may not count.
  while (!fs::equivalent(place, session.GetRoot(), error)) {
    if (!place.has_relative_path()) {
      return false;
    }
    place = place.parent_path();
  }
  return true;
}

/// Returns whether the file may be written. Reports it if not.
bool MayWrite(Session& session, const NamedFile& file) {
  if (storage::LookAtBackupTarget(session.GetFiles(), Session::ToSystemPath(file.path)) !=
      storage::BackupTarget::kOther) {
    return true;
  }
  if (IsBelowRoot(session, file.path)) {
    session.Fail(text::Say(resources::kNoBackupInRoot, {file.name}));
    return false;
  }
  // An earlier backup is replaced without a question. Any other file is the user's to give up.
  const bool agrees = session.GetOutlet().AgreesTo(
      {text::FromUtf8(text::Say(resources::kReplaceNoBackup, {file.name})),
       platform::MessageCaption::kText, std::u16string(resources::Say(resources::kBackupCaption)),
       platform::MessageStyle::kOkCancel});
  if (!agrees) {
    session.Fail(text::Say(resources::kNoBackupStays, {file.name}));
  }
  return agrees;
}

/// The map of contacts that a backup holds.
struct BackupNumbers {
  vcard::OidMap map;
  std::optional<vcard::SourceChoice> choice;
};

// The map is read as this store would read it: its key takes the place of the one here, in a group
// that is never committed.
Result<BackupNumbers, RegistryError> ReadNumbers(
    platform::Registry& registry, const std::vector<storage::RegistryChange>& changes) {
  const auto group = platform::RegistryGroup::Begin(registry);
  if (!group) {
    return Failure(group.error());
  }
  if (const auto gone = platform::AcceptMissing(registry.DeleteKey(vcard::kContactsKey)); !gone) {
    return Failure(gone.error());
  }
  for (const storage::RegistryChange& change : changes) {
    const auto key = registry.CreateKey(change.key);
    if (!key) {
      return Failure(key.error());
    }
    if (change.kind != storage::RegistryChange::Kind::kSetValue) {
      continue;
    }
    if (const auto set = (*key)->Set(change.valueName, change.value.type, change.value.bytes);
        !set) {
      return Failure(set.error());
    }
  }
  BackupNumbers numbers{vcard::OidMap(registry), std::nullopt};
  std::vector<vcard::Remark> ignored;
  auto choice = vcard::RecallChoice(registry, ignored);
  if (const auto loaded = numbers.map.Load(); !loaded || !choice) {
    return Failure(loaded ? choice.error() : loaded.error());
  }
  numbers.choice = std::move(*choice);
  return numbers;
}

/// Finds out which contacts of a backup are which contacts here.
///
/// A tag knows its contact by a number, which a store gives. A tag for a contact that is in no
/// address book in use would let every log-on fail, and one for a contact that is gone would be
/// deleted at the next start. So such tags are not restored. A store without tags that never chose
/// contacts takes over all that the backup knows of them.
class ContactsOfBackup {
 public:
  ContactsOfBackup(Session& session, const storage::BackupContents& backup)
      : m_session(session), m_here(session.GetRegistry()) {
    const auto changes = backup.settings.find(BackupSettings::kContacts);
    m_changes = changes == backup.settings.end() ? nullptr : &changes->second;
  }

  /// Compares, and changes nothing but what a log-on changes.
  Result<void, RegistryError> Compare() {
    platform::Registry& registry = m_session.GetRegistry();
    const auto names = storage::TagStore(m_session.GetFiles(), registry).ListNames();
    std::vector<vcard::Remark> ignored;
    const auto choice = vcard::RecallChoice(registry, ignored);
    if (!names || !choice) {
      return Failure(names ? choice.error() : names.error());
    }
    // A newcomer has neither tags nor chosen contacts. There a number of the backup can keep its
    // meaning.
    m_isNewcomer =
        names->names.empty() && !*choice && m_session.GetMachineOptions().contacts.empty();
    if (!m_isNewcomer) {
      LogOn();
    }
    if (const auto loaded = m_here.Load(); !loaded) {
      return loaded;
    }
    static const std::vector<storage::RegistryChange> kNone;
    auto there = ReadNumbers(registry, m_changes != nullptr ? *m_changes : kNone);
    if (!there) {
      return Failure(there.error());
    }
    m_there.emplace(std::move(*there));
    if (!m_isNewcomer) {
      return Recognise();
    }
    if (!m_here.IsEmpty()) {
      // Tried on a copy first: the user has not agreed to anything yet.
      vcard::OidMap trial = m_here;
      return trial.Adopt(m_there->map, vcard::OidMap::Keeping::kInMemory)
          .map([this](vcard::OidMap::Numbers&& numbers) { m_numbers = std::move(numbers); });
    }
    return {};
  }

  [[nodiscard]] std::optional<std::int32_t> Find(std::int32_t oid) const {
    // The numbers of the backup are taken over as they are.
    if (m_isNewcomer && m_here.IsEmpty()) {
      return oid;
    }
    const auto found = m_numbers.find(oid);
    return found == m_numbers.end() ? std::nullopt : std::optional(found->second);
  }

  /// Stores what a newcomer takes over. Returns whether there was anything.
  Result<bool, RegistryError> Store() {
    if (!m_isNewcomer || m_changes == nullptr) {
      return false;
    }
    platform::Registry& registry = m_session.GetRegistry();
    if (m_here.IsEmpty()) {
      return storage::ApplyRegistryChanges(registry, *m_changes)
          .map([] { return true; })
          .map_error([](const storage::RegistryFileError& error) {
            return error.store.value_or(RegistryError::kOther);
          });
    }
    const auto adopted = m_here.Adopt(m_there->map, vcard::OidMap::Keeping::kStored);
    if (!adopted) {
      return Failure(adopted.error());
    }
    const auto chosen = m_there->choice ? vcard::RememberChoice(registry, *m_there->choice)
                                        : Result<void, RegistryError>();
    return chosen.map([] { return true; });
  }

  /// Returns what the list shows for a tag here.
  [[nodiscard]] std::u16string TextOf(std::u16string_view tagName) const {
    const auto found = m_texts.find(std::u16string(tagName));
    return found == m_texts.end() ? std::u16string(tagName) : found->second;
  }

 private:
  void LogOn() {
    const platform::Platform platform = m_session.GetPlatform();
    const bool hasContacts = tags::OpenContacts(platform.contacts, platform.clock).has_value();
    if (!hasContacts) {
      WarnOfContacts(m_session);
    }
    const storage::TagStore store(platform.files, platform.registry);
    for (tags::ListedTag& tag : tags::ReadTags(store, hasContacts ? &platform.contacts : nullptr)
                                    .value_or(std::vector<tags::ListedTag>())) {
      m_texts[tag.name] = std::move(tag.text);
    }
    platform.contacts.Logoff();
  }

  Result<void, RegistryError> Recognise() {
    std::vector<vcard::Remark> ignored;
    const auto choice = vcard::RecallChoice(m_session.GetRegistry(), ignored);
    if (!choice) {
      return Failure(choice.error());
    }
    m_numbers = m_here.Recognise(m_there->map, [&choice](std::u16string_view source) {
      if (!*choice) {
        return true;
      }
      return (*choice)->path.empty() ? source.starts_with(u"eds:")
                                     : source == vcard::NameOfFile((*choice)->path);
    });
    return {};
  }

  Session& m_session;
  const std::vector<storage::RegistryChange>* m_changes = nullptr;  ///< Null: the backup has none.
  vcard::OidMap m_here;
  std::optional<BackupNumbers> m_there;
  bool m_isNewcomer = false;
  vcard::OidMap::Numbers m_numbers;
  std::map<std::u16string, std::u16string> m_texts;
};

Differences FindDifferences(const storage::RestorePlan& plan, const ContactsOfBackup& contacts) {
  using storage::RestoreState;
  Differences differences;
  for (const storage::PlannedTag& tag : plan.tags) {
    if (tag.state == RestoreState::kDifferent) {
      differences.tags.push_back(contacts.TextOf(tag.here.name));
    }
  }
  differences.connection = plan.connection == RestoreState::kDifferent;
  differences.languageFile = plan.languageFile == RestoreState::kDifferent;
  return differences;
}

std::optional<RestoredBackup> RestoreFrom(Session& session, platform::File& archive,
                                          const storage::BackupContents& backup,
                                          const AgreeToReplace& agree) {
  const auto failStore = [&session](RegistryError error) {
    session.Fail(session.ExplainStore(error));
    return std::nullopt;
  };
  ContactsOfBackup contacts(session, backup);
  if (const auto compared = contacts.Compare(); !compared) {
    return failStore(compared.error());
  }
  const auto plan =
      storage::PlanRestore(session.GetFiles(), session.GetRegistry(), archive, backup,
                           [&contacts](std::int32_t oid) { return contacts.Find(oid); });
  if (!plan) {
    session.Fail(plan.error().empty()
                     ? text::Say(resources::kSettingsNotReadNow)
                     : text::Say(resources::kTagNotReadNow, {text::ToUtf8(plan.error())}));
    return std::nullopt;
  }
  // The user is asked once, about all that differs, before anything is changed.
  const Differences differences = FindDifferences(*plan, contacts);
  const bool isAnyDifferent =
      !differences.tags.empty() || differences.connection || differences.languageFile;
  const bool replaces = isAnyDifferent && agree(differences);
  // The contacts come before the tags, whose entries name them.
  const auto hasContacts = contacts.Store();
  if (!hasContacts) {
    return failStore(hasContacts.error());
  }
  RestoredBackup restored;
  restored.hasContacts = *hasContacts;
  std::ranges::transform(backup.tags, std::back_inserter(restored.tags), &storage::BackupTag::name);
  restored.outcome =
      storage::Restore(session.GetFiles(), session.GetRegistry(), session.GetClock(), archive,
                       backup, *plan, replaces ? storage::Replacing::kYes : storage::Replacing::kNo,
                       [&contacts](std::u16string_view name) { return contacts.TextOf(name); });
  return restored;
}

}  // namespace

bool RestoredBackup::IsComplete() const {
  using storage::RestoreFate;
  const auto isHere = [](RestoreFate fate) {
    return fate == RestoreFate::kSame || fate == RestoreFate::kRestored ||
           fate == RestoreFate::kReplaced;
  };
  return std::ranges::all_of(outcome.tags, isHere) &&
         isHere(outcome.connection.value_or(RestoreFate::kSame)) &&
         isHere(outcome.languageFile.value_or(RestoreFate::kSame));
}

std::optional<storage::BackupMade> MakeBackup(Session& session, const NamedFile& file) {
  if (!session.RequireRoot()) {
    return std::nullopt;
  }
  if (!session.HasRootFolder()) {
    session.Fail(text::Say(resources::kNothingToBackUp, {text::FromHostPath(session.GetRoot())}));
    return std::nullopt;
  }
  if (!session.OpenForChanging()) {
    return std::nullopt;
  }
  const HeldTags held(session);
  if (!held.IsHeld() || !MayWrite(session, file)) {
    return std::nullopt;
  }
  const auto made =
      storage::WriteBackup(session.GetFiles(), session.GetRegistry(), session.GetClock(),
                           Session::ToSystemPath(file.path), storage::BackupScope::kAll);
  if (!made) {
    session.Fail(Explain(session, made.error(), file));
    return std::nullopt;
  }
  // The backup is made all the same. The user hears what is not in it.
  for (const std::u16string& tag : made->leftOut) {
    session.Fail(text::Say(resources::kTagLeftOut, {text::ToUtf8(tag)}));
  }
  return *made;
}

// The backup is read to its end before the root folder is made: a file that is none leaves nothing.
std::optional<RestoredBackup> RestoreBackup(Session& session, const NamedFile& file,
                                            const AgreeToReplace& agree) {
  const auto archive = session.GetFiles().Open(
      Session::ToSystemPath(file.path), {platform::FileAccess::kRead, platform::FileShare::kRead,
                                         platform::FileCreation::kOpenExisting});
  if (!archive) {
    session.Fail(file.name + ": " +
                 ExplainUnread(session.GetFiles(), Session::ToSystemPath(file.path)));
    return std::nullopt;
  }
  const auto backup = storage::ReadBackup(**archive);
  if (!backup) {
    session.Fail(file.name + ": " + Explain(backup.error()));
    return std::nullopt;
  }
  if (!session.OpenForChanging()) {
    return std::nullopt;
  }
  const HeldTags held(session);
  return held.IsHeld() ? RestoreFrom(session, **archive, *backup, agree) : std::nullopt;
}

}  // namespace session
