#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace resources {

enum class TextArea : std::uint8_t {
  kSheet,
  kEveryPage,
  kLearningPage,
  kRecording,
  kDeleting,
  kFolders,
  kContacts,
  kTestDialog,
  kReinitialization,
};

enum class TextUse : std::uint8_t {
  kShown,      ///< As it stands.
  kFormatted,  ///< Takes part in formatting, so a percent sign has no place in it.
};

/// A key of the language file.
struct LanguageKey {
  TextArea area;
  std::u16string_view key;
  std::u16string_view english;  ///< As an English language file gives it.
  std::u16string_view note;     ///< For translators: where it is shown.
  TextUse use = TextUse::kShown;
};

/// Every key of the system, once. Language files in use are written for these names, and so the
/// gaps between the numbers stay.
///
/// Two English texts differ from the built-in ones: the format of the file drops blanks at the ends
/// of a text, and the count label adds the number by itself.
///
/// No text of a language file has a placeholder such as "%s" or "%d". If a number or a name belongs
/// to a message, the program puts it after the text, and the note of the text says so. The comment
/// above each group says where its texts appear.
inline constexpr auto kLanguageKeys = std::to_array<LanguageKey>({
    // The window with the two tabs.
    {TextArea::kSheet, u"ID_S_PROP_TTL", u"Property", u"Caption of the property sheet"},
    {TextArea::kSheet, u"ID_TAB_2", u"Learning", u"First tab"},
    {TextArea::kSheet, u"ID_TAB_3", u"About", u"Second tab"},

    // The title bars of message boxes. "Attention" is that of the two questions whether to delete.
    {TextArea::kEveryPage, u"ID_S_MESSAGE_DW", u"Zedra Voxtrel",
     u"Caption of message boxes; the product's name"},
    {TextArea::kEveryPage, u"ID_S_MESSAGE_A", u"Attention", u"Caption of the two confirmations"},

    // The first tab. Its labels and buttons do not grow, so each has room for so many letters. The
    // last
    // text stands under the list: "Learned commands: 12".
    {TextArea::kLearningPage, u"ID_S_DIALOG_SET_L1", u"Contacts",
     u"Label above the list of contacts; room for about 10 letters"},
    {TextArea::kLearningPage, u"ID_S_DIALOG_SET_LBR", u"Record",
     u"Button; room for about 12 letters"},
    {TextArea::kLearningPage, u"ID_S_DIALOG_SET_LBP", u"Play",
     u"Button: plays the chosen voice tag; room for about 9 letters"},
    {TextArea::kLearningPage, u"ID_S_DIALOG_SET_LBD", u"Delete",
     u"Button: deletes the chosen voice tag; room for about 9 letters"},
    {TextArea::kLearningPage, u"ID_S_DIALOG_SET_LBDA", u"Delete All",
     u"Button: deletes every voice tag; room for about 9 letters"},
    {TextArea::kLearningPage, u"ID_S_DIALOG_SET_LBT", u"Test",
     u"Button: compares the voice tags with each other; room for about 9 letters"},
    {TextArea::kLearningPage, u"ID_S_MESSAGE_L", u"Learned commands:",
     u"Label under the list of voice tags; a blank and their number follow", TextUse::kFormatted},

    // Message boxes after a press of Record: "Tags number exceeds limit: 100".
    {TextArea::kRecording, u"ID_S_MESSAGE_8", u"Error: oid == 0",
     u"No contact or no telephone number is chosen"},
    {TextArea::kRecording, u"ID_S_MESSAGE_EX", u"Tags number exceeds limit:\u00A0",
     u"The number 100 follows at once; the text ends with a no-break space (U+00A0), since other "
     u"blanks at the end are dropped"},
    {TextArea::kRecording, u"ID_S_MESSAGE_7", u"Error in CreateFile",
     u"The file for the template of a voice tag cannot be made"},

    // Message boxes after a press of Delete or Delete All. The last three appear while the page
    // opens,
    // when it removes a voice tag whose contact is gone.
    {TextArea::kDeleting, u"ID_S_MESSAGE_D", u"The tag will be deleted!",
     u"Confirmation with OK and Cancel"},
    {TextArea::kDeleting, u"ID_S_MESSAGE_DALL", u"All voice tags will be deleted!",
     u"Confirmation with OK and Cancel"},
    {TextArea::kDeleting, u"ID_S_MESSAGE_U", u"The tag is in use. Try to delete it later.",
     u"The dialer holds a file of the voice tag open"},
    {TextArea::kDeleting, u"ID_S_MESSAGE_10", u"Error in 11",
     u"The contact of a voice tag is gone, and its recording cannot be deleted"},
    {TextArea::kDeleting, u"ID_S_MESSAGE_11", u"Error in 22",
     u"The contact of a voice tag is gone, and its template cannot be deleted"},
    {TextArea::kDeleting, u"ID_S_MESSAGE_12", u"Error in 33",
     u"The contact of a voice tag is gone, and its settings cannot be deleted"},

    // Message boxes while the program starts. It ends after any of them.
    {TextArea::kFolders, u"ID_S_MESSAGE_14", u"Can't create \\Program Files",
     u"The program ends after this message; the names of folders stay as they are"},
    {TextArea::kFolders, u"ID_S_MESSAGE_15", u"Can't create \\Program Files\\Zedra Tech.",
     u"The same"},
    {TextArea::kFolders, u"ID_S_MESSAGE_16",
     u"Can't create \\Program Files\\Zedra Tech.\\Zedra Voxtrel", u"The same"},
    {TextArea::kFolders, u"ID_S_MESSAGE_17",
     u"Can't create \\Program Files\\Zedra Tech.\\Zedra Voxtrel\\Voxtrel_wav", u"The same"},
    {TextArea::kFolders, u"ID_S_MESSAGE_18",
     u"Can't create \\Program Files\\Zedra Tech.\\Zedra Voxtrel\\Voxtrel_stor", u"The same"},

    // Message boxes while contacts are read: when the first tab opens, when a contact is recorded,
    // and
    // when the list of voice tags is filled.
    {TextArea::kContacts, u"ID_S_MESSAGE_D3", u"Failed to initialize COM",
     u"The way to the contacts cannot be opened, first step"},
    {TextArea::kContacts, u"ID_S_MESSAGE_D4", u"Failed to create instance of Pocket Outlook",
     u"The second step, after three attempts"},
    {TextArea::kContacts, u"ID_S_MESSAGE_D5", u"Failed to logon to Pocket Outlook",
     u"The third step"},
    {TextArea::kContacts, u"ID_S_MESSAGE_19", u"Error in pItems->Item",
     u"A contact of the list cannot be reached"},
    {TextArea::kContacts, u"ID_S_MESSAGE_20", u"pContact == 0!",
     u"A contact of the list is empty; it is skipped"},
    {TextArea::kContacts, u"ID_S_MESSAGE_D6", u"Failed to get IContact in OnRecord",
     u"The contact of a new voice tag cannot be read again"},
    {TextArea::kContacts, u"ID_S_MESSAGE_D7", u"Failed to get first name", u"A field of a contact"},
    {TextArea::kContacts, u"ID_S_MESSAGE_D8", u"Failed to get middle name",
     u"A field of a contact"},
    {TextArea::kContacts, u"ID_S_MESSAGE_D9", u"Failed to get last name", u"A field of a contact"},
    {TextArea::kContacts, u"ID_S_MESSAGE_D10", u"Failed to get CompanyName",
     u"A field of a contact"},
    {TextArea::kContacts, u"ID_S_MESSAGE_D11", u"Failed to get mobile phone number",
     u"A field of a contact"},
    {TextArea::kContacts, u"ID_S_MESSAGE_D13", u"Failed to get radio phone number",
     u"A field of a contact: two-way radio"},
    {TextArea::kContacts, u"ID_S_MESSAGE_D14", u"Failed to get car phone number",
     u"A field of a contact"},
    {TextArea::kContacts, u"ID_S_MESSAGE_D15", u"Failed to get assistant phone number",
     u"A field of a contact: the number of the person's assistant"},
    {TextArea::kContacts, u"ID_S_MESSAGE_D16", u"Failed to get business phone number",
     u"A field of a contact"},
    {TextArea::kContacts, u"ID_S_MESSAGE_D17", u"Failed to get business2 phone number",
     u"A field of a contact: the second number at work"},
    {TextArea::kContacts, u"ID_S_MESSAGE_D18", u"Failed to get business fax number",
     u"A field of a contact"},
    {TextArea::kContacts, u"ID_S_MESSAGE_D19", u"Failed to get home phone number",
     u"A field of a contact"},
    {TextArea::kContacts, u"ID_S_MESSAGE_D20", u"Failed to get home2 phone number",
     u"A field of a contact: the second number at home"},
    {TextArea::kContacts, u"ID_S_MESSAGE_D21", u"Failed to get home fax number",
     u"A field of a contact"},
    {TextArea::kContacts, u"ID_S_MESSAGE_D22", u"Phone number is too long",
     u"A telephone number of more than 96 characters is left out"},

    // The window that the button Test opens. The two paragraphs of the message have an empty line
    // between them.
    {TextArea::kTestDialog, u"ID_STTL3", u"Test results", u"Title in the dialog",
     TextUse::kFormatted},
    {TextArea::kTestDialog, u"ID_S_MESSAGE_NOCOM1", u"There are no voice tags.",
     u"First paragraph of a message"},
    {TextArea::kTestDialog, u"ID_S_MESSAGE_NOCOM2",
     u"To record voice tags select Start -> Settings -> System tab -> Zedra Voxtrel.",
     u"Second paragraph of the same message; the names are those of the device's own menus"},

    // The window in which the user waits after an update, and its message box.
    {TextArea::kReinitialization, u"ID_STTL2", u"Base reinitialization...",
     u"Title in the dialog that waits while every voice tag is computed again; room for about 30 "
     u"letters",
     TextUse::kFormatted},
    {TextArea::kReinitialization, u"ID_S_DIALOG_UP_1", u"Please wait a few",
     u"First line of two; the sentence goes on in the next text"},
    {TextArea::kReinitialization, u"ID_S_DIALOG_UP_2", u"seconds...", u"Second line of two"},
    {TextArea::kReinitialization, u"ID_S_MESSAGE_1", u"ERROR in FindNextFile",
     u"The search for recordings failed on its way and goes on"},
});

/// Returns the row of `key`. Returns null if the system has no such key.
[[nodiscard]] constexpr const LanguageKey* FindLanguageKey(std::u16string_view key) {
  for (const LanguageKey& row : kLanguageKeys) {
    if (row.key == key) {
      return &row;
    }
  }
  return nullptr;
}

}  // namespace resources
