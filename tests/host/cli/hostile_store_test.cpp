#include <sqlite3.h>

#include <filesystem>

#include "tests/backends/sqlite/raw_database.h"
#include "tests/host/cli/tags_fixture.h"

namespace {

namespace fs = std::filesystem;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;

/// Settings as no registry makes them, but another program can.
class HostileStore : public TagsFixture {
 protected:
  HostileStore() { PutThreeTags(); }

  [[nodiscard]] fs::path Store() const { return NameOfStore(Path("root")); }

  void Execute(const std::string& sql) const {
    ASSERT_EQ(support::RawDatabase(Store()).Execute(sql), SQLITE_OK) << sql;
  }
  /// Makes a key next to the tags; `name` is an expression of the library.
  void PutKeyAmongTags(const std::string& name) const {
    Execute("INSERT INTO registry_key (parent_id, name, folded_name) SELECT parent_id, " + name +
            ", " + name + " FROM registry_key WHERE name = '100'");
  }
  [[nodiscard]] std::vector<std::vector<std::string>> Commands() const {
    return {{"tags", "list"},    {"tags", "list", "--json"},
            {"tags", "test"},    {"contacts", "list"},
            {"status"},          {"check"},
            {"check", "--json"}, {"registry", "export", Path("a.reg")},
            {"reinit"},          {"--yes", "tags", "delete", "100"}};
  }
  /// Each command ends by itself, and says why if it did not do what it was asked for.
  void ExpectNoCrash() const {
    for (const std::vector<std::string>& command : Commands()) {
      const auto run = Run(command);
      EXPECT_THAT(run.exitCode, AnyOf(0, 1)) << command.front() << ' ' << command.back();
      EXPECT_TRUE(run.exitCode == 0 || !run.err.empty()) << command.front();
    }
  }
};

TEST_F(HostileStore, AKeyWithoutANameBelowTheRootIsNamedAndHidesNoTag) {
  Execute("INSERT INTO registry_key (parent_id, name, folded_name) VALUES (1, '', '')");
  const auto exported = Run({"registry", "export"});
  EXPECT_EQ(exported.exitCode, 1);
  EXPECT_THAT(exported.err, HasSubstr("cannot be used: (without a name)"));
  const auto checked = Run({"check"});
  EXPECT_EQ(checked.exitCode, 1);
  EXPECT_THAT(checked.out, HasSubstr("cannot be used: (without a name)"));
  EXPECT_EQ(GetNames().size(), 3U);
  ExpectNoCrash();
}

TEST_F(HostileStore, AKeyWithoutANameAmongTheTagsIsNamed) {
  PutKeyAmongTags("''");
  for (const std::string command : {"check", "status"}) {
    const auto run = Run({command});
    EXPECT_THAT(run.out + run.err,
                HasSubstr(R"(cannot be used: Software\Zedra\Zedra Voxtrel\(without a name))"));
  }
  ExpectNoCrash();
}

TEST_F(HostileStore, AKeyThatAnotherProgramNamedBadlyIsNamedByEveryCommandThatItHinders) {
  PutKeyAmongTags("'two' || char(10) || 'lines'");
  constexpr const char* kNamed = R"(cannot be used: Software\Zedra\Zedra Voxtrel\two\nlines)";
  for (const std::vector<std::string>& command :
       std::vector<std::vector<std::string>>{{"check"},
                                             {"tags", "list"},
                                             {"registry", "export", Path("a.reg")},
                                             {"contacts", "list"},
                                             {"status"}}) {
    const auto run = Run(command);
    EXPECT_THAT(run.out + run.err, HasSubstr(kNamed)) << command.front();
    EXPECT_THAT(run.out + run.err, HasSubstr(Store().native())) << command.front();
  }
  const nlohmann::json findings = RunJson({"check"}, 1)["findings"];
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_EQ(findings[0]["problem"], "registry-unreadable");
}

TEST_F(HostileStore, AKeyThatNoPathCanNameAmongTheTagsHindersNoCommand) {
  for (const std::string name : {"''", "'bell' || char(7)"}) {
    PutKeyAmongTags(name);
    for (const std::vector<std::string>& command :
         std::vector<std::vector<std::string>>{{"contacts", "list"}, {"tags", "list"}}) {
      const auto run = Run(command);
      EXPECT_EQ(run.exitCode, 0) << run.err;
      EXPECT_THAT(run.out, HasSubstr("5551234"));
      EXPECT_THAT(run.err, HasSubstr(R"(cannot be used: Software\Zedra\Zedra Voxtrel\)"));
    }
  }
  EXPECT_EQ(Run({"--yes", "tags", "delete", "200"}).exitCode, 0);
  EXPECT_FALSE(HasEntry("200"));
}

TEST_F(HostileStore, DeleteAllLeavesAKeyThatNoPathCanNameAndNothingElse) {
  PutKeyAmongTags("''");
  PutKeyAmongTags("'bell' || char(7)");
  for (int i = 0; i < 2; ++i) {
    const auto run = Run({"--yes", "tags", "delete-all"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.err, HasSubstr(R"(Zedra Voxtrel\(without a name))"));
    EXPECT_THAT(run.err, Not(HasSubstr("in use")));
    for (const std::string tag : {"100", "200", "300"}) {
      EXPECT_FALSE(HasEntry(tag) || fs::exists(Wave(tag)) || fs::exists(Template(tag))) << tag;
    }
  }
  const auto trash = nlohmann::json::parse(Run({"tags", "trash", "--json"}).out);
  EXPECT_EQ(trash.size(), 3U);
  EXPECT_EQ(Run({"tags", "restore", "--last"}).exitCode, 0);
  EXPECT_TRUE(HasEntry("100") && HasFiles("100"));
}

TEST_F(HostileStore, AnEntryThatCannotBeReadIsNamedAndShowsNoOtherTagsText) {
  Execute(
      "UPDATE registry_value SET data = zeroblob (5000000) WHERE folded_name = 'contact' AND "
      "key_id = (SELECT id FROM registry_key WHERE name = '200')");
  const auto run = Run({"tags", "list"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("        200  200\n"));
  EXPECT_THAT(run.err, HasSubstr("the entry of tag 200 cannot be read"));
  ExpectNoCrash();
}

TEST_F(HostileStore, ANameThatIsTooLongForATagIsSaid) {
  PutKeyAmongTags("'1234567890123456789012345678901'");
  const auto run = Run({"tags", "list"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("Learned commands: 4\n"));
  EXPECT_THAT(run.err, HasSubstr("the name 1234567890123456789012345678901 is too long for a tag"));
  const auto reinit = Run({"reinit"});
  EXPECT_EQ(reinit.exitCode, 1);
  EXPECT_THAT(reinit.out, Not(HasSubstr("There are no voice tags")));
  ExpectNoCrash();
}

TEST_F(HostileStore, RowsThatBelongToNothingAndCirclesAreNotMet) {
  Execute(
      "PRAGMA foreign_keys = OFF;"
      "INSERT INTO registry_key VALUES (900, 901, 'a', 'a'), (901, 900, 'b', 'b'),"
      "  (902, 902, 'self', 'self'), (903, 7777, 'orphan', 'orphan');"
      "INSERT INTO registry_value (key_id, name, folded_name, type, data)"
      "  VALUES (8888, 'v', 'v', 1, x'00')");
  EXPECT_EQ(GetNames().size(), 3U);
  EXPECT_EQ(Run({"check"}).exitCode, 0);
  EXPECT_EQ(Run({"registry", "export", Path("a.reg")}).exitCode, 0);
  ExpectNoCrash();
}

TEST_F(HostileStore, ARootWithinACircleIsDamage) {
  Execute("UPDATE registry_key SET parent_id = (SELECT max(id) FROM registry_key) WHERE id = 1");
  EXPECT_THAT(Run({"tags", "list"}).err, HasSubstr("damaged"));
  ExpectNoCrash();
}

TEST_F(HostileStore, NamesAndValuesThatAreNoTextEndNothing) {
  // Tables without the rules of ours, whose names may be anything.
  Execute(
      "PRAGMA foreign_keys = OFF; PRAGMA writable_schema = ON;"
      "UPDATE sqlite_schema SET sql = replace (replace (replace (sql, 'NOT NULL', ''), "
      "'CHECK (typeof (data) = ''blob'')', ''), 'CHECK (type BETWEEN 0 AND 4294967295)', '') "
      "WHERE type = 'table'; PRAGMA writable_schema = RESET");
  PutKeyAmongTags("NULL");
  PutKeyAmongTags("x'310032'");
  PutKeyAmongTags("7");
  Execute("UPDATE registry_value SET name = NULL, data = 7, type = 'x' WHERE id % 2 = 0");
  Execute("UPDATE registry_value SET name = x'610062', data = NULL WHERE id % 2 = 1");
  ExpectNoCrash();
}

TEST_F(HostileStore, OfEachKindIsNeverAStoreWithoutTags) {
  const std::string good = Content(Store());
  struct {
    const char* sql;
    const char* reason;
  } const stores[] = {{"PRAGMA user_version = 2", "later version"},
                      {"PRAGMA application_id = 1", "damaged"},
                      {"DROP TABLE registry_value", "damaged"}};
  for (const auto& store : stores) {
    support::WriteFileContent(Store(), good);
    Execute(store.sql);
    for (const std::vector<std::string>& command :
         std::vector<std::vector<std::string>>{{"tags", "list"},
                                               {"tags", "list", "--json"},
                                               {"tags", "test"},
                                               {"reinit"},
                                               {"reinit", "--force"},
                                               {"--yes", "tags", "delete-all"}}) {
      const auto run = Run(command);
      EXPECT_EQ(run.exitCode, 1) << command.back() << store.sql;
      if (command.back() == "--json") {
        ExpectOnlyAnError(run);
      } else {
        EXPECT_EQ(run.out, "") << command.back() << store.sql;
      }
      EXPECT_THAT(run.err, HasSubstr(store.reason)) << command.back();
    }
  }
  fs::remove(Store());
  fs::create_directory(Store());
  EXPECT_THAT(Run({"tags", "list"}).err, HasSubstr("cannot be reached"));
  EXPECT_TRUE(HasFiles("100"));
}

}  // namespace
