#include <QScrollArea>

#include "tests/host/home/looks.h"
#include "tests/host/home/setup_fixture.h"

namespace {

/// A page that is full of news.
class Painter final : public home_test::SetupPageTest {
 public:
  void TestBody() override {}

  /// In any language.
  void AwaitAny(const char* label) const {
    static_cast<void>(Await([&] { return !Text(label).isEmpty(); }));
  }

  void Paint(const home_test::Look& look, const QString& folder) {
    std::ofstream(Path("torn.vcf"), std::ios::binary)
        << "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Lee;Ann\r\nTEL:5551234\r\nEND:VCARD\r\n"
           "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Ray;Bob\r\n";
    m_inputs.Set({{u"a", u"Built-in Audio Analogue Stereo", true}, {u"b", u"USB Headset", false}});
    Open();
    m_page->resize(look.size);
    AwaitAny("bookPeople");
    m_page->OnFilesDropped({QPath("torn.vcf")});
    AwaitAny("bookRemarks");
    Press("check");
    AwaitAny("checkNews");
    machine::WaveInScript script;
    script.sound = std::vector<std::byte>(60'000, std::byte{0x10});
    m_machine.waveIn.SetScript(script);
    m_machine.time.Sleep(1000);
    QTest::qWait(20);
    auto* const scroll = m_page->findChild<QScrollArea*>();
    // All of it in one picture.
    m_page->resize(look.size.width(), scroll->widget()->heightForWidth(look.size.width()));
    QTest::qWait(20);
    home_test::Save(*m_page, folder, look, "setup");
  }
};

}  // namespace

namespace home_test {

void PaintSetup(const Look& look, const QString& folder) { Painter().Paint(look, folder); }

}  // namespace home_test
