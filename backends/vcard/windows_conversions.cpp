// Character sets by the code pages of Windows, digests by its cryptography.

#include <windows.h>

#include <bcrypt.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <vector>

#include "backends/text/utf.h"
#include "backends/vcard/charset.h"
#include "backends/vcard/contact_keys.h"

namespace vcard {
namespace {

struct NamedPage {
  std::string_view charset;
  UINT page;
};
constexpr UINT kJapaneseMailPage = 50220;
constexpr std::array<NamedPage, 16> kPages{{{"US-ASCII", 20127},
                                            {"ASCII", 20127},
                                            {"KOI8-R", 20866},
                                            {"KOI8-U", 21866},
                                            {"SHIFT_JIS", 932},
                                            {"SHIFT-JIS", 932},
                                            {"EUC-JP", 20932},
                                            {"EUC-KR", 51949},
                                            {"GB2312", 936},
                                            {"GBK", 936},
                                            {"GB18030", 54936},
                                            {"BIG5", 950},
                                            {"TIS-620", 874},
                                            {"ISO-2022-JP", kJapaneseMailPage},
                                            {"UTF-8", CP_UTF8},
                                            {"UTF8", CP_UTF8}}};

/// Returns the number after `prefix`, or 0.
UINT NumberAfter(std::string_view text, std::string_view prefix) {
  UINT number = 0;
  if (text.starts_with(prefix)) {
    std::from_chars(text.data() + prefix.size(), text.data() + text.size(), number);
  }
  return number;
}

/// Returns 0 if the system does not know the set.
UINT FindPage(std::string_view charset) {
  constexpr UINT kFirstIso = 28590;
  const std::string upper = ToUpper(charset);
  const auto named = std::ranges::find(kPages, upper, &NamedPage::charset);
  UINT page = named != kPages.end() ? named->page : 0;
  if (const UINT iso = NumberAfter(upper, "ISO-8859-"); iso != 0) {
    page = kFirstIso + iso;
  } else if (page == 0) {
    page = std::max(NumberAfter(upper, "WINDOWS-"), NumberAfter(upper, "CP"));
  }
  return page == kJapaneseMailPage || ::IsValidCodePage(page) != FALSE ? page : 0;
}

/// Returns the text of `bytes`, or an empty one if not all of them are something in the set.
std::u16string Decode(UINT page, DWORD flags, std::string_view bytes) {
  const auto count = static_cast<int>(bytes.size());
  const int length = ::MultiByteToWideChar(page, flags, bytes.data(), count, nullptr, 0);
  if (length <= 0) {
    return {};
  }
  std::u16string text(static_cast<std::size_t>(length), u'\0');
  ::MultiByteToWideChar(page, flags, bytes.data(), count, reinterpret_cast<wchar_t*>(text.data()),
                        length);
  return text;
}

/// Goes from character to character. Of what is none, one byte is passed over.
Converted DecodePiecewise(UINT page, std::string_view bytes) {
  constexpr std::size_t kLongestCharacter = 4;
  Converted converted;
  while (!bytes.empty()) {
    std::u16string character;
    std::size_t length = 0;
    while (character.empty() && length < std::min(kLongestCharacter, bytes.size())) {
      character = Decode(page, MB_ERR_INVALID_CHARS, bytes.substr(0, ++length));
    }
    if (character.empty()) {
      character = u"\uFFFD";
      length = 1;
      converted.isWhole = false;
    }
    converted.text += text::ToUtf8(character);
    bytes.remove_prefix(length);
  }
  return converted;
}

/// Decodes ISO-2022-JP, whose page some systems lack and none checks. It changes between four sets:
/// ASCII, JIS X 0201, in which two characters of ASCII are others, and two editions of JIS X 0208,
/// each of whose characters has two bytes. With its highest bits set that is EUC-JP.
Converted DecodeJapaneseMail(std::string_view mail) {
  constexpr UINT kEucJp = 20932;
  constexpr char kEscape = '\x1B';
  constexpr std::size_t kEscapeLength = 3;
  Converted all;
  char set = 'B';
  bool isWide = false;
  while (!mail.empty()) {
    const std::string_view escape = mail.substr(0, kEscapeLength);
    const bool isNarrowEscape = escape == "\x1B(B" || escape == "\x1B(J";
    if (isNarrowEscape || escape == "\x1B$@" || escape == "\x1B$B") {
      isWide = !isNarrowEscape;
      set = escape.back();
      mail.remove_prefix(kEscapeLength);
      continue;
    }
    std::string part(mail.substr(0, std::min(mail.find(kEscape, 1), mail.size())));
    mail.remove_prefix(part.size());
    for (char& byte : part) {
      byte = isWide || byte == kEscape ? static_cast<char>(byte | '\x80') : byte;
    }
    Converted converted = DecodePiecewise(kEucJp, part);
    for (const char unit : converted.text) {
      const bool isOther = !isWide && set == 'J' && (unit == '\\' || unit == '~');
      all.text +=
          !isOther ? std::string(1, unit) : text::ToUtf8(unit == '~' ? u"\u203E" : u"\u00A5");
    }
    all.isWhole = all.isWhole && converted.isWhole;
  }
  return all;
}

struct CloseAlgorithm {
  void operator()(void* algorithm) const { ::BCryptCloseAlgorithmProvider(algorithm, 0); }
};
struct CloseHash {
  void operator()(void* hash) const { ::BCryptDestroyHash(hash); }
};

/// Every Windows has this algorithm. Without memory for it nothing can go on.
void Require(NTSTATUS status) {
  if (!BCRYPT_SUCCESS(status)) {
    throw std::bad_alloc();
  }
}

}  // namespace

std::optional<Converted> ConvertBySystem(const std::string& charset, std::string text) {
  const UINT page = FindPage(charset);
  if (page == 0) {
    return std::nullopt;
  }
  if (text.empty()) {
    return Converted{};
  }
  // Bytes that are none count as one by one by our own decoder, as on other systems.
  if (page == CP_UTF8) {
    return Converted{text::ToUtf8(text::FromUtf8(text)), text::IsUtf8(text)};
  }
  if (page == kJapaneseMailPage) {
    return DecodeJapaneseMail(text);
  }
  const std::u16string decoded = Decode(page, MB_ERR_INVALID_CHARS, text);
  return decoded.empty() ? DecodePiecewise(page, text) : Converted{text::ToUtf8(decoded)};
}

Digest ComputeDigest(std::string_view text) {
  BCRYPT_ALG_HANDLE algorithm = nullptr;
  Require(::BCryptOpenAlgorithmProvider(&algorithm, BCRYPT_SHA256_ALGORITHM, nullptr, 0));
  const std::unique_ptr<void, CloseAlgorithm> ownedAlgorithm(algorithm);
  BCRYPT_HASH_HANDLE hash = nullptr;
  Require(::BCryptCreateHash(algorithm, &hash, nullptr, 0, nullptr, 0, 0));
  const std::unique_ptr<void, CloseHash> ownedHash(hash);
  // The system changes nothing of what it hashes, and its declaration does not say so.
  auto* const bytes = reinterpret_cast<UCHAR*>(const_cast<char*>(text.data()));
  Require(::BCryptHashData(hash, bytes, static_cast<ULONG>(text.size()), 0));
  // The system gives all of it or nothing. Only the beginning is kept.
  constexpr std::size_t kWholeBytes = 32;
  std::array<UCHAR, kWholeBytes> whole{};
  Require(::BCryptFinishHash(hash, whole.data(), static_cast<ULONG>(whole.size()), 0));
  Digest digest{};
  static_assert(sizeof(digest) <= kWholeBytes);
  std::memcpy(digest.data(), whole.data(), sizeof(digest));
  return digest;
}

}  // namespace vcard
