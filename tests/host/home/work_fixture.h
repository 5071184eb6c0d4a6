#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTest>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "backends/sqlite/sqlite_registry.h"
#include "host/home/store_work.h"
#include "host/machine/backends.h"
#include "storage/device_paths.h"
#include "storage/registry_keys.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace home {

/// The work on a store of its own, whose contacts are a vCard file and whose loudspeaker is a file.
class StoreWorkTest : public testing::Test {
 protected:
  StoreWorkTest() {
    WriteContacts(CardOf("a", "Lee;Ann", "CELL", "5551234") +
                  CardOf("b", "Ray;Bob", "HOME", "+972 50 555 0144"));
    m_options.root = Path("root");
    m_options.contacts = Path("all.vcf");
    m_options.speaker = Path("heard.wav");
  }

  [[nodiscard]] static std::string CardOf(const std::string& uid, const std::string& name,
                                          const std::string& kind, const std::string& number) {
    return "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:" + uid + "\r\nN:" + name + ";;;\r\nORG:Firm of " +
           uid + "\r\nTEL;TYPE=" + kind + ":" + number + "\r\nEND:VCARD\r\n";
  }
  void WriteContacts(const std::string& cards) const {
    std::ofstream(Path("all.vcf"), std::ios::binary) << cards;
  }

  [[nodiscard]] std::string Path(const std::string& name) const {
    return (m_folder.Path() / name).string();
  }
  [[nodiscard]] std::filesystem::path HostPath(const std::u16string& devicePath) const {
    return machine::Backends(m_options).ToHostPath(devicePath);
  }
  [[nodiscard]] std::filesystem::path Wave(const std::u16string& tag) const {
    return HostPath(storage::WavePath(tag));
  }
  [[nodiscard]] bool HasFiles(const std::u16string& tag) const {
    return exists(Wave(tag)) && exists(HostPath(storage::TemplatePath(tag)));
  }
  [[nodiscard]] static std::vector<std::byte> Sample(const std::string& name) {
    std::ifstream file(std::filesystem::path(VOXTREL_SAMPLES_DIR) / name, std::ios::binary);
    std::vector<std::byte> bytes;
    std::transform(std::istreambuf_iterator<char>(file), {}, std::back_inserter(bytes),
                   [](char byte) { return static_cast<std::byte>(byte); });
    return bytes;
  }
  [[nodiscard]] sqlite::SqliteRegistry Registry() const {
    return sqlite::SqliteRegistry(std::filesystem::path(m_options.root) / sqlite::kDatabaseName);
  }
  void PutEntry(const std::u16string& tag, std::int32_t oid, std::u16string_view kind) const {
    auto registry = Registry();
    const std::u16string key = std::u16string(storage::kTagKey) + u"\\" + tag;
    const std::string number = std::to_string(oid);
    ASSERT_EQ(support::ErrorOf(support::PutText(registry, key, u"contact",
                                                std::u16string(number.begin(), number.end()))),
              std::nullopt);
    ASSERT_EQ(support::ErrorOf(support::PutText(registry, key, u"phone type", kind)), std::nullopt);
  }

  /// Begins to work, and loads the store.
  void Begin() {
    m_work = std::make_unique<StoreWork>(m_options);
    m_work->OnLoaded([this](std::shared_ptr<const Shelf> shelf) {
      m_shelf = std::move(shelf);
      m_loads += m_shelf->areJudged ? 1 : 0;
    });
    m_work->Load();
    Await([this] { return m_loads > 0; });
  }

  /// Runs the event loop until `isDone`.
  static void Await(const std::function<bool()>& isDone) {
    constexpr int kLimit = 60'000;
    ASSERT_TRUE(QTest::qWaitFor(isDone, kLimit));
  }

  [[nodiscard]] std::int32_t Oid(std::u16string_view name) const {
    for (const Person& person : m_shelf->people) {
      if (person.name == name) {
        return person.oid;
      }
    }
    return 0;
  }
  [[nodiscard]] const Tag* Find(const std::u16string& tag) const {
    const auto found = std::ranges::find(m_shelf->tags, tag, &Tag::name);
    return found == m_shelf->tags.end() ? nullptr : &*found;
  }

  struct Taught {
    Outcome outcome;
    std::u16string tag;
    std::vector<std::u16string> trashed;
  };
  Taught Teach(const Lesson& lesson) {
    std::optional<Taught> taught;
    m_work->Teach(lesson, [&taught](const Outcome& outcome, const std::u16string& tag,
                                    const std::vector<std::u16string>& trashed) {
      taught = {outcome, tag, trashed};
    });
    Await([&taught] { return taught.has_value(); });
    return taught.value_or(Taught());
  }
  /// Teaches a name to Ann's number. Returns the tag.
  std::u16string TeachAnn(const std::string& sample = "anna_1.wav") {
    const Taught taught = Teach({Oid(u"Ann Lee"), u"Mobile", Sample(sample), {}});
    EXPECT_TRUE(taught.outcome.isDone);
    return taught.tag;
  }
  std::u16string TeachBob(const std::string& sample = "robert_1.wav") {
    const Taught taught = Teach({Oid(u"Bob Ray"), u"Home", Sample(sample), {}});
    EXPECT_TRUE(taught.outcome.isDone);
    return taught.tag;
  }

  std::pair<Outcome, std::vector<std::u16string>> Delete(const std::vector<std::u16string>& tags) {
    std::optional<std::pair<Outcome, std::vector<std::u16string>>> deleted;
    m_work->Delete(tags,
                   [&deleted](const Outcome& outcome, const std::vector<std::u16string>& trashed) {
                     deleted = {outcome, trashed};
                   });
    Await([&deleted] { return deleted.has_value(); });
    return deleted.value_or(std::pair<Outcome, std::vector<std::u16string>>());
  }
  std::vector<DeletedTag> ListTrash() {
    std::optional<std::vector<DeletedTag>> listed;
    m_work->ListTrash([&listed](const Outcome& outcome, const std::vector<DeletedTag>& tags) {
      EXPECT_TRUE(outcome.isDone);
      listed = tags;
    });
    Await([&listed] { return listed.has_value(); });
    return listed.value_or(std::vector<DeletedTag>());
  }
  Outcome Restore(const std::vector<std::u16string>& trashed) {
    std::optional<Outcome> restored;
    m_work->Restore(trashed, [&restored](const Outcome& outcome) { restored = outcome; });
    Await([&restored] { return restored.has_value(); });
    return restored.value_or(Outcome());
  }
  Outcome Play(const std::u16string& tag) {
    std::optional<Outcome> played;
    m_work->Play(tag, [&played](const Outcome& outcome) { played = outcome; });
    Await([&played] { return played.has_value(); });
    return played.value_or(Outcome());
  }

  support::TempFolder m_folder;
  machine::Options m_options;
  std::shared_ptr<const Shelf> m_shelf = std::make_shared<const Shelf>();
  int m_loads = 0;
  std::unique_ptr<StoreWork> m_work;
};

}  // namespace home
