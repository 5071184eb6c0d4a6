#include "tests/support/watched_file_system.h"

#include <array>
#include <utility>

namespace support {

using platform::Failure;
using platform::FileError;
using platform::Result;

namespace {

std::string Describe(const platform::OpenMode& mode) {
  static constexpr std::array kAccesses{"for nothing", "for reading", "for writing", "for both"};
  static constexpr std::array kShares{"alone", "with readers"};
  static constexpr std::array kCreations{"existing", "always", "created or emptied", "created"};
  return std::string("open ") + kAccesses[static_cast<std::size_t>(mode.access)] + ", " +
         kShares[static_cast<std::size_t>(mode.share)] + ", " +
         kCreations[static_cast<std::size_t>(mode.creation)];
}

}  // namespace

class WatchedFileSystem::WatchedFile final : public platform::File {
 public:
  WatchedFile(WatchedFileSystem& owner, std::unique_ptr<platform::File> inner)
      : m_owner(owner), m_owned(std::move(inner)), m_inner(m_owned.get()) {}
  /// `inner` outlives this.
  WatchedFile(WatchedFileSystem& owner, platform::File& inner) : m_owner(owner), m_inner(&inner) {}

  [[nodiscard]] Result<std::uint64_t, FileError> GetLength() override {
    return m_owner.Count().and_then([&] { return m_inner->GetLength(); });
  }

  /// Nothing fails here: a version that is not known is no error.
  [[nodiscard]] std::optional<platform::FileVersion> GetVersion() override {
    return m_inner->GetVersion();
  }

  [[nodiscard]] Result<void, FileError> Seek(std::uint64_t offset) override {
    return m_owner.Count().and_then([&] { return m_inner->Seek(offset); });
  }

  [[nodiscard]] Result<std::size_t, FileError> Read(std::span<std::byte> into) override {
    return m_owner.Count().and_then([&] { return m_inner->Read(into); });
  }

  [[nodiscard]] Result<void, FileError> Write(std::span<const std::byte> bytes) override {
    m_owner.Note("write " + std::to_string(bytes.size()));
    const auto verdict = m_owner.m_plan.Next();
    if (!verdict.fails) {
      return m_inner->Write(bytes);
    }
    if (verdict.takesEffect) {
      static_cast<void>(m_inner->Write(bytes.first(bytes.size() / 2)));
    }
    return Failure(m_owner.m_error);
  }

  [[nodiscard]] Result<void, FileError> SetLength(std::uint64_t length) override {
    return m_owner.Count().and_then([&] { return m_inner->SetLength(length); });
  }

  [[nodiscard]] Result<void, FileError> Flush() override {
    m_owner.Note("flush");
    return End([this] { return m_inner->Flush(); });
  }

  [[nodiscard]] Result<void, FileError> Close() override {
    m_owner.Note("close file");
    return End([this] { return m_inner->Close(); });
  }

 private:
  /// Makes a call that takes effect although it fails.
  template <typename Call>
  [[nodiscard]] Result<void, FileError> End(const Call& call) {
    const auto verdict = m_owner.m_plan.Next();
    const auto result = verdict.takesEffect ? call() : Result<void, FileError>();
    return verdict.fails ? Failure(m_owner.m_error) : result;
  }

  WatchedFileSystem& m_owner;
  const std::unique_ptr<platform::File> m_owned;  ///< Null if somebody else owns it.
  platform::File* const m_inner;
};

class WatchedFileSystem::WatchedReplacement final : public platform::Replacement {
 public:
  WatchedReplacement(WatchedFileSystem& owner, std::unique_ptr<platform::Replacement> inner)
      : m_owner(owner), m_inner(std::move(inner)), m_file(owner, m_inner->GetFile()) {}

  [[nodiscard]] platform::File& GetFile() override { return m_file; }

  [[nodiscard]] Result<void, FileError> Publish(platform::Durability durability) override {
    m_owner.Note(durability == platform::Durability::kNow ? "publish" : "publish for later");
    return m_owner.Count().and_then([&] { return m_inner->Publish(durability); });
  }

 private:
  WatchedFileSystem& m_owner;
  const std::unique_ptr<platform::Replacement> m_inner;
  WatchedFile m_file;
};

class WatchedFileSystem::WatchedSearch final : public platform::FileSearch {
 public:
  WatchedSearch(WatchedFileSystem& owner, std::unique_ptr<platform::FileSearch> inner)
      : m_owner(owner), m_inner(std::move(inner)) {}

  [[nodiscard]] Result<std::optional<platform::FoundFile>, FileError> Next() override {
    if (!m_owner.m_plan.NextFails()) {
      return m_inner->Next();
    }
    // A search that goes on failing still ends, as searches promise: from its second failure on,
    // each one swallows a name.
    if (std::exchange(m_hasFailed, true)) {
      if (const auto swallowed = m_inner->Next(); swallowed && !*swallowed) {
        return std::nullopt;
      }
    }
    return Failure(m_owner.m_error);
  }

 private:
  WatchedFileSystem& m_owner;
  const std::unique_ptr<platform::FileSearch> m_inner;
  bool m_hasFailed = false;
};

void WatchedFileSystem::Note(std::string step) {
  if (m_steps != nullptr) {
    m_steps->push_back(std::move(step));
  }
}

Result<void, FileError> WatchedFileSystem::Count() {
  return m_plan.NextFails() ? Failure(m_error) : Result<void, FileError>();
}

Result<std::unique_ptr<platform::File>, FileError> WatchedFileSystem::Open(
    std::u16string_view path, const platform::OpenMode& mode) {
  Note(Describe(mode));
  if (const auto counted = Count(); !counted) {
    return Failure(counted.error());
  }
  auto opened = m_inner.Open(path, mode);
  if (opened) {
    opened = std::make_unique<WatchedFile>(*this, std::move(*opened));
  }
  return opened;
}

Result<std::unique_ptr<platform::Replacement>, FileError> WatchedFileSystem::OpenReplacement(
    std::u16string_view path) {
  Note("open replacement");
  if (const auto counted = Count(); !counted) {
    return Failure(counted.error());
  }
  auto opened = m_inner.OpenReplacement(path);
  if (opened) {
    opened = std::make_unique<WatchedReplacement>(*this, std::move(*opened));
  }
  return opened;
}

Result<void, FileError> WatchedFileSystem::Delete(std::u16string_view path) {
  Note("delete file");
  return Count().and_then([&] { return m_inner.Delete(path); });
}

Result<void, FileError> WatchedFileSystem::CreateFolder(std::u16string_view path) {
  return Count().and_then([&] { return m_inner.CreateFolder(path); });
}

Result<void, FileError> WatchedFileSystem::FlushFolder(std::u16string_view path) {
  Note("flush folder");
  return Count().and_then([&] { return m_inner.FlushFolder(path); });
}

Result<std::unique_ptr<platform::FileSearch>, FileError> WatchedFileSystem::Find(
    std::u16string_view pattern) {
  if (const auto counted = Count(); !counted) {
    return Failure(counted.error());
  }
  auto started = m_inner.Find(pattern);
  if (started) {
    started = std::make_unique<WatchedSearch>(*this, std::move(*started));
  }
  return started;
}

}  // namespace support
