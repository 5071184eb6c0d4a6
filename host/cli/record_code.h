#pragma once

#include <string>

#include "host/cli/session.h"

namespace cli {

/// Why nothing was recorded, in words. `code` is an audio::RecordCode other than kRecorded. Returns
/// an empty text if a message box has said it all.
[[nodiscard]] std::string ExplainRecordCode(const Session& session, int code);

}  // namespace cli
