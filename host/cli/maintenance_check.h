#pragma once

#include "host/cli/session.h"

namespace cli {

/// Prints what is not as it should be with the voice tags; the exit code is 1 where anything is.
/// The settings stay as they are, even where the contacts that are read for it are new ones. With
/// `isRepair` templates are computed again from the kept recordings, if that helps.
void CheckTags(Session& session, bool isRepair);

}  // namespace cli
