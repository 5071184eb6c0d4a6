#pragma once

#include <string>
#include <string_view>

#include "platform/registry.h"

namespace storage {

/// Holds what the user chose of the machine's sound devices. It is the applet's own.
inline constexpr std::u16string_view kSoundKey = u"Software\\Zedra\\Voxtrel Sound";
/// Text: the name by which the sound service knows the input. Missing if none was chosen.
inline constexpr std::u16string_view kMicrophoneValue = u"microphone";

/// Returns the name of the chosen input. Returns an empty text if none was chosen, or if the
/// registry cannot be asked: the sound service's own choice is recorded then.
[[nodiscard]] std::u16string ReadMicrophone(platform::Registry& registry);

/// Remembers the choice. The empty name takes it back.
[[nodiscard]] platform::Result<void, platform::RegistryError> ChooseMicrophone(
    platform::Registry& registry, std::u16string_view name);

}  // namespace storage
