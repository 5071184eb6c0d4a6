#include <fstream>
#include <iterator>

#include "storage/registry_file.h"
#include "storage/stored_text.h"
#include "tests/host/cli/command_fixture.h"
#include "tests/support/host_files.h"
#include "tests/support/registry_access.h"

namespace {

using support::BytesOf;
using support::KeyExists;
using support::Utf16Bytes;
using testing::HasSubstr;
using testing::IsEmpty;

const std::u16string kHeader = u"\xFEFFWindows Registry Editor Version 5.00\r\n";

class RegistryCommands : public CommandFixture {
 protected:
  /// Writes a registry file; its path.
  [[nodiscard]] std::string Put(const std::string& name, std::u16string_view text) const {
    const auto bytes = storage::ToUtf16Bytes(text);
    return PutBytes(name, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  }

  [[nodiscard]] std::string PutBytes(const std::string& name, std::string_view bytes) const {
    std::ofstream(Path(name), std::ios::binary) << bytes;
    return Path(name);
  }

  /// What stands in the test's folder, in order.
  [[nodiscard]] std::vector<std::string> GetNames() const { return support::NamesIn(Path("")); }

  [[nodiscard]] static std::string Content(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
};

}  // namespace

TEST_F(RegistryCommands, WhatWasImportedIsInTheStore) {
  const auto file =
      Put("tags.reg", kHeader +
                          u"\r\n[HKEY_LOCAL_MACHINE\\Software\\Zedra\\Zedra Voxtrel\\7]"
                          u"\r\n\"contact\"=hex(1):2d,00,31,00\r\n");
  const auto run = Run({"registry", "import", file});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out + run.err, IsEmpty());
  const auto store = Registry();
  platform::Registry& registry = *store;
  EXPECT_EQ(BytesOf(registry, u"Software\\Zedra\\Zedra Voxtrel\\7", u"contact"), Utf16Bytes(u"-1"));
}

TEST_F(RegistryCommands, ANewStoreIsExportedAsTheInstallationLeavesIt) {
  const auto run = Run({"registry", "export"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  const auto bytes = std::as_bytes(std::span(run.out));
  EXPECT_EQ(storage::FromUtf16Bytes(bytes), kHeader +
                                                u"\r\n[HKEY_LOCAL_MACHINE\\Software]\r\n"
                                                u"\r\n[HKEY_LOCAL_MACHINE\\Software\\Zedra]\r\n"
                                                u"\r\n[HKEY_LOCAL_MACHINE\\Software\\Zedra\\"
                                                u"VoxtrelPEIni]\r\n");
}

TEST_F(RegistryCommands, WhatWasExportedAndImportedElsewhereIsTheSame) {
  const auto file = Put(
      "one.reg", kHeader +
                     u"[HKEY_LOCAL_MACHINE\\Software\\Zedra\\Größe]\r\n\"v\"=hex(1):61,00,00\r\n"
                     u"@=\"x\"\r\n\"n\"=dword:00000007\r\n");
  ASSERT_EQ(Run({"registry", "import", file}).exitCode, 0);
  ASSERT_EQ(Run({"registry", "export", Path("two.reg")}).exitCode, 0);
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"import", Path("two.reg")}, {"export", Path("three.reg")}}) {
    std::vector<std::string> all{VOXTREL_PROGRAM, "--root", Path("elsewhere"), "registry"};
    all.insert(all.end(), command.begin(), command.end());
    ASSERT_EQ(support::RunProgram(all).exitCode, 0);
  }
  EXPECT_EQ(Content(Path("two.reg")), Content(Path("three.reg")));
  EXPECT_GT(Content(Path("two.reg")).size(), 200U);
  EXPECT_EQ(Run({"registry", "export"}).out, Content(Path("two.reg")));
}

TEST_F(RegistryCommands, AMistakeIsReportedWithItsLineAndChangesNothing) {
  const auto file =
      Put("bad.reg", kHeader + u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=hex:01\r\nnonsense\r\n");
  const auto run = Run({"registry", "import", file});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr(file + ":4: this is neither"));
  const auto store = Registry();
  platform::Registry& registry = *store;
  EXPECT_FALSE(KeyExists(registry, u"a"));
}

TEST_F(RegistryCommands, AFileInAnotherEncodingIsNamedAsSuch) {
  const auto file = PutBytes("utf8.reg", "Windows Registry Editor Version 5.00\r\n");
  const auto run = Run({"registry", "import", file});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("save it as UTF-16LE"));
}

TEST_F(RegistryCommands, AFileThatIsNotThereIsNamedSo) {
  const auto run = Run({"registry", "import", Path("missing.reg")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("missing.reg: there is no such file"));
}

TEST_F(RegistryCommands, ADamagedStoreIsReportedAndKept) {
  std::filesystem::create_directory(Path("root"));
  const std::string damaged(5000, 'x');
  const std::string store = NameOfStore(Path("root"));
  std::ofstream(store, std::ios::binary) << damaged;
  const auto file = Put("tags.reg", kHeader + u"[HKEY_LOCAL_MACHINE\\a]\r\n");
  for (const auto& run : {Run({"registry", "import", file}), Run({"registry", "export"})}) {
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("damaged"));
    EXPECT_THAT(run.err, HasSubstr(store));
    EXPECT_THAT(run.out, IsEmpty());
  }
  EXPECT_EQ(Content(store), damaged);
}

TEST_F(RegistryCommands, AnExportThatCannotBeWrittenLeavesTheEarlierOne) {
  std::filesystem::create_directory(Path("full"));
  const auto run = Run({"registry", "export", Path("full")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("cannot be written"));
  EXPECT_EQ(GetNames(), std::vector<std::string>({"full"}));
}

TEST_F(RegistryCommands, AnExportTouchesNoFileButItsOwn) {
  static_cast<void>(PutBytes("a.reg.new", "mine"));
  ASSERT_EQ(Run({"registry", "export", Path("a.reg")}).exitCode, 0);
  EXPECT_EQ(Content(Path("a.reg.new")), "mine");
  EXPECT_EQ(GetNames(), std::vector<std::string>({"a.reg", "a.reg.new"}));
}

TEST_F(RegistryCommands, AnExportTakesTheLongestNameThatAFileCanHave) {
  const std::string name = std::string(251, 'x') + ".reg";
  for (int i = 0; i < 2; ++i) {
    const auto run = Run({"registry", "export", Path(name)});
    EXPECT_EQ(run.exitCode, 0) << run.err;
  }
  EXPECT_EQ(GetNames(), std::vector<std::string>({name}));
}

TEST_F(RegistryCommands, AnExportTakesNoNameThatAnotherCouldHoldOrPlant) {
  static_cast<void>(PutBytes("mine", "private"));
  std::filesystem::create_symlink("mine", Path(".voxtrel-export-1"));
  ASSERT_EQ(Run({"registry", "export", Path("a.reg")}).exitCode, 0);
  ASSERT_EQ(Run({"registry", "export", Path("a.reg")}).exitCode, 0);
  EXPECT_EQ(Content(Path("a.reg")), Run({"registry", "export"}).out);
  EXPECT_EQ(Content(Path("mine")), "private");
  EXPECT_EQ(GetNames(), std::vector<std::string>({".voxtrel-export-1", "a.reg", "mine"}));
}

TEST_F(RegistryCommands, ADashIsStandardOutput) {
  const auto run = Run({"registry", "export", "-"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out, Run({"registry", "export"}).out);
  EXPECT_FALSE(std::filesystem::exists("-"));
}

TEST_F(RegistryCommands, ImportNeedsAFile) { EXPECT_EQ(Run({"registry", "import"}).exitCode, 2); }

TEST_F(RegistryCommands, KeysOfOtherHivesAreCountedAndTheRestIsMade) {
  const std::u16string one = kHeader +
                             u"[HKEY_CURRENT_USER\\Software\\Zedra\\a]\r\n\"v\"=hex:01\r\n"
                             u"[HKEY_LOCAL_MACHINE\\Software\\Zedra\\b]\r\n";
  const std::string first = Put("one.reg", one);
  const auto said = Run({"registry", "import", first});
  EXPECT_EQ(said.exitCode, 0) << said.err;
  EXPECT_EQ(said.out, "Passed over a key that is not below HKEY_LOCAL_MACHINE\n");
  const std::string second = Put("two.reg", one + u"[HKEY_USERS\\c]\r\n");
  EXPECT_EQ(RunJson({"registry", "import", second}, 0),
            (nlohmann::json{{"result", 0}, {"passedOver", 2}}));
  EXPECT_EQ(Run({"registry", "import", second}).out,
            "Passed over 2 keys that are not below HKEY_LOCAL_MACHINE\n");
  const auto store = Registry();
  platform::Registry& registry = *store;
  EXPECT_TRUE(support::KeyExists(registry, u"Software\\Zedra\\b"));
  EXPECT_FALSE(support::KeyExists(registry, u"Software\\Zedra\\a"));
}

TEST_F(RegistryCommands, AFileOfVersionFourIsImported) {
  const auto file =
      PutBytes("old.reg",
               "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\Zedra\\Zedra "
               "Dialer]\r\n\"Com_port\"=\"COM7:\"\r\n");
  const auto run = Run({"registry", "import", file});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(RunJson({"connection", "show"}, 0)["port"], "COM7:");
}
