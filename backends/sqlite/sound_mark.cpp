#include "backends/sqlite/sound_mark.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <ctime>
#include <string_view>
#include <system_error>
#include <utility>

namespace sqlite {
namespace {

constexpr std::int64_t kNanosecondsOfSecond = 1'000'000'000;

std::int64_t ToNanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * kNanosecondsOfSecond + time.tv_nsec;
}

/// Returns whether a later change will have another time. Times of files go in steps of some
/// milliseconds, or of two seconds if a file system keeps whole ones only.
bool IsSettled(const timespec& changed) {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME_COARSE, &now);
  const std::int64_t step = changed.tv_nsec == 0 ? 2 * kNanosecondsOfSecond : 0;
  return ToNanoseconds(now) > ToNanoseconds(changed) + step;
}

/// Returns an empty text if it cannot be read.
std::string ReadLine(const std::filesystem::path& path) {
  std::array<char, 256> line{};
  const int file = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  const ssize_t length = file == -1 ? 0 : ::read(file, line.data(), line.size());
  ::close(file);
  return {line.data(), static_cast<std::size_t>(length > 0 ? length : 0)};
}

}  // namespace

bool HasLog(const std::filesystem::path& database) {
  std::filesystem::path log = database;
  log += "-wal";
  std::error_code error;
  const std::uintmax_t length = std::filesystem::file_size(log, error);
  return error ? error != std::errc::no_such_file_or_directory : length > 0;
}

SoundMark::SoundMark(std::filesystem::path database, const FindSoundMark& find)
    : m_database(std::move(database)), m_version(find ? Describe() : std::string()) {
  const auto mark = m_version.empty() ? std::nullopt : find();
  if (mark) {
    m_mark = *mark;
    m_isKnown = ReadLine(m_mark) == m_version;
  }
}

std::string SoundMark::Describe() const {
  struct stat status {};
  if (::stat(m_database.c_str(), &status) != 0 || !S_ISREG(status.st_mode) ||
      static_cast<std::uintmax_t>(status.st_size) < kFewestBytes || !IsSettled(status.st_ctim) ||
      HasLog(m_database)) {
    return {};
  }
  std::string line = "Voxtrel 1";
  for (const std::int64_t number :
       {static_cast<std::int64_t>(status.st_dev), static_cast<std::int64_t>(status.st_ino),
        std::int64_t{status.st_size}, ToNanoseconds(status.st_mtim),
        ToNanoseconds(status.st_ctim)}) {
    line += ' ' + std::to_string(number);
  }
  return line + '\n';
}

// One line by one call: what is torn is another line, which is that of no database.
void SoundMark::Keep() const {
  if (m_mark.empty() || m_isKnown || Describe() != m_version) {
    return;
  }
  constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  const int file = ::open(m_mark.c_str(), kFlags, S_IRUSR | S_IWUSR);
  if (file != -1) {
    // Nothing is lost but time if this fails.
    static_cast<void>(::write(file, m_version.data(), m_version.size()) == 0);
    ::close(file);
  }
}

}  // namespace sqlite
