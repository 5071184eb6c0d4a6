#include "host/home/trash_reading.h"

#include <utility>

#include "backends/text/say.h"
#include "host/session/explanations.h"
#include "host/session/held_tags.h"
#include "storage/trash_names.h"
#include "tags/contact_reading.h"

namespace home {

// A newcomer's log-on succeeds without any address book. That proves nothing about anybody.
KnownPeople::KnownPeople(session::Session& session) : m_session(session) {
  vcard::AddressBooks& contacts = session.GetContacts();
  m_areRead = tags::OpenContacts(contacts, session.GetClock()).has_value() &&
              contacts.GetProblem() != vcard::AddressBooks::Problem::kNothingChosen;
}

KnownPeople::~KnownPeople() { m_session.GetContacts().Logoff(); }

KnownPeople::Presence KnownPeople::Find(const storage::TagEntry& entry) const {
  // If nobody can say, nothing stands in the way: the restoration itself finds out.
  if (!m_areRead || !entry.oid) {
    return Presence::kHere;
  }
  const auto contact = m_session.GetContacts().GetItemFromOid(*entry.oid);
  if (contact) {
    return Presence::kHere;
  }
  return contact.error() == platform::ContactsError::kAbsent ? Presence::kGone
                                                             : Presence::kElsewhere;
}

std::u16string FindObstacle(const storage::TagTrash& trash, const storage::TagParts& parts,
                            const storage::TagEntry& entry, const KnownPeople& people) {
  const KnownPeople::Presence presence = people.Find(entry);
  if (presence != KnownPeople::Presence::kHere) {
    return ToSentence(text::Say(presence == KnownPeople::Presence::kGone
                                    ? resources::kPersonGone
                                    : resources::kPersonElsewhere));
  }
  const auto room = trash.CheckRoomFor(parts);
  return room ? std::u16string() : ToSentence(session::ExplainRestoreError(room.error()));
}

TrashList ReadTrash(const machine::Options& options) {
  TrashList read;
  Gathering gathering;
  session::Session session(options, gathering);
  if (!session.OpenForReading()) {
    read.outcome.message = gathering.GetText();
    return read;
  }
  const storage::TagTrash trash = session::OpenTrash(session);
  const auto items = trash.List();
  if (!items) {
    read.outcome.message = ToSentence(text::Say(resources::kTrashNotRead));
    return read;
  }
  const KnownPeople people(session);
  for (const storage::TrashedTag& tag : *items) {
    const storage::TagParts& parts = tag.item.parts;
    if (!parts.hasEntry) {  // Files that a repair moved there, and which were no tag.
      continue;
    }
    const auto entry =
        storage::ReadItemEntry(session.GetFiles(), storage::InTrash(tag.file), parts);
    DeletedTag deleted{tag.file, {}, {}, ToShown(tag.item.text), tag.item.deletedAt, {}};
    if (entry) {
      deleted.oid = entry->oid;
      deleted.kind = entry->phoneType;
      deleted.obstacle = FindObstacle(trash, parts, *entry, people);
    } else {
      deleted.obstacle = ToSentence(text::Say(resources::kTrashNotRead));
    }
    read.tags.push_back(std::move(deleted));
  }
  read.outcome.isDone = true;
  return read;
}

}  // namespace home
