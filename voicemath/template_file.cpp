#include "voicemath/template_file.h"

#include <memory>
#include <new>
#include <utility>

#include "voicemath/voice_mathematics.h"

namespace voicemath {
namespace {

using framework::ArchiveError;
using framework::ArchiveStatus;
using framework::CArchive;
using framework::CFile;
using platform::Failure;

platform::Result<void, TemplateFileError> ToResult(const ArchiveStatus& status) {
  if (status) {
    return {};
  }
  switch (status.error()) {
    case ArchiveError::kEndOfFile:
      return Failure(TemplateFileError::kTorn);
    case ArchiveError::kBadFormat:
      return Failure(TemplateFileError::kBadFormat);
    case ArchiveError::kFileFailure:
      break;
  }
  return Failure(TemplateFileError::kFileFailure);
}

}  // namespace

platform::Result<void, TemplateFileError> WriteTemplateFile(platform::FileSystem& files,
                                                            std::u16string_view path,
                                                            framework::CObject& object) {
  // Makes the file if it is missing, without touching one that is there. It is closed at once.
  if (const auto made = files.Open(path, {platform::FileAccess::kNone, platform::FileShare::kNone,
                                          platform::FileCreation::kOpenAlways});
      !made) {
    const bool isFull = made.error() == platform::FileError::kDiskFull;
    return Failure(isFull ? TemplateFileError::kDiskFull : TemplateFileError::kNotCreated);
  }
  CFile file(files);
  if (!file.Open(path, CFile::modeWrite)) {
    return Failure(TemplateFileError::kNotOpened);
  }
  CArchive archive(file, CArchive::Mode::kStore);
  object.Serialize(archive);
  const auto stored = ToResult(archive.Close());
  const CFile::Done flushed = file.Flush();
  const CFile::Done closed = file.Close();
  // Any of these steps may be the first one that finds no room.
  if (file.GetError() == platform::FileError::kDiskFull) {
    return Failure(TemplateFileError::kDiskFull);
  }
  return flushed && closed ? stored : Failure(TemplateFileError::kFileFailure);
}

platform::Result<void, platform::FileError> ReplaceTemplateFile(platform::FileSystem& files,
                                                                std::u16string_view path,
                                                                framework::CObject& object) {
  const auto made = files.OpenReplacement(path);
  if (!made) {
    return Failure(made.error());
  }
  CFile file(files);
  file.Attach((*made)->GetFile());
  CArchive archive(file, CArchive::Mode::kStore);
  object.Serialize(archive);
  if (!archive.Close()) {
    return Failure(file.GetError().value_or(platform::FileError::kOther));
  }
  return (*made)->Publish(platform::Durability::kNow);
}

platform::Result<void, TemplateFileError> ReadTemplateFile(platform::FileSystem& files,
                                                           std::u16string_view path,
                                                           framework::CObject& object) {
  CFile file(files);
  if (!file.Open(path, CFile::modeRead)) {
    return Failure(TemplateFileError::kNotOpened);
  }
  CArchive archive(file, CArchive::Mode::kLoad);
  object.Serialize(archive);
  return ToResult(archive.Close());
}

// The template as a byte stream: element count (32 bits), frame count (16 bits), floats.

void CVoiceMathematics::Serialize(framework::CArchive& archive) {
  if (archive.IsStoring()) {
    Store(archive);
  } else {
    Load(archive);
  }
}

void CVoiceMathematics::Store(framework::CArchive& archive) const {
  const auto values = GetTemplate(0);
  if (m_elementCount < 0 || static_cast<std::size_t>(m_elementCount) != values.size()) {
    // Another slot was computed last; slot 0 does not hold that many values.
    archive.Fail(framework::ArchiveError::kBadFormat);
    return;
  }
  archive << static_cast<std::uint32_t>(m_elementCount) << m_frameCounts[0];
  for (const float value : values) {
    archive << value;
  }
}

void CVoiceMathematics::Load(framework::CArchive& archive) {
  std::uint32_t elements = 0;
  std::uint16_t frames = 0;
  archive >> elements >> frames;
  if (!archive.GetStatus()) {
    return;
  }
  if (m_loadSlot < 0 || m_loadSlot >= static_cast<std::int32_t>(kSlotCount) ||
      elements != std::uint32_t{frames} * m_bandCount) {
    archive.Fail(framework::ArchiveError::kBadFormat);
    return;
  }
  // Asked before memory is reserved: a damaged count must not reserve what the file does not hold.
  if (archive.GetRemaining() < std::uint64_t{elements} * sizeof(float)) {
    archive.Fail(framework::ArchiveError::kEndOfFile);
    return;
  }
  std::unique_ptr<float[]> values(new (std::nothrow) float[elements]);
  if (!values) {
    archive.Fail(framework::ArchiveError::kFileFailure);
    return;
  }
  for (std::uint32_t i = 0; i < elements; ++i) {
    archive >> values[i];
  }
  if (archive.GetStatus() &&
      !SetTemplate(static_cast<std::size_t>(m_loadSlot), std::move(values), frames)) {
    archive.Fail(framework::ArchiveError::kFileFailure);
  }
}

}  // namespace voicemath
