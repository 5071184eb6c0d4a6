#pragma once

#include <string_view>

namespace resources {

// What becomes of a call, as the dialer and the window of voice tags report it. Each is a part of a
// sentence: it begins with a small letter and has no full stop, and another part may stand before
// it with a colon (kWholeSentence makes a sentence of it).

// Why a stored text is not dialled, which is "%1".
inline constexpr std::u16string_view kNumberHasNoDigits =
    u"\"%1\" is not dialled, since it has no digits";
inline constexpr std::u16string_view kNumberHasWrongCharacter =
    u"\"%1\" is not dialled, since it holds a letter or a sign that no telephone number has";
inline constexpr std::u16string_view kNumberHasPlusWithin =
    u"\"%1\" is not dialled, since a plus sign can only be at its beginning";
inline constexpr std::u16string_view kNumberHasLonePause =
    u"\"%1\" is not dialled, since a pause must be between two digits";
inline constexpr std::u16string_view kNumberHasOddExtension =
    u"\"%1\" is not dialled, since only \";ext=\" and digits can follow a number";
inline constexpr std::u16string_view kNumberIsTooLong =
    u"\"%1\" is not dialled, since it is too long for a telephone number";

// Whose number a voice tag has, if the contacts do not say. "%1" is the number of the contact among
// the contacts, or that of the tag.
inline constexpr std::u16string_view kUnknownContact = u"Contact %1";
inline constexpr std::u16string_view kTagOfNobody = u"Voice tag %1";

// Why a contact cannot be called. "%1" is a kind of number, such as "Mobile".
inline constexpr std::u16string_view kTagNamesNoContact = u"the voice tag names no contact";
inline constexpr std::u16string_view kTagNamesNoKind = u"the voice tag names no kind of number";
inline constexpr std::u16string_view kCalleeIsGone =
    u"the address book does not have this contact any more";
inline constexpr std::u16string_view kCalleeNotRead = u"this contact cannot be read now";
inline constexpr std::u16string_view kCalleeHasNoSuchNumber =
    u"this contact has no number of the kind %1 any more";

// How far a call came.
inline constexpr std::u16string_view kCallHandedOver =
    u"the telephone program of the desktop has the number";
inline constexpr std::u16string_view kCallDialled = u"the number was dialled";
inline constexpr std::u16string_view kCallAnswered = u"the call was answered";
inline constexpr std::u16string_view kCallShown = u"dial this number yourself";

// Why there is no call. "%1" is a port or a setting.
inline constexpr std::u16string_view kNoTelephoneProgram =
    u"the desktop has no program for telephone calls";
inline constexpr std::u16string_view kTelephoneProgramFailed =
    u"the telephone program of the desktop cannot be started, or failed at once";
inline constexpr std::u16string_view kNoPortChosen = u"no serial port was chosen";
inline constexpr std::u16string_view kChosenPortNotConnected = u"the port %1 is not connected";
inline constexpr std::u16string_view kPortMissing = u"%1 is not there; plug the modem in";
inline constexpr std::u16string_view kPortDenied = u"you may not use %1";
inline constexpr std::u16string_view kPortHasUser = u"another program uses %1";
inline constexpr std::u16string_view kNoSerialPort = u"%1 is no serial port";
inline constexpr std::u16string_view kLineSettingsRefused =
    u"the port cannot be set as the connection settings say: %1";
inline constexpr std::u16string_view kPortFailed = u"%1 cannot be used";
inline constexpr std::u16string_view kLineIsBusy = u"the line is busy";
inline constexpr std::u16string_view kNoCarrier = u"there is no connection, or it was cut";
inline constexpr std::u16string_view kNobodyAnswers = u"nobody answers";
inline constexpr std::u16string_view kNoDialTone =
    u"there is no dial tone; see whether the modem is connected to the telephone line";
inline constexpr std::u16string_view kModemRefused = u"the modem does not dial this number";
inline constexpr std::u16string_view kModemSilent =
    u"the modem does not answer; see whether it is switched on, and whether this is its port";
inline constexpr std::u16string_view kModemGarbled =
    u"what the modem says cannot be understood; see whether the baud rate is right";
inline constexpr std::u16string_view kModemUndecided =
    u"the modem did not say what became of the call";
inline constexpr std::u16string_view kPortLost = u"the modem was unplugged during the call";
inline constexpr std::u16string_view kCallStopped = u"the call was stopped";

/// Why a call goes on.
inline constexpr std::u16string_view kHangUpRefused = u"the modem does not take the command";

}  // namespace resources
