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

#include "tests/host/cli/command_fixture.h"

namespace {

/// The real program, ended while it records.
class WaveRecordKilled : public CommandFixture {
 protected:
  WaveRecordKilled() { std::filesystem::create_directory(Folder()); }

  [[nodiscard]] std::string Folder() const { return Path("recordings"); }
  [[nodiscard]] std::string Target() const { return Folder() + "/ann.wav"; }

  /// Starts a recording into the target, and ends it by `signal` once its file is there.
  void KillWhileRecording(int signal) {
    const pid_t process = Start();
    ASSERT_GT(process, 0);
    bool isUnderWay = false;
    for (int i = 0; i < 1000 && !isUnderWay; ++i) {
      isUnderWay = HasFileInFolder(process);
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    EXPECT_TRUE(isUnderWay);
    EXPECT_EQ(::kill(process, signal), 0);
    int status = 0;
    ASSERT_EQ(::waitpid(process, &status, 0), process);
    EXPECT_TRUE(WIFSIGNALED(status)) << "It had ended before.";
  }

  /// Names in the folder, but for those that only a kill leaves.
  [[nodiscard]] int CountFiles() const {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(Folder())) {
      count += entry.path().filename().string().starts_with(".voxtrel-") ? 0 : 1;
    }
    return count;
  }

  [[nodiscard]] std::string ReadTarget() const {
    std::ifstream file(Target(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  [[nodiscard]] pid_t Start() const {
    std::string program = VOXTREL_PROGRAM;
    std::string option = "--microphone";
    std::string sample = std::string(VOXTREL_SAMPLES_DIR) + "/anna_1.wav";
    std::string wave = "wave";
    std::string record = "record";
    std::string target = Target();
    char* const arguments[] = {program.data(), option.data(), sample.data(), wave.data(),
                               record.data(),  target.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = -1;
    const int error =
        ::posix_spawn(&process, program.c_str(), &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? process : -1;
  }

  /// Whether the process holds a file in the folder open, with a name or without.
  [[nodiscard]] bool HasFileInFolder(pid_t process) const {
    std::error_code ignored;
    const std::filesystem::path descriptors = "/proc/" + std::to_string(process) + "/fd";
    for (const auto& entry : std::filesystem::directory_iterator(descriptors, ignored)) {
      const auto file = std::filesystem::read_symlink(entry.path(), ignored);
      if (file.string().starts_with(Folder() + "/")) {
        return true;
      }
    }
    return false;
  }
};

TEST_F(WaveRecordKilled, LeavesTheEarlierRecordingAsItWas) {
  std::ofstream(Target(), std::ios::binary) << "an earlier recording";
  for (const int signal : {SIGINT, SIGTERM, SIGKILL}) {
    ASSERT_NO_FATAL_FAILURE(KillWhileRecording(signal));
    EXPECT_EQ(ReadTarget(), "an earlier recording");
    EXPECT_EQ(CountFiles(), 1);
  }
}

TEST_F(WaveRecordKilled, LeavesNoFileIfThereWasNone) {
  for (const int signal : {SIGINT, SIGTERM, SIGKILL}) {
    ASSERT_NO_FATAL_FAILURE(KillWhileRecording(signal));
    EXPECT_EQ(CountFiles(), 0);
  }
}

}  // namespace
