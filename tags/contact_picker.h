#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/contacts_store.h"
#include "platform/dialog.h"
#include "platform/result.h"
#include "tags/contact_list.h"
#include "tags/contact_reading.h"

namespace tags {

/// A number of this length or more does not fit into the memory that the dialer keeps it in. One of
/// exactly this length is passed over without a word.
inline constexpr std::size_t kNumberCapacity = 96;

/// What the user picks on the Learning page: a contact and one of its numbers. It fills the contact
/// combo box, which keeps the order of its items, and the number combo box, which sorts them. Both
/// are in the window that each call gets. The connection to the store is open before anything is
/// called.
class ContactPicker {
 public:
  /// Shows a message and returns when the user has answered.
  using Report = std::function<void(const ContactMessage& message)>;

  ContactPicker(platform::ContactsStore& store, Report report)
      : m_store(store), m_report(std::move(report)) {}

  /// Fills the list of contacts and both combo boxes, and chooses the first contact. What was
  /// chosen before is forgotten. Fails if the whole initialization of the page ends here. The
  /// message is not reported then, and nothing is chosen.
  [[nodiscard]] platform::Result<void, ContactMessage> Load(platform::DialogWindow& window);

  /// Lists the numbers of the contact at `index` of the contact combo box, and chooses it with the
  /// first number.
  void ListNumbers(platform::DialogWindow& window, std::int32_t index);

  /// Chooses an item of the number combo box.
  void ChooseNumber(std::u16string_view item) { m_phoneTypeWord = PhoneTypeWord(item); }

  /// Reads the chosen contact again, for a tag just recorded.
  [[nodiscard]] ReadTagText ReadForTag();

  [[nodiscard]] const ContactList& GetContacts() const { return m_contacts; }

  /// Returns the identifier of the chosen contact. Returns 0 if none is chosen.
  [[nodiscard]] std::uint32_t GetOid() const { return m_oid; }

  /// Returns the kind of the chosen number. Returns an empty text until the user chooses a contact
  /// or a number.
  [[nodiscard]] const std::u16string& GetPhoneTypeWord() const { return m_phoneTypeWord; }

 private:
  using Loaded = platform::Result<void, ContactMessage>;

  [[nodiscard]] Loaded LoadItem(platform::DialogWindow& window, std::int32_t itemIndex);
  [[nodiscard]] Loaded LoadContact(platform::DialogWindow& window, platform::Contact& contact);
  [[nodiscard]] Loaded LoadName(platform::Contact& contact);
  [[nodiscard]] Loaded LoadNumbers(platform::DialogWindow& window, platform::Contact& contact,
                                   ContactRecord& record);
  void ListNumber(platform::DialogWindow& window, platform::Contact& contact, std::int32_t code);
  void AppendName(const std::u16string& part);

  platform::ContactsStore& m_store;
  Report m_report;
  ContactList m_contacts;
  ContactBuffers m_buffers;
  std::uint32_t m_oid = 0;
  std::u16string m_phoneTypeWord;
};

}  // namespace tags
