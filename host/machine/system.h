#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "backends/vcard/contact_source.h"
#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/registry.h"
#include "platform/threads.h"
#include "platform/wave_devices.h"
#include "platform/wave_inputs.h"

// What differs from one system to the next. Each system has one source file with these functions,
// and the build chooses it.

namespace machine {

/// Returns the file of the program, or of the library, that this code is part of. Returns an empty
/// path if the system does not know it.
[[nodiscard]] std::filesystem::path FindOwnFile();

/// Returns the root folder of a user who chose none. Returns none if the user has no home folder.
[[nodiscard]] std::optional<std::filesystem::path> FindDefaultRoot();

/// Returns the folder for what this program may lose at any time. It belongs to the user alone, and
/// is made if it is missing. Returns nothing if there can be no such folder.
[[nodiscard]] std::optional<std::filesystem::path> MakeCacheFolder();

/// Makes the root folder if it is missing, and takes from other users every right to `paths`, which
/// are paths of the device, to the files that lie directly in them, and to what else this system
/// keeps there.
void MakeRootFor(const std::filesystem::path& root, std::vector<std::u16string> paths);

/// Returns the vCard file, or the folder of such files, that is read if the user chose none.
[[nodiscard]] std::u16string FindDefaultContacts(platform::FileSystem& files);

/// These convert a path of this machine to the name by which the system's files know it, and back.
[[nodiscard]] std::u16string ToName(const std::filesystem::path& path);
[[nodiscard]] std::string ToHostText(std::u16string_view name);

// Device paths lie below `root`, and so do the locks of named mutexes.
[[nodiscard]] std::unique_ptr<platform::FileSystem> MakeFiles(const std::filesystem::path& root);
[[nodiscard]] std::unique_ptr<platform::Threads> MakeThreads(const std::filesystem::path& root);
[[nodiscard]] std::unique_ptr<platform::Clock> MakeClock();

/// Returns the name of the input that the user chose for this program, and an empty text if none
/// was chosen. May be called from any thread.
using ChosenMicrophone = std::function<std::u16string()>;

// The settings that belong to `root`.

enum class RegistryUse : std::uint8_t { kChange, kRead };
[[nodiscard]] std::unique_ptr<platform::Registry> MakeRegistry(const std::filesystem::path& root,
                                                               RegistryUse use);
/// Returns the place of the settings in words of this system, such as the path of their file.
[[nodiscard]] std::string NameOfRegistry(const std::filesystem::path& root);
/// Returns the file of the settings that is a symbolic link. Returns an empty path if none is.
[[nodiscard]] std::filesystem::path FindRegistryLink(const std::filesystem::path& root);

// The devices that the user chose for this system. They are made before there is a second thread.
[[nodiscard]] std::unique_ptr<platform::WaveIn> MakeMicrophone(ChosenMicrophone getChosen);
[[nodiscard]] std::unique_ptr<platform::WaveInputs> MakeWaveInputs(ChosenMicrophone getChosen);
[[nodiscard]] std::unique_ptr<platform::WaveOut> MakeLoudspeaker();

/// Loads what knows the desktop's address books, at the first call for good.
[[nodiscard]] vcard::DesktopSource::Library LoadDesktopBooks();

}  // namespace machine
