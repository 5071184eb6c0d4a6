// The template as a byte stream: element count (32 bits), frame count (16 bits), floats.

#include <new>
#include <utility>

#include "voicemath/voice_mathematics.h"

namespace voicemath {

void CVoiceMathematics::Serialize(framework::CArchive& archive) {
  if (archive.IsStoring()) {
    Store(archive);
  } else {
    Load(archive);
  }
}

void CVoiceMathematics::Store(framework::CArchive& archive) const {
  const auto values = GetTemplate(0);
  if (m_elementCount < 0 || static_cast<std::size_t>(m_elementCount) != values.size()) {
    // Another slot was computed last; slot 0 does not hold that many values.
    archive.Fail(framework::ArchiveError::kBadFormat);
    return;
  }
  archive << static_cast<std::uint32_t>(m_elementCount) << m_frameCounts[0];
  for (const float value : values) {
    archive << value;
  }
}

void CVoiceMathematics::Load(framework::CArchive& archive) {
  std::uint32_t elements = 0;
  std::uint16_t frames = 0;
  archive >> elements >> frames;
  if (!archive.GetStatus()) {
    return;
  }
  if (m_loadSlot < 0 || m_loadSlot >= static_cast<std::int32_t>(kSlotCount) ||
      elements != std::uint32_t{frames} * m_bandCount) {
    archive.Fail(framework::ArchiveError::kBadFormat);
    return;
  }
  // Asked before memory is reserved: a damaged count must not reserve what the file does not hold.
  if (archive.GetRemaining() < std::uint64_t{elements} * sizeof(float)) {
    archive.Fail(framework::ArchiveError::kEndOfFile);
    return;
  }
  std::unique_ptr<float[]> values(new (std::nothrow) float[elements]);
  if (!values) {
    archive.Fail(framework::ArchiveError::kFileFailure);
    return;
  }
  for (std::uint32_t i = 0; i < elements; ++i) {
    archive >> values[i];
  }
  if (archive.GetStatus() &&
      !SetTemplate(static_cast<std::size_t>(m_loadSlot), std::move(values), frames)) {
    archive.Fail(framework::ArchiveError::kFileFailure);
  }
}

}  // namespace voicemath
