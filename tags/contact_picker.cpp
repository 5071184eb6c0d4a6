#include "tags/contact_picker.h"

#include <memory>

namespace tags {
namespace {

/// A number of this length or more does not fit where the dialer keeps it. Of exactly this length
/// it is passed over without a word.
constexpr std::size_t kNumberCapacity = 96;

}  // namespace

bool ContactPicker::Load() {
  m_oid = 0;
  m_phoneTypeWord.clear();
  m_contacts = ContactList(m_store.GetCount());
  Step step = Step::kGoOn;
  for (std::int32_t i = 1; i <= m_contacts.GetReportedCount() && step == Step::kGoOn; ++i) {
    step = LoadItem(i);
  }
  if (step == Step::kEndOfPage) {
    return false;
  }
  if (const ContactRecord* first = m_contacts.Find(0)) {
    m_view.SelectFirstContact();
    m_view.SelectFirstNumber();
    m_oid = static_cast<std::uint32_t>(first->oid);
  }
  return true;
}

ContactPicker::Step ContactPicker::LoadItem(std::int32_t itemIndex) {
  const platform::ContactItem item = m_store.GetItem(itemIndex);
  if (!item.ok) {
    return Report(ContactFailure::kItem, Step::kEndOfPage);
  }
  if (!item.contact) {
    return Report(ContactFailure::kNullContact, Step::kGoOn);
  }
  return LoadContact(*item.contact);
}

ContactPicker::Step ContactPicker::LoadContact(platform::Contact& contact) {
  ContactRecord& record = m_contacts.GetNext();
  if (const Step step = LoadName(contact); step != Step::kGoOn) {
    return step;
  }
  if (const Step step = LoadNumbers(contact, record); step != Step::kGoOn) {
    return step;
  }
  if (m_buffers.name.empty()) {
    m_buffers.name = m_buffers.company;
  }
  record.SetName(m_buffers.name);
  std::int32_t oid = 0;
  // A failure has no message: the contact is listed under 0, with which nothing can be recorded.
  const bool hasOid = contact.GetOid(oid);
  if (record.HasNumber()) {
    record.oid = hasOid ? oid : 0;
    m_view.AddContact(record.GetName());
    m_contacts.KeepNext();
  }
  return Step::kGoOn;
}

ContactPicker::Step ContactPicker::LoadName(platform::Contact& contact) {
  std::u16string part;
  if (!contact.GetLastName(part)) {
    return Report(ContactFailure::kLastName, Step::kEndOfPage);
  }
  ReplaceIfFits(m_buffers.name, part);
  if (!contact.GetFirstName(part)) {
    // The one failure that keeps what was gathered.
    return Report(ContactFailure::kFirstName, Step::kEndOfList);
  }
  AppendName(part);
  if (!contact.GetMiddleName(part)) {
    return Report(ContactFailure::kMiddleName, Step::kEndOfPage);
  }
  AppendName(part);
  if (!contact.GetCompanyName(part)) {
    return Report(ContactFailure::kCompanyName, Step::kEndOfPage);
  }
  ReplaceIfFits(m_buffers.company, part);
  return Step::kGoOn;
}

ContactPicker::Step ContactPicker::LoadNumbers(platform::Contact& contact, ContactRecord& record) {
  std::size_t accepted = 0;
  std::u16string number;
  for (const PhoneKind kind : kReadingOrder) {
    if (!contact.GetNumber(kind, number)) {
      return Report(ContactFailure::kNumber, Step::kEndOfPage, kind);
    }
    if (number.size() > kNumberCapacity) {
      m_view.Report({ContactFailure::kNumberTooLong});
    } else if (!number.empty() && number.size() < kNumberCapacity) {
      record.phoneKinds[accepted] = static_cast<std::int32_t>(kind);
      ++accepted;
      if (m_contacts.GetCount() == 0) {
        m_view.AddNumber(ToComboItem(number, kind));
      }
    }
  }
  return Step::kGoOn;
}

void ContactPicker::ListNumbers(std::int32_t index) {
  m_view.RemoveNumbers();
  const ContactRecord* record = m_contacts.Find(index);
  std::unique_ptr<platform::Contact> contact;
  if (record == nullptr ||
      m_store.GetItemFromOid(record->oid, contact) != platform::ContactLookup::kFound) {
    m_view.Report({ContactFailure::kLookup, ContactReader::kSelection});
    return;
  }
  m_oid = static_cast<std::uint32_t>(record->oid);
  for (const std::int32_t code : record->phoneKinds) {
    ListNumber(*contact, code);
    m_view.SelectFirstNumber();
  }
  contact.reset();
  ChooseNumber(m_view.GetFirstNumber());
}

void ContactPicker::ListNumber(platform::Contact& contact, std::int32_t code) {
  if (code < 0 || code >= static_cast<std::int32_t>(kReadingOrder.size())) {
    return;
  }
  const auto kind = static_cast<PhoneKind>(code);
  std::u16string number;
  if (!contact.GetNumber(kind, number)) {
    m_view.Report({ContactFailure::kNumber, ContactReader::kSelection, kind});
    return;
  }
  m_view.AddNumber(ToComboItem(number, kind));
}

TagText ContactPicker::ReadForTag() {
  std::unique_ptr<platform::Contact> contact;
  const auto oid = static_cast<std::int32_t>(m_oid);
  if (m_store.GetItemFromOid(oid, contact) != platform::ContactLookup::kFound) {
    TagText failed;
    failed.failure = ContactMessage{ContactFailure::kLookup, ContactReader::kRecording};
    return failed;
  }
  return ReadForRecording(*contact, m_phoneTypeWord, m_buffers);
}

void ContactPicker::AppendName(const std::u16string& part) {
  std::u16string& name = m_buffers.name;
  // The blank does not count, so the result can be one longer than the room there is.
  if (!part.empty() && name.size() + part.size() < kNameCapacity) {
    name += name.empty() ? part : u' ' + part;
    name.resize(FitName(name).size());
  }
}

ContactPicker::Step ContactPicker::Report(ContactFailure failure, Step step, PhoneKind kind) {
  m_view.Report({failure, ContactReader::kLoading, kind});
  return step;
}

}  // namespace tags
