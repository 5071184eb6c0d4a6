#include "connection/port_order.h"

#include <cstddef>

namespace connection {
namespace {

constexpr std::size_t kDigitsAt = 3;  ///< Behind "COM".

/// The number of one digit or two; what is no digit ends it.
int PortNumber(std::u16string_view name) {
  constexpr std::size_t kMostDigits = 2;
  constexpr int kBase = 10;
  int number = 0;
  for (std::size_t i = kDigitsAt; i < name.size() && i < kDigitsAt + kMostDigits; ++i) {
    if (name[i] < u'0' || name[i] > u'9') {
      break;
    }
    number = number * kBase + (name[i] - u'0');
  }
  return number;
}

PortOrder ToOrder(bool isGreater) { return isGreater ? PortOrder::kGreater : PortOrder::kLess; }

}  // namespace

PortOrder ComparePorts(std::u16string_view a, std::u16string_view b) {
  const char16_t firstOfA = a.empty() ? u'\0' : a.front();
  const char16_t firstOfB = b.empty() ? u'\0' : b.front();
  if (firstOfA != firstOfB) {
    return ToOrder(firstOfA > firstOfB);
  }
  return ToOrder(PortNumber(a) > PortNumber(b));
}

void SortPorts(std::vector<std::u16string>& names) {
  // By exchange, since an order without equality is none that a library's sort could work with.
  for (std::size_t i = 0; i + 1 < names.size(); ++i) {
    for (std::size_t j = i + 1; j < names.size(); ++j) {
      if (ComparePorts(names[i], names[j]) == PortOrder::kLess) {
        names[i].swap(names[j]);
      }
    }
  }
}

}  // namespace connection
