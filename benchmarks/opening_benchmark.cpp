// From the loading of the applet's library to its window, each time in a process of its own and on
// a screen that is not there: a hundred tags and a thousand contacts, none of them, and a window
// that shows as much and does nothing.

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>
#include <array>
#include <cstdio>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <unistd.h>

#include "benchmarks/full_device.h"
#include "benchmarks/moments.h"
#include "host/panel/applet_talk.h"
#include "tests/support/run_program.h"

namespace {

constexpr int kManyContacts = 10'000;

constexpr int kRounds = 31;

struct Cost {
  double wall = 0;
  double processor = 0;
};

Cost Now() {
  return {benchmarks::Milliseconds(CLOCK_MONOTONIC),
          benchmarks::Milliseconds(CLOCK_PROCESS_CPUTIME_ID)};
}

/// Ends the process once a window with tabs has been painted with all that is in it, and prints the
/// time since this object was made. Fails if its list does not hold as many lines as expected.
class ShownWindow final : public QObject {
 public:
  explicit ShownWindow(int lines) : m_lines(lines) { qApp->installEventFilter(this); }

  bool eventFilter(QObject* watched, QEvent* event) override {
    const auto* window = dynamic_cast<QDialog*>(watched);
    if (event->type() == QEvent::Paint && window != nullptr &&
        window->findChild<QTabWidget*>() != nullptr) {
      QTimer::singleShot(0, this, [this, window] {
        const Cost end = Now();
        if (window->findChild<QListWidget*>()->count() != m_lines) {
          ::_exit(1);
        }
        std::printf("%f %f\n", end.wall - m_begin.wall, end.processor - m_begin.processor);
        std::fflush(stdout);
        ::_exit(0);
      });
    }
    return false;
  }

 private:
  const int m_lines;
  const Cost m_begin = Now();
};

int ShowApplet(int lines) {
  const ShownWindow shown(lines);
  const auto library = panel::AppletLibrary::Load(VOXTREL_APPLET);
  if (library) {
    if (const auto talk = panel::AppletTalk::Begin(*library)) {
      (*talk)->Open(0);
    }
  }
  return 1;
}

int ShowWidgets(int people) {
  const ShownWindow shown(benchmarks::kTags);
  QDialog window;
  auto* page = new QWidget;
  auto* tabs = new QTabWidget;
  tabs->addTab(page, QStringLiteral("Learning"));
  (new QVBoxLayout(&window))->addWidget(tabs);
  auto* contacts = new QComboBox;
  auto* list = new QListWidget;
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(contacts);
  layout->addWidget(list);
  for (int i = 0; i < people; ++i) {
    contacts->addItem(QStringLiteral("Family%1 Given").arg(i));
  }
  for (std::uint32_t i = 0; i < benchmarks::kTags; ++i) {
    list->addItem(QStringLiteral("Given Family%1 +1 555 100 %1 M").arg(i));
  }
  for (const char* const text : {"Record", "Play", "Delete", "Delete All", "Test", "OK"}) {
    layout->addWidget(new QPushButton(QString::fromLatin1(text)));
  }
  window.exec();
  return 1;
}

Cost Measure(const char* program, const char* way, const std::string& root,
             const std::string& contacts, const std::string& cache) {
  const auto run =
      support::RunProgram({program, way}, {"VOXTREL_ROOT=" + root, "VOXTREL_CONTACTS=" + contacts,
                                           "XDG_CACHE_HOME=" + cache, "QT_QPA_PLATFORM=offscreen"});
  Cost cost;
  std::istringstream(run.out) >> cost.wall >> cost.processor;
  if (run.exitCode != 0 || cost.wall == 0) {
    std::fprintf(stderr, "%s was not shown: %s\n", way, run.err.c_str());
    std::exit(1);
  }
  return cost;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2) {
    const QApplication application(argc, argv);
    const std::string_view way = argv[1];
    if (way.ends_with("widgets")) {
      return ShowWidgets(way == "widgets" ? benchmarks::kContacts : kManyContacts);
    }
    return ShowApplet(way == "empty" ? 0 : benchmarks::kTags);
  }
  const benchmarks::FullDevice full;
  const benchmarks::FullDevice many(kManyContacts);
  const support::TempFolder empty;
  const support::TempFolder cache;
  struct Way {
    const char* name;
    const char* title;
    std::string root;
    std::string contacts;
    std::vector<double> wall;
    std::vector<double> processor;
  };
  std::array<Way, 5> ways{
      {{"widgets", "bare widgets", empty.Path().string(), full.GetFile(), {}, {}},
       {"empty", "no tags", empty.Path().string(), full.GetFile(), {}, {}},
       {"full", "100 tags, 1,000 contacts", full.GetRoot(), full.GetFile(), {}, {}},
       {"many-widgets", "bare, 10,000 contacts", empty.Path().string(), many.GetFile(), {}, {}},
       {"many", "100 tags, 10,000 contacts", many.GetRoot(), many.GetFile(), {}, {}}}};
  // A copy is kept of one file. Each device has its own, as one user has.
  const auto folderOf = [&](const Way& way) {
    return (cache.Path() / (way.contacts == many.GetFile() ? "many" : "few")).string();
  };
  for (int round = 0; round < kRounds; ++round) {
    for (Way& way : ways) {
      const Cost cost = Measure(argv[0], way.name, way.root, way.contacts, folderOf(way));
      way.wall.push_back(cost.wall);
      way.processor.push_back(cost.processor);
    }
  }
  std::printf("%-26s %10s %14s %8s\n", "library loaded to shown", "elapsed ms", "processor ms",
              "ratio");
  for (const Way& way : ways) {
    const double wall = benchmarks::Median(way.wall);
    const bool isMany = std::string_view(way.name).starts_with("many");
    const double bare = benchmarks::Median(ways.at(isMany ? 3 : 0).wall);
    std::printf("%-26s %10.1f %14.1f %7.2fx\n", way.title, wall, benchmarks::Median(way.processor),
                wall / bare);
  }
  return 0;
}
