#include "host/dial/commands.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <system_error>
#include <vector>

#include "audio/samples.h"
#include "backends/posix/library.h"
#include "backends/posix/posix_process.h"
#include "backends/text/utf.h"
#include "host/machine/places.h"

// The dialer itself changes nothing. To keep a take it runs the command line as a user would: `tags
// learn`, with the take in the place of the microphone. So the rules of a new tag stand in one
// place.
namespace dial {
namespace {

namespace fs = std::filesystem;

/// A folder that only its owner can read, since a voice is private. It goes with this.
class PrivateFolder {
 public:
  PrivateFolder() {
    std::error_code error;
    std::string pattern = (fs::temp_directory_path(error) / "voxtrel-XXXXXX").string();
    if (::mkdtemp(pattern.data()) != nullptr) {
      m_path = pattern;
    }
  }
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;
  ~PrivateFolder() {
    std::error_code error;
    if (!m_path.empty()) {
      fs::remove_all(m_path, error);
    }
  }

  [[nodiscard]] bool IsThere() const { return !m_path.empty(); }
  [[nodiscard]] std::string File(const char* name) const { return (m_path / name).string(); }

 private:
  fs::path m_path;
};

bool WriteFile(const std::string& path, const std::vector<std::byte>& bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  file.close();
  return !file.fail();
}

/// Returns what the command line reports in `path`, the first line of it.
std::string ReadReason(const std::string& path) {
  std::ifstream file(path);
  const auto json = nlohmann::json::parse(file, nullptr, false);
  const auto error =
      json.is_object() ? json.value("error", nlohmann::json::object()) : nlohmann::json::object();
  const std::string message =
      error.is_object() ? error.value("message", std::string()) : std::string();
  return message.empty() ? "the voice tag was not learned" : message.substr(0, message.find('\n'));
}

}  // namespace

platform::Result<void, std::string> KeepTake(session::Session& session,
                                             const dialer::Callee& callee, dialer::Take take) {
  const PrivateFolder folder;
  if (!folder.IsThere() || !WriteFile(folder.File("take.wav"), audio::ToWaveFile(take))) {
    return platform::Failure(std::string("the take cannot be written; the disk may be full"));
  }
  const machine::Options& options = session.GetMachineOptions();
  // A file in the place of the loudspeaker, too: nobody waits until the take is played.
  const std::vector<std::string> variables{"VOXTREL_ROOT=" + options.root,
                                           "VOXTREL_CONTACTS=" + options.contacts,
                                           "VOXTREL_MICROPHONE=" + folder.File("take.wav"),
                                           "VOXTREL_SPEAKER=" + folder.File("heard.wav")};
  const fs::path program = machine::Places(posix::FindOwnFile()).GetProgram(machine::kCommandLine);
  // A program that is run so has the standard streams of this one. The shell only sends its answer
  // to a file, and what it says to the user nowhere: this program says it in its own words. The "="
  // is needed, since an identifier may begin with a minus sign.
  const auto end = posix::RunInForeground(
      {"/bin/sh", "-c", R"(exec "$@" >"$0" 2>/dev/null)", folder.File("answer.json"),
       program.string(), "--json", "tags", "learn",
       "--contact=" + std::to_string(callee.candidate.oid.value_or(0)), "--number",
       text::ToUtf8(callee.candidate.phoneKind)},
      variables);
  if (!end) {
    return platform::Failure(end.error().message());
  }
  if (end->wasKilled || end->exitCode != 0) {
    return platform::Failure(ReadReason(folder.File("answer.json")));
  }
  return {};
}

}  // namespace dial
