#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QTest>
#include <fstream>
#include <iterator>
#include <string>

#include "host/home/dial_page.h"
#include "host/home/lesson_panel.h"
#include "host/home/likeness_page.h"
#include "host/home/teaching_page.h"
#include "host/home/trash_page.h"
#include "tests/host/home/looks.h"
#include "tests/host/home/page_fixture.h"
#include "voicemath/take_template.h"

namespace {

using home::TakeProgress;
using home_test::Look;
using home_test::Save;
using voicemath::Verdict;

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
    tag.quality.nearest = maintenance::AlikeTag{other, 0.3F + static_cast<float>(i) / 200};
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

void PaintTrash(const Look& look, const QString& folder) {
  constexpr std::int64_t kNoon = 1'700'000'000;
  home_test::PageWork work;
  home_test::NotedFrame frame;
  home::TrashPage page(work, frame);
  page.OnShelf(std::make_shared<home::Shelf>(home_test::MakePeople()));
  page.resize(look.size);
  page.show();
  page.OnShown({});
  work.endListing({true, {}}, {{u"a", 11, u"Mobile", u"Anna Berg +49 171 555 0101 M", kNoon, u""},
                               {u"b", 99, u"Home", u"Carl Poe 555 0100 H", kNoon,
                                u"Its person is in another address book."},
                               {u"c", 13, u"Business2", u"Élodie", kNoon, u""},
                               {u"d", 12, u"HomeFax", u"דוד לוי", kNoon, u""}});
  auto* const list = page.findChild<QListWidget*>();
  list->item(0)->setSelected(true);
  list->item(2)->setSelected(true);
  list->setCurrentRow(1, QItemSelectionModel::NoUpdate);
  Save(page, folder, look, "trash");
}

dialer::Callee CalleeOf(std::int32_t oid, std::u16string name, std::u16string number) {
  dialer::Callee callee;
  callee.candidate = {.tag = {}, .oid = oid, .phoneKind = u"Mobile"};
  callee.name = std::move(name);
  callee.number = std::move(number);
  return callee;
}

void PaintDialing(const Look& look, const QString& folder) {
  constexpr std::int64_t kNoon = 1'700'000'000;
  home_test::Machine machine;
  home_test::PageWork work;
  home_test::NotedFrame frame;
  const dialer::Callee anna = CalleeOf(11, u"Anna Berg", u"+49 171 555 0101");
  const std::vector<dialer::Callee> three{
      anna, CalleeOf(13, u"Élodie de la Fontaine-Montgomery", u"+33 1 99 00 12 34 56"),
      CalleeOf(12, u"דוד לוי", u"+972 50 555 0144")};
  home::DialPage page(work, frame,
                      {{machine.time, [](const auto& /*use*/) { return std::u16string(); }}, [] {
                         return std::vector<dialer::RecentCall>{{kNoon, 11, u"Mobile"},
                                                                {kNoon, 13, u"Business2"},
                                                                {kNoon, 12, u"HomeFax"}};
                       }});
  page.OnShelf(std::make_shared<home::Shelf>(home_test::MakePeople()));
  page.resize(look.size);
  page.show();
  page.OnShown({});
  Save(page, folder, look, "dial");
  const auto show = [&](dialer::Step step, std::vector<dialer::Callee> callees,
                        std::u16string outcome, const char* state, bool isLast = false) {
    page.OnStep(
        {step, std::move(callees), dialer::NotHeard::kNoMicrophone, std::move(outcome), true});
    if (isLast) {
      page.OnEnded({});
    }
    Save(page, folder, look, state);
  };
  show(dialer::Step::kUnknown, {}, {}, "dial_unknown");
  show(dialer::Step::kSpeak, {}, {}, "dial_again");
  show(dialer::Step::kSure, {anna}, {}, "dial_sure");
  show(dialer::Step::kOneOf, three, {}, "dial_one_of");
  show(dialer::Step::kCalling, {anna}, {}, "dial_calling");
  show(dialer::Step::kDialling, {anna}, {}, "dial_dialling");
  show(dialer::Step::kCalled, {anna}, u"the number was dialled", "dial_called");
  show(dialer::Step::kInCall, {anna}, {}, "dial_in_call");
  show(dialer::Step::kNotHungUp, {anna}, u"the modem does not take the command",
       "dial_not_hung_up");
  show(dialer::Step::kInCall, {anna}, {}, "dial_in_call_still");
  show(dialer::Step::kOffer, {anna}, {}, "dial_offer");
  show(dialer::Step::kHungUp, {anna}, {}, "dial_hung_up", true);
  show(dialer::Step::kNotCalled, {anna}, u"nobody answers", "dial_not_called", true);
  show(dialer::Step::kNothingTaught, {}, {}, "dial_nothing", true);
  show(dialer::Step::kNotHeard, {}, {}, "dial_no_microphone", true);
}

}  // namespace

namespace home_test {

void PaintPages(const Look& look, const QString& folder) {
  PaintTeaching(look, folder);
  PaintLikeness(look, folder);
  PaintTrash(look, folder);
  PaintDialing(look, folder);
}

}  // namespace home_test
