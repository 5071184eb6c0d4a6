#include <algorithm>
#include <array>
#include <cstddef>
#include <set>
#include <span>
#include <vector>

#include "tests/applet/applet_fixture.h"

namespace {

using applet::CplMessage;
using applet::NewCplInfo;
using testing::IsEmpty;

constexpr int kIcon = 129;

class VoxtrelAppMessages : public AppletFixture {};

TEST_F(VoxtrelAppMessages, HaveTheNumbersOfTheControlPanel) {
  EXPECT_EQ(static_cast<int>(CplMessage::kInit), 1);
  EXPECT_EQ(static_cast<int>(CplMessage::kGetCount), 2);
  EXPECT_EQ(static_cast<int>(CplMessage::kInquire), 3);
  EXPECT_EQ(static_cast<int>(CplMessage::kSelect), 4);
  EXPECT_EQ(static_cast<int>(CplMessage::kDblClk), 5);
  EXPECT_EQ(static_cast<int>(CplMessage::kStop), 6);
  EXPECT_EQ(static_cast<int>(CplMessage::kExit), 7);
  EXPECT_EQ(static_cast<int>(CplMessage::kNewInquire), 8);
}

TEST_F(VoxtrelAppMessages, TheAppletCanRunAndThereIsOne) {
  const auto app = Start();
  EXPECT_EQ(Send(*app, CplMessage::kInit), 1);
  EXPECT_EQ(Send(*app, CplMessage::kGetCount), 1);
  EXPECT_EQ(Send(*app, CplMessage::kGetCount), 1);
}

TEST_F(VoxtrelAppMessages, TheOldInquiryIsNotAnswered) {
  const auto app = Start();
  std::array<std::uint32_t, 5> record{7, 7, 7, 7, 7};
  EXPECT_EQ(Send(*app, CplMessage::kInquire, 0, reinterpret_cast<std::intptr_t>(record.data())), 0);
  EXPECT_EQ(record, (std::array<std::uint32_t, 5>{7, 7, 7, 7, 7}));
  EXPECT_THAT(m_module.GetIcons(), IsEmpty());
}

TEST_F(VoxtrelAppMessages, SelectExitAndUnknownOnesDoNothing) {
  const auto app = Start();
  NewCplInfo info;
  EXPECT_EQ(Inquire(*app, info), 0);
  for (const std::uint32_t message : {4U, 7U, 0U, 9U, 0xFFFFFFFFU}) {
    for (const std::intptr_t first : {0, 1}) {
      EXPECT_EQ(app->Answer(message, first, 0), 0) << message;
    }
  }
  EXPECT_EQ(m_module.GetIcons(), std::set<int>{kIcon});
}

TEST_F(VoxtrelAppMessages, TheNewInquiryGivesSizeNumberIconAndName) {
  const auto app = Start();
  NewCplInfo info;
  EXPECT_EQ(Inquire(*app, info), 0);
  EXPECT_EQ(info.dwSize, 468U);
  EXPECT_EQ(info.lData, kIcon);
  EXPECT_NE(info.hIcon, platform::kNoIcon);
  EXPECT_EQ(std::u16string(info.szName.data()), u"Zedra Voxtrel");
  EXPECT_EQ(m_module.GetIcons(), std::set<int>{kIcon});
}

TEST_F(VoxtrelAppMessages, TheNewInquiryLeavesTheRestAsTheCallerPassedIt) {
  const auto app = Start();
  NewCplInfo info;
  info.dwFlags = 0x01020304;
  info.dwHelpContext = 0x05060708;
  info.szName.fill(u'n');
  info.szInfo.fill(u'i');
  info.szHelpFile.fill(u'h');
  const NewCplInfo before = info;
  EXPECT_EQ(Inquire(*app, info), 0);
  EXPECT_EQ(info.dwFlags, before.dwFlags);
  EXPECT_EQ(info.dwHelpContext, before.dwHelpContext);
  EXPECT_EQ(info.szInfo, before.szInfo);
  EXPECT_EQ(info.szHelpFile, before.szHelpFile);
  // Of the name, too, only the text and its end are written.
  EXPECT_EQ(info.szName[13], u'\0');
  EXPECT_EQ(info.szName[14], u'n');
}

TEST_F(VoxtrelAppMessages, TheNewInquiryWritesTheRecordInTheWidthsOfItsSystem) {
  using WideRecord = applet::BasicNewCplInfo<std::int64_t, std::uint64_t>;
  applet::VoxtrelApp app(m_machine.Get(), m_module, applet::WriteRecord<WideRecord>);
  ASSERT_TRUE(app.InitInstance());
  WideRecord info;
  EXPECT_EQ(Send(app, CplMessage::kNewInquire, 0, reinterpret_cast<std::intptr_t>(&info)), 0);
  EXPECT_EQ(info.dwSize, sizeof(WideRecord));
  EXPECT_EQ(info.lData, kIcon);
  EXPECT_NE(info.hIcon, 0U);
  EXPECT_EQ(std::u16string(info.szName.data()), u"Zedra Voxtrel");
}

TEST_F(VoxtrelAppMessages, TheNewInquiryAnswersWithoutAnIcon) {
  m_module.RunOutOfIcons();
  const auto app = Start();
  NewCplInfo info;
  info.hIcon = 5;
  EXPECT_EQ(Inquire(*app, info), 0);
  EXPECT_EQ(info.hIcon, platform::kNoIcon);
  EXPECT_EQ(std::u16string(info.szName.data()), u"Zedra Voxtrel");
  EXPECT_EQ(Send(*app, CplMessage::kStop), 0);
}

TEST_F(VoxtrelAppMessages, ANewInquiryWithoutARecordIsNoReasonToFall) {
  const auto app = Start();
  EXPECT_EQ(Send(*app, CplMessage::kNewInquire), 0);
  EXPECT_THAT(m_module.GetIcons(), IsEmpty());
}

TEST_F(VoxtrelAppMessages, StopDestroysTheIconOfThisAppletAlone) {
  const auto app = Start();
  NewCplInfo info;
  EXPECT_EQ(Inquire(*app, info), 0);
  EXPECT_EQ(Send(*app, CplMessage::kStop, 1), 1);
  EXPECT_EQ(Send(*app, CplMessage::kStop, -1), 1);
  EXPECT_EQ(m_module.GetIcons(), std::set<int>{kIcon});
  EXPECT_EQ(Send(*app, CplMessage::kStop, 0), 0);
  EXPECT_THAT(m_module.GetIcons(), IsEmpty());
  EXPECT_EQ(Send(*app, CplMessage::kStop, 0), 0);
}

/// A library that remembers which icons it was asked to destroy.
class LoggingModule final : public platform::Module {
 public:
  [[nodiscard]] platform::IconHandle LoadIcon(int id) override { return m_inner.LoadIcon(id); }
  void DestroyIcon(platform::IconHandle icon) override {
    m_destroyed.push_back(icon);
    m_inner.DestroyIcon(icon);
  }
  int LoadString(int id, std::span<char16_t> buffer) override {
    return m_inner.LoadString(id, buffer);
  }

  [[nodiscard]] std::ptrdiff_t CountDestroyed(platform::IconHandle icon) const {
    return std::ranges::count(m_destroyed, icon);
  }

 private:
  machine::SimulatedModule m_inner;
  std::vector<platform::IconHandle> m_destroyed;
};

TEST_F(VoxtrelAppMessages, AnIconIsNeverDestroyedTwice) {
  LoggingModule module;
  applet::VoxtrelApp app(m_machine.Get(), module, applet::WriteRecord<applet::NewCplInfo>);
  ASSERT_TRUE(app.InitInstance());
  NewCplInfo info;
  EXPECT_EQ(Inquire(app, info), 0);
  const platform::IconHandle icon = info.hIcon;
  ASSERT_NE(icon, platform::kNoIcon);
  EXPECT_EQ(Open(app), 0);
  EXPECT_EQ(Send(app, CplMessage::kStop, 0), 0);
  EXPECT_EQ(Send(app, CplMessage::kStop, 0), 0);
  EXPECT_EQ(module.CountDestroyed(icon), 1);
}

TEST_F(VoxtrelAppMessages, TheIconOutlivesTheSheetOnlyForAnotherAppletsNumber) {
  const auto app = Start();
  NewCplInfo info;
  EXPECT_EQ(Inquire(*app, info), 0);
  int shown = 0;
  m_machine.ui.SetSheetStory([&](headless::HeadlessSheet&) {
    ++shown;
    EXPECT_EQ(m_module.GetIcons(), std::set<int>{kIcon});
  });
  EXPECT_EQ(Send(*app, CplMessage::kDblClk, 1), 1);
  EXPECT_EQ(m_module.GetIcons(), std::set<int>{kIcon});
  EXPECT_EQ(Send(*app, CplMessage::kDblClk, 0), 0);
  EXPECT_THAT(m_module.GetIcons(), IsEmpty());
  EXPECT_EQ(shown, 2);
}

TEST_F(VoxtrelAppMessages, AnIconIsLoadedAgainAfterTheSheet) {
  const auto app = Start();
  NewCplInfo info;
  EXPECT_EQ(Inquire(*app, info), 0);
  EXPECT_EQ(Open(*app), 0);
  EXPECT_EQ(Inquire(*app, info), 0);
  EXPECT_EQ(m_module.GetIcons(), std::set<int>{kIcon});
}

TEST_F(VoxtrelAppMessages, BeforeStartUpNothingIsShownOrLoaded) {
  applet::VoxtrelApp app(m_machine.Get(), m_module, applet::WriteRecord<applet::NewCplInfo>);
  bool isShown = false;
  m_machine.ui.SetSheetStory([&](headless::HeadlessSheet&) { isShown = true; });
  NewCplInfo info;
  EXPECT_EQ(Inquire(app, info), 0);
  EXPECT_EQ(info.dwSize, 0U);
  EXPECT_EQ(Open(app), 0);
  EXPECT_FALSE(isShown);
}

}  // namespace
