#include <filesystem>
#include <fstream>

#include "tests/host/cli/tags_fixture.h"
#include "tests/support/signals.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* kCardsToLearn =
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:a\r\nN:Lee;Ann;;;\r\nTEL;TYPE=CELL:5551234\r\n"
    "TEL;TYPE=HOME:555 99\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:n\r\nN:Lee;Anna;;;\r\nTEL;TYPE=CAR:5\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:b\r\nN:Ray;Bob;;;\r\nTEL;TYPE=WORK:71\r\n"
    "TEL;TYPE=WORK:72\r\nTEL;TYPE=WORK,FAX:73\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:s\r\nN:Silent;Sue;;;\r\nEND:VCARD\r\n";

class TagsLearnCommand : public TagsFixture {
 protected:
  TagsLearnCommand() {
    std::ofstream(Path("all.vcf"), std::ios::binary) << kCardsToLearn;
    m_sample = std::string(VOXTREL_SAMPLES_DIR) + "/anna_1.wav";
  }

  /// Chooses a contact and a number that nobody has, so that nothing is recorded.
  [[nodiscard]] support::ProgramRun ChooseOnly(const std::string& contact) const {
    return Run({"tags", "learn", "--contact", contact, "--number", "Radio"});
  }
  /// The loud part of a sample, with a little of the room on both sides.
  static support::Samples WordOf(const std::string& sample) {
    constexpr int kLoud = 600;
    constexpr std::ptrdiff_t kRoom = 300;
    const std::string file = Content(fs::path(VOXTREL_SAMPLES_DIR) / sample);
    support::Samples samples;
    for (std::size_t at = 44; at + 1 < file.size(); at += 2) {
      const auto low = static_cast<unsigned char>(file[at]);
      const auto high = static_cast<unsigned char>(file[at + 1]);
      samples.push_back(static_cast<std::int16_t>(high << 8U | low));
    }
    const auto isLoud = [](int value) { return std::abs(value) > kLoud; };
    const auto first = std::ranges::find_if(samples, isLoud) - kRoom;
    const auto last = std::find_if(samples.rbegin(), samples.rend(), isLoud).base() + kRoom;
    return {first, last};
  }
  void ExpectNothingLearned() const {
    EXPECT_EQ(Run({"tags", "list", "--json"}).out, "[]\n");
    EXPECT_THAT(support::NamesIn(Folder("Voxtrel_stor")), testing::IsEmpty());
  }

  std::string m_sample;
};

TEST_F(TagsLearnCommand, LearnsFromTheSampleAndPlaysItBack) {
  const std::string heard = Path("heard.wav");
  const json tag = RunJson({"--microphone", m_sample, "--speaker", heard, "tags", "learn",
                            "--contact", std::to_string(m_bob), "--number", "business2"},
                           0);
  EXPECT_EQ(tag["contact"], m_bob);
  EXPECT_EQ(tag["phoneType"], "Business2");
  EXPECT_EQ(tag["text"], "Bob Ray 72 B2");
  const std::string name = tag["name"];
  EXPECT_EQ(tag["wave"], support::Shown(Wave(name)));
  EXPECT_EQ(tag["template"], support::Shown(Template(name)));
  EXPECT_EQ(json::parse(Run({"tags", "list", "--json"}).out, nullptr, false), json::array({tag}));

  // The tag is what the sample becomes when it is learned by itself.
  const std::string copy = CopySample("anna_1.wav");
  ASSERT_EQ(Run({"template", "learn", copy, Path("own.st")}).exitCode, 0);
  EXPECT_EQ(Content(Wave(name)), Content(copy));
  EXPECT_EQ(Content(Template(name)), Content(Path("own.st")));
  EXPECT_EQ(Content(heard).substr(44), Content(copy).substr(44));
}

/// The mathematics keeps about a second and a bit around the loudest part of a name. So the end of
/// a long one is cut off, whenever it is spoken, and to speak earlier would not help.
TEST_F(TagsLearnCommand, DoesNotWarnThatAWholeNameWasCutIfOnlyTheTagIs) {
  support::Samples name = WordOf("hernandez_1.wav");
  const support::Samples more = WordOf("timothy_1.wav");
  name.insert(name.end(), more.begin(), more.end());
  const support::Samples take = support::Mixed(support::Noise(33075, 4, 1), 9000, name);
  const support::Bytes file = support::WaveFile(take);
  std::ofstream(Path("long.wav"), std::ios::binary)
      .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
  const auto run = Run({"--json", "--microphone", Path("long.wav"), "--speaker", Path("heard.wav"),
                        "tags", "learn", "--contact", "Ann Lee"});
  EXPECT_EQ(run.err, "");
  const json tag = json::parse(run.out, nullptr, false);
  EXPECT_EQ(tag["quality"]["verdicts"], json::array());
  const json list = json::parse(Run({"tags", "list", "--json"}).out, nullptr, false);
  EXPECT_EQ(list[0]["quality"]["verdicts"], json::array({"cut-end"})) << "which the tag is";
}

TEST_F(TagsLearnCommand, StillWarnsOfATakeThatWasCut) {
  const support::Samples name = WordOf("timothy_1.wav");
  const support::Samples take =
      support::Mixed(support::Noise(33075, 4, 1), 33075 - name.size() / 2, name);
  const support::Bytes file = support::WaveFile(take);
  std::ofstream(Path("late.wav"), std::ios::binary)
      .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
  const auto run = Run({"--microphone", Path("late.wav"), "--speaker", Path("heard.wav"), "tags",
                        "learn", "--contact", "Ann Lee"});
  EXPECT_THAT(run.err, HasSubstr("its end is cut off"));
}

TEST_F(TagsLearnCommand, WithoutAKindTakesTheNumberThatStandsFirst) {
  const auto run = Run({"--microphone", m_sample, "tags", "learn", "--contact", "Ann Lee"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out, "Learned: Ann Lee 555 99 H\n");
  // Nobody speaks if a file takes the place of the microphone.
  EXPECT_THAT(run.err, Not(HasSubstr("Say the name now")));
  // Without a loudspeaker the tag is learned all the same.
  EXPECT_THAT(run.err, HasSubstr("The recording was not played: the loudspeaker could not be"));
}

TEST_F(TagsLearnCommand, AMissingMicrophoneFileIsReportedBeforeAnybodyIsAskedToSpeak) {
  const std::string none = Path("none.wav");
  const auto missing = Run({"--microphone", none, "tags", "learn", "--contact", "Ann Lee"});
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_EQ(missing.out, "");
  EXPECT_EQ(missing.err, "voxtrel: " + none + ": there is no such file\n");
  ExpectNothingLearned();
}

TEST_F(TagsLearnCommand, AnAmbiguousNameListsTheCandidates) {
  const auto run = ChooseOnly("lee");
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, StartsWith("voxtrel: \"lee\" can mean each of these"));
  EXPECT_THAT(run.err, HasSubstr(std::to_string(m_ann) + "  Lee Ann\n"));
  EXPECT_THAT(run.err, HasSubstr("  Lee Anna\n"));
  EXPECT_THAT(run.err, testing::Not(HasSubstr("Ray")));
}

TEST_F(TagsLearnCommand, EachCandidateCanBeGivenByItsNumber) {
  const json contacts = json::parse(Run({"contacts", "list", "--json"}).out, nullptr, false);
  ASSERT_EQ(contacts.size(), 3U);
  const std::vector<std::string> kinds{"Home, Mobile", "Car", "Business, Business2, BusinessFax"};
  for (std::size_t i = 0; i < kinds.size(); ++i) {
    // Some of the numbers are negative, and yet no options.
    const auto run = ChooseOnly(contacts[i]["oid"].dump());
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("it has: " + kinds[i] + "\n"));
  }
}

TEST_F(TagsLearnCommand, TheNumberInTheListMeansThatContact) {
  const json contacts = json::parse(Run({"contacts", "list", "--json"}).out, nullptr, false);
  ASSERT_EQ(contacts.size(), 3U);
  const std::vector<std::string> kinds{"Home, Mobile", "Car", "Business, Business2, BusinessFax"};
  for (std::size_t i = 0; i < kinds.size(); ++i) {
    const auto run = ChooseOnly(contacts[i]["index"].dump());
    EXPECT_THAT(run.err, HasSubstr("it has: " + kinds[i] + "\n"));
  }
  EXPECT_THAT(ChooseOnly("4").err, HasSubstr("no contact with a number is called \"4\""));
  EXPECT_THAT(ChooseOnly("0").err, HasSubstr("no contact with a number is called \"0\""));
}

TEST_F(TagsLearnCommand, ANameOfDigitsCountsForMoreThanANumberInTheList) {
  std::ofstream(Path("all.vcf"), std::ios::binary | std::ios::app)
      << "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:d\r\nN:1;;;;\r\nTEL;TYPE=HOME,FAX:1\r\nEND:VCARD\r\n"
      << "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:t\r\nN:Taxi "
         "2;;;;\r\nTEL;TYPE=HOME,FAX:2\r\nEND:VCARD\r\n";
  EXPECT_THAT(ChooseOnly("1").err, HasSubstr("it has: HomeFax\n"));
  EXPECT_THAT(ChooseOnly("2").err, Not(HasSubstr("it has: HomeFax\n")));
}

TEST_F(TagsLearnCommand, TheWholeNameMeansNobodyElseInAnyOrder) {
  for (const std::string name : {"Lee Ann", "lee ann", "Ann Lee", " ANN  LEE "}) {
    EXPECT_THAT(ChooseOnly(name).err, HasSubstr("it has: Home, Mobile\n")) << name;
  }
  EXPECT_THAT(ChooseOnly("anna").err, HasSubstr("it has: Car\n"));
  EXPECT_THAT(ChooseOnly("b ra").err, HasSubstr("it has: Business, ")) << "Parts of a name.";
}

TEST_F(TagsLearnCommand, AnUnknownNameIsReported) {
  // Neither a contact without a number, nor one that is left open, nor a number of nobody.
  for (const std::string name : {"Hubert", "Silent", "", " ", "4", "99999999999"}) {
    const auto run = ChooseOnly(name);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "voxtrel: no contact with a number is called \"" + name + "\"\n");
  }
}

TEST_F(TagsLearnCommand, AKindThatTheContactHasNotIsReported) {
  // A part of a word could mean several kinds and means none.
  for (const std::string kind : {"Mobile", "Bus", "71"}) {
    const auto run = Run({"tags", "learn", "--contact", "Bob Ray", "--number", kind, "--json"});
    EXPECT_EQ(run.exitCode, 1);
    ExpectOnlyAnError(run);
    EXPECT_EQ(run.err, "voxtrel: the contact has no number of the kind \"" + kind +
                           "\"; it has: Business, Business2, BusinessFax\n");
  }
  ExpectNothingLearned();
}

TEST_F(TagsLearnCommand, WithoutAMicrophoneNothingIsLearned) {
  const auto run = Run({"tags", "learn", "--contact", "Bob", "--json"});
  EXPECT_EQ(run.exitCode, 1);
  ExpectOnlyAnError(run);
  EXPECT_EQ(run.err,
            "Zedra Voxtrel: There are no wave-record devices in you computer.\n"
            "voxtrel: no tag was learned\n");
  ExpectNothingLearned();
}

TEST_F(TagsLearnCommand, AsksToSpeakIntoARealMicrophone) {
  const auto run = Run({"tags", "learn", "--contact", "Bob"});
  EXPECT_THAT(run.err, StartsWith("Say the name now: three seconds are recorded"));
}

TEST_F(TagsLearnCommand, AMicrophoneFileThatIsNoneIsReported) {
  const std::string text = Path("text.wav");
  std::ofstream(text) << std::string(50, 'x');
  const auto run = Run({"--microphone", text, "tags", "learn", "--contact", "Bob"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err, "voxtrel: " + text + " is no wave file of 11,025 Hz, mono, 16 bit\n");
  ExpectNothingLearned();
}

TEST_F(TagsLearnCommand, ASilentMicrophoneIsWarnedOfInWordsAndAsJson) {
  const support::Bytes silence = support::WaveFile(support::Constant(33075, 0));
  std::ofstream(Path("silence.wav"), std::ios::binary)
      .write(reinterpret_cast<const char*>(silence.data()),
             static_cast<std::streamsize>(silence.size()));
  const auto run = Run({"--microphone", Path("silence.wav"), "--speaker", Path("heard.wav"), "tags",
                        "learn", "--contact", std::to_string(m_bob), "--json"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.err, StartsWith("voxtrel: warning: the recording: it is silent"));
  const json tag = json::parse(run.out, nullptr, false);
  ASSERT_EQ(tag["warnings"].size(), 1U) << run.out;
  EXPECT_THAT(std::string(tag["warnings"][0]), StartsWith("it is silent"));
}

TEST_F(TagsLearnCommand, AFullDiskIsNamed) {
  // Room for the settings and not for a recording.
  const auto run = RunOnFullDisk(
      110, {"--microphone", m_sample, "tags", "learn", "--contact", std::to_string(m_bob)});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("voxtrel: no tag was learned: the disk is full\n"));
  EXPECT_THAT(support::NamesIn(Folder("Voxtrel_wav")), testing::IsEmpty());
  ExpectNothingLearned();
}

TEST_F(TagsLearnCommand, TheHundredAndFirstTagIsRefused) {
  for (int i = 100; i < 200; ++i) {
    PutEntry(std::to_string(i), m_ann, u"Home");
  }
  PutVersion(u"3");
  const auto run = Run({"--microphone", m_sample, "tags", "learn", "--contact", "Bob", "--json"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err,
            "Zedra Voxtrel: Tags number exceeds limit: 100\nvoxtrel: no tag was learned\n");
  EXPECT_THAT(support::NamesIn(Folder("Voxtrel_wav")), testing::IsEmpty());
  EXPECT_THAT(Run({"tags", "list"}).out, HasSubstr("Learned commands: 100\n"));
}

TEST_F(TagsLearnCommand, ANewcomerReadsWhereContactsAreLookedFor) {
  const auto run = support::RunProgram(
      {VOXTREL_PROGRAM, "--root", Path("new"), "tags", "learn", "--contact", "Ann"},
      {"DBUS_SESSION_BUS_ADDRESS=unix:path=" + Path("no-bus"), "HOME=" + Path(""),
       "LC_ALL=C.UTF-8"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, StartsWith("voxtrel: there are no contacts: "));
  EXPECT_THAT(run.err, HasSubstr(NameOfContacts(Path("new"))));
}

TEST_F(TagsLearnCommand, WrongUsageIsTwo) {
  EXPECT_EQ(Run({"tags", "learn"}).exitCode, 2);
  EXPECT_EQ(Run({"tags", "learn", "--contact"}).exitCode, 2);
  EXPECT_EQ(Run({"tags", "learn", "Ann"}).exitCode, 2);
}

}  // namespace
