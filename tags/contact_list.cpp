#include "tags/contact_list.h"

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

// A name ends at its first zero.
void ContactRecord::SetName(std::u16string_view text) {
  name = FitName(text.substr(0, text.find(u'\0')));
}

}  // namespace tags
