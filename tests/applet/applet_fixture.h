#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "applet/voxtrel_app.h"
#include "backends/headless/headless_ui.h"
#include "language/language_table.h"
#include "storage/device_paths.h"
#include "tests/machine/simulated_module.h"
#include "tests/support/headless_platform.h"

/// The applet on a machine without anything real, and without a language file unless a test puts
/// one there.
class AppletFixture : public testing::Test {
 protected:
  using Texts = std::vector<std::u16string>;

  ~AppletFixture() override { language::LanguageTable::Release(); }

  void SetUp() override {
    ASSERT_TRUE(m_machine.files.CreateFolder(storage::kProgramFilesFolder));
    ASSERT_TRUE(m_machine.files.CreateFolder(storage::kMakerFolder));
    ASSERT_TRUE(m_machine.files.CreateFolder(storage::kInstallFolder));
  }

  void PutLanguageFile(std::u16string_view lines) {
    std::vector<std::byte> bytes{std::byte{0xFF}, std::byte{0xFE}};
    for (const char16_t unit : lines) {
      bytes.push_back(static_cast<std::byte>(unit & 0xFFU));
      bytes.push_back(static_cast<std::byte>(unit >> 8U));
    }
    ASSERT_TRUE(m_machine.files.PutFile(storage::kLanguageFile, bytes));
  }

  /// The applet as it is after its library was loaded.
  [[nodiscard]] std::unique_ptr<applet::VoxtrelApp> Start() {
    auto app = std::make_unique<applet::VoxtrelApp>(m_machine.Get(), m_module,
                                                    applet::WriteRecord<applet::NewCplInfo>);
    EXPECT_TRUE(app->InitInstance());
    return app;
  }

  [[nodiscard]] static std::int32_t Send(applet::VoxtrelApp& app, applet::CplMessage message,
                                         std::intptr_t lParam1 = 0, std::intptr_t lParam2 = 0) {
    return app.Answer(static_cast<std::uint32_t>(message), lParam1, lParam2);
  }

  [[nodiscard]] static std::int32_t Inquire(applet::VoxtrelApp& app, applet::NewCplInfo& info) {
    return Send(app, applet::CplMessage::kNewInquire, 0, reinterpret_cast<std::intptr_t>(&info));
  }

  [[nodiscard]] static std::int32_t Open(applet::VoxtrelApp& app) {
    return Send(app, applet::CplMessage::kDblClk);
  }

  support::HeadlessPlatform m_machine;
  machine::SimulatedModule m_module;
};
