#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/contacts_store.h"
#include "tags/contact_list.h"
#include "tags/contact_reading.h"
#include "tags/contact_view.h"

namespace tags {

/// What the user picks on the Learning page: a contact and one of its numbers. The connection to
/// the store is open before anything is called.
class ContactPicker {
 public:
  ContactPicker(platform::ContactsStore& store, ContactView& view) : m_store(store), m_view(view) {}

  /// Fills the list of contacts and both combo boxes, and chooses the first contact; what was
  /// chosen before is forgotten. False where a failure ends the whole initialization of the page;
  /// it was reported then, and nothing is chosen.
  [[nodiscard]] bool Load();

  /// Lists the numbers of the contact at `index` of the contact combo box, and chooses it with the
  /// first number.
  void ListNumbers(std::int32_t index);

  /// Chooses an item of the number combo box.
  void ChooseNumber(std::u16string_view item) { m_phoneTypeWord = PhoneTypeWord(item); }

  /// Reads the chosen contact again, for a tag just recorded.
  [[nodiscard]] TagText ReadForTag();

  [[nodiscard]] const ContactList& GetContacts() const { return m_contacts; }

  /// Identifier of the chosen contact; 0 where none is.
  [[nodiscard]] std::uint32_t GetOid() const { return m_oid; }

  /// Kind of the chosen number; empty until a contact or a number is chosen by the user.
  [[nodiscard]] const std::u16string& GetPhoneTypeWord() const { return m_phoneTypeWord; }

 private:
  enum class Step : std::uint8_t {
    kGoOn,
    kEndOfList,  ///< What was gathered so far is kept.
    kEndOfPage,  ///< The initialization of the page ends.
  };

  [[nodiscard]] Step LoadItem(std::int32_t itemIndex);
  [[nodiscard]] Step LoadContact(platform::Contact& contact);
  [[nodiscard]] Step LoadName(platform::Contact& contact);
  [[nodiscard]] Step LoadNumbers(platform::Contact& contact, ContactRecord& record);
  void ListNumber(platform::Contact& contact, std::int32_t code);
  void AppendName(const std::u16string& part);
  [[nodiscard]] Step Report(ContactFailure failure, Step step, PhoneKind kind = PhoneKind::kCar);

  platform::ContactsStore& m_store;
  ContactView& m_view;
  ContactList m_contacts;
  ContactBuffers m_buffers;
  std::uint32_t m_oid = 0;
  std::u16string m_phoneTypeWord;
};

}  // namespace tags
