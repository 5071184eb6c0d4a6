#pragma once

#include <string_view>

namespace resources {

// What goes wrong with the voice tags, as the command line and the window of voice tags report it.
// Each is a part of a sentence: it begins with a small letter and has no full stop, and another
// part may stand before it with a colon (kWholeSentence makes a sentence of it). "%1" and "%2" are
// replaced.

/// "%1" is such a part, "%2" a number that a developer knows.
inline constexpr std::u16string_view kWithCode = u"%1 (code %2)";

// The folder of the voice tags.
inline constexpr std::u16string_view kNoRootNamed =
    u"there is no folder for the voice tags, since HOME names none";
inline constexpr std::u16string_view kRootIsNoFolder =
    u"%1 is no folder, so it cannot hold voice tags";
inline constexpr std::u16string_view kLinkNotWritten = u"%1 is a link to %2: not written";
inline constexpr std::u16string_view kLinkNotUsed =
    u"%1 is a link to %2: not used, and neither are the settings";
inline constexpr std::u16string_view kUnusableKey =
    u"another program made a key or value that cannot be used: %1";
inline constexpr std::u16string_view kTagsHeld =
    u"the tags are in use by another Voxtrel; close it and try again";

// One tag.
inline constexpr std::u16string_view kEntryNotRead = u"the entry of tag %1 cannot be read: %2";
inline constexpr std::u16string_view kContactOfTagNotRead = u"the contact of tag %1 cannot be read";
inline constexpr std::u16string_view kTagNameTooLong =
    u"the name %1 is too long for a tag; the list of the window ends there";
inline constexpr std::u16string_view kTagNotJudged =
    u"voice tag %1 cannot be judged, since its recording or its template cannot be read";

// The contacts.
inline constexpr std::u16string_view kTagsWithoutContacts =
    u"the tags are used without their contacts: %1";
inline constexpr std::u16string_view kContactsNotRead = u"the contacts cannot be read";
inline constexpr std::u16string_view kSettingsNotUsed =
    u"the settings in %1 cannot be read or written";
/// "%1" of the next three is nothing, or a reason in brackets with a space before it.
inline constexpr std::u16string_view kDesktopBooksSilent =
    u"the desktop's address books do not answer%1";
inline constexpr std::u16string_view kBookNotRead =
    u"the chosen address book is missing or cannot be read to its end%1";
inline constexpr std::u16string_view kNoContactsFound =
    u"there are no contacts: the desktop has none%1, and there are none in %2";
inline constexpr std::u16string_view kTagsOfOtherContacts =
    u"voice tags belong to contacts that this address book does not have; nothing was changed. "
    u"Choose the address book they were recorded with, or delete the tags";

// Why a file was not opened, made or written.
inline constexpr std::u16string_view kFolderMissing = u"there is no such folder";
inline constexpr std::u16string_view kFileMissing = u"there is no such file";
inline constexpr std::u16string_view kFileIsFolder = u"it is a folder";
inline constexpr std::u16string_view kFileNotReadable =
    u"it is no ordinary file, or you have no right to read it";
inline constexpr std::u16string_view kFileExists = u"there is a file already";
inline constexpr std::u16string_view kFileProtected = u"it is protected, or is no file";
inline constexpr std::u16string_view kFileOpenElsewhere = u"another program has it open";
inline constexpr std::u16string_view kDiskFull = u"the disk is full";
inline constexpr std::u16string_view kDiskReadOnly = u"the disk takes no writes";
inline constexpr std::u16string_view kFileIsLink =
    u"it is a symbolic link, and nothing is written through one";
inline constexpr std::u16string_view kFileFails = u"it cannot be read or written";

// Why nothing was played.
inline constexpr std::u16string_view kSoundFileNotOpened =
    u"the file could not be opened: it is missing, in use or protected";
inline constexpr std::u16string_view kSoundFileTooLong =
    u"the length of the file is not known, or is 4 GB or more";
inline constexpr std::u16string_view kSoundFileTooShort =
    u"the file is shorter than the 44 bytes of a wave header";
inline constexpr std::u16string_view kSoundFileNoRiff =
    u"the file does not begin with \"RIFF\", so it is no wave file";
inline constexpr std::u16string_view kSoundFileNoWave =
    u"there is no \"WAVE\" in the header, so it is no wave file";
inline constexpr std::u16string_view kSoundFileNotPcm = u"the samples are not PCM (format tag 1)";
inline constexpr std::u16string_view kSoundFileNoData =
    u"there are no samples that can be played: the file has no \"data\", or less of it than it "
    u"says, or a header without rate, channels or block length";
inline constexpr std::u16string_view kSpeakerFileNotMade =
    u"the speaker file could not be made, or takes no such format";
inline constexpr std::u16string_view kSpeakerNotOpened =
    u"the loudspeaker could not be opened: there is no sound server, it has no output, or it takes "
    u"no such format";
inline constexpr std::u16string_view kNoMemoryToPlay = u"there is not enough memory to play it";
inline constexpr std::u16string_view kSpeakerFileNotWritten =
    u"the speaker file could not be written";
inline constexpr std::u16string_view kSpeakerRefused = u"the loudspeaker did not take the sound";
inline constexpr std::u16string_view kNotHeardToItsEnd =
    u"it was not heard to its end: the loudspeaker or the sound server went away or stands still";
inline constexpr std::u16string_view kSoundNotReady =
    u"the buffer could not be prepared: the file has a header and no samples";
inline constexpr std::u16string_view kSoundFileNotRead = u"the file could not be read to its end";
inline constexpr std::u16string_view kUnknownReason = u"an unknown reason";

// Why nothing was recorded.
inline constexpr std::u16string_view kMicrophoneFileOtherFormat =
    u"%1 is no wave file of 11,025 Hz, mono, 16 bit";
inline constexpr std::u16string_view kMicrophoneFileNotRead = u"%1 could not be read";
inline constexpr std::u16string_view kMicrophoneNotOpened =
    u"the microphone could not be opened for 11,025 Hz, mono, 16 bit";
inline constexpr std::u16string_view kNoMemoryToRecord =
    u"there is not enough memory for the recording";
inline constexpr std::u16string_view kMicrophoneTookNoBuffer =
    u"the microphone did not take the buffer";
inline constexpr std::u16string_view kMicrophoneNotStarted = u"the microphone could not be started";
inline constexpr std::u16string_view kMicrophoneLost =
    u"the microphone was lost before the recording was whole: it was unplugged, or the sound "
    u"server ended";

// The trash.
inline constexpr std::u16string_view kTrashNotRead = u"the trash cannot be read";
inline constexpr std::u16string_view kPersonElsewhere = u"its person is in another address book";
inline constexpr std::u16string_view kPersonGone = u"its person is no longer in the address book";
inline constexpr std::u16string_view kNotRestored = u"%1 was not restored: %2";
inline constexpr std::u16string_view kEarlierTagInTrash =
    u"the earlier voice tag is in the trash and could not be put back";
inline constexpr std::u16string_view kTagOfThatName = u"there is a tag or a file of that name";
inline constexpr std::u16string_view kNoRoomForTag =
    u"there are %1 tags already, which is the most there can be";
inline constexpr std::u16string_view kTagFoldersMissing =
    u"a folder for recordings or templates is missing and cannot be made";
inline constexpr std::u16string_view kTagPartsNotWritten =
    u"its files or its entry cannot be written";

// Backups. "%1" is the name of the file, or that of a tag.
inline constexpr std::u16string_view kTagFilesNotRead =
    u"the recording or the template of tag %1 cannot be read, or is in use";
inline constexpr std::u16string_view kLanguageFileNotRead = u"the language file cannot be read";
inline constexpr std::u16string_view kFileNotRead = u"it cannot be read";
inline constexpr std::u16string_view kNoBackup = u"it is no backup of Voxtrel";
inline constexpr std::u16string_view kBackupOfLaterVersion =
    u"a later version of Voxtrel made this backup; nothing was changed";
inline constexpr std::u16string_view kBackupDamaged = u"the backup is damaged; nothing was changed";
inline constexpr std::u16string_view kNoBackupInRoot =
    u"%1: it is no backup, and lies in the folder of the voice tags";
inline constexpr std::u16string_view kReplaceNoBackup = u"%1 is no backup. Replace it?";
inline constexpr std::u16string_view kBackupCaption = u"Backup";
inline constexpr std::u16string_view kNoBackupStays = u"%1: it is no backup, and stays as it is";
inline constexpr std::u16string_view kSettingsNotReadNow =
    u"the settings or the language file cannot be read now";
inline constexpr std::u16string_view kTagNotReadNow = u"tag %1 cannot be read now, or is in use";
inline constexpr std::u16string_view kNothingToBackUp =
    u"there is nothing to back up: there is no folder %1";
inline constexpr std::u16string_view kTagLeftOut =
    u"tag %1 of another program was left out: no backup can hold its name";

// What the settings answer.
inline constexpr std::u16string_view kNoSuchKey = u"the settings store holds no such key or value";
inline constexpr std::u16string_view kBadKeyOrLength =
    u"the settings store takes no such name or length";
inline constexpr std::u16string_view kStoreBusy = u"another program is using the settings store";
inline constexpr std::u16string_view kStoreReadOnly = u"the settings store cannot be written to";
inline constexpr std::u16string_view kStoreDamaged =
    u"the settings store is damaged; it was left as it is";
inline constexpr std::u16string_view kStoreIsLink =
    u"it, or a file next to it, is a symbolic link, through which nothing is read or written";
inline constexpr std::u16string_view kStoreIsNewer =
    u"the settings store was made by a later version of this program; it was left as it is";
inline constexpr std::u16string_view kStoreNotReached = u"the settings store cannot be reached";

// What the check of the store finds.
inline constexpr std::u16string_view kSettingsUnreadable = u"the settings cannot be read";
inline constexpr std::u16string_view kFolderNotListed = u"not all files of the folder can be found";
inline constexpr std::u16string_view kNothingSaidOfContacts =
    u"the contacts cannot be read, so nothing is said about them";
inline constexpr std::u16string_view kTemplatesOfOtherVersion =
    u"the templates were made by another version; they are computed again when the tags are opened "
    u"next";
inline constexpr std::u16string_view kMoreThan100Tags =
    u"there are more than 100 tags; only the first 100 are compared";
inline constexpr std::u16string_view kTagNameIsNoNumber =
    u"the name is not a number, as the names of recorded tags are";
inline constexpr std::u16string_view kEntryWithoutContact = u"the entry names no contact";
inline constexpr std::u16string_view kEntryWithoutKind =
    u"the entry names no kind of telephone number";
inline constexpr std::u16string_view kContactOfTagGone = u"the contact does not exist any more";
inline constexpr std::u16string_view kRecordingMissing = u"there is no recording";
inline constexpr std::u16string_view kRecordingNotProcessed = u"the recording cannot be processed";
inline constexpr std::u16string_view kRecordingTooShort =
    u"the recording is too short to hold a spoken name";
inline constexpr std::u16string_view kRecordingIsSilent = u"the recording is silent";
inline constexpr std::u16string_view kTemplateMissing = u"there is no template";
inline constexpr std::u16string_view kTemplateEndsEarly = u"the template file ends too early";
inline constexpr std::u16string_view kTemplateDisagrees =
    u"the counts in the template do not agree";
inline constexpr std::u16string_view kTemplateNotRead = u"the template cannot be read";
inline constexpr std::u16string_view kTemplateOutdated =
    u"the template is not what the recording gives; `voxtrel reinit --force` computes all of them "
    u"again";
inline constexpr std::u16string_view kRecordingOfNoTag = u"there is a recording and no tag";
inline constexpr std::u16string_view kTemplateOfNoTag = u"there is a template and no tag";
inline constexpr std::u16string_view kFileLeftUnfinished =
    u"a program that was ended early left this file";

// Why a template could not be made again.
inline constexpr std::u16string_view kNothingToRepairFrom =
    u"the recording is missing or cannot be processed";
inline constexpr std::u16string_view kTemplateFolderMissing =
    u"the folder Voxtrel_stor is missing and cannot be made";
inline constexpr std::u16string_view kTemplateNotWritten =
    u"the template cannot be written; there is no room on the device, another program has the file "
    u"open, or it may not be written";

// Why a tag whose contact has gone, or a file of no tag, could not go to the trash.
inline constexpr std::u16string_view kOrphanStays =
    u"the file is in use, or the trash cannot take it";
inline constexpr std::u16string_view kStaleRecordingInUse = u"the recording is in use";
inline constexpr std::u16string_view kStaleTemplateInUse = u"the template is in use";
inline constexpr std::u16string_view kStaleEntryStays = u"the entry cannot be deleted";
inline constexpr std::u16string_view kTrashTakesNoTag = u"the trash cannot take the tag";
/// Follows a finding.
inline constexpr std::u16string_view kTagIsInTrashNow = u"; the tag is in the trash now";

}  // namespace resources
