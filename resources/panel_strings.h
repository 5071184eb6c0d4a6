#pragma once

#include <string_view>

namespace resources {

// Labels of the control panel. They need no words in the help page, unlike the messages of
// desktop_strings.h.

// The control panel: its title, menus and buttons. "&" stands before the letter that chooses it.
inline constexpr std::u16string_view kPanelTitle = u"Control Panel";
inline constexpr std::u16string_view kPanelApplets = u"Applets";
inline constexpr std::u16string_view kPanelAppletMenu = u"&Applet";
inline constexpr std::u16string_view kPanelOpen = u"&Open";
inline constexpr std::u16string_view kPanelRefresh = u"&Refresh";
inline constexpr std::u16string_view kPanelClose = u"&Close";
inline constexpr std::u16string_view kPanelHelpMenu = u"&Help";
inline constexpr std::u16string_view kPanelHelp = u"&Voice dialer help";
inline constexpr std::u16string_view kPanelAbout = u"&About the control panel";
inline constexpr std::u16string_view kPanelAboutText =
    u"Control panel %1\n\nShows the applets that are installed. Each opens in a process of its "
    u"own: "
    u"if one fails, the others go on.";
inline constexpr std::u16string_view kWaitButton = u"&Wait";
inline constexpr std::u16string_view kCloseButton = u"&Close it";
inline constexpr std::u16string_view kMissingLabel = u"What is missing";
inline constexpr std::u16string_view kHideLabel = u"Hide";

// The control panel opens the applet with sample contacts and a recording as the microphone. "%1"
// is the name that the recording says.
inline constexpr std::u16string_view kPanelSamples = u"&Try with samples";
inline constexpr std::u16string_view kPanelSample = u"The microphone says “%1”";
inline constexpr std::u16string_view kSamplesMark = u"samples: “%1”";
inline constexpr std::u16string_view kTryNow = u"&Try it now";
inline constexpr std::u16string_view kUntilThen =
    u"Until then you can try it with sample contacts and a recording of the name “%1” as the "
    u"microphone.";

}  // namespace resources
