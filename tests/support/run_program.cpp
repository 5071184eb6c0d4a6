#include "tests/support/run_program.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace support {
namespace {

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

[[noreturn]] void BecomeProgram(const std::vector<char*>& arguments,
                                const std::vector<char*>& environment, int out, int err) {
  const int null = ::open("/dev/null", O_RDONLY);
  ::dup2(null, STDIN_FILENO);
  ::dup2(out, STDOUT_FILENO);
  ::dup2(err, STDERR_FILENO);
  for (std::size_t i = 0; environment[i] != nullptr; ++i) {
    ::putenv(environment[i]);
  }
  ::execvp(arguments[0], arguments.data());
  ::_exit(127);
}

}  // namespace

ProgramRun RunProgram(const std::vector<std::string>& arguments,
                      const std::vector<std::string>& environment) {
  const TemporaryFile out(std::tmpfile());
  const TemporaryFile err(std::tmpfile());
  const std::vector<char*> argumentPointers = ToPointers(arguments);
  const std::vector<char*> environmentPointers = ToPointers(environment);

  const pid_t child = ::fork();
  if (child == 0) {
    BecomeProgram(argumentPointers, environmentPointers, ::fileno(out.get()), ::fileno(err.get()));
  }
  int status = 0;
  ProgramRun run;
  rusage usage{};
  if (child > 0 && ::wait4(child, &status, 0, &usage) == child) {
    run.peakKiB = usage.ru_maxrss;
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }
  run.out = ReadAll(out.get());
  run.err = ReadAll(err.get());
  return run;
}

}  // namespace support
