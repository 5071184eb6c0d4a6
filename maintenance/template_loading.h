#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "language/texts.h"
#include "platform/platform.h"
#include "storage/tag_record.h"
#include "voicemath/voice_mathematics.h"

namespace maintenance {

/// The templates that were loaded, in the slots of the mathematics from 0 on.
struct LoadedTemplates {
  std::vector<std::int32_t> tags;         ///< By slot: the place of the template's tag.
  std::vector<std::u16string> wavePaths;  ///< By tag: its recording; empty without a template.
  std::vector<std::int32_t> unread;       ///< Tags with a name and without a readable template.
  bool hasNamelessTags = false;           ///< Some records of the tag table are empty.
};

/// Why nothing was loaded: the user was shown a message and the process has been ended. Seen only
/// in a host that ends just the applet; the caller must leave at once.
struct ProcessEnded {};

/// Loads templates into the speech mathematics, for a comparison.
///
/// A template that cannot be read takes no slot. So slot and tag have the same number if nothing is
/// wrong, and the slots in use have no gaps in any case.
class TemplateLoader {
 public:
  TemplateLoader(const platform::Platform& platform, language::Texts texts,
                 voicemath::CVoiceMathematics& mathematics)
      : m_platform(platform), m_texts(texts), m_mathematics(mathematics) {}

  /// Loads the templates of the tags. If there are no tags, loads those of all recordings in the
  /// wave folder. If there are no recordings either, shows the user how to make one and ends the
  /// process.
  [[nodiscard]] platform::Result<LoadedTemplates, ProcessEnded> Load(const storage::TagTable& tags);

 private:
  void LoadTags(const storage::TagTable& tags);
  [[nodiscard]] platform::Result<void, ProcessEnded> LoadFolder();
  /// Returns false if the template cannot be read. Nothing has changed then.
  [[nodiscard]] bool LoadTemplate(std::int32_t tag, const std::u16string& wavePath,
                                  std::u16string_view templatePath);

  platform::Platform m_platform;
  language::Texts m_texts;
  voicemath::CVoiceMathematics& m_mathematics;
  LoadedTemplates m_loaded;
};

}  // namespace maintenance
