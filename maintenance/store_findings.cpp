// What the check of the store says about each kind of problem.

#include "maintenance/store_check.h"

#include "storage/tag_record.h"

namespace maintenance {
namespace {

struct Wording {
  std::string_view word;
  std::string_view sentence;
};

Wording WordingOf(StoreProblem problem) {
  using enum StoreProblem;
  switch (problem) {
    case kRegistryUnreadable:
      return {"registry-unreadable", "the settings cannot be read"};
    case kFolderUnreadable:
      return {"folder-unreadable", "not all files of the folder can be found"};
    case kContactsAway:
      return {"contacts-away", "the contacts cannot be read, so nothing is said about them"};
    case kOtherVersion:
      return {"other-version",
              "the templates were made by another version; they are computed again when the tags "
              "are opened next"};
    case kTooManyTags:
      static_assert(storage::kMaxTags == 100, "The sentence names it.");
      return {"too-many-tags", "there are more than 100 tags; those beyond are not compared"};
    case kTagName:
      return {"tag-name", "the name is not a number, as the names of recorded tags are"};
    case kContact:
      return {"contact", "the entry names no contact"};
    case kPhoneType:
      return {"phone-type", "the entry names no kind of telephone number"};
    case kContactGone:
      return {"contact-gone", "the contact does not exist any more"};
    case kNoRecording:
      return {"no-recording", "there is no recording"};
    case kRecordingUnreadable:
      return {"recording-unreadable", "the recording cannot be processed"};
    case kRecordingEmpty:
      return {"recording-empty", "the recording is too short to hold a spoken name"};
    case kRecordingSilent:
      return {"recording-silent", "the recording is silent"};
    case kNoTemplate:
      return {"no-template", "there is no template"};
    case kTemplateTorn:
      return {"template-torn", "the template ends before its time"};
    case kTemplateContradicting:
      return {"template-contradicting", "the counts in the template do not agree"};
    case kTemplateUnreadable:
      return {"template-unreadable", "the template cannot be read"};
    case kTemplateStale:
      return {"template-stale",
              "the template is not what the recording gives; `voxtrel reinit --force` computes all "
              "of them again"};
    case kRecordingWithoutTag:
      return {"recording-without-tag", "there is a recording and no tag"};
    case kTemplateWithoutTag:
      return {"template-without-tag", "there is a template and no tag"};
    case kUnfinishedFile:
      return {"unfinished-file", "a program that was ended early left this file"};
  }
  return {};
}

}  // namespace

std::string_view ToWord(StoreProblem problem) { return WordingOf(problem).word; }

std::string_view Describe(StoreProblem problem) { return WordingOf(problem).sentence; }

bool IsRepairable(StoreProblem problem) {
  return problem == StoreProblem::kNoTemplate || problem == StoreProblem::kTemplateTorn ||
         problem == StoreProblem::kTemplateContradicting;
}

bool IsOrphan(StoreProblem problem) {
  return problem == StoreProblem::kRecordingWithoutTag ||
         problem == StoreProblem::kTemplateWithoutTag || problem == StoreProblem::kUnfinishedFile;
}

}  // namespace maintenance
