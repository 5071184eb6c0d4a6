#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "backends/headless/headless_dialog.h"
#include "backends/headless/headless_ui.h"
#include "connection/connection_page.h"
#include "resources/dialogs.h"
#include "storage/registry_keys.h"
#include "tests/machine/memory_registry.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"

/// The page on a registry in memory.
class ConnectionFixture : public testing::Test {
 protected:
  using Texts = std::vector<std::u16string>;

  headless::HeadlessDialog& Open() { return OpenOn(m_registry); }
  headless::HeadlessDialog& OpenOn(platform::Registry& registry) {
    m_dialog.reset();
    m_page = std::make_unique<connection::ConnectionPage>(registry, m_ui);
    m_dialog =
        std::make_unique<headless::HeadlessDialog>(resources::kConnectionDialog, *m_page, nullptr);
    EXPECT_TRUE(m_page->OnInitDialog());
    return *m_dialog;
  }

  void PutPort(std::u16string_view subkey, std::u16string_view name,
               std::u16string_view device = {}) {
    const std::u16string path = std::u16string(u"Drivers\\Active\\").append(subkey);
    ASSERT_EQ(support::ErrorOf(support::PutText(m_registry, path, u"Name", name)), std::nullopt);
    ASSERT_EQ(support::ErrorOf(support::PutText(m_registry, path, u"Device", device)),
              std::nullopt);
  }
  void PutSetting(std::u16string_view name, std::u16string_view text) {
    ASSERT_EQ(support::ErrorOf(support::PutText(m_registry, storage::kDialerKey, name, text)),
              std::nullopt);
  }
  [[nodiscard]] std::vector<std::byte> Stored(std::u16string_view name) {
    return support::BytesOf(m_registry, storage::kDialerKey, name);
  }
  /// What a text is as `count` bytes, zeros after it.
  [[nodiscard]] static std::vector<std::byte> Bytes(std::u16string_view text, std::size_t count) {
    std::vector<std::byte> bytes = support::Utf16Bytes(text);
    bytes.resize(count);
    return bytes;
  }

  machine::MemoryRegistry m_registry;
  headless::HeadlessUi m_ui;
  std::unique_ptr<connection::ConnectionPage> m_page;
  std::unique_ptr<headless::HeadlessDialog> m_dialog;
};
