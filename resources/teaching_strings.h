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
inline constexpr std::u16string_view kSeconds = u"%1 s";

}  // namespace resources
