#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/e2e/window_story.h"

namespace e2e {
namespace {

constexpr const char* kEnglish = "en";

/// The story in each language, for those who look at its pictures.
class ReinitOnScreen : public WindowStory, public testing::WithParamInterface<const char*> {
 protected:
  /// The name of a picture of this language.
  [[nodiscard]] static std::string InLanguage(const std::string& name) {
    return std::string(GetParam()) + "_" + name;
  }

  /// Each takes its three seconds; two are the fewest that can be tested.
  [[nodiscard]] static std::vector<std::string> GetNames() {
    return GetParam() == std::string(kEnglish)
               ? std::vector<std::string>{"anna", "robert", "sophie"}
               : std::vector<std::string>{"anna", "sophie"};
  }

  void LearnSamples() {
    m_session.SetVariable("VOXTREL_CONTACTS", VOXTREL_SAMPLES_DIR "/contacts.vcf");
    for (const std::string& name : GetNames()) {
      const auto run = support::RunProgram({VOXTREL_PROGRAM, "--root", Root(), "--microphone",
                                            VOXTREL_SAMPLES_DIR "/" + name + "_1.wav", "--speaker",
                                            m_session.Folder() / "heard.wav", "tags", "learn",
                                            "--contact", name});
      ASSERT_EQ(run.exitCode, 0) << run.err;
    }
  }

  void TakeLanguage() {
    if (GetParam() == std::string(kEnglish)) {
      return;
    }
    const std::string file = VOXTREL_LANGUAGES_DIR "/Voxtrel." + std::string(GetParam()) + ".lng";
    std::filesystem::copy_file(file, Installed("Voxtrel.lng"));
    const auto shown = support::RunProgram({VOXTREL_PROGRAM, "--json", "language", "show", file});
    const auto table = nlohmann::json::parse(shown.out);
    for (const auto& entry : table.at("entries")) {
      if (entry.at(0) == "ID_S_PROP_TTL") {
        m_sheetTitle = entry.at(1);
      }
    }
  }

  void RecordOtherMathematics() {
    const auto other = support::RunProgram(
        {"sqlite3", Root() + "/registry.db",
         "UPDATE registry_value SET data = x'32000000' WHERE name = 'Version_Math'"});
    ASSERT_EQ(other.exitCode, 0) << other.err;
  }

  std::string m_sheetTitle = "Property";
};

TEST_P(ReinitOnScreen, AnOtherMathematicsComputesAllTemplatesAgainBeforeTheEyesOfTheUser) {
  LearnSamples();
  const auto templates = NamesIn("Voxtrel_stor");
  ASSERT_EQ(templates.size(), GetNames().size());
  for (const std::string& name : templates) {
    std::filesystem::remove(Installed("Voxtrel_stor") / (name + ".st"));
  }
  RecordOtherMathematics();
  TakeLanguage();

  Start({VOXTREL_PANEL, "--open", VOXTREL_APPLET});
  ASSERT_FALSE(m_screen->AwaitWindow("Reinitialization").id.empty());
  ASSERT_TRUE(
      Await(std::chrono::seconds(120), [this] { return !NamesIn("Voxtrel_stor").empty(); }));
  Shoot(InLanguage("reinitialization"));
  ASSERT_TRUE(Await(std::chrono::seconds(120),
                    [this] { return !m_screen->HasWindow("Reinitialization"); }));
  EXPECT_EQ(NamesIn("Voxtrel_stor"), templates);
  m_sheet = m_screen->AwaitWindow(m_sheetTitle);
  Shoot(InLanguage("learning"));
  ClickOn(resources::kTestButtonId);
  ASSERT_FALSE(m_screen->AwaitWindow("Test").id.empty());
  Shoot(InLanguage("test"));
}

INSTANTIATE_TEST_SUITE_P(English, ReinitOnScreen, testing::Values(kEnglish));
INSTANTIATE_TEST_SUITE_P(Translations, ReinitOnScreen,
                         testing::Values("de", "es", "fr", "ru", "zh-Hans"));

}  // namespace
}  // namespace e2e
