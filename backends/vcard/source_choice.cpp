#include "backends/vcard/source_choice.h"

#include <filesystem>
#include <system_error>

#include "backends/text/host_path.h"
#include "backends/text/registry_text.h"
#include "backends/text/utf.h"

namespace vcard {

using platform::Failure;
using platform::RegistryError;
using platform::Result;

namespace {

/// Text: "eds" or the path of a vCard file or folder.
constexpr std::u16string_view kChoiceValue = u"chosen";
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
  const std::filesystem::path written = text::ToHostPath(text::ToHostName(text));
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(written, error);
  return {text::ToFileName(error ? written : absolute.lexically_normal())};
}

Result<std::optional<SourceChoice>, RegistryError> RecallChoice(platform::Registry& registry,
                                                                std::vector<Remark>& remarks) {
  const platform::OpenedKey opened = registry.OpenKey(kContactsKey);
  const auto value = opened ? (*opened)->Query(kChoiceValue) : Failure(opened.error());
  if (!value && value.error() == RegistryError::kNotFound) {
    return std::nullopt;
  }
  if (!value) {
    return Failure(value.error());
  }
  const std::optional<std::u16string> text = text::ToText(*value);
  if (!text || text->empty()) {
    remarks.push_back({std::u16string(kContactsKey), 0,
                       "the value \"chosen\" names no address book and is passed over"});
    return std::nullopt;
  }
  return *text == kDesktop ? SourceChoice{} : SourceChoice{*text};
}

Result<void, RegistryError> RememberChoice(platform::Registry& registry,
                                           const SourceChoice& choice) {
  std::vector<Remark> ignored;  // What is odd gives way to the user's own choice.
  if (const auto remembered = RecallChoice(registry, ignored);
      remembered && *remembered == choice) {
    return {};
  }
  const platform::OpenedKey opened = registry.CreateKey(kContactsKey);
  if (!opened) {
    return Failure(opened.error());
  }
  return text::SetText(**opened, kChoiceValue, choice.path.empty() ? kDesktop : choice.path);
}

}  // namespace vcard
