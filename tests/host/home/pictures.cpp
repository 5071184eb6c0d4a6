// home_pictures FOLDER [LOOK...]: paints the window in every state and look, or in those looks, for
// people to look at. The language is that of the desktop.

#include <QApplication>
#include <QLineEdit>
#include <QLocale>
#include <QStyleFactory>

#include "backends/qt/application.h"
#include "tests/host/home/looks.h"
#include "tests/host/home/window_fixture.h"

namespace {

using home_test::Look;
using home_test::Save;

/// The window over the store that a picture shows.
struct Painting {
  explicit Painting(const Look& look) {
    for (const auto id : {home::PageId::kTeaching, home::PageId::kLikeness, home::PageId::kSetup,
                          home::PageId::kTrash, home::PageId::kDial}) {
      settings.pages[id] = [this](home::Frame& /*frame*/) {
        return std::make_unique<home_test::NotedPage>(QStringLiteral("Page"), notes);
      };
    }
    window.emplace(work, remembered, settings);
    window->resize(look.size);
    window->show();
    window->activateWindow();
    static_cast<void>(QTest::qWaitForWindowActive(&*window));
  }

  home_test::NotedWork work;
  QTemporaryDir folder;
  QSettings remembered{folder.filePath(QStringLiteral("s.ini")), QSettings::IniFormat};
  home_test::NotedPage::Notes notes;
  home::TagsWindow::Settings settings;
  std::optional<home::TagsWindow> window;
};

home::Shelf MakeFullShelf() {
  constexpr int kTags = 12;
  constexpr std::int64_t kFirst = 1'700'000'000;
  constexpr std::int64_t kStep = 12'345;
  home::Shelf shelf = home_test::MakeShelf();
  for (int i = 0; i < kTags; ++i) {
    const std::u16string number = QString::number(i).toStdU16String();
    auto tag = home_test::MakeTag(u"1" + number, u"Maximiliane von Hohenstein-Oberndorf " + number,
                                  u"+49 30 555 01" + number, u"BusinessFax");
    tag.taughtAt = kFirst + i * kStep;
    tag.seconds = 0.9 + i / 10.0;
    tag.quality.nearest = maintenance::AlikeTag{2, 0.5F};
    shelf.tags.push_back(tag);
  }
  return shelf;
}

void PaintFullList(const Look& look, const QString& folder) {
  Painting painting(look);
  painting.work.Show(MakeFullShelf());
  auto* const list = painting.window->findChild<home::TagList*>();
  list->setFocus();
  list->setCurrentIndex(list->model()->index(2, 0));
  Save(*painting.window, folder, look, "list");
  QTest::keyClick(list, Qt::Key_Return);
  QTest::keyClick(list, Qt::Key_Delete);
  painting.work.EndDeleting({true, {}}, {u"x"});
  Save(*painting.window, folder, look, "undo");
  painting.window->findChild<QLineEdit*>(QStringLiteral("search"))
      ->setText(QStringLiteral("nobody"));
  Save(*painting.window, folder, look, "no_match");
}

void PaintEmptyList(const Look& look, const QString& folder, home::Shelf shelf, const char* state) {
  Painting painting(look);
  painting.work.Show(std::move(shelf));
  Save(*painting.window, folder, look, state);
}

}  // namespace

namespace home_test {

void PaintList(const Look& look, const QString& folder) {
  PaintFullList(look, folder);
  home::Shelf shelf = MakeShelf();
  shelf.tags.clear();
  PaintEmptyList(look, folder, shelf, "no_tags");
  shelf = {};
  shelf.peopleProblem =
      u"There are no contacts yet. Add people with telephone numbers to the desktop's address "
      u"book, or choose a vCard file in Set-up.";
  PaintEmptyList(look, folder, shelf, "no_people");
  shelf = {};
  shelf.tagsProblem = u"The settings cannot be opened: the file is no database.";
  PaintEmptyList(look, folder, shelf, "unreadable");
}

}  // namespace home_test

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  for (const char* const variable : {"XDG_DATA_HOME", "XDG_CONFIG_HOME"}) {
    qputenv(variable, "/none");
  }
  const QApplication application(argc, argv);
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  qt::FollowDesktopLanguage();
  const QStringList arguments = QApplication::arguments();
  const QString folder = arguments.value(1);
  for (const Look& look : home_test::GetLooks()) {
    if (arguments.size() > 2 && !arguments.mid(2).contains(QLatin1String(look.name))) {
      continue;
    }
    home_test::Apply(look);
    home_test::PaintList(look, folder);
    home_test::PaintPages(look, folder);
    home_test::PaintSetup(look, folder);
  }
  return testing::Test::HasFailure() ? 1 : 0;
}
