#pragma once

#include "language/texts.h"
#include "platform/file_system.h"
#include "platform/process.h"
#include "platform/ui.h"

namespace storage {

/// Makes the maker's folder and the install folder if they are missing. Failures are ignored: the
/// folder rule reports what is still missing afterwards.
void CreateInstallFolders(platform::FileSystem& files);

/// Makes the two data folders in the same way.
void CreateDataFolders(platform::FileSystem& files);

/// Makes every folder of the store that is missing. Fails if one is missing afterwards.
[[nodiscard]] platform::Result<void, platform::FileError> CreateStoreFolders(
    platform::FileSystem& files);

/// The folder rule: a data folder that is missing is made with every missing folder on its way.
/// If one cannot be made, a message names it and the process ends with code 0, since nothing can be
/// done without it.
class FolderRule {
 public:
  FolderRule(platform::FileSystem& files, platform::Ui& ui, platform::Process& process,
             language::Texts texts)
      : m_files(files), m_ui(ui), m_process(process), m_texts(texts) {}

  /// After success there is something of the folder's name. After a failure the message was shown
  /// and the process was ended, so the caller must leave at once.
  [[nodiscard]] platform::Result<void, platform::FileError> EnsureWaveFolder() const;
  [[nodiscard]] platform::Result<void, platform::FileError> EnsureTemplateFolder() const;

 private:
  struct Step {
    std::u16string_view folder;
    resources::Text failure;
  };

  [[nodiscard]] platform::Result<void, platform::FileError> Ensure(const Step& dataFolder) const;
  [[nodiscard]] bool Exists(std::u16string_view folder) const;

  platform::FileSystem& m_files;
  platform::Ui& m_ui;
  platform::Process& m_process;
  language::Texts m_texts;
};

}  // namespace storage
