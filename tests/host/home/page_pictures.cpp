// page_pictures FOLDER: paints the states of the teaching and the likeness page, for people to look
// at.

#include <QApplication>
#include <QLineEdit>
#include <QListView>
#include <QLocale>
#include <QStyleFactory>
#include <QTest>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "host/home/lesson_panel.h"
#include "host/home/likeness_page.h"
#include "host/home/teaching_page.h"
#include "tests/host/home/page_fixture.h"
#include "voicemath/take_template.h"

namespace {

using home::TakeProgress;
using voicemath::Verdict;

/// How the desktop is set.
struct Look {
  const char* name;
  QSize size;
  int points = 10;
  bool isDark = false;
  bool isFromTheRight = false;
};

void Apply(const Look& look) {
  QFont font = QApplication::font();
  font.setPointSize(look.points);
  QApplication::setFont(font);
  QPalette palette = QApplication::style()->standardPalette();
  if (look.isDark) {
    palette = QPalette(QColor(53, 53, 53));
    palette.setColor(QPalette::Window, QColor(45, 45, 45));
    palette.setColor(QPalette::Base, QColor(30, 30, 30));
    palette.setColor(QPalette::Highlight, QColor(42, 130, 218));
  }
  QApplication::setPalette(palette);
  QApplication::setLayoutDirection(look.isFromTheRight ? Qt::RightToLeft : Qt::LeftToRight);
}

std::vector<std::int16_t> ReadSample(const std::string& name) {
  std::ifstream stream(VOXTREL_SAMPLES_DIR "/" + name, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
  std::vector<std::int16_t> samples;
  for (std::size_t at = 44; at + 1 < bytes.size(); at += 2) {
    const auto low = static_cast<unsigned char>(bytes[at]);
    const auto high = static_cast<unsigned char>(bytes[at + 1]);
    samples.push_back(static_cast<std::int16_t>(low | high << 8));
  }
  return samples;
}

void Save(QWidget& page, const QString& folder, const Look& look, const char* state) {
  for (int i = 0; i < 5; ++i) {
    QApplication::processEvents();
  }
  const QString name = QStringLiteral("%1_%2").arg(QLatin1String(state), QLatin1String(look.name));
  page.grab().save(folder + u'/' + name + QStringLiteral(".png"));
  std::printf("%s %dx%d\n", qPrintable(name), page.width(), page.height());
}

void PaintTeaching(const Look& look, const QString& folder) {
  home_test::Machine machine;
  home_test::PageWork work;
  home_test::NotedFrame frame;
  home::TeachingPage page(work, frame, machine.Get());
  page.OnShelf(std::make_shared<home::Shelf>(home_test::MakePeople()));
  page.resize(look.size);
  page.show();
  page.OnShown({});
  Save(page, folder, look, "people");
  auto* const search = page.findChild<QLineEdit*>(QStringLiteral("peopleSearch"));
  search->setText(QStringLiteral("zzz"));
  Save(page, folder, look, "nobody");
  search->setText(QStringLiteral("berg"));
  QTest::keyClick(search, Qt::Key_Return);
  Save(page, folder, look, "ready");
  auto* const panel =
      static_cast<home::LessonPanel*>(page.findChild<QWidget*>(QStringLiteral("lesson")));
  panel->ShowProgress({.stage = TakeProgress::Stage::kNoMicrophone});
  Save(page, folder, look, "no_microphone");
  panel->ShowProgress({});
  Save(page, folder, look, "get_ready");
  panel->ShowProgress(
      {.stage = TakeProgress::Stage::kSpeak, .leftMilliseconds = 2300, .levelDb = -4});
  panel->ShowProgress(
      {.stage = TakeProgress::Stage::kSpeak, .leftMilliseconds = 1900, .levelDb = -16});
  Save(page, folder, look, "speak");
  home::HeardTake take;
  take.samples = ReadSample("anna_1.wav");
  take.kept = voicemath::FindKeptPart(take.samples);
  panel->ShowTake(take);
  Save(page, folder, look, "good");
  take.quality.verdicts = {Verdict::kCutStart, Verdict::kNoisy};
  take.quality.snrDb = 6;
  panel->ShowTake(take);
  panel->ShowAlike({u"Hanna Berg"});
  Save(page, folder, look, "bad");
  panel->ShowKeeping();
  Save(page, folder, look, "keeping");
}

/// So many tags, of which some are alike.
home::Shelf MakeAlikeTags(std::size_t count) {
  home::Shelf shelf;
  const std::vector<std::u16string> names{u"Anna Berg",    u"Hanna Berg",
                                          u"Robert Stone", u"Élodie de la Fontaine-Montgomery",
                                          u"דוד לוי",      u"李小龙"};
  for (std::size_t i = 0; i < count; ++i) {
    home::Tag tag;
    tag.name = QString::number(i).toStdU16String();
    tag.contact = i < names.size() ? names[i] : u"Person " + QString::number(i).toStdU16String();
    tag.kind = u"Mobile";
    tag.number = u"+49 171 555 0101";
    const std::size_t other = (i * 7 + 3) % count;
    tag.nearest = maintenance::AlikeTag{other, 0.3F + static_cast<float>(i) / 200};
    if (i % 8 == 0) {
      tag.quality.tooAlike = {{i + 1, 0.08F + static_cast<float>(i) / 1000}};
    }
    shelf.tags.push_back(tag);
  }
  return shelf;
}

void PaintLikeness(const Look& look, const QString& folder) {
  home_test::PageWork work;
  home_test::NotedFrame frame;
  for (const std::size_t count : {0U, 6U, 30U, 100U}) {
    home::LikenessPage page(work, frame);
    page.OnShelf(std::make_shared<home::Shelf>(MakeAlikeTags(count)));
    page.resize(look.size);
    page.show();
    page.OnShown({});
    Save(page, folder, look, ("likeness" + std::to_string(count)).c_str());
  }
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
  const QString folder = QString::fromLocal8Bit(argc > 1 ? argv[1] : ".");
  for (const Look& look :
       {Look{"desk", {900, 544}}, Look{"dark", {900, 544}, 10, true},
        Look{"rtl", {900, 544}, 10, false, true}, Look{"phone", {360, 584}},
        Look{"phone_dark", {360, 584}, 10, true}, Look{"phone_20", {360, 584}, 20},
        Look{"desk_20", {1300, 744}, 20}, Look{"wide", {2560, 900}, 12}}) {
    Apply(look);
    PaintTeaching(look, folder);
    PaintLikeness(look, folder);
  }
  return 0;
}
