#include "maintenance/template_loading.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "language/texts.h"
#include "resources/strings.h"
#include "storage/device_paths.h"
#include "storage/tag_store.h"
#include "voicemath/template_file.h"

// Loads templates for the Test dialog: those of the tags, or of all recordings if there is no tag.
// What cannot be read is noted and leaves no gap, since the search goes over the slots in a row.
namespace maintenance {

// Each tag of a full table has a slot.
static_assert(voicemath::CVoiceMathematics::kStoredSlots == storage::kMaxTags);

platform::Result<LoadedTemplates, ProcessEnded> TemplateLoader::Load(
    const storage::TagTable& tags) {
  m_loaded = {};
  if (tags.tagCount != 0) {
    LoadTags(tags);
  } else if (const auto loaded = LoadFolder(); !loaded) {
    return platform::Failure(loaded.error());
  }
  return std::move(m_loaded);
}

void TemplateLoader::LoadTags(const storage::TagTable& tags) {
  const std::int32_t count = std::min(tags.tagCount, storage::kMaxTags);
  m_loaded.wavePaths.resize(static_cast<std::size_t>(count));
  for (std::int32_t tag = 0; tag < count; ++tag) {
    const std::u16string_view name = tags.GetRecord(tag)->GetTagName();
    if (name.empty()) {
      // The place of a tag that was removed while the list was read, or was not reached.
      m_loaded.hasNamelessTags = true;
    } else if (!LoadTemplate(tag, storage::WavePath(name), storage::TemplatePath(name))) {
      m_loaded.unread.push_back(tag);
    }
  }
}

// The Test dialog never comes here, as it asks for nothing with less than two tags. The walk
// belongs to the loader all the same. A step that fails is reported, and the walk goes on.
platform::Result<void, ProcessEnded> TemplateLoader::LoadFolder() {
  const storage::TagStore store(m_platform.files, m_platform.registry);
  const auto search = store.FindRecordings();
  if (!search) {
    m_platform.ui.ShowMessage(platform::ApplicationBox(language::NoVoiceTagsMessage(m_texts)));
    m_platform.process.End(0);
    return platform::Failure(ProcessEnded{});
  }
  auto found = (*search)->Next();
  for (std::int32_t tag = 0; (!found || *found) && tag < storage::kMaxTags;) {
    if (found) {
      const std::u16string path = storage::PathIn(storage::kWaveFolder, (*found)->name);
      m_loaded.wavePaths.resize(static_cast<std::size_t>(tag) + 1);
      if (!LoadTemplate(tag, path, storage::TemplatePathOfWaveFile(path))) {
        m_loaded.unread.push_back(tag);
      }
      ++tag;
    } else {
      m_platform.ui.ShowMessage({std::u16string(resources::kTestSearchFailed),
                                 platform::MessageCaption::kNone,
                                 {},
                                 platform::MessageStyle::kOk});
    }
    found = (*search)->Next();
  }
  return {};
}

bool TemplateLoader::LoadTemplate(std::int32_t tag, const std::u16string& wavePath,
                                  std::u16string_view templatePath) {
  // Templates take the slots without gaps, which the search needs. So the slot of a tag is less
  // than its row if an earlier tag could not be read, and `tags` has the row of each slot.
  const std::size_t slot = m_loaded.tags.size();
  m_mathematics.m_loadSlot = static_cast<std::int32_t>(slot);
  if (!voicemath::ReadTemplateFile(m_platform.files, templatePath, m_mathematics)) {
    return false;
  }
  m_mathematics.m_wavePaths[slot] = wavePath;
  m_loaded.wavePaths[static_cast<std::size_t>(tag)] = wavePath;
  m_loaded.tags.push_back(tag);
  return true;
}

}  // namespace maintenance
