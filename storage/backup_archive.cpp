#include "storage/backup_archive.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <set>

#include "backends/text/names.h"
#include "backends/text/utf.h"
#include "storage/device_paths.h"
#include "storage/registry_keys.h"
#include "storage/trash_names.h"

// A backup is a tar archive, which any tool unpacks. Its members: about.txt with the version, the
// settings as registry files, the language file, then for each tag an entry, a recording and a
// template, and last the checksums of all of them. A reader goes from the first member to the last
// and refuses what it does not expect. So whatever a restoration meets later was seen here first:
// the archive is whole, of a known version, and asks for nothing but tags and settings.
namespace storage {

using platform::Failure;
using platform::FileError;
using platform::Result;

namespace {

constexpr std::string_view kBackupAbout = "about.txt";
constexpr std::string_view kBackupHeading = "Voxtrel backup ";
constexpr unsigned kBackupVersion = 1;
constexpr std::string_view kBackupLanguage = "language.lng";
constexpr std::string_view kBackupTags = "tags/";
constexpr std::string_view kBackupEntry = "/entry.reg";
constexpr std::string_view kBackupRecording = "/recording.wav";
constexpr std::string_view kBackupTemplate = "/template.st";
constexpr std::string_view kBackupChecksums = "checksums.sfv";

struct SettingsMember {
  BackupSettings settings;
  std::string_view member;
  std::u16string_view key;
};
constexpr std::array kSettingsMembers{
    SettingsMember{BackupSettings::kConnection, "settings/connection.reg", kDialerKey},
    SettingsMember{BackupSettings::kMathematics, "settings/mathematics.reg", kSetupKey},
    SettingsMember{BackupSettings::kContacts, "settings/contacts.reg", kContactNumbersKey},
};

const SettingsMember& MemberOf(BackupSettings settings) {
  return *std::ranges::find(kSettingsMembers, settings, &SettingsMember::settings);
}

/// A text or a registry file of a backup is never longer. Recordings and templates may be.
constexpr std::uint64_t kLongestText = std::uint64_t{1} << 26U;
/// Far more than a store has, and few enough for the memory of any machine.
constexpr std::size_t kMostTags = 10'000;
constexpr std::size_t kPieceBytes = 32768;

/// The CRC-32 of Ethernet, zip and SFV files.
class Crc32 {
 public:
  void Add(std::span<const std::byte> bytes) {
    for (const std::byte byte : bytes) {
      // Eight bits at once: the table holds what the division by the polynomial leaves of each
      // byte.
      m_value = kTable[(m_value ^ std::to_integer<std::uint32_t>(byte)) & 0xFFU] ^ m_value >> 8U;
    }
  }

  /// Returns the line of a list of checksums.
  [[nodiscard]] std::string LineOf(std::string_view member) const {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string line = std::string(member) + ' ';
    for (unsigned shift = 32; shift > 0; shift -= 4) {
      line += kDigits[~m_value >> (shift - 4) & 0xFU];
    }
    return line + '\n';
  }

 private:
  static constexpr std::array<std::uint32_t, 256> kTable = [] {
    constexpr std::uint32_t kPolynomial = 0xEDB88320;
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < table.size(); ++i) {
      std::uint32_t value = i;
      for (int bit = 0; bit < 8; ++bit) {
        value = (value & 1U) != 0 ? kPolynomial ^ value >> 1U : value >> 1U;
      }
      table[i] = value;
    }
    return table;
  }();

  std::uint32_t m_value = 0xFFFFFFFF;
};

/// Gives the bytes of a part of a file to `take`, piece by piece. Ends with the first failure of
/// `take`. Fails with kOther if they cannot be read.
template <typename Take>
Result<void, FileError> EachPieceOf(platform::File& file, const BackupMember& part, Take take) {
  // Piece by piece, since a recording from elsewhere may be larger than the memory.
  if (!file.Seek(part.offset)) {
    return Failure(FileError::kOther);
  }
  std::vector<std::byte> piece(kPieceBytes);
  for (std::uint64_t left = part.length; left > 0;) {
    const auto wanted = std::span(piece).first(
        static_cast<std::size_t>(std::min<std::uint64_t>(left, kPieceBytes)));
    if (file.Read(wanted) != wanted.size()) {
      return Failure(FileError::kOther);
    }
    if (const Result<void, FileError> taken = take(wanted); !taken) {
      return taken;
    }
    left -= wanted.size();
  }
  return {};
}

std::string TagMember(std::u16string_view tagName, std::string_view part) {
  return std::string(kBackupTags).append(text::ToHostName(tagName)).append(part);
}

std::string_view AsText(std::span<const std::byte> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Returns the version in the first line. Returns nothing if that is none of a backup.
std::optional<unsigned> VersionOf(std::string_view about) {
  if (!about.starts_with(kBackupHeading)) {
    return std::nullopt;
  }
  about.remove_prefix(kBackupHeading.size());
  unsigned version = 0;
  const auto read = std::from_chars(about.data(), about.data() + about.size(), version);
  const bool isNumber = read.ec == std::errc() && read.ptr != about.data() + about.size() &&
                        *read.ptr == '\n' && version > 0;
  return isNumber ? std::optional(version) : std::nullopt;
}

/// Returns the changes of a registry file that makes the key `path` and what is in it. Returns
/// nothing if it asks for anything else.
std::optional<std::vector<RegistryChange>> ChangesWithin(std::span<const std::byte> file,
                                                         const std::u16string& path) {
  auto content = ParseRegistryFile(file);
  const auto isWithin = [&path](const RegistryChange& change) {
    // A backup never deletes. So an archive that somebody has changed can add to one key, and
    // reaches nothing else.
    const bool isDeletion = change.kind == RegistryChange::Kind::kDeleteKey ||
                            change.kind == RegistryChange::Kind::kDeleteValue;
    return !isDeletion && (change.key == path || change.key.starts_with(path + u'\\'));
  };
  if (!content || content->passedOver > 0 || content->changes.empty() ||
      !std::ranges::all_of(content->changes, isWithin)) {
    return std::nullopt;
  }
  return std::move(content->changes);
}

/// Reads the members from the first to the last, and refuses what it does not know.
class BackupReader {
 public:
  explicit BackupReader(platform::File& archive) : m_archive(archive), m_tar(archive) {}

  Result<BackupContents, BackupFault> Read() {
    if (auto begun = ReadAbout(); !begun) {
      return Failure(begun.error());
    }
    while (true) {
      const auto next = m_tar.Next();
      if (!next) {
        return Failure(ToFault(next.error()));
      }
      if (!*next) {
        return Failure(BackupFault::kDamaged);  // The list of checksums is missing.
      }
      // The list of checksums is the last member. An archive that was cut off has none.
      if (m_tar.GetName() == kBackupChecksums) {
        return ReadChecksums();
      }
      if (const auto read = ReadMember(); !read) {
        return Failure(read.error());
      }
    }
  }

 private:
  using Done = Result<void, BackupFault>;
  using Changes = std::vector<RegistryChange>;

  static BackupFault ToFault(TarError error) {
    return error == TarError::kUnread ? BackupFault::kUnread : BackupFault::kDamaged;
  }

  Done ReadAbout() {
    const auto first = m_tar.Next();
    if (!first) {
      return Failure(first.error() == TarError::kUnread ? BackupFault::kUnread
                                                        : BackupFault::kForeign);
    }
    if (!*first || m_tar.GetName() != kBackupAbout) {
      return Failure(BackupFault::kForeign);
    }
    const auto about = m_tar.ReadAll(kLongestText);
    if (!about) {
      return Failure(ToFault(about.error()));
    }
    // Asked before anything else is read, so that a later version may change all the rest.
    const auto version = VersionOf(AsText(*about));
    if (!version || *version != kBackupVersion) {
      return Failure(version ? BackupFault::kNewer : BackupFault::kForeign);
    }
    return AddChecksum();
  }

  [[nodiscard]] BackupMember Place() const { return {m_tar.GetOffset(), m_tar.GetLength()}; }

  Done AddChecksum() {
    Crc32 crc;
    const auto read =
        EachPieceOf(m_archive, Place(), [&crc](auto piece) -> Result<void, FileError> {
          crc.Add(piece);
          return {};
        });
    m_checksums += crc.LineOf(m_tar.GetName());
    return read.map_error([](FileError) { return BackupFault::kUnread; });
  }

  Done ReadMember() {
    const std::string& member = m_tar.GetName();
    // Names that differ in letter case alone are one name on the device.
    if (!m_names.insert(text::FoldName(text::FromHostName(member))).second) {
      return Failure(BackupFault::kDamaged);
    }
    if (const auto added = AddChecksum(); !added) {
      return added;
    }
    if (member == kBackupLanguage) {
      m_contents.languageFile = Place();
      return {};
    }
    const auto* const known = std::ranges::find(kSettingsMembers, member, &SettingsMember::member);
    if (known != kSettingsMembers.end()) {
      return ReadChanges(std::u16string(known->key)).map([&](Changes&& changes) {
        m_contents.settings[known->settings] = std::move(changes);
      });
    }
    return member.starts_with(kBackupTags) ? ReadPartOfTag(member.substr(kBackupTags.size()))
                                           : Failure(BackupFault::kDamaged);
  }

  Result<std::vector<RegistryChange>, BackupFault> ReadChanges(const std::u16string& key) {
    const auto file = m_tar.ReadAll(kLongestText);
    if (!file) {
      return Failure(ToFault(file.error()));
    }
    auto changes = ChangesWithin(*file, key);
    if (!changes) {
      return Failure(BackupFault::kDamaged);
    }
    return std::move(*changes);
  }

  /// `part` is "TAG/entry.reg" and so on. The entry of a tag comes before its files.
  Done ReadPartOfTag(std::string_view part) {
    const std::size_t slash = std::min(part.find('/'), part.size());
    const std::u16string name = text::FromHostName(part.substr(0, slash));
    part.remove_prefix(slash);
    auto& tags = m_contents.tags;
    if (part == kBackupEntry) {
      if (!BackupWriter::Fits(name) || tags.size() >= kMostTags) {
        return Failure(BackupFault::kDamaged);
      }
      return ReadChanges(EntryPath(name)).map([&](Changes&& changes) {
        tags.push_back({name, std::move(changes), {}, {}});
      });
    }
    // A file of a tag follows the entry of that tag. Anything else was not written here.
    if (tags.empty() || tags.back().name != name) {
      return Failure(BackupFault::kDamaged);
    }
    if (part == kBackupRecording) {
      tags.back().recording = Place();
    } else if (part == kBackupTemplate) {
      tags.back().voiceTemplate = Place();
    } else {
      return Failure(BackupFault::kDamaged);
    }
    return {};
  }

  Result<BackupContents, BackupFault> ReadChecksums() {
    const auto checksums = m_tar.ReadAll(kLongestText);
    if (!checksums) {
      return Failure(ToFault(checksums.error()));
    }
    const auto next = m_tar.Next();
    if (!next) {
      return Failure(ToFault(next.error()));
    }
    // The reader has made the same list on its way. Members and their order are the same if the two
    // texts are.
    if (*next || AsText(*checksums) != m_checksums) {
      return Failure(BackupFault::kDamaged);
    }
    return std::move(m_contents);
  }

  platform::File& m_archive;
  TarReader m_tar;
  BackupContents m_contents;
  std::string m_checksums;
  std::set<std::u16string> m_names;  ///< Folded.
};

}  // namespace

std::u16string_view KeyOf(BackupSettings settings) { return MemberOf(settings).key; }

BackupWriter::Written BackupWriter::Begin(std::int64_t unixTime) {
  constexpr unsigned kOnly = 1;
  const std::u16string stamp = StampOf(unixTime, kOnly);
  std::string about(kBackupHeading);
  about.append(std::to_string(kBackupVersion)).append("\nmade ");
  about.append(text::ToUtf8(stamp.substr(0, stamp.find(u'-')))).append("\n");
  return Add(std::string(kBackupAbout), std::as_bytes(std::span(about)));
}

BackupWriter::Written BackupWriter::AddSettings(BackupSettings settings,
                                                std::span<const std::byte> file) {
  return Add(std::string(MemberOf(settings).member), file);
}

BackupWriter::Written BackupWriter::AddLanguageFile(platform::File& source) {
  return AddFile(std::string(kBackupLanguage), source);
}

// The name stands in the archive as bytes of the host. It must come back as it was, and must not
// lead out of the archive's folder, nor out of those of the device.
bool BackupWriter::Fits(std::u16string_view tagName) {
  // The longest name that the format holds without an extension.
  constexpr std::size_t kLongestMember = 99;
  const std::string host = text::ToHostName(tagName);
  return platform::IsKeyName(tagName) && text::SplitDevicePath(WavePath(tagName)) && host != "." &&
         host != ".." && host.find('/') == std::string::npos &&
         text::FromHostName(host) == tagName &&
         TagMember(tagName, kBackupRecording).size() <= kLongestMember;
}

BackupWriter::Written BackupWriter::AddEntry(std::u16string_view tagName,
                                             std::span<const std::byte> file) {
  return Add(TagMember(tagName, kBackupEntry), file);
}

BackupWriter::Written BackupWriter::AddRecording(std::u16string_view tagName,
                                                 platform::File& source) {
  return AddFile(TagMember(tagName, kBackupRecording), source);
}

BackupWriter::Written BackupWriter::AddTemplate(std::u16string_view tagName,
                                                platform::File& source) {
  return AddFile(TagMember(tagName, kBackupTemplate), source);
}

BackupWriter::Written BackupWriter::End() {
  return m_tar.Add(kBackupChecksums, std::as_bytes(std::span(m_checksums))).and_then([this] {
    return m_tar.End();
  });
}

BackupWriter::Written BackupWriter::Add(const std::string& member,
                                        std::span<const std::byte> bytes) {
  Crc32 crc;
  crc.Add(bytes);
  m_checksums += crc.LineOf(member);
  return m_tar.Add(member, bytes);
}

BackupWriter::Written BackupWriter::AddFile(const std::string& member, platform::File& source) {
  const auto length = source.GetLength();
  if (!length) {
    return Failure(FileError::kOther);
  }
  Crc32 crc;
  // The file is read twice, for its checksum and into the archive. It cannot change in between: it
  // is open and shared with readers only.
  const auto read = EachPieceOf(source, {0, *length}, [&crc](auto piece) -> Written {
    crc.Add(piece);
    return {};
  });
  m_checksums += crc.LineOf(member);
  return read.and_then([&] { return m_tar.AddFile(member, source); });
}

Result<BackupContents, BackupFault> ReadBackup(platform::File& archive) {
  return BackupReader(archive).Read();
}

Result<bool, FileError> LooksLikeBackup(platform::File& file) {
  TarReader tar(file);
  const auto about = tar.Next().and_then([&tar](bool isThere) {
    return isThere && tar.GetName() == kBackupAbout ? tar.ReadAll(kLongestText)
                                                    : Failure(TarError::kTorn);
  });
  if (!about && about.error() == TarError::kUnread) {
    return Failure(FileError::kOther);
  }
  return about && VersionOf(AsText(*about));
}

Result<void, FileError> CopyMember(platform::File& archive, const BackupMember& member,
                                   platform::File& to) {
  return EachPieceOf(archive, member, [&to](auto piece) { return to.Write(piece); });
}

Result<bool, FileError> IsSameAsMember(platform::File& archive, const BackupMember& member,
                                       platform::File& file) {
  const auto length = file.GetLength();
  if (!length || !file.Seek(0)) {
    return Failure(FileError::kOther);
  }
  if (*length != member.length) {
    return false;
  }
  bool isSame = true;
  std::vector<std::byte> there(kPieceBytes);
  return EachPieceOf(archive, member,
                     [&](std::span<const std::byte> piece) -> Result<void, FileError> {
                       const auto here = std::span(there).first(piece.size());
                       if (file.Read(here) != here.size()) {
                         return Failure(FileError::kOther);
                       }
                       isSame = isSame && std::ranges::equal(here, piece);
                       return {};
                     })
      .map([&isSame] { return isSame; });
}

}  // namespace storage
