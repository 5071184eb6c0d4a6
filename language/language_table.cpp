#include "language/language_table.h"

#include <memory>
#include <optional>
#include <utility>

#include "language/language_file_reader.h"

namespace language {
namespace {

// Milliseconds. A reader is done in one or two.
constexpr std::uint32_t kRetryWait = 10;
constexpr std::uint32_t kLongestWait = 1000;

/// One for the process, made when it is first asked for.
std::unique_ptr<LanguageTable>& Instance() {
  static std::unique_ptr<LanguageTable> instance;
  return instance;
}

}  // namespace

LanguageTable& LanguageTable::GetInstance() {
  if (!Instance()) {
    Instance() = std::make_unique<LanguageTable>();
  }
  return *Instance();
}

bool LanguageTable::IsMade() { return Instance() != nullptr; }

void LanguageTable::Release() { Instance().reset(); }

void LanguageTable::Load(platform::FileSystem& files, std::u16string_view path) {
  LoadFrom(files.Open(path, {}));
}

// The file is opened for reading alone and shared with nobody, as the device does it. So a second
// process that starts at the same moment finds it in use, and tries again until the first has read
// it.
void LanguageTable::Load(platform::FileSystem& files, std::u16string_view path,
                         platform::Clock& clock) {
  auto opened = files.Open(path, {});
  for (std::uint32_t waited = 0;
       !opened && opened.error() == platform::FileError::kSharingViolation && waited < kLongestWait;
       waited += kRetryWait) {
    clock.Sleep(kRetryWait);
    opened = files.Open(path, {});
  }
  LoadFrom(opened);
}

void LanguageTable::LoadFrom(
    const platform::Result<std::unique_ptr<platform::File>, platform::FileError>& opened) {
  m_entries.clear();
  if (!opened) {
    return;
  }
  const auto length = (*opened)->GetLength();
  if (!length || *length > kMaxFileLength) {
    return;
  }
  std::vector<std::byte> bytes(static_cast<std::size_t>(*length));
  const auto read = (*opened)->Read(bytes);
  if (!read) {
    return;
  }
  // The file may have become shorter since its length was asked for.
  bytes.resize(*read);
  LoadFrom(bytes);
}

void LanguageTable::LoadFrom(std::span<const std::byte> file) {
  m_entries.clear();
  LanguageFileReader reader(file);
  for (auto line = reader.Next(); line && m_entries.size() < kMaxEntries; line = reader.Next()) {
    // Lines without a text are no entries: their key then shows an empty text, as one that is
    // missing.
    if (line->kind == LineKind::kEntry) {
      m_entries.push_back({std::u16string(line->key), std::u16string(line->text)});
    }
  }
}

// From the front, since the first of two equal keys counts. A file has some fifty entries, and a
// window asks for its texts once.
const char16_t* LanguageTable::LookUp(const char16_t* key, const char16_t* defaultText) const {
  if (key == nullptr) {
    return defaultText;
  }
  const std::u16string_view wanted(key);
  for (const Entry& entry : m_entries) {
    if (entry.key == wanted) {
      return entry.text.c_str();
    }
  }
  return defaultText;
}

}  // namespace language
