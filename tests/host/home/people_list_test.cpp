#include "host/home/people_list.h"

#include <gmock/gmock.h>

#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QTest>

#include "host/home/avatar.h"
#include "tests/host/home/page_fixture.h"

namespace {

using testing::ElementsAre;

/// The list with real keys and clicks. Its choices are noted.
class PeopleList : public testing::Test {
 protected:
  PeopleList() {
    m_list.resize(360, 500);
    m_list.show();
    m_list.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&m_list));
    m_list.Begin();
  }
  void Show(home::Shelf shelf = home_test::MakePeople()) {
    m_list.Show(std::make_shared<home::Shelf>(std::move(shelf)));
  }
  [[nodiscard]] QListView& View() { return *m_list.findChild<QListView*>(); }
  [[nodiscard]] QLineEdit& Search() { return *m_list.findChild<QLineEdit*>(); }
  [[nodiscard]] QStringList Rows() {
    QStringList rows;
    for (int row = 0; row < View().model()->rowCount(); ++row) {
      rows.append(View().model()->index(row, 0).data(Qt::AccessibleTextRole).toString());
    }
    return rows;
  }
  [[nodiscard]] std::string Notice(const char* part) {
    const auto* const label = m_list.findChild<QLabel*>(QLatin1String(part));
    return label->isVisible() ? label->text().toStdString() : std::string();
  }

  std::vector<std::u16string> m_chosen;
  int m_setUps = 0;
  home::PeopleList m_list{[this](const home::Person& person, const home::Number& number) {
                            m_chosen.push_back(person.name + u" " + number.kind);
                          },
                          [this] { ++m_setUps; }, nullptr};
};

TEST_F(PeopleList, FindsWordsOfNameCompanyAndNumberInAnyOrder) {
  Show();
  EXPECT_EQ(Rows().size(), 7);
  Search().setText(QStringLiteral("works berg 0301"));
  EXPECT_EQ(Rows().size(), 0);
  Search().setText(QStringLiteral("works 4930555 anna"));
  ASSERT_EQ(Rows().size(), 1);
  EXPECT_TRUE(Rows()[0].startsWith(QStringLiteral("Anna Berg, Harbour Works, Home, ")));
  Search().setText(QStringLiteral("elodie"));
  EXPECT_EQ(Rows().size(), 1);
}

TEST_F(PeopleList, SaysWhichNumbersAreTaught) {
  Show();
  EXPECT_TRUE(Rows()[0].endsWith(QStringLiteral(", Already taught")));
  EXPECT_FALSE(Rows()[1].contains(QStringLiteral("taught")));
}

TEST_F(PeopleList, IsMovedThroughByArrowsAndChosenFromByEnterFromTheSearch) {
  Show();
  QTest::keyClicks(&Search(), QStringLiteral("anna"));
  EXPECT_EQ(View().currentIndex().row(), 0);
  QTest::keyClick(&Search(), Qt::Key_Down);
  QTest::keyClick(&Search(), Qt::Key_Down);
  QTest::keyClick(&Search(), Qt::Key_Up);
  EXPECT_TRUE(Search().hasFocus());
  QTest::keyClick(&Search(), Qt::Key_Return);
  EXPECT_THAT(m_chosen, ElementsAre(u"Anna Berg Home"));
}

TEST_F(PeopleList, IsChosenFromByAClick) {
  Show();
  QTest::mouseClick(View().viewport(), Qt::LeftButton, {},
                    View().visualRect(View().model()->index(6, 0)).center());
  EXPECT_THAT(m_chosen, ElementsAre(u"Robert Mobile"));
}

TEST_F(PeopleList, ChoosesNothingIfNobodyIsFound) {
  Show();
  Search().setText(QStringLiteral("zzz"));
  QTest::keyClick(&Search(), Qt::Key_Return);
  EXPECT_TRUE(m_chosen.empty());
  EXPECT_EQ(Notice("emptyTitle"), "Nobody matches “zzz”.");
  QTest::mouseClick(m_list.findChild<QPushButton*>(), Qt::LeftButton);
  EXPECT_EQ(Rows().size(), 7);
}

TEST_F(PeopleList, SaysWhyNobodyIsThereAndLeadsToTheSetUp) {
  EXPECT_EQ(Notice("emptyTitle"), "Reading the contacts…");
  home::Shelf shelf;
  shelf.peopleProblem = u"The address book is broken.";
  Show(shelf);
  EXPECT_EQ(Notice("emptyTitle"), "There is nobody to teach yet");
  EXPECT_EQ(Notice("emptyAdvice"), "The address book is broken.");
  QTest::mouseClick(m_list.findChild<QPushButton*>(), Qt::LeftButton);
  EXPECT_EQ(m_setUps, 1);
  Show({});
  EXPECT_EQ(Notice("emptyAdvice"), "None of your contacts has a telephone number.");
}

TEST_F(PeopleList, KeepsSearchAndPlaceIfTheStoreHasChanged) {
  Show();
  Search().setText(QStringLiteral("anna"));
  QTest::keyClick(&Search(), Qt::Key_Down);
  Show();
  EXPECT_EQ(Rows().size(), 3);
  EXPECT_EQ(View().currentIndex().row(), 1);
}

TEST_F(PeopleList, HasRowsThatAFingerHits) {
  Show();
  EXPECT_GE(View().visualRect(View().model()->index(0, 0)).height(), 44);
}

TEST(Avatar, HasTheInitialsOfTheFirstAndTheLastWord) {
  EXPECT_EQ(home::InitialsOf(QStringLiteral("anna maria berg")), QStringLiteral("AB"));
  EXPECT_EQ(home::InitialsOf(QStringLiteral("Robert")), QStringLiteral("R"));
  EXPECT_EQ(home::InitialsOf(QStringLiteral("élodie")), QStringLiteral("É"));
  EXPECT_EQ(home::InitialsOf(QStringLiteral("e\u0301lodie")), QStringLiteral("E\u0301").toUpper());
  EXPECT_EQ(home::InitialsOf(QStringLiteral("Berg (Work)")), QStringLiteral("B"));
  EXPECT_EQ(home::InitialsOf(QStringLiteral("  - ")), QString());
  EXPECT_EQ(home::InitialsOf({}), QString());
  EXPECT_EQ(home::InitialsOf(QStringLiteral("𐐨x")).size(), 2) << "Two units are one letter.";
}

}  // namespace
