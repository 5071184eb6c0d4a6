#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QScrollArea>
#include <QStyle>
#include <QStyleOptionFrame>
#include <algorithm>
#include <memory>
#include <string>

#include "host/home/dial_page.h"
#include "host/home/lesson_panel.h"
#include "host/home/likeness_page.h"
#include "host/home/teaching_page.h"
#include "host/home/trash_page.h"
#include "resources/translations.h"
#include "tests/host/home/page_fixture.h"
#include "tests/host/home/setup_fixture.h"
#include "tests/host/home/window_fixture.h"
#include "voicemath/take_template.h"

namespace {

using home::TakeProgress;
using voicemath::Verdict;

constexpr QSize kPhone(360, 640);

/// A language for the time of a test.
class Spoken {
 public:
  explicit Spoken(const char* language) {
    resources::ChooseLanguage(language);
    QLocale::setDefault(QLocale(QLatin1String(*language == 0 ? "en" : language)));
  }
  Spoken(const Spoken&) = delete;
  Spoken& operator=(const Spoken&) = delete;
  ~Spoken() {
    resources::ChooseLanguage({});
    QLocale::setDefault(QLocale::c());
  }
};

QSize RoomForText(const QLineEdit& edit) {
  QStyleOptionFrame option;
  option.initFrom(&edit);
  option.lineWidth = edit.style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, &edit);
  return edit.style()->subElementRect(QStyle::SE_LineEditContents, &option, &edit).size();
}

void ExpectLabelWhole(const QLabel& label) {
  const QRect room = label.contentsRect();
  const int flags = label.wordWrap() ? Qt::TextWordWrap : 0;
  constexpr int kEndless = 10'000;
  const QRect needed = label.fontMetrics().boundingRect(
      QRect(0, 0, label.wordWrap() ? room.width() : kEndless, kEndless), flags, label.text());
  EXPECT_LE(needed.width(), room.width()) << label.text().toStdString();
  EXPECT_LE(needed.height(), room.height()) << label.text().toStdString();
}

/// Nothing that is shown is cut off, and the window is no wider than the screen of a phone.
void ExpectWhole(QWidget& window, QSize size) {
  window.resize(size);
  for (int i = 0; i < 5; ++i) {
    QApplication::processEvents();
  }
  EXPECT_EQ(window.width(), size.width()) << "it needs more room";
  for (const auto* label : window.findChildren<QLabel*>()) {
    if (label->isVisible() && !label->text().isEmpty()) {
      ExpectLabelWhole(*label);
    }
  }
  for (const auto* button : window.findChildren<QAbstractButton*>()) {
    if (button->isVisible() && !button->text().isEmpty()) {
      EXPECT_LE(button->minimumSizeHint().width(), button->width()) << button->text().toStdString();
      EXPECT_LE(button->fontMetrics().size(Qt::TextShowMnemonic, button->text()).width(),
                button->width())
          << button->text().toStdString();
    }
  }
  for (const auto* edit : window.findChildren<QLineEdit*>()) {
    if (edit->isVisible()) {
      EXPECT_LE(edit->fontMetrics().horizontalAdvance(edit->placeholderText()),
                RoomForText(*edit).width())
          << edit->placeholderText().toStdString();
    }
  }
  for (const auto* area : window.findChildren<QScrollArea*>()) {
    if (area->isVisible()) {
      EXPECT_LE(area->widget()->width(), area->viewport()->width());
    }
  }
}

class TagsWindowInALanguage : public home_test::WindowTest,
                              public testing::WithParamInterface<const char*> {
 private:
  Spoken m_spoken{GetParam()};
};

TEST_P(TagsWindowInALanguage, ShowsItsTextsWholeOnAPhone) {
  Open(kPhone);
  ExpectWhole(*m_window, kPhone);
  m_work.Show({});
  ExpectWhole(*m_window, kPhone);
  m_work.Show(home_test::MakeShelf());
  ExpectWhole(*m_window, kPhone);
  Choose("Anna Berg");
  QTest::keyClick(m_list, Qt::Key_Delete);
  m_work.EndDeleting({true, {}}, {u"x"});
  ExpectWhole(*m_window, kPhone);
  Find<QLineEdit>("search")->setText(QStringLiteral("zzz"));
  ExpectWhole(*m_window, kPhone);
}

TEST_P(TagsWindowInALanguage, ShowsTheTitlesOfItsColumnsWholeOnADesktop) {
  OpenFull();
  const auto* const header = m_window->findChild<QHeaderView*>();
  for (int column = 0; column < header->count(); ++column) {
    EXPECT_LE(header->sectionSizeHint(column), header->sectionSize(column))
        << header->model()->headerData(column, Qt::Horizontal).toString().toStdString();
  }
}

class PagesInALanguage : public testing::TestWithParam<const char*> {
 protected:
  Spoken m_spoken{GetParam()};
  home_test::Machine m_machine;
  home_test::PageWork m_work;
  home_test::NotedFrame m_frame;
};

TEST_P(PagesInALanguage, TheTeachingPageShowsItsTextsWholeOnAPhone) {
  home::TeachingPage page(m_work, m_frame, m_machine.Get());
  page.OnShelf(std::make_shared<home::Shelf>(home_test::MakePeople()));
  page.show();
  page.OnShown({});
  ExpectWhole(page, kPhone);
  auto* const search = page.findChild<QLineEdit*>(QStringLiteral("peopleSearch"));
  search->setText(QStringLiteral("zzz"));
  ExpectWhole(page, kPhone);
  search->setText(QStringLiteral("berg"));
  QTest::keyClick(search, Qt::Key_Return);
  ExpectWhole(page, kPhone);
  auto* const panel =
      static_cast<home::LessonPanel*>(page.findChild<QWidget*>(QStringLiteral("lesson")));
  for (const auto stage : {TakeProgress::Stage::kNoMicrophone, TakeProgress::Stage::kSpeak}) {
    panel->ShowProgress({.stage = stage});
    ExpectWhole(page, kPhone);
  }
  home::HeardTake take;
  take.samples.assign(33'000, 100);
  take.kept = voicemath::FindKeptPart(take.samples);
  panel->ShowTake(take);
  ExpectWhole(page, kPhone);
  take.quality.verdicts = {Verdict::kCutStart, Verdict::kNoisy};
  take.quality.snrDb = 6;
  panel->ShowTake(take);
  panel->ShowAlike({u"Hanna Berg"});
  ExpectWhole(page, kPhone);
  panel->ShowKeeping();
  ExpectWhole(page, kPhone);
}

TEST_P(PagesInALanguage, TheLikenessPageShowsItsTextsWholeOnAPhone) {
  for (const std::size_t count : {0U, 4U}) {
    home::LikenessPage page(m_work, m_frame);
    home::Shelf shelf = home_test::MakeShelf();
    shelf.tags.resize(count);
    page.OnShelf(std::make_shared<home::Shelf>(shelf));
    page.show();
    page.OnShown({});
    ExpectWhole(page, kPhone);
  }
}

TEST_P(PagesInALanguage, ThePageOfDeletedTagsShowsItsTextsWholeOnAPhone) {
  home::TrashPage page(m_work, m_frame);
  page.show();
  page.OnShown({});
  m_work.endListing({true, {}}, {});
  ExpectWhole(page, kPhone);
  page.OnShown({});
  m_work.endListing({true, {}}, {{u"a", 11, u"Mobile", u"Anna Berg", 1'700'000'000, u""}});
  ExpectWhole(page, kPhone);
}

TEST_P(PagesInALanguage, TheDialersPageShowsItsTextsWholeOnAPhone) {
  home::DialPage page(m_work, m_frame,
                      {{m_machine.time, [](const auto& /*use*/) { return std::u16string(); }},
                       [] { return std::vector<dialer::RecentCall>(); }});
  page.show();
  page.OnShown({});
  ExpectWhole(page, kPhone);
  const std::vector<dialer::Callee> callees(
      2, {.candidate = {.tag = {}, .oid = 11, .phoneKind = u"BusinessFax"},
          .name = u"Anna Berg",
          .number = u"+49 171 555 0101"});
  for (int i = 0; i <= static_cast<int>(dialer::Step::kHungUp); ++i) {
    page.OnStep({static_cast<dialer::Step>(i), callees, dialer::NotHeard::kRefused, {}, true});
    ExpectWhole(page, kPhone);
  }
}

class SetupInALanguage : public home_test::SetupPageTest,
                         public testing::WithParamInterface<const char*> {
 private:
  Spoken m_spoken{GetParam()};
};

TEST_P(SetupInALanguage, ShowsItsTextsWholeOnAPhone) {
  m_inputs.Set({{u"a", u"Built-in Audio", true}, {u"b", u"USB Headset", false}});
  Open();
  EXPECT_TRUE(Await([this] { return Text("bookPeople").contains(u'1'); }));
  ExpectWhole(*m_page, kPhone);
  Press("check");
  EXPECT_TRUE(Await([this] { return Find<QPushButton>("check")->isEnabled(); }));
  ExpectWhole(*m_page, kPhone);
}

TEST(GermanWindow, ShowsGermanTextsAndNumbersAsGermansWriteThem) {
  const Spoken german("de");
  home_test::PageWork work;
  home_test::NotedFrame frame;
  home_test::Machine machine;
  home::TeachingPage page(work, frame, machine.Get());
  page.OnShelf(std::make_shared<home::Shelf>(home_test::MakePeople()));
  page.show();
  page.OnShown({});
  EXPECT_EQ(page.windowTitle(), QStringLiteral("Namen beibringen"));
  auto* const search = page.findChild<QLineEdit*>(QStringLiteral("peopleSearch"));
  search->setText(QStringLiteral("berg"));
  QTest::keyClick(search, Qt::Key_Return);
  home::HeardTake take;
  take.samples.assign(33'000, 100);
  take.kept = voicemath::FindKeptPart(take.samples);
  take.quality.verdicts = {Verdict::kSoft};
  take.quality.peakDb = -44.5;
  static_cast<home::LessonPanel*>(page.findChild<QWidget*>(QStringLiteral("lesson")))
      ->ShowTake(take);
  const auto labels = page.findChildren<QLabel*>();
  EXPECT_TRUE(std::ranges::any_of(labels, [](const QLabel* label) {
    return label->isVisible() && label->text().contains(QStringLiteral("44,5"));
  }));
}

constexpr const char* kLanguages[] = {"", "de", "es", "fr", "ru", "zh-Hans"};

INSTANTIATE_TEST_SUITE_P(Languages, TagsWindowInALanguage, testing::ValuesIn(kLanguages));
INSTANTIATE_TEST_SUITE_P(Languages, PagesInALanguage, testing::ValuesIn(kLanguages));
INSTANTIATE_TEST_SUITE_P(Languages, SetupInALanguage, testing::ValuesIn(kLanguages));

}  // namespace
