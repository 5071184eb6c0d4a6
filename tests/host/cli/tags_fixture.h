#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "storage/registry_keys.h"
#include "tests/host/cli/command_fixture.h"
#include "tests/support/host_files.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"

inline constexpr const char* kAnnsCard =
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:a\r\nN:Lee;Ann;;;\r\nTEL;TYPE=CELL:5551234\r\nEND:VCARD\r\n";
inline constexpr const char* kBobsCard =
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:b\r\nN:Ray;Bob;;;\r\nTEL;TYPE=HOME:5550001\r\nEND:VCARD\r\n";

/// Tags as the applet leaves them, made of samples without the three seconds of a recording.
class TagsFixture : public CommandFixture {
 protected:
  TagsFixture() {
    std::ofstream(Path("all.vcf"), std::ios::binary) << kAnnsCard << kBobsCard;
    // Remembers the address book, as a command does that may change something.
    EXPECT_EQ(Run({"--contacts", Path("all.vcf"), "reinit"}).exitCode, 0);
    const nlohmann::json list =
        nlohmann::json::parse(Run({"contacts", "list", "--json"}).out, nullptr, false);
    m_ann = list[0]["oid"];
    m_bob = list[1]["oid"];
    std::filesystem::create_directories(Folder("Voxtrel_wav"));
    std::filesystem::create_directories(Folder("Voxtrel_stor"));
  }

  [[nodiscard]] std::filesystem::path Folder(const std::string& name) const {
    return support::Exactly(std::filesystem::path(Path("root")) / "Program Files" / "Zedra Tech." /
                            "Zedra Voxtrel" / name);
  }
  [[nodiscard]] std::filesystem::path Wave(const std::string& tag) const {
    return Folder("Voxtrel_wav") / (tag + ".wav");
  }
  [[nodiscard]] std::filesystem::path Template(const std::string& tag) const {
    return Folder("Voxtrel_stor") / (tag + ".st");
  }
  static std::u16string Wide(const std::string& text) { return {text.begin(), text.end()}; }

  void PutVersion(std::u16string_view text) const {
    const auto store = Registry();
    platform::Registry& registry = *store;
    ASSERT_EQ(support::ErrorOf(
                  support::PutText(registry, storage::kSetupKey, storage::kMathVersionValue, text)),
              std::nullopt);
  }
  void PutEntry(const std::string& tag, std::int32_t oid, std::u16string_view kind) const {
    const auto store = Registry();
    platform::Registry& registry = *store;
    const std::u16string key = std::u16string(storage::kTagKey) + u"\\" + Wide(tag);
    ASSERT_EQ(
        support::ErrorOf(support::PutText(registry, key, u"contact", Wide(std::to_string(oid)))),
        std::nullopt);
    ASSERT_EQ(support::ErrorOf(support::PutText(registry, key, u"phone type", kind)), std::nullopt);
  }
  void PutTag(const std::string& tag, const std::string& sample, std::int32_t oid,
              std::u16string_view kind) const {
    std::filesystem::copy_file(std::filesystem::path(VOXTREL_SAMPLES_DIR) / sample, Wave(tag));
    const auto run =
        Run({"template", "learn", support::Shown(Wave(tag)), support::Shown(Template(tag))});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    PutEntry(tag, oid, kind);
  }
  void PutThreeTags() const {
    PutTag("100", "anna_1.wav", m_ann, u"Mobile");
    PutTag("200", "anna_2.wav", m_bob, u"Home");
    PutTag("300", "robert_1.wav", m_bob, u"Home");
    PutVersion(u"3");
  }

  /// What "tags list --json" prints, which is an array and no object.
  [[nodiscard]] nlohmann::json List() const {
    const auto run = Run({"tags", "list", "--json"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.err, "");
    return nlohmann::json::parse(run.out, nullptr, false);
  }
  [[nodiscard]] std::vector<std::string> GetNames() const {
    std::vector<std::string> names;
    for (const nlohmann::json& tag : List()) {
      names.push_back(tag["name"]);
    }
    return names;
  }
  [[nodiscard]] bool HasEntry(const std::string& tag) const {
    const auto store = Registry();
    platform::Registry& registry = *store;
    return support::KeyExists(registry, std::u16string(storage::kTagKey) + u"\\" + Wide(tag));
  }
  [[nodiscard]] bool HasFiles(const std::string& tag) const {
    return std::filesystem::exists(Wave(tag)) && std::filesystem::exists(Template(tag));
  }
  [[nodiscard]] static std::string Content(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  std::int32_t m_ann = 0;
  std::int32_t m_bob = 0;
};
