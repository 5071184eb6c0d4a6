#include "tests/host/cli/run_on_terminal.h"
#include "tests/host/cli/tags_fixture.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class OnATerminal : public TagsFixture {
 protected:
  [[nodiscard]] support::ProgramRun Answer(const std::string& typed,
                                           std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {VOXTREL_PROGRAM, "--root", Path("root")});
    return RunOnTerminal(arguments, typed);
  }
};

TEST_F(OnATerminal, TheAnswerToAQuestionCounts) {
  PutThreeTags();
  const auto refused = Answer("n\n", {"tags", "delete", "200"});
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_THAT(refused.out, HasSubstr("Attention: The tag will be deleted! [y/N]\r\n"));
  EXPECT_TRUE(HasEntry("200"));
  EXPECT_EQ(Answer("\n", {"tags", "delete", "200"}).exitCode, 1) << "Nothing said is no.";
  const auto agreed = Answer("y\n", {"tags", "delete", "200"});
  EXPECT_EQ(agreed.exitCode, 0) << agreed.out;
  EXPECT_THAT(GetNames(), ElementsAre("100", "300"));
}

TEST_F(OnATerminal, AnExportToItIsWrongUsage) {
  const auto run = Answer("", {"registry", "export"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.out, HasSubstr("a terminal cannot show a registry file"));
}

}  // namespace
