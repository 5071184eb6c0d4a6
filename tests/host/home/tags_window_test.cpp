#include "host/home/tags_window.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>
#include <QUrl>

#include "host/home/button.h"
#include "tests/host/home/window_fixture.h"

namespace {

using home::PageId;
using home_test::MakeShelf;
using home_test::WindowTest;

using Names = std::vector<std::u16string>;

class TagsWindow : public WindowTest {
 protected:
  [[nodiscard]] QLineEdit& Search() const { return *Find<QLineEdit>("search"); }
  [[nodiscard]] QAction* Item(const char* text) const {
    for (QAction* const action : Find<QToolButton>("menu")->menu()->actions()) {
      if (action->text().remove(u'&') == QLatin1String(text)) {
        return action;
      }
    }
    return nullptr;
  }
  [[nodiscard]] QPushButton* Button(const char* name) const {
    for (QPushButton* const button : m_window->findChildren<QPushButton*>()) {
      if (button->isVisible() && button->accessibleName() == QLatin1String(name)) {
        return button;
      }
    }
    return nullptr;
  }
  void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
    QWidget* const focus = QApplication::focusWidget();
    QTest::keyClick(focus == nullptr ? m_window.get() : focus, key, modifiers);
  }
  [[nodiscard]] std::string Current() const {
    return m_list->currentIndex().siblingAtColumn(home::kName).data().toString().toStdString();
  }
  [[nodiscard]] QStringList Selected() const {
    QStringList names;
    for (const QModelIndex& row : m_list->selectionModel()->selectedRows()) {
      names.append(row.data().toString());
    }
    names.sort();
    return names;
  }
  [[nodiscard]] std::string EmptyTitle() const {
    const auto* const title = Find<QLabel>("emptyTitle");
    return title->isVisible() ? title->text().toStdString() : std::string();
  }
  [[nodiscard]] std::string Details() const {
    return Find<QLabel>("details")->text().toStdString();
  }
};

const QString kDavid = QStringLiteral("דוד לוי");

TEST_F(TagsWindow, ShowsTheTagsInTheOrderOfTheirNames) {
  OpenFull();
  EXPECT_EQ(Texts(home::kName), QStringList({QStringLiteral("44"), QStringLiteral("Anna Berg"),
                                             QStringLiteral("Hanna Berg"), kDavid}));
  EXPECT_EQ(Texts(home::kKind),
            QStringList({QString(), QStringLiteral("Mobile"), QStringLiteral("Business 2"),
                         QStringLiteral("Home fax")}));
  EXPECT_EQ(Texts(home::kQuality),
            QStringList({QStringLiteral("Not judged"), QStringLiteral("Good"),
                         QStringLiteral("Too alike"), QStringLiteral("Too soft")}));
  EXPECT_EQ(Texts(home::kNearest),
            QStringList({QString(), QStringLiteral("Hanna Berg"), QStringLiteral("Anna Berg"),
                         QStringLiteral("Anna Berg")}));
}

TEST_F(TagsWindow, ShowsANumberBetweenMarksThatKeepItsBlocksInOrder) {
  OpenFull();
  EXPECT_EQ(Texts(home::kNumber).at(3),
            QChar(0x200E) + QStringLiteral("+972 50 555 0144") + QChar(0x200E));
  EXPECT_EQ(Texts(home::kNumber).at(0), QString());
}

TEST_F(TagsWindow, IsSortedByAnyColumnWithWhatIsNotKnownAtTheEnd) {
  OpenFull();
  const auto sort = [this](home::Column column, Qt::SortOrder order) {
    m_list->sortByColumn(column, order);
    return Texts(home::kName);
  };
  const QString anna = QStringLiteral("Anna Berg");
  const QString hanna = QStringLiteral("Hanna Berg");
  const QString unknown = QStringLiteral("44");
  const auto up = Qt::AscendingOrder;
  const auto down = Qt::DescendingOrder;
  EXPECT_EQ(sort(home::kTaught, up), QStringList({kDavid, anna, hanna, unknown}));
  EXPECT_EQ(sort(home::kTaught, down), QStringList({hanna, anna, kDavid, unknown}));
  EXPECT_EQ(sort(home::kLength, up), QStringList({kDavid, anna, hanna, unknown}));
  EXPECT_EQ(sort(home::kLength, down), QStringList({hanna, anna, kDavid, unknown}));
  EXPECT_EQ(sort(home::kNumber, up), QStringList({hanna, anna, kDavid, unknown}));
  EXPECT_EQ(sort(home::kNumber, down), QStringList({kDavid, anna, hanna, unknown}));
  EXPECT_EQ(sort(home::kKind, up), QStringList({hanna, kDavid, anna, unknown}));
  EXPECT_EQ(sort(home::kKind, down), QStringList({anna, kDavid, hanna, unknown}));
  EXPECT_EQ(sort(home::kNearest, up), QStringList({anna, hanna, kDavid, unknown}));
  EXPECT_EQ(sort(home::kNearest, down), QStringList({kDavid, hanna, anna, unknown}));
  // What hinders most comes first.
  EXPECT_EQ(sort(home::kQuality, up), QStringList({kDavid, hanna, unknown, anna}));
  EXPECT_EQ(sort(home::kName, down), QStringList({kDavid, hanna, anna, unknown}));
}

TEST_F(TagsWindow, IsSortedByAClickOnAHeader) {
  OpenFull();
  QHeaderView& header = *m_list->header();
  const QPoint taught(header.sectionViewportPosition(home::kTaught) + 10, header.height() / 2);
  QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, taught);
  EXPECT_EQ(header.sortIndicatorSection(), home::kTaught);
  const QStringList first = Texts(home::kName);
  QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, taught);
  EXPECT_NE(Texts(home::kName), first);
}

TEST_F(TagsWindow, IsSortedByItsMenuWithoutAMouse) {
  OpenFull();
  QMenu& menu = *Find<QToolButton>("sort")->menu();
  emit menu.aboutToShow();
  EXPECT_TRUE(menu.actions().at(home::kName)->isChecked());
  menu.actions().at(home::kLength)->trigger();
  menu.actions().constLast()->trigger();
  EXPECT_EQ(Texts(home::kName).constFirst(), QStringLiteral("Hanna Berg"));
}

TEST_F(TagsWindow, FindsTagsByNameNumberKindAndCompany) {
  OpenFull();
  const auto found = [this](const char* typed) {
    Search().setText(QString::fromUtf8(typed));
    return Texts(home::kName);
  };
  EXPECT_EQ(found("berg anna"),
            QStringList({QStringLiteral("Anna Berg"), QStringLiteral("Hanna Berg")}));
  EXPECT_EQ(found("fax"), QStringList(kDavid));
  EXPECT_EQ(found("0505550144").size(), 0);
  EXPECT_EQ(found("+972505550144"), QStringList(kDavid));
  EXPECT_EQ(found("windmill"), QStringList(QStringLiteral("Hanna Berg")));
  EXPECT_EQ(found("").size(), 4);
}

TEST_F(TagsWindow, SearchHasTheFocusAfterItsKeysAndIsClearedByEscape) {
  OpenFull();
  Press(Qt::Key_F, Qt::ControlModifier);
  EXPECT_TRUE(Search().hasFocus());
  QTest::keyClicks(&Search(), QStringLiteral("hanna"));
  EXPECT_EQ(m_list->model()->rowCount(), 1);
  Press(Qt::Key_Escape);
  EXPECT_EQ(m_list->model()->rowCount(), 4);
  EXPECT_TRUE(m_list->hasFocus());
  Press(Qt::Key_Slash);
  EXPECT_TRUE(Search().hasFocus());
  EXPECT_EQ(Search().text(), QString());
  // In the field the stroke is a letter like any other.
  Press(Qt::Key_Slash);
  EXPECT_EQ(Search().text(), QStringLiteral("/"));
}

TEST_F(TagsWindow, EnterInTheSearchGoesToTheFirstTagThatIsFound) {
  OpenFull();
  Search().setFocus();
  QTest::keyClicks(&Search(), QStringLiteral("hanna"));
  Press(Qt::Key_Return);
  EXPECT_TRUE(m_list->hasFocus());
  EXPECT_EQ(Current(), "Hanna Berg");
}

TEST_F(TagsWindow, SaysIfNothingIsFoundAndShowsAllAgain) {
  OpenFull();
  Search().setText(QStringLiteral("nobody"));
  EXPECT_EQ(EmptyTitle(), "No voice tag matches “nobody”.");
  Find<QPushButton>("emptyAction")->click();
  EXPECT_EQ(EmptyTitle(), "");
  EXPECT_EQ(m_list->model()->rowCount(), 4);
}

TEST_F(TagsWindow, ReadsTheStoreAfterItIsShown) {
  Open();
  EXPECT_EQ(m_work.loads, 1);
  EXPECT_EQ(EmptyTitle(), "Reading the voice tags…");
  m_work.Show(MakeShelf());
  EXPECT_EQ(EmptyTitle(), "");
}

TEST_F(TagsWindow, IsReadyForKeysAsSoonAsTheTagsAreRead) {
  Open();
  m_work.Show(MakeShelf());
  EXPECT_TRUE(m_list->hasFocus());
  EXPECT_EQ(Selected(), QStringList(QStringLiteral("44"))) << "it looks chosen";
  EXPECT_TRUE(Button("Delete")->isEnabled());
  Press(Qt::Key_Down);
  Press(Qt::Key_Return);
  EXPECT_EQ(m_work.played, Names{u"11"});
}

TEST_F(TagsWindow, ShowsNamesBeforeTheRecordingsAreJudged) {
  Open();
  home::Shelf names = MakeShelf();
  names.areJudged = false;
  m_work.Show(names);
  EXPECT_EQ(Texts(home::kName).size(), 4);
  EXPECT_EQ(Texts(home::kQuality), QStringList({QString(), QString(), QString(), QString()}));
  Choose("Anna Berg");
  EXPECT_EQ(Details().find("judged"), std::string::npos);
  Item("Likeness of names")->trigger();
  EXPECT_EQ(m_notes[PageId::kLikeness].shelf, nullptr);
  m_work.Show(MakeShelf());
  EXPECT_NE(m_notes[PageId::kLikeness].shelf, nullptr);
  EXPECT_EQ(Current(), "Anna Berg");
  EXPECT_EQ(Texts(home::kQuality).at(1), QStringLiteral("Good"));
}

TEST_F(TagsWindow, OffersToTeachIfThereIsNoTag) {
  Open();
  home::Shelf shelf = MakeShelf();
  shelf.tags.clear();
  m_work.Show(shelf);
  EXPECT_EQ(EmptyTitle(), "No voice tags yet");
  EXPECT_TRUE(Find<QPushButton>("emptyAction")->hasFocus());
  Press(Qt::Key_Return);
  EXPECT_EQ(m_notes[PageId::kTeaching].shown, Names{u""});
}

TEST_F(TagsWindow, SaysWhatToDoIfThereIsNobodyToTeach) {
  Open();
  home::Shelf shelf;
  shelf.peopleProblem = u"No contacts were found.";
  m_work.Show(shelf);
  EXPECT_EQ(EmptyTitle(), "There is nobody to teach yet");
  EXPECT_EQ(Find<QLabel>("emptyAdvice")->text(), QStringLiteral("No contacts were found."));
  Find<QPushButton>("emptyAction")->click();
  EXPECT_EQ(m_notes[PageId::kSetup].shown, Names{u""});
}

TEST_F(TagsWindow, ShowsTheTagsAndThatTheContactsCannotBeRead) {
  Open();
  home::Shelf shelf = MakeShelf();
  shelf.peopleProblem = u"The address book does not answer.";
  m_work.Show(shelf);
  EXPECT_EQ(m_list->model()->rowCount(), 4);
  EXPECT_EQ(Message(), "The address book does not answer.");
  Find<QPushButton>("messageAction")->click();
  EXPECT_EQ(m_notes[PageId::kSetup].shown, Names{u""});
}

TEST_F(TagsWindow, SaysOnceThatTheContactsCannotBeRead) {
  Open();
  home::Shelf shelf = MakeShelf();
  shelf.peopleProblem = u"The address book does not answer.";
  m_work.Show(shelf);
  Find<QToolButton>("messageClose")->click();
  m_work.Show(shelf);
  EXPECT_EQ(Message(), "");
}

TEST_F(TagsWindow, TriesAgainIfTheStoreCannotBeRead) {
  Open();
  home::Shelf shelf;
  shelf.tagsProblem = u"The file is no database.";
  m_work.Show(shelf);
  EXPECT_EQ(EmptyTitle(), "The voice tags cannot be read");
  EXPECT_EQ(Find<QLabel>("emptyAdvice")->text(), QStringLiteral("The file is no database."));
  Find<QPushButton>("emptyAction")->click();
  EXPECT_EQ(m_work.loads, 2);
}

TEST_F(TagsWindow, PlaysATagByEnterDoubleClickSpaceAndItsButton) {
  OpenFull();
  Choose("Anna Berg");
  Press(Qt::Key_Return);
  m_work.EndPlaying();
  QTest::mouseDClick(m_list->viewport(), Qt::LeftButton, {},
                     m_list->visualRect(m_list->currentIndex()).center());
  m_work.EndPlaying();
  Press(Qt::Key_Space);
  m_work.EndPlaying();
  Button("Play")->click();
  EXPECT_EQ(m_work.played, Names(4, u"11"));
}

TEST_F(TagsWindow, ShowsWhichTagIsPlayingAndStopsIt) {
  OpenFull();
  Choose("Anna Berg");
  Press(Qt::Key_Space);
  EXPECT_NE(Button("Stop"), nullptr);
  EXPECT_TRUE(m_list->currentIndex()
                  .data(Qt::AccessibleDescriptionRole)
                  .toString()
                  .contains(QStringLiteral("Playing")));
  Press(Qt::Key_Space);
  EXPECT_EQ(m_work.stops, 1);
  m_work.EndPlaying();
  EXPECT_NE(Button("Play"), nullptr);
  EXPECT_FALSE(m_list->currentIndex()
                   .data(Qt::AccessibleDescriptionRole)
                   .toString()
                   .contains(QStringLiteral("Playing")));
}

TEST_F(TagsWindow, PlaysAnotherTagInThePlaceOfTheOneThatIsPlaying) {
  OpenFull();
  Choose("Anna Berg");
  Press(Qt::Key_Space);
  auto first = m_work.TakePlaying();
  Choose("Hanna Berg");
  Press(Qt::Key_Space);
  EXPECT_EQ(m_work.played, (Names{u"11", u"33"}));
  first({true, {}});
  EXPECT_NE(Button("Stop"), nullptr) << "the end of the first one is not that of the second";
}

TEST_F(TagsWindow, ShowsWhyATagCannotBePlayed) {
  OpenFull();
  Choose("Anna Berg");
  Press(Qt::Key_Return);
  m_work.EndPlaying({false, u"There is no loudspeaker."});
  EXPECT_EQ(Message(), "There is no loudspeaker.");
  EXPECT_FALSE(Find<QPushButton>("messageAction")->isVisible());
}

TEST_F(TagsWindow, DeletesWithAWayBack) {
  OpenFull();
  Choose("Anna Berg");
  Press(Qt::Key_Delete);
  EXPECT_EQ(m_work.deleted, Names{u"11"});
  m_work.EndDeleting({true, {}}, {u"trashed"});
  EXPECT_EQ(Message(), "Voice tag deleted: Anna Berg");
  Find<QPushButton>("messageAction")->click();
  EXPECT_EQ(m_work.restored, Names{u"trashed"});
  EXPECT_EQ(Message(), "");
  m_work.EndRestoring({true, {}});
  EXPECT_EQ(Message(), "The voice tag is back.");
}

TEST_F(TagsWindow, NamesTheTagThatWasDeletedIfTheKeyboardIsOnAnother) {
  OpenFull();
  Choose("Anna Berg");
  Press(Qt::Key_Down, Qt::ControlModifier);
  ASSERT_NE(Current(), "Anna Berg");
  ASSERT_EQ(Selected(), QStringList(QStringLiteral("Anna Berg")));
  Press(Qt::Key_Delete);
  EXPECT_EQ(m_work.deleted, Names{u"11"});
  m_work.EndDeleting({true, {}}, {u"trashed"});
  EXPECT_EQ(Message(), "Voice tag deleted: Anna Berg");
}

TEST_F(TagsWindow, SaysIfATagThatIsBackBelongsToNobodyOfTheAddressBook) {
  OpenFull();
  Choose("Anna Berg");
  Press(Qt::Key_Delete);
  m_work.EndDeleting({true, {}}, {u"trashed"});
  Find<QPushButton>("messageAction")->click();
  home::Shelf shelf = MakeShelf();
  shelf.peopleProblem = u"Voice tags belong to other people.";
  m_work.Show(shelf);
  m_work.EndRestoring({true, {}});
  EXPECT_EQ(Message(), "The voice tag is back.\nVoice tags belong to other people.");
}

TEST_F(TagsWindow, UndoesByItsKeysOnceAndAlsoAfterTheBarIsClosed) {
  OpenFull();
  Choose("Anna Berg");
  Press(Qt::Key_Delete);
  m_work.EndDeleting({true, {}}, {u"trashed"});
  Find<QToolButton>("messageClose")->click();
  EXPECT_EQ(Message(), "");
  m_list->setFocus();
  Press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(m_work.restored, Names{u"trashed"});
  m_work.restored.clear();
  Press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(m_work.restored, Names{});
}

TEST_F(TagsWindow, SaysWhyATagWasNotDeleted) {
  OpenFull();
  Choose("Anna Berg");
  Press(Qt::Key_Delete);
  m_work.EndDeleting({false, u"The voice tags are in use."}, {});
  EXPECT_EQ(Message(), "The voice tags are in use.");
  EXPECT_FALSE(Find<QPushButton>("messageAction")->isVisible());
}

TEST_F(TagsWindow, OffersTheWayBackForThoseThatWereDeletedBeforeAFailure) {
  OpenFull();
  m_list->selectAll();
  Press(Qt::Key_Delete);
  m_work.EndDeleting({false, u"The disk is full."}, {u"first"});
  EXPECT_EQ(Message(), "The disk is full.");
  Find<QPushButton>("messageAction")->click();
  EXPECT_EQ(m_work.restored, Names{u"first"});
}

TEST_F(TagsWindow, DeletesSeveralTogether) {
  OpenFull();
  Choose("Anna Berg");
  Press(Qt::Key_Down, Qt::ShiftModifier);
  EXPECT_EQ(Details(), "2 voice tags are selected.");
  Button("Delete")->click();
  EXPECT_EQ(m_work.deleted, (Names{u"11", u"33"}));
  m_work.EndDeleting({true, {}}, {u"a", u"b"});
  EXPECT_EQ(Message(), "2 voice tags deleted");
  EXPECT_FALSE(Button("Teach again")->isEnabled());
}

TEST_F(TagsWindow, SelectsAllAndSeveralWithoutKeys) {
  OpenFull();
  Press(Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(Selected().size(), 4);
  m_list->clearSelection();
  Item("Select several")->trigger();
  for (const int row : {0, 2}) {
    QTest::mouseClick(m_list->viewport(), Qt::LeftButton, {},
                      m_list->visualRect(m_list->model()->index(row, 0)).center());
  }
  EXPECT_EQ(Selected(), QStringList({QStringLiteral("44"), QStringLiteral("Hanna Berg")}));
}

TEST_F(TagsWindow, GoesOnWithTheNextTagAfterOneWasDeleted) {
  OpenFull();
  Choose("Anna Berg");
  home::Shelf shelf = MakeShelf();
  shelf.tags.erase(shelf.tags.begin());
  shelf.tags[0].quality.nearest.reset();
  shelf.tags[1].quality.nearest.reset();
  shelf.tags[1].quality.tooAlike.clear();
  m_work.Show(shelf);
  EXPECT_EQ(Current(), "Hanna Berg");
}

TEST_F(TagsWindow, KeepsWhatIsSelectedAndShowsWhatIsNew) {
  OpenFull();
  Choose("Anna Berg");
  m_work.Show(MakeShelf());
  EXPECT_EQ(Current(), "Anna Berg");
  EXPECT_EQ(Selected(), QStringList(QStringLiteral("Anna Berg")));
  home::Shelf shelf = MakeShelf();
  shelf.tags.push_back(home_test::MakeTag(u"55", u"Zoe", u"1"));
  m_work.Show(shelf);
  EXPECT_EQ(Current(), "Zoe");
}

TEST_F(TagsWindow, TeachesANameAndTeachesAgain) {
  OpenFull();
  Press(Qt::Key_N, Qt::ControlModifier);
  EXPECT_EQ(Find<QLabel>("title")->text(), QStringLiteral("Teaching"));
  EXPECT_TRUE(Find<QToolButton>("back")->isVisible());
  Press(Qt::Key_Escape);
  EXPECT_EQ(m_notes[PageId::kTeaching].left, 1);
  EXPECT_TRUE(m_list->hasFocus());
  Choose("Anna Berg");
  Button("Teach again")->click();
  EXPECT_EQ(m_notes[PageId::kTeaching].shown, (Names{u"", u"11"}));
}

TEST_F(TagsWindow, LeavesAPageAloneThatIsAskedForAgain) {
  OpenFull();
  Press(Qt::Key_N, Qt::ControlModifier);
  Press(Qt::Key_N, Qt::ControlModifier);
  EXPECT_EQ(m_notes[PageId::kTeaching].shown, Names{u""});
  EXPECT_EQ(m_notes[PageId::kTeaching].left, 0);
}

TEST_F(TagsWindow, DoesNotTeachATagAgainWhoseContactIsGone) {
  OpenFull();
  Choose("44");
  EXPECT_FALSE(Button("Teach again")->isEnabled());
  EXPECT_TRUE(Button("Delete")->isEnabled());
}

TEST_F(TagsWindow, GivesAPageTheShelfBeforeItIsShownAndEachNewOne) {
  OpenFull();
  Item("Likeness of names")->trigger();
  ASSERT_NE(m_notes[PageId::kLikeness].shelf, nullptr);
  EXPECT_EQ(m_notes[PageId::kLikeness].shelf->tags.size(), 4U);
  m_work.Show({});
  EXPECT_EQ(m_notes[PageId::kLikeness].shelf->tags.size(), 0U);
}

TEST_F(TagsWindow, LeavesAPageThatIsShownWhenItCloses) {
  OpenFull();
  Item("Set-up")->trigger();
  m_window->close();
  EXPECT_EQ(m_notes[PageId::kSetup].left, 1);
}

TEST_F(TagsWindow, HasNoWayToAPageThatIsNotThere) {
  m_settings.pages.clear();
  OpenFull();
  Choose("Anna Berg");
  EXPECT_EQ(Button("Teach a name"), nullptr);
  EXPECT_EQ(Button("Teach again"), nullptr);
  EXPECT_EQ(Item("Set-up"), nullptr);
  EXPECT_EQ(Item("Likeness of names"), nullptr);
}

TEST_F(TagsWindow, HandsFilesThatAreDroppedOnItToTheSetup) {
  OpenFull();
  QMimeData files;
  files.setUrls({QUrl::fromLocalFile(QStringLiteral("/home/anna/people.vcf")),
                 QUrl(QStringLiteral("https://example.org/x.vcf"))});
  QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(m_window.get(), &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(m_window.get(), &drop);
  EXPECT_EQ(m_notes[PageId::kSetup].dropped, QStringList(QStringLiteral("/home/anna/people.vcf")));
}

TEST_F(TagsWindow, OpensTheControlPanelAndTheSheet) {
  OpenFull();
  Item("Control panel")->trigger();
  EXPECT_EQ(m_started, QStringList(QStringLiteral("voxtrel-panel")));
  Item("Settings sheet")->trigger();
  EXPECT_EQ(m_started, QStringList({QStringLiteral("voxtrel-panel"), QStringLiteral("--open"),
                                    QStringLiteral("voxtrel.cpl")}));
  EXPECT_EQ(Message(), "");
  m_canStart = false;
  Item("Control panel")->trigger();
  EXPECT_EQ(Message(), "voxtrel-panel could not be started.");
}

TEST_F(TagsWindow, HasHelpAndReadsAgainByTheirKeys) {
  OpenFull();
  Press(Qt::Key_F1);
  EXPECT_EQ(m_helps, 1);
  Press(Qt::Key_F5);
  EXPECT_EQ(m_work.loads, 2);
}

TEST_F(TagsWindow, RemembersItsSizeAndItsOrder) {
  OpenFull({1000, 500});
  m_list->sortByColumn(home::kLength, Qt::DescendingOrder);
  m_window->close();
  m_window.reset();
  m_window = std::make_unique<home::TagsWindow>(m_work, m_remembered, m_settings);
  m_list = m_window->findChild<home::TagList*>();
  EXPECT_EQ(m_window->size(), QSize(1000, 500));
  m_work.Show(MakeShelf());
  EXPECT_EQ(Texts(home::kName).constFirst(), QStringLiteral("Hanna Berg"));
}

TEST_F(TagsWindow, IgnoresARememberedOrderThatIsNone) {
  m_remembered.setValue(QStringLiteral("sortColumn"), 99);
  OpenFull();
  EXPECT_EQ(Texts(home::kName).constFirst(), QStringLiteral("44"));
}

TEST_F(TagsWindow, LooksForChangesWhenTheUserComesBack) {
  OpenFull();
  const int before = m_work.looks;
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  EXPECT_EQ(m_work.looks, before);
  m_window->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
  EXPECT_EQ(m_work.looks, before + 1);
}

TEST_F(TagsWindow, ShowsTheWholeOfATagInReachOfMouseKeyboardAndScreenReader) {
  OpenFull();
  Choose("דוד לוי");
  for (const int role : {int(Qt::ToolTipRole), int(Qt::AccessibleDescriptionRole)}) {
    const QString text = m_list->currentIndex().data(role).toString();
    for (const char* part : {"דוד לוי", "+972 50 555 0144", "Home fax", "too soft", "Anna Berg"}) {
      EXPECT_TRUE(text.contains(QString::fromUtf8(part))) << part;
    }
  }
  EXPECT_NE(Details().find("+972 50 555 0144"), std::string::npos);
  EXPECT_NE(Details().find("too soft"), std::string::npos);
}

TEST_F(TagsWindow, TheLineBelowTheListKeepsItsOrderIfTheNameIsReadFromTheRight) {
  OpenFull();
  Choose("דוד לוי");
  const QString line = QString::fromStdString(Details()).section(u'\n', 0, 0);
  EXPECT_TRUE(line.contains(kDavid)) << line.toStdString();
  EXPECT_FALSE(line.isRightToLeft()) << line.toStdString();
}

TEST_F(TagsWindow, ContextMenuHasWhatCanBeDoneWithTheTag) {
  OpenFull();
  Choose("Anna Berg");
  QStringList items;
  QTimer::singleShot(0, m_window.get(), [&items] {
    auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    for (const QAction* const action : menu->actions()) {
      items.append(action->text().remove(u'&'));
    }
    menu->close();
  });
  QContextMenuEvent event(QContextMenuEvent::Keyboard, {}, {});
  QApplication::sendEvent(m_list->viewport(), &event);
  EXPECT_EQ(items, QStringList({QStringLiteral("Play"), QStringLiteral("Teach again"),
                                QStringLiteral("Delete"), QString(), QStringLiteral("Select all"),
                                QStringLiteral("Select several")}));
}

TEST_F(TagsWindow, LeavesMostOfASmallWindowWithLargeLettersToTheList) {
  const QFont before = QApplication::font();
  QFont large = before;
  large.setPointSize(20);
  QApplication::setFont(large);
  OpenFull({360, 640});
  Choose("Hanna Berg");
  const auto* const details = Find<QLabel>("details");
  const QWidget* const area = details->parentWidget()->parentWidget();
  EXPECT_LT(area->height(), m_list->height());
  EXPECT_GT(details->height(), area->height()) << "the rest is scrolled";
  QApplication::setFont(before);
}

TEST_F(TagsWindow, ANameFromRightToLeftIsSetApartInASentence) {
  OpenFull();
  Choose("דוד לוי");
  Press(Qt::Key_Delete);
  m_work.EndDeleting({true, {}}, {u"x"});
  EXPECT_EQ(Message(), "Voice tag deleted: \u2068דוד לוי\u2069");
}

}  // namespace
