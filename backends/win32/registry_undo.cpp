#include "backends/win32/registry_undo.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

#include "backends/win32/win32_threads.h"

namespace win32 {
namespace {

using platform::Failure;
using platform::RegistryError;
using platform::RegistryType;

constexpr REGSAM kUndoAccess = KEY_READ | KEY_WRITE;
/// Deeper than any key can be.
constexpr int kMostTreeLevels = 600;
/// Of a step: far more than any key of ours holds.
constexpr std::size_t kMostStepBytes = std::size_t{1} << 30;

// A step is stored as a value of bytes: numbers of 32 bits, and each text and each content after
// its length. The keys below a key stand within it.

class StepWriter {
 public:
  [[nodiscard]] static std::vector<std::byte> Write(const UndoStep& step) {
    StepWriter writer;
    writer.Put(static_cast<std::uint32_t>(step.kind));
    writer.Put(step.path);
    writer.Put(step.name);
    writer.Put(step.before);
    return std::move(writer.m_bytes);
  }

 private:
  void Put(std::uint32_t number) { Append(&number, sizeof(number)); }
  void Put(std::u16string_view text) {
    Put(static_cast<std::uint32_t>(text.size()));
    Append(text.data(), text.size() * sizeof(char16_t));
  }
  void Put(const KeyTree& tree) {
    Put(static_cast<std::uint32_t>(tree.values.size()));
    for (const NamedValue& value : tree.values) {
      Put(value.name);
      Put(static_cast<std::uint32_t>(value.value.type));
      Put(static_cast<std::uint32_t>(value.value.bytes.size()));
      Append(value.value.bytes.data(), value.value.bytes.size());
    }
    Put(static_cast<std::uint32_t>(tree.keys.size()));
    for (const auto& [name, below] : tree.keys) {
      Put(name);
      Put(below);
    }
  }
  void Append(const void* data, std::size_t size) {
    const auto* const bytes = static_cast<const std::byte*>(data);
    m_bytes.insert(m_bytes.end(), bytes, bytes + size);
  }

  std::vector<std::byte> m_bytes;
};

class StepReader {
 public:
  /// Returns nothing if the bytes are no step.
  [[nodiscard]] static std::optional<UndoStep> Read(const std::vector<std::byte>& bytes) {
    StepReader reader(bytes);
    UndoStep step;
    const std::uint32_t kind = reader.Number();
    step.kind = static_cast<UndoStep::Kind>(kind);
    step.path = reader.Text();
    step.name = reader.Text();
    step.before = reader.Tree(kMostTreeLevels);
    const bool isStep = reader.m_isWhole && reader.m_at == bytes.size() &&
                        kind <= static_cast<std::uint32_t>(UndoStep::Kind::kValueSet) &&
                        !step.path.empty();
    return isStep ? std::optional(std::move(step)) : std::nullopt;
  }

 private:
  explicit StepReader(const std::vector<std::byte>& bytes) : m_bytes(bytes) {}

  std::uint32_t Number() {
    std::uint32_t number = 0;
    if (const std::byte* const data = Take(sizeof(number))) {
      std::memcpy(&number, data, sizeof(number));
    }
    return number;
  }
  std::u16string Text() {
    const std::size_t length = Number();
    const std::byte* const data = Take(length * sizeof(char16_t));
    std::u16string text(data == nullptr ? 0 : length, u'\0');
    if (!text.empty()) {
      std::memcpy(text.data(), data, length * sizeof(char16_t));
    }
    return text;
  }
  KeyTree Tree(int levels) {
    KeyTree tree;
    m_isWhole = m_isWhole && levels > 0;
    for (std::uint32_t left = Number(); m_isWhole && left > 0; --left) {
      NamedValue value{Text(), {static_cast<RegistryType>(Number()), {}}};
      const std::size_t length = Number();
      if (const std::byte* const data = Take(length)) {
        value.value.bytes.assign(data, data + length);
      }
      tree.values.push_back(std::move(value));
    }
    for (std::uint32_t left = Number(); m_isWhole && left > 0; --left) {
      std::u16string name = Text();
      tree.keys.emplace_back(std::move(name), Tree(levels - 1));
    }
    return tree;
  }
  const std::byte* Take(std::size_t size) {
    m_isWhole = m_isWhole && m_bytes.size() - m_at >= size;
    return m_isWhole ? m_bytes.data() + std::exchange(m_at, m_at + size) : nullptr;
  }

  const std::vector<std::byte>& m_bytes;
  std::size_t m_at = 0;
  bool m_isWhole = true;
};

/// Returns a number in as many digits as each has, so that names sort as the numbers do.
std::u16string ToDigits(std::uint64_t number) {
  constexpr std::size_t kDigits = 20;
  std::u16string digits(kDigits, u'0');
  for (std::size_t i = kDigits; number != 0; number /= 10) {
    digits[--i] = static_cast<char16_t>(u'0' + number % 10);
  }
  return digits;
}

/// Returns the part of a writer's name that stands for its process.
std::u16string_view ProcessOf(std::u16string_view writer) {
  return writer.substr(0, writer.find(u'-'));
}

Done AcceptMissing(Done done) {
  return !done && done.error() == RegistryError::kNotFound ? Done() : done;
}

Done UndoValue(HKEY hive, const UndoStep& step) {
  const auto key = OpenSystemKey(hive, step.path, kUndoAccess);
  if (!key) {
    return AcceptMissing(Failure(key.error()));
  }
  return step.before.values.empty()
             ? AcceptMissing(RemoveValue(key->Get(), step.name))
             : WriteValue(key->Get(), step.name, step.before.values.front().value);
}

/// Undoes all that one writer left.
Done UndoAll(HKEY hive, const SystemKey& journals, const std::u16string& writer) {
  std::vector<std::pair<std::u16string, UndoStep>> steps;
  {
    const auto journal = OpenSystemKey(journals.Get(), writer, KEY_READ);
    auto tree = journal ? ReadTree(journal->Get(), kMostStepBytes) : Failure(journal.error());
    if (!tree) {
      return Failure(tree.error());
    }
    for (NamedValue& value : tree->values) {
      // What is no step was not written here, and stands for no change.
      if (auto step = StepReader::Read(value.value.bytes)) {
        steps.emplace_back(std::move(value.name), std::move(*step));
      }
    }
  }
  // The latest step first: an earlier one may have made the key that a later one changed.
  std::ranges::sort(steps, std::ranges::greater(), [](const auto& step) { return step.first; });
  for (const auto& [name, step] : steps) {
    if (const auto undone = Undo(hive, step); !undone) {
      return undone;
    }
  }
  return RemoveTree(journals.Get(), writer);
}

}  // namespace

Done Undo(HKEY hive, const UndoStep& step) {
  if (step.kind == UndoStep::Kind::kValueSet) {
    return UndoValue(hive, step);
  }
  if (step.kind == UndoStep::Kind::kKeyMade) {
    const auto [parentPath, name] = SplitLast(step.path);
    const auto parent = OpenSystemKey(hive, parentPath, KEY_READ);
    return AcceptMissing(parent ? RemoveTree(parent->Get(), name) : Failure(parent.error()));
  }
  const auto made = MakeSystemPath(hive, step.path);
  return made ? WriteTree(made->Get(), step.before) : Failure(made.error());
}

// A process is known by when it began, since its number is given again later.
std::u16string NameOfWriter(const void* object) {
  FILETIME begun{};
  FILETIME ignored{};
  ::GetProcessTimes(::GetCurrentProcess(), &begun, &ignored, &ignored, &ignored);
  const std::uint64_t parts[] = {begun.dwHighDateTime, begun.dwLowDateTime,
                                 ::GetCurrentProcessId()};
  std::u16string name;
  for (const std::uint64_t part : parts) {
    name.append(ToDigits(part)).append(1, u' ');
  }
  return name + u'-' + ToDigits(reinterpret_cast<std::uintptr_t>(object));
}

UndoJournal::UndoJournal(HKEY hive, std::u16string path, std::u16string writer)
    : m_hive(hive), m_path(std::move(path)), m_writer(std::move(writer)) {}

Done UndoJournal::Note(const UndoStep& step) {
  const auto journal = MakeSystemPath(m_hive, m_path + u'\\' + m_writer);
  if (!journal) {
    return Failure(journal.error());
  }
  return WriteValue(journal->Get(), ToDigits(++m_count),
                    {RegistryType::kBinary, StepWriter::Write(step)});
}

Done UndoJournal::Clear() {
  m_count = 0;
  const auto journals = OpenSystemKey(m_hive, m_path, KEY_READ);
  return AcceptMissing(journals ? RemoveTree(journals->Get(), m_writer)
                                : Failure(journals.error()));
}

Done UndoJournal::Recover() const {
  const auto journals = OpenSystemKey(m_hive, m_path, KEY_READ);
  if (!journals) {
    return AcceptMissing(Failure(journals.error()));
  }
  std::vector<std::u16string> writers;
  for (std::uint32_t i = 0;; ++i) {
    auto listed = ListSubkey(journals->Get(), i);
    if (!listed) {
      return Failure(listed.error());
    }
    if (!*listed) {
      break;
    }
    // What this process has noted is of changes that go on.
    if ((*listed)->name && ProcessOf(*(*listed)->name) != ProcessOf(m_writer)) {
      writers.push_back(std::move(*(*listed)->name));
    }
  }
  for (const std::u16string& writer : writers) {
    if (const auto undone = UndoAll(m_hive, *journals, writer); !undone) {
      return undone;
    }
  }
  return {};
}

WriterLock::WriterLock(std::u16string_view place) : m_name(NameOfObject(place, u"writer")) {}

Done WriterLock::Take(std::chrono::milliseconds limit) {
  if (!m_mutex.IsOpen()) {
    m_mutex.Reset(::CreateMutexW(nullptr, FALSE, ToWide(m_name)));
    if (!m_mutex.IsOpen()) {
      return ::GetLastError() == ERROR_ACCESS_DENIED ? Done() : Failure(RegistryError::kOther);
    }
  }
  switch (::WaitForSingleObject(m_mutex.Get(), static_cast<DWORD>(limit.count()))) {
    case WAIT_OBJECT_0:
    case WAIT_ABANDONED:
      m_isHeld = true;
      return {};
    case WAIT_TIMEOUT:
      return Failure(RegistryError::kBusy);
    default:
      return Failure(RegistryError::kOther);
  }
}

void WriterLock::Release() {
  if (std::exchange(m_isHeld, false)) {
    ::ReleaseMutex(m_mutex.Get());
  }
}

}  // namespace win32
