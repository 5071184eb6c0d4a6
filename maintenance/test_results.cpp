#include "maintenance/test_results.h"

#include <algorithm>
#include <cstddef>
#include <functional>

#include "language/texts.h"
#include "resources/fault_strings.h"
#include "resources/strings.h"
#include "resources/translations.h"
#include "storage/device_paths.h"

// From distances to the lines of the Test dialog. The lines go by the distance, so what is confused
// most easily comes first. Everything here is computation; the dialog only shows it.
namespace maintenance {
namespace {

/// Up to so many names have a line each in a message. More of them share lines.
constexpr std::size_t kNamesWithLines = 10;

constexpr std::u16string_view kSeparator = u"; ";

std::u16string_view NameOf(const LoadedTemplates& loaded, std::int32_t tag) {
  return tag < 0 ? std::u16string_view()
                 : storage::TagNameOfWaveFile(loaded.wavePaths[static_cast<std::size_t>(tag)]);
}

/// Calls `use` with the place of every record of that name. Other programs may give tags longer
/// names. These are cut and can become the same; the last record of a name then counts.
void ForRecords(const storage::TagTable& tags, std::u16string_view name,
                const std::function<void(std::int32_t, const storage::TagRecord&)>& use) {
  const std::int32_t count = std::min(tags.tagCount, storage::kMaxTags);
  for (std::int32_t i = 0; !name.empty() && i < count; ++i) {
    const storage::TagRecord& record = *tags.GetRecord(i);
    if (record.GetTagName() == name) {
      use(i, record);
    }
  }
}

/// A line is four columns: "87%; 1; Ann Lee 5551234 M;  Bob Ray 5550001 H". They are the likeness,
/// how many tags have this one as their nearest, the tag, and its own nearest.
std::u16string ToText(const TestLine& line, std::u16string_view count, std::u16string_view name,
                      std::u16string_view neighbour) {
  return language::Decimal(line.score)
      .append(u"%; ")
      .append(count)
      .append(kSeparator)
      .append(name)
      .append(kSeparator)
      .append(neighbour);
}

TestLine ToLine(const storage::TagTable& tags, const LoadedTemplates& loaded, float distance,
                const NeighbourRow& row, std::span<const std::int32_t> confusions) {
  TestLine line;
  line.tagName = NameOf(loaded, row.tag);
  line.neighbourName = NameOf(loaded, row.neighbour);
  line.score = ToScore(distance);
  line.distance = distance;
  std::u16string_view name;
  std::u16string count;
  ForRecords(tags, line.tagName, [&](std::int32_t place, const storage::TagRecord& record) {
    name = record.GetDisplayText();
    line.confusions = confusions[static_cast<std::size_t>(place)];
    count = language::Decimal(line.confusions);
  });
  // With this blank there are two between the separator and the second name. The lines have always
  // looked so.
  std::u16string neighbour;
  ForRecords(tags, line.neighbourName, [&](std::int32_t, const storage::TagRecord& record) {
    neighbour = std::u16string(u" ").append(record.GetDisplayText());
  });
  line.text = ToText(line, count, name, neighbour);
  return line;
}

}  // namespace

FoundNeighbours FindNearest(const voicemath::CVoiceMathematics& mathematics, std::int32_t count,
                            const voicemath::SearchWatch& watch) {
  std::vector<voicemath::Neighbour> found(static_cast<std::size_t>(std::max(count, 0)));
  if (const auto searched = mathematics.FindNearest(found, watch); !searched) {
    return platform::Failure(searched.error());
  }
  std::vector<Neighbour> nearest;
  nearest.reserve(found.size());
  for (const voicemath::Neighbour& each : found) {
    // A tag that was compared with nobody has no neighbour, and the largest distance.
    nearest.push_back(each.index < 0 ? Neighbour() : Neighbour{each.index, each.distance});
  }
  return nearest;
}

NeighbourTable ToTable(std::span<const Neighbour> nearest, std::span<const std::int32_t> tags) {
  NeighbourTable table;
  // From slots, by which the search counts, to rows of the tag table.
  for (std::size_t i = 0; i < nearest.size(); ++i) {
    const std::int32_t other = nearest[i].index;
    const std::int32_t neighbour = other < 0 ? other : tags[static_cast<std::size_t>(other)];
    // A row is put after the rows of the same distance.
    table.emplace(nearest[i].distance, NeighbourRow{tags[i], neighbour});
  }
  return table;
}

std::vector<std::int32_t> CountConfusions(const NeighbourTable& table, std::int32_t count) {
  std::vector<std::int32_t> confusions(static_cast<std::size_t>(std::max(count, 0)));
  for (const auto& [distance, row] : table) {
    // How often a tag is the nearest of another: the dialer is likely to take those for it.
    if (row.neighbour >= 0 && row.neighbour < count) {
      ++confusions[static_cast<std::size_t>(row.neighbour)];
    }
  }
  return confusions;
}

std::int32_t ToScore(float distance) {
  constexpr float kWhole = 100.0F;
  // Rounded to a float after the product and again after the difference.
  const float share = distance * kWhole;
  const float score = kWhole - share;
  return score > 0.0F ? static_cast<std::int32_t>(score) : 0;
}

std::vector<TestLine> ToTestLines(const storage::TagTable& tags, const LoadedTemplates& loaded,
                                  const std::vector<Neighbour>& nearest) {
  const NeighbourTable table = ToTable(nearest, loaded.tags);
  const auto confusions =
      CountConfusions(table, static_cast<std::int32_t>(loaded.wavePaths.size()));
  std::vector<TestLine> lines;
  lines.reserve(table.size());
  for (const auto& [distance, row] : table) {
    lines.push_back(ToLine(tags, loaded, distance, row, confusions));
  }
  return lines;
}

std::u16string UnreadTagsMessage(const storage::TagTable& tags, const LoadedTemplates& loaded) {
  std::u16string message;
  if (!loaded.unread.empty()) {
    message = std::u16string(resources::Say(resources::kTagsNotCompared)).append(u"\n\n");
    // A box with a line for each of a hundred names would be higher than the screen.
    const bool hasLines = loaded.unread.size() <= kNamesWithLines;
    std::u16string_view separator;
    for (const std::int32_t tag : loaded.unread) {
      const storage::TagRecord* record = tags.GetRecord(tag);
      const std::u16string_view text = record->GetDisplayText();
      message.append(separator).append(text.empty() ? record->GetTagName() : text);
      separator = hasLines ? u"\n" : kSeparator;
    }
    message.append(u"\n\n").append(resources::Say(resources::kRepairTemplates));
  }
  if (loaded.hasNamelessTags) {
    message.append(message.empty() ? u"" : u"\n\n")
        .append(resources::Say(resources::kTagsWithoutName))
        .append(resources::Say(resources::kOpenAgain));
  }
  return message;
}

}  // namespace maintenance
