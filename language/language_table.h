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

/// The texts of a language file by their keys, in file order, duplicates kept.
class LanguageTable {
 public:
  struct Entry {
    std::u16string key;
    std::u16string text;
  };

  /// As many entries as the count of the table can tell; later ones of a file are not taken.
  static constexpr std::size_t kMaxEntries = 65535;

  /// Longest file that is read, in bytes: all the memory that one program of the handheld had.
  static constexpr std::uint64_t kMaxFileLength = std::uint64_t{32} << 20U;

  LanguageTable() = default;
  ~LanguageTable() = default;
  LanguageTable(const LanguageTable&) = delete;
  LanguageTable& operator=(const LanguageTable&) = delete;

  /// The one table of the process, made on the first call. It and Release are for the applet's
  /// entry alone, on the thread that starts it; everything else is given what it needs.
  [[nodiscard]] static LanguageTable& GetInstance();

  /// Returns whether the process has its table. Makes none.
  [[nodiscard]] static bool IsMade();

  /// Empties and destroys the table of the process; its texts are gone then.
  static void Release();

  /// Replaces the contents with the entries of a file. A file that cannot be read, or that does not
  /// begin as a language file must, leaves the table empty, without a word: all texts are empty
  /// then.
  void Load(platform::FileSystem& files, std::u16string_view path);

  /// The same, but waits up to a second for another process that is just reading the file, which
  /// neither shares with anybody: programs that start together must not lose all their texts.
  void Load(platform::FileSystem& files, std::u16string_view path, platform::Clock& clock);

  /// The same for a file that was read already.
  void LoadFrom(std::span<const std::byte> file);

  /// Text of the first entry with exactly this key, owned by the table and valid until the next
  /// load. `defaultText` where there is none or `key` is null. Both may be null.
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
