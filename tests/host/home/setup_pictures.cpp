// setup_pictures FOLDER: paints the set-up page, for people to look at.

#include <QApplication>
#include <QScrollArea>
#include <QStyleFactory>
#include <cstdio>

#include "tests/host/home/setup_fixture.h"

namespace {

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

/// A page that is full of news.
class Painter final : public home_test::SetupPageTest {
 public:
  void TestBody() override {}

  void Paint(const Look& look, const QString& folder) {
    Apply(look);
    std::ofstream(Path("torn.vcf"), std::ios::binary)
        << "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Lee;Ann\r\nTEL:5551234\r\nEND:VCARD\r\n"
           "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Ray;Bob\r\n";
    m_inputs.Set({{u"a", u"Built-in Audio Analogue Stereo", true}, {u"b", u"USB Headset", false}});
    Open();
    m_page->resize(look.size);
    AwaitText("bookPeople", "1 person");
    m_page->OnFilesDropped({QPath("torn.vcf")});
    AwaitText("bookRemarks", "1 place");
    Press("check");
    AwaitText("checkNews", "There are no voice tags");
    machine::WaveInScript script;
    script.sound = std::vector<std::byte>(60'000, std::byte{0x10});
    m_machine.waveIn.SetScript(script);
    m_machine.time.Sleep(1000);
    QTest::qWait(20);
    auto* const scroll = m_page->findChild<QScrollArea*>();
    // All of it in one picture.
    m_page->resize(look.size.width(), scroll->widget()->heightForWidth(look.size.width()));
    QTest::qWait(20);
    m_page->grab().save(folder + QStringLiteral("/setup_%1.png").arg(QLatin1String(look.name)));
    std::printf("%s %dx%d, column %d\n", look.name, m_page->width(), m_page->height(),
                scroll->widget()->width());
  }
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  for (const char* variable : {"XDG_DATA_HOME", "XDG_CONFIG_HOME"}) {
    qputenv(variable, "/none");
  }
  const QApplication application(argc, argv);
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("fusion")));
  const QString folder = QApplication::arguments().value(1);
  for (const Look& look :
       {Look{"desktop", {900, 640}}, Look{"dark", {900, 640}, 10, true}, Look{"phone", {360, 640}},
        Look{"phone_20", {360, 640}, 20}, Look{"wide_20", {1600, 900}, 20},
        Look{"right", {500, 640}, 11, false, true}}) {
    Painter().Paint(look, folder);
  }
  return testing::Test::HasFailure() ? 1 : 0;
}
