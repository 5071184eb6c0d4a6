#include "backends/vcard/book_cache.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "resources/remark_strings.h"
#include "resources/translations.h"

namespace vcard {
namespace {

using Bytes = std::span<const std::byte>;

constexpr std::u16string_view kFile = u"\\contacts";
constexpr std::size_t kSumBytes = sizeof(std::uint64_t);
constexpr std::string_view kMark = "Voxtrel contacts";

/// Of what is kept and of how cards are read. A test notices that one of them has changed.
constexpr std::uint32_t kVersion = 2;

/// A hundred thousand contacts take less.
constexpr std::uint64_t kMostBytes = std::uint64_t{256} << 20;

template <typename Number>
void AppendNumber(std::vector<std::byte>& to, Number number) {
  static_assert(std::is_integral_v<Number>);
  const auto bytes = std::bit_cast<std::array<std::byte, sizeof number>>(number);
  to.insert(to.end(), bytes.begin(), bytes.end());
}

template <typename Character>
void AppendText(std::vector<std::byte>& to, std::basic_string_view<Character> text) {
  AppendNumber(to, std::uint64_t{text.size()});
  const Bytes bytes = std::as_bytes(std::span(text));
  to.insert(to.end(), bytes.begin(), bytes.end());
}

/// Takes one thing after the other from the front of some bytes. What does not fit is 0 or empty,
/// and so is all that follows.
class Taker {
 public:
  explicit Taker(Bytes bytes) : m_bytes(bytes) {}

  template <typename Number>
  [[nodiscard]] Number TakeNumber() {
    Number number = 0;
    if (const Bytes taken = Take(sizeof number); !taken.empty()) {
      std::memcpy(&number, taken.data(), sizeof number);
    }
    return number;
  }

  template <typename Character>
  [[nodiscard]] std::basic_string<Character> TakeText() {
    const auto length = TakeNumber<std::uint64_t>();
    std::basic_string<Character> text;
    if (length <= m_bytes.size() / sizeof(Character)) {
      text.resize(length);
      const Bytes taken = Take(length * sizeof(Character));
      if (!taken.empty()) {
        std::memcpy(text.data(), taken.data(), taken.size());
      }
    } else {
      m_isWhole = false;
    }
    return text;
  }

  [[nodiscard]] bool IsWhole() const { return m_isWhole; }
  [[nodiscard]] std::size_t CountLeft() const { return m_bytes.size(); }

  [[nodiscard]] Bytes Take(std::size_t count) {
    m_isWhole = m_isWhole && count <= m_bytes.size();
    if (!m_isWhole) {
      return {};
    }
    const Bytes taken = m_bytes.first(count);
    m_bytes = m_bytes.subspan(count);
    return taken;
  }

 private:
  Bytes m_bytes;
  bool m_isWhole = true;
};

/// Finds what a disk tore or lost. It takes eight bytes at a time, so that a file of a megabyte
/// costs next to nothing. The bytes may come in any pieces.
class Checksum {
 public:
  void Add(Bytes bytes) {
    if (m_waiting > 0) {
      const Bytes first = bytes.first(std::min(bytes.size(), sizeof m_word - m_waiting));
      Fill(first);
      bytes = bytes.subspan(first.size());
    }
    for (; bytes.size() >= sizeof m_word; bytes = bytes.subspan(sizeof m_word)) {
      std::memcpy(&m_word, bytes.data(), sizeof m_word);
      TakeWord();
    }
    Fill(bytes);
  }

  /// Ends the bytes.
  [[nodiscard]] std::uint64_t Finish() {
    TakeWord();
    return m_sum;
  }

 private:
  void Fill(Bytes bytes) {
    std::memcpy(reinterpret_cast<std::byte*>(&m_word) + m_waiting, bytes.data(), bytes.size());
    m_waiting += bytes.size();
    if (m_waiting == sizeof m_word) {
      TakeWord();
    }
  }

  void TakeWord() {
    constexpr std::uint64_t kOddFactor = 0x9E3779B97F4A7C15;
    constexpr unsigned kHalf = 32;
    m_sum = (m_sum ^ m_word) * kOddFactor;
    m_sum ^= m_sum >> kHalf;
    m_word = 0;
    m_waiting = 0;
  }

  std::uint64_t m_sum = 1;
  std::uint64_t m_word = 0;
  std::size_t m_waiting = 0;  ///< Bytes of m_word.
};

/// Returns what stands before the contacts: what the copy is of. The same file read by this program
/// in the same language gives the same bytes. Remarks are sentences, so the language counts.
std::vector<std::byte> KeyOf(std::u16string_view path, const platform::FileVersion& version) {
  std::vector<std::byte> key;
  AppendText(key, kMark);
  AppendNumber(key, kVersion);
  AppendNumber(key, version.medium);
  AppendNumber(key, version.file);
  AppendNumber(key, version.length);
  AppendNumber(key, version.written);
  AppendNumber(key, version.changed);
  AppendText(key, path);
  AppendText(key, resources::Say(resources::kNoKindIsFree));
  return key;
}

std::vector<std::byte> DescribeBook(const Book& book, const std::vector<Remark>& remarks) {
  std::vector<std::byte> bytes;
  AppendNumber(bytes, std::uint32_t{book.isComplete ? 1U : 0U});
  AppendNumber(bytes, std::uint64_t{remarks.size()});
  for (const Remark& remark : remarks) {
    AppendText(bytes, std::u16string_view(remark.place));
    AppendNumber(bytes, std::uint64_t{remark.line});
    AppendText(bytes, std::string_view(remark.text));
  }
  AppendNumber(bytes, std::uint64_t{book.contacts.size()});
  return bytes;
}

bool HasSum(Bytes bytes) {
  if (bytes.size() < kSumBytes) {
    return false;
  }
  Checksum sum;
  sum.Add(bytes.subspan(kSumBytes));
  return Taker(bytes).TakeNumber<std::uint64_t>() == sum.Finish();
}

std::vector<Remark> TakeRemarks(Taker& taker) {
  std::vector<Remark> remarks;
  const auto count = taker.TakeNumber<std::uint64_t>();
  while (taker.IsWhole() &&
         remarks.size() < std::min<std::uint64_t>(count, RemarkList::kMaxRemarks)) {
    Remark& remark = remarks.emplace_back();
    remark.place = taker.TakeText<char16_t>();
    remark.line = taker.TakeNumber<std::uint64_t>();
    remark.text = taker.TakeText<char>();
  }
  return remarks;
}

/// Returns the whole content of an open file. Returns nothing if it cannot be the copy.
std::optional<std::vector<std::byte>> ReadWhole(platform::File& file) {
  const auto length = file.GetLength();
  if (!length || *length > kMostBytes) {
    return std::nullopt;
  }
  std::vector<std::byte> bytes(static_cast<std::size_t>(*length));
  const auto read = file.Read(bytes);
  return read && *read == bytes.size() ? std::optional(std::move(bytes)) : std::nullopt;
}

}  // namespace

// The file: a checksum of all that follows, the key, the book without its contacts, the contacts.
// Nothing of it counts before its checksum and the bounds of each part were looked at.
bool BookCache::Recall(std::u16string_view path, const platform::FileVersion& version, Book& book,
                       RemarkList& remarks) {
  const auto file = m_files.Open(kFile, {platform::FileAccess::kRead, platform::FileShare::kRead,
                                         platform::FileCreation::kOpenExisting});
  auto bytes = file ? ReadWhole(**file) : std::nullopt;
  if (!bytes || !HasSum(*bytes)) {
    return false;
  }
  Taker taker(Bytes(*bytes).subspan(kSumBytes));
  const std::vector<std::byte> key = KeyOf(path, version);
  if (!std::ranges::equal(taker.Take(key.size()), key)) {
    return false;
  }
  const bool isComplete = taker.TakeNumber<std::uint32_t>() != 0;
  std::vector<Remark> told = TakeRemarks(taker);
  const auto count = taker.TakeNumber<std::uint64_t>();
  const std::size_t start = bytes->size() - taker.CountLeft();
  auto contacts =
      taker.IsWhole() ? ContactPool::FromBytes(std::move(*bytes), start, count) : std::nullopt;
  if (!contacts) {
    return false;
  }
  book.contacts = std::move(*contacts);
  book.isComplete = isComplete;
  std::ranges::for_each(told, [&](Remark& remark) { remarks.Add(std::move(remark)); });
  return true;
}

std::vector<std::byte> BookCache::WithSum(Bytes content) {
  Checksum sum;
  sum.Add(content);
  std::vector<std::byte> bytes;
  AppendNumber(bytes, sum.Finish());
  bytes.insert(bytes.end(), content.begin(), content.end());
  return bytes;
}

// A book with torn cards, or with more remarks than are kept, is damaged, and its user will mend
// it.
void BookCache::Keep(std::u16string_view path, const platform::FileVersion& version,
                     const Book& book, const RemarkList& remarks) {
  const std::vector<Remark> all = remarks.GetAll();
  if (!book.torn.empty() || all.size() != remarks.Count()) {
    return;
  }
  const auto replacement = m_files.OpenReplacement(kFile);
  if (!replacement) {
    return;
  }
  platform::File& file = (*replacement)->GetFile();
  const auto own = file.GetVersion();
  if (!own || own->medium != version.medium) {
    return;
  }
  Checksum sum;
  const auto write = [&](Bytes bytes) {
    sum.Add(bytes);
    return file.Write(bytes).has_value();
  };
  bool isWritten = file.Seek(kSumBytes) && write(KeyOf(path, version)) &&
                   write(DescribeBook(book, all)) &&
                   std::ranges::all_of(book.contacts.GetBytes(), write);
  std::vector<std::byte> first;
  AppendNumber(first, sum.Finish());
  isWritten = isWritten && file.Seek(0) && file.Write(first);
  if (isWritten) {
    // The next reading makes a copy that is lost again.
    static_cast<void>((*replacement)->Publish(platform::Durability::kLater));
  }
}

}  // namespace vcard
