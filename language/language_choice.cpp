#include "language/language_choice.h"

#include <algorithm>

#include "language/language_table.h"

// One file at a fixed place is the language. To choose a language copies a file that comes with the
// system there, and to choose English deletes it. A file that is none of those may be somebody's
// translation. It goes only with the user's leave, and even then a copy stays.
namespace language {

using platform::Failure;
using platform::FileError;
using platform::Result;

namespace {

constexpr std::u16string_view kStart = u"Voxtrel.";
constexpr std::u16string_view kEnd = u".lng";
/// The English that translators begin with. In place, it shows the same as no file at all.
constexpr std::u16string_view kEnglishFile = u"Voxtrel.lng";

/// Returns the language in the name of a file. Returns an empty text if it is no such name: names
/// of languages are letters, digits and hyphens.
std::string LanguageOf(std::u16string_view name) {
  if (!name.starts_with(kStart) || !name.ends_with(kEnd) ||
      name.size() <= kStart.size() + kEnd.size()) {
    return {};
  }
  name = name.substr(kStart.size(), name.size() - kStart.size() - kEnd.size());
  const bool isPlain = std::ranges::all_of(name, [](char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
           c == u'-';
  });
  return isPlain ? std::string(name.begin(), name.end()) : std::string();
}

LanguageError ToError(FileError error) {
  return error == FileError::kSharingViolation ? LanguageError::kInUse : LanguageError::kNotWritten;
}

}  // namespace

std::u16string LanguageChoice::PathOf(const std::string& language) const {
  return m_folder + u'/' + std::u16string(kStart) +
         std::u16string(language.begin(), language.end()) + std::u16string(kEnd);
}

Result<LanguageChoice::Bytes, FileError> LanguageChoice::Read(const std::u16string& path) const {
  // Opened like the applet opens it, alone. One that is being read is in use for a moment.
  const auto file = m_files.Open(path, {});
  const auto length = file ? (*file)->GetLength() : Failure(file.error());
  if (!length) {
    return Failure(length.error());
  }
  if (*length > LanguageTable::kMaxFileLength) {
    return Failure(FileError::kOther);
  }
  Bytes bytes(static_cast<std::size_t>(*length));
  const auto count = (*file)->Read(bytes);
  return count && *count == bytes.size() ? Result<Bytes, FileError>(std::move(bytes))
                                         : Failure(FileError::kOther);
}

Result<void, LanguageError> LanguageChoice::Write(const std::u16string& path,
                                                  const Bytes& bytes) const {
  const auto made = m_files.OpenReplacement(path);
  const auto written = made ? (*made)->GetFile().Write(bytes) : Failure(made.error());
  const auto published = written ? (*made)->Publish(platform::Durability::kNow) : written;
  return published ? Result<void, LanguageError>() : Failure(ToError(published.error()));
}

std::vector<std::string> LanguageChoice::List() const {
  std::vector<std::string> languages;
  const auto search = m_files.Find(m_folder + u"/*" + std::u16string(kEnd));
  while (search) {
    const auto found = (*search)->Next();
    if (!found || !*found) {
      break;
    }
    if (std::string language = LanguageOf((*found)->name);
        !language.empty() && !(*found)->isFolder) {
      languages.push_back(std::move(language));
    }
  }
  std::ranges::sort(languages);
  return languages;
}

std::optional<std::string> LanguageChoice::GetCurrent() const {
  const auto inPlace = Read(m_place);
  if (!inPlace) {
    return inPlace.error() == FileError::kNotFound ? std::optional(std::string()) : std::nullopt;
  }
  // The file has no name of a language in it. Which one it is shows only by comparing it with those
  // that are offered.
  if (const auto english = Read(m_folder + u'/' + std::u16string(kEnglishFile));
      english && *english == *inPlace) {
    return std::string();
  }
  for (std::string& language : List()) {
    if (const auto file = Read(PathOf(language)); file && *file == *inPlace) {
      return std::move(language);
    }
  }
  return std::nullopt;
}

// The number counts until there is no such file: each copy is kept.
Result<std::u16string, LanguageError> LanguageChoice::KeepCopy(const Bytes& bytes) const {
  constexpr int kMost = 1000;
  for (int number = 1; number < kMost; ++number) {
    const std::string digits = std::to_string(number);
    std::u16string path = m_place + u".own" + std::u16string(digits.begin(), digits.end());
    if (const auto there = m_files.Open(path, {});
        !there && there.error() == FileError::kNotFound) {
      return Write(path, bytes).map([&path] { return std::move(path); });
    }
  }
  return Failure(LanguageError::kNotWritten);
}

Result<std::u16string, LanguageError> LanguageChoice::Choose(const std::string& language,
                                                             OwnFile ownFile) const {
  const auto wanted = language.empty() ? Result<Bytes, FileError>(Bytes()) : Read(PathOf(language));
  const auto inPlace = Read(m_place);
  // A file that cannot be read is there all the same, and is not written over.
  const bool isThere = inPlace || inPlace.error() != FileError::kNotFound;
  if (isThere && !inPlace) {
    return Failure(inPlace.error() == FileError::kSharingViolation ? LanguageError::kInUse
                                                                   : LanguageError::kUnreadable);
  }
  if (!wanted) {
    return Failure(LanguageError::kUnreadable);
  }
  std::u16string kept;
  // It is none of the offered ones, so somebody has made or changed it.
  if (isThere && !GetCurrent()) {
    if (ownFile == OwnFile::kStays) {
      return Failure(LanguageError::kOwnFile);
    }
    auto copy = KeepCopy(*inPlace);
    if (!copy) {
      return copy;
    }
    kept = std::move(*copy);
  }
  if (!language.empty()) {
    return Write(m_place, *wanted).map([&kept] { return std::move(kept); });
  }
  const auto deleted = isThere ? m_files.Delete(m_place) : Result<void, FileError>();
  return deleted ? Result<std::u16string, LanguageError>(std::move(kept))
                 : Failure(ToError(deleted.error()));
}

}  // namespace language
