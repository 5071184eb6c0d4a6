#include "backends/desktop/default_program.h"

#include "tests/backends/desktop/fake_desktop.h"

namespace {

using desktop::HandOver;
using Words = std::vector<std::string>;

constexpr const char* kUri = "tel:+12025550101;ext=42";
constexpr const char* kTel = "x-scheme-handler/tel";

class TelephoneProgram : public FakeDesktop {
 protected:
  void PutTelephone(const std::string& rest = "") const {
    PutEntry("phone.desktop", "Exec=phone --call %u\n");
    PutProgram("phone", rest);
    Choose("phone.desktop", kTel);
  }

  /// Returns whether handing a number over ends so.
  [[nodiscard]] bool Ends(HandOver expected) const {
    return InDesktop([&] {
      return desktop::HandOverCall(desktop::ReadEnvironment(), kUri, std::chrono::minutes(1)) ==
             expected;
    });
  }
};

TEST_F(TelephoneProgram, TheChosenOneGetsTheNumberAsOneArgument) {
  PutTelephone();
  EXPECT_TRUE(Ends(HandOver::kDone));
  EXPECT_EQ(CallOf("phone"), (Words{"--call", kUri}));
  EXPECT_TRUE(InDesktop(desktop::HasTelephoneProgram));
}

TEST_F(TelephoneProgram, OneThatIsInstalledServesWithoutAChoice) {
  PutTelephone();
  Choose("phone.desktop", "x-scheme-handler/other");
  Write("share/applications/mimeinfo.cache", "[MIME Cache]\nx-scheme-handler/tel=phone.desktop;\n");
  EXPECT_TRUE(Ends(HandOver::kDone));
  EXPECT_EQ(CallOf("phone"), (Words{"--call", kUri}));
}

TEST_F(TelephoneProgram, WithoutOneNoBrowserGetsTheNumber) {
  PutDefaultBrowser();
  PutProgram("xdg-open");
  PutProgram("firefox");
  EXPECT_TRUE(Ends(HandOver::kNoProgram));
  EXPECT_FALSE(WasCalled("fox"));
  EXPECT_FALSE(WasCalled("xdg-open"));
  EXPECT_FALSE(WasCalled("firefox"));
  EXPECT_FALSE(InDesktop(desktop::HasTelephoneProgram));
}

TEST_F(TelephoneProgram, OneThatFailsAtOnceHasNotTakenTheNumber) {
  PutTelephone("exit 3");
  EXPECT_TRUE(Ends(HandOver::kFailed));
}

TEST_F(TelephoneProgram, OneThatNeedsATerminalIsNone) {
  PutTelephone();
  PutEntry("phone.desktop", "Exec=phone %u\nTerminal=true\n");
  EXPECT_TRUE(Ends(HandOver::kNoProgram));
  EXPECT_FALSE(WasCalled("phone"));
}

TEST_F(TelephoneProgram, OneThatIsNotInstalledIsNone) {
  PutEntry("phone.desktop", "Exec=phone %u\n");
  Choose("phone.desktop", kTel);
  EXPECT_TRUE(Ends(HandOver::kNoProgram));
}

}  // namespace
