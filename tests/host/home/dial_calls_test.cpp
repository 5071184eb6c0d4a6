#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <unistd.h>

#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include "dialer/ways.h"
#include "host/home/dial_page.h"
#include "host/home/dial_parts.h"
#include "tests/host/dial/phone_program.h"
#include "tests/host/dial/pty_modem.h"
#include "tests/host/home/page_fixture.h"
#include "tests/host/home/work_fixture.h"
#include "tests/support/signals.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// The page over the real store, contacts and ways of calling. Ann is taught; a recording stands
/// for the microphone.
class DialPageCalls : public home::StoreWorkTest {
 protected:
  DialPageCalls() {
    for (const auto& [name, value] : m_phone.GetVariables()) {
      qputenv(name.c_str(), QByteArray::fromStdString(value));
    }
    m_options.microphone = VOXTREL_SAMPLES_DIR "/anna_1.wav";
    Begin();
    m_tag = TeachAnn();
  }
  ~DialPageCalls() override {
    m_page.reset();
    for (const auto& [name, value] : m_phone.GetVariables()) {
      qputenv(name.c_str(), "/none");
    }
  }

  void Open() {
    m_page = std::make_unique<home::DialPage>(
        *m_work, m_frame,
        home::DialPage::Tools{{m_backends.GetThreads(),
                               [this](const std::function<void(const dialer::Parts&)>& use) {
                                 return home::PrepareTalk(
                                     m_options,
                                     {m_backends.GetWaveIn(), m_backends.GetWaveOut(),
                                      m_backends.GetClock(), m_backends.GetThreads()},
                                     use);
                               }},
                              [this] { return home::ReadCalls(m_options); }});
    m_page->OnShelf(m_shelf);
    m_page->show();
    m_page->OnShown({});
  }
  /// Says the name, and calls without a wait whoever is understood.
  void CallAnn() {
    Open();
    Button("sayName").click();
    Press("callNow");
  }
  /// Says the name, and expects this at the end.
  void SayAndExpect(const char* title, const char* text) {
    Open();
    Button("sayName").click();
    AwaitEnd();
    EXPECT_EQ(Text("dialTitle"), title);
    EXPECT_THAT(Text("dialText"), HasSubstr(text));
  }
  void AwaitEnd() {
    Await([this] { return Button("sayName").isVisible(); });
  }
  /// Presses a button as soon as it is there.
  void Press(const char* name) {
    Await([&] { return Button(name).isVisible(); });
    Button(name).click();
  }
  [[nodiscard]] QPushButton& Button(const char* name) {
    return *m_page->findChild<QPushButton*>(QLatin1String(name));
  }
  [[nodiscard]] std::string Text(const char* name) const {
    return m_page->findChild<QLabel*>(QLatin1String(name))->text().toStdString();
  }

  void PutSetting(std::u16string_view key, std::u16string_view name, std::u16string_view text) {
    auto registry = Registry();
    ASSERT_EQ(support::ErrorOf(support::PutText(registry, key, name, text)), std::nullopt);
  }
  /// The connection settings lead to this modem.
  void ConnectTo(const PtyModem& modem) {
    const std::string& name = modem.GetName();
    PutSetting(u"Drivers\\Active\\77", u"Name", u"COM77:");
    PutSetting(u"Drivers\\Active\\77", u"Device", std::u16string(name.begin(), name.end()));
    PutSetting(storage::kDialerKey, storage::kComPortValue, u"COM77:");
  }

  PhoneProgram m_phone{Path("desktop")};
  home_test::NotedFrame m_frame;
  machine::Backends m_backends{m_options};
  std::u16string m_tag;
  std::unique_ptr<home::DialPage> m_page;
};

TEST_F(DialPageCalls, TheTelephoneProgramGetsTheNumberAndTheCallIsListed) {
  m_phone.Put();
  CallAnn();
  AwaitEnd();
  EXPECT_EQ(m_phone.AwaitCalled(), "tel:5551234\n");
  EXPECT_THAT(Text("dialText"), HasSubstr("The telephone program of the desktop has the number."));
  EXPECT_FALSE(Button("hangUp").isVisible()) << "That program ends its calls itself.";
  const auto* const calls = m_page->findChild<QListWidget*>();
  ASSERT_EQ(calls->count(), 1);
  EXPECT_THAT(calls->item(0)->text().toStdString(), StartsWith("Ann Lee\nMobile"));
}

TEST_F(DialPageCalls, WithoutAWayToCallTheNumberIsShown) {
  CallAnn();
  AwaitEnd();
  EXPECT_EQ(Text("dialTitle"), "Ann Lee");
  EXPECT_THAT(Text("dialText"), HasSubstr("5551234"));
  EXPECT_THAT(Text("dialText"), HasSubstr("Dial this number yourself."));
}

TEST_F(DialPageCalls, TheNextCallTakesTheWayThatWasChosen) {
  m_phone.Put();
  auto registry = Registry();
  ASSERT_TRUE(dialer::ChooseWay(registry, dialer::Way::kPrint));
  CallAnn();
  AwaitEnd();
  EXPECT_EQ(m_phone.GetCalled(), "");
  ASSERT_TRUE(dialer::ChooseWay(registry, dialer::Way::kSerial));
  Button("sayName").click();
  Press("callNow");
  AwaitEnd();
  EXPECT_EQ(Text("dialTitle"), "Ann Lee was not called");
  EXPECT_THAT(Text("dialText"), StartsWith("No serial port was chosen."));
  EXPECT_EQ(m_phone.GetCalled(), "");
}

TEST_F(DialPageCalls, AModemDialsAndHangsUp) {
  PtyModem modem([](const std::string&) { return "\r\nOK\r\n"; });
  ConnectTo(modem);
  CallAnn();
  AwaitEnd();
  EXPECT_THAT(Text("dialText"), HasSubstr("The number was dialled."));
  Press("hangUp");
  Await([this] { return !Button("hangUp").isVisible(); });
  EXPECT_THAT(Text("dialText"), HasSubstr("The call was ended."));
  EXPECT_EQ(modem.End(), "ATD5551234;|ATH|");
}

TEST_F(DialPageCalls, WhileTheModemDialsTheUserHangsUp) {
  PtyModem modem(
      [](const std::string& line) { return line == "ATH" ? "\r\nOK\r\n" : line + "\r"; });
  ConnectTo(modem);
  CallAnn();
  Press("hangUp");
  AwaitEnd();
  EXPECT_THAT(Text("dialText"), StartsWith("The call was stopped."));
  EXPECT_EQ(modem.End(), "ATD5551234;|ATH|");
}

TEST_F(DialPageCalls, NobodyHangsUpIfTheSettingsSayNotTo) {
  PtyModem modem([](const std::string&) { return "\r\nOK\r\n"; });
  ConnectTo(modem);
  PutSetting(storage::kDialerKey, storage::kIsHangUpValue, u"1");
  CallAnn();
  AwaitEnd();
  EXPECT_THAT(Text("dialText"), HasSubstr("The number was dialled."));
  EXPECT_FALSE(Button("hangUp").isVisible());
  EXPECT_EQ(modem.End(), "ATD5551234;|");
}

TEST_F(DialPageCalls, EachAnswerOfAModemIsSaidInPlainWords) {
  struct Row {
    const char* says;
    const char* words;
  };
  for (const Row& row : {Row{"BUSY", "The line is busy."}, Row{"NO ANSWER", "Nobody answers."},
                         Row{"NO CARRIER", "There is no connection, or it was cut."},
                         Row{"NO DIALTONE", "There is no dial tone"},
                         Row{"ERROR", "The modem does not dial this number."}}) {
    PtyModem modem([&row](const std::string& line) {
      return line == "ATH" ? std::string("\r\nOK\r\n") : "\r\n" + std::string(row.says) + "\r\n";
    });
    ConnectTo(modem);
    CallAnn();
    AwaitEnd();
    EXPECT_EQ(Text("dialTitle"), "Ann Lee was not called");
    EXPECT_THAT(Text("dialText"), StartsWith(row.words));
    EXPECT_EQ(modem.End(), "ATD5551234;|ATH|");
  }
}

TEST_F(DialPageCalls, AModemThatIsUnpluggedIsReported) {
  PtyModem modem([](const std::string&) { return PtyModem::kUnplug; });
  ConnectTo(modem);
  CallAnn();
  AwaitEnd();
  EXPECT_THAT(Text("dialText"), StartsWith("The modem was unplugged during the call."));
  EXPECT_THAT(Text("dialText"), HasSubstr("5551234")) << "Whoever wants to dial by hand sees it.";
}

TEST_F(DialPageCalls, AModemThatIsUnpluggedDuringTheCallCannotEndIt) {
  PtyModem modem([](const std::string&) { return "\r\nOK\r\n"; });
  ConnectTo(modem);
  CallAnn();
  AwaitEnd();
  modem.End();
  Press("hangUp");
  Await([this] { return Text("dialText").find("was not ended") != std::string::npos; });
  EXPECT_THAT(Text("dialText"), HasSubstr("is not there; plug the modem in."));
}

TEST_F(DialPageCalls, APortInUseIsReportedAndLeftAlone) {
  PtyModem modem([](const std::string&) { return "\r\nOK\r\n"; });
  ConnectTo(modem);
  const int other = ::open(modem.GetName().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  ASSERT_EQ(::flock(other, LOCK_EX | LOCK_NB), 0);
  auto registry = Registry();
  ASSERT_TRUE(dialer::ChooseWay(registry, dialer::Way::kSerial));
  CallAnn();
  AwaitEnd();
  EXPECT_THAT(Text("dialText"), StartsWith("Another program uses " + modem.GetName() + "."));
  EXPECT_EQ(modem.End(), "");
  ::close(other);
}

TEST_F(DialPageCalls, ATextThatIsNoNumberIsShownAndNobodyIsCalled) {
  WriteContacts(CardOf("a", "Lee;Ann", "CELL", "1-800-FLOWERS"));
  SayAndExpect("Ann Lee cannot be called", "\"1-800-FLOWERS\" is not dialled");
}

TEST_F(DialPageCalls, ATagWhoseFilesAreGoingIsPassedOver) {
  std::filesystem::remove(Wave(m_tag));
  SayAndExpect("Nobody can be called now", "Check and repair them in Set-up.");
}

TEST_F(DialPageCalls, ATagThatIsBeingWrittenIsPassedOverAndNotWaitedFor) {
  const int file = ::open(HostPath(storage::TemplatePath(m_tag)).c_str(), O_RDONLY);
  ASSERT_EQ(::flock(file, LOCK_EX), 0);
  SayAndExpect("Nobody can be called now", "None of the voice tags can be used.");
  ::close(file);
}

TEST_F(DialPageCalls, TemplatesOfAnotherMathematicsAreNotUsed) {
  PutSetting(storage::kSetupKey, storage::kMathVersionValue, u"2");
  SayAndExpect("Nobody can be called now", "None of the voice tags can be used.");
}

TEST_F(DialPageCalls, WhileTheAppletHasTheTagsNamesAreUnderstoodAllTheSame) {
  const int mutex = ::open((Path("root") + "/.ZedraD.lock").c_str(), O_RDWR | O_CREAT, 0600);
  ASSERT_EQ(::flock(mutex, LOCK_EX), 0);
  CallAnn();
  AwaitEnd();
  EXPECT_EQ(Text("dialTitle"), "Ann Lee");
  ::close(mutex);
}

TEST_F(DialPageCalls, AMissingMicrophoneIsReported) {
  m_options.microphone = Path("none.wav");
  SayAndExpect("There is no microphone", "Plug one in");
}

TEST_F(DialPageCalls, ASilentMicrophoneIsReported) {
  const support::Bytes bytes = support::WaveFile(support::Constant(33075, 0));
  std::ofstream(Path("silent.wav"), std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  m_options.microphone = Path("silent.wav");
  SayAndExpect("The microphone gives nothing but silence", "It may be muted.");
}

TEST_F(DialPageCalls, ADamagedStoreIsReported) {
  Open();
  std::ofstream(std::filesystem::path(m_options.root) / sqlite::kDatabaseName, std::ios::binary)
      << "This is no database, and was one.";
  Button("sayName").click();
  AwaitEnd();
  EXPECT_EQ(Text("dialTitle"), "Nobody can be called now");
  EXPECT_THAT(Text("dialText"), HasSubstr("registry.db"));
}

}  // namespace
