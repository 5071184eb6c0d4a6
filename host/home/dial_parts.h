#pragma once

#include <functional>
#include <string>
#include <vector>

#include "dialer/conversation.h"
#include "dialer/recent_calls.h"
#include "host/home/take_recorder.h"
#include "host/machine/backends.h"

namespace home {

/// Reads the voice tags and the contacts, as the dialer does, and calls `use` with the parts of a
/// conversation about them. What is called is noted among the last calls. Changes nothing else.
/// Returns a sentence, and does not call `use`, if nobody could be understood. May take seconds.
[[nodiscard]] std::u16string PrepareTalk(
    const machine::Options& options, const Sound& sound,
    const std::function<void(const dialer::Parts& parts)>& use);

/// Returns the last calls. Changes nothing.
[[nodiscard]] std::vector<dialer::RecentCall> ReadCalls(const machine::Options& options);

}  // namespace home
