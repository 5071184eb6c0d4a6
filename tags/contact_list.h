#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tags/contact_record.h"

namespace tags {

/// The contacts that the user can choose from: record i is item i of the contact combo box.
class ContactList {
 public:
  ContactList() = default;

  /// Room for as many contacts as the store reports; contacts without a usable number leave some of
  /// it unused.
  explicit ContactList(std::int32_t reportedCount)
      : m_reportedCount(reportedCount),
        m_records(reportedCount < 1 ? 0 : static_cast<std::size_t>(reportedCount)) {}

  [[nodiscard]] std::int32_t GetReportedCount() const { return m_reportedCount; }

  /// Number of records in use.
  [[nodiscard]] std::int32_t GetCount() const { return m_count; }

  /// The record that is filled next. There is one while fewer contacts than reported were kept.
  [[nodiscard]] ContactRecord& GetNext() { return m_records[static_cast<std::size_t>(m_count)]; }

  /// Takes the record that was filled into use.
  void KeepNext() { ++m_count; }

  /// Null where no record in use has this index.
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
