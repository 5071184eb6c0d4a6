#pragma once

#include <filesystem>
#include <vector>

namespace machine {

/// A program of the system, by which the others start it.
struct Program {
  const char* name;
  const char* folder;  ///< In which it is built.
};
inline constexpr Program kCommandLine{"voxtrel", "host/cli"};
inline constexpr Program kDialer{"voxtrel-dial", "host/dial"};
inline constexpr Program kHome{"voxtrel-home", "host/home"};
inline constexpr Program kPanel{"voxtrel-panel", "host/panel"};
inline constexpr Program kConnectionWindow{"voxtrel-connection", "host/connection"};

/// Where the parts of the system are, as seen from one of them. A part of a build finds the parts
/// of that build. An installed part finds what is installed with it, so that the whole can be
/// moved. Nothing is ever looked for in the current folder: if `own` is not known, every path is
/// empty.
class Places {
 public:
  /// `own` is the absolute path of a program, of a test or of the applet's library.
  explicit Places(const std::filesystem::path& own);

  [[nodiscard]] std::filesystem::path GetProgram(const Program& program) const;

  /// Returns the folder of the applets.
  [[nodiscard]] std::filesystem::path GetAppletFolder() const;

  /// Returns the folder with the help, the language files and the samples.
  [[nodiscard]] std::filesystem::path GetDataFolder() const;

  /// Returns the places to look for a library that is loaded on demand, the best first. `folder` is
  /// the one in which it is built.
  [[nodiscard]] std::vector<std::filesystem::path> GetLibrary(const char* name,
                                                              const char* folder) const;

 private:
  [[nodiscard]] std::filesystem::path Get(const char* inBuild, const char* installed) const;

  const std::filesystem::path m_folder;  ///< Of `own`; empty if that is not known.
  const std::filesystem::path m_build;   ///< The build folder; empty if this is part of no build.
  const std::filesystem::path m_installed;  ///< The folder that holds bin, lib and share.
};

}  // namespace machine
