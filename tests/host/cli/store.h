#pragma once

#include <filesystem>
#include <memory>

#include "platform/registry.h"

/// Opens the settings that belong to a root folder, as another program does. Each system has one
/// source file with this function.
[[nodiscard]] std::unique_ptr<platform::Registry> OpenStore(const std::filesystem::path& root);
