#include "tags/contact_reading.h"

#include <cstddef>
#include <cstdint>
#include <optional>

#include "storage/phone_types.h"
#include "tags/contact_list.h"
#include "tags/phone_kind.h"

// Three texts are made of one contact: its line in the contact box (ContactPicker), its text in the
// tag list after a recording, and its text when the list is read again. Each has its own order of
// names and its own way with names that are too long. Users know all three, so none was made like
// the others.
namespace tags {

using platform::ContactsError;
using platform::Failure;
using platform::Result;

namespace {

constexpr int kAttempts = 3;
constexpr std::uint32_t kPauseMilliseconds = 200;

/// A service that is just starting may refuse at first. Only this step is tried again.
Result<void, ContactsError> ConnectTo(platform::ContactsStore& store, platform::Clock& clock) {
  auto connected = store.Connect();
  for (int attempt = 1; !connected && attempt < kAttempts; ++attempt) {
    clock.Sleep(kPauseMilliseconds);
    connected = store.Connect();
  }
  return connected;
}

// The two readers below differ in small things, and both are meant so: a tag that was just recorded
// may read otherwise than after the page opens again.

/// The blank counts, and comes first also in an empty name.
void AppendForRecording(std::u16string& name, const std::u16string& part) {
  if (!part.empty() && name.size() + 1 + part.size() < kNameCapacity) {
    name += u' ' + part;
  }
}

/// The blank does not count.
void AppendForTagList(std::u16string& name, const std::u16string& part) {
  if (!part.empty() && name.size() + part.size() < kNameCapacity) {
    name += u' ' + part;
  }
}

auto ReadFailed(ContactReader reader, ContactFailure failure, PhoneKind kind = PhoneKind::kCar) {
  return Failure(ContactMessage{failure, reader, kind});
}

ReadTagText AddNumber(platform::Contact& contact, std::u16string_view phoneType,
                      ContactReader reader, const std::u16string& name) {
  // An entry with any other word was written by another program. Its contact is still worth a line.
  const std::optional<storage::PhoneType> type = storage::FindPhoneType(phoneType);
  if (!type) {
    return TagText{name, false};
  }
  const auto number = contact.GetNumber(type->kind);
  if (!number) {
    return ReadFailed(reader, ContactFailure::kNumber, type->kind);
  }
  return TagText{name + u' ' + ToListNumber(*number, type->kind), true};
}

}  // namespace

Result<void, ContactMessage> OpenContacts(platform::ContactsStore& store, platform::Clock& clock) {
  if (!store.Initialize()) {
    return ReadFailed(ContactReader::kLoading, ContactFailure::kServiceNotReady);
  }
  if (!ConnectTo(store, clock)) {
    return ReadFailed(ContactReader::kLoading, ContactFailure::kNotConnected);
  }
  if (!store.Logon()) {
    return ReadFailed(ContactReader::kLoading, ContactFailure::kNotLoggedOn);
  }
  return {};
}

void ReplaceIfFits(std::u16string& buffer, std::u16string_view text) {
  if (text.size() < kNameCapacity) {
    buffer = text;
  }
}

ReadTagText ReadForRecording(platform::Contact& contact, std::u16string_view phoneType,
                             ContactBuffers& buffers) {
  constexpr ContactReader kReader = ContactReader::kRecording;
  const auto first = contact.GetFirstName();
  if (!first) {
    return ReadFailed(kReader, ContactFailure::kFirstName);
  }
  ReplaceIfFits(buffers.name, *first);
  const auto middle = contact.GetMiddleName();
  if (!middle) {
    return ReadFailed(kReader, ContactFailure::kMiddleName);
  }
  AppendForRecording(buffers.name, *middle);
  const auto last = contact.GetLastName();
  if (!last) {
    return ReadFailed(kReader, ContactFailure::kLastName);
  }
  AppendForRecording(buffers.name, *last);
  const auto company = contact.GetCompanyName();
  if (!company) {
    return ReadFailed(kReader, ContactFailure::kCompanyName);
  }
  ReplaceIfFits(buffers.company, *company);
  if (buffers.name.empty()) {
    buffers.name = buffers.company;
  }
  return AddNumber(contact, phoneType, kReader, buffers.name);
}

ReadTagText ReadForTagList(platform::Contact& contact, std::u16string_view phoneType) {
  constexpr ContactReader kReader = ContactReader::kTagList;
  std::u16string name;
  const auto first = contact.GetFirstName();
  if (!first) {
    return ReadFailed(kReader, ContactFailure::kFirstName);
  }
  ReplaceIfFits(name, *first);
  const auto middle = contact.GetMiddleName();
  if (!middle) {
    return ReadFailed(kReader, ContactFailure::kMiddleName);
  }
  AppendForTagList(name, *middle);
  const auto last = contact.GetLastName();
  if (!last) {
    return ReadFailed(kReader, ContactFailure::kLastName);
  }
  AppendForTagList(name, *last);
  const auto company = contact.GetCompanyName();
  if (!company) {
    return ReadFailed(kReader, ContactFailure::kCompanyName);
  }
  if (name.empty()) {
    ReplaceIfFits(name, *company);
  }
  return AddNumber(contact, phoneType, kReader, name);
}

}  // namespace tags
