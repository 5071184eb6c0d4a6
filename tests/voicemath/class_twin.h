#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "backends/headless/headless_ui.h"
#include "tests/machine/memory_file_system.h"
#include "tests/support/signals.h"
#include "tests/voicemath/twins/processing.h"
#include "voicemath/voice_mathematics.h"

namespace voicemath {

enum class Task : std::uint8_t { kLearn, kProcess };

/// CVoiceMathematics over a disk in memory, next to its twin. Everything that a caller can see of
/// the one is expected to be as the twin has it.
class ClassAndTwin {
 public:
  /// Gives both the same wave file and lets them make a template of it. Returns the twin's.
  twins::Processed ExpectSame(Task task, std::int32_t slot, const support::Bytes& file,
                              const std::string& name);

  /// Learns the file, then processes what that has left.
  twins::Processed ExpectSameTwice(const support::Bytes& file, const std::string& name);

  [[nodiscard]] CVoiceMathematics& Mathematics() { return m_mathematics; }

 private:
  void ExpectSameFields(const twins::Processed& expected);
  void ExpectSameTemplate(std::int32_t slot, const twins::Processed& expected);
  [[nodiscard]] support::Bytes Serialized();

  machine::MemoryFileSystem m_files;
  headless::HeadlessUi m_ui;
  CVoiceMathematics m_mathematics{m_files, m_ui};
};

}  // namespace voicemath
