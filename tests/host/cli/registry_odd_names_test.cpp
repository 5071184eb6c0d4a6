#include <fstream>
#include <iterator>

#include "tests/backends/sqlite/raw_database.h"
#include "tests/host/cli/command_fixture.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

/// Names and lengths that only another program can have given.
class RegistryCommandsWithOddNames : public CommandFixture {
 protected:
  RegistryCommandsWithOddNames() {
    std::ofstream(Path("made.reg"), std::ios::binary)
        << "REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\Software\\Zedra]\r\n";
    EXPECT_EQ(Run({"registry", "import", Path("made.reg")}).exitCode, 0);
    EXPECT_EQ(Run({"registry", "export", Path("before.reg")}).exitCode, 0);
    EXPECT_EQ(Run({"registry", "export", Path("tags.reg")}).exitCode, 0);
  }

  /// `name` and `data` are expressions of the library.
  void PutValue(const std::string& name, const std::string& data = "x'0000'") {
    ASSERT_EQ(Database().Execute(
                  "INSERT INTO registry_value (key_id, name, folded_name, type, data) "
                  "SELECT id, " +
                  name + ", " + name + ", 1, " + data + " FROM registry_key WHERE name = 'Zedra'"),
              0);
  }

  /// Fails and names `what`, and leaves the file that was there.
  void ExpectNoExport(const std::string& what) const {
    const auto run = Run({"registry", "export", Path("tags.reg")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr(what));
    EXPECT_EQ(Content(Path("tags.reg")), Content(Path("before.reg")));
    const auto shown = Run({"registry", "export"});
    EXPECT_EQ(shown.exitCode, 1);
    EXPECT_THAT(shown.out, IsEmpty());
  }

  [[nodiscard]] support::RawDatabase Database() const {
    return support::RawDatabase(NameOfStore(Path("root")));
  }

  [[nodiscard]] static std::string Content(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
};

TEST_F(RegistryCommandsWithOddNames, AValueNameWithAZeroIsNamedAndNotExported) {
  PutValue("CAST (x'6f0064000000640079000000' AS TEXT)");
  ExpectNoExport("Software\\Zedra: od\\x00dy\\x00");
}

TEST_F(RegistryCommandsWithOddNames, AValueNameThatIsTooLongIsNamedAndNotExported) {
  PutValue("printf('%.*c', 16384, 'n')");
  ExpectNoExport("Software\\Zedra: nnnn");
}

TEST_F(RegistryCommandsWithOddNames, AValueThatIsTooLongIsNamedAndNotExported) {
  PutValue("'long'", "zeroblob(1048577)");
  ExpectNoExport("Software\\Zedra: long (longer than can be read)");
}

TEST_F(RegistryCommandsWithOddNames, AnEmptyKeyNameEndsTheExportWithAMessage) {
  ASSERT_EQ(Database().Execute(
                "INSERT INTO registry_key (parent_id, name, folded_name) VALUES (1, '', '')"),
            0);
  ExpectNoExport("(without a name)");
}

}  // namespace
