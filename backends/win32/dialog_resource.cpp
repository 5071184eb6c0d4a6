#include "backends/win32/dialog_resource.h"

#include <commctrl.h>

namespace win32 {
namespace {

using resources::ControlKind;

// The system's own font for dialogs. It has letters of every language of the system, and takes the
// size from the scale of the screen.
constexpr std::u16string_view kDialogFont = u"MS Shell Dlg";
constexpr WORD kDialogFontPoints = 8;

// The classes that a control's record knows by number.
constexpr WORD kButton = 0x0080;
constexpr WORD kStatic = 0x0082;
constexpr WORD kListBox = 0x0083;
constexpr WORD kComboBox = 0x0085;

struct Look {
  WORD windowClass = 0;
  DWORD style = 0;
  DWORD extendedStyle = 0;
};

constexpr DWORD kComboStyle = CBS_AUTOHSCROLL | WS_VSCROLL | WS_TABSTOP;
// The order of items is that of framework::ItemList. So no list sorts.
constexpr DWORD kListStyle =
    LBS_NOTIFY | LBS_NOINTEGRALHEIGHT | WS_VSCROLL | WS_HSCROLL | WS_TABSTOP;

/// A text is data, so no "&" in it underlines a letter.
[[nodiscard]] Look LookOf(ControlKind kind) {
  switch (kind) {
    case ControlKind::kStatic:
      return {kStatic, SS_LEFTNOWORDWRAP | SS_NOPREFIX};
    case ControlKind::kCenteredStatic:
      return {kStatic, SS_CENTER | SS_NOPREFIX};
    case ControlKind::kComboBox:
    case ControlKind::kSortedComboBox:
      return {kComboBox, CBS_DROPDOWNLIST | kComboStyle};
    case ControlKind::kEditableComboBox:
      return {kComboBox, CBS_DROPDOWN | kComboStyle};
    case ControlKind::kPushButton:
      return {kButton, BS_PUSHBUTTON | WS_TABSTOP};
    case ControlKind::kDefaultPushButton:
      return {kButton, BS_DEFPUSHBUTTON | WS_TABSTOP};
    case ControlKind::kCheckBox:
      return {kButton, BS_AUTOCHECKBOX | WS_TABSTOP};
    case ControlKind::kGroupBox:
      return {kButton, BS_GROUPBOX};
    case ControlKind::kPicture:
      return {kButton, BS_OWNERDRAW | WS_TABSTOP};
    case ControlKind::kListBox:
      break;
  }
  return {kListBox, kListStyle, WS_EX_CLIENTEDGE};
}

/// Writes the fields one after the other, as 16-bit words. The record (DLGTEMPLATEEX) has no
/// struct: its texts are as long as they are, and each control begins at a multiple of four bytes.
class Writer {
 public:
  void Word(int value) { m_words.push_back(static_cast<std::uint16_t>(value)); }
  void Double(DWORD value) {
    m_words.push_back(LOWORD(value));
    m_words.push_back(HIWORD(value));
  }
  void Text(std::u16string_view text) {
    m_words.insert(m_words.end(), text.begin(), text.end());
    m_words.push_back(0);
  }
  void Align() {
    if (m_words.size() % 2 != 0) m_words.push_back(0);
  }
  [[nodiscard]] std::vector<std::uint32_t> Take() {
    Align();
    std::vector<std::uint32_t> doubles;
    for (std::size_t i = 0; i < m_words.size(); i += 2) {
      doubles.push_back(m_words[i] | static_cast<std::uint32_t>(m_words[i + 1]) << 16U);
    }
    return doubles;
  }

 private:
  std::vector<std::uint16_t> m_words;
};

void WriteControl(Writer& writer, const resources::ControlTemplate& control) {
  const Look look = LookOf(control.kind);
  writer.Align();
  writer.Double(0);  // Help.
  writer.Double(look.extendedStyle);
  writer.Double(look.style | WS_CHILD | (control.isVisible ? WS_VISIBLE : 0U) |
                (control.isEnabled ? 0U : WS_DISABLED));
  writer.Word(control.rect.x);
  writer.Word(control.rect.y);
  writer.Word(control.rect.width);
  writer.Word(control.rect.height);
  writer.Double(static_cast<DWORD>(control.id));
  writer.Word(0xFFFF);
  writer.Word(look.windowClass);
  writer.Text(u"");  // Win32Dialog shows the text.
  writer.Word(0);    // No data for the control.
}

}  // namespace

std::vector<std::uint32_t> MakeDialogResource(const resources::DialogTemplate& dialog,
                                              DialogPlace place) {
  constexpr DWORD kEach = DS_SETFONT | DS_FIXEDSYS;
  const DWORD style = place == DialogPlace::kPage
                          ? kEach | DS_CONTROL | WS_CHILD | WS_DISABLED | WS_CAPTION
                          : kEach | DS_MODALFRAME | DS_CENTER | WS_POPUP | WS_CAPTION | WS_SYSMENU;
  Writer writer;
  writer.Word(1);       // The version of this record.
  writer.Word(0xFFFF);  // An older record has a part of its style here, which is never this.
  writer.Double(0);     // Help.
  writer.Double(place == DialogPlace::kPage ? WS_EX_CONTROLPARENT : 0U);
  writer.Double(style);
  writer.Word(static_cast<int>(dialog.controls.size()));
  writer.Word(0);
  writer.Word(0);
  writer.Word(dialog.width);
  writer.Word(dialog.height);
  writer.Word(0);  // No menu.
  writer.Word(0);  // The class of dialogs.
  writer.Text(dialog.caption);
  writer.Word(kDialogFontPoints);
  writer.Word(FW_NORMAL);
  writer.Word(DEFAULT_CHARSET << 8);  // A byte for italics, and one for the character set.
  writer.Text(kDialogFont);
  for (const resources::ControlTemplate& control : dialog.controls) {
    WriteControl(writer, control);
  }
  return writer.Take();
}

}  // namespace win32
