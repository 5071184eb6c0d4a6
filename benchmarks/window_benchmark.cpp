// The Voice tags window next to a window of bare widgets with as many rows, each time in a process
// of its own and on a screen that is not there: until it is shown, until the tags are in it, and
// what a letter of the search takes. A hundred tags with recordings, five thousand contacts.

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QStandardItemModel>
#include <QTimer>
#include <QTreeView>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <unistd.h>

#include "benchmarks/full_device.h"
#include "benchmarks/moments.h"
#include "host/home/store_work.h"
#include "host/home/tags_window.h"
#include "tests/support/run_program.h"

namespace {

constexpr int kRounds = 21;
constexpr int kManyContacts = 5000;
constexpr int kColumns = 7;

double Now() { return benchmarks::Milliseconds(CLOCK_MONOTONIC); }

/// What one process measures, in milliseconds.
struct Times {
  double shown = 0;   ///< Until the window is painted.
  double filled = 0;  ///< Until all rows are in it and it is painted.
  double letter = 0;  ///< The longest of the letters that are typed into the search.
};

/// Watches a window from the making of this object on.
class Watch final : public QObject {
 public:
  Watch() { qApp->installEventFilter(this); }

  bool eventFilter(QObject* watched, QEvent* event) override {
    auto* const widget = qobject_cast<QWidget*>(watched);
    if (event->type() == QEvent::Paint && widget != nullptr) {
      // After everything that is to be painted now.
      QTimer::singleShot(0, this, [this, window = widget->window()] { OnPainted(*window); });
    }
    return false;
  }

 private:
  void OnPainted(const QWidget& window) {
    if (m_times.shown == 0) {
      m_times.shown = Now() - m_begin;
    }
    const auto* const list = window.findChild<QTreeView*>();
    if (m_times.filled == 0 && list->isVisible() &&
        list->model()->rowCount() == static_cast<int>(benchmarks::kTags)) {
      m_times.filled = Now() - m_begin;
      Type(*window.findChild<QLineEdit*>());
      std::printf("%f %f %f\n", m_times.shown, m_times.filled, m_times.letter);
      std::fflush(stdout);
      ::_exit(0);
    }
  }

  void Type(QLineEdit& search) {
    for (const char* const typed : {"g", "gi", "giv", "given", "given 5", "given 55", "zzz", ""}) {
      const double begin = Now();
      search.setText(QLatin1String(typed));
      QApplication::processEvents();
      m_times.letter = std::max(m_times.letter, Now() - begin);
    }
  }

  const double m_begin = Now();
  Times m_times;
};

int ShowWidgets() {
  const Watch watch;
  QWidget window;
  window.resize(900, 600);
  auto* const search = new QLineEdit;
  auto* const list = new QTreeView;
  auto* const layout = new QVBoxLayout(&window);
  layout->addWidget(search);
  layout->addWidget(list);
  auto* const model = new QStandardItemModel(benchmarks::kTags, kColumns, list);
  for (int row = 0; row < static_cast<int>(benchmarks::kTags); ++row) {
    for (int column = 0; column < kColumns; ++column) {
      model->setItem(row, column, new QStandardItem(QStringLiteral("Given Family%1").arg(row)));
    }
  }
  list->setModel(model);
  for (const char* const text : {"Teach a name", "Play", "Teach again", "Delete", "Menu"}) {
    layout->addWidget(new QPushButton(QString::fromLatin1(text)));
  }
  window.show();
  return QApplication::exec();
}

int ShowWindow() {
  const Watch watch;
  const machine::Options options = machine::ReadOptions();
  home::StoreWork work(options);
  QSettings remembered(QStringLiteral("/none"), QSettings::IniFormat);
  home::TagsWindow::Settings settings;
  settings.pages[home::PageId::kTeaching] = nullptr;
  settings.openHelp = [] {};
  home::TagsWindow window(work, remembered, settings);
  window.show();
  return QApplication::exec();
}

Times Measure(const char* program, const char* way, const std::vector<std::string>& environment) {
  const auto run = support::RunProgram({program, way}, environment);
  Times times;
  std::istringstream(run.out) >> times.shown >> times.filled >> times.letter;
  if (run.exitCode != 0 || times.filled == 0) {
    std::fprintf(stderr, "%s was not shown: %s\n", way, run.err.c_str());
    std::exit(1);
  }
  return times;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2) {
    const QApplication application(argc, argv);
    return std::string_view(argv[1]) == "widgets" ? ShowWidgets() : ShowWindow();
  }
  benchmarks::FullDevice device(kManyContacts);
  device.Record(VOXTREL_SAMPLES);
  const support::TempFolder cache;
  const auto environment = [&](const std::string& cacheFolder) {
    return std::vector<std::string>{"VOXTREL_ROOT=" + device.GetRoot(),
                                    "VOXTREL_CONTACTS=" + device.GetFile(),
                                    "XDG_CACHE_HOME=" + cacheFolder, "QT_QPA_PLATFORM=offscreen"};
  };
  struct Way {
    const char* name;
    std::vector<std::string> environment;
    std::array<std::vector<double>, 3> times;
  };
  // If there can be no cache, each card is read each time, as the first time.
  std::array<Way, 3> ways{{{"widgets", environment("/dev/null"), {}},
                           {"window", environment("/dev/null"), {}},
                           {"window", environment(cache.Path().string()), {}}}};
  for (int round = 0; round < kRounds; ++round) {
    for (Way& way : ways) {
      const Times times = Measure(argv[0], way.name, way.environment);
      way.times[0].push_back(times.shown);
      way.times[1].push_back(times.filled);
      way.times[2].push_back(times.letter);
    }
  }
  const double bare = benchmarks::Median(ways[0].times[0]);
  std::printf("%-38s %10s %8s\n", "100 tags, 5,000 contacts", "median ms", "ratio");
  const auto print = [&](const char* what, const std::vector<double>& times) {
    std::printf("%-38s %10.1f %7.2fx\n", what, benchmarks::Median(times),
                benchmarks::Median(times) / bare);
  };
  print("bare widgets, shown with rows", ways[0].times[0]);
  print("Voice tags, shown", ways[2].times[0]);
  print("Voice tags, with rows, the first time", ways[1].times[1]);
  print("Voice tags, with rows, again", ways[2].times[1]);
  print("slowest letter of the search", ways[2].times[2]);
  return 0;
}
