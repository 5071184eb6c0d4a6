#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "platform/file_system.h"

namespace language {

/// The texts of a language file by their keys, in the order of the file. A key that the file has
/// twice is kept twice, and the first one counts.
class LanguageTable {
 public:
  struct Entry {
    std::u16string key;
    std::u16string text;
  };

  /// The count of the table is 16 bits wide. Entries of a file beyond that are not taken.
  static constexpr std::size_t kMaxEntries = 65535;

  /// A longer file is not read. So many bytes were all the memory that a program of the handheld
  /// had.
  static constexpr std::uint64_t kMaxFileLength = std::uint64_t{32} << 20U;

  LanguageTable() = default;
  ~LanguageTable() = default;
  LanguageTable(const LanguageTable&) = delete;
  LanguageTable& operator=(const LanguageTable&) = delete;

  /// Returns the one table of the process, which the first call makes. Only the applet's entry uses
  /// this and Release, on the thread that starts it. Everything else is given what it needs.
  [[nodiscard]] static LanguageTable& GetInstance();

  /// Returns whether the process has its table. Makes none.
  [[nodiscard]] static bool IsMade();

  /// Destroys the table of the process and its texts.
  static void Release();

  /// Replaces the contents by the entries of a file. If the file cannot be read, or does not begin
  /// as a language file must, the table is empty and nothing is reported: all texts are empty then.
  void Load(platform::FileSystem& files, std::u16string_view path);

  /// Does the same, but waits up to a second while another process reads the file. Each
  /// process opens the file for itself alone, and programs that start together must not lose all
  /// their texts.
  void Load(platform::FileSystem& files, std::u16string_view path, platform::Clock& clock);

  /// Does the same with a file that was read already.
  void LoadFrom(std::span<const std::byte> file);

  /// Returns the text of the first entry with exactly this key. The table owns it, and it is valid
  /// until the next load. Returns `defaultText` if there is no such entry or `key` is null. Both
  /// arguments may be null.
  [[nodiscard]] const char16_t* LookUp(const char16_t* key, const char16_t* defaultText) const;

  [[nodiscard]] std::uint16_t GetCount() const {
    return static_cast<std::uint16_t>(m_entries.size());
  }
  [[nodiscard]] const std::vector<Entry>& GetEntries() const { return m_entries; }

 private:
  void LoadFrom(
      const platform::Result<std::unique_ptr<platform::File>, platform::FileError>& opened);

  std::vector<Entry> m_entries;  ///< At most kMaxEntries.
};

}  // namespace language
