// Ten names are learned, tested, and computed again after a change of the speech mathematics: with
// the real program, real files and a real registry.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>

#include "storage/stored_text.h"
#include "tests/host/cli/command_fixture.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

constexpr std::array kSamples = {"anna_1",   "anna_2",   "elizabeth_1", "hernandez_1", "jackson_1",
                                 "oliver_1", "robert_1", "robert_2",    "sophie_1",    "timothy_1"};

class MaintenanceStory : public CommandFixture {
 protected:
  MaintenanceStory() {
    std::ofstream cards(Path("all.vcf"), std::ios::binary);
    for (std::size_t i = 0; i < kSamples.size(); ++i) {
      cards << "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:u" << i << "\r\nN:;" << kSamples[i]
            << ";;;\r\nTEL;TYPE=CELL:555" << i << "\r\nEND:VCARD\r\n";
    }
  }

  void LearnAll() const {
    for (const std::string sample : kSamples) {
      const auto run = Run({"--contacts", Path("all.vcf"), "--microphone",
                            std::string(VOXTREL_SAMPLES_DIR) + "/" + sample + ".wav", "--speaker",
                            Path("heard.wav"), "tags", "learn", "--contact", sample});
      ASSERT_EQ(run.exitCode, 0) << run.err;
      ASSERT_THAT(run.out, testing::StartsWith("Learned: " + sample + " 555"));
    }
  }

  /// All recordings and templates, by their paths.
  [[nodiscard]] std::map<std::string, std::string> GetFiles() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(Path("root")))) {
      const std::string extension = entry.path().extension().string();
      if (extension == ".wav" || extension == ".st") {
        files[entry.path().string()] = Content(entry.path());
      }
    }
    return files;
  }

  static std::string Content(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  /// What each file becomes: the recording is trimmed once more, and the template is that of all of
  /// what is left.
  [[nodiscard]] std::map<std::string, std::string> ToExpected(
      const std::map<std::string, std::string>& learned) const {
    std::map<std::string, std::string> expected;
    for (const auto& [path, content] : learned) {
      const fs::path wave(path);
      if (wave.extension() != ".wav") {
        continue;
      }
      const std::string copy = Path("expected.wav");
      std::ofstream(copy, std::ios::binary) << content;
      EXPECT_EQ(Run({"template", "learn", copy, Path("first.st")}).exitCode, 0);
      fs::remove(Path("second.st"));
      EXPECT_EQ(Run({"template", "process", copy, Path("second.st")}).exitCode, 0);
      expected[path] = Content(copy);
      const fs::path stored = wave.parent_path().parent_path() / "Voxtrel_stor" / wave.stem();
      expected[stored.string() + ".st"] = Content(Path("second.st"));
    }
    return expected;
  }

  void ImportVersion(std::u16string_view version) const {
    const std::u16string file = std::u16string(
                                    u"\xFEFFWindows Registry Editor Version 5.00\r\n\r\n"
                                    u"[HKEY_LOCAL_MACHINE\\Software\\Zedra\\"
                                    u"VoxtrelPEIni]\r\n\"Version_Math\"=\"")
                                    .append(version)
                                    .append(u"\"\r\n");
    const auto bytes = storage::ToUtf16Bytes(file);
    std::ofstream(Path("version.reg"), std::ios::binary)
        << std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const auto run = Run({"registry", "import", Path("version.reg")});
    ASSERT_EQ(run.exitCode, 0) << run.err;
  }
};

TEST_F(MaintenanceStory, TenNamesAreTestedAndComputedAgain) {
  LearnAll();
  const auto learned = GetFiles();
  ASSERT_EQ(learned.size(), 20U);

  const json before = RunJson({"tags", "test"}, 0);
  ASSERT_EQ(before["lines"].size(), 10U);
  int confusions = 0;
  double last = 0;
  for (const json& pair : before["pairs"]) {
    confusions += pair["confusions"].get<int>();
    EXPECT_GE(pair["distance"].get<double>(), last);
    last = pair["distance"];
  }
  EXPECT_EQ(confusions, 10);
  // Of the names that were said twice each is the other's nearest.
  EXPECT_THAT(before["lines"].dump(), testing::HasSubstr("; anna_1 5550 M;  anna_2 5551 M"));
  EXPECT_THAT(before["lines"].dump(), testing::HasSubstr("; robert_1 5556 M;  robert_2 5557 M"));

  // As an earlier version would have left them: other templates, one of them longer than its own.
  bool isLonger = true;
  for (const auto& [path, content] : learned) {
    if (path.ends_with(".st")) {
      std::ofstream(path, std::ios::binary) << std::string(isLonger ? 90'000 : 11, 'x');
      isLonger = false;
    }
  }
  ImportVersion(u"2");
  const auto run = Run({"reinit"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  const auto after = GetFiles();
  const auto expected = ToExpected(learned);
  ASSERT_EQ(after.size(), learned.size());
  for (const auto& [path, content] : after) {
    EXPECT_TRUE(expected.at(path) == content) << path;
    EXPECT_LE(content.size(), learned.at(path).size()) << "Trimming makes nothing longer.";
  }
  EXPECT_EQ(RunJson({"tags", "test"}, 0)["lines"].size(), 10U);
  EXPECT_EQ(RunJson({"check"}, 0)["findings"], json::array());

  ImportVersion(u"3");
  EXPECT_EQ(RunJson({"reinit"}, 0)["ran"], false);
}

}  // namespace
