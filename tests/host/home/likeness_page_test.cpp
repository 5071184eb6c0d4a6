#include "host/home/likeness_page.h"

#include <gmock/gmock.h>

#include <QAccessible>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include "host/home/likeness_picture.h"
#include "tests/host/home/page_fixture.h"

namespace {

using home::AlikePair;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

home::Tag MakeNamed(std::u16string name, std::u16string contact, std::u16string kind = u"Mobile") {
  home::Tag tag;
  tag.name = std::move(name);
  tag.contact = std::move(contact);
  tag.kind = std::move(kind);
  return tag;
}

/// Anna and Hanna are too alike. Robert is a little like Hanna.
std::vector<home::Tag> MakeTags() {
  std::vector<home::Tag> tags{MakeNamed(u"1", u"Anna"), MakeNamed(u"2", u"Robert"),
                              MakeNamed(u"3", u"Hanna"), MakeNamed(u"4", u"李小龙")};
  tags[0].quality.nearest = maintenance::AlikeTag{2, 0.105F};
  tags[0].quality.tooAlike = {{2, 0.105F}};
  tags[2].quality.nearest = maintenance::AlikeTag{0, 0.11F};
  tags[2].quality.tooAlike = {{0, 0.11F}};
  tags[1].quality.nearest = maintenance::AlikeTag{2, 0.4F};
  return tags;
}

TEST(AlikePairs, AreThereOnceEachWithTheSmallerDistanceTheMostAlikeFirst) {
  const std::vector<AlikePair> pairs = home::FindAlikePairs(MakeTags());
  ASSERT_THAT(pairs, SizeIs(2));
  EXPECT_EQ(pairs[0].first, 0U);
  EXPECT_EQ(pairs[0].second, 2U);
  EXPECT_EQ(pairs[0].distance, 0.105F);
  EXPECT_TRUE(pairs[0].isTooAlike);
  EXPECT_EQ(pairs[1].first, 1U);
  EXPECT_EQ(pairs[1].second, 2U);
  EXPECT_FALSE(pairs[1].isTooAlike);
}

TEST(AlikePairs, PassOverTagsThatAreNotThere) {
  std::vector<home::Tag> tags{MakeNamed(u"1", u"Anna")};
  tags[0].quality.nearest = maintenance::AlikeTag{0, 0.1F};
  tags[0].quality.tooAlike = {{7, 0.1F}};
  EXPECT_THAT(home::FindAlikePairs(tags), IsEmpty());
  EXPECT_THAT(home::FindAlikePairs({}), IsEmpty());
}

TEST(AlikePairs, StandNextToEachOtherAndTheMostAlikeFirst) {
  EXPECT_THAT(home::OrderByLikeness(0, {}), IsEmpty());
  EXPECT_THAT(home::OrderByLikeness(3, {}), ElementsAre(0, 1, 2));
  EXPECT_THAT(home::OrderByLikeness(6, {{3, 5, 0.1F, true}, {0, 4, 0.2F, true}}),
              ElementsAre(3, 5, 0, 4, 1, 2));
  // Two chains are joined at the ends that are alike.
  EXPECT_THAT(
      home::OrderByLikeness(4, {{0, 1, 0.1F, true}, {2, 3, 0.2F, true}, {0, 3, 0.3F, false}}),
      ElementsAre(1, 0, 3, 2));
  // A chain that joins an earlier one comes with it to the beginning.
  EXPECT_THAT(
      home::OrderByLikeness(
          5, {{3, 4, 0.1F, true}, {0, 1, 0.2F, true}, {1, 2, 0.3F, true}, {2, 3, 0.4F, true}}),
      ElementsAre(4, 3, 2, 1, 0));
}

/// The page with real keys and clicks.
class LikenessPage : public testing::Test {
 protected:
  LikenessPage() {
    m_page.resize(900, 600);
    m_page.show();
    m_page.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&m_page));
  }
  void Show(std::vector<home::Tag> tags = MakeTags(), const std::u16string& tag = u"") {
    home::Shelf shelf;
    shelf.tags = std::move(tags);
    m_page.OnShelf(std::make_shared<home::Shelf>(std::move(shelf)));
    m_page.OnShown(tag);
  }
  template <typename Widget>
  [[nodiscard]] Widget& Find(const char* name) {
    return *m_page.findChild<Widget*>(QLatin1String(name));
  }
  [[nodiscard]] std::string Text(const char* name) {
    const auto& label = Find<QLabel>(name);
    return label.isVisible() ? label.text().toStdString() : std::string();
  }
  void Click(const char* name) { QTest::mouseClick(&Find<QPushButton>(name), Qt::LeftButton); }
  [[nodiscard]] home::LikenessPicture& Picture() {
    return *static_cast<home::LikenessPicture*>(&Find<QWidget>("likenessPicture"));
  }

  home_test::PageWork m_work;
  home_test::NotedFrame m_frame;
  home::LikenessPage m_page{m_work, m_frame};
};

TEST_F(LikenessPage, ListsTheWorstPairFirstAndSaysHowAlikeEachIs) {
  Show();
  auto& list = Find<QListWidget>("pairs");
  ASSERT_EQ(list.count(), 2);
  EXPECT_EQ(list.currentRow(), 0);
  EXPECT_TRUE(list.hasFocus());
  EXPECT_EQ(list.item(0)->data(Qt::AccessibleTextRole).toString(),
            QStringLiteral("Anna and Hanna are 89 % alike. That is too much: the dialer may take "
                           "one for the other."));
  EXPECT_EQ(list.item(1)->data(Qt::AccessibleTextRole).toString(),
            QStringLiteral("Robert and Hanna are 60 % alike."));
  EXPECT_EQ(list.item(1)->toolTip(), QStringLiteral("Robert and Hanna are 60 % alike."));
  EXPECT_EQ(Text("likenessSummary"),
            "One pair of names is too alike. A thick line joins them. Teach one of them again with "
            "other words.");
}

TEST_F(LikenessPage, SaysThatNoneIsTooAlikeOrThatThereIsNothingToCompare) {
  std::vector<home::Tag> tags = MakeTags();
  tags[0].quality.tooAlike.clear();
  tags[2].quality.tooAlike.clear();
  Show(tags);
  EXPECT_EQ(Text("likenessSummary"), "No two names are too alike.");
  Show({MakeNamed(u"1", u"Anna")});
  EXPECT_EQ(Text("emptyTitle"), "There is nothing to compare yet");
}

TEST_F(LikenessPage, PlaysBothOneAfterTheOther) {
  Show();
  QTest::keyClick(&Find<QListWidget>("pairs"), Qt::Key_Return);
  EXPECT_THAT(m_work.played, ElementsAre(u"1"));
  m_work.endPlaying({true, {}});
  EXPECT_THAT(m_work.played, ElementsAre(u"1", u"3"));
  EXPECT_EQ(Find<QPushButton>("playBoth").text(), QStringLiteral("Sto&p"));
  m_work.endPlaying({true, {}});
  EXPECT_EQ(Find<QPushButton>("playBoth").text(), QStringLiteral("Play &both"));
}

TEST_F(LikenessPage, StopsWhatIsPlayedIfItIsPressedAgainOrLeftOrAnotherPairIsChosen) {
  Show();
  auto& list = Find<QListWidget>("pairs");
  const std::vector<std::function<void()>> ways{[this] { Click("playBoth"); },
                                                [this] { m_page.OnLeft(); },
                                                [&list] { QTest::keyClick(&list, Qt::Key_Down); }};
  for (const auto& way : ways) {
    m_work.played.clear();
    m_work.stops = 0;
    Click("playBoth");
    const auto late = m_work.endPlaying;
    way();
    EXPECT_EQ(m_work.stops, 1);
    EXPECT_EQ(Find<QPushButton>("playBoth").text(), QStringLiteral("Play &both"));
    late({true, {}});
    EXPECT_THAT(m_work.played, SizeIs(1)) << "The second one is not begun.";
  }
}

TEST_F(LikenessPage, SaysWhyAPairWasNotPlayed) {
  Show();
  Click("playBoth");
  m_work.endPlaying({false, u"There is no loudspeaker."});
  ASSERT_THAT(m_frame.reports, SizeIs(1));
  EXPECT_EQ(m_frame.reports[0].message, u"There is no loudspeaker.");
  EXPECT_THAT(m_work.played, SizeIs(1));
  EXPECT_EQ(Find<QPushButton>("playBoth").text(), QStringLiteral("Play &both"));
}

TEST_F(LikenessPage, TeachesEitherAgain) {
  Show();
  EXPECT_EQ(Text("firstName"), "Anna · Mobile");
  EXPECT_EQ(Text("secondName"), "Hanna · Mobile");
  Click("teachFirst");
  Click("teachSecond");
  EXPECT_THAT(m_frame.shownPages,
              ElementsAre(std::pair(home::PageId::kTeaching, std::u16string(u"1")),
                          std::pair(home::PageId::kTeaching, std::u16string(u"3"))));
  EXPECT_EQ(Find<QPushButton>("teachSecond").accessibleName(), QStringLiteral("Teach Hanna again"));
}

TEST_F(LikenessPage, IsOpenedAtTheWorstPairOfATag) {
  Show(MakeTags(), u"2");
  EXPECT_EQ(Find<QListWidget>("pairs").currentRow(), 1);
}

TEST_F(LikenessPage, ChoosesThePairThatIsClickedInThePicture) {
  Show();
  auto& picture = Picture();
  const QPoint middle = picture.CurveOf(1).pointAtPercent(0.5).toPoint();
  QTest::mouseClick(&picture, Qt::LeftButton, {}, middle);
  EXPECT_EQ(Find<QListWidget>("pairs").currentRow(), 1);
  EXPECT_EQ(picture.FindPair(QPoint(2, 2)), std::nullopt);
}

TEST_F(LikenessPage, DrawsAPairThatIsTooAlikeThicker) {
  std::vector<home::Tag> tags = MakeTags();
  tags.push_back(MakeNamed(u"5", u"Eve"));  // The current pair, drawn in its own way.
  tags.push_back(MakeNamed(u"6", u"Eva"));
  tags[4].quality.nearest = maintenance::AlikeTag{5, 0.01F};
  Show(tags);
  const QColor strong = m_page.palette().color(QPalette::Highlight);
  const QImage image = Picture().grab().toImage();
  const auto count = [&](std::size_t pair) {
    const QPoint middle = Picture().CurveOf(pair).pointAtPercent(0.5).toPoint();
    int found = 0;
    for (int x = -4; x <= 4; ++x) {
      for (int y = -4; y <= 4; ++y) {
        found += image.pixelColor(middle + QPoint(x, y)) == strong ? 1 : 0;
      }
    }
    return found;
  };
  EXPECT_GT(count(1), 9);
  EXPECT_EQ(count(2), 0);
}

TEST_F(LikenessPage, SaysInWordsWhatThePictureShows) {
  Show();
  QAccessibleInterface* const access = QAccessible::queryAccessibleInterface(&Picture());
  EXPECT_EQ(access->role(), QAccessible::Graphic);
  EXPECT_EQ(access->text(QAccessible::Name), QStringLiteral("Which names are alike"));
  EXPECT_EQ(access->text(QAccessible::Description).toStdString(), Text("likenessSummary"));
}

TEST_F(LikenessPage, NamesTheKindIfAPersonHasSeveralTags) {
  std::vector<home::Tag> tags = MakeTags();
  tags[2].contact = u"Anna";
  tags[2].kind = u"HomeFax";
  Show(tags);
  EXPECT_EQ(Find<QListWidget>("pairs").item(0)->text(),
            QStringLiteral("Anna · Mobile\nAnna · Home fax"));
}

TEST_F(LikenessPage, FitsOnAPhoneWithTargetsForAFinger) {
  Show();
  m_page.resize(360, 584);
  QApplication::processEvents();
  EXPECT_EQ(m_page.width(), 360);
  for (const char* name : {"playBoth", "teachFirst", "teachSecond"}) {
    const auto& button = Find<QPushButton>(name);
    EXPECT_GE(button.height(), 44) << name;
    EXPECT_TRUE(m_page.rect().contains(QRect(button.mapTo(&m_page, QPoint()), button.size())))
        << name;
  }
}

}  // namespace
