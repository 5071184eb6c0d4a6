#pragma once

#include <functional>

#include "host/home/gathering.h"
#include "host/home/shelf.h"
#include "host/session/session.h"

namespace home {

/// Reads all that the window shows, and changes nothing. `session` is new, and what it has to say
/// goes to `gathering`. May take seconds: it reads the contacts, and judges every recording. `soon`
/// can be null. It gets the tags with their names and numbers, if there are any, before people are
/// read and recordings judged.
[[nodiscard]] Shelf ReadShelf(session::Session& session, Gathering& gathering,
                              const std::function<void(const Shelf& shelf)>& soon = nullptr);

}  // namespace home
