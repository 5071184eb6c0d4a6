// Reads a backup of arbitrary bytes: it is refused, or it can be restored into an empty store, and
// what is then backed up is the same. Nothing is ever written outside the folders of the store.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "storage/backup.h"
#include "storage/device_paths.h"
#include "storage/restore.h"
#include "storage/tag_store.h"
#include "tests/fuzz/require.h"
#include "tests/machine/memory_file_system.h"
#include "tests/machine/memory_registry.h"
#include "tests/machine/simulation.h"

namespace {

constexpr std::u16string_view kPath = u"\\backup.tar";
constexpr std::u16string_view kAgain = u"\\again.tar";
constexpr std::size_t kBlock = 512;

using Bytes = std::vector<std::byte>;

void PutText(Bytes& block, std::size_t at, std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    block[at + i] = static_cast<std::byte>(text[i]);
  }
}

std::string Octal(std::size_t number, std::size_t width) {
  std::string digits(width, '0');
  for (std::size_t i = width; i > 0; --i, number >>= 3U) {
    digits[i - 1] = static_cast<char>('0' + (number & 7U));
  }
  return digits;
}

void AddMember(Bytes& archive, std::string_view name, std::span<const std::byte> bytes) {
  Bytes header(kBlock);
  PutText(header, 0, name.substr(0, 100));
  PutText(header, 124, Octal(bytes.size(), 11));
  PutText(header, 148, "        ");
  PutText(header, 156, "0");
  PutText(header, 257, "ustar");
  std::size_t sum = 0;
  for (const std::byte byte : header) {
    sum += std::to_integer<std::size_t>(byte);
  }
  PutText(header, 148, Octal(sum, 6) + std::string("\0 ", 2));
  archive.insert(archive.end(), header.begin(), header.end());
  archive.insert(archive.end(), bytes.begin(), bytes.end());
  archive.resize((archive.size() + kBlock - 1) / kBlock * kBlock);
}

std::string ChecksumLine(std::string_view member, std::span<const std::byte> bytes) {
  std::uint32_t crc = ~0U;
  for (const std::byte byte : bytes) {
    crc ^= std::to_integer<std::uint32_t>(byte);
    for (int bit = 0; bit < 8; ++bit) {
      crc = (crc & 1U) != 0 ? 0xEDB88320U ^ crc >> 1U : crc >> 1U;
    }
  }
  std::string line = std::string(member) + ' ';
  for (unsigned shift = 32; shift > 0; shift -= 4) {
    line += "0123456789ABCDEF"[~crc >> (shift - 4) & 0xFU];
  }
  return line + '\n';
}

/// An input that begins with a zero is the whole file after it. Any other is a list of members: a
/// name, a zero, a length in one byte, and so many bytes. They get right headers and checksums, so
/// that what comes after these is tried soon.
Bytes ToFile(std::span<const std::byte> input) {
  if (!input.empty() && input.front() == std::byte{0}) {
    return {input.begin() + 1, input.end()};
  }
  Bytes archive;
  std::string checksums;
  const auto add = [&](std::string_view name, std::span<const std::byte> bytes) {
    AddMember(archive, name, bytes);
    checksums += ChecksumLine(name, bytes);
  };
  constexpr std::string_view kAbout = "Voxtrel backup 1\n";
  add("about.txt", std::as_bytes(std::span(kAbout)));
  while (!input.empty()) {
    std::string name;
    while (!input.empty() && input.front() != std::byte{0}) {
      name += static_cast<char>(input.front());
      input = input.subspan(1);
    }
    if (input.size() < 2) {
      break;
    }
    const std::size_t length =
        std::min(std::to_integer<std::size_t>(input[1]) * 4, input.size() - 2);
    add(name.substr(0, 100), input.subspan(2, length));
    input = input.subspan(2 + length);
  }
  AddMember(archive, "checksums.sfv", std::as_bytes(std::span(checksums)));
  archive.resize(archive.size() + 2 * kBlock);
  return archive;
}

void Put(platform::FileSystem& files, const Bytes& bytes) {
  const auto file = files.Open(kPath, {platform::FileAccess::kWrite, platform::FileShare::kNone,
                                       platform::FileCreation::kCreateAlways});
  Require(file && (*file)->Write(bytes), "a file in memory can be written");
}

/// Files of the root and of the folders that lie in it.
std::vector<std::u16string> NamesIn(platform::FileSystem& files, std::u16string_view pattern) {
  std::vector<std::u16string> names;
  if (const auto search = files.Find(pattern)) {
    for (auto found = (*search)->Next(); found && *found; found = (*search)->Next()) {
      names.push_back((*found)->name);
    }
  }
  return names;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  machine::MemoryFileSystem files;
  machine::MemoryRegistry registry;
  machine::Simulation clock;
  Put(files, ToFile(std::as_bytes(std::span(data, size))));
  const auto archive = files.Open(kPath, {}).value();
  const auto backup = storage::ReadBackup(*archive);
  if (!backup) {
    return 0;
  }
  const auto here = [](std::int32_t oid) { return std::optional(oid); };
  const auto plan = storage::PlanRestore(files, registry, *archive, *backup, here);
  Require(plan.has_value(), "a store in memory can be compared");
  const auto outcome =
      storage::Restore(files, registry, clock, *archive, *backup, *plan, storage::Replacing::kYes,
                       [](auto name) { return std::u16string(name); });
  for (std::size_t i = 0; i < outcome.tags.size(); ++i) {
    Require(outcome.tags[i] == storage::RestoreFate::kRestored ||
                (i >= 100 && outcome.tags[i] == storage::RestoreFate::kTooMany),
            "each tag of an accepted backup can be restored");
  }
  for (const std::u16string& name : NamesIn(files, u"\\*")) {
    Require(name == u"backup.tar" || name == u"Program Files" || name == u"Voxtrel Trash",
            "nothing is written outside the store");
  }
  const auto again = storage::PlanRestore(files, registry, *archive, *backup, here);
  Require(again.has_value(), "the restored store can be compared");
  for (std::size_t i = 0; i < again->tags.size() && i < 100; ++i) {
    Require(again->tags[i].state == storage::RestoreState::kSame, "and is the same");
  }
  Require(
      storage::WriteBackup(files, registry, clock, kAgain, storage::BackupScope::kAll).has_value(),
      "and can be backed up");
  const auto second = files.Open(kAgain, {}).value();
  Require(storage::ReadBackup(*second).has_value(), "which is a backup again");
  return 0;
}
