#include <algorithm>
#include <set>

#include "tests/maintenance/reinit_page_fixture.h"
#include "tests/support/watched_file_system.h"
#include "tests/support/watched_registry.h"

namespace {

using support::Failing;

/// Opening the page with a change of the version, while one call of the platform fails.
class PageOneReinitFaults : public ReinitPageFixture, public testing::WithParamInterface<Failing> {
 protected:
  /// As few calls as there can be with everything in them: one that is trimmed, and a short one.
  static support::Bytes Recording(std::uint32_t seed) {
    return support::WaveFile(seed == 1 ? support::Mixed(support::Noise(7500, 10, seed), 600,
                                                        support::SpeechLike(400, 9000, seed))
                                       : support::Noise(1500, 9000, seed));
  }
  void PutSpokenTag(std::u16string_view name, std::uint32_t seed) {
    PutTag(name, kAnn, u"Mobile");
    ASSERT_TRUE(m_machine.files.PutFile(storage::WavePath(name), Recording(seed)));
  }

  PageOneReinitFaults() {
    PutSpokenTag(u"100", 1);
    PutSpokenTag(u"200", 2);
    PutVersion(u"2");
    Open();
    for (const auto& path : m_machine.files.ListFiles()) {
      m_after[path] = *m_machine.files.GetFile(path);
    }
    EXPECT_LT(m_after.at(storage::WavePath(u"100")).size(), Recording(1).size()) << "Trimmed.";
  }

  /// The store before the change of the version.
  void Reset() {
    m_dialog.reset();
    m_page.reset();
    for (const std::u16string_view name : {u"100", u"200"}) {
      static_cast<void>(m_machine.registry.DeleteKey(
          std::u16string(storage::kTagKey).append(u"\\").append(name)));
    }
    for (const auto& path : m_machine.files.ListFiles()) {
      ASSERT_TRUE(m_machine.files.Delete(path));
    }
    PutSpokenTag(u"100", 1);
    PutSpokenTag(u"200", 2);
    PutVersion(u"2");
    m_messages = m_machine.ui.GetMessages().size();
  }

  /// Every message is one of those that are meant to be shown.
  void ExpectKnownMessages() const {
    const auto shown = m_machine.ui.GetMessages();
    for (std::size_t i = m_messages; i < shown.size(); ++i) {
      const std::u16string& text = shown[i].box.text;
      const bool isKnown = text == u"Error" || text == u"ERROR in FindNextFile" ||
                           text == u"Can't process this file" ||
                           text.starts_with(u"ERROR in CreateFile\n\n");
      EXPECT_TRUE(isKnown) << std::string(text.begin(), text.end());
    }
  }
  [[nodiscard]] bool HasNewMessages() const {
    return m_machine.ui.GetMessages().size() > m_messages;
  }

  /// A recording is the old one or the trimmed one, a template the old one, the new one or none.
  void ExpectDescribableStore() const {
    for (const std::uint32_t i : {1U, 2U}) {
      const std::u16string name = i == 1 ? u"100" : u"200";
      const auto wave = m_machine.files.GetFile(storage::WavePath(name));
      ASSERT_TRUE(wave.has_value());
      EXPECT_TRUE(*wave == Recording(i) || *wave == m_after.at(storage::WavePath(name)));
      const auto content = GetTemplate(name);
      EXPECT_TRUE(!content || IsWholeTemplate(*content) || HasNewMessages());
    }
    EXPECT_EQ(m_machine.files.CountOpenHandles(), 0U);
  }

  [[nodiscard]] bool IsAllDone() const {
    return std::ranges::all_of(m_after, [this](const auto& file) {
      return m_machine.files.GetFile(file.first) == file.second;
    });
  }

  std::map<std::u16string, support::Bytes> m_after;
  std::size_t m_messages = 0;
};

TEST_P(PageOneReinitFaults, OfFilesLeaveAStoreThatCanBeDescribed) {
  std::set<std::u16string> told;
  support::WatchedFileSystem failing(m_machine.files);
  bool hasFailed = true;
  for (std::size_t call = 1; hasFailed; ++call) {
    SCOPED_TRACE(call);
    Reset();
    failing.FailCall(call, GetParam(), platform::FileError::kDiskFull);
    OpenOn(m_machine.GetWith(failing, m_machine.registry));
    hasFailed = failing.HasFailed();
    m_dialog.reset();
    m_page.reset();
    ExpectKnownMessages();
    ExpectDescribableStore();
    const auto shown = m_machine.ui.GetMessages();
    for (std::size_t i = m_messages; i < shown.size(); ++i) {
      told.insert(shown[i].box.text.substr(0, shown[i].box.text.find(u'\n')));
    }
    ASSERT_LT(call, 20'000U);
  }
  EXPECT_TRUE(IsAllDone()) << "The last run had no failure.";
  EXPECT_TRUE(told.contains(u"Error"));
  EXPECT_TRUE(told.contains(u"ERROR in CreateFile"));
  EXPECT_TRUE(told.contains(u"Can't process this file"));
}

TEST_P(PageOneReinitFaults, OfTheRegistryDoTheWorkOrLeaveItAsItWas) {
  support::WatchedRegistry failing(m_machine.registry);
  bool hasFailed = true;
  for (std::size_t call = 1; hasFailed; ++call) {
    SCOPED_TRACE(call);
    Reset();
    failing.FailCall(call, GetParam());
    OpenOn(m_machine.GetWith(m_machine.files, failing));
    hasFailed = failing.HasFailed();
    m_dialog.reset();
    m_page.reset();
    ExpectKnownMessages();
    ExpectDescribableStore();
    const bool isOld = GetTemplate(u"100") == support::Bytes(6);
    EXPECT_TRUE(isOld || IsAllDone());
    ASSERT_LT(call, 1000U);
  }
  EXPECT_TRUE(IsAllDone());
}

INSTANTIATE_TEST_SUITE_P(Kinds, PageOneReinitFaults,
                         testing::Values(Failing::kOnce, Failing::kFromThenOn,
                                         Failing::kPowerFailure),
                         [](const testing::TestParamInfo<Failing>& kind) {
                           return kind.param == Failing::kOnce         ? "Once"
                                  : kind.param == Failing::kFromThenOn ? "FromThenOn"
                                                                       : "PowerFailure";
                         });

}  // namespace
