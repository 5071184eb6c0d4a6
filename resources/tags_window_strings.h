#pragma once

#include <string_view>

namespace resources {

// Texts of the Voice tags window: its header, its list, its menus. "%1" and "%2" are replaced. "&"
// stands before the letter that presses a button or an item of a menu.

inline constexpr std::u16string_view kTagsTitle = u"Voice tags";
inline constexpr std::u16string_view kBack = u"Back";
inline constexpr std::u16string_view kMenu = u"Menu";

// The columns of the list.
inline constexpr std::u16string_view kNameColumn = u"Name";
inline constexpr std::u16string_view kNumberColumn = u"Number";
inline constexpr std::u16string_view kKindColumn = u"Kind";
inline constexpr std::u16string_view kTaughtColumn = u"Taught";
inline constexpr std::u16string_view kLengthColumn = u"Length";
inline constexpr std::u16string_view kQualityColumn = u"Quality";
inline constexpr std::u16string_view kNearestColumn = u"Most alike";

// Kinds of numbers.
inline constexpr std::u16string_view kMobileKind = u"Mobile";
inline constexpr std::u16string_view kRadioKind = u"Radio";
inline constexpr std::u16string_view kCarKind = u"Car";
inline constexpr std::u16string_view kAssistantKind = u"Assistant";
inline constexpr std::u16string_view kBusinessKind = u"Business";
inline constexpr std::u16string_view kBusiness2Kind = u"Business 2";
inline constexpr std::u16string_view kBusinessFaxKind = u"Business fax";
inline constexpr std::u16string_view kHomeKind = u"Home";
inline constexpr std::u16string_view kHome2Kind = u"Home 2";
inline constexpr std::u16string_view kHomeFaxKind = u"Home fax";

// What the list says of a tag.
inline constexpr std::u16string_view kSeconds = u"%1 s";
inline constexpr std::u16string_view kTaughtOn = u"Taught on %1";
/// "%1" is a name, "%2" a number such as 0.43.
inline constexpr std::u16string_view kMostAlike =
    u"Most alike: %1, at a distance of %2. 0 is the same, 2 the most different.";
inline constexpr std::u16string_view kContactIsGone =
    u"This contact is no longer in the address book.";
inline constexpr std::u16string_view kIsPlaying = u"Playing";

// The search.
inline constexpr std::u16string_view kSearch = u"Search name, number or kind";
inline constexpr std::u16string_view kSortBy = u"Sort by";
inline constexpr std::u16string_view kSortUpwards = u"Smallest first";
inline constexpr std::u16string_view kSortDownwards = u"Largest first";
/// "%1" is what was typed.
inline constexpr std::u16string_view kNoMatch = u"No voice tag matches “%1”.";
inline constexpr std::u16string_view kClearSearch = u"Show all voice tags";
inline constexpr std::u16string_view kOneMatch = u"1 voice tag found";
inline constexpr std::u16string_view kManyMatches = u"%1 voice tags found";

// What can be done with tags.
inline constexpr std::u16string_view kTeachName = u"&Teach a name";
inline constexpr std::u16string_view kPlay = u"&Play";
inline constexpr std::u16string_view kStop = u"Sto&p";
inline constexpr std::u16string_view kTeachAgain = u"Teach a&gain";
inline constexpr std::u16string_view kDelete = u"&Delete";
inline constexpr std::u16string_view kSelectAll = u"Select &all";
inline constexpr std::u16string_view kSelectSeveral = u"Select &several";
inline constexpr std::u16string_view kUndo = u"&Undo";
inline constexpr std::u16string_view kClose = u"Close";
inline constexpr std::u16string_view kOneDeleted = u"Voice tag deleted: %1";
inline constexpr std::u16string_view kManyDeleted = u"%1 voice tags deleted";
inline constexpr std::u16string_view kOneRestored = u"The voice tag is back.";
inline constexpr std::u16string_view kManyRestored = u"The voice tags are back.";
inline constexpr std::u16string_view kManySelected = u"%1 voice tags are selected.";

// The list has nothing to show.
inline constexpr std::u16string_view kReadingTags = u"Reading the voice tags…";
inline constexpr std::u16string_view kNoTags = u"No voice tags yet";
inline constexpr std::u16string_view kNoTagsAdvice =
    u"Choose a person and say the name. From then on the dialer knows it by your voice.";
inline constexpr std::u16string_view kTagsUnreadable = u"The voice tags cannot be read";
inline constexpr std::u16string_view kTryAgain = u"Try &again";
inline constexpr std::u16string_view kPeopleUnreadable = u"There is nobody to teach yet";
inline constexpr std::u16string_view kOpenSetup = u"Open &set-up";

// The page of the deleted tags.
inline constexpr std::u16string_view kTrashTitle = u"Deleted tags";
inline constexpr std::u16string_view kTrashAdvice =
    u"Deleted voice tags are kept for 30 days. Choose those that you want back.";
inline constexpr std::u16string_view kReadingTrash = u"Reading the deleted voice tags…";
inline constexpr std::u16string_view kTrashIsEmpty = u"No deleted voice tags";
inline constexpr std::u16string_view kTrashIsEmptyAdvice =
    u"What you delete is kept here for 30 days.";
inline constexpr std::u16string_view kTrashUnreadable = u"The deleted voice tags cannot be read";
inline constexpr std::u16string_view kRestore = u"&Restore";
/// "%1" is a day and a time.
inline constexpr std::u16string_view kDeletedOn = u"Deleted on %1";
inline constexpr std::u16string_view kCannotReturn = u"Cannot be restored now";

// The menu.
inline constexpr std::u16string_view kLikenessItem = u"&Likeness of names";
inline constexpr std::u16string_view kTrashItem = u"D&eleted tags";
inline constexpr std::u16string_view kSetupItem = u"&Set-up";
inline constexpr std::u16string_view kReload = u"&Read again";
inline constexpr std::u16string_view kControlPanelItem = u"&Control panel";
inline constexpr std::u16string_view kSheetItem = u"Settings s&heet";
inline constexpr std::u16string_view kHelpItem = u"&Help";
inline constexpr std::u16string_view kAboutItem = u"A&bout";
inline constexpr std::u16string_view kCloseItem = u"&Close the window";
inline constexpr std::u16string_view kNotStarted = u"%1 could not be started.";
/// "%1" is the version.
inline constexpr std::u16string_view kAboutText =
    u"Zedra Voxtrel %1\n\nTeaches the voice dialer the names of your contacts.";

}  // namespace resources
