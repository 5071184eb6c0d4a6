#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QItemSelectionModel>
#include <QLabel>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/home/tag_list.h"
#include "host/home/tags_window.h"
#include "host/home/work.h"

namespace home_test {

/// Notes what it is asked for, and answers when the test says so.
class NotedWork final : public home::Work {
 public:
  void OnLoaded(std::function<void(std::shared_ptr<const home::Shelf>)> show) override {
    m_show = std::move(show);
  }
  void Load() override { ++loads; }
  void LoadIfChanged() override { ++looks; }
  void Play(const std::u16string& tag, Answer answer) override {
    played.push_back(tag);
    m_playing = std::move(answer);
  }
  void StopPlaying() override { ++stops; }
  void Delete(const std::vector<std::u16string>& tags, DeletedAnswer answer) override {
    deleted = tags;
    m_deleted = std::move(answer);
  }
  void ListTrash(TrashAnswer /*answer*/) override {}
  void Restore(const std::vector<std::u16string>& trashed, Answer answer) override {
    restored = trashed;
    m_restored = std::move(answer);
  }
  void Compare(const home::Lesson& /*lesson*/, ComparedAnswer /*answer*/) override {}
  void Teach(const home::Lesson& /*lesson*/, TaughtAnswer /*answer*/) override {}

  void Show(home::Shelf shelf) { m_show(std::make_shared<const home::Shelf>(std::move(shelf))); }
  [[nodiscard]] Answer TakePlaying() { return std::exchange(m_playing, {}); }
  void EndPlaying(const home::Outcome& outcome = {true, {}}) {
    std::exchange(m_playing, {})(outcome);
  }
  void EndDeleting(const home::Outcome& outcome, const std::vector<std::u16string>& trashed) {
    std::exchange(m_deleted, {})(outcome, trashed);
  }
  void EndRestoring(const home::Outcome& outcome) { std::exchange(m_restored, {})(outcome); }

  int loads = 0;
  int looks = 0;
  int stops = 0;
  std::vector<std::u16string> played;
  std::vector<std::u16string> deleted;
  std::vector<std::u16string> restored;

 private:
  std::function<void(std::shared_ptr<const home::Shelf>)> m_show;
  Answer m_playing;
  DeletedAnswer m_deleted;
  Answer m_restored;
};

inline home::Tag MakeTag(std::u16string name, std::u16string contact, std::u16string number,
                         std::u16string kind = u"Mobile") {
  home::Tag tag;
  tag.name = std::move(name);
  tag.contact = std::move(contact);
  tag.number = std::move(number);
  tag.kind = std::move(kind);
  tag.quality.take = voicemath::TakeQuality{};
  return tag;
}

/// Four tags: a good one, a soft one, one that sounds like another, and one whose contact is gone.
inline home::Shelf MakeShelf() {
  constexpr std::int64_t kNoon = 1'700'000'000;
  constexpr std::int64_t kDay = 86'400;
  home::Shelf shelf;
  shelf.tags = {MakeTag(u"11", u"Anna Berg", u"+49 171 555 0101"),
                MakeTag(u"22", u"דוד לוי", u"+972 50 555 0144", u"HomeFax"),
                MakeTag(u"33", u"Hanna Berg", u"+44 20 7946 0958", u"Business2"),
                MakeTag(u"44", u"44", u"", u"")};
  shelf.tags[0].taughtAt = kNoon;
  shelf.tags[0].seconds = 1.25;
  shelf.tags[1].taughtAt = kNoon - kDay;
  shelf.tags[1].seconds = 0.5;
  shelf.tags[1].quality.take = voicemath::TakeQuality{{voicemath::Verdict::kSoft}, -44.5, 22};
  shelf.tags[2].taughtAt = kNoon + kDay;
  shelf.tags[2].seconds = 2;
  shelf.tags[2].quality.take->Add(voicemath::Verdict::kTooAlike);
  shelf.tags[2].quality.tooAlike = {{0, 0.21F}};
  shelf.tags[0].quality.nearest = maintenance::AlikeTag{2, 0.21F};
  shelf.tags[2].quality.nearest = maintenance::AlikeTag{0, 0.21F};
  shelf.tags[1].quality.nearest = maintenance::AlikeTag{0, 0.8F};
  shelf.tags[3].isStale = true;
  shelf.tags[3].quality.take = tl::unexpected(voicemath::ReviewError::kNotOpened);
  shelf.people = {{1, u"Anna Berg", u"Harbour Works", {{u"Mobile", u"+49 171 555 0101"}}},
                  {2, u"Hanna Berg", u"Windmill", {{u"Business2", u"+44 20 7946 0958"}}}};
  return shelf;
}

/// A page that notes what happens to it.
class NotedPage final : public home::Page {
 public:
  struct Notes {
    std::vector<std::u16string> shown;
    int left = 0;
    QStringList dropped;
    std::shared_ptr<const home::Shelf> shelf;
  };

  NotedPage(const QString& title, Notes& notes) : m_notes(notes) { setWindowTitle(title); }

  void OnShelf(const std::shared_ptr<const home::Shelf>& shelf) override { m_notes.shelf = shelf; }
  void OnShown(const std::u16string& tag) override { m_notes.shown.push_back(tag); }
  void OnLeft() override { ++m_notes.left; }
  void OnFilesDropped(const QStringList& paths) override { m_notes.dropped = paths; }

 private:
  Notes& m_notes;
};

/// A window on a screen that nobody sees, over work that the test answers.
class WindowTest : public ::testing::Test {
 protected:
  WindowTest() {
    const auto add = [this](home::PageId id, const char* title) {
      m_settings.pages[id] = [this, id, title](home::Frame& /*frame*/) {
        return std::make_unique<NotedPage>(QLatin1String(title), m_notes[id]);
      };
    };
    add(home::PageId::kTeaching, "Teaching");
    add(home::PageId::kLikeness, "Likeness");
    add(home::PageId::kSetup, "Set-up");
    add(home::PageId::kTrash, "Deleted tags");
    add(home::PageId::kDial, "Say a name");
    m_settings.start = [this](const machine::Program& program, const QStringList& arguments) {
      m_started = QStringList(QLatin1String(program.name)) + arguments;
      return m_canStart;
    };
    m_settings.openHelp = [this] { ++m_helps; };
  }

  void Open(QSize size = {900, 600}) {
    m_window.reset();
    m_window = std::make_unique<home::TagsWindow>(m_work, m_remembered, m_settings);
    m_window->resize(size);
    m_window->show();
    m_window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
    m_list = m_window->findChild<home::TagList*>();
  }
  void OpenFull(QSize size = {900, 600}) {
    Open(size);
    m_work.Show(MakeShelf());
    m_list->setFocus();
  }

  template <typename Widget>
  [[nodiscard]] Widget* Find(const char* name) const {
    return m_window->findChild<Widget*>(QLatin1String(name));
  }
  /// The texts of a column, from the top.
  [[nodiscard]] QStringList Texts(home::Column column) const {
    QStringList texts;
    for (int row = 0; row < m_list->model()->rowCount(); ++row) {
      texts.append(m_list->model()->index(row, column).data().toString());
    }
    return texts;
  }
  /// Makes the row with that name the current one, as a click on it does.
  void Choose(const char* name) const {
    const qsizetype row = Texts(home::kName).indexOf(QString::fromUtf8(name));
    ASSERT_GE(row, 0) << name;
    m_list->selectionModel()->setCurrentIndex(
        m_list->model()->index(static_cast<int>(row), 0),
        QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  }
  [[nodiscard]] std::string Message() const {
    const auto* const message = Find<QLabel>("message");
    return message->isVisible() ? message->text().toStdString() : std::string();
  }

  NotedWork m_work;
  QTemporaryDir m_folder;
  QSettings m_remembered{m_folder.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat};
  home::TagsWindow::Settings m_settings;
  std::map<home::PageId, NotedPage::Notes> m_notes;
  QStringList m_started;
  bool m_canStart = true;
  int m_helps = 0;
  std::unique_ptr<home::TagsWindow> m_window;
  home::TagList* m_list = nullptr;
};

}  // namespace home_test
