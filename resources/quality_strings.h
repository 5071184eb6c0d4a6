#pragma once

#include <string_view>

namespace resources {

// What is said of the quality of a voice tag. "%1" is replaced.

// In a list, in as few words as possible.
inline constexpr std::u16string_view kQualityGood = u"Good";
inline constexpr std::u16string_view kQualityUnknown = u"Not judged";
inline constexpr std::u16string_view kQualityInterrupted = u"Interrupted";
inline constexpr std::u16string_view kQualityRate = u"Wrong format";
inline constexpr std::u16string_view kQualitySilent = u"Silent";
inline constexpr std::u16string_view kQualityNoSpeech = u"No speech";
inline constexpr std::u16string_view kQualityCutStart = u"Start cut off";
inline constexpr std::u16string_view kQualityCutEnd = u"End cut off";
inline constexpr std::u16string_view kQualityShort = u"Too short";
inline constexpr std::u16string_view kQualityClipped = u"Distorted";
inline constexpr std::u16string_view kQualitySoft = u"Too soft";
inline constexpr std::u16string_view kQualityNoisy = u"Noisy";
inline constexpr std::u16string_view kQualityTooAlike = u"Too alike";

// As sentences about one recording.
inline constexpr std::u16string_view kTakeIsGood = u"The recording is good.";
inline constexpr std::u16string_view kTakeIsInterrupted =
    u"The microphone was lost before the recording was complete.";
inline constexpr std::u16string_view kTakeHasWrongRate =
    u"The recording has the wrong format. It needs 11,025 Hz, one channel and 16 bits.";
inline constexpr std::u16string_view kTakeIsSilent =
    u"The recording is silent. The microphone may be muted.";
inline constexpr std::u16string_view kTakeHasNoSpeech = u"No speech is heard in the recording.";
inline constexpr std::u16string_view kTakeStartIsCut =
    u"The beginning of the name is cut off. Speak a little later.";
inline constexpr std::u16string_view kTakeEndIsCut =
    u"The end of the name is cut off. Speak a little earlier.";
inline constexpr std::u16string_view kTakeIsShort = u"What is heard is too short for a name.";
inline constexpr std::u16string_view kTakeIsClipped =
    u"The recording is distorted. Speak more softly, or turn the microphone down.";
inline constexpr std::u16string_view kTakeIsSoft =
    u"The recording is too soft: its peak is %1 dB, and a good one is above −40 dB.";
inline constexpr std::u16string_view kTakeIsNoisy =
    u"The room is loud: the voice is only %1 dB above it, and 20 dB is good.";
inline constexpr std::u16string_view kTakeRoomIsLoud = u"The room is loud.";
inline constexpr std::u16string_view kTakeIsTooAlike =
    u"It sounds like the name of another number.";
inline constexpr std::u16string_view kTagStartIsCut =
    u"The voice tag begins in the middle of the name. Speak a little later, or say a shorter name.";
inline constexpr std::u16string_view kTagEndIsCut =
    u"The voice tag ends in the middle of the name. Speak a little earlier, or say a shorter name.";
/// "%1" is the person of the other tag.
inline constexpr std::u16string_view kTagIsTooAlike =
    u"It sounds like %1. The dialer may take one for the other.";
inline constexpr std::u16string_view kTagIsNotJudged =
    u"The tag cannot be judged, since one of its files cannot be read.";

}  // namespace resources
