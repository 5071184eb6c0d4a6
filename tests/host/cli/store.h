#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "platform/registry.h"

// Each system has one source file with these functions.

/// Opens the settings that belong to a root folder, as another program does.
[[nodiscard]] std::unique_ptr<platform::Registry> OpenStore(const std::filesystem::path& root);

/// Returns what the program calls those settings. On Linux that is their file.
[[nodiscard]] std::string NameOfStore(const std::filesystem::path& root);

/// Returns the file or folder in which a newcomer's contacts are looked for.
[[nodiscard]] std::string NameOfContacts(const std::filesystem::path& root);
