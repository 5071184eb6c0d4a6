#pragma once

#include <string>
#include <string_view>

namespace storage {

// The places of the system's files on the device. The companion dialer looks for them there.
inline constexpr std::u16string_view kProgramFilesFolder = u"\\Program Files";
inline constexpr std::u16string_view kMakerFolder = u"\\Program Files\\Zedra Tech.";
inline constexpr std::u16string_view kInstallFolder =
    u"\\Program Files\\Zedra Tech.\\Zedra Voxtrel";

/// One recording for each tag.
inline constexpr std::u16string_view kWaveFolder =
    u"\\Program Files\\Zedra Tech.\\Zedra Voxtrel\\Voxtrel_wav";

/// One voice template for each tag.
inline constexpr std::u16string_view kTemplateFolder =
    u"\\Program Files\\Zedra Tech.\\Zedra Voxtrel\\Voxtrel_stor";

inline constexpr std::u16string_view kLanguageFile =
    u"\\Program Files\\Zedra Tech.\\Zedra Voxtrel\\Voxtrel.lng";

/// The help page, which the help viewer finds by its name alone.
inline constexpr std::u16string_view kHelpFile = u"ZedraVoxtrelPE_help.htm";

inline constexpr std::u16string_view kWaveExtension = u".wav";
inline constexpr std::u16string_view kTemplateExtension = u".st";

/// Find every recording and every template.
inline constexpr std::u16string_view kWavePattern =
    u"\\Program Files\\Zedra Tech.\\Zedra Voxtrel\\Voxtrel_wav\\*.wav";
inline constexpr std::u16string_view kTemplatePattern =
    u"\\Program Files\\Zedra Tech.\\Zedra Voxtrel\\Voxtrel_stor\\*.st";
static_assert(kWavePattern.starts_with(kWaveFolder) && kWavePattern.ends_with(kWaveExtension));
static_assert(kTemplatePattern.starts_with(kTemplateFolder) &&
              kTemplatePattern.ends_with(kTemplateExtension));

[[nodiscard]] std::u16string WavePath(std::u16string_view tagName);
[[nodiscard]] std::u16string TemplatePath(std::u16string_view tagName);

/// Returns the path of a file in a folder. The file's name has its extension.
[[nodiscard]] std::u16string PathIn(std::u16string_view folder, std::u16string_view file);

/// Returns the tag that a recording belongs to: the file's name without as many characters at its
/// end as the extension has. Takes a name with or without its folder. Returns an empty name if the
/// file's name is shorter than that.
[[nodiscard]] std::u16string_view TagNameOfWaveFile(std::u16string_view waveFile);

/// Returns the path of the template that belongs to a recording, by the same rule.
[[nodiscard]] std::u16string TemplatePathOfWaveFile(std::u16string_view waveFile);

}  // namespace storage
