#include "tags/contact_list.h"

#include <algorithm>

namespace tags {

std::u16string_view FitName(std::u16string_view name) {
  // The last unit of the record's field is for the zero. A cut between the two halves of a
  // character would leave one half, which nothing can show.
  constexpr std::size_t kMaxLength = kNameCapacity - 1;
  if (name.size() <= kMaxLength) {
    return name;
  }
  const char16_t last = name[kMaxLength - 1];
  const bool isFirstHalf = last >= 0xD800 && last <= 0xDBFF;
  return name.substr(0, isFirstHalf ? kMaxLength - 1 : kMaxLength);
}

void ContactRecord::SetName(std::u16string_view text) {
  name.fill(u'\0');
  const std::u16string_view fitting = FitName(text);
  std::copy(fitting.begin(), fitting.end(), name.begin());
}

}  // namespace tags
