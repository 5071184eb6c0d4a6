#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "tests/e2e/text_file.h"
#include "tests/e2e/window_story.h"

namespace e2e {
namespace {

using testing::ElementsAre;

TEST_F(WindowStory, ThreeNamesAreLearnedByClicksOnTheRealWindow) {
  OpenFromThePanel();
  if (HasFatalFailure()) return;
  Shoot("opened");
  const std::vector<std::string> words = {"Ann Lee", "Robert Ray", "Carla Stone"};
  for (std::size_t i = 0; i < words.size(); ++i) {
    ChooseContact(static_cast<int>(i));
    Learn(words[i]);
    if (HasFatalFailure()) {
      Shoot("failed");
      return;
    }
  }
  Shoot("learned");

  const auto names = NamesIn("Voxtrel_wav");
  EXPECT_EQ(names.size(), 3U);
  EXPECT_EQ(NamesIn("Voxtrel_stor"), names);
  EXPECT_EQ(GetEntryCount(), 3U);

  // Closing the sheet lets others have the tags.
  ASSERT_TRUE(Await(std::chrono::seconds(60), [this] {
    m_screen->Press({"Escape"});
    return Await(std::chrono::seconds(2), [this] { return !m_screen->HasWindow("Property"); });
  }));
  const auto list = Voxtrel({"--json", "tags", "list"});
  ASSERT_EQ(list.exitCode, 0) << list.err;
  std::vector<std::string> texts;
  for (const auto& tag : nlohmann::json::parse(list.out)) {
    texts.push_back(tag.at("text").get<std::string>());
    // Recordings are trimmed to the name: shorter than the three seconds.
    EXPECT_LT(std::filesystem::file_size(tag.at("wave").get<std::string>()), 66'194U);
  }
  EXPECT_THAT(texts,
              ElementsAre("Ann Lee 5551234 M", "Bob Ray 5550001 H", "Carla Stone 5550003 B"));
}

TEST_F(WindowStory, F1OpensAPageThatIsThere) {
  const std::string opened = m_session.Folder() / "opened";
  const std::string browser = m_session.Folder() / "browser";
  std::ofstream(browser) << "#!/bin/sh\nprintf '%s' \"$1\" >'" << opened << "'\n";
  std::filesystem::permissions(browser, std::filesystem::perms::owner_all);
  m_session.SetVariable("BROWSER", browser);
  OpenFromThePanel();
  if (HasFatalFailure()) return;
  ASSERT_TRUE(Await(std::chrono::seconds(60), [&] {
    m_screen->Press({"F1"});
    return Await(std::chrono::seconds(2), [&] { return !ReadText(opened).empty(); });
  }));
  const std::string page = ReadText(opened);
  const std::string file = page.substr(0, page.find('#'));
  ASSERT_TRUE(file.starts_with("file:///")) << page;
  EXPECT_TRUE(std::filesystem::exists(file.substr(std::string_view("file://").size()))) << page;
}

TEST_F(WindowStory, TheConnectionSettingsHaveASheetOfTheirOwnWhoseOkStoresThem) {
  Start({VOXTREL_PROGRAM, "--root", Root(), "--json", "connection"});
  m_sheet = m_screen->AwaitWindow("Property");
  ASSERT_FALSE(m_sheet.id.empty()) << ReadText(Log());
  Shoot("connection");
  // OK stands in the lower right corner, to the left of Cancel.
  m_screen->Click(m_sheet.left + m_sheet.width - 142, m_sheet.top + m_sheet.height - 25);
  ASSERT_TRUE(Await(std::chrono::seconds(30), [this] { return m_panel->HasEnded(); }));
  EXPECT_THAT(ReadText(Log()), testing::HasSubstr("{\"result\":0}\n"));
  const auto stored = support::RunProgram(
      {"sqlite3", "-readonly", Root() + "/registry.db",
       "SELECT name FROM registry_value WHERE name IN ('Bound_rate', 'Data_bit', 'Stop_bit', "
       "'Flow_control') ORDER BY name"});
  EXPECT_EQ(stored.out, "Bound_rate\nData_bit\nFlow_control\nStop_bit\n") << stored.err;
}

}  // namespace
}  // namespace e2e
