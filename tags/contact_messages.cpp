#include "tags/contact_messages.h"

#include <cstddef>
#include <string>
#include <string_view>

#include "resources/strings.h"

namespace tags {

using platform::MessageBox;
using platform::MessageCaption;
using platform::MessageStyle;

namespace {

constexpr std::u16string_view kSelectedContactFailed =
    u"Failed to get IContact in OnSelchangeComboName";

// Each table holds one text for each kind of number, in the order of the codes of the kinds.
static_assert(resources::kNumberFailedWhileLoading.size() == platform::kPhoneKindCount);
static_assert(resources::kNumberFailedWhileRecording.size() == platform::kPhoneKindCount);
static_assert(resources::kNumberFailedInTagList.size() == platform::kPhoneKindCount);
static_assert(resources::kNumberFailedOnSelection.size() == platform::kPhoneKindCount);

const resources::Text& NumberText(const ContactMessage& message) {
  const auto code = static_cast<std::size_t>(message.kind);
  switch (message.reader) {
    case ContactReader::kRecording:
      return resources::kNumberFailedWhileRecording[code];
    case ContactReader::kTagList:
      return resources::kNumberFailedInTagList[code];
    // A selection does not come here: its boxes have texts of their own (SelectionBox).
    case ContactReader::kLoading:
    case ContactReader::kSelection:
      break;
  }
  return resources::kNumberFailedWhileLoading[code];
}

const resources::Text& TextOf(const ContactMessage& message) {
  switch (message.failure) {
    case ContactFailure::kServiceNotReady:
      return resources::kComFailed;
    case ContactFailure::kNotConnected:
      return resources::kOutlookNotCreated;
    case ContactFailure::kNotLoggedOn:
      return resources::kLogonFailed;
    case ContactFailure::kItem:
      return resources::kItemFailed;
    case ContactFailure::kNullContact:
      return resources::kNullContact;
    case ContactFailure::kLookup:
      return resources::kRecordedContactFailed;
    case ContactFailure::kFirstName:
      return resources::kFirstNameFailed;
    case ContactFailure::kMiddleName:
      return resources::kMiddleNameFailed;
    case ContactFailure::kLastName:
      return resources::kLastNameFailed;
    case ContactFailure::kCompanyName:
      return resources::kCompanyNameFailed;
    case ContactFailure::kNumberTooLong:
      return resources::kNumberTooLong;
    case ContactFailure::kNumber:
      break;
  }
  return NumberText(message);
}

/// The boxes about a contact just chosen are the same in every language. Their caption is the name
/// of the companion dialer, by which users know them.
MessageBox SelectionBox(const ContactMessage& message) {
  const std::u16string_view text =
      message.failure == ContactFailure::kNumber
          ? resources::kNumberFailedOnSelection[static_cast<std::size_t>(message.kind)]
          : kSelectedContactFailed;
  return {std::u16string(text), MessageCaption::kText, std::u16string(resources::kDialerCaption),
          MessageStyle::kOk | MessageStyle::kSetForeground};
}

/// While the page opens, other windows may hide its own. The built-in English boxes have always
/// been topmost there, those of a language file never.
MessageStyle StyleOf(const ContactMessage& message, const language::Texts& texts) {
  const bool isOpening = message.failure == ContactFailure::kServiceNotReady ||
                         message.failure == ContactFailure::kNotConnected ||
                         message.failure == ContactFailure::kNotLoggedOn;
  const bool isTopmost = isOpening && !texts.IsLanguageFileLoaded();
  return MessageStyle::kOk | (isTopmost ? MessageStyle::kTopmost : MessageStyle::kSetForeground);
}

}  // namespace

MessageBox ToBox(const ContactMessage& message, const language::Texts& texts) {
  if (message.reader == ContactReader::kSelection) {
    return SelectionBox(message);
  }
  std::u16string text(texts(TextOf(message)));
  // This one is the framework's plain box. It has the caption of the application in every language.
  if (message.failure == ContactFailure::kItem) {
    return platform::ApplicationBox(std::move(text));
  }
  return {std::move(text), MessageCaption::kText, std::u16string(texts(resources::kMessageCaption)),
          StyleOf(message, texts)};
}

}  // namespace tags
