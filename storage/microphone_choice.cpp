#include "storage/microphone_choice.h"

#include <optional>

#include "backends/text/registry_text.h"

namespace storage {

using platform::RegistryError;

std::u16string ReadMicrophone(platform::Registry& registry) {
  return text::ReadText(registry.OpenKey(kSoundKey), kMicrophoneValue);
}

platform::Result<void, RegistryError> ChooseMicrophone(platform::Registry& registry,
                                                       std::u16string_view name) {
  // A choice that changes nothing writes nothing. So nobody who watches the store is woken.
  if (ReadMicrophone(registry) == name) {
    return {};
  }
  const platform::OpenedKey key = registry.CreateKey(kSoundKey);
  if (!key) {
    return platform::Failure(key.error());
  }
  // No value means that the desktop chooses.
  return name.empty() ? (*key)->DeleteValue(kMicrophoneValue)
                      : text::SetText(**key, kMicrophoneValue, name);
}

}  // namespace storage
