#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string>

#include "backends/win32/windows.h"
#include "platform/module.h"

namespace win32 {

// What a process asks of the programs and libraries that it is made of, and where its user's
// folders are.

/// Returns the file of this code, which is a program or a library that a program has loaded.
/// Returns an empty path if the system does not know it.
[[nodiscard]] std::filesystem::path FindOwnFile();

/// A folder that the system keeps for the user.
enum class UserFolder { kLocalData, kContacts };

/// Returns none if the user has no such folder.
[[nodiscard]] std::optional<std::filesystem::path> FindUserFolder(UserFolder folder);

/// The resources of a library on Windows. The handle of an icon is the system's. Belongs to one
/// thread.
class Win32Module final : public platform::Module {
 public:
  explicit Win32Module(HINSTANCE instance) : m_instance(instance) {}

  [[nodiscard]] platform::IconHandle LoadIcon(int id) override;
  void DestroyIcon(platform::IconHandle icon) override;
  int LoadString(int id, std::span<char16_t> buffer) override;

 private:
  const HINSTANCE m_instance;
};

}  // namespace win32
