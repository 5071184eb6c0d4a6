#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "backends/vcard/desktop_source.h"
#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/threads.h"
#include "platform/wave_devices.h"
#include "platform/wave_inputs.h"

// What differs from one system to the next. Each system has one source file with these functions,
// and the build chooses it.

namespace machine {

/// Returns the folder in which the user's programs keep their data. Returns none if the user has no
/// home folder.
[[nodiscard]] std::optional<std::filesystem::path> FindDataFolder();

/// Makes the root folder if it is missing, and takes from other users every right to `paths`, which
/// are paths of the device, to the files that lie directly in them, and to the lock of the
/// instance.
void MakeRootFor(const std::filesystem::path& root, std::span<const std::u16string> paths);

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

// The devices that the user chose for this system. They are made before there is a second thread.
[[nodiscard]] std::unique_ptr<platform::WaveIn> MakeMicrophone(ChosenMicrophone getChosen);
[[nodiscard]] std::unique_ptr<platform::WaveInputs> MakeWaveInputs(ChosenMicrophone getChosen);
[[nodiscard]] std::unique_ptr<platform::WaveOut> MakeLoudspeaker();

/// Loads what knows the desktop's address books, at the first call for good.
[[nodiscard]] vcard::DesktopSource::Library LoadDesktopBooks();

}  // namespace machine
