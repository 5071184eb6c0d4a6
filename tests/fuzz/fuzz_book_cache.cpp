// Takes arbitrary bytes for the copy of an address book, with a right checksum and a right key:
// what is taken is a book, and everything else counts as nothing.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "backends/vcard/book_cache.h"
#include "backends/vcard/contact_keys.h"
#include "tests/fuzz/require.h"
#include "tests/machine/memory_file_system.h"

namespace {

constexpr std::u16string_view kPath = u"/all.vcf";
constexpr std::u16string_view kCopy = u"\\contacts";
constexpr platform::FileVersion kVersion{.length = 100'000, .isSettled = true};

/// What stands before the part that says what the book is.
std::vector<std::byte> ReadKey() {
  constexpr std::size_t kSum = 8;
  constexpr std::size_t kEmptyBook = 4 + 8 + 8;  // Whether it is complete, no remark, no contact.
  machine::MemoryFileSystem files;
  vcard::BookCache(files).Keep(kPath, kVersion, vcard::Book{u"book", {}, true}, {});
  const std::vector<std::byte> copy = files.GetFile(kCopy).value();
  return {copy.begin() + kSum, copy.end() - kEmptyBook};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::vector<std::byte> key = ReadKey();
  std::vector<std::byte> content = key;
  const auto bytes = std::as_bytes(std::span(data, size));
  content.insert(content.end(), bytes.begin(), bytes.end());
  machine::MemoryFileSystem files;
  Require(files.PutFile(kCopy, vcard::BookCache::WithSum(content)), "the file can be made");

  vcard::Book book{u"book", {}};
  vcard::RemarkList remarks;
  if (!vcard::BookCache(files).Recall(kPath, kVersion, book, remarks)) {
    Require(book.contacts.empty() && remarks.Count() == 0, "what is not taken fills nothing");
    return 0;
  }
  for (const vcard::ContactData contact : book.contacts) {
    Require(contact.numbers.size() == platform::kPhoneKindCount, "a contact can be read");
  }
  Require(vcard::KeysOf(book).size() == book.contacts.size(), "each contact has its keys");
  vcard::BookCache(files).Keep(kPath, kVersion, book, remarks);
  vcard::Book again{u"book", {}};
  vcard::RemarkList remarksAgain;
  Require(vcard::BookCache(files).Recall(kPath, kVersion, again, remarksAgain),
          "what was taken can be kept");
  Require(vcard::SeedsOf(again.contacts) == vcard::SeedsOf(book.contacts), "and is the same");
  return 0;
}
