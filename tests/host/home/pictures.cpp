// home_pictures FOLDER: paints the states of the list of tags into PNG files, for people to look
// at.

#include <QApplication>
#include <QLineEdit>
#include <QLocale>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "tests/host/home/window_fixture.h"

namespace {

enum class State : std::uint8_t { kTags, kDeleted, kNoTags, kNobody, kUnreadable, kNotFound };

struct Scene {
  const char* name;
  QSize size;
  int points = 10;
  State state = State::kTags;
  bool isDark = false;
  Qt::LayoutDirection direction = Qt::LeftToRight;
};

constexpr QSize kDesk(900, 600);
constexpr QSize kPhone(360, 640);

const std::vector<Scene> kScenes = {
    {"desk", kDesk},
    {"desk_dark", kDesk, 10, State::kTags, true},
    {"desk_from_the_right", kDesk, 10, State::kTags, false, Qt::RightToLeft},
    {"desk_deleted", kDesk, 10, State::kDeleted},
    {"desk_no_tags", kDesk, 10, State::kNoTags},
    {"desk_not_found", kDesk, 10, State::kNotFound},
    {"desk_small", {660, 500}, 9},
    {"desk_large_letters", {1300, 800}, 20},
    {"desk_wide_dark", {2560, 900}, 12, State::kTags, true},
    {"phone", kPhone},
    {"phone_dark", kPhone, 10, State::kDeleted, true},
    {"phone_from_the_right", kPhone, 10, State::kTags, false, Qt::RightToLeft},
    {"phone_large_letters", kPhone, 20, State::kDeleted},
    {"phone_nobody", kPhone, 10, State::kNobody},
    {"phone_no_tags_large_letters", kPhone, 20, State::kNoTags},
    {"phone_unreadable", kPhone, 12, State::kUnreadable},
};

home::Shelf MakeManyTags() {
  home::Shelf shelf = home_test::MakeShelf();
  constexpr int kMore = 12;
  constexpr std::int64_t kFirst = 1'700'000'000;
  constexpr std::int64_t kDay = 86'400;
  for (int i = 0; i < kMore; ++i) {
    const std::u16string number = QString::number(i).toStdU16String();
    home::Tag tag =
        home_test::MakeTag(u"10" + number, u"Maximiliane von Hohenstein-Oberndorf " + number,
                           u"+49 30 555 01" + number, u"BusinessFax");
    tag.taughtAt = kFirst + i * kDay;
    tag.seconds = 0.9 + i / 10.0;
    tag.nearest = maintenance::AlikeTag{2, 0.5F};
    shelf.tags.push_back(tag);
  }
  return shelf;
}

home::Shelf MakeShelfFor(State state) {
  home::Shelf shelf;
  switch (state) {
    case State::kNoTags:
      return shelf;
    case State::kNobody:
      shelf.peopleProblem =
          u"There are no contacts yet. Add people with telephone numbers to the desktop's address "
          u"book, or choose a vCard file in Set-up.";
      return shelf;
    case State::kUnreadable:
      shelf.tagsProblem = u"The settings cannot be opened: the file is no database.";
      return shelf;
    default:
      return MakeManyTags();
  }
}

void Prepare(const Scene& scene) {
  QFont font = QApplication::font();
  font.setPointSize(scene.points);
  QApplication::setFont(font);
  QPalette palette = QApplication::style()->standardPalette();
  if (scene.isDark) {
    palette = QPalette(QColor(45, 45, 45));
    palette.setColor(QPalette::Base, QColor(30, 30, 30));
    palette.setColor(QPalette::AlternateBase, QColor(40, 40, 40));
    palette.setColor(QPalette::Highlight, QColor(42, 130, 218));
  }
  QApplication::setPalette(palette);
  QApplication::setLayoutDirection(scene.direction);
}

/// Does what leads to the state.
void Act(State state, const home::TagsWindow& window, home_test::NotedWork& work) {
  auto* const list = window.findChild<home::TagList*>();
  list->setFocus();
  if (state == State::kTags || state == State::kDeleted) {
    list->setCurrentIndex(list->model()->index(2, 0));
  }
  if (state == State::kDeleted) {
    QTest::keyClick(list, Qt::Key_Return);
    QTest::keyClick(list, Qt::Key_Delete);
    work.EndDeleting({true, {}}, {u"trashed"});
  } else if (state == State::kNotFound) {
    window.findChild<QLineEdit*>(QStringLiteral("search"))->setText(QStringLiteral("nobody"));
  }
  constexpr int kDeepestLayout = 8;
  for (int i = 0; i < kDeepestLayout; ++i) {
    QApplication::processEvents();
  }
}

bool Paint(const Scene& scene, const QString& folder) {
  Prepare(scene);
  home_test::NotedWork work;
  const QTemporaryDir nothing;
  QSettings remembered(nothing.filePath(QStringLiteral("none.ini")), QSettings::IniFormat);
  home::TagsWindow::Settings settings;
  home_test::NotedPage::Notes notes;
  for (const auto id : {home::PageId::kTeaching, home::PageId::kLikeness, home::PageId::kSetup}) {
    settings.pages[id] = [&notes](home::Frame& /*frame*/) {
      return std::make_unique<home_test::NotedPage>(QStringLiteral("Page"), notes);
    };
  }
  home::TagsWindow window(work, remembered, settings);
  window.resize(scene.size);
  window.show();
  window.activateWindow();
  if (!QTest::qWaitForWindowActive(&window)) {
    return false;
  }
  work.Show(MakeShelfFor(scene.state));
  Act(scene.state, window, work);
  return window.grab().save(folder + u'/' + QLatin1String(scene.name) + QStringLiteral(".png"));
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() != 2) {
    std::fputs("usage: home_pictures FOLDER\n", stderr);
    return 2;
  }
  return std::ranges::all_of(kScenes,
                             [&](const Scene& scene) { return Paint(scene, arguments.at(1)); })
             ? 0
             : 1;
}
