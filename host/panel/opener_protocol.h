#pragma once

namespace panel {

// What an opened applet's process writes on its standard output, at least every second while it
// serves its windows: this before one of them is shown,
inline constexpr char kSignOfLife = '.';
/// and this from then on.
inline constexpr char kSignOfWindow = 'w';

/// What it reads on its standard input: bring the windows to the front.
inline constexpr char kRaiseRequest = 'r';

}  // namespace panel
