#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"

namespace language {

// The language of the device's texts is one file at a fixed place. To choose a language is to put a
// file there, to choose English is to take it away. The languages to choose from are files of one
// folder, each named "Voxtrel.LANGUAGE.lng".

/// Why a language was not chosen. The file in place stays as it was then.
enum class LanguageError : std::uint8_t {
  kOwnFile,     ///< The file in place is none of the folder, and would be replaced.
  kUnreadable,  ///< The file of the language, or the one in place, cannot be read.
  kInUse,       ///< Another program has the file in place open.
  kNotWritten,
};

/// What becomes of a file in place that is none of the folder: a translation of the user's own.
enum class OwnFile : std::uint8_t {
  kStays,
  kMayGo,  ///< It is kept next to its place, under another name.
};

/// Lists the languages, and chooses one. Keeps nothing: each call reads the folder and the file.
class LanguageChoice {
 public:
  /// `folder` has the languages, and `place` is the path of the file in use. `files` outlive this.
  LanguageChoice(platform::FileSystem& files, std::u16string folder, std::u16string place)
      : m_files(files), m_folder(std::move(folder)), m_place(std::move(place)) {}

  /// Returns the languages of the folder, such as "de" and "zh-Hans", sorted.
  [[nodiscard]] std::vector<std::string> List() const;

  /// Returns the language in use: one of List, or an empty text for the built-in English. Returns
  /// nothing if the file in place is none of the folder, or cannot be read.
  [[nodiscard]] std::optional<std::string> GetCurrent() const;

  /// Puts a language in place in one step. An empty text means the built-in English. The folders on
  /// the way must exist. Returns the name of the copy if a file of the user's own was kept, else an
  /// empty text.
  [[nodiscard]] platform::Result<std::u16string, LanguageError> Choose(const std::string& language,
                                                                       OwnFile ownFile) const;

 private:
  using Bytes = std::vector<std::byte>;

  [[nodiscard]] std::u16string PathOf(const std::string& language) const;
  [[nodiscard]] platform::Result<Bytes, platform::FileError> Read(const std::u16string& path) const;
  [[nodiscard]] platform::Result<void, LanguageError> Write(const std::u16string& path,
                                                            const Bytes& bytes) const;
  [[nodiscard]] platform::Result<std::u16string, LanguageError> KeepCopy(const Bytes& bytes) const;

  platform::FileSystem& m_files;
  const std::u16string m_folder;
  const std::u16string m_place;
};

}  // namespace language
