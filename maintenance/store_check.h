#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"

namespace maintenance {

/// What can be wrong with the store of tags.
enum class StoreProblem : std::uint8_t {
  kRegistryUnreadable,  ///< The list of tags, or the entry of one, cannot be read.
  kFolderUnreadable,    ///< The search through a folder failed.
  kContactsAway,        ///< For who asks for open contacts: the check itself never says so.
  kOtherVersion,        ///< The templates are those of another speech mathematics.
  kTooManyTags,
  kTagName,      ///< Not the number that the applet names a tag by.
  kContact,      ///< The entry names no contact.
  kPhoneType,    ///< The entry names none of the kinds of telephone numbers.
  kContactGone,  ///< The contact does not exist any more.
  kNoRecording,
  kRecordingUnreadable,
  kRecordingEmpty,   ///< Too short for a template: that of an empty one has 65,535 frames.
  kRecordingSilent,  ///< All samples are alike.
  kNoTemplate,
  kTemplateTorn,
  kTemplateContradicting,  ///< Its two counts do not agree.
  kTemplateUnreadable,
  kTemplateStale,  ///< It is not what the recording gives.
  kRecordingWithoutTag,
  kTemplateWithoutTag,
  kUnfinishedFile,  ///< What a killed process left of a file that it wrote.
};

struct StoreFinding {
  StoreProblem problem = StoreProblem::kRegistryUnreadable;
  std::u16string tag;     ///< Name of the tag, or of the files without one; empty for none.
  std::u16string folder;  ///< Device path of a folder that cannot be read; empty for none.
};

/// A short name that scripts can rely on.
[[nodiscard]] std::string_view ToWord(StoreProblem problem);

/// A sentence without a full stop, to stand behind the tag's name.
[[nodiscard]] std::string_view Describe(StoreProblem problem);

/// Whether computing the template anew from the kept recording puts it right.
[[nodiscard]] bool IsRepairable(StoreProblem problem);

/// Whether moving the file into the trash puts it right.
[[nodiscard]] bool IsOrphan(StoreProblem problem);

enum class ContactsState : std::uint8_t { kOpen, kAway };

/// Reads the whole store and reports what is not as it should be: first what concerns all of it,
/// then tag by tag in the order of the registry, then files without a tag. Changes nothing. Message
/// boxes of the speech mathematics go to the `ui` of `platform`, which should take them silently.
/// Without open contacts nothing is said about them.
[[nodiscard]] std::vector<StoreFinding> CheckStore(const platform::Platform& platform,
                                                   ContactsState contacts);

}  // namespace maintenance
