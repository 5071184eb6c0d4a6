#pragma once

#include <string_view>

namespace resources {

// Texts of the pages that teach a name and that show which names are alike. "%1" is replaced.

// How loud the microphone hears.
inline constexpr std::u16string_view kLevelMeter = u"Level of the microphone";
inline constexpr std::u16string_view kLevelNothing = u"Nothing is heard.";
inline constexpr std::u16string_view kLevelSoft = u"Too soft";
inline constexpr std::u16string_view kLevelGood = u"Good";
inline constexpr std::u16string_view kLevelLoud = u"Too loud";

// The picture of a recording. "%1" of "%2" seconds are kept, from second "%3" on.
inline constexpr std::u16string_view kWavePicture = u"The recording";
inline constexpr std::u16string_view kKeptPart =
    u"%1 of %2 seconds are kept, from second %3 on. They are marked.";

// Who is taught.
inline constexpr std::u16string_view kPeople = u"People";
inline constexpr std::u16string_view kSearchPeople = u"Search name, company or number";
inline constexpr std::u16string_view kIsTaught = u"Already taught";
inline constexpr std::u16string_view kReadingPeople = u"Reading the contacts…";
/// "%1" is what was typed.
inline constexpr std::u16string_view kNobodyFound = u"Nobody matches “%1”.";
inline constexpr std::u16string_view kShowEverybody = u"Show &everybody";
inline constexpr std::u16string_view kNoNumbers = u"None of your contacts has a telephone number.";

// The lesson.
inline constexpr std::u16string_view kTeachingTitle = u"Teach a name";
inline constexpr std::u16string_view kChoosePerson = u"Whom do you want to call by voice?";
inline constexpr std::u16string_view kChoosePersonAdvice =
    u"Choose a number. Then you say the name once.";
inline constexpr std::u16string_view kSayTheName = u"Say the name";
inline constexpr std::u16string_view kSayTheNameAdvice =
    u"Press Record and wait for the tone. Then say the name as you will say it to the dialer.";
inline constexpr std::u16string_view kSayTheNameAgainAdvice =
    u"Press Record and wait for the tone. Then say the name as you will say it to the dialer. If "
    u"you keep the recording, it takes the place of the one before.";
inline constexpr std::u16string_view kGetReady = u"Get ready…";
inline constexpr std::u16string_view kSpeakNow = u"Speak now";
inline constexpr std::u16string_view kTimeLeft = u"Time left to speak";
inline constexpr std::u16string_view kNoMicrophoneYet = u"There is no microphone";
inline constexpr std::u16string_view kNoMicrophoneYetAdvice =
    u"Plug one in, or switch it on in the sound settings. The recording then begins by itself.";
inline constexpr std::u16string_view kMicrophoneRefused = u"The microphone gives no sound";
inline constexpr std::u16string_view kMicrophoneRefusedAdvice =
    u"Another program may be using it, or it may be switched off.";
inline constexpr std::u16string_view kTakeIsLost = u"The microphone was lost";
inline constexpr std::u16string_view kTakeIsLostAdvice =
    u"Too little was heard to learn a name. Check the microphone and record again.";
inline constexpr std::u16string_view kTakeLosesStart =
    u"The name is long. Its beginning is left out of the voice tag: only the marked part is kept.";
inline constexpr std::u16string_view kTakeLosesEnd =
    u"The name is long. Its end is left out of the voice tag: only the marked part is kept.";
/// "%1" is a person.
inline constexpr std::u16string_view kTakeIsLike =
    u"It sounds like %1. The dialer may take one for the other.";
inline constexpr std::u16string_view kTakeIsLikeAnother = u"It sounds like 1 other name too.";
/// "%1" is a number, 2 or more.
inline constexpr std::u16string_view kTakeIsLikeOthers = u"It sounds like %1 other names too.";
inline constexpr std::u16string_view kKeeping = u"Learning the name…";
inline constexpr std::u16string_view kLearned = u"Learned %1.";
inline constexpr std::u16string_view kNotLearned = u"The name was not learned.";
inline constexpr std::u16string_view kPersonIsGone =
    u"The name cannot be taught again, since its number is no longer in the address book.";
inline constexpr std::u16string_view kNotHeard = u"The recording could not be played.";

// Its buttons.
inline constexpr std::u16string_view kRecord = u"&Record";
inline constexpr std::u16string_view kRecordAgain = u"Record &again";
inline constexpr std::u16string_view kKeep = u"&Keep";
inline constexpr std::u16string_view kDiscard = u"&Discard";
inline constexpr std::u16string_view kHear = u"&Hear it";
inline constexpr std::u16string_view kStopHearing = u"Sto&p";
inline constexpr std::u16string_view kPlayBoth = u"Play &both";
inline constexpr std::u16string_view kCancel = u"&Cancel";
inline constexpr std::u16string_view kChooseAnother = u"Choose &somebody else";

// Which names are alike. "%1" and "%2" are names, "%3" is a number of percent.
inline constexpr std::u16string_view kLikenessTitle = u"Likeness of names";
inline constexpr std::u16string_view kLikenessPicture = u"Which names are alike";
inline constexpr std::u16string_view kPairs = u"Pairs of names, the most alike first";
inline constexpr std::u16string_view kPercent = u"%1 %";
inline constexpr std::u16string_view kPairIsTooAlike =
    u"%1 and %2 are %3 % alike. That is too much: the dialer may take one for the other.";
inline constexpr std::u16string_view kPairIsAlike = u"%1 and %2 are %3 % alike.";
inline constexpr std::u16string_view kNoneTooAlike = u"No two names are too alike.";
inline constexpr std::u16string_view kOneTooAlike =
    u"One pair of names is too alike. A thick line joins them. Teach one of them again with other "
    u"words.";
/// "%1" is a number.
inline constexpr std::u16string_view kManyTooAlike =
    u"%1 pairs of names are too alike. Thick lines join them. Teach one of each pair again with "
    u"other words.";
inline constexpr std::u16string_view kNothingToCompare = u"There is nothing to compare yet";
inline constexpr std::u16string_view kNothingToCompareAdvice =
    u"As soon as there are two voice tags, you see here which names sound alike.";
inline constexpr std::u16string_view kTeachFirst = u"Teach the &first again";
inline constexpr std::u16string_view kTeachSecond = u"Teach the &second again";
inline constexpr std::u16string_view kTeachNameAgain = u"Teach %1 again";

}  // namespace resources
