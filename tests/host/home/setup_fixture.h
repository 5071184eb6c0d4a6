#pragma once

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "host/home/page_tasks.h"
#include "host/home/setup_page.h"
#include "host/home/shelf_reading.h"
#include "storage/device_paths.h"
#include "tests/host/home/page_fixture.h"
#include "tests/support/temp_folder.h"

namespace home_test {

/// The inputs that a test makes up.
class FakeInputs final : public platform::WaveInputs {
 public:
  void Set(std::vector<platform::WaveInput> inputs) {
    std::function<void()> changed;
    {
      const std::lock_guard lock(m_mutex);
      m_inputs = std::move(inputs);
      changed = m_changed;
    }
    if (changed) {
      changed();
    }
  }
  [[nodiscard]] bool IsWatched() const {
    const std::lock_guard lock(m_mutex);
    return m_changed != nullptr;
  }

  [[nodiscard]] platform::Result<std::vector<platform::WaveInput>, platform::WaveResult> List()
      override {
    const std::lock_guard lock(m_mutex);
    return m_inputs;
  }
  [[nodiscard]] std::unique_ptr<Watch> StartWatch(std::function<void()> changed) override {
    const std::lock_guard lock(m_mutex);
    m_changed = std::move(changed);
    return std::make_unique<Watched>(*this);
  }

 private:
  struct Watched final : Watch {
    explicit Watched(FakeInputs& inputs) : m_inputs(inputs) {}
    ~Watched() override {
      const std::lock_guard lock(m_inputs.m_mutex);
      m_inputs.m_changed = nullptr;
    }
    FakeInputs& m_inputs;
  };

  mutable std::mutex m_mutex;
  std::vector<platform::WaveInput> m_inputs;
  std::function<void()> m_changed;
};

/// Counts how often the store is loaded again.
class CountingWork final : public home::Work {
 public:
  void OnLoaded(std::function<void(std::shared_ptr<const home::Shelf>)> /*show*/) override {}
  void Load() override { ++loads; }
  void LoadIfChanged() override {}
  void Play(const std::u16string& /*tag*/, Answer /*answer*/) override {}
  void StopPlaying() override {}
  void Delete(const std::vector<std::u16string>& /*tags*/, DeletedAnswer /*answer*/) override {}
  void ListTrash(TrashAnswer /*answer*/) override {}
  void Restore(const std::vector<std::u16string>& /*trashed*/, Answer /*answer*/) override {}
  void Compare(const home::Lesson& /*lesson*/, ComparedAnswer /*answer*/) override {}
  void Teach(const home::Lesson& /*lesson*/, TaughtAnswer /*answer*/) override {}

  int loads = 0;
};

/// The set-up page over a store of its own, and a user who answers its questions.
class SetupPageTest : public testing::Test {
 protected:
  SetupPageTest() {
    // Nobody reads the address books of whoever runs the tests.
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(QPath("run")));
    m_options.root = Path("root");
    std::filesystem::create_directory(m_options.root);
    WriteContacts("contacts.vcf", {"Ann"});
    std::filesystem::copy(Path("contacts.vcf"), Path("root/contacts.vcf"));
  }

  [[nodiscard]] std::string Path(const std::string& name) const {
    return (m_folder.Path() / name).string();
  }
  [[nodiscard]] QString QPath(const std::string& name) const {
    return QString::fromStdString(Path(name));
  }
  /// Writes a vCard file of people with those first names.
  void WriteContacts(const std::string& file, const std::vector<std::string>& names) const {
    std::ofstream stream(Path(file), std::ios::binary);
    for (const std::string& name : names) {
      stream << "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:" << name << "\r\nN:Lee;" << name
             << ";;;\r\nTEL;TYPE=CELL:5551234\r\nEND:VCARD\r\n";
    }
  }

  /// Teaches Ann's name. Returns the tag.
  std::u16string TeachAnn() const {
    home::Gathering gathering;
    session::Session session(m_options, gathering);
    const home::Shelf shelf = home::ReadShelf(session, gathering);
    EXPECT_EQ(shelf.people.size(), 1U);
    std::ifstream file(VOXTREL_SAMPLES_DIR "/anna_1.wav", std::ios::binary);
    std::vector<std::byte> wave;
    std::transform(std::istreambuf_iterator<char>(file), {}, std::back_inserter(wave),
                   [](char byte) { return static_cast<std::byte>(byte); });
    const home::TaughtTag taught =
        home::PageTasks(m_options).Teach({shelf.people.front().oid, u"Mobile", wave, {}});
    EXPECT_TRUE(taught.outcome.isDone);
    return taught.tag;
  }
  [[nodiscard]] std::filesystem::path TemplateOf(const std::u16string& tag) const {
    return machine::Backends(m_options).ToHostPath(storage::TemplatePath(tag));
  }

  /// Makes the page and shows it.
  void Open() {
    m_page = std::make_unique<home::SetupPage>(home::SetupTools{
        m_options,
        m_work,
        m_machine.Get(),
        m_inputs,
        VOXTREL_LANGUAGES_DIR,
        [this](const machine::Program& program, const QStringList& arguments) {
          m_started.emplace_back(program.name, arguments);
          return m_canStart;
        },
        {[this](QWidget*, const QString&, const QString&) { return m_file; },
         [this](QWidget*, const QString&, const QString&, const QString&) { return m_file; },
         [this](QWidget*, const QString& question, const QString&, const QString&) {
           m_questions.append(question);
           return m_agrees;
         }}});
    m_page->resize(700, 900);
    m_page->OnShown({});
    m_page->show();
  }

  /// Opens a list by the keyboard, moves with `key` and chooses.
  static void ChooseByKey(QComboBox& list, Qt::Key key) {
    QTest::keyClick(&list, key);
    QTest::keyClick(list.view(), key);
    QTest::keyClick(list.view(), Qt::Key_Return);
  }

  template <typename Widget = QLabel>
  [[nodiscard]] Widget* Find(const char* name) const {
    return m_page->findChild<Widget*>(QLatin1String(name));
  }
  [[nodiscard]] QString Text(const char* name) const {
    const auto* const label = Find(name);
    return label->isVisibleTo(m_page.get()) ? label->text() : QString();
  }
  void Press(const char* name) const {
    auto* const button = Find<QPushButton>(name);
    ASSERT_TRUE(button->isEnabled()) << name;
    QTest::mouseClick(button, Qt::LeftButton);
  }
  /// Runs the event loop until the label contains the text.
  void AwaitText(const char* name, const QString& text) const {
    ASSERT_TRUE(Await([&] { return Text(name).contains(text); }))
        << name << ": " << Text(name).toStdString();
  }
  [[nodiscard]] static bool Await(const std::function<bool()>& isDone) {
    constexpr int kLimit = 60'000;
    return QTest::qWaitFor(isDone, kLimit);
  }

  support::TempFolder m_folder;
  machine::Options m_options;
  CountingWork m_work;
  Machine m_machine;
  FakeInputs m_inputs;
  std::vector<std::pair<std::string, QStringList>> m_started;
  bool m_canStart = true;
  QString m_file;
  QStringList m_questions;
  bool m_agrees = false;
  std::unique_ptr<home::SetupPage> m_page;
};

}  // namespace home_test
