// home_pictures FOLDER: paints the states of the window, for people to look at.

#include <QApplication>
#include <QLineEdit>
#include <QLocale>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>
#include <cstdio>

#include "tests/host/home/window_fixture.h"

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
  const QString folder = QString::fromLocal8Bit(argc > 1 ? argv[1] : ".");
  const auto paint = [&](const char* name, QSize size, int points, bool isDark, bool isRtl,
                         int state) {
    QFont font = QApplication::font();
    font.setPointSize(points);
    QApplication::setFont(font);
    QPalette palette = QApplication::style()->standardPalette();
    if (isDark) {
      palette = QPalette(QColor(53, 53, 53));
      palette.setColor(QPalette::Window, QColor(45, 45, 45));
      palette.setColor(QPalette::Base, QColor(30, 30, 30));
      palette.setColor(QPalette::AlternateBase, QColor(40, 40, 40));
      palette.setColor(QPalette::Highlight, QColor(42, 130, 218));
    }
    QApplication::setPalette(palette);
    QApplication::setLayoutDirection(isRtl ? Qt::RightToLeft : Qt::LeftToRight);
    home_test::NotedWork work;
    QTemporaryDir settingsFolder;
    QSettings remembered(settingsFolder.filePath(QStringLiteral("s.ini")), QSettings::IniFormat);
    home::TagsWindow::Settings settings;
    home_test::NotedPage::Notes notes;
    for (const auto id : {home::PageId::kTeaching, home::PageId::kLikeness, home::PageId::kSetup}) {
      settings.pages[id] = [&](home::Frame&) {
        return std::make_unique<home_test::NotedPage>(QStringLiteral("Page"), notes);
      };
    }
    home::TagsWindow window(work, remembered, settings);
    window.resize(size);
    window.show();
    window.activateWindow();
    static_cast<void>(QTest::qWaitForWindowActive(&window));
    home::Shelf shelf = home_test::MakeShelf();
    if (state == 0 || state == 3) {
      for (int i = 0; i < 12; ++i) {
        auto tag = home_test::MakeTag(
            QString::number(100 + i).toStdU16String(),
            u"Maximiliane von Hohenstein-Oberndorf " + QString::number(i).toStdU16String(),
            u"+49 30 555 01" + QString::number(i).toStdU16String(), u"BusinessFax");
        tag.taughtAt = 1'700'000'000 + i * 12345;
        tag.seconds = 0.9 + i / 10.0;
        tag.nearest = maintenance::AlikeTag{2, 0.5F};
        shelf.tags.push_back(tag);
      }
    }
    if (state == 1) {
      shelf.tags.clear();
    }
    if (state == 2) {
      shelf = {};
      shelf.peopleProblem =
          u"There are no contacts yet. Add people with telephone numbers to the desktop's address "
          u"book, or choose a vCard file in Set-up.";
    }
    if (state == 4) {
      shelf = {};
      shelf.tagsProblem = u"The settings cannot be opened: the file is no database.";
    }
    work.Show(shelf);
    auto* const list = window.findChild<home::TagList*>();
    list->setFocus();
    if (state == 0 || state == 3) {
      list->setCurrentIndex(list->model()->index(2, 0));
    }
    if (state == 3) {
      QTest::keyClick(list, Qt::Key_Return);
      QTest::keyClick(list, Qt::Key_Delete);
      work.EndDeleting({true, {}}, {u"x"});
    }
    if (state == 5) {
      window.findChild<QLineEdit*>(QStringLiteral("search"))->setText(QStringLiteral("nobody"));
    }
    for (int i = 0; i < 5; ++i) QApplication::processEvents();
    window.grab().save(folder + u'/' + QLatin1String(name) + QStringLiteral(".png"));
    std::printf("%s %dx%d\n", name, window.width(), window.height());
  };
  paint("desk", {900, 600}, 10, false, false, 0);
  paint("desk_dark", {900, 600}, 10, true, false, 0);
  paint("desk_rtl", {900, 600}, 10, false, true, 0);
  paint("desk_undo", {900, 600}, 10, false, false, 3);
  paint("desk_none", {900, 600}, 10, false, false, 1);
  paint("desk_search", {900, 600}, 10, false, false, 5);
  paint("phone", {360, 640}, 10, false, false, 0);
  paint("phone_dark", {360, 640}, 10, true, false, 3);
  paint("phone_rtl", {360, 640}, 10, false, true, 0);
  paint("phone_20", {360, 640}, 20, false, false, 3);
  paint("phone_nobody", {360, 640}, 10, false, false, 2);
  paint("phone_20_none", {360, 640}, 20, false, false, 1);
  paint("phone_unreadable", {360, 640}, 12, false, false, 4);
  paint("mid", {640, 500}, 9, false, false, 0);
  paint("desk_20", {1300, 800}, 20, false, false, 0);
  paint("wide", {2560, 900}, 12, true, false, 0);
  return 0;
}
