#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/registry.h"
#include "platform/result.h"

namespace dialer {

/// A call that was made by voice or from the list of such calls. It has no name and no number: they
/// are the contact's, and may change.
struct RecentCall {
  std::int64_t time = 0;  ///< Unix time in seconds.
  std::int32_t oid = 0;   ///< The contact's identifier.
  std::u16string phoneKind;

  friend bool operator==(const RecentCall&, const RecentCall&) = default;
};

inline constexpr std::size_t kMostRecentCalls = 10;

/// Of kCallsKey. Text: for each call a line with its time, the contact and the kind of the number,
/// separated by blanks; the latest first.
inline constexpr std::u16string_view kRecentValue = u"recent";

/// Returns the calls that are remembered, the latest first. What another program wrote against the
/// rules ends the list. Returns none if the registry cannot be read.
[[nodiscard]] std::vector<RecentCall> ReadRecentCalls(platform::Registry& registry);

/// Puts a call before the others. The oldest goes if there are too many.
[[nodiscard]] platform::Result<void, platform::RegistryError> NoteCall(platform::Registry& registry,
                                                                       const RecentCall& call);

}  // namespace dialer
