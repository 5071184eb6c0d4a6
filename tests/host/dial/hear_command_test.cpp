#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "backends/sqlite/sqlite_registry.h"
#include "storage/registry_keys.h"
#include "tests/host/dial/dial_fixture.h"
#include "tests/support/registry_access.h"
#include "tests/support/signals.h"

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
namespace fs = std::filesystem;

/// `voxtrel dial` without a terminal, as scripts and other programs run it.
class HearCommand : public DialFixture {
 protected:
  [[nodiscard]] fs::path Folder(const std::string& name) const {
    return fs::path(Path("root")) / "Program Files" / "Zedra Tech." / "Zedra Voxtrel" / name;
  }
  /// Returns the one file in a folder.
  [[nodiscard]] fs::path OnlyFile(const std::string& folder) const {
    return fs::directory_iterator(Folder(folder))->path();
  }
  [[nodiscard]] std::string Write(const std::string& name, const support::Samples& samples) const {
    const support::Bytes bytes = support::WaveFile(samples);
    std::ofstream(Path(name), std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    return Path(name);
  }
  [[nodiscard]] support::ProgramRun Hear(const std::string& microphone,
                                         std::vector<std::string> rest = {}) const {
    rest.insert(rest.begin(), {"--contacts", Contacts(), "--microphone", microphone, "--speaker",
                               Path("heard.wav"), "dial", "--way", "print"});
    return Run(rest);
  }
  /// Expects that nobody was called, and returns what was reported.
  [[nodiscard]] static std::string Failure(const support::ProgramRun& run) {
    EXPECT_EQ(run.exitCode, 1) << run.out;
    EXPECT_THAT(run.out, Not(HasSubstr("Calling")));
    return run.err;
  }
  /// Returns the steps that were printed, and the error as a step of that name.
  [[nodiscard]] static std::vector<std::string> StepsOf(const support::ProgramRun& run) {
    std::vector<std::string> steps;
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);) {
      const auto step = nlohmann::json::parse(line, nullptr, false);
      EXPECT_TRUE(step.is_object()) << line;
      steps.push_back(step.contains("error") ? "error" : step.value("step", ""));
    }
    return steps;
  }
};

TEST_F(HearCommand, SaysThatNoNameIsTaughtAndHowToTeachOne) {
  EXPECT_THAT(Failure(Dial("anna_1")), HasSubstr("voxtrel tags learn"));
  EXPECT_THAT(StepsOf(Dial("anna_1", {"--json"})), ElementsAre("nothing-taught", "error"));
}

TEST_F(HearCommand, ReportsAMicrophoneThatIsMissing) {
  Teach("Anna Berg", "anna_1");
  EXPECT_THAT(Failure(Run({"--contacts", Contacts(), "dial", "--yes"})),
              HasSubstr("there is no microphone"));
  EXPECT_THAT(Failure(Hear(Path("none.wav"))), HasSubstr("none.wav: there is no such file"));
  std::ofstream(Path("text.wav")) << "no sound";
  EXPECT_THAT(Failure(Hear(Path("text.wav"))), HasSubstr("text.wav is no wave file of 11,025 Hz"));
}

TEST_F(HearCommand, SaysWhichMicrophoneIsSilent) {
  Teach("Anna Berg", "anna_1");
  const std::string silent = Write("silent.wav", support::Constant(33075, 0));
  EXPECT_THAT(Failure(Hear(silent)), HasSubstr("silent.wav gives nothing but silence"));
  EXPECT_THAT(StepsOf(Hear(silent, {"--json"})), ElementsAre("speak", "silent", "error"));
}

TEST_F(HearCommand, HearsNobodyInNoise) {
  Teach("Anna Berg", "anna_1");
  const auto run = Hear(Write("noise.wav", support::Noise(33075, 300, 1)));
  EXPECT_THAT(Failure(run), HasSubstr("no name was understood"));
  EXPECT_THAT(run.out, HasSubstr("I heard nobody."));
}

TEST_F(HearCommand, TemplatesOfAnotherMathematicsAreNotUsedAndItSaysHowToMendThem) {
  Teach("Anna Berg", "anna_1");
  {
    sqlite::SqliteRegistry registry(fs::path(Path("root")) / sqlite::kDatabaseName);
    ASSERT_TRUE(support::PutText(registry, storage::kSetupKey, storage::kMathVersionValue, u"2"));
  }
  EXPECT_THAT(Failure(Dial("anna_1", {"--yes"})),
              AllOf(HasSubstr("voxtrel reinit"), HasSubstr("none of the voice tags can be used")));
  EXPECT_EQ(Run({"--contacts", Contacts(), "reinit"}).exitCode, 0);
  EXPECT_THAT(Dial("anna_1", {"--yes"}).err, Not(HasSubstr("reinit")));
}

TEST_F(HearCommand, ATagWhoseFilesAreGoingIsPassedOver) {
  Teach("Anna Berg", "anna_1");
  fs::remove(OnlyFile("Voxtrel_wav"));
  EXPECT_THAT(Failure(Dial("anna_1")), HasSubstr("a file is missing, as while a tag is deleted"));
  Teach("Bob Ross", "robert_1");
  const auto run = Dial("robert_1", {"--json"});
  EXPECT_THAT(run.err, HasSubstr("a file is missing"));
  EXPECT_THAT(StepsOf(run), testing::Contains("speak"));
}

TEST_F(HearCommand, ATagThatIsBeingWrittenIsPassedOverAndNotWaitedFor) {
  Teach("Anna Berg", "anna_1");
  const int file = ::open(OnlyFile("Voxtrel_stor").c_str(), O_RDONLY);
  ASSERT_EQ(::flock(file, LOCK_EX), 0);
  EXPECT_THAT(Failure(Dial("anna_1")), HasSubstr("the applet is writing it at this moment"));
  ::close(file);
}

TEST_F(HearCommand, ATornTemplateIsReported) {
  Teach("Anna Berg", "anna_1");
  fs::resize_file(OnlyFile("Voxtrel_stor"), 20);
  EXPECT_THAT(Failure(Dial("anna_1")), HasSubstr("voxtrel check"));
}

TEST_F(HearCommand, ADamagedStoreIsReportedAndStaysAsItIs) {
  Teach("Anna Berg", "anna_1");
  const fs::path database = fs::path(Path("root")) / sqlite::kDatabaseName;
  std::ofstream(database, std::ios::binary) << "This is no database, and was one.";
  const auto size = fs::file_size(database);
  EXPECT_THAT(Failure(Dial("anna_1")), HasSubstr("registry.db"));
  EXPECT_EQ(fs::file_size(database), size);
}

TEST_F(HearCommand, AMissingStoreIsNotMade) {
  EXPECT_EQ(Dial("anna_1").exitCode, 1);
  EXPECT_FALSE(fs::exists(Path("root")));
}

TEST_F(HearCommand, WithoutContactsNamesAreTheirNumbersAndNobodyCanBeCalled) {
  Teach("Anna Berg", "anna_1");
  Teach("Bob Ross", "robert_1");
  Teach("Carla Diaz", "jackson_1");
  fs::remove(Contacts());
  const auto run = Dial("anna_1", {"--yes"});
  EXPECT_THAT(Failure(run), AllOf(HasSubstr("the tags are used without their contacts"),
                                  HasSubstr("cannot be called")));
  EXPECT_THAT(run.out, HasSubstr("Contact "));
  EXPECT_THAT(StepsOf(Dial("anna_1", {"--yes", "--json"})),
              ElementsAre("speak", "sure", "cannot-call", "error"));
}

}  // namespace
