#include "host/panel/error_lines.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

class ErrorLines : public testing::Test {
 protected:
  std::vector<QByteArray> m_passedOn;
  panel::ErrorLines m_lines{"fox.cpl: ",
                            [this](const QByteArray& line) { m_passedOn.push_back(line); }};
};

TEST_F(ErrorLines, KeepsTheLastLineThatIsMeantForTheUserAndPassesTheOthersOn) {
  m_lines.Take("Qt: a warning\nfox.cpl: first\nfox.c");
  m_lines.Take("pl: last\nmore");
  EXPECT_EQ(m_lines.GetMessage(), QStringLiteral("last"));
  EXPECT_EQ(m_passedOn, std::vector<QByteArray>{"Qt: a warning"});
  m_lines.End();
  EXPECT_EQ(m_passedOn.back(), "more");
}

TEST_F(ErrorLines, OfALineOnlyTheFirst4096BytesCountInWhateverPiecesItArrives) {
  const QByteArray line = "fox.cpl: " + QByteArray(5000, 'x') + "fox.cpl: not a line of its own";
  for (const qsizetype piece : {line.size(), qsizetype{4097}, qsizetype{1000}, qsizetype{1}}) {
    for (qsizetype at = 0; at < line.size(); at += piece) {
      m_lines.Take(line.mid(at, piece));
    }
    m_lines.Take("\n");
    EXPECT_EQ(m_lines.GetMessage(), QString(4096 - 9, QLatin1Char('x'))) << piece;
  }
  EXPECT_TRUE(m_passedOn.empty());
}

TEST_F(ErrorLines, WithoutAnyLineThereIsNoMessage) {
  m_lines.Take("");
  m_lines.End();
  EXPECT_TRUE(m_lines.GetMessage().isEmpty());
  EXPECT_TRUE(m_passedOn.empty());
}

}  // namespace
