#include "host/machine/places.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <system_error>

namespace machine {
namespace {

namespace fs = std::filesystem;

constexpr const char* kLibraries = VOXTREL_LIBRARIES;
constexpr const char* kData = VOXTREL_DATA;
/// In which everything lies together.
constexpr std::string_view kOneFolder = ".";

fs::path FindFolder(const fs::path& own) {
  return own.is_absolute() ? own.parent_path() : fs::path();
}

/// Returns the folder of the build in which the code of `folder` was made. Returns an empty path if
/// it is part of no build. A folder is taken for a build only if it holds the cache of one, and
/// only if the code lies in a folder that a build has: next to an installed file, folders of the
/// same names are somebody else's.
fs::path FindBuild(const fs::path& folder) {
  constexpr std::array<std::string_view, 3> kRooms{"benchmarks", "host", "tests"};
  fs::path room;
  for (fs::path at = folder; at.has_relative_path(); at = at.parent_path()) {
    std::error_code ignored;
    if (fs::exists(at / "CMakeCache.txt", ignored)) {
      return std::ranges::find(kRooms, room.string()) != kRooms.end() ? at : fs::path();
    }
    room = at.filename();
  }
  return {};
}

/// A program is in bin, the applet's library in lib/voxtrel, unless both are in one folder.
fs::path FindInstalled(const fs::path& folder) {
  if (kLibraries == kOneFolder) {
    return folder;
  }
  const fs::path parent = folder.parent_path();
  return fs::path(parent.filename()) / folder.filename() == kLibraries ? parent.parent_path()
                                                                       : parent;
}

}  // namespace

Places::Places(const fs::path& own)
    : m_folder(FindFolder(own)),
      m_build(FindBuild(m_folder)),
      m_installed(FindInstalled(m_folder)) {}

fs::path Places::Get(const char* inBuild, const char* installed) const {
  if (m_folder.empty()) {
    return {};
  }
  return m_build.empty() ? m_installed / installed : m_build / inBuild;
}

fs::path Places::GetProgram(const Program& program) const {
  if (m_folder.empty()) {
    return {};
  }
  return (m_build.empty() ? m_folder : m_build / program.folder) /
         (std::string(program.name) + VOXTREL_PROGRAM_SUFFIX);
}

fs::path Places::GetAppletFolder() const { return Get("host/applet", kLibraries); }

fs::path Places::GetDataFolder() const { return Get(kData, kData); }

std::vector<fs::path> Places::GetLibrary(const char* name, const char* folder) const {
  if (m_folder.empty()) {
    return {};
  }
  return {m_folder / name, Get(folder, kLibraries) / name};
}

}  // namespace machine
