#pragma once

#include <string_view>

namespace resources {

// Texts of the set-up page of the Voice tags window. "%1" and so on are replaced. "&" stands before
// the letter that presses a button.

inline constexpr std::u16string_view kSetupTitle = u"Set-up";

// Address book. "%1" is a file or folder, or a count.
inline constexpr std::u16string_view kAddressBook = u"Address book";
inline constexpr std::u16string_view kReadingContacts = u"Reading the contacts…";
inline constexpr std::u16string_view kContactsOfDesktop =
    u"The people whom you can teach are those of the desktop's address books.";
inline constexpr std::u16string_view kContactsOfFile =
    u"The people whom you can teach are those of %1.";
inline constexpr std::u16string_view kContactsOfDefault =
    u"You have chosen no address book yet. So the people whom you can teach are those of the "
    u"desktop's address books, or, if it has none, those of %1.";
inline constexpr std::u16string_view kOnePerson = u"1 person with a telephone number was found.";
inline constexpr std::u16string_view kManyPeople = u"%1 people with telephone numbers were found.";
inline constexpr std::u16string_view kNoPerson =
    u"Nobody with a telephone number was found. Add numbers to the people whom you want to call.";
inline constexpr std::u16string_view kOneRemark = u"1 place could not be read:";
inline constexpr std::u16string_view kManyRemarks = u"%1 places could not be read:";
/// Of very many places, only the first are kept. "%1" is how many these are.
inline constexpr std::u16string_view kVeryManyRemarks = u"More than %1 places could not be read:";
inline constexpr std::u16string_view kShowAllPlaces = u"Show %1 &more";
inline constexpr std::u16string_view kShowFewPlaces = u"Show &fewer";
inline constexpr std::u16string_view kBookRule =
    u"Each voice tag belongs to a person. So another address book is only taken if it has the "
    u"people of all your voice tags.";
inline constexpr std::u16string_view kUseDesktopBook = u"Use the &desktop's address books";
inline constexpr std::u16string_view kChooseBookFile = u"Choose a &vCard file…";
inline constexpr std::u16string_view kChooseBookTitle = u"Choose a vCard file";
inline constexpr std::u16string_view kBookFilter = u"vCard files (*.vcf *.vcard)";
inline constexpr std::u16string_view kDropBook = u"You can also drop such a file on this window.";
inline constexpr std::u16string_view kBookIsGiven =
    u"This window was started with an address book of its own. To choose another one, start it "
    u"without.";
inline constexpr std::u16string_view kBookChosen = u"The address book was chosen.";
inline constexpr std::u16string_view kOneFileOnly = u"Drop one vCard file, or one folder of them.";

// Why there are no contacts. "%1" is what the system says, or a file.
inline constexpr std::u16string_view kNoBooksAnswer = u"The desktop's address books do not answer.";
inline constexpr std::u16string_view kBookUnreadable =
    u"It is missing, holds no contacts, or cannot be read to its end.";
inline constexpr std::u16string_view kBookOfOthers =
    u"Voice tags belong to people whom it does not have. So nothing was changed. Choose the "
    u"address book with which you taught them.";
inline constexpr std::u16string_view kNoBookChosen =
    u"There are no contacts yet. Add people to the desktop's address book, or choose a vCard file.";
inline constexpr std::u16string_view kContactsFailed = u"The contacts cannot be read.";
inline constexpr std::u16string_view kSystemSays = u"The system says: %1";
inline constexpr std::u16string_view kBookNotTaken = u"%1 was not chosen.";
inline constexpr std::u16string_view kDesktopNotTaken =
    u"The desktop's address books were not chosen.";

// Microphone.
inline constexpr std::u16string_view kMicrophone = u"Microphone";
inline constexpr std::u16string_view kInputToUse = u"&Record from:";
inline constexpr std::u16string_view kServersInput = u"What the desktop uses";
/// "%1" is the name of the input.
inline constexpr std::u16string_view kServersInputIs = u"What the desktop uses (%1)";
inline constexpr std::u16string_view kInputAway = u"%1 (not connected)";
inline constexpr std::u16string_view kInputRule =
    u"Your choice holds for Voxtrel only. Other programs keep their microphone.";
inline constexpr std::u16string_view kNoInput =
    u"No microphone was found. Plug one in, or switch it on in the desktop's sound settings. It "
    u"appears here by itself.";
inline constexpr std::u16string_view kSaySomething =
    u"Say something: the bar shows how loud it is.";
inline constexpr std::u16string_view kInputIsFile = u"The recording %1 stands for the microphone.";
inline constexpr std::u16string_view kInputNotKept =
    u"The choice could not be stored: the settings cannot be written.";

// Language.
inline constexpr std::u16string_view kLanguage = u"Language";
inline constexpr std::u16string_view kSheetLanguage = u"&Language of the settings sheet:";
inline constexpr std::u16string_view kOwnLanguageFile = u"A language file of your own";
inline constexpr std::u16string_view kLanguageRule =
    u"A sheet that is open shows its new language when you open it again. This window follows the "
    u"language of your desktop.";
inline constexpr std::u16string_view kNoLanguages = u"No language files are installed.";
inline constexpr std::u16string_view kReplaceOwnLanguage =
    u"The sheet uses a language file that is not one of ours. Do you want to replace it? Your file "
    u"is kept next to it.";
inline constexpr std::u16string_view kReplace = u"&Replace";
/// "%1" is a language.
inline constexpr std::u16string_view kLanguageChosen = u"The settings sheet is in %1 now.";
/// "%1" is a file.
inline constexpr std::u16string_view kOwnLanguageKept = u"Your language file is now %1.";
inline constexpr std::u16string_view kLanguageUnreadable =
    u"The language was not changed: the language file cannot be read.";
inline constexpr std::u16string_view kLanguageInUse =
    u"The language was not changed: another program is reading the language file. Try again.";
inline constexpr std::u16string_view kLanguageNotWritten =
    u"The language was not changed: the language file cannot be written.";

// Check and repair. "%1" is a count, a tag, a problem.
inline constexpr std::u16string_view kCheck = u"Check and repair";
inline constexpr std::u16string_view kCheckAdvice =
    u"Looks whether each voice tag is whole and matches its recording.";
inline constexpr std::u16string_view kCheckNow = u"&Check";
inline constexpr std::u16string_view kRepairNow = u"Re&pair";
inline constexpr std::u16string_view kChecking = u"Checking…";
inline constexpr std::u16string_view kRepairing = u"Repairing…";
inline constexpr std::u16string_view kStoreIsWhole = u"Nothing is wrong with the voice tags.";
inline constexpr std::u16string_view kNothingToCheck = u"There are no voice tags to check.";
inline constexpr std::u16string_view kOneProblem = u"1 problem was found:";
inline constexpr std::u16string_view kManyProblems = u"%1 problems were found:";
inline constexpr std::u16string_view kAllRepaired = u"Everything was repaired.";
inline constexpr std::u16string_view kOneProblemLeft = u"1 problem is left:";
inline constexpr std::u16string_view kManyProblemsLeft = u"%1 problems are left:";
inline constexpr std::u16string_view kProblemOfTag = u"%1: %2.";
inline constexpr std::u16string_view kProblemRepaired = u"%1 Repaired.";
inline constexpr std::u16string_view kProblemNotRepaired = u"%1 Not repaired: %2.";

// The dialer's serial port.
inline constexpr std::u16string_view kSerialPort = u"The dialer's serial port";
/// "%1" is the port, "%2" its device.
inline constexpr std::u16string_view kPortInUse = u"Port %1 is %2.";
inline constexpr std::u16string_view kPortInUseAway = u"Port %1 is not connected.";
inline constexpr std::u16string_view kPortInUseOnly = u"Port %1";
/// "%1" is the rate, "%2" the data bits, "%3" the stop bits, "%4" the flow control.
inline constexpr std::u16string_view kLineSettings =
    u"Speed: %1 baud. Data bits: %2. Stop bits: %3. Flow control: %4.";
inline constexpr std::u16string_view kPortsHere = u"Ports of this machine:";
/// "%1" is a port, "%2" its device.
inline constexpr std::u16string_view kPortHere = u"%1 %2";
inline constexpr std::u16string_view kNoPortsHere = u"This machine has no serial port now.";
inline constexpr std::u16string_view kChangePort = u"C&hange…";
inline constexpr std::u16string_view kPortUnreadable = u"The settings of the port cannot be read.";

// Backup and restore. "%1" is a file or a count.
inline constexpr std::u16string_view kBackup = u"Backup";
inline constexpr std::u16string_view kBackupAdvice =
    u"One file with your voice tags, their recordings, and your settings. From it you get them "
    u"back "
    u"on this machine or on another one.";
inline constexpr std::u16string_view kMakeBackup = u"&Back up…";
inline constexpr std::u16string_view kRestoreBackup = u"R&estore…";
inline constexpr std::u16string_view kBackupFilter = u"Backups (*.tar)";
/// "%1" is the date.
inline constexpr std::u16string_view kBackupName = u"voice-tags-%1.tar";
inline constexpr std::u16string_view kBackingUp = u"Backing up…";
inline constexpr std::u16string_view kRestoring = u"Restoring…";
inline constexpr std::u16string_view kBackedUpOne = u"1 voice tag was backed up to %1.";
inline constexpr std::u16string_view kBackedUpMany = u"%1 voice tags were backed up to %2.";
inline constexpr std::u16string_view kReplaceTag =
    u"1 voice tag here is not as in the backup. Do you want to replace it? What is replaced goes "
    u"to "
    u"the trash.";
inline constexpr std::u16string_view kReplaceTags =
    u"%1 voice tags here are not as in the backup. Do you want to replace them? What is replaced "
    u"goes to the trash.";
inline constexpr std::u16string_view kReplaceSettings =
    u"The settings here are not as in the backup. Do you want to replace them? What is replaced "
    u"goes to the trash.";
inline constexpr std::u16string_view kKeepMine = u"&Keep mine";
inline constexpr std::u16string_view kRestoredNothing = u"All of the backup is here already.";
inline constexpr std::u16string_view kRestoredOne = u"1 voice tag came back.";
inline constexpr std::u16string_view kRestoredMany = u"%1 voice tags came back.";
inline constexpr std::u16string_view kKeptOne = u"1 voice tag stays as it is here.";
inline constexpr std::u16string_view kKeptMany = u"%1 voice tags stay as they are here.";
inline constexpr std::u16string_view kLeftOutOne =
    u"1 voice tag did not come back: its person is in no address book here, it is in use, or there "
    u"is no room.";
inline constexpr std::u16string_view kLeftOutMany =
    u"%1 voice tags did not come back: their people are in no address book here, they are in use, "
    u"or there is no room.";

}  // namespace resources
