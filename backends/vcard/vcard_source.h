#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "backends/vcard/book_cache.h"
#include "backends/vcard/card_reader.h"
#include "backends/vcard/contact_source.h"
#include "platform/file_system.h"

namespace vcard {

/// Returns the lasting name of the address book that a vCard file or a folder of them is.
[[nodiscard]] std::u16string NameOfFile(std::u16string_view path);

/// A vCard file, or the files of a folder that end in ".vcf", as one address book. Files come in
/// the order of their names, and contacts in the order in which they are written. Each file is read
/// once, from its start to its end, in bounded memory.
class VcardSource final : public ContactSource {
 public:
  // Nobody's address book reaches these. They end an endless file.
  static constexpr std::size_t kMaxContacts = 100'000;
  static constexpr std::uint64_t kMaxBytes = std::uint64_t{1} << 30;

  /// `path` is absolute, or one of the device. It names the book for good. With `openCache`, a file
  /// that has not changed since it was last read is not read again. A folder always is.
  VcardSource(platform::FileSystem& files, std::u16string path, OpenCache openCache = {});

  /// A file of a folder is passed over if it is not there, as at the end of a dangling link, or if
  /// it may not be opened. So is a link that cannot be followed, as one in a circle. A source
  /// without a single card is unreadable: an empty file or folder is more likely one that was lost,
  /// or not mounted, than one whose last contact was deleted.
  [[nodiscard]] ReadBooks Read(RemarkList& remarks) override;

  /// Returns whether there is a file to read, or may be one: a folder may have none.
  [[nodiscard]] bool HasFile() const;

 private:
  using ReadPart = platform::Result<void, platform::FileError>;
  using OpenedFile = platform::Result<std::unique_ptr<platform::File>, platform::FileError>;

  [[nodiscard]] ReadPart ReadFolder(Book& book, RemarkList& remarks);
  [[nodiscard]] ReadPart ReadFileOfFolder(const std::u16string& path, Book& book,
                                          RemarkList& remarks);
  [[nodiscard]] ReadPart ReadFile(const std::u16string& path, Book& book, RemarkList& remarks);
  /// The same for a file that is the whole source.
  [[nodiscard]] ReadPart ReadOrRecall(Book& book, RemarkList& remarks);
  [[nodiscard]] ReadPart ReadCards(platform::File& file, const std::u16string& path, Book& book,
                                   RemarkList& remarks) const;
  [[nodiscard]] OpenedFile Open(const std::u16string& path) const;
  [[nodiscard]] bool IsLink(const std::u16string& path) const;

  platform::FileSystem& m_files;
  std::u16string m_path;
  const OpenCache m_openCache;
};

}  // namespace vcard
