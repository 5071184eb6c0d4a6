#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "tests/host/cli/tags_fixture.h"

namespace {

constexpr const char* kMicrophone = VOXTREL_SAMPLES_DIR "/anna_1.wav";

/// Starts the real program, with its messages thrown away. Returns -1 if it cannot be started.
pid_t StartProgram(std::vector<std::string> arguments) {
  std::vector<char*> pointers;
  for (std::string& argument : arguments) {
    pointers.push_back(argument.data());
  }
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t process = -1;
  const int error =
      ::posix_spawn(&process, pointers[0], &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  return error == 0 ? process : -1;
}

/// Whether the process holds a file in the folder open, with a name or without.
bool HasFileInFolder(pid_t process, const std::string& folder) {
  std::error_code ignored;
  const std::filesystem::path descriptors = "/proc/" + std::to_string(process) + "/fd";
  for (const auto& entry : std::filesystem::directory_iterator(descriptors, ignored)) {
    const auto file = std::filesystem::read_symlink(entry.path(), ignored);
    if (file.string().starts_with(folder + "/")) {
      return true;
    }
  }
  return false;
}

/// Starts a recording into a file of `folder`, and ends it by `signal` once the file is there.
void KillWhileRecording(const std::vector<std::string>& arguments, const std::string& folder,
                        int signal) {
  const pid_t process = StartProgram(arguments);
  ASSERT_GT(process, 0);
  bool isUnderWay = false;
  for (int i = 0; i < 1000 && !isUnderWay; ++i) {
    isUnderWay = HasFileInFolder(process, folder);
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  EXPECT_TRUE(isUnderWay);
  EXPECT_EQ(::kill(process, signal), 0);
  int status = 0;
  ASSERT_EQ(::waitpid(process, &status, 0), process);
  EXPECT_TRUE(WIFSIGNALED(status)) << "It had ended before.";
}

/// Names in the folder, but for those that only a kill leaves.
int CountFiles(const std::string& folder) {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    count += entry.path().filename().string().starts_with(".voxtrel-") ? 0 : 1;
  }
  return count;
}

/// The real program, ended while it records.
class WaveRecordKilled : public CommandFixture {
 protected:
  WaveRecordKilled() { std::filesystem::create_directory(Folder()); }

  [[nodiscard]] std::string Folder() const { return Path("recordings"); }
  [[nodiscard]] std::string Target() const { return Folder() + "/ann.wav"; }

  void KillWith(int signal) const {
    // A file is read in a hundredth of the time that is asked for.
    KillWhileRecording({VOXTREL_PROGRAM, "--microphone", kMicrophone, "wave", "record", Target(),
                        "--milliseconds", "180000"},
                       Folder(), signal);
  }

  [[nodiscard]] std::string ReadTarget() const {
    std::ifstream file(Target(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
};

TEST_F(WaveRecordKilled, LeavesTheEarlierRecordingAsItWas) {
  std::ofstream(Target(), std::ios::binary) << "an earlier recording";
  for (const int signal : {SIGINT, SIGTERM, SIGKILL}) {
    ASSERT_NO_FATAL_FAILURE(KillWith(signal));
    EXPECT_EQ(ReadTarget(), "an earlier recording");
    EXPECT_EQ(CountFiles(Folder()), 1);
  }
}

TEST_F(WaveRecordKilled, LeavesNoFileIfThereWasNone) {
  for (const int signal : {SIGINT, SIGTERM, SIGKILL}) {
    ASSERT_NO_FATAL_FAILURE(KillWith(signal));
    EXPECT_EQ(CountFiles(Folder()), 0);
  }
}

using TagsLearnKilled = TagsFixture;

TEST_F(TagsLearnKilled, LeavesNoTagAndNoFileAndTheEarlierTagAsItWas) {
  PutTag("100", "anna_1.wav", m_ann, u"Mobile");
  PutVersion(u"3");
  const std::string earlier = Content(Wave("100"));
  const std::string recordings = Folder("Voxtrel_wav").string();
  for (const int signal : {SIGINT, SIGTERM, SIGKILL}) {
    ASSERT_NO_FATAL_FAILURE(
        KillWhileRecording({VOXTREL_PROGRAM, "--root", Path("root"), "--microphone", kMicrophone,
                            "tags", "learn", "--contact", std::to_string(m_bob)},
                           recordings, signal));
    EXPECT_EQ(CountFiles(recordings), 1);
    EXPECT_EQ(CountFiles(Folder("Voxtrel_stor").string()), 1);
    EXPECT_EQ(Content(Wave("100")), earlier);
    EXPECT_EQ(GetNames(), std::vector<std::string>{"100"});
    const auto check = Run({"check"});
    EXPECT_EQ(check.exitCode, 0) << check.out << check.err;
  }
}

}  // namespace
