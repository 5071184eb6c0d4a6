#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "language/texts.h"
#include "platform/contacts_store.h"
#include "platform/ui.h"
#include "tags/contact_picker.h"

namespace cli {

/// One contact as both combo boxes of the Learning page show it.
struct ListedContact {
  std::int32_t index = 0;  ///< From 1, in the contact combo box.
  std::int32_t oid = 0;
  std::u16string name;
  std::vector<std::u16string> numbers;  ///< In the order of the number combo box.
};

/// Both combo boxes without a window; messages go to `ui`.
class ContactLists final : public tags::ContactView {
 public:
  ContactLists(platform::Ui& ui, const language::Texts& texts) : m_ui(ui), m_texts(texts) {}

  void AddContact(std::u16string_view /*name*/) override {}
  void SelectFirstContact() override {}
  void AddNumber(std::u16string_view text) override;
  void RemoveNumbers() override { m_numbers.clear(); }
  void SelectFirstNumber() override {}
  [[nodiscard]] std::u16string GetFirstNumber() override;
  void Report(const tags::ContactMessage& message) override;

  [[nodiscard]] const std::vector<std::u16string>& GetNumbers() const { return m_numbers; }

 private:
  platform::Ui& m_ui;
  const language::Texts& m_texts;
  std::vector<std::u16string> m_numbers;
};

/// Every contact that the page offers. The connection to `store` is open. False where the page
/// would not open; what hindered it was shown then.
[[nodiscard]] bool ListContacts(platform::ContactsStore& store, platform::Ui& ui,
                                const language::Texts& texts, std::vector<ListedContact>& listed);

}  // namespace cli
