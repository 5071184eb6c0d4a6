#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "framework/archive.h"
#include "framework/file.h"
#include "framework/object.h"
#include "platform/file_system.h"
#include "platform/ui.h"
#include "voicemath/constants.h"
#include "voicemath/endpoint_detector.h"
#include "voicemath/nearest_neighbours.h"
#include "voicemath/prepared_template.h"

namespace voicemath {

/// Result of CVoiceMathematics::LearnFile and ProcessFile.
enum LearnResult : int {
  kLearned = 0,
  kNoSuchSlot = 1,
  kNotProcessed = 2,  ///< A message has been shown; slot, count and copies are as they were.
};

/// Result of CVoiceMathematics::OpenWaveData.
enum HeaderCode : int {
  kHeaderAccepted = 0,
  kTooShort = 1,
  kNoRiff = 2,
  kNoWave = 3,
  kNotPcm = 4,
  kNotMono = 5,
  kNot16Bit = 6,
  kNoData = 7,  ///< No "data" id at the places that are searched, or more data than file.
};

/// The speech mathematics of the system: turns recordings into templates, holds the templates of
/// the learned tags and compares them.
///
/// A template is how a name sounds: a run of frames, one each 46 ms, and of each frame how loud
/// five bands of frequencies are (kBandCount floats, none negative). Two recordings of a name give
/// templates of much the same shape, if the same person speaks them.
///
/// Slots 0 to 99 hold stored tags. Slot 100 is for scratch work and is never counted or given a
/// path. Used by one thread at a time. The documented fields are open to the pages, which set the
/// paths, the load slot and, if they load a base themselves, the count.
class CVoiceMathematics : public framework::CObject {
 public:
  static constexpr std::size_t kSlotCount = kMostTemplates + 1;
  static constexpr std::size_t kStoredSlots = kMostTemplates;

  CVoiceMathematics(platform::FileSystem& files, platform::Ui& ui);

  // The virtual operations, in the order of the framework's table.
  [[nodiscard]] const framework::RuntimeClass& GetRuntimeClass() const override;
  ~CVoiceMathematics() override = default;
  /// Storing writes the template of slot 0. Loading fills slot `m_loadSlot`. If the
  /// file is short or contradicts itself, the slot stays as it was and the archive is marked as
  /// failed. Bytes after the template are left alone: a longer file that was written over keeps its
  /// old end.
  void Serialize(framework::CArchive& archive) override;

  /// Opens `m_wavePath`, finds the speech, trims the file to it, and computes the template into
  /// `slot`. Returns a LearnResult. Whatever fails, the file is the old recording or the trimmed
  /// one. After kLearned the file and its name are on the medium, also if they were not before.
  int LearnFile(std::int32_t slot);

  /// Does the same as LearnFile, but takes all samples of the file and leaves the file alone.
  int ProcessFile(std::int32_t slot);

  /// Does the same as ProcessFile, but opens the file for reading only: others may read it
  /// meanwhile, and it may be protected against writing.
  int ReadFile(std::int32_t slot);

  /// Reads and checks the header of the open `m_file`. Returns a HeaderCode. The file is closed
  /// unless that is kHeaderAccepted.
  [[nodiscard]] int OpenWaveData();

  // Steps of LearnFile on the open file. Each returns false if the file layer failed.
  [[nodiscard]] bool DetectSpeechBounds();
  [[nodiscard]] bool TrimWaveFile();
  [[nodiscard]] bool ComputeTemplate(std::uint32_t slot);

  /// Transforms `count` points in place; see voicemath/fft.h.
  static void Fft(float* real, float* imaginary, std::size_t count, int sign);

  /// Returns the seconds of sound that the template stands for. Returns 0 if there is no such slot
  /// or it is empty.
  [[nodiscard]] float GetTemplateDuration(std::int32_t slot) const;

  /// Removes a stored template. All later ones, with their paths and labels, move down by one.
  void RemoveTemplate(std::int32_t slot);

  /// Empties the slots below `m_count` and sets it to 0.
  void ClearTemplates();

  /// Returns the distance of two slots, 0 to kMaxDistance. Returns kMaxDistance if one does not
  /// exist.
  [[nodiscard]] float CompareTemplates(std::int32_t a, std::int32_t b) const;

  /// Finds the nearest other slot for each of the slots from 0 on, as voicemath::FindNearest does.
  /// It looks at as many slots as `nearest` has places, and at most at kStoredSlots. Further places
  /// are left as they are. After a failure `nearest` means nothing; there is none without a
  /// `watch`.
  [[nodiscard]] platform::Result<void, SearchStopped> FindNearest(
      std::span<Neighbour> nearest, const SearchWatch& watch = {}) const;

  /// Fills `m_thresholds` from the nearest neighbours of the stored templates. Returns `m_count`.
  std::int32_t ComputeThresholds();

  /// Puts a template of `frames` frames into `slot`, which must exist, and prepares it for
  /// comparison. If this fails, the slot is as it was.
  [[nodiscard]] platform::Result<void, PrepareError> SetTemplate(
      std::size_t slot, std::unique_ptr<const float[]> values, std::uint16_t frames);

  /// Returns the values of the template in `slot`, which must exist. They are empty if the slot is.
  [[nodiscard]] std::span<const float> GetTemplate(std::size_t slot) const;

  framework::CFile m_file;  ///< The wave file in work.
  std::uint32_t m_dataBytes = 0;
  /// Offset of the first sample. One byte is enough: the search for the data ends at byte 100.
  std::uint8_t m_dataOffset = 0;
  std::uint32_t m_firstSample = 0;
  std::uint32_t m_lastSample = 0;  ///< Included.
  std::uint16_t m_bandCount = kBandCount;
  std::uint8_t m_hopsPerFrame = 2;
  // The templates and their frame counts are changed by SetTemplate alone.
  std::array<std::uint16_t, kSlotCount> m_frameCounts{};
  std::array<std::unique_ptr<const float[]>, kSlotCount> m_templates;
  std::array<float, kStoredSlots> m_thresholds;
  std::u16string m_wavePath;  ///< The wave file to process next.
  std::u16string m_label;
  std::array<std::u16string, kStoredSlots> m_wavePaths;
  std::array<std::u16string, kStoredSlots> m_labels;
  /// Rises with each template computed into a stored slot, a slot used again included; so it can
  /// pass the number of slots, and no loop over slots may trust it.
  std::int32_t m_count = 0;
  std::int32_t m_loadSlot = 0;
  std::int32_t m_elementCount = 0;  ///< Floats of the template computed last; a load leaves it.

  /// The part of the recording that was taken, counted in the file as it was before trimming.
  Segment m_detected;
  /// Whether the speech that DetectSpeechBounds found last, if any, has a place in 16 bits. If not,
  /// its bounds are elsewhere.
  bool m_hasSpeechPlace = true;
  /// Why the last recording that was to be trimmed was not. Nothing if it was.
  std::optional<platform::FileError> m_trimError;

 private:
  enum class Extent : std::uint8_t { kSpeech, kWholeFile };

  [[nodiscard]] int ProcessWave(std::int32_t slot, Extent extent, unsigned access);
  [[nodiscard]] bool OpenSegment(Extent extent, unsigned access);
  [[nodiscard]] bool MeasureEnvelope(std::span<std::int16_t> envelope);
  [[nodiscard]] bool MeasureEnvelopeAtEnd(std::span<std::int16_t> envelope, std::size_t whole,
                                          std::uint64_t start);
  [[nodiscard]] HeaderCode ReadHeader();
  void SelectWholeFile();
  [[nodiscard]] platform::Result<void, platform::FileError> ReplaceByTrimmed(std::uint32_t bytes);
  [[nodiscard]] platform::Result<void, platform::FileError> WriteTrimmed(platform::File& trimmed,
                                                                         std::uint32_t bytes);
  [[nodiscard]] bool ReadFrames(std::span<float> features);
  void Store(framework::CArchive& archive) const;
  void Load(framework::CArchive& archive);
  [[nodiscard]] std::size_t GetStoredCount() const;
  void FreeSlot(std::size_t slot);

  std::array<PreparedTemplate, kSlotCount> m_prepared;
  platform::FileSystem& m_files;
  platform::Ui& m_ui;
};

}  // namespace voicemath
