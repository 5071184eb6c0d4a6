#include "host/home/trash_page.h"

#include <gmock/gmock.h>

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include "tests/host/home/page_fixture.h"

namespace {

using testing::ElementsAre;
using Files = std::vector<std::u16string>;

/// The page with real keys and clicks, over a trash that the test makes up.
class TrashPage : public testing::Test {
 protected:
  TrashPage() {
    m_page.OnShelf(std::make_shared<home::Shelf>(home_test::MakePeople()));
    m_page.resize(360, 640);
    m_page.show();
    m_page.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&m_page));
    m_page.OnShown({});
  }
  /// Two of Anna's tags, and one of somebody whom the address book does not have.
  static std::vector<home::DeletedTag> MakeTags() {
    constexpr std::int64_t kNoon = 1'700'000'000;
    return {{u"a", 11, u"Mobile", u"Anna Berg +49 171 555 0101 M", kNoon, u""},
            {u"b", 99, u"Home", u"Carl Poe 555 H", kNoon, u"The address book is another one."},
            {u"c", 11, u"Home", u"Anna Berg +49 30 555 0102 H", kNoon, u""}};
  }
  void Answer(const std::vector<home::DeletedTag>& tags,
              const home::Outcome& outcome = {true, {}}) {
    std::exchange(m_work.endListing, {})(outcome, tags);
  }
  void Press(int row) {
    List().setFocus();
    List().setCurrentRow(row, QItemSelectionModel::NoUpdate);
    QTest::keyClick(&List(), Qt::Key_Space);
  }
  [[nodiscard]] QListWidget& List() { return *m_page.findChild<QListWidget*>(); }
  [[nodiscard]] QPushButton& Button() {
    return *m_page.findChild<QPushButton*>(QStringLiteral("restore"));
  }
  [[nodiscard]] std::string Text(const char* name) {
    const auto* const label = m_page.findChild<QLabel*>(QLatin1String(name));
    return label->isVisible() ? label->text().toStdString() : std::string();
  }

  home_test::PageWork m_work;
  home_test::NotedFrame m_frame;
  home::TrashPage m_page{m_work, m_frame};
};

TEST_F(TrashPage, ListsWhoseTagsWereDeletedAndWhen) {
  Answer(MakeTags());
  ASSERT_EQ(List().count(), 3);
  const QStringList lines = List().item(0)->text().split(u'\n');
  ASSERT_EQ(lines.size(), 3);
  EXPECT_EQ(lines[0].toStdString(), "Anna Berg");
  EXPECT_TRUE(lines[1].startsWith(QStringLiteral("Mobile · "))) << lines[1].toStdString();
  EXPECT_TRUE(lines[1].contains(QStringLiteral("+49 171 555 0101")));
  EXPECT_TRUE(lines[2].startsWith(QStringLiteral("Deleted on ")));
  EXPECT_TRUE(List().item(1)->text().startsWith(QStringLiteral("Carl Poe 555 H")))
      << "nobody knows more of him than the list did";
}

TEST_F(TrashPage, PutsBackThoseThatAreChosenByTheKeyboard) {
  Answer(MakeTags());
  EXPECT_FALSE(Button().isEnabled());
  Press(0);
  Press(2);
  ASSERT_TRUE(Button().isEnabled());
  Button().click();
  EXPECT_THAT(m_work.restored, ElementsAre(u"a", u"c"));
  EXPECT_FALSE(Button().isEnabled()) << "it is being done";
  m_work.endRestoring({true, {}});
  ASSERT_EQ(m_frame.reports.size(), 1U);
  EXPECT_EQ(m_frame.reports[0].message, u"The voice tags are back.");
  Answer({});
  EXPECT_EQ(Text("emptyTitle"), "No deleted voice tags");
}

TEST_F(TrashPage, ATagThatCannotBeRestoredSaysWhyAndIsNotChosen) {
  Answer(MakeTags());
  Press(1);
  EXPECT_EQ(Text("obstacle"), "The address book is another one.");
  EXPECT_FALSE(Button().isEnabled());
  EXPECT_TRUE(List()
                  .item(1)
                  ->data(Qt::AccessibleTextRole)
                  .toString()
                  .endsWith(QStringLiteral("The address book is another one.")));
  Press(0);
  EXPECT_EQ(Text("obstacle"), "");
}

TEST_F(TrashPage, SaysWhyATagWasNotRestoredAndKeepsItChosen) {
  Answer(MakeTags());
  Press(2);
  Button().click();
  m_work.endRestoring({false, u"The disk is full."});
  EXPECT_EQ(m_frame.reports.at(0).message, u"The disk is full.");
  Answer(MakeTags());
  EXPECT_TRUE(List().item(2)->isSelected());
  EXPECT_TRUE(Button().isEnabled());
}

TEST_F(TrashPage, ATrashThatCannotBeReadIsNotCalledEmpty) {
  Answer({}, {false, u"The trash cannot be read."});
  EXPECT_EQ(Text("emptyTitle"), "The deleted voice tags cannot be read");
  m_page.findChild<QPushButton*>(QStringLiteral("emptyAction"))->click();
  Answer(MakeTags());
  EXPECT_EQ(List().count(), 3);
}

TEST_F(TrashPage, LooksAgainIfTheStoreHasChanged) {
  Answer(MakeTags());
  m_page.OnShelf(std::make_shared<home::Shelf>(home_test::MakePeople()));
  ASSERT_TRUE(m_work.endListing);
  Answer({});
  EXPECT_THAT(Text("emptyTitle"), "No deleted voice tags");
}

}  // namespace
