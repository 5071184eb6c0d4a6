#include "tests/connection/connection_fixture.h"
#include "tests/support/watched_registry.h"

namespace {

using namespace resources;
using platform::RegistryError;
using support::Failing;
using support::WatchedRegistry;

constexpr std::array kValues{u"Bound_rate", u"Data_bit", u"Stop_bit", u"Flow_control",
                             u"Com_port",   u"is_BT",    u"is_HU"};

class ConnectionPageFaults : public ConnectionFixture {
 protected:
  /// Stores 9600, ..., and then has a page at work that will store 4800 and both boxes checked.
  void OpenChanged() {
    m_failing.FailCall(0, Failing::kOnce);
    EXPECT_EQ(m_registry.DeleteKey(u"Software").has_value(), !m_isFirst);
    m_isFirst = false;
    Open();
    m_page->OnOK();
    auto& dialog = OpenOn(m_failing);
    dialog.Choose(kBaudRateComboId, 9);
    dialog.Choose(kDataBitsComboId, 0);
    dialog.Choose(kStopBitsComboId, 2);
    dialog.Choose(kFlowControlComboId, 0);
    dialog.Type(kPortComboId, u"COM9:");
    dialog.Press(kHeadsetCheckId);
    dialog.Press(kNoHangUpCheckId);
  }

  bool m_isFirst = true;
  WatchedRegistry m_failing{m_registry};
  const std::array<std::vector<std::byte>, 7> m_old{
      Bytes(u"9600", 32),   Bytes(u"8", 32), Bytes(u"1", 32), Bytes(u"none", 32),
      Bytes(u"COM2:", 200), Bytes(u"0", 4),  Bytes(u"0", 4)};
  const std::array<std::vector<std::byte>, 7> m_new{
      Bytes(u"4800", 32),   Bytes(u"4", 32), Bytes(u"2", 32), Bytes(u"hardware", 32),
      Bytes(u"COM9:", 200), Bytes(u"1", 4),  Bytes(u"1", 4)};
};

TEST_F(ConnectionPageFaults, AValueThatCannotBeWrittenKeepsOnlyItselfBack) {
  for (std::size_t call = 1; call <= kValues.size(); ++call) {
    OpenChanged();
    m_failing.FailCall(call, Failing::kOnce, RegistryError::kFull);
    m_page->OnOK();
    EXPECT_TRUE(m_failing.HasFailed());
    EXPECT_EQ(m_failing.CountCalls(), kValues.size()) << "Each value is written once.";
    for (std::size_t i = 0; i < kValues.size(); ++i) {
      EXPECT_EQ(Stored(kValues[i]), i + 1 == call ? m_old[i] : m_new[i]) << call << ' ' << i;
    }
  }
  EXPECT_TRUE(m_ui.GetMessages().empty());
}

TEST_F(ConnectionPageFaults, AStoreThatGoesAwayKeepsWhatWasWrittenAndSaysNothing) {
  for (std::size_t call = 1; call <= kValues.size(); ++call) {
    OpenChanged();
    m_failing.FailCall(call, Failing::kFromThenOn, RegistryError::kReadOnly);
    m_page->OnOK();
    for (std::size_t i = 0; i < kValues.size(); ++i) {
      EXPECT_EQ(Stored(kValues[i]), i + 1 < call ? m_new[i] : m_old[i]) << call << ' ' << i;
    }
  }
  EXPECT_TRUE(m_ui.GetMessages().empty());
}

TEST_F(ConnectionPageFaults, AStoreThatIsBusyIsWaitedForOnce) {
  for (std::size_t call = 1; call <= kValues.size(); ++call) {
    OpenChanged();
    m_failing.FailCall(call, Failing::kOnce, RegistryError::kBusy);
    m_page->OnOK();
    EXPECT_EQ(m_failing.CountCalls(), call);
    for (std::size_t i = 0; i < kValues.size(); ++i) {
      EXPECT_EQ(Stored(kValues[i]), i + 1 < call ? m_new[i] : m_old[i]) << call << ' ' << i;
    }
  }
  EXPECT_TRUE(m_ui.GetMessages().empty());
}

TEST_F(ConnectionPageFaults, OpeningShowsStoredOrDefaultWhicheverCallFails) {
  PutPort(u"1", u"COM1:");
  PutPort(u"2", u"COM2:");
  for (const Failing failing : {Failing::kOnce, Failing::kFromThenOn}) {
    bool hasFailed = true;
    for (std::size_t call = 1; hasFailed; ++call) {
      PutSetting(u"Bound_rate", u"4800");
      PutSetting(u"is_BT", u"1");
      m_failing.FailCall(call, failing);
      auto& dialog = OpenOn(m_failing);
      hasFailed = m_failing.HasFailed();
      m_failing.FailCall(0, Failing::kOnce);
      const std::u16string rate = dialog.GetText(kBaudRateComboId);
      EXPECT_TRUE(rate == u"4800" || rate == u"9600") << call;
      EXPECT_EQ(dialog.GetItemCount(kBaudRateComboId), 15);
      EXPECT_EQ(dialog.GetText(kDataBitsComboId), u"8");
      EXPECT_EQ(dialog.GetText(kPortComboId), u"COM2:");
      m_page->OnOK();
      ASSERT_LT(call, 100U);
    }
    EXPECT_EQ(Open().GetText(kBaudRateComboId), u"4800") << "The last run met no failure.";
  }
  EXPECT_TRUE(m_ui.GetMessages().empty());
}

TEST_F(ConnectionPageFaults, WithoutAStoreThePageCanBeUsedAndClosed) {
  m_failing.FailCall(1, Failing::kFromThenOn, RegistryError::kDamaged);
  auto& dialog = OpenOn(m_failing);
  EXPECT_EQ(dialog.GetText(kBaudRateComboId), u"9600");
  dialog.Choose(kBaudRateComboId, 0);
  dialog.Press(kDefaultsButtonId);
  m_page->OnOK();
  EXPECT_FALSE(support::KeyExists(m_registry, storage::kDialerKey));
  EXPECT_TRUE(m_ui.GetMessages().empty());
}

}  // namespace
