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

bool IsPartlyFromTheRight(const QString& text) {
  return std::ranges::any_of(text, [](QChar unit) {
    return unit.direction() == QChar::DirR || unit.direction() == QChar::DirAL;
  });
}

}  // namespace

// A name without such letters stays as it is: some fonts do not have the marks.
QString InSentence(const QString& name) {
  constexpr QChar kFirstStrongIsolate(0x2068);
  constexpr QChar kPopIsolate(0x2069);
  return IsPartlyFromTheRight(name) ? kFirstStrongIsolate + name + kPopIsolate : name;
}

// Marks that isolate a text would do as well, but some fonts do not have them. The line is then
// drawn in two fonts, and its letters are not at one height.
QString FromLeftToRight(const QString& text) {
  constexpr QChar kMark(0x200E);
  return text.isEmpty() || IsPartlyFromTheRight(text) ? text : kMark + text + kMark;
}

QString NameKind(std::u16string_view word) {
  const auto type = storage::FindPhoneType(word);
  return type ? Say(kKindNames[static_cast<std::size_t>(type->kind)]) : qt::ToQString(word);
}

}  // namespace home
