#include "storage/device_paths.h"

namespace storage {

namespace {

constexpr char16_t kSeparator = u'\\';

}  // namespace

std::u16string PathIn(std::u16string_view folder, std::u16string_view file) {
  std::u16string path(folder);
  path += kSeparator;
  path += file;
  return path;
}

std::u16string WavePath(std::u16string_view tagName) {
  return PathIn(kWaveFolder, tagName).append(kWaveExtension);
}

std::u16string TemplatePath(std::u16string_view tagName) {
  return PathIn(kTemplateFolder, tagName).append(kTemplateExtension);
}

std::u16string_view TagNameOfWaveFile(std::u16string_view waveFile) {
  // Without a separator the whole text is the name.
  const std::u16string_view name = waveFile.substr(waveFile.rfind(kSeparator) + 1);
  // No search for the extension: whatever the last four units are, they are taken for it.
  return name.substr(0,
                     name.size() < kWaveExtension.size() ? 0 : name.size() - kWaveExtension.size());
}

std::u16string TemplatePathOfWaveFile(std::u16string_view waveFile) {
  return TemplatePath(TagNameOfWaveFile(waveFile));
}

}  // namespace storage
