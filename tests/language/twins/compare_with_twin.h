#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace twins {

/// Loads `file` into a LanguageTable and into its twin; says what differs, nothing if they
/// agree.
std::string DifferenceFromTwin(std::span<const std::byte> file);

}  // namespace twins
