#pragma once

#include <array>
#include <string_view>

#include "resources/language_keys.h"

namespace resources {

/// One place where the system shows a text: the key of the language file and the built-in English,
/// which can differ between places with the same key. Both are literals. A key that the table of
/// keys lacks does not compile.
class Text {
 public:
  /// The English of the language file is that of the place.
  explicit consteval Text(const char16_t* key) : Text(key, FindLanguageKey(key)->english) {}

  consteval Text(const char16_t* key, std::u16string_view english)
      : m_key(FindLanguageKey(key)->key.data()), m_english(english) {}

  [[nodiscard]] constexpr const char16_t* GetKey() const { return m_key; }
  [[nodiscard]] constexpr std::u16string_view GetEnglish() const { return m_english; }

 private:
  const char16_t* m_key;
  std::u16string_view m_english;
};

// Property sheet.
inline constexpr Text kSheetCaption(u"ID_S_PROP_TTL");
inline constexpr Text kLearningTab(u"ID_TAB_2");
inline constexpr Text kAboutTab(u"ID_TAB_3");

// Captions of message boxes.
inline constexpr Text kMessageCaption(u"ID_S_MESSAGE_DW");
inline constexpr Text kConfirmationCaption(u"ID_S_MESSAGE_A");

// Learning page.
inline constexpr Text kContactsLabel(u"ID_S_DIALOG_SET_L1");
inline constexpr Text kRecordButton(u"ID_S_DIALOG_SET_LBR");
inline constexpr Text kPlayButton(u"ID_S_DIALOG_SET_LBP");
inline constexpr Text kDeleteButton(u"ID_S_DIALOG_SET_LBD");
inline constexpr Text kDeleteAllButton(u"ID_S_DIALOG_SET_LBDA");
inline constexpr Text kTestButton(u"ID_S_DIALOG_SET_LBT");
/// Not to be shown by itself: see language::CountLabel.
inline constexpr Text kLearnedCommands(u"ID_S_MESSAGE_L", u"Learned commands: %d");

// Recording a tag.
inline constexpr Text kNothingChosen(u"ID_S_MESSAGE_8");
/// Not to be shown by itself: see language::TagLimitMessage.
inline constexpr Text kTagLimit(u"ID_S_MESSAGE_EX", u"Tags number exceeds limit: ");
inline constexpr Text kTemplateNotCreated(u"ID_S_MESSAGE_7");

// Deleting tags.
inline constexpr Text kTagWillBeDeleted(u"ID_S_MESSAGE_D");
inline constexpr Text kAllTagsWillBeDeleted(u"ID_S_MESSAGE_DALL");
inline constexpr Text kTagInUse(u"ID_S_MESSAGE_U");
inline constexpr Text kStaleWaveNotDeleted(u"ID_S_MESSAGE_10");
inline constexpr Text kStaleTemplateNotDeleted(u"ID_S_MESSAGE_11");
inline constexpr Text kStaleKeyNotDeleted(u"ID_S_MESSAGE_12");

// Folders that cannot be created.
inline constexpr Text kNoProgramFilesFolder(u"ID_S_MESSAGE_14");
inline constexpr Text kNoMakerFolder(u"ID_S_MESSAGE_15");
inline constexpr Text kNoInstallFolder(u"ID_S_MESSAGE_16");
inline constexpr Text kNoWaveFolder(u"ID_S_MESSAGE_17");
inline constexpr Text kNoTemplateFolder(u"ID_S_MESSAGE_18");

// Reaching the contacts.
inline constexpr Text kComFailed(u"ID_S_MESSAGE_D3");
inline constexpr Text kOutlookNotCreated(u"ID_S_MESSAGE_D4");
inline constexpr Text kLogonFailed(u"ID_S_MESSAGE_D5");
inline constexpr Text kItemFailed(u"ID_S_MESSAGE_19");
inline constexpr Text kNullContact(u"ID_S_MESSAGE_20");
inline constexpr Text kRecordedContactFailed(u"ID_S_MESSAGE_D6");
inline constexpr Text kNumberTooLong(u"ID_S_MESSAGE_D22");

// Fields of a contact.
inline constexpr Text kFirstNameFailed(u"ID_S_MESSAGE_D7");
inline constexpr Text kMiddleNameFailed(u"ID_S_MESSAGE_D8");
inline constexpr Text kLastNameFailed(u"ID_S_MESSAGE_D9");
inline constexpr Text kCompanyNameFailed(u"ID_S_MESSAGE_D10");

// Each is indexed by the stored code of the kind of number. The same failure is worded in three
// ways, and the numbers of the keys do not follow the kinds.
inline constexpr auto kNumberFailedWhileLoading = std::to_array<Text>({
    Text(u"ID_S_MESSAGE_D14"),
    Text(u"ID_S_MESSAGE_D13"),
    Text(u"ID_S_MESSAGE_D11"),
    Text(u"ID_S_MESSAGE_D15"),
    Text(u"ID_S_MESSAGE_D16"),
    Text(u"ID_S_MESSAGE_D17"),
    Text(u"ID_S_MESSAGE_D18"),
    Text(u"ID_S_MESSAGE_D19"),
    Text(u"ID_S_MESSAGE_D20"),
    Text(u"ID_S_MESSAGE_D21"),
});
inline constexpr auto kNumberFailedWhileRecording = std::to_array<Text>({
    Text(u"ID_S_MESSAGE_D14"),
    Text(u"ID_S_MESSAGE_D13"),
    Text(u"ID_S_MESSAGE_D11"),
    Text(u"ID_S_MESSAGE_D15"),
    Text(u"ID_S_MESSAGE_D16"),
    Text(u"ID_S_MESSAGE_D17"),
    Text(u"ID_S_MESSAGE_D18", u"Failed to get BusinessFax phone number"),
    Text(u"ID_S_MESSAGE_D19"),
    Text(u"ID_S_MESSAGE_D20"),
    Text(u"ID_S_MESSAGE_D21", u"Failed to get HomeFax phone number"),
});
inline constexpr auto kNumberFailedInTagList = std::to_array<Text>({
    Text(u"ID_S_MESSAGE_D14"),
    Text(u"ID_S_MESSAGE_D13", u"Failed to get Radio phone number"),
    Text(u"ID_S_MESSAGE_D11", u"Failed to get Mobile phone number"),
    Text(u"ID_S_MESSAGE_D15", u"Failed to get Assistant phone number"),
    Text(u"ID_S_MESSAGE_D16", u"Failed to get Business phone number"),
    Text(u"ID_S_MESSAGE_D17", u"Failed to get Business2 phone number"),
    Text(u"ID_S_MESSAGE_D18", u"Failed to get BusinessFax phone number"),
    Text(u"ID_S_MESSAGE_D19"),
    Text(u"ID_S_MESSAGE_D20", u"Failed to get Home2 phone number"),
    Text(u"ID_S_MESSAGE_D21", u"Failed to get HomeFax phone number"),
});

// Test dialog.
inline constexpr Text kTestTitle(u"ID_STTL3");
/// The two paragraphs of language::NoVoiceTagsMessage.
inline constexpr Text kNoVoiceTags(u"ID_S_MESSAGE_NOCOM1");
inline constexpr Text kHowToRecord(u"ID_S_MESSAGE_NOCOM2");

// Base reinitialization.
inline constexpr Text kReinitTitle(u"ID_STTL2");
inline constexpr Text kReinitWaitLine1(u"ID_S_DIALOG_UP_1");
inline constexpr Text kReinitWaitLine2(u"ID_S_DIALOG_UP_2");
inline constexpr Text kReinitTemplateNotCreated(u"ID_S_MESSAGE_7", u"ERROR in CreateFile");
inline constexpr Text kReinitSearchFailed(u"ID_S_MESSAGE_1");

// Texts without a key: the same in every language.

/// The applet's name: in the control panel, as entry 1 of the string table, and as the caption of
/// the boxes that are never translated.
inline constexpr std::u16string_view kAppletName = u"Zedra Voxtrel";
/// Caption of the boxes about the numbers of a contact just chosen; the companion's name.
inline constexpr std::u16string_view kDialerCaption = u"Zedra Dialer";
inline constexpr std::u16string_view kBackPointerMissing = u"error set_Pageone_point";
/// The walk over the recordings failed in a test of no tags. Language files never had a text for
/// it.
inline constexpr std::u16string_view kTestSearchFailed = u"Error in FindNextFile";
/// No recording can be found although there are voice tags.
inline constexpr std::u16string_view kNoRecordings = u"Error";
/// The waiting dialog got no page.
inline constexpr std::u16string_view kReinitWithoutPage = u"Error == 0";

/// Indexed by the stored code of the kind.
inline constexpr auto kNumberFailedOnSelection = std::to_array<std::u16string_view>({
    u"Failed to get car phone number",
    u"Failed to get Radio phone number",
    u"Failed to get Mobile phone number",
    u"Failed to get Assistant phone number",
    u"Failed to get Business phone number",
    u"Failed to get Business2 phone number",
    u"Failed to get BusinessFax phone number",
    u"Failed to get Home phone number",
    u"Failed to get Home2 phone number",
    u"Failed to get HomeFax phone number",
});

/// Entries of the string table, by their number.
inline constexpr int kAppletNameString = 1;

/// Returns an entry of the string table. Returns an empty text if there is none.
[[nodiscard]] constexpr std::u16string_view FindString(int id) {
  return id == kAppletNameString ? kAppletName : std::u16string_view();
}

}  // namespace resources
