#include "tags/contact_reading.h"

#include <cstddef>

#include "storage/phone_types.h"
#include "tags/contact_record.h"
#include "tags/phone_kind.h"

namespace tags {
namespace {

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

TagText Failed(ContactReader reader, ContactFailure failure, PhoneKind kind = PhoneKind::kCar) {
  TagText result;
  result.failure = ContactMessage{failure, reader, kind};
  return result;
}

TagText AddNumber(platform::Contact& contact, std::u16string_view phoneType, ContactReader reader,
                  const std::u16string& name) {
  const std::optional<storage::PhoneType> type = storage::FindPhoneType(phoneType);
  if (!type) {
    return {name, false, std::nullopt};
  }
  std::u16string number;
  if (!contact.GetNumber(type->kind, number)) {
    return Failed(reader, ContactFailure::kNumber, type->kind);
  }
  return {name + u' ' + ToListNumber(number, type->kind), true, std::nullopt};
}

}  // namespace

void ReplaceIfFits(std::u16string& buffer, std::u16string_view text) {
  if (text.size() < kNameCapacity) {
    buffer = text;
  }
}

TagText ReadForRecording(platform::Contact& contact, std::u16string_view phoneType,
                         ContactBuffers& buffers) {
  constexpr ContactReader kReader = ContactReader::kRecording;
  std::u16string part;
  if (!contact.GetFirstName(part)) {
    return Failed(kReader, ContactFailure::kFirstName);
  }
  ReplaceIfFits(buffers.name, part);
  if (!contact.GetMiddleName(part)) {
    return Failed(kReader, ContactFailure::kMiddleName);
  }
  AppendForRecording(buffers.name, part);
  if (!contact.GetLastName(part)) {
    return Failed(kReader, ContactFailure::kLastName);
  }
  AppendForRecording(buffers.name, part);
  if (!contact.GetCompanyName(part)) {
    return Failed(kReader, ContactFailure::kCompanyName);
  }
  ReplaceIfFits(buffers.company, part);
  if (buffers.name.empty()) {
    buffers.name = buffers.company;
  }
  return AddNumber(contact, phoneType, kReader, buffers.name);
}

TagText ReadForTagList(platform::Contact& contact, std::u16string_view phoneType) {
  constexpr ContactReader kReader = ContactReader::kTagList;
  std::u16string name;
  std::u16string part;
  if (!contact.GetFirstName(part)) {
    return Failed(kReader, ContactFailure::kFirstName);
  }
  ReplaceIfFits(name, part);
  if (!contact.GetMiddleName(part)) {
    return Failed(kReader, ContactFailure::kMiddleName);
  }
  AppendForTagList(name, part);
  if (!contact.GetLastName(part)) {
    return Failed(kReader, ContactFailure::kLastName);
  }
  AppendForTagList(name, part);
  if (!contact.GetCompanyName(part)) {
    return Failed(kReader, ContactFailure::kCompanyName);
  }
  if (name.empty()) {
    ReplaceIfFits(name, part);
  }
  return AddNumber(contact, phoneType, kReader, name);
}

}  // namespace tags
