#include "storage/folders.h"

#include <algorithm>
#include <array>
#include <string>

#include "storage/device_paths.h"

namespace storage {

using platform::FileError;

namespace {

constexpr int kExitCode = 0;

void Create(platform::FileSystem& files, std::u16string_view folder) {
  static_cast<void>(files.CreateFolder(folder));
}

}  // namespace

void CreateInstallFolders(platform::FileSystem& files) {
  Create(files, kMakerFolder);
  Create(files, kInstallFolder);
}

void CreateDataFolders(platform::FileSystem& files) {
  Create(files, kWaveFolder);
  Create(files, kTemplateFolder);
}

bool CreateStoreFolders(platform::FileSystem& files) {
  constexpr std::array kFolders{kProgramFilesFolder, kMakerFolder, kInstallFolder, kWaveFolder,
                                kTemplateFolder};
  return std::ranges::all_of(kFolders, [&files](std::u16string_view folder) {
    const auto made = files.CreateFolder(folder);
    return made || made.error() == FileError::kAlreadyExists;
  });
}

FolderResult FolderRule::EnsureWaveFolder() const {
  return Ensure({kWaveFolder, resources::kNoWaveFolder});
}

FolderResult FolderRule::EnsureTemplateFolder() const {
  return Ensure({kTemplateFolder, resources::kNoTemplateFolder});
}

FolderResult FolderRule::Ensure(const Step& dataFolder) const {
  if (Exists(dataFolder.folder)) {
    return FolderResult::kReady;
  }
  const std::array steps{Step{kProgramFilesFolder, resources::kNoProgramFilesFolder},
                         Step{kMakerFolder, resources::kNoMakerFolder},
                         Step{kInstallFolder, resources::kNoInstallFolder}, dataFolder};
  for (const Step& step : steps) {
    if (Exists(step.folder)) {
      continue;
    }
    const auto made = m_files.CreateFolder(step.folder);
    // Another program may have made it since it was looked for.
    if (made || made.error() == FileError::kAlreadyExists) {
      continue;
    }
    m_ui.ShowMessage({std::u16string(m_texts(step.failure)), platform::MessageCaption::kNone, {}});
    m_process.End(kExitCode);
    return FolderResult::kEnded;
  }
  return FolderResult::kReady;
}

bool FolderRule::Exists(std::u16string_view folder) const {
  return m_files.Find(folder).has_value();
}

}  // namespace storage
