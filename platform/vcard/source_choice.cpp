#include "platform/vcard/source_choice.h"

#include <filesystem>
#include <system_error>

#include "platform/registry_text.h"
#include "platform/text/utf.h"
#include "platform/vcard/registry_names.h"

namespace vcard {

using platform::RegistryError;

namespace {

constexpr std::u16string_view kDesktop = u"eds";

}  // namespace

SourceChoice ParseChoice(std::u16string_view text) {
  if (text == kDesktop) {
    return {};
  }
  if (text.starts_with(u'\\')) {
    return {std::u16string(text)};
  }
  // Links are kept as they are: what one leads to may change with each synchronisation.
  const std::filesystem::path written(text::ToHostName(text));
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(written, error);
  return {text::FromHostName((error ? written : absolute.lexically_normal()).native())};
}

bool RecallChoice(platform::Registry& registry, std::optional<SourceChoice>& choice) {
  choice.reset();
  const platform::OpenedKey opened = registry.OpenKey(kContactsKey);
  if (!opened.key) {
    return opened.error == RegistryError::kNotFound;
  }
  platform::RegistryValue value;
  const RegistryError error = opened.key->Query(kChoiceValue, value);
  if (error != RegistryError::kNone) {
    return error == RegistryError::kNotFound;
  }
  const std::optional<std::u16string> text = ToText(value);
  if (!text || text->empty()) {
    return false;
  }
  choice = *text == kDesktop ? SourceChoice{} : SourceChoice{*text};
  return true;
}

bool RememberChoice(platform::Registry& registry, const SourceChoice& choice) {
  std::optional<SourceChoice> remembered;
  if (RecallChoice(registry, remembered) && remembered == choice) {
    return true;
  }
  const platform::OpenedKey opened = registry.CreateKey(kContactsKey);
  return opened.key &&
         SetText(*opened.key, kChoiceValue, choice.path.empty() ? kDesktop : choice.path) ==
             RegistryError::kNone;
}

}  // namespace vcard
