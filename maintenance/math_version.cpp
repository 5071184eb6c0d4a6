#include "maintenance/math_version.h"

#include <cstddef>
#include <vector>

#include "storage/registry_keys.h"
#include "storage/stored_text.h"
#include "storage/tag_record.h"

namespace maintenance {
namespace {

using platform::RegistryError;

constexpr std::int32_t kVersion = 3;
constexpr std::u16string_view kVersionText = u"3";

/// The value is read into so many bytes. A longer one counts as having no text.
constexpr std::size_t kMostBytes = 32;

// A value that was missing is written with one length, and a value that was there with another one.
// The two lengths differ on purpose, since stores in use hold both.
constexpr std::size_t kBytesIfMissing = 8;
constexpr std::size_t kBytesIfOther = 32;

RecordedVersion ReadFrom(platform::RegistryKey& key) {
  const auto value = key.Query(storage::kMathVersionValue);
  if (!value) {
    return value.error() == RegistryError::kNotFound ? RecordedVersion::kMissing
                                                     : RecordedVersion::kUnknown;
  }
  const bool isCurrent = value->bytes.size() <= kMostBytes &&
                         storage::ParseOid(storage::TextOfValue(*value)) == kVersion;
  return isCurrent ? RecordedVersion::kCurrent : RecordedVersion::kOther;
}

}  // namespace

RecordedVersion ReadVersion(platform::Registry& registry) {
  const platform::OpenedKey opened = registry.OpenKey(storage::kSetupKey);
  return opened ? ReadFrom(**opened) : RecordedVersion::kUnknown;
}

bool UpdateVersion(platform::Registry& registry) {
  const platform::OpenedKey opened = registry.OpenKey(storage::kSetupKey);
  if (!opened) {
    return false;
  }
  const RecordedVersion recorded = ReadFrom(**opened);
  // A value that cannot be read is no reason to compute a hundred templates.
  if (recorded != RecordedVersion::kMissing && recorded != RecordedVersion::kOther) {
    return false;
  }
  std::vector<std::byte> bytes = storage::ToUtf16Bytes(kVersionText);
  // What follows the text is zeros.
  bytes.resize(recorded == RecordedVersion::kMissing ? kBytesIfMissing : kBytesIfOther);
  // If this fails the work is done all the same, and once more the next time.
  static_cast<void>(
      (*opened)->Set(storage::kMathVersionValue, platform::RegistryType::kString, bytes));
  return true;
}

}  // namespace maintenance
