#include "tests/support/failing_file_system.h"

#include <cstddef>
#include <memory>
#include <ostream>
#include <utility>

namespace support {
namespace {

using platform::FileError;
using platform::Result;

class FailingFile final : public platform::File {
 public:
  FailingFile(FailingFileSystem& counter, std::unique_ptr<platform::File> file)
      : m_counter(counter), m_owned(std::move(file)), m_file(m_owned.get()) {}
  /// `file` outlives this.
  FailingFile(FailingFileSystem& counter, platform::File& file)
      : m_counter(counter), m_file(&file) {}

  [[nodiscard]] Result<std::uint64_t, FileError> GetLength() override {
    const auto verdict = m_counter.CountCall();
    return verdict.Fails() ? verdict.Failure() : m_file->GetLength();
  }

  [[nodiscard]] Result<void, FileError> Seek(std::uint64_t offset) override {
    const auto verdict = m_counter.CountCall();
    return verdict.Fails() ? verdict.Failure() : m_file->Seek(offset);
  }

  [[nodiscard]] Result<std::size_t, FileError> Read(std::span<std::byte> into) override {
    const auto verdict = m_counter.CountCall();
    return verdict.Fails() ? verdict.Failure() : m_file->Read(into);
  }

  [[nodiscard]] Result<void, FileError> Write(std::span<const std::byte> bytes) override {
    const auto verdict = m_counter.CountCall();
    if (!verdict.Fails()) {
      return m_file->Write(bytes);
    }
    if (verdict.isForwarded) {
      static_cast<void>(m_file->Write(bytes.first(bytes.size() / 2)));
    }
    return verdict.Failure();
  }

  [[nodiscard]] Result<void, FileError> SetLength(std::uint64_t length) override {
    const auto verdict = m_counter.CountCall();
    return verdict.Fails() ? verdict.Failure() : m_file->SetLength(length);
  }

  [[nodiscard]] Result<void, FileError> Flush() override {
    const auto verdict = m_counter.CountCall();
    const auto result = verdict.isForwarded ? m_file->Flush() : Result<void, FileError>();
    return verdict.Fails() ? verdict.Failure() : result;
  }

  [[nodiscard]] Result<void, FileError> Close() override {
    const auto verdict = m_counter.CountCall();
    const auto result = verdict.isForwarded ? m_file->Close() : Result<void, FileError>();
    return verdict.Fails() ? verdict.Failure() : result;
  }

 private:
  FailingFileSystem& m_counter;
  const std::unique_ptr<platform::File> m_owned;  ///< Null if somebody else owns it.
  platform::File* const m_file;
};

class FailingReplacement final : public platform::Replacement {
 public:
  FailingReplacement(FailingFileSystem& counter, std::unique_ptr<platform::Replacement> inner)
      : m_counter(counter), m_inner(std::move(inner)), m_file(counter, m_inner->GetFile()) {}

  [[nodiscard]] platform::File& GetFile() override { return m_file; }

  [[nodiscard]] Result<void, FileError> Publish(platform::Durability durability) override {
    const auto verdict = m_counter.CountCall();
    return verdict.Fails() ? verdict.Failure() : m_inner->Publish(durability);
  }

 private:
  FailingFileSystem& m_counter;
  const std::unique_ptr<platform::Replacement> m_inner;
  FailingFile m_file;
};

class FailingSearch final : public platform::FileSearch {
 public:
  FailingSearch(FailingFileSystem& counter, std::unique_ptr<platform::FileSearch> search)
      : m_counter(counter), m_search(std::move(search)) {}

  [[nodiscard]] Result<std::optional<platform::FoundFile>, FileError> Next() override {
    const auto verdict = m_counter.CountCall();
    if (!verdict.Fails()) {
      return m_search->Next();
    }
    // A search that goes on failing still ends, as searches promise: from its second failure on,
    // each one swallows a name.
    if (std::exchange(m_hasFailed, true)) {
      if (const auto swallowed = m_search->Next(); swallowed && !*swallowed) {
        return std::nullopt;
      }
    }
    return verdict.Failure();
  }

 private:
  FailingFileSystem& m_counter;
  const std::unique_ptr<platform::FileSearch> m_search;
  bool m_hasFailed = false;
};

}  // namespace

std::ostream& operator<<(std::ostream& stream, Failing failing) {
  constexpr const char* kNames[] = {"once", "from then on", "power failure"};
  return stream << kNames[static_cast<std::size_t>(failing)];
}

void FailingFileSystem::FailCall(std::size_t number, Failing failing, FileError error) {
  const std::lock_guard lock(m_mutex);
  m_calls = 0;
  m_failingCall = number;
  m_failing = failing;
  m_error = error;
}

std::size_t FailingFileSystem::CountCalls() const {
  const std::lock_guard lock(m_mutex);
  return m_calls;
}

bool FailingFileSystem::HasFailed() const {
  const std::lock_guard lock(m_mutex);
  return m_failingCall != 0 && m_calls >= m_failingCall;
}

FailingFileSystem::Verdict FailingFileSystem::CountCall() {
  const std::lock_guard lock(m_mutex);
  ++m_calls;
  const bool isTheOne = m_calls == m_failingCall;
  const bool isBehind = m_failingCall != 0 && m_calls > m_failingCall;
  if (!isTheOne && (!isBehind || m_failing == Failing::kOnce)) {
    return {};
  }
  // A killed process may have been in the middle of its last call, and makes no further one.
  return {m_error, isTheOne || m_failing != Failing::kPowerFailure};
}

Result<std::unique_ptr<platform::File>, FileError> FailingFileSystem::Open(
    std::u16string_view path, const platform::OpenMode& mode) {
  if (const Verdict verdict = CountCall(); verdict.Fails()) {
    return verdict.Failure();
  }
  auto opened = m_files.Open(path, mode);
  if (opened) {
    opened = std::make_unique<FailingFile>(*this, std::move(*opened));
  }
  return opened;
}

Result<std::unique_ptr<platform::Replacement>, FileError> FailingFileSystem::OpenReplacement(
    std::u16string_view path) {
  if (const Verdict verdict = CountCall(); verdict.Fails()) {
    return verdict.Failure();
  }
  auto opened = m_files.OpenReplacement(path);
  if (opened) {
    opened = std::make_unique<FailingReplacement>(*this, std::move(*opened));
  }
  return opened;
}

Result<void, FileError> FailingFileSystem::Delete(std::u16string_view path) {
  const Verdict verdict = CountCall();
  return verdict.Fails() ? verdict.Failure() : m_files.Delete(path);
}

Result<void, FileError> FailingFileSystem::CreateFolder(std::u16string_view path) {
  const Verdict verdict = CountCall();
  return verdict.Fails() ? verdict.Failure() : m_files.CreateFolder(path);
}

Result<void, FileError> FailingFileSystem::FlushFolder(std::u16string_view path) {
  const Verdict verdict = CountCall();
  return verdict.Fails() ? verdict.Failure() : m_files.FlushFolder(path);
}

Result<std::unique_ptr<platform::FileSearch>, FileError> FailingFileSystem::Find(
    std::u16string_view pattern) {
  if (const Verdict verdict = CountCall(); verdict.Fails()) {
    return verdict.Failure();
  }
  auto started = m_files.Find(pattern);
  if (started) {
    started = std::make_unique<FailingSearch>(*this, std::move(*started));
  }
  return started;
}

}  // namespace support
