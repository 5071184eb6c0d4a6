#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "tags/contact_view.h"

/// Both combo boxes and the messages, as the calls leave them. The number box sorts by code units,
/// which is all that these tests need of an order.
class RecordingView final : public tags::ContactView {
 public:
  void AddContact(std::u16string_view name) override { contacts.emplace_back(name); }
  void SelectFirstContact() override { isFirstContactSelected = true; }

  void AddNumber(std::u16string_view text) override {
    numbers.emplace(std::upper_bound(numbers.begin(), numbers.end(), text), text);
    isFirstNumberSelected = false;
  }
  void RemoveNumbers() override {
    numbers.clear();
    isFirstNumberSelected = false;
  }
  void SelectFirstNumber() override { isFirstNumberSelected = !numbers.empty(); }
  [[nodiscard]] std::u16string GetFirstNumber() override {
    return numbers.empty() ? std::u16string() : numbers.front();
  }

  void Report(const tags::ContactMessage& message) override {
    messages.push_back(message);
    wasFirstNumberSelected = isFirstNumberSelected;
  }

  std::vector<std::u16string> contacts;
  std::vector<std::u16string> numbers;
  std::vector<tags::ContactMessage> messages;
  bool isFirstContactSelected = false;
  bool isFirstNumberSelected = false;
  bool wasFirstNumberSelected = false;  ///< When the latest message was shown.
};
