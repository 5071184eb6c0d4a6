#include "platform/ebook/charset.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <memory>

#include "platform/ebook/ascii.h"

namespace ebook {
namespace {

constexpr const char* kLegacyCharset = "WINDOWS-1252";

constexpr std::array<std::string_view, 20> kSingleSets = {
    "UTF-8",     "UTF8",   "US-ASCII", "ASCII",  "KOI8-R", "KOI8-U",  "SHIFT_JIS",
    "SHIFT-JIS", "EUC-JP", "EUC-KR",   "GB2312", "GBK",    "GB18030", "BIG5",
    "TIS-620",   "CP874",  "CP932",    "CP936",  "CP949",  "CP950"};

/// Sets that differ in a number behind the prefix.
struct Family {
  std::string_view prefix;
  std::size_t maxDigits;
};
constexpr std::array<Family, 3> kFamilies = {{{"ISO-8859-", 2}, {"WINDOWS-125", 1}, {"CP125", 1}}};

bool IsMember(const Family& family, std::string_view name) {
  if (!name.starts_with(family.prefix)) {
    return false;
  }
  const std::string_view number = name.substr(family.prefix.size());
  return !number.empty() && number.size() <= family.maxDigits &&
         number.find_first_not_of("0123456789") == std::string_view::npos;
}

}  // namespace

bool IsKnownCharset(std::string_view name) {
  const std::string upper = ToUpper(name);
  return std::find(kSingleSets.begin(), kSingleSets.end(), upper) != kSingleSets.end() ||
         std::any_of(kFamilies.begin(), kFamilies.end(),
                     [&upper](const Family& family) { return IsMember(family, upper); });
}

bool IsUtf8(std::string_view text) {
  return g_utf8_validate_len(text.data(), text.size(), nullptr) != FALSE;
}

std::optional<std::string> ToUtf8(std::string_view text, std::string_view charset) {
  if (!IsKnownCharset(charset)) {
    return std::nullopt;
  }
  gsize length = 0;
  const std::unique_ptr<char, decltype(&g_free)> converted(
      g_convert(text.data(), static_cast<gssize>(text.size()), "UTF-8",
                std::string(charset).c_str(), nullptr, &length, nullptr),
      &g_free);
  if (!converted) {
    return std::nullopt;
  }
  return std::string(converted.get(), length);
}

std::string GuessUtf8(std::string_view text) {
  if (IsUtf8(text)) {
    return std::string(text);
  }
  return ToUtf8(text, kLegacyCharset).value_or(std::string(text));
}

}  // namespace ebook
