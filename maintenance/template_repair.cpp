#include "maintenance/template_repair.h"

#include <string>

#include "storage/device_paths.h"
#include "voicemath/template_file.h"
#include "voicemath/voice_mathematics.h"

namespace maintenance {
namespace {

bool HasTemplateFolder(platform::FileSystem& files) {
  const auto search = files.Find(storage::kTemplateFolder);
  const auto found = search ? (*search)->Next() : platform::Failure(search.error());
  return found && *found && (*found)->isFolder;
}

}  // namespace

std::string_view Describe(RepairError error) {
  switch (error) {
    case RepairError::kNoRecording:
      return "the recording is missing or cannot be processed";
    case RepairError::kNoFolder:
      return "the folder Voxtrel_stor is missing and cannot be made";
    case RepairError::kNotWritten:
      return "the template cannot be written; there is no room on the device, another program has "
             "the file open, or it may not be written";
  }
  return {};
}

platform::Result<void, RepairError> RepairTemplate(const platform::Platform& platform,
                                                   std::u16string_view tagName) {
  voicemath::CVoiceMathematics mathematics(platform.files, platform.ui);
  mathematics.m_wavePath = storage::WavePath(tagName);
  // Not LearnFile, which would trim the recording.
  if (mathematics.ReadFile(0) != voicemath::kLearned) {
    return platform::Failure(RepairError::kNoRecording);
  }
  const std::u16string path = storage::TemplatePath(tagName);
  static_cast<void>(platform.files.Delete(path));
  if (!voicemath::WriteTemplateFile(platform.files, path, mathematics)) {
    static_cast<void>(platform.files.Delete(path));
    return platform::Failure(HasTemplateFolder(platform.files) ? RepairError::kNotWritten
                                                               : RepairError::kNoFolder);
  }
  return {};
}

}  // namespace maintenance
