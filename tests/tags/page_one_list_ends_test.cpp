// The list of learned tags where one of them cannot be read.

#include "tests/support/watched_registry.h"
#include "tests/tags/watched_page.h"

namespace {

using Texts = std::vector<std::u16string>;
using namespace resources;

/// A registry in which one key cannot be opened.
class UnopenableKey final : public support::WatchedRegistry {
 public:
  UnopenableKey(platform::Registry& inner, std::u16string_view path)
      : WatchedRegistry(inner), m_path(path) {}

  void SetPath(std::u16string_view path) { m_path = path; }

  [[nodiscard]] platform::OpenedKey OpenKey(std::u16string_view path) override {
    return path == m_path ? platform::Failure(platform::RegistryError::kOther)
                          : WatchedRegistry::OpenKey(path);
  }

 private:
  std::u16string_view m_path;
};

class PageOneListEnds : public WatchedPage {
 protected:
  /// A contact whose getters fail once the contacts were loaded and the tags are being listed.
  void AddContactThatFailsLater(void (*fail)(machine::SimulatedContact&)) {
    machine::SimulatedContact eve{.oid = kEve, .firstName = u"Eve"};
    eve.Number(platform::PhoneKind::kHome) = u"1";
    machine::SimulatedContact& live = m_machine.contacts.Add(eve);
    m_contacts.SetListener([&live, fail](std::string_view call) {
      if (call == "GetItemFromOid") {
        fail(live);
      }
    });
  }
  void PutThreeTags() {
    PutTag(u"100", kAnn, u"Mobile");
    PutTag(u"200", kEve, u"Home");
    PutTag(u"300", kBob, u"Home");
  }

  static constexpr std::int32_t kEve = 6;
};

TEST_F(PageOneListEnds, AFailingPropertyEndsTheLoad) {
  PutThreeTags();
  AddContactThatFailsLater(
      [](machine::SimulatedContact& contact) { contact.FailNumber(platform::PhoneKind::kHome); });
  const auto& dialog = OpenWatched();
  EXPECT_EQ(GetMessages(), Texts{u"Failed to get home phone number"});
  EXPECT_EQ(dialog.GetItems(kTagListId), Texts{u"Ann Lee 5551234 M"});
  EXPECT_EQ(dialog.GetText(kCountLabelId), u"Learned commands: 3") << "The page goes on.";
  EXPECT_EQ(GetEntries(), (Texts{u"100", u"200", u"300"}));
  EXPECT_EQ(m_page->GetTags().GetRecord(1)->GetTagName(), u"");
}

TEST_F(PageOneListEnds, AFailingNameEndsTheLoadToo) {
  PutThreeTags();
  AddContactThatFailsLater(
      [](machine::SimulatedContact& contact) { contact.firstNameFails = true; });
  EXPECT_EQ(OpenWatched().GetItems(kTagListId), Texts{u"Ann Lee 5551234 M"});
  EXPECT_EQ(GetMessages(), Texts{u"Failed to get first name"});
}

TEST_F(PageOneListEnds, AnEntryThatCannotBeOpenedRepeatsTheLineBeforeIt) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", kAnn, u"Home");
  PutTag(u"300", kBob, u"Home");
  UnopenableKey registry(m_machine.registry, u"Software\\Zedra\\Zedra Voxtrel\\200");
  const auto& dialog = OpenOn(m_machine.GetWith(m_machine.files, registry));
  EXPECT_EQ(dialog.GetItems(kTagListId),
            (Texts{u"Ann Lee 5551234 M", u"Ann Lee 5551234 M", u"Bob Ray 5550001 H"}));
  EXPECT_EQ(m_page->GetTags().GetRecord(1)->GetTagName(), u"");
  EXPECT_EQ(m_page->GetTags().GetRecord(1)->GetDisplayText(), u"");
  EXPECT_EQ(m_page->GetTags().GetRecord(2)->GetTagName(), u"300");
  EXPECT_TRUE(GetMessages().empty());
  Close();
}

TEST_F(PageOneListEnds, TheTextOfAnEarlierOpeningIsForgottenWhenThePageOpensAgain) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", kBob, u"Home");
  UnopenableKey registry(m_machine.registry, u"");
  OpenOn(m_machine.GetWith(m_machine.files, registry));
  registry.SetPath(u"Software\\Zedra\\Zedra Voxtrel\\100");
  ShowOnceMore();
  EXPECT_EQ(m_dialog->GetItems(kTagListId), (Texts{u"", u"Bob Ray 5550001 H"}));
  Close();
}

}  // namespace
