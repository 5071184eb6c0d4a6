#include "storage/trash_names.h"

#include <algorithm>
#include <chrono>

#include "storage/device_paths.h"

namespace storage {
namespace {

/// "20261122T120000Z-01": the time in UTC, and a number within the second.
constexpr std::size_t kStampLength = 19;
/// "-0001" follows, which counts the tags of one deletion.
constexpr std::size_t kItemLength = kStampLength + 5;  ///< Without its end.

std::u16string Digits(unsigned number, std::size_t width) {
  std::u16string digits(width, u'0');
  for (std::size_t i = width; i > 0; --i, number /= 10) {
    digits[i - 1] = static_cast<char16_t>(u'0' + number % 10);
  }
  return digits;
}

}  // namespace

std::u16string InTrash(std::u16string_view name) { return PathIn(kTrashFolder, name); }

std::u16string StampOf(std::int64_t unixTime, unsigned number) {
  using std::chrono::days;
  const std::chrono::sys_seconds time{std::chrono::seconds(unixTime)};
  const auto day = std::chrono::floor<days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(time - day);
  return Digits(static_cast<unsigned>(static_cast<int>(date.year())), 4) +
         Digits(static_cast<unsigned>(date.month()), 2) +
         Digits(static_cast<unsigned>(date.day()), 2) + u"T" +
         Digits(static_cast<unsigned>(clock.hours().count()), 2) +
         Digits(static_cast<unsigned>(clock.minutes().count()), 2) +
         Digits(static_cast<unsigned>(clock.seconds().count()), 2) + u"Z-" + Digits(number, 2);
}

std::u16string ItemName(std::u16string_view stamp, unsigned number) {
  return std::u16string(stamp).append(u"-").append(Digits(number, 4)).append(kItemEnd);
}

bool IsItem(std::u16string_view name) {
  return name.size() == kItemLength + kItemEnd.size() && name.ends_with(kItemEnd);
}

std::u16string_view DeletionOf(std::u16string_view name) { return name.substr(0, kStampLength); }

std::u16string RestoringMarkOf(std::u16string_view item) {
  return std::u16string(item.substr(0, kItemLength)).append(kRestoringEnd);
}

bool IsMarked(const std::vector<std::u16string>& names, std::u16string_view item) {
  const std::u16string deleting = std::u16string(DeletionOf(item)).append(kDeletingEnd);
  const std::u16string restoring = RestoringMarkOf(item);
  return std::ranges::any_of(
      names, [&](const std::u16string& name) { return name == deleting || name == restoring; });
}

}  // namespace storage
