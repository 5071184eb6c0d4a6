#include "voicemath/template_file.h"

namespace voicemath {
namespace {

using framework::ArchiveStatus;
using framework::CArchive;
using framework::CFile;

TemplateFileResult ToResult(ArchiveStatus status) {
  switch (status) {
    case ArchiveStatus::kGood:
      return TemplateFileResult::kDone;
    case ArchiveStatus::kEndOfFile:
      return TemplateFileResult::kTorn;
    case ArchiveStatus::kBadFormat:
      return TemplateFileResult::kBadFormat;
    case ArchiveStatus::kFileFailure:
      break;
  }
  return TemplateFileResult::kFileFailure;
}

/// Makes the file where it is missing, without touching one that is there.
bool EnsureFile(platform::FileSystem& files, std::u16string_view path) {
  const auto opened = files.Open(path, {platform::FileAccess::kNone, platform::FileShare::kNone,
                                        platform::FileCreation::kOpenAlways});
  return opened.file != nullptr;
}

}  // namespace

TemplateFileResult WriteTemplateFile(platform::FileSystem& files, std::u16string_view path,
                                     framework::CObject& object) {
  if (!EnsureFile(files, path)) {
    return TemplateFileResult::kNotCreated;
  }
  CFile file(files);
  if (!file.Open(path, CFile::modeWrite)) {
    return TemplateFileResult::kNotOpened;
  }
  CArchive archive(file, CArchive::Mode::kStore);
  object.Serialize(archive);
  const TemplateFileResult result = ToResult(archive.Close());
  const bool kept = file.Flush();
  return file.Close() && kept ? result : TemplateFileResult::kFileFailure;
}

TemplateFileResult ReadTemplateFile(platform::FileSystem& files, std::u16string_view path,
                                    framework::CObject& object) {
  CFile file(files);
  if (!file.Open(path, CFile::modeRead)) {
    return TemplateFileResult::kNotOpened;
  }
  CArchive archive(file, CArchive::Mode::kLoad);
  object.Serialize(archive);
  return ToResult(archive.Close());
}

}  // namespace voicemath
