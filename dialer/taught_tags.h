#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/file_system.h"
#include "platform/registry.h"

namespace dialer {

/// A voice tag as it was when it was read. The applet may have changed its files since then.
struct TaughtTag {
  std::u16string name;
  /// The contact's identifier. Nothing if the entry names no contact.
  std::optional<std::int32_t> oid;
  std::u16string phoneKind;           ///< The stored word; empty if there is none.
  std::vector<float> features;        ///< The template: voicemath::kBandCount values a frame.
  std::vector<std::int16_t> samples;  ///< The recording, voicemath::kSamplesPerSecond.
};

/// Returns whether two tags, each as a TaughtTag or a Candidate, are for one number, so that it
/// does not matter which of them is meant. If it is not known whose a tag is, there is no other
/// like it.
template <typename Tag>
[[nodiscard]] bool IsSameNumber(const Tag& a, const Tag& b) {
  return a.oid && a.oid == b.oid && a.phoneKind == b.phoneKind;
}

/// Why a tag that is listed was passed over.
enum class PassedOver : std::uint8_t {
  kMissing,          ///< A file is not there: the tag is being deleted, or was not deleted wholly.
  kInUse,            ///< The applet is writing a file at this moment.
  kDamaged,          ///< A file is torn, or is no template or no recording.
  kTooLong,          ///< It is longer than a spoken name can be (kMostSeconds).
  kNotRead,          ///< The entry or a file cannot be read.
  kOtherMathematics  ///< Another version of the mathematics computed the templates.
};

struct PassedOverTag {
  std::u16string name;
  PassedOver reason = PassedOver::kNotRead;
};

/// Longer tags are passed over. So the work for a tag has a bound, whatever the store holds.
inline constexpr std::uint32_t kMostSeconds = 10;

/// What is taught.
struct TaughtTags {
  std::vector<TaughtTag> tags;  ///< In the order of the registry.
  std::vector<PassedOverTag> passedOver;
};

/// Reads every tag, as docs/companion.md describes it: nothing is changed, and a file is open only
/// while it is read, so that the applet is not in the way of the dialer nor the dialer in its way.
/// Fails if the list of tags cannot be read.
[[nodiscard]] platform::Result<TaughtTags, platform::RegistryError> ReadTaughtTags(
    platform::FileSystem& files, platform::Registry& registry);

}  // namespace dialer
