#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/shell.h"

namespace headless {

/// One thing that a shell was asked to do. A program that was started has no verb.
struct ShellRequest {
  std::u16string verb;
  std::u16string file;
  std::u16string parameters;

  friend bool operator==(const ShellRequest&, const ShellRequest&) = default;
};

/// A shell that starts nothing and remembers what was asked. Belongs to one thread.
class HeadlessShell final : public platform::Shell {
 public:
  void StartProgram(std::u16string_view program, std::u16string_view commandLine) override;
  void Execute(std::u16string_view verb, std::u16string_view file,
               std::u16string_view parameters) override;

  [[nodiscard]] const std::vector<ShellRequest>& GetRequests() const { return m_requests; }

 private:
  std::vector<ShellRequest> m_requests;
};

}  // namespace headless
