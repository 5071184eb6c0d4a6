#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"

namespace maintenance {

/// What can be wrong with the store of tags. A tag is an entry of the registry, a recording and a
/// template. Each can be missing, damaged or left over, and the three can contradict each other.
enum class StoreProblem : std::uint8_t {
  kRegistryUnreadable,  ///< The list of tags, or the entry of one, cannot be read.
  kFolderUnreadable,    ///< The search through a folder failed.
  kContactsAway,        ///< The check never reports it. A caller that opens contacts may.
  kOtherVersion,        ///< The templates are those of another speech mathematics.
  kTooManyTags,
  kTagName,      ///< Not the number that the applet names a tag by.
  kContact,      ///< The entry names no contact.
  kPhoneType,    ///< The entry names none of the kinds of telephone numbers.
  kContactGone,  ///< The contact does not exist any more.
  kNoRecording,
  kRecordingUnreadable,
  kRecordingEmpty,   ///< Too short for a template. An empty one would give 65,535 frames.
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
  std::u16string tag;     ///< The name of the tag, or of the files without a tag. May be empty.
  std::u16string folder;  ///< Device path of a folder that cannot be read. May be empty.
};

/// Returns a short name that scripts can rely on.
[[nodiscard]] std::string_view ToWord(StoreProblem problem);

/// Returns a sentence without a full stop. It can follow the tag's name.
[[nodiscard]] std::string Describe(StoreProblem problem);

/// Returns whether RepairTemplate puts it right.
[[nodiscard]] bool IsRepairable(StoreProblem problem);

/// Returns whether it is put right by moving the file into the trash.
[[nodiscard]] bool IsOrphan(StoreProblem problem);

enum class ContactsState : std::uint8_t { kOpen, kAway };

/// Reads the whole store and reports every problem: first what concerns all of it, then tag by tag
/// in the order of the registry, then files without a tag. Changes nothing. Reports nothing about
/// contacts if they are not open. Message boxes of the speech mathematics go to the `ui` of
/// `platform`, which should take them silently.
[[nodiscard]] std::vector<StoreFinding> CheckStore(const platform::Platform& platform,
                                                   ContactsState contacts);

/// Why a template was not made again.
enum class RepairError : std::uint8_t {
  kNoRecording,  ///< None that a template can be made of.
  kNoFolder,     ///< For templates.
  kNotWritten,
};

/// Returns a sentence without a full stop.
[[nodiscard]] std::string Describe(RepairError error);

/// Computes the template of a tag again from its kept recording, which is left as it is. After a
/// failure an unusable template may be gone, and nothing else has changed. Message boxes of the
/// speech mathematics go to the `ui` of `platform`.
[[nodiscard]] platform::Result<void, RepairError> RepairTemplate(const platform::Platform& platform,
                                                                 std::u16string_view tagName);

}  // namespace maintenance
