#include "tests/support/run_program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <map>
#include <memory>

namespace support {
namespace {

constexpr int kNoSuchProgram = 127;  ///< As a shell answers.

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using TemporaryFile = std::unique_ptr<std::FILE, CloseFile>;

std::string ReadAll(std::FILE* file) {
  std::string text;
  std::rewind(file);
  std::array<char, 4096> buffer{};
  for (std::size_t count = 0; (count = std::fread(buffer.data(), 1, buffer.size(), file)) > 0;) {
    text.append(buffer.data(), count);
  }
  return text;
}

std::vector<char*> ToPointers(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (const std::string& text : texts) {
    pointers.push_back(const_cast<char*>(text.c_str()));
  }
  pointers.push_back(nullptr);
  return pointers;
}

/// Returns this program's environment and `added`. Of a name that occurs again the last value
/// counts.
std::vector<std::string> EnvironmentWith(const std::vector<std::string>& added) {
  std::map<std::string, std::string> values;
  const auto add = [&values](const std::string& entry) {
    values[entry.substr(0, entry.find('='))] = entry;
  };
  for (char** entry = environ; *entry != nullptr; ++entry) {
    add(*entry);
  }
  std::ranges::for_each(added, add);
  std::vector<std::string> entries;
  std::ranges::transform(values, std::back_inserter(entries),
                         [](const auto& one) { return one.second; });
  return entries;
}

/// What a program finds open.
class Streams {
 public:
  Streams(std::FILE* out, std::FILE* err) {
    ::posix_spawn_file_actions_init(&m_actions);
    ::posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&m_actions, ::fileno(out), STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&m_actions, ::fileno(err), STDERR_FILENO);
  }
  Streams(const Streams&) = delete;
  Streams& operator=(const Streams&) = delete;
  ~Streams() { ::posix_spawn_file_actions_destroy(&m_actions); }

  [[nodiscard]] const posix_spawn_file_actions_t* Get() const { return &m_actions; }

 private:
  posix_spawn_file_actions_t m_actions{};
};

}  // namespace

ProgramRun RunProgram(const std::vector<std::string>& arguments,
                      const std::vector<std::string>& environment) {
  const TemporaryFile out(std::tmpfile());
  const TemporaryFile err(std::tmpfile());
  const std::vector<char*> argumentPointers = ToPointers(arguments);
  const std::vector<std::string> entries = EnvironmentWith(environment);
  const std::vector<char*> environmentPointers = ToPointers(entries);

  ProgramRun run;
  // A fork would copy the page tables of this program, which are large under the sanitizers.
  pid_t child = 0;
  if (::posix_spawnp(&child, argumentPointers[0], Streams(out.get(), err.get()).Get(), nullptr,
                     argumentPointers.data(), environmentPointers.data()) != 0) {
    run.exitCode = kNoSuchProgram;
    return run;
  }
  int status = 0;
  rusage usage{};
  if (::wait4(child, &status, 0, &usage) == child) {
    run.peakKiB = usage.ru_maxrss;
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }
  run.out = ReadAll(out.get());
  run.err = ReadAll(err.get());
  return run;
}

}  // namespace support
