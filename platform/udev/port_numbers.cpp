#include "platform/udev/port_numbers.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <set>
#include <string_view>
#include <tuple>

#include "platform/text/utf.h"

namespace udev_ports {
namespace {

/// A node's kind, the length of its number and the number: compared in that order, numbers of any
/// length stand as numbers do.
auto NodeOrder(const platform::SerialDevice& device) {
  constexpr std::array<std::u16string_view, 4> kKinds{u"/dev/ttyS", u"/dev/ttyUSB", u"/dev/ttyACM",
                                                      u"/dev/rfcomm"};
  const std::u16string_view node = device.node;
  const std::size_t lastOther = node.find_last_not_of(u"0123456789");
  const std::size_t digits = lastOther == std::u16string_view::npos ? 0 : lastOther + 1;
  const std::u16string_view name = node.substr(0, digits);
  const auto kind = std::ranges::find(kKinds, name) - kKinds.begin();
  return std::tuple(kind, name, node.size(), node);
}

std::u16string IdentityOf(const platform::SerialDevice& device) {
  const std::u16string part = device.part.empty() ? std::u16string() : u" " + device.part;
  if (!device.serial.empty()) {
    return u"serial " + device.serial + part;
  }
  if (!device.path.empty()) {
    return u"path " + device.path + part;
  }
  return u"node " + device.node;
}

std::optional<int> NumberOf(const std::u16string& identity, const PortNumbers& numbers) {
  const auto found =
      std::ranges::find_if(numbers, [&](const auto& entry) { return entry.second == identity; });
  return found == numbers.end() ? std::nullopt : std::optional(found->first);
}

std::optional<int> FindFree(const PortNumbers& numbers, const std::set<std::u16string>& present) {
  for (int number = kLowestPort; number <= kHighestPort; ++number) {
    if (!numbers.contains(number)) {
      return number;
    }
  }
  for (const auto& [number, identity] : numbers) {
    if (number >= kLowestPort && number <= kHighestPort && !present.contains(identity)) {
      return number;
    }
  }
  return std::nullopt;
}

}  // namespace

void SortByNode(std::vector<platform::SerialDevice>& devices) {
  std::ranges::sort(devices,
                    [](const auto& a, const auto& b) { return NodeOrder(a) < NodeOrder(b); });
}

std::vector<std::u16string> IdentitiesOf(const std::vector<platform::SerialDevice>& devices) {
  std::vector<std::u16string> identities;
  std::map<std::u16string, int> counts;
  for (const platform::SerialDevice& device : devices) {
    std::u16string identity = IdentityOf(device);
    const int count = ++counts[identity];
    if (count > 1) {
      identity += u" #" + text::FromUtf8(std::to_string(count));
    }
    identities.push_back(std::move(identity));
  }
  return identities;
}

std::vector<std::optional<int>> AssignNumbers(const std::vector<std::u16string>& identities,
                                              PortNumbers& numbers) {
  const std::set<std::u16string> present(identities.begin(), identities.end());
  std::vector<std::optional<int>> assigned;
  for (const std::u16string& identity : identities) {
    std::optional<int> number = NumberOf(identity, numbers);
    if (!number) {
      number = FindFree(numbers, present);
      if (number) {
        numbers[*number] = identity;
      }
    }
    assigned.push_back(number);
  }
  return assigned;
}

}  // namespace udev_ports
