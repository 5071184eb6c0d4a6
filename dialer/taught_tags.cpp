#include "dialer/taught_tags.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <string_view>
#include <utility>

#include "dialer/wave_reading.h"
#include "storage/device_paths.h"
#include "storage/registry_keys.h"
#include "storage/tag_record.h"
#include "storage/tag_store.h"
#include "voicemath/constants.h"

// The applet may delete or write any of this at the same time. So each tag is read by itself, and
// one that is not whole is passed over with the reason.
namespace dialer {
namespace {

using platform::Failure;
using platform::FileError;
using platform::RegistryError;
using platform::Result;

/// The version of the speech mathematics with which a take that is heard is measured. Templates of
/// another one cannot be compared with it.
constexpr std::int32_t kMathVersion = 3;

constexpr std::size_t kMostRecordingBytes =
    std::size_t{kMostSeconds} * voicemath::kSamplesPerSecond * sizeof(std::int16_t) + 4096;
constexpr std::size_t kMostFrames =
    std::size_t{kMostSeconds} * voicemath::kSamplesPerSecond / voicemath::kFrameHop;

using FileBytes = Result<std::vector<std::byte>, PassedOver>;

PassedOver ReasonOf(FileError error) {
  switch (error) {
    case FileError::kNotFound:
      return PassedOver::kMissing;
    case FileError::kSharingViolation:
      return PassedOver::kInUse;
    default:
      return PassedOver::kNotRead;
  }
}

/// Reads a file of at most `most` bytes. The shared lock ends with it.
FileBytes ReadShared(platform::FileSystem& files, std::u16string_view path, std::size_t most) {
  const auto file = files.Open(path, {platform::FileAccess::kRead, platform::FileShare::kRead,
                                      platform::FileCreation::kOpenExisting});
  if (!file) {
    return Failure(ReasonOf(file.error()));
  }
  const auto length = (*file)->GetLength();
  if (!length) {
    return Failure(PassedOver::kNotRead);
  }
  if (*length > most) {
    return Failure(PassedOver::kTooLong);
  }
  std::vector<std::byte> bytes(static_cast<std::size_t>(*length));
  const auto read = (*file)->Read(bytes);
  if (!read) {
    return Failure(PassedOver::kNotRead);
  }
  bytes.resize(*read);
  return bytes;
}

/// The number of values (32 bits), the number of frames (16 bits), and the values as floats. What
/// follows is not part of the template.
Result<std::vector<float>, PassedOver> ParseTemplate(std::span<const std::byte> bytes) {
  constexpr std::size_t kHeaderBytes = 6;
  if (bytes.size() < kHeaderBytes) {
    return Failure(PassedOver::kDamaged);
  }
  const std::size_t count = platform::LoadLittleEndian32(bytes.subspan<0, 4>());
  const std::size_t frames = platform::LoadLittleEndian16(bytes.subspan<4, 2>());
  if (frames == 0 || count != frames * voicemath::kBandCount) {
    return Failure(PassedOver::kDamaged);
  }
  if (frames > kMostFrames) {
    return Failure(PassedOver::kTooLong);
  }
  const auto values = bytes.subspan(kHeaderBytes);
  if (values.size() < count * sizeof(float)) {
    return Failure(PassedOver::kDamaged);
  }
  std::vector<float> features(count);
  for (std::size_t i = 0; i < count; ++i) {
    features[i] = std::bit_cast<float>(
        platform::LoadLittleEndian32(values.subspan(i * sizeof(float)).first<4>()));
  }
  const bool isWhole = std::ranges::all_of(features, [](float f) { return std::isfinite(f); });
  return isWhole ? Result<std::vector<float>, PassedOver>(std::move(features))
                 : Failure(PassedOver::kDamaged);
}

Result<std::vector<float>, PassedOver> ReadTemplate(platform::FileSystem& files,
                                                    std::u16string_view tagName) {
  // A longer file that was written over keeps its old end, so its length says nothing.
  constexpr std::size_t kMostTemplateBytes = std::size_t{1} << 21;
  return ReadShared(files, storage::TemplatePath(tagName), kMostTemplateBytes)
      .and_then([](const std::vector<std::byte>& bytes) { return ParseTemplate(bytes); });
}

Result<std::vector<std::int16_t>, PassedOver> ReadRecording(platform::FileSystem& files,
                                                            std::u16string_view tagName) {
  const FileBytes bytes = ReadShared(files, storage::WavePath(tagName), kMostRecordingBytes);
  if (!bytes) {
    return Failure(bytes.error());
  }
  auto samples = DecodeWave(*bytes, kMostSeconds);
  if (!samples || samples->empty()) {
    return Failure(PassedOver::kDamaged);
  }
  return std::move(*samples);
}

Result<TaughtTag, PassedOver> ReadTag(platform::FileSystem& files, const storage::TagStore& store,
                                      const std::u16string& name) {
  auto entry = store.ReadEntry(name);
  if (!entry) {
    return Failure(entry.error() == RegistryError::kNotFound ? PassedOver::kMissing
                                                             : PassedOver::kNotRead);
  }
  auto features = ReadTemplate(files, name);
  if (!features) {
    return Failure(features.error());
  }
  auto samples = ReadRecording(files, name);
  if (!samples) {
    return Failure(samples.error());
  }
  return TaughtTag{name, entry->oid, std::move(entry->phoneType), std::move(*features),
                   std::move(*samples)};
}

/// Returns whether the templates are those of another version. A store that names none is one whose
/// templates the applet is going to compute again.
Result<bool, RegistryError> HasOtherMathematics(platform::Registry& registry) {
  const platform::OpenedKey key = registry.OpenKey(storage::kSetupKey);
  const auto value = key ? (*key)->Query(storage::kMathVersionValue)
                         : Result<platform::RegistryValue, RegistryError>(Failure(key.error()));
  if (value) {
    return storage::ParseOid(storage::TextOfValue(*value)) != kMathVersion;
  }
  if (value.error() == RegistryError::kNotFound) {
    return true;
  }
  return Failure(value.error());
}

}  // namespace

Result<TaughtTags, RegistryError> ReadTaughtTags(platform::FileSystem& files,
                                                 platform::Registry& registry) {
  const storage::TagStore store(files, registry);
  const auto list = store.ListNames();
  if (!list) {
    return Failure(list.error());
  }
  TaughtTags taught;
  if (list->names.empty()) {
    return taught;
  }
  const auto isOther = HasOtherMathematics(registry);
  if (!isOther) {
    return Failure(isOther.error());
  }
  for (const std::u16string& name : list->names) {
    auto tag = *isOther ? Failure(PassedOver::kOtherMathematics) : ReadTag(files, store, name);
    if (tag) {
      taught.tags.push_back(std::move(*tag));
    } else {
      taught.passedOver.push_back({name, tag.error()});
    }
  }
  return taught;
}

}  // namespace dialer
