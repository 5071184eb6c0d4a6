// Has the dialer read what a contact may have as its number: any UTF-16 text.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "backends/text/printable.h"
#include "dialer/number.h"
#include "tests/fuzz/require.h"

namespace {

bool HoldsOnly(std::string_view text, std::string_view characters) {
  return text.find_first_not_of(characters) == std::string_view::npos;
}

/// Returns the keys of a telephone that are in a text.
template <typename Text>
std::string KeysOf(const Text& text) {
  std::string keys;
  for (const auto unit : text) {
    if ((unit >= '0' && unit <= '9') || unit == '*' || unit == '#' || unit == '+') {
      keys += static_cast<char>(unit);
    }
  }
  return keys;
}

void CheckNumber(std::u16string_view stored, const dialer::Number& number) {
  const std::string dialled = number.ToDialString();
  Require(HoldsOnly(dialled, "0123456789*#+,W"), "a modem gets nothing but what is dialled");
  Require(dialled.find('+', 1) == std::string::npos, "a plus is at the beginning");
  Require(dialled.size() <= dialer::kMostDialled + 1, "a modem's line is not too long");
  Require(KeysOf(dialled) == KeysOf(stored), "no digit comes or goes");

  const std::string uri = number.ToUri();
  const std::size_t parameters = std::min(uri.find(';'), uri.size());
  Require(uri.starts_with("tel:") && parameters > 4, "an address has a number");
  Require(HoldsOnly(std::string_view(uri).substr(4, parameters - 4), "0123456789*+,%"),
          "an address holds nothing that it may not hold");
  const std::string_view extension = std::string_view(uri).substr(parameters);
  Require(extension.empty() || (extension.starts_with(";ext=") && extension.size() > 5 &&
                                HoldsOnly(extension.substr(5), "0123456789")),
          "a parameter is an extension");

  const std::u16string again(dialled.begin(), dialled.end());
  const auto same = dialer::MakeNumber(again);
  Require(same ? same->ToDialString() == dialled : dialled.size() > dialer::kMostDialled,
          "what is dialled can be stored and dialled");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::u16string stored;
  for (std::size_t i = 0; i + 1 < size; i += 2) {
    stored += static_cast<char16_t>(data[i] | data[i + 1] << 8U);
  }
  const auto number = dialer::MakeNumber(stored);
  if (number) {
    CheckNumber(stored, *number);
  } else {
    Require(std::ranges::none_of(number.error().shown, text::IsCommand),
            "a refused text is shown without commands for a terminal");
    Require(!dialer::Explain(number.error()).empty(), "a refusal has a reason");
  }
  return 0;
}
