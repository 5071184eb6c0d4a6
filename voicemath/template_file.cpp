#include "voicemath/template_file.h"

namespace voicemath {
namespace {

using framework::ArchiveError;
using framework::ArchiveStatus;
using framework::CArchive;
using framework::CFile;

TemplateFileResult ToResult(const ArchiveStatus& status) {
  if (status) {
    return TemplateFileResult::kDone;
  }
  switch (status.error()) {
    case ArchiveError::kEndOfFile:
      return TemplateFileResult::kTorn;
    case ArchiveError::kBadFormat:
      return TemplateFileResult::kBadFormat;
    case ArchiveError::kFileFailure:
      break;
  }
  return TemplateFileResult::kFileFailure;
}

}  // namespace

TemplateFileResult WriteTemplateFile(platform::FileSystem& files, std::u16string_view path,
                                     framework::CObject& object) {
  // Makes the file if it is missing, without touching one that is there. It is closed at once.
  if (const auto made = files.Open(path, {platform::FileAccess::kNone, platform::FileShare::kNone,
                                          platform::FileCreation::kOpenAlways});
      !made) {
    return made.error() == platform::FileError::kDiskFull ? TemplateFileResult::kDiskFull
                                                          : TemplateFileResult::kNotCreated;
  }
  CFile file(files);
  if (!file.Open(path, CFile::modeWrite)) {
    return TemplateFileResult::kNotOpened;
  }
  CArchive archive(file, CArchive::Mode::kStore);
  object.Serialize(archive);
  const TemplateFileResult result = ToResult(archive.Close());
  const CFile::Done flushed = file.Flush();
  const CFile::Done closed = file.Close();
  if (file.GetError() == platform::FileError::kDiskFull) {
    return TemplateFileResult::kDiskFull;
  }
  return flushed && closed ? result : TemplateFileResult::kFileFailure;
}

platform::Result<void, platform::FileError> ReplaceTemplateFile(platform::FileSystem& files,
                                                                std::u16string_view path,
                                                                framework::CObject& object) {
  const auto made = files.OpenReplacement(path);
  if (!made) {
    return platform::Failure(made.error());
  }
  CFile file(files);
  file.Attach((*made)->GetFile());
  CArchive archive(file, CArchive::Mode::kStore);
  object.Serialize(archive);
  if (!archive.Close()) {
    return platform::Failure(file.GetError().value_or(platform::FileError::kOther));
  }
  return (*made)->Publish(platform::Durability::kNow);
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
