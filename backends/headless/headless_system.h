#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/process.h"
#include "platform/shell.h"

namespace headless {

/// A process that remembers that it should end, and goes on. May be used by several threads.
class HeadlessProcess final : public platform::Process {
 public:
  void End(int exitCode) override {
    const std::lock_guard lock(m_mutex);
    // The first end counts. In a real process nothing would come after it.
    if (!m_exitCode) {
      m_exitCode = exitCode;
    }
  }

  /// Returns the exit code of the first end, or nothing if there was none. A process ends only
  /// once, so later ends change nothing.
  [[nodiscard]] std::optional<int> GetExitCode() const {
    const std::lock_guard lock(m_mutex);
    return m_exitCode;
  }

 private:
  mutable std::mutex m_mutex;
  std::optional<int> m_exitCode;
};

/// One request to a shell. The start of a program has no verb.
struct ShellRequest {
  std::u16string verb;
  std::u16string file;
  std::u16string parameters;

  friend bool operator==(const ShellRequest&, const ShellRequest&) = default;
};

/// A shell that starts nothing and remembers each request. Belongs to one thread.
class HeadlessShell final : public platform::Shell {
 public:
  void StartProgram(std::u16string_view program, std::u16string_view commandLine) override {
    m_requests.push_back({{}, std::u16string(program), std::u16string(commandLine)});
  }
  void Execute(std::u16string_view verb, std::u16string_view file,
               std::u16string_view parameters) override {
    m_requests.push_back({std::u16string(verb), std::u16string(file), std::u16string(parameters)});
  }

  [[nodiscard]] const std::vector<ShellRequest>& GetRequests() const { return m_requests; }

 private:
  std::vector<ShellRequest> m_requests;
};

}  // namespace headless
