#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "backends/vcard/book_cache.h"
#include "backends/vcard/contact_source.h"
#include "backends/vcard/indexes.h"
#include "backends/vcard/oid_map.h"
#include "platform/contacts_store.h"
#include "platform/file_system.h"
#include "platform/registry.h"

namespace vcard {

/// Contacts of the desktop's address books or of vCard files, read whole at the log-on.
///
/// Guards what the user recorded: a contact counts as absent only if its own address book was read
/// to its end in this log-on and does not hold it. If a number in use belongs to a book that was
/// not read so, the log-on fails.
class AddressBooks final : public platform::ContactsStore {
 public:
  struct Options {
    /// What the user asked for this time; it is remembered once a log-on to it succeeded.
    std::optional<SourceChoice> choice;

    /// Is read if nothing was ever chosen and the desktop offers no contacts, or not those of the
    /// tags.
    std::u16string defaultPath = u"\\contacts.vcf";

    /// Returns the numbers of contacts that must not be lost, which are those of the recorded tags.
    /// Fails if nobody knows them. Without the function none is in use.
    std::function<platform::Result<std::vector<std::int32_t>, platform::RegistryError>()> oidsInUse;

    /// Called at each log-on of a newcomer, who has no contacts and no tags.
    std::function<void()> nothingFound;

    /// Nothing is written to the registry: no choice is remembered, and a contact without a number
    /// gets, for this time alone, the one that it will have for good. The same happens, with a
    /// remark, if something is to be written and the registry takes no writes or is full.
    bool changesNothing = false;

    /// Without it a vCard file is read card by card at each log-on.
    OpenCache openCache;

    /// The desktop's address books. Without them nobody answers for the desktop.
    ContactSource* desktop = nullptr;
  };

  /// Why a Connect or Logon failed or found nothing.
  enum class Problem : std::uint8_t {
    kStore,       ///< The registry could not be read or written.
    kNoServer,    ///< The desktop's address books do not answer.
    kUnreadable,  ///< The desktop's address books, or the file, cannot be read to the end.
    /// Nothing was ever chosen, the desktop has no contacts, and the default is not there. The
    /// log-on of a newcomer, who has no tags, succeeds all the same.
    kNothingChosen,
    kTagsElsewhere,  ///< Contacts of tags are in another address book, or may be.
  };

  AddressBooks(platform::FileSystem& files, platform::Registry& registry, Options options);

  [[nodiscard]] platform::Result<void, platform::ContactsError> Initialize() override;
  [[nodiscard]] platform::Result<void, platform::ContactsError> Connect() override;
  [[nodiscard]] platform::Result<void, platform::ContactsError> Logon() override;
  [[nodiscard]] std::int32_t GetCount() override;
  [[nodiscard]] platform::FoundContact GetItem(std::int32_t index) override;
  [[nodiscard]] platform::FoundContact GetItemFromOid(std::int32_t oid) override;
  void Logoff() override;

  /// Returns the problem of the latest Connect or Logon. Returns nothing if there was none.
  [[nodiscard]] std::optional<Problem> GetProblem() const { return m_problem; }
  /// Returns why the desktop's address books could not be read in the latest Logon. Returns an
  /// empty text if they could, were not asked, or gave no reason.
  [[nodiscard]] const std::string& GetReason() const { return m_reason; }
  /// Returns what the latest Connect and Logon passed over: in the address books that were read,
  /// then in the registry.
  [[nodiscard]] std::vector<Remark> GetRemarks() const;

 private:
  class ReadContact;

  /// A contact of the log-on.
  struct Entry {
    std::uint32_t book = 0;
    std::uint32_t index = 0;  ///< In its book.
    std::int32_t oid = 0;
  };

  using Done = platform::Result<void, Problem>;
  using Oids = platform::Result<std::vector<std::int32_t>, platform::RegistryError>;

  [[nodiscard]] Done LogonTo(const SourceChoice& choice);
  [[nodiscard]] Done LogonToDefault();
  [[nodiscard]] Done RememberChoice();
  /// Makes the numbers of the file that was chosen before those of `book` if `book` is that file.
  void FollowMovedFile(const SourceChoice& choice, const Book& book);
  [[nodiscard]] ReadBooks ReadFrom(ContactSource& source);
  [[nodiscard]] ReadBooks ReadDesktop();
  [[nodiscard]] Done TakeContacts(std::vector<Book> books);
  [[nodiscard]] Oids GetOidsInUse() const;
  [[nodiscard]] Done CheckOidsInUse() const;
  [[nodiscard]] platform::FoundContact Unpack(const Entry& entry) const;
  /// Returns null if no contact of the log-on has the number.
  [[nodiscard]] const Entry* FindByOid(std::int32_t oid) const;
  /// Returns whether the contact was in a book that was read to its end, and is there no more.
  [[nodiscard]] bool IsGone(std::int32_t oid) const;

  platform::FileSystem& m_files;
  platform::Registry& m_registry;
  Options m_options;
  OidMap m_oids;
  std::optional<SourceChoice> m_choice;
  std::vector<ContactPool> m_books;
  std::vector<Entry> m_contacts;
  OidIndex m_byOid;                             ///< Of m_contacts.
  std::vector<std::u16string> m_completeBooks;  ///< Names.
  std::optional<Problem> m_problem;
  std::string m_reason;
  std::vector<Remark> m_bookRemarks;
  std::vector<Remark> m_choiceRemarks;
};

}  // namespace vcard
