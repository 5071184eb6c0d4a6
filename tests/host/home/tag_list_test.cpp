#include "host/home/tag_list.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QGestureEvent>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>
#include <QTapAndHoldGesture>
#include <QTimer>
#include <QToolButton>
#include <algorithm>
#include <limits>

#include "host/home/sizes.h"
#include "tests/host/home/window_fixture.h"

namespace {

using home_test::MakeShelf;
using home_test::WindowTest;

constexpr QSize kPhone(360, 640);

class TagList : public WindowTest {
 protected:
  static constexpr int kLongest = 60'000;  ///< Milliseconds. Far more than a busy machine needs.

  ~TagList() override {
    QApplication::setFont(m_usualFont);
    QApplication::setLayoutDirection(Qt::LeftToRight);
  }

  static void UseFont(int points) {
    QFont font = QApplication::font();
    font.setPointSize(points);
    QApplication::setFont(font);
  }
  /// Lets the layouts come to an end: each may ask for another one.
  static void Settle() {
    constexpr int kDeepest = 8;
    for (int i = 0; i < kDeepest; ++i) {
      QCoreApplication::processEvents();
    }
  }
  [[nodiscard]] QRect Card(int row) const {
    return m_list->visualRect(m_list->model()->index(row, 0));
  }
  [[nodiscard]] QPoint PlayButton(int row) const {
    return home::TagList::PlayButton(Card(row), m_list->layoutDirection()).center();
  }
  void Click(const QPoint& place) const {
    QTest::mouseClick(m_list->viewport(), Qt::LeftButton, {}, place);
  }

 private:
  const QFont m_usualFont = QApplication::font();
};

TEST_F(TagList, IsATableOnAWideWindowAndHasCardsOnANarrowOne) {
  OpenFull({900, 600});
  EXPECT_FALSE(m_list->AreCards());
  EXPECT_FALSE(m_list->isHeaderHidden());
  EXPECT_FALSE(Find<QToolButton>("sort")->isVisible());
  m_window->resize(kPhone);
  EXPECT_TRUE(m_list->AreCards());
  EXPECT_TRUE(m_list->isHeaderHidden());
  EXPECT_TRUE(Find<QToolButton>("sort")->isVisible());
  EXPECT_EQ(m_list->columnWidth(home::kName), m_list->viewport()->width());
  m_window->resize(900, 600);
  EXPECT_FALSE(m_list->AreCards());
}

TEST_F(TagList, KeepsWhatIsSelectedIfItChangesItsForm) {
  OpenFull({900, 600});
  Choose("Hanna Berg");
  m_window->resize(kPhone);
  m_window->resize(900, 600);
  ASSERT_EQ(m_list->selectionModel()->selectedRows().size(), 1);
  EXPECT_EQ(m_list->currentIndex().siblingAtColumn(home::kName).data().toString(),
            QStringLiteral("Hanna Berg"));
}

TEST_F(TagList, PlaysACardByItsButtonAndNotByATapNextToIt) {
  OpenFull(kPhone);
  Click(Card(1).topLeft() + QPoint(20, 20));
  EXPECT_TRUE(m_work.played.empty());
  Click(PlayButton(2));
  EXPECT_EQ(m_work.played, std::vector<std::u16string>{u"33"});
  Click(PlayButton(2));
  EXPECT_EQ(m_work.stops, 1);
  EXPECT_EQ(m_work.played.size(), 1U);
}

TEST_F(TagList, HasTheButtonsOfItsCardsAtTheEndOfALineInBothDirections) {
  QApplication::setLayoutDirection(Qt::RightToLeft);
  OpenFull(kPhone);
  EXPECT_LT(PlayButton(0).x(), Card(0).center().x());
  Click(PlayButton(1));
  EXPECT_EQ(m_work.played, std::vector<std::u16string>{u"11"});
}

TEST_F(TagList, HasOnlyTargetsThatAFingerHits) {
  OpenFull(kPhone);
  Choose("Hanna Berg");
  m_work.Delete({u"33"}, [](const home::Outcome&, const std::vector<std::u16string>&) {});
  for (const QWidget* const widget : m_window->findChildren<QWidget*>()) {
    const bool isTarget = qobject_cast<const QAbstractButton*>(widget) != nullptr ||
                          qobject_cast<const QLineEdit*>(widget) != nullptr;
    // The cross in the search field does what Escape and the whole field do.
    const bool isInField = qobject_cast<const QLineEdit*>(widget->parentWidget()) != nullptr;
    if (isTarget && widget->isVisible() && !isInField) {
      EXPECT_GE(widget->width(), home::kLeastTarget) << widget->objectName().toStdString();
      EXPECT_GE(widget->height(), home::kLeastTarget) << widget->objectName().toStdString();
    }
  }
  EXPECT_GE(Card(0).height(), home::kLeastTarget);
  EXPECT_GE(home::TagList::PlayButton(Card(0), Qt::LeftToRight).width(), home::kLeastTarget);
}

TEST_F(TagList, HasMenusForFingersOnAPhoneAlone) {
  OpenFull(kPhone);
  QMenu& menu = *Find<QToolButton>("menu")->menu();
  const auto lowest = [&menu] {
    emit menu.aboutToShow();
    menu.popup(QPoint());
    int height = std::numeric_limits<int>::max();
    for (QAction* const action : menu.actions()) {
      if (!action->isSeparator()) {
        height = std::min(height, menu.actionGeometry(action).height());
      }
    }
    menu.close();
    return height;
  };
  EXPECT_GE(lowest(), home::kLeastTarget);
  m_window->resize(900, 600);
  EXPECT_LT(lowest(), home::kLeastTarget);
}

TEST_F(TagList, FitsAPhoneWithEveryFontAndClipsNoText) {
  for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
    for (const int points : {9, 12, 16, 20}) {
      QApplication::setLayoutDirection(direction);
      UseFont(points);
      OpenFull(kPhone);
      Choose("Hanna Berg");
      QTest::keyClick(m_list, Qt::Key_Delete);
      m_work.EndDeleting({true, {}}, {u"a"});
      Settle();
      EXPECT_EQ(m_window->size(), kPhone) << points;
      EXPECT_LE(m_window->minimumSizeHint().width(), kPhone.width()) << points;
      for (const QLabel* const label : m_window->findChildren<QLabel*>()) {
        if (label->isVisible() && label->wordWrap()) {
          EXPECT_GE(label->height(), label->heightForWidth(label->width()))
              << points << " " << label->text().toStdString();
        }
      }
      for (const QAbstractButton* const button : m_window->findChildren<QAbstractButton*>()) {
        if (button->isVisible() && !button->text().isEmpty()) {
          EXPECT_GE(button->width(), button->sizeHint().width())
              << points << " " << button->text().toStdString();
          const QRect place(button->mapTo(m_window.get(), QPoint()), button->size());
          EXPECT_TRUE(m_window->rect().contains(place)) << points;
        }
      }
      // A card is in sight in spite of all that stands below it.
      EXPECT_GE(m_list->viewport()->height(), Card(0).height()) << points;
    }
  }
}

TEST_F(TagList, NeverScrollsSideways) {
  OpenFull();
  for (const int width : {360, 500, 640, 700, 800, 1000, 1600, 2560}) {
    m_window->resize(width, 600);
    QCoreApplication::processEvents();
    EXPECT_EQ(m_list->horizontalScrollBar()->maximum(), 0) << width;
  }
}

TEST_F(TagList, ShowsAWholeNumberInTheTableAtEveryWidth) {
  OpenFull();
  const int least = m_list->LeastTableWidth();
  for (const int width : {least + 1, least + 100, 2 * least}) {
    m_window->resize(width, 600);
    QCoreApplication::processEvents();
    ASSERT_FALSE(m_list->AreCards());
    const QString number = m_list->model()->index(3, home::kNumber).data().toString();
    EXPECT_LT(m_list->fontMetrics().horizontalAdvance(number), m_list->columnWidth(home::kNumber))
        << width;
  }
}

TEST_F(TagList, KeepsTheWidthThatTheUserGivesToAColumn) {
  OpenFull({1200, 600});
  m_list->header()->resizeSection(home::kName, 400);
  m_window->resize(1300, 600);
  EXPECT_GE(m_list->columnWidth(home::kName), 400);
}

TEST_F(TagList, SaysBelowACardWhatTheCardDoesNotShow) {
  OpenFull(kPhone);
  const auto details = [this] {
    const auto* const label = Find<QLabel>("details");
    return label->isVisible() ? label->text() : QString();
  };
  Choose("Anna Berg");
  EXPECT_EQ(details(), QString());
  Choose("Hanna Berg");
  EXPECT_EQ(details(),
            QStringLiteral("It sounds like Anna Berg. The dialer may take one for the other."));
  home::Shelf shelf = MakeShelf();
  shelf.tags[0].contact = u"Maximiliane von Hohenstein-Oberndorf zu Berg";
  m_work.Show(shelf);
  Choose("Maximiliane von Hohenstein-Oberndorf zu Berg");
  EXPECT_TRUE(details().startsWith(QStringLiteral("Maximiliane von Hohenstein-Oberndorf zu Berg")));
}

TEST_F(TagList, CutsNoNumberInFavourOfItsKind) {
  UseFont(12);
  Open(kPhone);
  home::Shelf shelf;
  shelf.tags = {home_test::MakeTag(u"11", u"Al", u"+49 30 5550 0101 0202 03", u"BusinessFax")};
  m_work.Show(shelf);
  Choose("Al");
  EXPECT_TRUE(m_list->ShowsWhole(m_list->currentIndex()));
  shelf.tags[0].number += u" 0404 0505 0606";
  m_work.Show(shelf);
  EXPECT_FALSE(m_list->ShowsWhole(m_list->currentIndex()));
}

TEST_F(TagList, CutsNoNameInFavourOfAVerdict) {
  Open(kPhone);
  home::Shelf shelf;
  shelf.tags = {home_test::MakeTag(u"11", u"Hanna Berg von und zu Hausen", u"1")};
  shelf.tags[0].quality.take->Add(voicemath::Verdict::kInterrupted);
  m_work.Show(shelf);
  EXPECT_TRUE(m_list->ShowsWhole(m_list->model()->index(0, 0)));
}

TEST_F(TagList, StandsUnderTheSearchInATableAndFromEdgeToEdgeInCards) {
  OpenFull();
  const auto place = [this](const QWidget* widget) {
    return widget->mapTo(m_window.get(), QPoint()).x();
  };
  EXPECT_EQ(place(m_list), place(Find<QLineEdit>("search")));
  m_window->resize(kPhone);
  EXPECT_EQ(place(m_list), 0);
}

TEST_F(TagList, OpensTheContextMenuUnderAFingerThatStays) {
  OpenFull(kPhone);
  QTapAndHoldGesture::setTimeout(1);
  bool isOpened = false;
  QTimer closing;
  closing.callOnTimeout([&] {
    if (QWidget* const menu = QApplication::activePopupWidget()) {
      isOpened = true;
      menu->close();
    }
  });
  closing.start(1);
  const auto finger = std::unique_ptr<QPointingDevice>(
      QTest::createTouchDevice(QInputDevice::DeviceType::TouchScreen));
  QTest::touchEvent(m_list->viewport(), finger.get()).press(0, Card(2).center());
  EXPECT_TRUE(QTest::qWaitFor([&] { return isOpened; }, kLongest));
  QTest::touchEvent(m_list->viewport(), finger.get()).release(0, Card(2).center());
  QTapAndHoldGesture::setTimeout(700);
  EXPECT_EQ(m_list->currentIndex().data().toString(), QStringLiteral("Hanna Berg"));
}

/// Sees that somebody holds something down, before the list does.
class HoldWatch final : public QObject {
 public:
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() == QEvent::Gesture) {
      const QGesture* const hold =
          static_cast<QGestureEvent*>(event)->gesture(Qt::TapAndHoldGesture);
      wasHeld = wasHeld || (hold != nullptr && hold->state() == Qt::GestureFinished);
    }
    return false;
  }

  bool wasHeld = false;
};

TEST_F(TagList, OpensNoContextMenuUnderAMouseButtonThatIsHeld) {
  OpenFull();
  HoldWatch watch;
  m_list->viewport()->installEventFilter(&watch);
  QTapAndHoldGesture::setTimeout(1);
  bool isOpened = false;
  QTimer closing;
  closing.callOnTimeout([&] {
    if (QWidget* const menu = QApplication::activePopupWidget()) {
      isOpened = true;
      menu->close();
    }
  });
  closing.start(1);
  QTest::mousePress(m_list->viewport(), Qt::LeftButton, {}, Card(1).center());
  EXPECT_TRUE(QTest::qWaitFor([&] { return watch.wasHeld; }, kLongest));
  QTest::mouseRelease(m_list->viewport(), Qt::LeftButton, {}, Card(1).center());
  QTapAndHoldGesture::setTimeout(700);
  EXPECT_FALSE(isOpened);
}

}  // namespace
