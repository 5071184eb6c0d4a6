#pragma once

#include <string>

#include "backends/vcard/card_reader.h"
#include "backends/vcard/contact_source.h"
#include "platform/file_system.h"

namespace vcard {

/// A vCard file, or the files of a folder that end in ".vcf" in the order of their names, as one
/// address book in the order in which the contacts are written. Each file is read once, from its
/// start to its end, in bounded memory.
class VcardSource final : public ContactSource {
 public:
  // What nobody's address book reaches, so that an endless file ends somewhere.
  static constexpr std::size_t kMaxContacts = 100'000;
  static constexpr std::uint64_t kMaxBytes = std::uint64_t{1} << 30;

  /// `path` is absolute, or one of the device; it names the book for good.
  VcardSource(platform::FileSystem& files, std::u16string path);

  /// If a file of a folder cannot be opened because it is not there, as at the end of a dangling
  /// link, only that file is passed over. So is a link that cannot be followed, as one in a circle.
  /// A source without a single card is unreadable: an empty file or folder is more likely one that
  /// was lost, or not mounted, than one whose last contact was deleted.
  [[nodiscard]] ReadBooks Read(RemarkList& remarks) override;

 private:
  using ReadPart = platform::Result<void, platform::FileError>;

  [[nodiscard]] ReadPart ReadFolder(Book& book, RemarkList& remarks);
  [[nodiscard]] ReadPart ReadFileOfFolder(const std::u16string& path, Book& book,
                                          RemarkList& remarks);
  [[nodiscard]] ReadPart ReadFile(const std::u16string& path, Book& book, RemarkList& remarks);
  [[nodiscard]] bool IsLink(const std::u16string& path) const;

  platform::FileSystem& m_files;
  std::u16string m_path;
};

}  // namespace vcard
