#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "backends/headless/headless_dialog.h"
#include "language/language_table.h"
#include "resources/dialogs.h"
#include "storage/device_paths.h"
#include "tags/page_one.h"
#include "tests/support/headless_platform.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/signals.h"

/// The Learning page on a machine without anything real: three contacts, a microphone that hears
/// speech, and a tick count of 1000 at the start.
class PageFixture : public testing::Test {
 protected:
  static constexpr std::int32_t kAnn = 17;
  static constexpr std::int32_t kBob = -5;

  PageFixture() {
    machine::SimulatedContact ann{.oid = kAnn, .firstName = u"Ann", .lastName = u"Lee"};
    ann.Number(platform::PhoneKind::kMobile) = u"5551234";
    ann.Number(platform::PhoneKind::kHome) = u"1110000";
    m_machine.contacts.Add(ann);
    machine::SimulatedContact bob{.oid = kBob, .firstName = u"Bob", .lastName = u"Ray"};
    bob.Number(platform::PhoneKind::kHome) = u"5550001";
    m_machine.contacts.Add(bob);
    m_machine.waveIn.SetScript({.sound = Speech()});
    EXPECT_TRUE(m_machine.files.CreateFolder(storage::kProgramFilesFolder));
  }

  static std::vector<std::byte> Speech() {
    return support::BytesOf(
        support::Mixed(support::Noise(33075, 20, 1), 12000, support::SpeechLike(6000, 9000, 2)));
  }

  /// Opens the page as the sheet does.
  headless::HeadlessDialog& Open() { return OpenOn(m_machine.Get()); }
  headless::HeadlessDialog& OpenOn(const platform::Platform& platform) {
    m_dialog.reset();
    m_page.reset();
    m_page = std::make_unique<tags::Page_one>(platform, m_texts);
    m_dialog = std::make_unique<headless::HeadlessDialog>(resources::kLearningDialog, *m_page,
                                                          &m_machine.simulation);
    m_page->OnInitDialog();
    m_dialog->DeliverPosted();
    return *m_dialog;
  }

  /// Closes the page and opens the same object again, as the sheet does at a second double-click.
  void ShowOnceMore() {
    m_dialog.reset();
    m_dialog = std::make_unique<headless::HeadlessDialog>(resources::kLearningDialog, *m_page,
                                                          &m_machine.simulation);
    m_page->OnInitDialog();
    m_dialog->DeliverPosted();
  }

  void LoadLanguage(std::u16string_view lines) {
    support::Bytes bytes{std::byte{0xFF}, std::byte{0xFE}};
    for (const char16_t unit : lines) {
      bytes.push_back(static_cast<std::byte>(unit & 0xFFU));
      bytes.push_back(static_cast<std::byte>(unit >> 8U));
    }
    ASSERT_TRUE(m_machine.files.PutFile(u"\\test.lng", bytes));
    m_table.Load(m_machine.files, u"\\test.lng");
    m_texts = language::Texts(&m_table);
  }

  /// Puts a tag into the store, as an earlier session would have.
  void PutTag(std::u16string_view name, std::int32_t oid, std::u16string_view phoneType) {
    ASSERT_TRUE(m_machine.files.PutFile(storage::WavePath(name), support::Bytes(50)));
    ASSERT_TRUE(m_machine.files.PutFile(storage::TemplatePath(name), support::Bytes(6)));
    const storage::TagStore store(m_machine.files, m_machine.registry);
    ASSERT_EQ(support::ErrorOf(store.WriteEntry(name, oid, phoneType)), std::nullopt);
  }
  [[nodiscard]] std::vector<std::u16string> GetEntries() {
    return support::SubkeyNames(m_machine.registry, u"Software\\Zedra\\Zedra Voxtrel");
  }
  [[nodiscard]] bool HasFile(const std::u16string& path) {
    return m_machine.files.GetFile(path).has_value();
  }

  [[nodiscard]] std::vector<std::u16string> GetMessages() const {
    std::vector<std::u16string> texts;
    for (const auto& shown : m_machine.ui.GetMessages()) {
      texts.push_back(shown.box.text);
    }
    return texts;
  }

  support::HeadlessPlatform m_machine{1000};
  language::LanguageTable m_table;
  language::Texts m_texts;
  std::unique_ptr<tags::Page_one> m_page;
  std::unique_ptr<headless::HeadlessDialog> m_dialog;
};
