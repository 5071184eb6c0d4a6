#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "language/language_table.h"
#include "language/texts.h"
#include "maintenance/maintenance_dialog.h"
#include "platform/file_system.h"
#include "storage/device_paths.h"
#include "tests/support/headless_platform.h"
#include "tests/support/signals.h"

/// A page as the dialogs know it, and nothing more of it.
class PlainSession final : public maintenance::TagSession {
 public:
  explicit PlainSession(const platform::Platform& platform)
      : mathematics(platform.files, platform.ui),
        workerEvent(platform.threads.CreateManualResetEvent().value()) {}

  [[nodiscard]] const storage::TagTable& GetTags() const override { return tags; }
  [[nodiscard]] voicemath::CVoiceMathematics& GetMathematics() override { return mathematics; }
  [[nodiscard]] platform::Event* GetWorkerEvent() override { return workerEvent.get(); }
  [[nodiscard]] platform::Thread* GetReinitWorker() override { return worker.get(); }

  void AddTag(std::u16string_view name, std::u16string_view text) {
    storage::TagRecord* record = tags.GetRecord(tags.tagCount++);
    record->SetTagName(name);
    record->SetDisplayText(text);
  }

  storage::TagTable tags;
  voicemath::CVoiceMathematics mathematics;
  std::unique_ptr<platform::Event> workerEvent;
  std::unique_ptr<platform::Thread> worker;
};

/// A machine without anything real and a page with tags.
class SessionFixture : public testing::Test {
 protected:
  using Texts = std::vector<std::u16string>;

  SessionFixture() {
    for (const auto folder :
         {storage::kProgramFilesFolder, storage::kMakerFolder, storage::kInstallFolder,
          storage::kWaveFolder, storage::kTemplateFolder}) {
      EXPECT_TRUE(m_machine.files.CreateFolder(folder));
    }
  }

  /// The bytes of a template file.
  static support::Bytes TemplateBytes(const std::vector<float>& values) {
    support::Bytes bytes(6 + 4 * values.size());
    const std::span<std::byte> span(bytes);
    platform::StoreLittleEndian32(span.subspan<0, 4>(), static_cast<std::uint32_t>(values.size()));
    platform::StoreLittleEndian16(span.subspan<4, 2>(),
                                  static_cast<std::uint16_t>(values.size() / 5));
    for (std::size_t i = 0; i < values.size(); ++i) {
      platform::StoreLittleEndian32(span.subspan(6 + 4 * i).first<4>(),
                                    std::bit_cast<std::uint32_t>(values[i]));
    }
    return bytes;
  }

  void PutTemplate(std::u16string_view name, const std::vector<float>& values) {
    ASSERT_TRUE(m_machine.files.PutFile(storage::TemplatePath(name), TemplateBytes(values)));
  }

  /// A tag with a template of its own.
  void PutTag(std::u16string_view name, std::u16string_view text,
              const std::vector<float>& values) {
    PutTemplate(name, values);
    m_session.AddTag(name, text);
  }

  /// A recording with something spoken in it, another one for each seed.
  static support::Samples Spoken(std::uint32_t seed) {
    return support::Mixed(support::Noise(12000, 20, seed), 4000,
                          support::SpeechLike(3000, 9000, seed));
  }
  static support::Bytes Recording(std::uint32_t seed) { return support::WaveFile(Spoken(seed)); }
  void PutRecording(std::u16string_view name, std::uint32_t seed) {
    ASSERT_TRUE(m_machine.files.PutFile(storage::WavePath(name), Recording(seed)));
  }
  [[nodiscard]] support::Bytes GetFile(const std::u16string& path) const {
    return m_machine.files.GetFile(path).value_or(support::Bytes());
  }

  void LoadLanguage(std::u16string_view lines) {
    support::Bytes bytes{std::byte{0xFF}, std::byte{0xFE}};
    for (const char16_t unit : lines) {
      bytes.push_back(static_cast<std::byte>(unit & 0xFFU));
      bytes.push_back(static_cast<std::byte>(unit >> 8U));
    }
    m_table.LoadFrom(bytes);
    m_texts = language::Texts(&m_table);
  }

  [[nodiscard]] Texts GetMessages() const {
    Texts texts;
    for (const auto& shown : m_machine.ui.GetMessages()) {
      texts.push_back(shown.box.text);
    }
    return texts;
  }

  support::HeadlessPlatform m_machine;
  PlainSession m_session{m_machine.Get()};
  language::LanguageTable m_table;
  language::Texts m_texts;
};
