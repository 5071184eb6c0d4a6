#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "backends/vcard/contact_source.h"
#include "backends/vcard/oid_map.h"
#include "backends/vcard/source_choice.h"
#include "platform/contacts_store.h"
#include "platform/file_system.h"
#include "platform/registry.h"

namespace vcard {

/// Contacts of the desktop's address books or of vCard files, read whole at the log-on.
///
/// Guards what the user recorded: a contact counts as absent only where its own address book was
/// read to its end in this log-on and does not hold it. Where a number in use belongs to a book
/// that was not read so, the log-on fails.
class AddressBooks final : public platform::ContactsStore {
 public:
  struct Options {
    /// What the user asked for this time; it is remembered once a log-on to it succeeded.
    std::optional<SourceChoice> choice;

    /// Read where nothing was ever chosen and the desktop offers no contacts, or not those of the
    /// tags.
    std::u16string defaultPath = u"\\contacts.vcf";

    /// The numbers of contacts that must not be lost: those of the recorded tags; nothing where
    /// that cannot be told. Without the function none is in use.
    std::function<std::optional<std::vector<std::int32_t>>()> oidsInUse;

    /// Told at each log-on of a newcomer, who has no contacts and no tags.
    std::function<void()> nothingFound;

    /// Nothing is written to the registry: no choice is remembered, and a contact without a number
    /// gets, for this time alone, the one that it will have for good. The same happens, with a
    /// remark, if something is to be written and the registry takes no writes or is full.
    bool changesNothing = false;

    /// The desktop's address books; without them nobody answers for the desktop.
    ContactSource* desktop = nullptr;
  };

  /// Why the latest Connect or Logon failed, or found nothing, for who can tell the user more than
  /// that it did.
  enum class Problem : std::uint8_t {
    kNone,
    kStore,       ///< The registry could not be read or written.
    kNoServer,    ///< The desktop's address books do not answer.
    kUnreadable,  ///< The desktop's address books, or the file, cannot be read to the end.
    /// Nothing was ever chosen, the desktop has no contacts, and the default is not there. Fails
    /// only where there are tags; a newcomer has no contacts.
    kNothingChosen,
    kTagsElsewhere,  ///< Contacts of tags are in another address book, or may be.
  };

  AddressBooks(platform::FileSystem& files, platform::Registry& registry, Options options);

  [[nodiscard]] bool Initialize() override;
  [[nodiscard]] bool Connect() override;
  [[nodiscard]] bool Logon() override;
  [[nodiscard]] std::int32_t GetCount() override;
  [[nodiscard]] platform::ContactItem GetItem(std::int32_t index) override;
  [[nodiscard]] platform::ContactLookup GetItemFromOid(
      std::int32_t oid, std::unique_ptr<platform::Contact>& contact) override;
  void Logoff() override;

  [[nodiscard]] Problem GetProblem() const { return m_problem; }
  /// Why the desktop's address books could not be read, where they were asked in the latest Logon
  /// and said so.
  [[nodiscard]] const std::string& GetReason() const { return m_reason; }
  /// What the latest Connect and Logon passed over: in the address books that were read, then in
  /// the registry.
  [[nodiscard]] std::vector<Remark> GetRemarks() const;

 private:
  struct StoredContact {
    ContactData data;
    std::int32_t oid = 0;
  };
  class ReadContact;

  [[nodiscard]] bool LogonTo(const SourceChoice& choice);
  [[nodiscard]] bool RememberChoice();
  [[nodiscard]] bool LogonToDefault();
  [[nodiscard]] ReadResult ReadDesktop(std::vector<Book>& books);
  [[nodiscard]] bool Fail(Problem problem);
  [[nodiscard]] bool TakeContacts(std::vector<Book>& books);
  [[nodiscard]] bool IsAnyOidInUse() const;
  /// Not the opposite: where it cannot be told, neither is true.
  [[nodiscard]] bool IsNoOidInUse() const;
  [[nodiscard]] bool IsEveryOidInUseKnown();
  [[nodiscard]] platform::ContactLookup Find(std::int32_t oid) const;

  platform::FileSystem& m_files;
  platform::Registry& m_registry;
  Options m_options;
  OidMap m_oids;
  std::optional<SourceChoice> m_choice;
  std::vector<std::shared_ptr<const StoredContact>> m_contacts;
  std::unordered_map<std::int32_t, std::size_t> m_indexes;  ///< By oid.
  std::vector<std::u16string> m_completeBooks;              ///< Names.
  Problem m_problem = Problem::kNone;
  std::string m_reason;
  std::vector<Remark> m_bookRemarks;
  std::vector<Remark> m_choiceRemarks;
};

}  // namespace vcard
