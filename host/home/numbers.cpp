#include "host/home/numbers.h"

#include <algorithm>
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

// Marks that isolate a text would do as well, but some fonts do not have them. The line is then
// drawn in two fonts, and its letters are not at one height.
QString FromLeftToRight(const QString& text) {
  constexpr QChar kMark(0x200E);
  const bool isPartlyFromTheRight = std::ranges::any_of(text, [](QChar unit) {
    return unit.direction() == QChar::DirR || unit.direction() == QChar::DirAL;
  });
  return text.isEmpty() || isPartlyFromTheRight ? text : kMark + text + kMark;
}

QString NameKind(std::u16string_view word) {
  const auto type = storage::FindPhoneType(word);
  return type ? Say(kKindNames[static_cast<std::size_t>(type->kind)]) : qt::ToQString(word);
}

}  // namespace home
