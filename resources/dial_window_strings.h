#pragma once

#include <string_view>

namespace resources {

// Texts of the page that hears a name and calls. "%1" and "%2" are replaced. "&" stands before the
// letter that presses a button.

/// The page, and the button that begins. Also an item of a menu.
inline constexpr std::u16string_view kDialTitle = u"Say a name";
inline constexpr std::u16string_view kSayName = u"Say a &name";
inline constexpr std::u16string_view kSayNameAdvice =
    u"Press the button, wait for the tone, and say the name of a person whom you have taught.";
inline constexpr std::u16string_view kOneMoment = u"One moment…";

// The name was not understood, and it listens again.
inline constexpr std::u16string_view kHeardNobody = u"I heard nobody. Say the name once more.";
inline constexpr std::u16string_view kUnknownName =
    u"I do not know that name. Say it once more, as you taught it.";

// Somebody is about to be called. "%1" is a number of seconds.
inline constexpr std::u16string_view kCallingSoon = u"Calling in %1 s";
/// Screen readers say it. "%1" is a name, "%2" the kind of the number.
inline constexpr std::u16string_view kCallingSoonAloud = u"%1, %2. Calling in two seconds.";
inline constexpr std::u16string_view kAnyKeyStops = u"Any key or a click stops the call.";
inline constexpr std::u16string_view kCallNow = u"&Call";
inline constexpr std::u16string_view kSomebodyElse = u"&Somebody else";

// The user chooses.
inline constexpr std::u16string_view kWhoIsMeant = u"Who is it?";
inline constexpr std::u16string_view kWhoInstead = u"Who is it instead?";
inline constexpr std::u16string_view kNoOtherGuess = u"I have no other guess";
inline constexpr std::u16string_view kChooseAdvice =
    u"Choose a name, press its number, or say the name again.";
inline constexpr std::u16string_view kSayItAgain = u"Say it &again";

// The call. "%1" is a name.
inline constexpr std::u16string_view kCallingNow = u"Calling %1…";
inline constexpr std::u16string_view kCannotBeCalled = u"%1 cannot be called";
inline constexpr std::u16string_view kWasNotCalled = u"%1 was not called";
inline constexpr std::u16string_view kNobodyCalled = u"Nobody was called";
inline constexpr std::u16string_view kHangUp = u"&Hang up";
inline constexpr std::u16string_view kCallEnded = u"The call was ended.";
/// The reason follows, a sentence.
inline constexpr std::u16string_view kCallNotEnded = u"The call was not ended.";

// A take that was taken for somebody else. "%1" is a name, "%2" a reason.
inline constexpr std::u16string_view kKeepTakeQuestion =
    u"Keep what you said as one more voice tag of %1?";
inline constexpr std::u16string_view kKeepTakeAdvice =
    u"The dialer will understand you better the next time.";
inline constexpr std::u16string_view kKeepTake = u"&Keep it";
inline constexpr std::u16string_view kDoNotKeep = u"&No, thank you";
inline constexpr std::u16string_view kTakeKept = u"%1 has one more voice tag";
inline constexpr std::u16string_view kTakeNotKept = u"The voice tag was not kept";

// It cannot begin, or ends early.
inline constexpr std::u16string_view kNobodyTaught = u"No name is taught yet";
inline constexpr std::u16string_view kNobodyTaughtAdvice =
    u"Teach a name first. Then say it here, and that person is called.";
inline constexpr std::u16string_view kOnlySilence = u"The microphone gives nothing but silence";
inline constexpr std::u16string_view kOnlySilenceAdvice =
    u"It may be muted. Set-up shows which one is used, and its level.";
inline constexpr std::u16string_view kNoMicrophoneAdvice =
    u"Plug one in, or switch it on in the sound settings. Then try again.";
inline constexpr std::u16string_view kNotUnderstood = u"I did not understand the name";
inline constexpr std::u16string_view kNotUnderstoodAdvice =
    u"Nobody was called. Try again, or teach the name once more.";
inline constexpr std::u16string_view kCannotDial = u"Nobody can be called now";

inline constexpr std::u16string_view kNoTagIsUsable =
    u"None of the voice tags can be used. Check and repair them in Set-up.";

inline constexpr std::u16string_view kLastCalls = u"Last calls";

// Set-up.
inline constexpr std::u16string_view kCalls = u"Calls";
inline constexpr std::u16string_view kCallWith = u"&Call with";
inline constexpr std::u16string_view kFirstWay = u"The first of these that works";
inline constexpr std::u16string_view kTelephoneProgram = u"The telephone program of the desktop";
inline constexpr std::u16string_view kSerialTelephone = u"The telephone at the serial port";
inline constexpr std::u16string_view kOnlyShow = u"Nothing: only show the number";
inline constexpr std::u16string_view kWayNotKept = u"The choice could not be kept.";

}  // namespace resources
