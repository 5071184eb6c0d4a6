// The back ends of Windows.

#include <algorithm>
#include <utility>

#include "backends/text/host_path.h"
#include "backends/text/utf.h"
#include "backends/win32/host_paths.h"
#include "backends/win32/library.h"
#include "backends/win32/win32_file_system.h"
#include "backends/win32/win32_registry.h"
#include "backends/win32/win32_sound.h"
#include "backends/win32/win32_threads.h"
#include "host/machine/system.h"
#include "storage/registry_keys.h"

namespace machine {
namespace {

namespace fs = std::filesystem;

constexpr const char* kRootName = "Voxtrel";

/// The registry that is documented belongs to the usual root folder. The tags of another one are no
/// business of the dialer's.
win32::RegistryPlace PlaceFor(const fs::path& root, win32::RegistryPlace::Deciding deciding) {
  const auto usual = FindDefaultRoot();
  const fs::path normal = root.lexically_normal();
  return usual && normal == usual->lexically_normal()
             ? win32::RegistryPlace::OfUser(deciding)
             : win32::RegistryPlace::OfRoot(ToName(normal));
}

}  // namespace

fs::path FindOwnFile() { return win32::FindOwnFile(); }

std::optional<fs::path> FindDefaultRoot() {
  auto data = win32::FindUserFolder(win32::UserFolder::kLocalData);
  return data ? std::optional(*data / kRootName) : std::nullopt;
}

std::u16string FindDefaultContacts(platform::FileSystem& files) {
  constexpr std::u16string_view kOwnFile = u"\\contacts.vcf";
  const auto folder = win32::FindUserFolder(win32::UserFolder::kContacts);
  return files.Find(kOwnFile) || !folder ? std::u16string(kOwnFile) : ToName(*folder);
}

// Nothing is kept for the next time: files do not say their versions.
std::optional<fs::path> MakeCacheFolder() { return std::nullopt; }

// Below the user's own folder nobody else has a right to a file. In another folder the user who
// chose it decides.
void MakeRootFor(const fs::path& root, std::vector<std::u16string> /*paths*/) {
  const auto path = win32::ToLongPath(ToName(root));
  if (path) {
    static_cast<void>(win32::MakeFolders(*path));
  }
}

std::u16string ToName(const fs::path& path) { return text::ToFileName(path); }

std::string ToHostText(std::u16string_view name) {
  std::u16string path(name);
  std::ranges::replace(path, u'/', u'\\');
  return text::ToUtf8(path);
}

std::unique_ptr<platform::FileSystem> MakeFiles(const fs::path& root) {
  return std::make_unique<win32::Win32FileSystem>(ToName(root));
}

std::unique_ptr<platform::Threads> MakeThreads(const fs::path& root) {
  return std::make_unique<win32::Win32Threads>(ToName(root.lexically_normal()));
}

std::unique_ptr<platform::Clock> MakeClock() { return std::make_unique<win32::Win32Clock>(); }

std::unique_ptr<platform::Registry> MakeRegistry(const fs::path& root, RegistryUse use) {
  win32::RegistryOptions options;
  options.initialKeys.assign(storage::kInstalledKeys.begin(), storage::kInstalledKeys.end());
  options.orderedKeys = {std::u16string(storage::kTagKey)};
  options.ownKeys = {u"Drivers\\Active", u"Software\\Zedra"};
  options.isReadOnly = use == RegistryUse::kRead;
  using Deciding = win32::RegistryPlace::Deciding;
  auto place = PlaceFor(root, options.isReadOnly ? Deciding::kForNow : Deciding::kForGood);
  return std::make_unique<win32::Win32Registry>(std::move(place), std::move(options));
}

std::string NameOfRegistry(const fs::path& root) {
  return text::ToUtf8(PlaceFor(root, win32::RegistryPlace::Deciding::kForNow).GetName());
}

// The registry of Windows is no file of the user's.
fs::path FindRegistryLink(const fs::path& /*root*/) { return {}; }

std::unique_ptr<platform::WaveIn> MakeMicrophone(ChosenMicrophone getChosen) {
  return std::make_unique<win32::Win32WaveIn>(std::move(getChosen));
}

std::unique_ptr<platform::WaveInputs> MakeWaveInputs(ChosenMicrophone getChosen) {
  return std::make_unique<win32::Win32WaveInputs>(std::move(getChosen));
}

std::unique_ptr<platform::WaveOut> MakeLoudspeaker() {
  return std::make_unique<win32::Win32WaveOut>();
}

vcard::DesktopSource::Library LoadDesktopBooks() {
  return [](std::uint32_t /*milliseconds*/, platform::DesktopBooks& books) {
    books = platform::Failure(platform::BooksError{platform::BooksError::Kind::kNoAnswer,
                                                   "the desktop's address books need Linux"});
  };
}

}  // namespace machine
