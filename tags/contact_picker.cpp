#include "tags/contact_picker.h"

#include "resources/dialogs.h"

namespace tags {

using platform::DialogWindow;
using platform::Failure;
using resources::kContactComboId;
using resources::kNumberComboId;

namespace {

/// Only ContactFailure::kNumber looks at the kind.
auto LoadFailed(ContactFailure failure, PhoneKind kind = PhoneKind::kCar) {
  return Failure(ContactMessage{failure, ContactReader::kLoading, kind});
}

}  // namespace

ContactPicker::Loaded ContactPicker::Load(DialogWindow& window) {
  m_oid = 0;
  m_phoneTypeWord.clear();
  m_contacts = ContactList(m_store.GetCount());
  // The items of the store count from 1, and those of the list and of the combo boxes from 0. A
  // contact without a usable number has an item in the store and none in the list.
  for (std::int32_t i = 1; i <= m_contacts.GetReportedCount(); ++i) {
    const Loaded loaded = LoadItem(window, i);
    if (!loaded && loaded.error().failure == ContactFailure::kFirstName) {
      m_report(loaded.error());
      break;  // The one failure that ends the list and keeps what was gathered.
    }
    if (!loaded) {
      return loaded;
    }
  }
  // No kind of number is chosen here. The first press of Record takes that of item 0, which the
  // number box, since it sorts, need not have been given first.
  if (const ContactRecord* first = m_contacts.Find(0)) {
    window.SetSelection(kContactComboId, 0);
    window.SetSelection(kNumberComboId, 0);
    m_oid = static_cast<std::uint32_t>(first->oid);
  }
  return {};
}

ContactPicker::Loaded ContactPicker::LoadItem(DialogWindow& window, std::int32_t itemIndex) {
  const platform::FoundContact item = m_store.GetItem(itemIndex);
  if (!item) {
    return LoadFailed(ContactFailure::kItem);
  }
  if (!*item) {
    m_report({ContactFailure::kNullContact});
    return {};
  }
  return LoadContact(window, **item);
}

ContactPicker::Loaded ContactPicker::LoadContact(DialogWindow& window, platform::Contact& contact) {
  ContactRecord& record = m_contacts.GetNext();
  const Loaded loaded =
      LoadName(contact).and_then([&] { return LoadNumbers(window, contact, record); });
  if (!loaded) {
    return loaded;
  }
  // A firm often has no name but its company.
  if (m_buffers.name.empty()) {
    m_buffers.name = m_buffers.company;
  }
  record.SetName(m_buffers.name);
  // A failure has no message: the contact is listed under 0, with which nothing can be recorded.
  const std::int32_t oid = contact.GetOid().value_or(0);
  if (record.HasNumber()) {
    record.oid = oid;
    window.AddItem(kContactComboId, record.GetName());
    m_contacts.KeepNext();
  }
  return {};
}

// The buffers live on from one contact to the next. A last name or a company that is too long
// leaves there what the contact before had. That is deliberate: users know the list like that.
ContactPicker::Loaded ContactPicker::LoadName(platform::Contact& contact) {
  const auto last = contact.GetLastName();
  if (!last) {
    return LoadFailed(ContactFailure::kLastName);
  }
  ReplaceIfFits(m_buffers.name, *last);
  const auto first = contact.GetFirstName();
  if (!first) {
    return LoadFailed(ContactFailure::kFirstName);
  }
  AppendName(*first);
  const auto middle = contact.GetMiddleName();
  if (!middle) {
    return LoadFailed(ContactFailure::kMiddleName);
  }
  AppendName(*middle);
  const auto company = contact.GetCompanyName();
  if (!company) {
    return LoadFailed(ContactFailure::kCompanyName);
  }
  ReplaceIfFits(m_buffers.company, *company);
  return {};
}

// While no contact is listed yet, the numbers of each one go into the box. So it ends up with those
// of the first contact that is listed.
ContactPicker::Loaded ContactPicker::LoadNumbers(DialogWindow& window, platform::Contact& contact,
                                                 ContactRecord& record) {
  std::size_t accepted = 0;
  for (const PhoneKind kind : kReadingOrder) {
    const auto number = contact.GetNumber(kind);
    if (!number) {
      return LoadFailed(ContactFailure::kNumber, kind);
    }
    if (number->size() > kNumberCapacity) {
      m_report({ContactFailure::kNumberTooLong});
    } else if (!number->empty() && number->size() < kNumberCapacity) {
      record.phoneKinds[accepted] = static_cast<std::int8_t>(kind);
      ++accepted;
      if (m_contacts.GetCount() == 0) {
        window.AddItem(kNumberComboId, ToComboItem(*number, kind));
      }
    }
  }
  return {};
}

// The contact is read again, as it may have changed since the list was made. The first number is
// selected after each one: a message about the next must not show a box without a selection.
void ContactPicker::ListNumbers(DialogWindow& window, std::int32_t index) {
  window.ResetItems(kNumberComboId);
  const ContactRecord* record = m_contacts.Find(index);
  const platform::FoundContact contact = record == nullptr
                                             ? Failure(platform::ContactsError::kFailed)
                                             : m_store.GetItemFromOid(record->oid);
  if (!contact) {
    m_report({ContactFailure::kLookup, ContactReader::kSelection});
    return;
  }
  m_oid = static_cast<std::uint32_t>(record->oid);
  for (const std::int8_t code : record->phoneKinds) {
    ListNumber(window, **contact, code);
    window.SetSelection(kNumberComboId, 0);
  }
  ChooseNumber(window.GetItemText(kNumberComboId, 0));
}

void ContactPicker::ListNumber(DialogWindow& window, platform::Contact& contact,
                               std::int32_t code) {
  // The unused places of a record name no kind.
  if (code < 0 || code >= static_cast<std::int32_t>(kReadingOrder.size())) {
    return;
  }
  const auto kind = static_cast<PhoneKind>(code);
  const auto number = contact.GetNumber(kind);
  if (!number) {
    m_report({ContactFailure::kNumber, ContactReader::kSelection, kind});
    return;
  }
  window.AddItem(kNumberComboId, ToComboItem(*number, kind));
}

ReadTagText ContactPicker::ReadForTag() {
  const platform::FoundContact contact = m_store.GetItemFromOid(static_cast<std::int32_t>(m_oid));
  if (!contact) {
    return Failure(ContactMessage{ContactFailure::kLookup, ContactReader::kRecording});
  }
  return ReadForRecording(**contact, m_phoneTypeWord, m_buffers);
}

void ContactPicker::AppendName(const std::u16string& part) {
  std::u16string& name = m_buffers.name;
  // The blank does not count, so the result can be one longer than the room there is.
  if (!part.empty() && name.size() + part.size() < kNameCapacity) {
    name += name.empty() ? part : u' ' + part;
    name.resize(FitName(name).size());
  }
}

}  // namespace tags
