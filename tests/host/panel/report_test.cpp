#include "host/panel/report.h"

#include <gtest/gtest.h>

namespace {

using panel::FromBytes;
using panel::ToBytes;

panel::LibraryReport MakeReport() {
  return {QStringLiteral("a problem"),
          {{QStringLiteral("Ångström"), QByteArray("<svg/>")}, {QString(), QByteArray()}}};
}

TEST(LibraryReport, ComesBackFromItsBytes) {
  const auto report = FromBytes(ToBytes(MakeReport()));
  ASSERT_TRUE(report);
  EXPECT_EQ(report->problem, QStringLiteral("a problem"));
  ASSERT_EQ(report->applets.size(), 2U);
  EXPECT_EQ(report->applets[0].name, QStringLiteral("Ångström"));
  EXPECT_EQ(report->applets[0].icon, QByteArray("<svg/>"));
  EXPECT_TRUE(report->applets[1].name.isEmpty());
}

TEST(LibraryReport, IsNoneWhereverItIsCutOff) {
  const QByteArray bytes = ToBytes(MakeReport());
  for (qsizetype count = 0; count < bytes.size(); ++count) {
    EXPECT_FALSE(FromBytes(bytes.left(count))) << count;
  }
}

TEST(LibraryReport, IsNoneWithMoreBehindIt) {
  EXPECT_FALSE(FromBytes(ToBytes(MakeReport()) + 'x'));
}

TEST(LibraryReport, IsNoneOfAnythingElse) {
  EXPECT_FALSE(FromBytes("noise on standard output\n"));
  EXPECT_FALSE(FromBytes(QByteArray(64, '\xff')));
}

TEST(LibraryReport, HasNoControlCharactersInItsTexts) {
  const auto report = FromBytes(ToBytes({{}, {{QStringLiteral("A\a\nB\u202e"), {}}}}));
  ASSERT_TRUE(report);
  EXPECT_EQ(report->applets[0].name, QStringLiteral("A B"));
}

}  // namespace
