#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace sqlite {

/// Returns the file that remembers which database was found sound last. It is the user's own, and
/// can be lost at any time. Returns nothing if there can be none.
using FindSoundMark = std::function<std::optional<std::filesystem::path>()>;

/// Whether every page of a database has to be looked at again. It need not if the file is, to the
/// nanosecond, the one that was found sound last, and no log lies next to it: whatever ended
/// uncleanly since then would have left a log, or changed the file. A change by anybody makes the
/// next opening look at all pages again, once.
///
/// Used around one such look: made before it, Keep called after it.
class SoundMark {
 public:
  /// A smaller database is looked at in no time, and nothing is remembered of it.
  static constexpr std::uintmax_t kFewestBytes = std::uintmax_t{128} * 1024;

  /// Without `find` nothing is remembered.
  SoundMark(std::filesystem::path database, const FindSoundMark& find);

  [[nodiscard]] bool IsKnownSound() const { return m_isKnown; }

  /// Remembers that the database, which was looked at since this was made, is sound. Remembers
  /// nothing if it may have changed meanwhile.
  void Keep() const;

 private:
  /// Returns a line about which file the database is and when it was changed. Returns an empty text
  /// if that does not say all about its content.
  [[nodiscard]] std::string Describe() const;

  const std::filesystem::path m_database;
  std::string m_version;  ///< When this was made.
  std::filesystem::path m_mark;
  bool m_isKnown = false;
};

/// Returns whether changes lie next to the database that it does not hold yet, or may do so.
[[nodiscard]] bool HasLog(const std::filesystem::path& database);

}  // namespace sqlite
