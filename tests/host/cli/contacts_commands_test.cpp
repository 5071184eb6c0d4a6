#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/host/cli/command_fixture.h"
#include "tests/support/briefly.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"

namespace {

using nlohmann::json;

constexpr const char* kCards =
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:a\r\nN:Lee;Ann;;;\r\nTEL;TYPE=HOME:555 99\r\n"
    "TEL;TYPE=CELL:5551234\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Nobody;;;;\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:b\r\nN:;;;;\r\nORG:Acme\r\nTEL;TYPE=WORK:7\r\nEND:VCARD\r\n";

/// Without a desktop session: no server is ever asked.
class ContactsCommands : public CommandFixture {
 protected:
  [[nodiscard]] support::ProgramRun Contacts(std::vector<std::string> arguments) const {
    std::vector<std::string> all{VOXTREL_PROGRAM, "--root", Path("root")};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return support::RunProgram(all, {"DBUS_SESSION_BUS_ADDRESS=unix:path=" + Path("no-bus"),
                                     "HOME=" + Path(""), "LC_ALL=C.UTF-8"});
  }

  std::string Put(const std::string& name, const std::string& content) const {
    const std::filesystem::path path = Path(name);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
    return path.string();
  }

  [[nodiscard]] json List(std::vector<std::string> arguments = {}) const {
    arguments.insert(arguments.end(), {"contacts", "list", "--json"});
    const auto run = Contacts(arguments);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.err, "");
    return json::parse(run.out, nullptr, false);
  }

  void WriteTag(std::int32_t oid) const {
    const auto store = Registry();
    platform::Registry& registry = *store;
    const std::string digits = std::to_string(oid);
    ASSERT_EQ(support::ErrorOf(support::PutText(registry, u"Software\\Zedra\\Zedra Voxtrel\\100",
                                                u"contact",
                                                std::u16string(digits.begin(), digits.end()))),
              std::nullopt);
  }
};

TEST_F(ContactsCommands, ListShowsBothComboBoxes) {
  const json list = List({"--contacts", Put("all.vcf", kCards)});
  ASSERT_EQ(list.size(), 2U);
  EXPECT_EQ(list[0]["index"], 1);
  EXPECT_NE(list[0]["oid"], 0);
  EXPECT_EQ(list[0]["name"], "Lee Ann");
  // In the order of their texts, and not in that in which they are read.
  EXPECT_EQ(list[0]["numbers"], json::parse(R"([{"kind":"Home","text":"555 99 Home"},
                                                {"kind":"Mobile","text":"5551234 Mobile"}])"));
  EXPECT_EQ(list[1]["index"], 2);
  EXPECT_EQ(list[1]["name"], "Acme");
  EXPECT_NE(list[1]["oid"], list[0]["oid"]);
}

TEST_F(ContactsCommands, ListIsReadableWithoutJson) {
  const auto run = Contacts({"--contacts", Put("all.vcf", kCards), "contacts", "list"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out,
            "   1  Lee Ann\n        555 99 Home\n        5551234 Mobile\n"
            "   2  Acme\n        7 Business\n");
}

TEST_F(ContactsCommands, WhatIsDamagedIsNamedWithFileAndLineAndTheRestIsListed) {
  const std::string file = Put("all.vcf", std::string(kCards) + "BEGIN:VCARD\r\nN:Torn;;;;\r\n");
  const auto run = Contacts({"--contacts", file, "contacts", "list", "--json"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.err, file + ":19: the card that begins here has no end and is passed over\n");
  const json list = json::parse(run.out, nullptr, false);
  ASSERT_TRUE(list.is_array());
  EXPECT_EQ(list.size(), 2U);
}

TEST_F(ContactsCommands, ALinkThatLeadsNowhereCostsItsOwnFileAndIsNamed) {
  Put("cards/a.vcf", kCards);
  std::filesystem::create_symlink(Path("nowhere.vcf"), Path("cards/b.vcf"));
  const auto run = Contacts({"--contacts", Path("cards"), "contacts", "list", "--json"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.err, Path("cards/b.vcf") + ": the file leads nowhere and is passed over\n");
  EXPECT_EQ(json::parse(run.out, nullptr, false).size(), 2U);
}

TEST_F(ContactsCommands, LinksInACircleCostThemselvesAloneAndAreNamed) {
  Put("cards/a.vcf", kCards);
  std::filesystem::create_symlink(Path("cards/c.vcf"), Path("cards/b.vcf"));
  std::filesystem::create_symlink("b.vcf", Path("cards/c.vcf"));
  const auto run = Contacts({"--contacts", Path("cards"), "contacts", "list", "--json"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.err, Path("cards/b.vcf") + ": the link cannot be followed and is passed over\n" +
                         Path("cards/c.vcf") +
                         ": the link cannot be followed and is passed over\n");
  EXPECT_EQ(json::parse(run.out, nullptr, false).size(), 2U);
}

TEST_F(ContactsCommands, AnotherProgramsValueInTheMapOfContactsIsNamedAndStopsNothing) {
  Put("root/contacts.vcf", kCards);
  const json list = List();
  {
    const auto store = Registry();
    platform::Registry& registry = *store;
    constexpr std::u16string_view kBook = u"Software\\Zedra\\Voxtrel Contacts\\1";
    ASSERT_EQ(
        support::ErrorOf(support::PutText(registry, kBook, u"source", u"vcard:\\contacts.vcf")),
        std::nullopt);
    ASSERT_EQ(support::ErrorOf(support::Put(registry, kBook, u"0", platform::RegistryType::kBinary,
                                            std::vector<std::byte>(19))),
              std::nullopt);
  }
  const auto run = Contacts({"contacts", "list", "--json"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.err,
            "Software\\Zedra\\Voxtrel Contacts\\1: the value \"0\" ends with 19 bytes that are no "
            "entry; that is passed over\n");
  EXPECT_EQ(json::parse(run.out, nullptr, false), list);
}

TEST_F(ContactsCommands, AListLeavesNoTraceNotEvenARootFolder) {
  static_cast<void>(List({"--contacts", Put("all.vcf", kCards)}));
  EXPECT_FALSE(std::filesystem::exists(Path("root")));
}

TEST_F(ContactsCommands, TheAddressBookIsRememberedByACommandThatMayChangeSomething) {
  const std::string book = Put("all.vcf", kCards);
  const json first = List({"--contacts", book});
  EXPECT_EQ(Contacts({"contacts", "list"}).exitCode, 1) << "A list remembers nothing.";
  ASSERT_EQ(Contacts({"--contacts", book, "reinit"}).exitCode, 0);
  EXPECT_EQ(List(), first);
}

TEST_F(ContactsCommands, WithoutADesktopTheFileInTheRootFolderIsRead) {
  Put("root/contacts.vcf", kCards);
  EXPECT_EQ(List().size(), 2U);
}

TEST_F(ContactsCommands, ANewcomerReadsWhereContactsAreLookedFor) {
  const auto run = Contacts({"contacts", "list", "--json"});
  EXPECT_EQ(run.exitCode, 1);
  ExpectOnlyAnError(run);
  EXPECT_THAT(run.err, testing::StartsWith("voxtrel: there are no contacts: "));
  EXPECT_THAT(run.err, testing::HasSubstr(NameOfContacts(Path("root"))));
}

TEST_F(ContactsCommands, ADesktopThatDoesNotAnswerIsReported) {
  const auto run = Contacts({"--contacts", "eds", "contacts", "list"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, testing::HasSubstr("do not answer"));
}

TEST_F(ContactsCommands, WithoutADesktopSessionThatIsTheReason) {
  const auto run = support::RunProgram(
      {"env", "-u", "DBUS_SESSION_BUS_ADDRESS", "-u", "DISPLAY", VOXTREL_PROGRAM, "--root",
       Path("root"), "--contacts", "eds", "contacts", "list"},
      {"XDG_RUNTIME_DIR=" + Path("none"), "HOME=" + Path(""), "LC_ALL=C.UTF-8"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, testing::HasSubstr("do not answer (no desktop session is running); choose"));
}

/// The program alone, as in a folder for programs.
class MovedProgram : public ContactsCommands {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(Path("bin"));
    std::filesystem::create_directories(Path("lib/voxtrel"));
    std::filesystem::copy_file(VOXTREL_PROGRAM, Path("bin/voxtrel"));
  }

  [[nodiscard]] support::ProgramRun ListOfTheDesktop() const {
    return support::RunProgram(
        {Path("bin/voxtrel"), "--root", Path("root"), "--contacts", "eds", "contacts", "list"},
        {"DBUS_SESSION_BUS_ADDRESS=unix:path=" + Path("no-bus"), "HOME=" + Path(""),
         "LC_ALL=C.UTF-8"});
  }
};

TEST_F(MovedProgram, ADesktopLibraryThatIsMissingIsLikeADesktopThatDoesNotAnswer) {
  const auto run = ListOfTheDesktop();
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, testing::HasSubstr("Zedra Voxtrel: Failed to logon to Pocket Outlook\n"));
  EXPECT_THAT(run.err, testing::HasSubstr("do not answer (voxtrel-ebook.so is missing); choose"));
}

TEST_F(MovedProgram, ADesktopLibraryThatCannotBeLoadedIsLikeADesktopThatDoesNotAnswer) {
  Put("lib/voxtrel/voxtrel-ebook.so", "no library at all, and long enough to look like one");
  const auto run = ListOfTheDesktop();
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err,
              testing::HasSubstr("do not answer (" + Path("lib/voxtrel/voxtrel-ebook.so")));
}

TEST_F(MovedProgram, TheDesktopLibraryIsFoundWhereItIsInstalled) {
  std::filesystem::copy_file(VOXTREL_DESKTOP_BOOKS, Path("lib/voxtrel/voxtrel-ebook.so"));
  const auto run = ListOfTheDesktop();
  EXPECT_EQ(run.exitCode, 1);
  // What refuses now is the session bus.
  EXPECT_THAT(run.err, testing::HasSubstr("do not answer (Could not connect"));
}

TEST_F(ContactsCommands, AnotherAddressBookIsRefusedWhileTagsNeedTheFirst) {
  const std::string book = Put("all.vcf", kCards);
  ASSERT_EQ(Contacts({"--contacts", book, "reinit"}).exitCode, 0);
  const json list = List();
  WriteTag(list[0]["oid"].get<std::int32_t>());
  const auto run = Contacts({"--contacts", Put("other.vcf", kCards), "contacts", "list"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, testing::HasSubstr("voice tags belong to contacts"));
  EXPECT_EQ(List(), list);
}

TEST_F(ContactsCommands, FiveThousandCardsAreListed) {
  SKIP_IF_BRIEF();
  std::string cards;
  for (int i = 1; i <= 5000; ++i) {
    const std::string text = std::to_string(i);
    cards += "BEGIN:VCARD\nVERSION:4.0\nUID:urn:uuid:" + text + "\nFN:Person " + text +
             "\nN:Family" + text + ";Person;;;\nTEL;VALUE=uri;TYPE=\"cell,voice\":tel:+1-555-" +
             text + "\nTEL;TYPE=work:" + text + "\nPHOTO:data:image/jpeg;base64," +
             std::string(2000, 'A') + "\nEND:VCARD\n";
  }
  const std::string file = Put("all.vcf", cards);
  const json list = List({"--contacts", file});
  ASSERT_EQ(list.size(), 5000U);
  EXPECT_EQ(list[4999]["name"], "Family5000 Person");
  EXPECT_EQ(list[4999]["numbers"][0]["text"], "+1-555-5000 Mobile");
  ASSERT_EQ(Contacts({"--contacts", file, "reinit"}).exitCode, 0);
  EXPECT_EQ(List()[4999]["oid"], list[4999]["oid"]);
}

}  // namespace
