#include "storage/folders.h"

#include <array>
#include <string>

#include "storage/device_paths.h"

// The folders of the store. What makes them depends on the moment: opening the page makes the
// install folders, a press of Record the data folders, and neither reports anything. What cannot be
// made then is reported by FolderRule, when something is to be stored there.
namespace storage {

using platform::FileError;
using platform::Result;

namespace {

constexpr int kExitCode = 0;  ///< Deliberately that of success.

/// Makes a folder. One that is there, or that another program makes at this moment, is as good.
Result<void, FileError> MakeSure(platform::FileSystem& files, std::u16string_view folder) {
  const auto made = files.CreateFolder(folder);
  return !made && made.error() == FileError::kAlreadyExists ? Result<void, FileError>() : made;
}

}  // namespace

void CreateInstallFolders(platform::FileSystem& files) {
  // No failure is reported here, and none is needed: a folder that is missing is noticed when
  // something is stored (FolderRule).
  static_cast<void>(files.CreateFolder(kMakerFolder));
  static_cast<void>(files.CreateFolder(kInstallFolder));
}

void CreateDataFolders(platform::FileSystem& files) {
  static_cast<void>(files.CreateFolder(kWaveFolder));
  static_cast<void>(files.CreateFolder(kTemplateFolder));
}

Result<void, FileError> CreateStoreFolders(platform::FileSystem& files) {
  Result<void, FileError> made;
  for (const std::u16string_view folder :
       {kProgramFilesFolder, kMakerFolder, kInstallFolder, kWaveFolder, kTemplateFolder}) {
    made = made.and_then([&] { return MakeSure(files, folder); });
  }
  return made;
}

Result<void, FileError> FolderRule::EnsureWaveFolder() const {
  return Ensure({kWaveFolder, resources::kNoWaveFolder});
}

Result<void, FileError> FolderRule::EnsureTemplateFolder() const {
  return Ensure({kTemplateFolder, resources::kNoTemplateFolder});
}

Result<void, FileError> FolderRule::Ensure(const Step& dataFolder) const {
  // One look is enough for the usual case. Only if the folder is missing are those above it asked
  // for, from the outermost one, and the first that cannot be made has the message.
  if (Exists(dataFolder.folder)) {
    return {};
  }
  const std::array steps{Step{kProgramFilesFolder, resources::kNoProgramFilesFolder},
                         Step{kMakerFolder, resources::kNoMakerFolder},
                         Step{kInstallFolder, resources::kNoInstallFolder}, dataFolder};
  for (const Step& step : steps) {
    if (Exists(step.folder)) {
      continue;
    }
    if (const auto made = MakeSure(m_files, step.folder); !made) {
      m_ui.ShowMessage(
          {std::u16string(m_texts(step.failure)), platform::MessageCaption::kNone, {}});
      m_process.End(kExitCode);
      return made;
    }
  }
  return {};
}

bool FolderRule::Exists(std::u16string_view folder) const {
  return m_files.Find(folder).has_value();
}

}  // namespace storage
