#include "backends/desktop/programs.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "tests/backends/desktop/fake_desktop.h"

namespace {

using Words = std::vector<std::string>;

/// Longer than any machine takes; no test waits for its end.
constexpr std::chrono::milliseconds kLong = std::chrono::minutes(1);

class Programs : public FakeDesktop {};

TEST_F(Programs, AreFoundInTheFoldersInTheirOrder) {
  PutProgram("tool");
  Write("first/tool", "");  // Cannot be run.
  std::filesystem::create_directories(Path("second/tool"));
  m_environment.programFolders = {Path("first"), Path("second"), Path("bin")};
  EXPECT_EQ(desktop::FindProgram(m_environment, "tool"), Path("bin/tool"));
  EXPECT_EQ(desktop::FindProgram(m_environment, Path("bin/tool")), Path("bin/tool"));
  EXPECT_EQ(desktop::FindProgram(m_environment, Path("first/tool")), std::nullopt);
  EXPECT_EQ(desktop::FindProgram(m_environment, "none"), std::nullopt);
  EXPECT_EQ(desktop::FindProgram(m_environment, ""), std::nullopt);
}

TEST_F(Programs, GetTheirArgumentsWithoutAShellBetween) {
  PutProgram("tool");
  const Words arguments = {"a b", "$HOME", "`x`", "", "'\"\\"};
  desktop::Command command{"tool"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  EXPECT_TRUE(desktop::StartDetached(m_environment, command, kLong));
  EXPECT_EQ(CallOf("tool"), arguments);
}

TEST_F(Programs, ThatFailAtOnceAreReported) {
  PutProgram("tool", "exit 4");
  EXPECT_FALSE(desktop::StartDetached(m_environment, {"tool"}, kLong));
  PutProgram("tool", "kill -9 $$");
  EXPECT_FALSE(desktop::StartDetached(m_environment, {"tool"}, kLong));
  EXPECT_FALSE(desktop::StartDetached(m_environment, {"missing"}, kLong));
  EXPECT_FALSE(desktop::StartDetached(m_environment, {}, kLong));
  Write("bin/broken", "#!/nonexistent/interpreter\n");
  std::filesystem::permissions(Path("bin/broken"), std::filesystem::perms::owner_all);
  EXPECT_FALSE(desktop::StartDetached(m_environment, {"broken"}, kLong));
}

TEST_F(Programs, ThatGoOnRunningAreWell) {
  // The tool runs until the test opens its other end.
  ASSERT_EQ(::mkfifo(Path("gate").c_str(), 0600), 0);
  PutProgram("tool", "read x <'" + Path("gate") + "'");
  EXPECT_TRUE(desktop::StartDetached(m_environment, {"tool"}, std::chrono::milliseconds(0)));
  std::ofstream(Path("gate")) << "go\n";
}

TEST_F(Programs, InheritNoDescriptorAndAreNotOursToWaitFor) {
  const int ours = ::open(Path("").c_str(), O_RDONLY | O_DIRECTORY);  // Without close-on-exec.
  ASSERT_GT(ours, 2);
  PutProgram("tool", "/bin/ls /proc/$$/fd >'" + Path("descriptors") + "'\n" +
                         "out=$(/usr/bin/readlink /proc/$$/fd/1); echo \"$out\" >'" +
                         Path("output") + "'\n" + "/usr/bin/cut -d' ' -f4,6 /proc/$$/stat >'" +
                         Path("family") + "'");
  EXPECT_TRUE(desktop::StartDetached(m_environment, {"tool"}, kLong));
  ::close(ours);
  std::ostringstream descriptors;
  descriptors << std::ifstream(Path("descriptors")).rdbuf();
  // A shell keeps its own script at a high number.
  EXPECT_EQ(descriptors.str().find(std::to_string(ours) + "\n"), std::string::npos);
  std::string output;
  std::ifstream(Path("output")) >> output;
  EXPECT_EQ(output, "/dev/null");
  int parent = 0;
  int session = 0;
  std::ifstream(Path("family")) >> parent >> session;
  EXPECT_NE(parent, ::getpid());
  EXPECT_NE(session, ::getsid(0));
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

}  // namespace
