#pragma once

#include <string>
#include <string_view>

#include "tags/contact_messages.h"

namespace tags {

/// Where chosen contacts and their numbers are shown: the contact combo box, which keeps the order
/// of its items, and the number combo box, which sorts them (text::CompareForDisplay).
class ContactView {
 public:
  ContactView() = default;
  ContactView(const ContactView&) = delete;
  ContactView& operator=(const ContactView&) = delete;
  virtual ~ContactView() = default;

  virtual void AddContact(std::u16string_view name) = 0;
  virtual void SelectFirstContact() = 0;

  virtual void AddNumber(std::u16string_view text) = 0;
  virtual void RemoveNumbers() = 0;
  virtual void SelectFirstNumber() = 0;

  /// Item 0 as the box sorted it; empty where there is none.
  [[nodiscard]] virtual std::u16string GetFirstNumber() = 0;

  /// Shows a message and returns when the user has answered.
  virtual void Report(const ContactMessage& message) = 0;
};

}  // namespace tags
