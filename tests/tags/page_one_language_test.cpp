// The Learning page with a language file: each text that it shows comes from the key of its own.

#include <functional>

#include "resources/language_keys.h"
#include "tests/support/watched_registry.h"
#include "tests/tags/watched_page.h"

namespace {

using Texts = std::vector<std::u16string>;
using namespace resources;
using machine::SimulatedContact;
using platform::MessageCaption;
using platform::PhoneKind;

/// The page with a language file in which the text of each key is the key itself in brackets.
class PageOneLanguage : public WatchedPage {
 protected:
  static constexpr std::int32_t kEve = 6;

  PageOneLanguage() {
    std::u16string lines;
    for (const LanguageKey& key : kLanguageKeys) {
      lines.append(key.key).append(u" <").append(key.key).append(u">\r\n");
    }
    LoadLanguage(lines);
  }

  void Hold(const std::u16string& path) {
    m_held = m_machine.files.Open(path, {}).value();
    ASSERT_NE(m_held, nullptr);
  }
  void ExpectLastBox(std::u16string_view text, MessageCaption caption) {
    ASSERT_FALSE(m_machine.ui.GetMessages().empty());
    const platform::MessageBox box = m_machine.ui.GetMessages().back().box;
    EXPECT_EQ(box.text, text);
    EXPECT_EQ(box.captionKind, caption);
  }
  void ExpectLastApplicationBox(std::u16string_view text) {
    ExpectLastBox(text, MessageCaption::kApplication);
  }
  void ExpectLastCaptionedBox(std::u16string_view text) {
    ExpectLastBox(text, MessageCaption::kText);
    EXPECT_EQ(m_machine.ui.GetMessages().back().box.caption, u"<ID_S_MESSAGE_DW>");
  }
  void ExpectConfirmation(int button, std::u16string_view text) {
    m_dialog->Press(button);
    const auto messages = m_machine.ui.GetMessages();
    ASSERT_FALSE(messages.empty());
    EXPECT_EQ(messages.back().box.text, text);
    EXPECT_EQ(messages.back().box.captionKind, MessageCaption::kText);
    EXPECT_EQ(messages.back().box.caption, u"<ID_S_MESSAGE_A>");
  }

  SimulatedContact& AddEve() {
    SimulatedContact eve{.oid = kEve, .firstName = u"Eve"};
    eve.numbers.fill(u"1");
    return m_machine.contacts.Add(eve);
  }

  std::unique_ptr<platform::File> m_held;
};

TEST_F(PageOneLanguage, BothConfirmationsAndTheirCaption) {
  PutTag(u"100", kAnn, u"Mobile");
  Open().Choose(kTagListId, 0);
  m_machine.ui.SetAnswerer(
      [](const platform::MessageBox&) { return platform::MessageAnswer::kCancel; });
  ExpectConfirmation(kDeleteButtonId, u"<ID_S_MESSAGE_D>");
  ExpectConfirmation(kDeleteAllButtonId, u"<ID_S_MESSAGE_DALL>");
}

TEST_F(PageOneLanguage, ATagInUse) {
  PutTag(u"100", kAnn, u"Mobile");
  Open().Choose(kTagListId, 0);
  Hold(storage::WavePath(u"100"));
  m_dialog->Press(kDeleteButtonId);
  ExpectLastApplicationBox(u"<ID_S_MESSAGE_U>");
  m_dialog->Press(kDeleteAllButtonId);
  ExpectLastApplicationBox(u"<ID_S_MESSAGE_U>");
}

TEST_F(PageOneLanguage, AnEntryInUse) {
  PutTag(u"100", kAnn, u"Mobile");
  support::WatchedRegistry failing(m_machine.registry);
  OpenOn(m_machine.GetWith(m_machine.files, failing)).Choose(kTagListId, 0);
  failing.FailCall(1, support::Failing::kFromThenOn);
  m_dialog->Press(kDeleteButtonId);
  ExpectLastApplicationBox(u"<ID_S_MESSAGE_U>");
  m_dialog->Press(kDeleteAllButtonId);
  ExpectLastApplicationBox(u"<ID_S_MESSAGE_U>");
  Close();
}

TEST_F(PageOneLanguage, AStaleTagThatStays) {
  PutTag(u"100", 999, u"Mobile");
  Hold(storage::WavePath(u"100"));
  Open();
  ExpectLastApplicationBox(u"<ID_S_MESSAGE_10>");
  m_held.reset();
  Hold(storage::TemplatePath(u"100"));
  Open();
  ExpectLastApplicationBox(u"<ID_S_MESSAGE_11>");
}

TEST_F(PageOneLanguage, AStaleEntryThatStays) {
  support::WatchedRegistry failing(m_machine.registry);
  Texts seen;
  for (std::size_t call = 1; call < 30; ++call) {
    PutTag(u"100", 999, u"Mobile");
    failing.FailCall(call, support::Failing::kOnce);
    OpenOn(m_machine.GetWith(m_machine.files, failing));
    if (!HasFile(storage::WavePath(u"100")) && !GetMessages().empty()) {
      seen.push_back(GetMessages().back());
      break;
    }
  }
  EXPECT_EQ(seen, Texts{u"<ID_S_MESSAGE_12>"});
  ExpectLastApplicationBox(u"<ID_S_MESSAGE_12>");
  Close();
}

TEST_F(PageOneLanguage, NothingChosen) {
  Open().ResetItems(kNumberComboId);
  m_dialog->Press(kRecordButtonId);
  ExpectLastApplicationBox(u"<ID_S_MESSAGE_8>");
}

TEST_F(PageOneLanguage, ATemplateThatCannotBeMade) {
  Open();
  ASSERT_TRUE(m_machine.files.CreateFolder(storage::kTemplateFolder));
  ASSERT_TRUE(m_machine.files.CreateFolder(storage::TemplatePath(u"1000")));
  m_dialog->Press(kRecordButtonId);
  ExpectLastApplicationBox(u"<ID_S_MESSAGE_7>");
}

TEST_F(PageOneLanguage, TheLimit) {
  for (std::uint32_t i = 0; i < 100; ++i) {
    PutTag(storage::TagNameOfTickCount(i), kAnn, u"Mobile");
  }
  Open().Press(kRecordButtonId);
  ExpectLastApplicationBox(u"<ID_S_MESSAGE_EX>100");
}

TEST_F(PageOneLanguage, EachFolderThatCannotBeMade) {
  const std::pair<std::u16string_view, std::u16string_view> rows[] = {
      {storage::kProgramFilesFolder, u"<ID_S_MESSAGE_14>"},
      {storage::kMakerFolder, u"<ID_S_MESSAGE_15>"},
      {storage::kInstallFolder, u"<ID_S_MESSAGE_16>"},
      {storage::kWaveFolder, u"<ID_S_MESSAGE_17>"}};
  for (const auto& [folder, text] : rows) {
    OpenWatched();
    m_files.Refuse({folder, storage::kWaveFolder});
    m_dialog->Press(kRecordButtonId);
    ExpectLastBox(text, MessageCaption::kNone);
    EXPECT_EQ(m_machine.process.GetExitCode(), 0);
  }
  OpenWatched();
  m_files.Refuse({storage::kTemplateFolder});
  m_dialog->Press(kRecordButtonId);
  ExpectLastBox(u"<ID_S_MESSAGE_18>", MessageCaption::kNone);
  EXPECT_EQ(GetMessages().size(), 5U);
}

TEST_F(PageOneLanguage, TheCountOfTags) {
  auto& dialog = Open();
  dialog.Press(kRecordButtonId);
  EXPECT_EQ(dialog.GetText(kCountLabelId), u"<ID_S_MESSAGE_L> 1");
  dialog.Choose(kTagListId, 0);
  dialog.Press(kDeleteButtonId);
  EXPECT_EQ(dialog.GetText(kCountLabelId), u"Learned commands: 0") << "English, deliberately.";
  dialog.Press(kRecordButtonId);
  dialog.Press(kDeleteAllButtonId);
  EXPECT_EQ(dialog.GetText(kCountLabelId), u"<ID_S_MESSAGE_L> 0");
}

TEST_F(PageOneLanguage, ContactsThatCannotBeReached) {
  using Opening = machine::SimulatedContacts::Opening;
  const std::pair<Opening, std::u16string_view> rows[] = {
      {Opening::kInitialize, u"<ID_S_MESSAGE_D3>"},
      {Opening::kConnect, u"<ID_S_MESSAGE_D4>"},
      {Opening::kLogon, u"<ID_S_MESSAGE_D5>"}};
  for (const auto& [step, text] : rows) {
    m_machine.contacts.FailOpening(step);
    Open();
    ExpectLastCaptionedBox(text);
    m_machine.contacts.FailOpening(step, 0);
  }
}

TEST_F(PageOneLanguage, ItemsOfTheContacts) {
  SimulatedContact& eve = AddEve();
  eve.Number(PhoneKind::kMobile) = std::u16string(97, u'5');
  Open();
  ExpectLastCaptionedBox(u"<ID_S_MESSAGE_D22>");
  m_machine.contacts.AddNullContact();
  Open();
  ExpectLastCaptionedBox(u"<ID_S_MESSAGE_20>");
  m_machine.contacts.AddFailingItem();
  Open();
  ExpectLastApplicationBox(u"<ID_S_MESSAGE_19>");
}

TEST_F(PageOneLanguage, AContactThatIsGoneWhenItsTagIsRecorded) {
  Open();
  m_machine.contacts.SetLookup(kAnn, platform::ContactsError::kFailed);
  m_dialog->Press(kRecordButtonId);
  ExpectLastCaptionedBox(u"<ID_S_MESSAGE_D6>");
}

/// One property of a contact that cannot be read.
struct Unreadable {
  std::u16string_view phoneType;  ///< The kind of the number, or any for a part of the name.
  std::u16string_view text;
  std::function<void(SimulatedContact&)> fail;
};

std::vector<Unreadable> EachUnreadable() {
  std::vector<Unreadable> rows = {
      {u"Car", u"<ID_S_MESSAGE_D7>", [](SimulatedContact& c) { c.firstNameFails = true; }},
      {u"Car", u"<ID_S_MESSAGE_D8>", [](SimulatedContact& c) { c.middleNameFails = true; }},
      {u"Car", u"<ID_S_MESSAGE_D9>", [](SimulatedContact& c) { c.lastNameFails = true; }},
      {u"Car", u"<ID_S_MESSAGE_D10>", [](SimulatedContact& c) { c.companyNameFails = true; }}};
  const std::pair<std::u16string_view, std::u16string_view> numbers[] = {
      {u"Car", u"<ID_S_MESSAGE_D14>"},         {u"Radio", u"<ID_S_MESSAGE_D13>"},
      {u"Mobile", u"<ID_S_MESSAGE_D11>"},      {u"Assistant", u"<ID_S_MESSAGE_D15>"},
      {u"Business", u"<ID_S_MESSAGE_D16>"},    {u"Business2", u"<ID_S_MESSAGE_D17>"},
      {u"BusinessFax", u"<ID_S_MESSAGE_D18>"}, {u"Home", u"<ID_S_MESSAGE_D19>"},
      {u"Home2", u"<ID_S_MESSAGE_D20>"},       {u"HomeFax", u"<ID_S_MESSAGE_D21>"}};
  for (std::size_t code = 0; code < std::size(numbers); ++code) {
    rows.push_back({numbers[code].first, numbers[code].second,
                    [code](SimulatedContact& c) { c.numberFails[code] = true; }});
  }
  return rows;
}

TEST_F(PageOneLanguage, EachPropertyThatFailsWhileTheContactsAreLoaded) {
  SimulatedContact& eve = AddEve();
  const SimulatedContact whole = eve;
  for (const Unreadable& row : EachUnreadable()) {
    row.fail(eve);
    Open();
    ExpectLastCaptionedBox(row.text);
    eve = whole;
  }
  EXPECT_EQ(GetMessages().size(), 14U);
}

TEST_F(PageOneLanguage, EachPropertyThatFailsWhileTheTagsAreListed) {
  SimulatedContact& eve = AddEve();
  const SimulatedContact whole = eve;
  for (const Unreadable& row : EachUnreadable()) {
    PutTag(u"100", kEve, row.phoneType);
    m_contacts.SetListener([&](std::string_view call) {
      if (call == "GetItemFromOid") {
        row.fail(eve);
      }
    });
    OpenWatched();
    ExpectLastCaptionedBox(row.text);
    eve = whole;
  }
  EXPECT_EQ(GetMessages().size(), 14U);
}

TEST_F(PageOneLanguage, EachPropertyThatFailsWhenATagIsRecorded) {
  SimulatedContact& eve = AddEve();
  const SimulatedContact whole = eve;
  for (const Unreadable& row : EachUnreadable()) {
    Open().Choose(kContactComboId, 2);
    m_dialog->ResetItems(kNumberComboId);
    m_dialog->AddItem(kNumberComboId, u"1 " + std::u16string(row.phoneType));
    m_dialog->Choose(kNumberComboId, 0);
    row.fail(eve);
    m_dialog->Press(kRecordButtonId);
    ExpectLastCaptionedBox(row.text);
    eve = whole;
  }
  EXPECT_EQ(GetMessages().size(), 14U);
}

}  // namespace
