#include "maintenance/template_repair.h"

#include <string>

#include "storage/device_paths.h"
#include "voicemath/template_file.h"
#include "voicemath/voice_mathematics.h"

namespace maintenance {

bool RepairTemplate(const platform::Platform& platform, std::u16string_view tagName) {
  voicemath::CVoiceMathematics mathematics(platform.files, platform.ui);
  mathematics.m_wavePath = storage::WavePath(tagName);
  // Not LearnFile, which would trim the recording.
  if (mathematics.ReadFile(0) != voicemath::kLearned) {
    return false;
  }
  const std::u16string path = storage::TemplatePath(tagName);
  static_cast<void>(platform.files.Delete(path));
  if (voicemath::WriteTemplateFile(platform.files, path, mathematics) !=
      voicemath::TemplateFileResult::kDone) {
    static_cast<void>(platform.files.Delete(path));
    return false;
  }
  return true;
}

}  // namespace maintenance
