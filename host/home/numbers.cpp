#include "host/home/numbers.h"

#include <array>

#include "host/home/say.h"
#include "resources/tags_window_strings.h"
#include "storage/phone_types.h"

namespace home {
namespace {

// In the order of the kinds.
constexpr std::array kKindNames = {resources::kCarKind,         resources::kRadioKind,
                                   resources::kMobileKind,      resources::kAssistantKind,
                                   resources::kBusinessKind,    resources::kBusiness2Kind,
                                   resources::kBusinessFaxKind, resources::kHomeKind,
                                   resources::kHome2Kind,       resources::kHomeFaxKind};
static_assert(kKindNames.size() == storage::kPhoneTypes.size());

}  // namespace

QString ShowNumber(std::u16string_view number) {
  constexpr QChar kBeginFromTheLeft(0x2066);
  constexpr QChar kEnd(0x2069);
  return number.empty() ? QString() : kBeginFromTheLeft + qt::ToQString(number) + kEnd;
}

QString NameKind(std::u16string_view word) {
  const auto type = storage::FindPhoneType(word);
  return type ? Say(kKindNames[static_cast<std::size_t>(type->kind)]) : qt::ToQString(word);
}

}  // namespace home
