#include "host/home/shelf_reading.h"

#include <chrono>
#include <filesystem>
#include <system_error>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "audio/wave_header.h"
#include "backends/text/utf.h"
#include "host/session/contact_listing.h"
#include "host/session/page_run.h"
#include "host/session/quality_words.h"
#include "host/session/tag_reading.h"
#include "resources/translations.h"
#include "resources/work_strings.h"
#include "storage/device_paths.h"
#include "storage/phone_types.h"
#include "tags/contact_picker.h"
#include "tags/contact_reading.h"
#include "tags/phone_kind.h"

namespace home {
namespace {

using Problem = vcard::AddressBooks::Problem;

/// Returns a number as the contact has it, and its kind, of an item of the page's box, which shows
/// the kind at the end.
Number ToNumber(const std::u16string& item) {
  const std::u16string_view kind = tags::PhoneTypeWord(item);
  const std::size_t length = item.size() - kind.size();
  return {std::u16string(kind), item.substr(0, length == 0 ? 0 : length - 1)};
}

/// Reads what the box of the page does not show: the company, and the name as the page's list of
/// tags has it, with the last name last. What cannot be read stays as it is.
void ReadWho(platform::Contact& contact, Person& person) {
  person.company = ToShown(contact.GetCompanyName().value_or(u""));
  std::u16string name;
  for (const platform::ContactText& part :
       {contact.GetFirstName(), contact.GetMiddleName(), contact.GetLastName()}) {
    if (part && !part->empty()) {
      name.append(name.empty() ? u"" : u" ").append(*part);
    }
  }
  person.name = ToShown(name.empty() ? std::move(person.name) : std::move(name));
}

void ReadPeople(session::Session& session, Gathering& gathering, Shelf& shelf) {
  const auto listed = session::ListContacts(
      session, session::LoadTexts(session), [&](const session::ListedContact& contact) {
        Person person{contact.oid, ToShown(contact.name), {}, {}};
        if (const auto found = session.GetContacts().GetItemFromOid(person.oid)) {
          ReadWho(**found, person);
        }
        for (const std::u16string& item : contact.numbers) {
          person.numbers.push_back(ToNumber(item));
        }
        shelf.people.push_back(std::move(person));
      });
  if (!listed) {
    shelf.peopleProblem = gathering.GetText();
    return;
  }
  if (shelf.people.empty()) {
    shelf.peopleProblem = resources::Say(resources::kNoContactHasNumber);
  }
}

void ReadRecording(const session::Session& session, Tag& tag) {
  const std::filesystem::path path = session.ToHostPath(storage::WavePath(tag.name));
  std::error_code error;
  const auto bytes = std::filesystem::file_size(path, error);
  const auto written =
      error ? std::filesystem::file_time_type() : std::filesystem::last_write_time(path, error);
  if (error) {
    return;
  }
  const auto time = std::chrono::file_clock::to_sys(written).time_since_epoch();
  tag.taughtAt = std::chrono::duration_cast<std::chrono::seconds>(time).count();
  if (bytes >= audio::kWaveHeaderBytes) {
    tag.seconds = static_cast<double>(bytes - audio::kWaveHeaderBytes) /
                  (audio::kRecordingRate * (audio::kRecordingBits / 8.0));
  }
}

/// Returns a sentence if the tag or its contact cannot be read. Else an empty text.
std::u16string ExplainTag(const tags::ListedTag& tag) {
  if (tag.error) {
    return std::u16string(resources::Say(resources::kEntryNotReadHere));
  }
  return tag.failure ? std::u16string(resources::Say(resources::kContactNotReadHere))
                     : std::u16string();
}

Tag ToTag(const session::Session& session, const tags::ListedTag& listed) {
  Tag tag;
  tag.name = listed.name;
  tag.oid = listed.entry.oid;
  tag.contact = ToShown(listed.text);
  tag.kind = listed.entry.phoneType;
  tag.isStale = listed.isStale;
  tag.problem = ExplainTag(listed);
  ReadRecording(session, tag);
  return tag;
}

/// Gives each tag the name and the number of its person, if that is among `people`.
void NameTags(const std::vector<tags::ListedTag>& listed, const std::vector<Person>& people,
              std::vector<Tag>& tags) {
  std::unordered_map<std::int32_t, const Person*> byOid;
  for (const Person& person : people) {
    byOid.emplace(person.oid, &person);
  }
  for (std::size_t i = 0; i < tags.size(); ++i) {
    const auto found = tags[i].oid ? byOid.find(*tags[i].oid) : byOid.end();
    if (found == byOid.end() || listed[i].failure) {
      continue;
    }
    tags[i].contact = found->second->name;
    for (const Number& number : found->second->numbers) {
      if (number.kind == tags[i].kind) {
        tags[i].number = number.text;
      }
    }
  }
}

/// Reads the people of the tags alone. The page's box, which knows all people, takes many times as
/// long.
std::vector<Person> ReadPeopleOf(const std::vector<Tag>& tags, platform::ContactsStore& contacts) {
  std::vector<Person> people;
  std::unordered_set<std::int32_t> read;
  for (const Tag& tag : tags) {
    const auto contact = tag.oid && read.insert(*tag.oid).second
                             ? contacts.GetItemFromOid(*tag.oid)
                             : platform::Failure(platform::ContactsError::kFailed);
    if (!contact) {
      continue;
    }
    Person person{*tag.oid, (*contact)->GetCompanyName().value_or(u""), {}, {}};
    ReadWho(**contact, person);
    for (const storage::PhoneType& type : storage::kPhoneTypes) {
      std::u16string number = (*contact)->GetNumber(type.kind).value_or(u"");
      if (!number.empty() && number.size() < tags::kNumberCapacity) {
        person.numbers.push_back({std::u16string(type.word), std::move(number)});
      }
    }
    if (!person.numbers.empty()) {
      people.push_back(std::move(person));
    }
  }
  return people;
}

}  // namespace

// Somebody who waits for the window waits for the names of the tags, so these come before all that
// takes longer.
Shelf ReadShelf(session::Session& session, Gathering& gathering,
                const std::function<void(const Shelf& shelf)>& soon) {
  Shelf shelf;
  if (!session.OpenForReading()) {
    shelf.tagsProblem = gathering.GetText();
    return shelf;
  }
  const platform::Platform platform = session.GetPlatform();
  vcard::AddressBooks& contacts = session.GetContacts();
  const bool areOpen = tags::OpenContacts(contacts, platform.clock).has_value();
  const bool hasPeople = areOpen && contacts.GetProblem() != Problem::kNothingChosen;
  if (!hasPeople) {
    shelf.peopleProblem = ToSentence(session::ExplainContactsProblem(session));
  }
  const auto listed = session::ReadAtOnce(platform, areOpen);
  if (listed) {
    for (const tags::ListedTag& tag : *listed) {
      shelf.tags.push_back(ToTag(session, tag));
    }
  } else {
    shelf.tagsProblem = ToSentence(session.ExplainStore(listed.error()));
  }
  if (soon && !shelf.tags.empty()) {
    Shelf first = shelf;
    first.areJudged = false;
    NameTags(*listed, ReadPeopleOf(first.tags, contacts), first.tags);
    soon(first);
  }
  if (hasPeople) {
    ReadPeople(session, gathering, shelf);
  }
  if (listed) {
    NameTags(*listed, shelf.people, shelf.tags);
    auto qualities = maintenance::JudgeTags(platform, session::ToJudged(*listed));
    for (std::size_t i = 0; i < shelf.tags.size(); ++i) {
      shelf.tags[i].quality = std::move(qualities[i]);
    }
  }
  contacts.Logoff();
  return shelf;
}

}  // namespace home
