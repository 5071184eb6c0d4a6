#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <utility>

#include "backends/posix/system_calls.h"
#include "platform/module.h"
#include "platform/result.h"

namespace posix {

// What a process asks of the libraries that it loads. It finds the file of its own code, calls a
// function of another library, and reads the icons that a library shows to its control panel.

/// Returns the file of this code, which is a program or a library that a program has loaded.
/// Returns an empty path if the system does not know it.
[[nodiscard]] std::filesystem::path FindOwnFile();

/// Loads the first of `libraries` that exists, for good, and returns the address of a function that
/// it exports. Fails with the system's words for why there is none.
[[nodiscard]] platform::Result<void*, std::string> LoadFunction(
    std::span<const std::filesystem::path> libraries, const char* name);

/// The resources of a library on Linux. The handle of an icon is the number of an open file
/// descriptor that holds a picture in SVG, read-only and of fixed length. The whole process knows
/// it without help from this library. A control panel reads it from offset 0, with pread or through
/// a mapping, since the file offset is shared, and never closes it. Belongs to one thread.
class PosixModule final : public platform::Module {
 public:
  /// Returns the picture of an icon by its number. Returns none if there is no such icon.
  using GetPicture = std::function<std::span<const std::byte>(int id)>;

  explicit PosixModule(GetPicture getPicture) : m_getPicture(std::move(getPicture)) {}

  [[nodiscard]] platform::IconHandle LoadIcon(int id) override;
  void DestroyIcon(platform::IconHandle icon) override;
  int LoadString(int id, std::span<char16_t> buffer) override;

 private:
  const GetPicture m_getPicture;
  std::map<int, Descriptor> m_icons;
};

}  // namespace posix
