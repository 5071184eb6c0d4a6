#include "backends/vcard/source_choice.h"

#include <filesystem>
#include <system_error>

#include "backends/text/registry_text.h"
#include "backends/text/utf.h"
#include "backends/vcard/registry_names.h"

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

bool RecallChoice(platform::Registry& registry, std::optional<SourceChoice>& choice,
                  std::vector<Remark>& remarks) {
  choice.reset();
  const platform::OpenedKey opened = registry.OpenKey(kContactsKey);
  if (!opened) {
    return opened.error() == RegistryError::kNotFound;
  }
  const auto value = (*opened)->Query(kChoiceValue);
  if (!value) {
    return value.error() == RegistryError::kNotFound;
  }
  const std::optional<std::u16string> text = text::ToText(*value);
  if (!text || text->empty()) {
    remarks.push_back({std::u16string(kContactsKey), 0,
                       "the value \"chosen\" names no address book and is passed over"});
    return true;
  }
  choice = *text == kDesktop ? SourceChoice{} : SourceChoice{*text};
  return true;
}

platform::Result<void, RegistryError> RememberChoice(platform::Registry& registry,
                                                     const SourceChoice& choice) {
  std::optional<SourceChoice> remembered;
  std::vector<Remark> ignored;  // What is odd gives way to the user's own choice.
  if (RecallChoice(registry, remembered, ignored) && remembered == choice) {
    return {};
  }
  const platform::OpenedKey opened = registry.CreateKey(kContactsKey);
  if (!opened) {
    return platform::Failure(opened.error());
  }
  return text::SetText(**opened, kChoiceValue, choice.path.empty() ? kDesktop : choice.path);
}

}  // namespace vcard
