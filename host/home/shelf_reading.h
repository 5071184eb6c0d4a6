#pragma once

#include <functional>

#include "host/home/gathering.h"
#include "host/home/shelf.h"
#include "host/session/session.h"

namespace home {

/// Reads all that the window shows, and changes nothing. `session` is new, and what it has to say
/// goes to `gathering`. May take seconds: it reads the contacts, and judges every recording. `soon`
/// can be null. It gets what is known before the recordings are judged, if there are any.
[[nodiscard]] Shelf ReadShelf(session::Session& session, Gathering& gathering,
                              const std::function<void(const Shelf& shelf)>& soon = nullptr);

}  // namespace home
