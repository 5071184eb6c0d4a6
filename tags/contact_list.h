#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tags/phone_kind.h"

namespace tags {

/// Room for a contact's name, with a terminating zero.
inline constexpr std::size_t kNameCapacity = 128;

/// Returns as much of `name` as that room holds. No character is cut in half.
[[nodiscard]] std::u16string_view FitName(std::u16string_view name);

/// One contact that has a usable number. There may be a hundred thousand.
struct ContactRecord {
  static constexpr std::int8_t kNoPhoneKind = -1;

  std::u16string name;  ///< As the contact combo shows it.
  std::int32_t oid = 0;
  /// Codes of the numbers found, in reading order, packed from the front.
  std::array<std::int8_t, kReadingOrder.size()> phoneKinds;

  ContactRecord() { phoneKinds.fill(kNoPhoneKind); }

  void SetName(std::u16string_view text);
  [[nodiscard]] std::u16string_view GetName() const { return name; }
  [[nodiscard]] bool HasNumber() const { return phoneKinds.front() != kNoPhoneKind; }
};

/// The contacts that the user can choose from: record i is item i of the contact combo box.
class ContactList {
 public:
  ContactList() = default;

  /// Makes room for as many contacts as the store reports. Contacts without a usable number leave
  /// some of it unused.
  explicit ContactList(std::int32_t reportedCount)
      : m_reportedCount(reportedCount),
        m_records(reportedCount < 1 ? 0 : static_cast<std::size_t>(reportedCount)) {}

  [[nodiscard]] std::int32_t GetReportedCount() const { return m_reportedCount; }

  /// Returns the number of records in use.
  [[nodiscard]] std::int32_t GetCount() const { return m_count; }

  /// Returns the record that is filled next. There is one while fewer contacts than reported were
  /// kept.
  [[nodiscard]] ContactRecord& GetNext() { return m_records[static_cast<std::size_t>(m_count)]; }

  /// Counts the record that was filled as one in use.
  void KeepNext() { ++m_count; }

  /// Returns null if no record in use has this index.
  [[nodiscard]] const ContactRecord* Find(std::int32_t index) const {
    const bool isInUse = index >= 0 && index < m_count;
    return isInUse ? &m_records[static_cast<std::size_t>(index)] : nullptr;
  }

 private:
  std::int32_t m_reportedCount = 0;
  std::int32_t m_count = 0;
  std::vector<ContactRecord> m_records;
};

}  // namespace tags
