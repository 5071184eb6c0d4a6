#include "tests/backends/qt/page_machine.h"

#include <QBuffer>
#include <QImage>
#include <span>

#include "resources/pictures.h"
#include "storage/device_paths.h"
#include "tests/support/signals.h"

namespace support {
namespace {

constexpr std::string_view kBlueBox =
    R"(<svg xmlns="http://www.w3.org/2000/svg" width="20" height="10" viewBox="0 0 20 10">)"
    R"(<rect width="20" height="10" fill="#0000ff"/></svg>)";

const QByteArray& RedPng() {
  static const QByteArray bytes = [] {
    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray encoded;
    QBuffer buffer(&encoded);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return encoded;
  }();
  return bytes;
}

constexpr resources::DialogTemplate kPaintedDialog{135, u"About", 160, 167, {}, {}};

/// The first page and the second one.
class Sheet final : public framework::CPropertySheet {
 public:
  explicit Sheet(platform::Ui& ui) : CPropertySheet(u"Property", ui) {}
};

}  // namespace

qt::PictureSource TestPictures() {
  return {[](int picture) -> std::span<const std::byte> {
    switch (picture) {
      case 1:
        return std::as_bytes(std::span(kBlueBox));
      case 2:
        return std::as_bytes(
            std::span(RedPng().constData(), static_cast<std::size_t>(RedPng().size())));
      default:
        break;
    }
    const resources::Picture* const own = resources::FindPicture(picture);
    return own == nullptr ? std::span<const std::byte>() : own->svg;
  }};
}

PaintedPage::PaintedPage(platform::Ui& ui) : CPropertyPage(kPaintedDialog, ui) {}

bool PaintedPage::OnInitDialog() {
  ++initCount;
  return true;
}

void PaintedPage::OnPaint(platform::Canvas& canvas) {
  canvas.DrawLine({0, 26}, {canvas.GetClientRect().right - 1, 26}, {});
  canvas.DrawText({5, 6}, u"Test results & 100%s",
                  {.face = u"Tahoma", .height = 13, .weight = platform::kBoldWeight}, {0, 0, 128});
  canvas.DrawPicture({8, 40}, 1);
  canvas.DrawPicture({40, 40}, 2);
  canvas.DrawLine({8, 60}, {8, 160}, {});
  canvas.DrawLine({8, 160}, {232, 160}, {});
  canvas.DrawLine({232, 160}, {232, 60}, {});
  canvas.DrawLine({232, 60}, {8, 60}, {});
  canvas.DrawTextIn({12, 64, 110, 90}, u"Cut off at the edge of its area", {}, {164, 34, 76});
}

PageMachine::PageMachine() {
  machine::SimulatedContact ann{.oid = 17, .firstName = u"Ann", .lastName = u"Lee"};
  ann.Number(platform::PhoneKind::kMobile) = u"5551234";
  ann.Number(platform::PhoneKind::kHome) = u"1110000";
  machine.contacts.Add(ann);
  machine::SimulatedContact bob{.oid = -5, .firstName = u"Bob", .lastName = u"Ray & Sons <b>"};
  bob.Number(platform::PhoneKind::kHome) = u"5550001";
  machine.contacts.Add(bob);
  machine.waveIn.SetScript(
      {.sound = BytesOf(Mixed(Noise(33075, 20, 1), 12000, SpeechLike(6000, 9000, 2)))});
  static_cast<void>(machine.files.CreateFolder(storage::kProgramFilesFolder));
}

platform::Platform PageMachine::GetPlatform() {
  return {machine.files,    machine.waveIn,   clock,           threads,      machine.process, ui,
          machine.registry, machine.contacts, machine.waveOut, machine.shell};
}

void PageMachine::LoadLanguage(const std::vector<std::byte>& file) {
  static_cast<void>(machine.files.PutFile(u"\\test.lng", file));
  table.Load(machine.files, u"\\test.lng");
  texts = language::Texts(&table);
}

bool PageMachine::RunSheet() {
  tags::Page_one page(GetPlatform(), texts);
  PaintedPage about(ui);
  Sheet sheet(ui);
  sheet.AddPage(page);
  sheet.AddPage(about);
  return sheet.DoModal();
}

}  // namespace support
