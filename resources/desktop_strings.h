#pragma once

#include <string_view>

namespace resources {

// Texts of the parts that know the desktop, in the desktop's language. "%1" and "%2" are replaced.
// The help page explains each text.

// The applet's library.
inline constexpr std::u16string_view kNoTagFolder =
    u"There is no folder for the voice tags: HOME names none. Set HOME, or set VOXTREL_ROOT to a "
    u"folder.";
inline constexpr std::u16string_view kAppletIsOpen =
    u"Zedra Voxtrel is open already; its window was brought forward.";
inline constexpr std::u16string_view kTagsInUse =
    u"The voice tags are in use by another program, such as the command line. Try again when it "
    u"has ended.";

// Help and web pages. What could not be shown follows.
inline constexpr std::u16string_view kNoWebBrowser = u"There is no web browser to show this with: ";
inline constexpr std::u16string_view kNoSuchProgram = u"There is no such program here: ";
inline constexpr std::u16string_view kNotOpenedHere = u"This cannot be opened here: ";

// The window of the connection settings; "%1" is the name of a port, "%2" its device.
inline constexpr std::u16string_view kPortNotConnected = u"%1 is not connected";
inline constexpr std::u16string_view kPortIs = u"%1 is %2";

// The control panel about an applet that is opened; "%1" is its name.
inline constexpr std::u16string_view kOpening = u"Opening %1";
inline constexpr std::u16string_view kIsOpenAlready =
    u"%1 is open already; its window was brought forward.";
inline constexpr std::u16string_view kHasEndedEarly = u"%1 has ended early.";
inline constexpr std::u16string_view kHasCrashed = u"%1 has crashed.";
inline constexpr std::u16string_view kHasCrashedAndWasClosed =
    u"%1 has crashed and was closed. The control panel goes on; you can open %1 again.";
inline constexpr std::u16string_view kWasClosed = u"%1 was closed because it did not answer.";
inline constexpr std::u16string_view kCannotBeOpened = u"%1 cannot be opened.";
inline constexpr std::u16string_view kCannotBeOpenedSince = u"%1 cannot be opened: %2";
inline constexpr std::u16string_view kDoesNotAnswer = u"%1 does not answer.";
inline constexpr std::u16string_view kWaitOrClose =
    u"%1 does not answer. You can wait, or close it. If you close it, what it has not stored is "
    u"lost.";
inline constexpr std::u16string_view kAnswersAgain = u"%1 answers again.";

// The control panel about an applet in its list. The problems follow "This applet".
inline constexpr std::u16string_view kIsBeingAsked = u"Asking %1 for its name";
inline constexpr std::u16string_view kAppletProblem = u"This applet %1: %2";
inline constexpr std::u16string_view kAppletGivesNoName = u"This applet gives no name: %1";
inline constexpr std::u16string_view kCrashesWhenAsked = u"crashes when it is asked";
inline constexpr std::u16string_view kEndsWhenAsked = u"ends when it is asked";
inline constexpr std::u16string_view kCannotBeAsked = u"cannot be asked: %1";
inline constexpr std::u16string_view kGivesNoAnswer = u"does not answer";
inline constexpr std::u16string_view kDoesNotWantToStart = u"refuses to start";
inline constexpr std::u16string_view kSaysThatItHolds = u"says that it has %1 applets";
inline constexpr std::u16string_view kHoldsNoApplet = u"has no applet number %1";
inline constexpr std::u16string_view kCannotBeLoaded = u"cannot be loaded: %1";
inline constexpr std::u16string_view kNoFullPath = u"its path is not a full one";
inline constexpr std::u16string_view kIsNoApplet = u"is no applet: it has no %1";

// The control panel about what is missing.
inline constexpr std::u16string_view kNoContactsRead =
    u"No contacts could be read: %1. You can choose other contacts in Voice tags, on the page "
    u"Set-up.";
inline constexpr std::u16string_view kNoContacts =
    u"No contacts were found. Add people with telephone numbers to the desktop's address book, or "
    u"save them as vCards in %1.";
inline constexpr std::u16string_view kNoMicrophone =
    u"No microphone was found. Plug one in, or switch it on in the desktop's sound settings.";
inline constexpr std::u16string_view kHelpNotInstalled = u"The help page is not installed.";
inline constexpr std::u16string_view kNoApplets =
    u"There are no applets here yet.\n\nLooked in:\n%1\n\nInstall an applet (a file that ends with "
    u".cpl) there and press F5, or name one by its full path when you start the control panel:\n"
    u"voxtrel-panel /PATH/OF/FILE";

}  // namespace resources
