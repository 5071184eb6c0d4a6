#include "backends/vcard/vcard_source.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "backends/text/say.h"
#include "backends/text/utf.h"
#include "resources/remark_strings.h"

namespace vcard {

using platform::Failure;
using platform::FileError;

namespace {

constexpr std::size_t kChunkSize = std::size_t{64} * 1024;

char16_t SeparatorOf(std::u16string_view path) { return path.starts_with(u'\\') ? u'\\' : u'/'; }

/// Returns why a file of a folder is passed over. Returns an empty text if its error is no reason
/// for that.
std::u16string_view PassOver(FileError error) {
  switch (error) {
    case FileError::kNotFound:
      return resources::kFileLeadsNowhere;
    case FileError::kLink:
      return resources::kLinkNotFollowed;
    case FileError::kAccessDenied:
    case FileError::kSharingViolation:
      return resources::kFileNotOpened;
    default:
      return {};
  }
}

}  // namespace

std::u16string NameOfFile(std::u16string_view path) {
  return std::u16string(u"vcard:").append(path);
}

VcardSource::VcardSource(platform::FileSystem& files, std::u16string path, OpenCache openCache)
    : m_files(files), m_path(std::move(path)), m_openCache(std::move(openCache)) {
  while (m_path.size() > 1 && m_path.back() == SeparatorOf(m_path)) {
    m_path.pop_back();
  }
}

ReadBooks VcardSource::Read(RemarkList& remarks) {
  const auto search = m_files.Find(m_path);
  const auto found = search ? (*search)->Next() : Failure(search.error());
  if (!found || !*found) {
    return Failure(platform::BooksError());
  }
  Book book;
  book.name = NameOfFile(m_path);
  book.isComplete = true;
  const auto read = (*found)->isFolder ? ReadFolder(book, remarks) : ReadOrRecall(book, remarks);
  if (!read || book.contacts.empty()) {
    return Failure(platform::BooksError());
  }
  std::vector<Book> books;
  books.push_back(std::move(book));
  return books;
}

bool VcardSource::HasFile() const {
  const auto search = m_files.Find(m_path);
  const auto found = search ? (*search)->Next() : Failure(search.error());
  if (!found || !*found) {
    return false;
  }
  return !(*found)->isFolder ||
         m_files.Find(m_path + SeparatorOf(m_path) + u"*.vcf") != Failure(FileError::kNotFound);
}

// Systems find files in any order, and numbers of equal cards depend on the order. So the names are
// sorted before anything is read.
VcardSource::ReadPart VcardSource::ReadFolder(Book& book, RemarkList& remarks) {
  const std::u16string prefix = m_path + SeparatorOf(m_path);
  auto search = m_files.Find(prefix + u"*.vcf");
  if (!search) {
    return Failure(search.error());
  }
  std::vector<std::u16string> names;
  auto found = (*search)->Next();
  for (; found && *found; found = (*search)->Next()) {
    if (!(*found)->isFolder) {
      names.push_back((*found)->name);
    }
  }
  if (!found) {
    return Failure(found.error());
  }
  search->reset();
  std::sort(names.begin(), names.end());
  for (const std::u16string& name : names) {
    if (auto read = ReadFileOfFolder(prefix + name, book, remarks); !read) {
      return read;
    }
  }
  return {};
}

VcardSource::ReadPart VcardSource::ReadFileOfFolder(const std::u16string& path, Book& book,
                                                    RemarkList& remarks) {
  const std::size_t before = book.contacts.size();
  if (auto read = ReadFile(path, book, remarks); !read) {
    const std::u16string_view sentence = PassOver(read.error());
    if (sentence.empty()) {
      return read;
    }
    remarks.Add({path, 0, text::Say(sentence)});
  } else if (book.contacts.size() == before) {
    remarks.Add({path, 0, text::Say(resources::kFileWithoutCard)});
  }
  book.isComplete = book.isComplete && book.contacts.size() > before;
  return {};
}

bool VcardSource::IsLink(const std::u16string& path) const {
  // A link is followed if a file is opened for reading, and refused if it is opened for writing. So
  // this opens the path for writing, and writes nothing.
  const auto file = m_files.Open(path, {platform::FileAccess::kWrite, platform::FileShare::kNone,
                                        platform::FileCreation::kOpenExisting});
  return !file && file.error() == FileError::kLink;
}

VcardSource::OpenedFile VcardSource::Open(const std::u16string& path) const {
  auto file = m_files.Open(path, {platform::FileAccess::kRead, platform::FileShare::kRead,
                                  platform::FileCreation::kOpenExisting});
  const bool isCircle = !file && file.error() == FileError::kOther && IsLink(path);
  return isCircle ? Failure(FileError::kLink) : std::move(file);
}

VcardSource::ReadPart VcardSource::ReadFile(const std::u16string& path, Book& book,
                                            RemarkList& remarks) {
  const OpenedFile file = Open(path);
  return file ? ReadCards(**file, path, book, remarks) : Failure(file.error());
}

// The file may be changed while it is read. So what was read counts for the version that the file
// had before, and only if it still has that one.
VcardSource::ReadPart VcardSource::ReadOrRecall(Book& book, RemarkList& remarks) {
  const OpenedFile file = Open(m_path);
  if (!file) {
    return Failure(file.error());
  }
  const auto version = (*file)->GetVersion();
  const bool canBeKept = version && BookCache::CanKeep(*version) && m_openCache;
  platform::FileSystem* const cache = canBeKept ? m_openCache() : nullptr;
  if (cache != nullptr && BookCache(*cache).Recall(m_path, *version, book, remarks)) {
    return {};
  }
  auto read = ReadCards(**file, m_path, book, remarks);
  if (read && cache != nullptr && (*file)->GetVersion() == version) {
    BookCache(*cache).Keep(m_path, *version, book, remarks);
  }
  return read;
}

VcardSource::ReadPart VcardSource::ReadCards(platform::File& file, const std::u16string& path,
                                             Book& book, RemarkList& remarks) const {
  CardReader reader(path, kMaxContacts, book, remarks);
  const auto chunk = std::make_unique<std::array<std::byte, kChunkSize>>();
  std::uint64_t total = 0;
  std::size_t length = kChunkSize;
  while (length == kChunkSize) {
    const auto read = file.Read(*chunk);
    total += read.value_or(0);
    if (!read || total > kMaxBytes || book.contacts.size() > kMaxContacts) {
      return Failure(FileError::kOther);
    }
    length = *read;
    reader.Feed({reinterpret_cast<const char*>(chunk->data()), length});
  }
  reader.Finish();
  if (book.contacts.size() > kMaxContacts) {
    return Failure(FileError::kOther);
  }
  return {};
}

}  // namespace vcard
